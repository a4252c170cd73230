// A set of points: a name and three coordinates each, which grow and shrink together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::core {

// One column of a set, element 0 unused. Its elements may be changed, its length is that of the set.
template <class Value>
class PointValues {
public:
    using value_type = Value;
    using iterator = typename std::vector<Value>::iterator;
    using const_iterator = typename std::vector<Value>::const_iterator;

    PointValues(const PointValues&) = default;
    operator const std::vector<Value>&() const { return values_; }

    std::size_t size() const { return values_.size(); }
    Value& operator[](std::size_t i) { return values_[i]; }
    const Value& operator[](std::size_t i) const { return values_[i]; }
    Value& back() { return values_.back(); }
    const Value& back() const { return values_.back(); }
    iterator begin() { return values_.begin(); }
    iterator end() { return values_.end(); }
    const_iterator begin() const { return values_.begin(); }
    const_iterator end() const { return values_.end(); }

    friend bool operator==(const PointValues& a, const PointValues& b) { return a.values_ == b.values_; }
    friend bool operator==(const PointValues& a, const std::vector<Value>& b) { return a.values_ == b; }

private:
    friend class PointSet;
    explicit PointValues(std::vector<Value> values) : values_(std::move(values)) {}
    PointValues& operator=(const PointValues&) = default;
    std::vector<Value> values_;
};

// The four columns as they come from elsewhere, each of its own length.
struct PointArrays {
    std::vector<std::string> Name{""};
    std::vector<TaggedValue> X{{}}, Y{{}};
    std::vector<double> Z{0};
};

// The points 1 to Count(). Every column has an element 0, names reach as far as the points, coordinates as
// far as the names. What stands behind the points and behind the names is no point; it is kept because the
// job file shows it: the search by distances leaves its three seeds there.
class PointSet {
public:
    PointValues<std::string> Name;
    PointValues<TaggedValue> X, Y;  // tagged, as the job file has them; an empty value counts as 0
    PointValues<double> Z;

    PointSet();
    // All points that have a name. Require: every array has an element 0, no coordinate ends before the
    // names.
    explicit PointSet(PointArrays arrays);
    PointSet(const PointSet&) = default;
    PointSet& operator=(const PointSet&) = default;
    PointSet(PointSet&& other) noexcept;  // the other is without points then
    PointSet& operator=(PointSet&& other) noexcept;

    int Count() const { return count_; }
    // So many of the names are points. Require: there are so many.
    void CountOnly(int count);
    void CountAll() { count_ = UpperBound(Name); }
    bool CountsAll() const { return count_ == UpperBound(Name); }

    // Exactly so many points; new ones are without name and coordinates, and nothing stands behind them.
    void Resize(int count);
    // At least so many points.
    void Reach(int count);
    // Behind the last point, in the place of what stands there.
    void Add(std::string name, TaggedValue x, TaggedValue y, double z);
    void Append(PointSet more);
    // The points of another set as far as these names of theirs go, which have an element 0. The room that
    // the coordinates have is used again.
    void Copy(const PointSet& other, std::vector<std::string> names);
    // So many elements of each coordinate behind the last name.
    void SpareCoordinates(int elements);
    // Exchanges all values of a column for others. False, and all as it was, where those do not reach.
    template <class Value>
    bool Exchange(PointValues<Value>& column, std::vector<Value>& values) {
        column.values_.swap(values);
        if (Fits()) return true;
        column.values_.swap(values);
        return false;
    }

    // The coordinates of point i in mm, an empty one as 0.
    Vec3 Point(int i) const {
        const auto k = static_cast<std::size_t>(i);
        return {X[k].value_or(0), Y[k].value_or(0), Z[k]};
    }
    void SetPoint(int i, double x, double y, double z) {
        const auto k = static_cast<std::size_t>(i);
        X[k] = x;
        Y[k] = y;
        Z[k] = z;
    }

private:
    bool Fits() const;
    int count_ = 0;
};

// One of the columns, where it is named by a number.
enum class PointPart : std::uint8_t { Name, X, Y, Z };

// Calls `use` with that column of a PointSet or of PointArrays, and returns what it returns.
template <class Set, class Use>
auto WithColumn(Set& set, PointPart part, Use use) {
    switch (part) {
        case PointPart::Name:
            return use(set.Name);
        case PointPart::X:
            return use(set.X);
        case PointPart::Y:
            return use(set.Y);
        case PointPart::Z:
            break;
    }
    return use(set.Z);
}

}  // namespace corvinade::core
