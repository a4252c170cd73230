// Binary records with a point each.
#include "import/cloud_records.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "fit/any_vectors.h"

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

constexpr std::size_t kGroup = 256;  // points, in the nearest cache

// Coordinates of a group of points, axis by axis.
template <class T>
struct PointGroup {
    alignas(64) std::array<std::array<T, kGroup>, 3> In, Out;
    std::array<double, 3> LargestIn{}, LargestOut{};  // without sign
};

// Bits of a number without its sign: as whole numbers they grow with it, and what is not finite is above all
// others.
inline std::int32_t SizeBits(float value) {
    return std::bit_cast<std::int32_t>(value) & 0x7fffffff;
}
inline std::int64_t SizeBits(double value) {
    return std::bit_cast<std::int64_t>(value) & 0x7fffffffffffffff;
}

// False where not all numbers that come in or go out are finite.
template <class T>
inline __attribute__((always_inline)) bool Carry(const CloudMotion& motion, std::size_t count,
                                                 PointGroup<T>& group) {
    using Bits = decltype(SizeBits(T{}));
    constexpr T kInfinite = std::numeric_limits<T>::infinity();
    bool finite = true;
    const T* const x = group.In[0].data();
    const T* const y = group.In[1].data();
    const T* const z = group.In[2].data();
    for (std::size_t k = 0; k < 3; ++k) {
        const double mx = motion.M[3 * k], my = motion.M[3 * k + 1], mz = motion.M[3 * k + 2],
                     t = motion.T[k];
        const T* const in = group.In[k].data();
        T* const out = group.Out[k].data();
        Bits mostIn = 0, mostOut = 0;
        std::int64_t largest = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double q = mx * static_cast<double>(x[i]) + my * static_cast<double>(y[i]) +
                             mz * static_cast<double>(z[i]) + t;
            const T kept = static_cast<T>(q);
            out[i] = kept;
            mostIn = std::max(mostIn, SizeBits(in[i]));
            mostOut = std::max(mostOut, SizeBits(kept));
            largest = std::max(largest, SizeBits(q));
        }
        finite = finite && mostIn < SizeBits(kInfinite) && mostOut < SizeBits(kInfinite);
        group.LargestIn[k] = static_cast<double>(std::bit_cast<T>(mostIn));
        group.LargestOut[k] = std::bit_cast<double>(largest);
    }
    return finite;
}

ON_ANY_VECTORS bool CarryGroup(const CloudMotion& motion, std::size_t count, PointGroup<float>& group) {
    return Carry(motion, count, group);
}
ON_ANY_VECTORS bool CarryGroup(const CloudMotion& motion, std::size_t count, PointGroup<double>& group) {
    return Carry(motion, count, group);
}

// Points of which all three coordinates are of type T, `stride` bytes apart, in the order of the file.
template <class T, bool kSwapped>
struct Floats {
    std::array<char*, 3> At;
    std::array<std::size_t, 3> Stride;

    T Load(std::size_t axis, std::size_t i) const { return LoadAs<T, kSwapped>(At[axis] + i * Stride[axis]); }
    void Store(std::size_t axis, std::size_t i, T value) const {
        StoreAs<T, kSwapped>(value, At[axis] + i * Stride[axis]);
    }
    Floats From(std::size_t i) const {
        return {{At[0] + i * Stride[0], At[1] + i * Stride[1], At[2] + i * Stride[2]}, Stride};
    }
};

// Of 32-bit coordinates alone: the others lose no digits to speak of.
template <class T>
void NoteSizes(CloudTask& task, double in, double out) {
    if constexpr (std::is_same_v<T, float>) {
        task.Facts.LargestIn = std::max(task.Facts.LargestIn, in);
        task.Facts.LargestOut = std::max(task.Facts.LargestOut, out);
    }
}

// One by one, where some of them are no points.
template <class T, bool kSwapped>
void CarryOneByOne(CloudTask& task, const Floats<T, kSwapped>& floats, std::size_t count,
                   std::int64_t first) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t number = first + static_cast<std::int64_t>(i);
        const std::array<double, 3> p = {floats.Load(0, i), floats.Load(1, i), floats.Load(2, i)};
        if (!AreFinite(p)) {
            CountNotFinite(task, number);
            continue;
        }
        const std::array<double, 3> q = task.Motion->Carry(p);
        const std::array<T, 3> kept = {static_cast<T>(q[0]), static_cast<T>(q[1]), static_cast<T>(q[2])};
        if (!AreFinite({kept[0], kept[1], kept[2]})) RefuseTooLarge(task, number);
        for (std::size_t k = 0; k < 3; ++k) {
            NoteSizes<T>(task, std::fabs(p[k]), std::fabs(q[k]));
            floats.Store(k, i, kept[k]);
        }
        ++task.Facts.Points;
    }
}

template <class T, bool kSwapped>
void CarryFloats(CloudTask& task, const Floats<T, kSwapped>& floats, std::size_t count, std::int64_t first) {
    PointGroup<T> group;
    for (std::size_t done = 0; done < count; done += kGroup) {
        const std::size_t here = std::min(kGroup, count - done);
        const Floats<T, kSwapped> from = floats.From(done);
        for (std::size_t i = 0; i < here; ++i)
            for (std::size_t k = 0; k < 3; ++k) group.In[k][i] = from.Load(k, i);
        if (!CarryGroup(*task.Motion, here, group)) {
            CarryOneByOne(task, from, here, first + static_cast<std::int64_t>(done));
            continue;
        }
        for (std::size_t i = 0; i < here; ++i)
            for (std::size_t k = 0; k < 3; ++k) from.Store(k, i, group.Out[k][i]);
        for (std::size_t k = 0; k < 3; ++k) NoteSizes<T>(task, group.LargestIn[k], group.LargestOut[k]);
        task.Facts.Points += static_cast<std::int64_t>(here);
    }
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
    const auto carry = [&]<class T>(T) {
        const auto as = [&]<bool kSwapped>(std::bool_constant<kSwapped>) {
            CarryFloats(task, Floats<T, kSwapped>{places.Point, places.PointStride}, count, first);
        };
        form.Swapped ? as(std::true_type()) : as(std::false_type());
    };
    if (AllAre(form.Point, Scalar::Float)) {
        carry(float());
    } else if (AllAre(form.Point, Scalar::Double)) {
        carry(double());
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
