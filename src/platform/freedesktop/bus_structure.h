#pragma once

#include <QDBusArgument>

#include <tuple>

namespace vantrel {

// A structure of the bus. Its static members() ties the fields of an object in their order on the
// bus.
template <typename T>
concept BusStructure = requires(T& value) {
    T::members(value);
};

// What a type is on the bus is found by these names.
template <BusStructure T>
QDBusArgument& operator<<(QDBusArgument& argument, const T& value) {
    argument.beginStructure();
    std::apply([&](const auto&... member) { (argument << ... << member); }, T::members(value));
    argument.endStructure();
    return argument;
}

template <BusStructure T>
const QDBusArgument& operator>>(const QDBusArgument& argument, T& value) {
    argument.beginStructure();
    std::apply([&](auto&... member) { (argument >> ... >> member); }, T::members(value));
    argument.endStructure();
    return argument;
}

} // namespace vantrel
