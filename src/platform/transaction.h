#pragma once

namespace vantrel {

// Changes of layers reach the screen together: between begin and commit they are collected, and
// flush shows all that was committed. Layers change at once, without implicit animations.
class Transaction {
public:
    virtual ~Transaction() = default;

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void flush() = 0;
};

} // namespace vantrel
