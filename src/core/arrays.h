// The elements of records and files that every room shares, beside the arrays of the mathematics.
#pragma once

#include <cstdint>
#include <optional>

#include "fit/arrays.h"

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

// A number, or nothing at all. Element 0 of the tagged arrays of a job is always empty.
using TaggedValue = std::optional<double>;
