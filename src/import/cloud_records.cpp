// Binary records with a point each.
#include "import/cloud_records.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace corvinade::import {

namespace {

template <class T, bool kSwapped>
inline T LoadAs(const char* at) {
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), at, sizeof(T));
    if constexpr (kSwapped) std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
}

template <class T, bool kSwapped>
inline void StoreAs(T value, char* at) {
    auto bytes = std::bit_cast<std::array<char, sizeof(T)>>(value);
    if constexpr (kSwapped) std::reverse(bytes.begin(), bytes.end());
    std::memcpy(at, bytes.data(), sizeof(T));
}

template <class T>
double Load(const char* at, bool swapped) {
    return static_cast<double>(swapped ? LoadAs<T, true>(at) : LoadAs<T, false>(at));
}

// Are all three finite? A difference of infinities is no number.
inline bool AreFinite(const std::array<double, 3>& v) {
    return v[0] - v[0] == 0 && v[1] - v[1] == 0 && v[2] - v[2] == 0;
}

[[noreturn]] void RefuseTooLarge(const CloudTask& task, std::int64_t number) {
    task.In.Fail("the transformed point " + std::to_string(number) +
                 " is larger than any number of its type can be");
}

void CountNotFinite(CloudTask& task, std::int64_t number) {
    if (task.Facts.NotFinite++ == 0) task.Facts.FirstNotFinite = number;
}

// Points of which all three coordinates are of type T, `stride` bytes apart.
template <class T, bool kSwapped>
void CarryFloats(CloudTask& task, std::array<char*, 3> at, std::array<std::size_t, 3> stride,
                 std::size_t count, std::int64_t first) {
    const CloudMotion motion = *task.Motion;
    // The largest of each axis for itself: none waits for another.
    std::array<double, 3> in{}, out{};
    std::int64_t points = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<double, 3> p = {LoadAs<T, kSwapped>(at[0]), LoadAs<T, kSwapped>(at[1]),
                                         LoadAs<T, kSwapped>(at[2])};
        if (AreFinite(p)) {
            const std::array<double, 3> q = motion.Carry(p);
            const std::array<T, 3> kept = {static_cast<T>(q[0]), static_cast<T>(q[1]), static_cast<T>(q[2])};
            if (!AreFinite({kept[0], kept[1], kept[2]}))
                RefuseTooLarge(task, first + static_cast<std::int64_t>(i));
            for (std::size_t k = 0; k < 3; ++k) {
                if constexpr (std::is_same_v<T, float>) {
                    in[k] = std::max(in[k], std::fabs(p[k]));
                    out[k] = std::max(out[k], std::fabs(q[k]));
                }
                StoreAs<T, kSwapped>(kept[k], at[k]);
            }
            ++points;
        } else {
            CountNotFinite(task, first + static_cast<std::int64_t>(i));
        }
        for (std::size_t k = 0; k < 3; ++k) at[k] += stride[k];
    }
    for (std::size_t k = 0; k < 3; ++k) {
        task.Facts.LargestIn = std::max(task.Facts.LargestIn, in[k]);
        task.Facts.LargestOut = std::max(task.Facts.LargestOut, out[k]);
    }
    task.Facts.Points += points;
}

bool AllAre(const std::array<RecordField, 3>& fields, Scalar type) {
    return std::all_of(fields.begin(), fields.end(),
                       [type](const RecordField& field) { return field.Type == type; });
}

std::array<double, 3> LoadThree(const std::array<RecordField, 3>& fields, const std::array<char*, 3>& at,
                                bool swapped) {
    std::array<double, 3> v{};
    for (std::size_t k = 0; k < 3; ++k) v[k] = LoadScalar(at[k], fields[k].Type, swapped);
    return v;
}

}  // namespace

std::size_t SizeOf(Scalar type) {
    constexpr std::array<std::size_t, 10> kSizes = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    return kSizes[static_cast<std::size_t>(type)];
}

bool IsWhole(Scalar type) {
    return type < Scalar::Float;
}

double LoadScalar(const char* at, Scalar type, bool swapped) {
    switch (type) {
        case Scalar::Int8:
            return Load<std::int8_t>(at, swapped);
        case Scalar::UInt8:
            return Load<std::uint8_t>(at, swapped);
        case Scalar::Int16:
            return Load<std::int16_t>(at, swapped);
        case Scalar::UInt16:
            return Load<std::uint16_t>(at, swapped);
        case Scalar::Int32:
            return Load<std::int32_t>(at, swapped);
        case Scalar::UInt32:
            return Load<std::uint32_t>(at, swapped);
        case Scalar::Int64:
            return Load<std::int64_t>(at, swapped);
        case Scalar::UInt64:
            return Load<std::uint64_t>(at, swapped);
        case Scalar::Float:
            return Load<float>(at, swapped);
        case Scalar::Double:
            break;
    }
    return Load<double>(at, swapped);
}

