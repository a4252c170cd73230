// Binary records of one size, with a point each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

enum class Scalar : std::uint8_t { Int8, UInt8, Int16, UInt16, Int32, UInt32, Int64, UInt64, Float, Double };
std::size_t SizeOf(Scalar type);
bool IsWhole(Scalar type);

// A number of that type; `swapped`: its bytes stand in the other order than this machine has them.
double LoadScalar(const char* at, Scalar type, bool swapped);
// Require: a type with fractions. False where it does not fit into it.
bool StoreScalar(double value, char* at, Scalar type, bool swapped);

struct RecordField {
    std::size_t Offset = 0;  // in its record, bytes
    Scalar Type = Scalar::Float;
};
struct RecordForm {
    std::size_t Size = 0;
    bool Swapped = false;
    bool HasPoint = false, HasNormal = false;
    std::array<RecordField, 3> Point{}, Normal{};
};

// Carries `count` records in place, or hands their points on. `first` is the number of the first of them, for
// messages. Throws PlatformError as RunCloud does.
void CarryRecords(CloudTask& task, const RecordForm& form, char* records, std::size_t count,
                  std::int64_t first);

// The same for records whose fields stand apart: `stride` bytes from point to point, from these places on.
struct RecordPlaces {
    std::array<char*, 3> Point{}, Normal{};
    std::array<std::size_t, 3> PointStride{}, NormalStride{};
};
void CarryPlaces(CloudTask& task, const RecordForm& form, RecordPlaces places, std::size_t count,
                 std::int64_t first);

// Bytes that hold no values: blanks, line ends, zeros.
bool IsNothing(std::string_view bytes);

// Refuses whole numbers as coordinates or normals of a cloud that is carried: they would have to be rounded.
void RefuseWholeNumbers(const CloudTask& task, const RecordForm& form);

}  // namespace corvinade::import
