// The log: GLib's structured log, domain "veyra", level message. Any thread.
#pragma once

#include "Platform/Foundation/id.h"

#include <initializer_list>

namespace veyra {

/// One argument of a format: %@ takes an id, %f a double (six decimals), %s a C string (UTF-8).
class FormatArgument {
public:
    template <class T>
    requires std::is_constructible_v<id, T> FormatArgument(T&& value)
        : FormatArgument(id(std::forward<T>(value)), nullptr) {}
    FormatArgument(double value);
    FormatArgument(const char* utf8) : _text(utf8), _number(0) {}

    const NSString& text() const { return _text; }
    double number() const { return _number; }

private:
    FormatArgument(const id& value, std::nullptr_t);

    NSString _text;
    double _number;
};

/// Fills %@, %s and %f in order; %% is a percent sign. A placeholder without an argument gives "(null)". `%f` of an
/// argument that is no number gives 0.000000. Independent of the locale.
NSString NSStringWithFormat(const char* format, std::initializer_list<FormatArgument> arguments);

/// Writes one line. A message longer than 64 KiB is cut.
void NSLog(const char* format, std::initializer_list<FormatArgument> arguments = {});

} // namespace veyra
