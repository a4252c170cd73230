// The elements of records and files that every room shares, beside the arrays of the mathematics.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <optional>

#include "core/rooms.h"
#include "fit/arrays.h"

namespace corvinade::core {

// A 16-bit truth value: true is -1, and only -1; everything else is false. So it stands in files too.
using Flag = std::int16_t;
inline constexpr Flag kTrue = -1;
inline constexpr Flag kFalse = 0;
constexpr Flag ToFlag(bool condition) {
    return condition ? kTrue : kFalse;
}
constexpr bool IsTrue(Flag flag) {
    return flag == kTrue;
}

// A number, or nothing at all. Element 0 of the tagged arrays of a job is always empty. It is used as a
// std::optional<double>, and takes the room of the number alone: of a million points that are 64 MB less.
// Nothing is one of the many bit patterns that are no number, and one that is put in comes out as another.
class TaggedValue {
public:
    constexpr TaggedValue() = default;
    constexpr TaggedValue(std::nullopt_t) {}
    constexpr TaggedValue(double value) : value_(IsNothing(value) ? kNoNumber : value) {}

    constexpr bool has_value() const { return !IsNothing(value_); }
    constexpr explicit operator bool() const { return has_value(); }
    constexpr double operator*() const { return value_; }  // require: it has a value
    constexpr double value_or(double other) const { return has_value() ? value_ : other; }

    constexpr double value() const {
        if (!has_value()) throw std::bad_optional_access();
        return value_;
    }
    constexpr void reset() { value_ = kNothing; }

    // Two nothings are equal; a number is equal as numbers are.
    friend constexpr bool operator==(TaggedValue a, TaggedValue b) {
        return a.has_value() == b.has_value() && (!a.has_value() || a.value_ == b.value_);
    }

private:
    static constexpr double kNothing = std::bit_cast<double>(0x7FF8'4E6F'7468'696EULL);
    static constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    static constexpr bool IsNothing(double value) {
        return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(kNothing);
    }
    double value_ = kNothing;
};
static_assert(sizeof(TaggedValue) == sizeof(double));

}  // namespace corvinade::core