bool StoreScalar(double value, char* at, Scalar type, bool swapped) {
    if (type == Scalar::Double) {
        swapped ? StoreAs<double, true>(value, at) : StoreAs<double, false>(value, at);
        return std::isfinite(value);
    }
    const auto single = static_cast<float>(value);
    swapped ? StoreAs<float, true>(single, at) : StoreAs<float, false>(single, at);
    return std::isfinite(single);
}

void CarryPlaces(CloudTask& task, const RecordForm& form, RecordPlaces places, std::size_t count,
                 std::int64_t first) {
    if (task.Motion == nullptr) {
        if (!form.HasPoint) return;
        CloudPoint point;
        for (std::size_t i = 0; i < count; ++i) {
            point.At = LoadThree(form.Point, places.Point, form.Swapped);
            for (std::size_t k = 0; k < 3; ++k) places.Point[k] += places.PointStride[k];
            if (AreFinite(point.At)) {
                ++task.Facts.Points;
                task.Take(point);
            } else {
                CountNotFinite(task, first + static_cast<std::int64_t>(i));
            }
        }
        return;
    }
    if (form.HasNormal) {
        auto at = places.Normal;
        for (std::size_t i = 0; i < count; ++i) {
            const std::array<double, 3> n = LoadThree(form.Normal, at, form.Swapped);
            if (AreFinite(n)) {
                const std::array<double, 3> turned = task.Motion->Rotate(n);
                for (std::size_t k = 0; k < 3; ++k)
                    if (!StoreScalar(turned[k], at[k], form.Normal[k].Type, form.Swapped))
                        RefuseTooLarge(task, first + static_cast<std::int64_t>(i));
            }
            for (std::size_t k = 0; k < 3; ++k) at[k] += places.NormalStride[k];
        }
    }
    if (!form.HasPoint) return;
    const auto carry = [&](auto run) { run(task, places.Point, places.PointStride, count, first); };
    if (AllAre(form.Point, Scalar::Float)) {
        form.Swapped ? carry(CarryFloats<float, true>) : carry(CarryFloats<float, false>);
    } else if (AllAre(form.Point, Scalar::Double)) {
        form.Swapped ? carry(CarryFloats<double, true>) : carry(CarryFloats<double, false>);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            const std::array<double, 3> p = LoadThree(form.Point, places.Point, form.Swapped);
            const std::array<double, 3> q = task.Motion->Carry(p);
            const std::int64_t number = first + static_cast<std::int64_t>(i);
            if (AreFinite(p)) {
                ++task.Facts.Points;
                for (std::size_t k = 0; k < 3; ++k)
                    if (!StoreScalar(q[k], places.Point[k], form.Point[k].Type, form.Swapped))
                        RefuseTooLarge(task, number);
            } else {
                CountNotFinite(task, number);
            }
            for (std::size_t k = 0; k < 3; ++k) places.Point[k] += places.PointStride[k];
        }
    }
}

void CarryRecords(CloudTask& task, const RecordForm& form, char* records, std::size_t count,
                  std::int64_t first) {
    RecordPlaces places;
    for (std::size_t k = 0; k < 3; ++k) {
        places.Point[k] = records + form.Point[k].Offset;
        places.Normal[k] = records + form.Normal[k].Offset;
        places.PointStride[k] = places.NormalStride[k] = form.Size;
    }
    CarryPlaces(task, form, places, count, first);
}

bool IsNothing(std::string_view bytes) {
    using namespace std::string_view_literals;
    return bytes.find_first_not_of(" \t\r\n\0"sv) == std::string_view::npos;
}

void RefuseWholeNumbers(const CloudTask& task, const RecordForm& form) {
    if (task.Motion == nullptr) return;
    const auto anyWhole = [](const std::array<RecordField, 3>& fields) {
        return std::any_of(fields.begin(), fields.end(),
                           [](const RecordField& field) { return IsWhole(field.Type); });
    };
    if (form.HasPoint && anyWhole(form.Point))
        task.In.Fail(
            "its coordinates are of a whole-number type, and what they become would have to be rounded; "
            "write it with coordinates of type float or double");
    if (form.HasNormal && anyWhole(form.Normal))
        task.In.Fail(
            "its normals are of a whole-number type, and what they become would have to be rounded; "
            "write it with normals of type float or double");
}

}  // namespace corvinade::import
