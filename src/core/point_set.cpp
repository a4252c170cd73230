// Points that grow together.
#include "core/point_set.h"

#include <algorithm>
#include <iterator>

#include "fit/require.h"

namespace corvinade::core {

PointSet::PointSet() : PointSet(PointArrays{}) {}

PointSet::PointSet(PointArrays arrays)
    : Name(std::move(arrays.Name)), X(std::move(arrays.X)), Y(std::move(arrays.Y)), Z(std::move(arrays.Z)) {
    Require(Fits());
    CountAll();
}

PointSet::PointSet(PointSet&& other) noexcept : PointSet() {
    *this = std::move(other);
}

PointSet& PointSet::operator=(PointSet&& other) noexcept {
    if (this == &other) return *this;
    PointArrays none;
    Name.values_ = std::exchange(other.Name.values_, std::move(none.Name));
    X.values_ = std::exchange(other.X.values_, std::move(none.X));
    Y.values_ = std::exchange(other.Y.values_, std::move(none.Y));
    Z.values_ = std::exchange(other.Z.values_, std::move(none.Z));
    count_ = std::exchange(other.count_, 0);
    return *this;
}

bool PointSet::Fits() const {
    const std::size_t names = Name.size();
    return names > static_cast<std::size_t>(count_) && X.size() >= names && Y.size() >= names &&
           Z.size() >= names;
}

void PointSet::CountOnly(int count) {
    Require(count >= 0 && count <= UpperBound(Name));
    count_ = count;
}

void PointSet::Resize(int count) {
    Require(count >= 0);
    const std::size_t size = static_cast<std::size_t>(count) + 1;
    Name.values_.resize(size);
    X.values_.resize(size);
    Y.values_.resize(size);
    Z.values_.resize(size);
    count_ = count;
}

void PointSet::Reach(int count) {
    const auto grow = [size = static_cast<std::size_t>(std::max(count, 0)) + 1](auto& values) {
        if (values.size() < size) values.resize(size);
    };
    grow(Name.values_);
    grow(X.values_);
    grow(Y.values_);
    grow(Z.values_);
    count_ = std::max(count_, count);
}

void PointSet::Add(std::string name, TaggedValue x, TaggedValue y, double z) {
    if (!CountsAll() || std::max({X.size(), Y.size(), Z.size()}) > Name.size()) Resize(count_);
    Name.values_.push_back(std::move(name));
    X.values_.push_back(x);
    Y.values_.push_back(y);
    Z.values_.push_back(z);
    ++count_;
}

void PointSet::Append(PointSet more) {
    Resize(count_);
    more.Resize(more.count_);
    const auto append = [](auto& all, auto& added) {
        all.insert(all.end(), std::make_move_iterator(added.begin() + 1),
                   std::make_move_iterator(added.end()));
    };
    append(Name.values_, more.Name.values_);
    append(X.values_, more.X.values_);
    append(Y.values_, more.Y.values_);
    append(Z.values_, more.Z.values_);
    count_ += more.count_;
}

void PointSet::Copy(const PointSet& other, std::vector<std::string> names) {
    Require(!names.empty() && names.size() <= other.Name.size() && this != &other);
    const auto copy = [size = static_cast<std::ptrdiff_t>(names.size())](auto& values, const auto& others) {
        values.assign(others.begin(), others.begin() + size);
    };
    copy(X.values_, other.X.values_);
    copy(Y.values_, other.Y.values_);
    copy(Z.values_, other.Z.values_);
    Name.values_.swap(names);
    CountAll();
}

void PointSet::SpareCoordinates(int elements) {
    Require(elements >= 0);
    const std::size_t size = Name.size() + static_cast<std::size_t>(elements);
    X.values_.resize(size);
    Y.values_.resize(size);
    Z.values_.resize(size);
}

}  // namespace corvinade::core
