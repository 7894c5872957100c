#pragma once

namespace vantrel {

class AlertSound {
public:
    virtual ~AlertSound() = default;

    virtual void beep() = 0;
};

} // namespace vantrel
