// What a result leaves open, found anew.
#include "engine/open_truth.h"

#include <algorithm>
#include <cmath>

#include "core/job.h"

using namespace corvinade;

namespace truth {

namespace {

using Columns = std::vector<std::vector<Real>>;

Real Length(const std::vector<Real>& a) {
    Real sum = 0;
    for (const Real x : a) sum += x * x;
    return std::sqrt(sum);
}

// Coordinates by axis, about their middle.
Columns AboutMiddle(const std::vector<reference::Point>& points) {
    Columns columns(3);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Real middle = 0;
        for (const auto& p : points) middle += p[axis] / static_cast<Real>(points.size());
        for (const auto& p : points) columns[axis].push_back(p[axis] - middle);
    }
    return columns;
}

std::vector<reference::Point> Images(const reference::Problem& problem) {
    std::vector<reference::Point> images;
    for (const auto& p : problem.Start) images.push_back(reference::Image(problem.Parameters, p));
    return images;
}

}  // namespace

std::vector<Real> SingularValues(Columns columns) {
    for (int sweep = 0; sweep < 40; ++sweep) {
        bool still = true;
        for (std::size_t a = 0; a < columns.size(); ++a)
            for (std::size_t b = a + 1; b < columns.size(); ++b) {
                Real aa = 0, bb = 0, ab = 0;
                for (std::size_t i = 0; i < columns[a].size(); ++i) {
                    aa += columns[a][i] * columns[a][i];
                    bb += columns[b][i] * columns[b][i];
                    ab += columns[a][i] * columns[b][i];
                }
                if (std::fabs(ab) <= 1e-19L * std::sqrt(aa * bb)) continue;
                still = false;
                const Real turn = std::atan2(2 * ab, aa - bb) / 2, c = std::cos(turn), s = std::sin(turn);
                for (std::size_t i = 0; i < columns[a].size(); ++i) {
                    const Real x = columns[a][i], y = columns[b][i];
                    columns[a][i] = c * x + s * y;
                    columns[b][i] = c * y - s * x;
                }
            }
        if (still) break;
    }
    std::vector<Real> values;
    for (const auto& column : columns) values.push_back(Length(column));
    std::sort(values.begin(), values.end());
    return values;
}

Openness FindOpenness(const reference::Problem& problem) {
    constexpr Real kStep = 1e-6L, kNothing = 1e-9L, kSomething = 1e-7L;
    Openness found;
    const Columns start = AboutMiddle(problem.Start), image = AboutMiddle(Images(problem));
    const Real root = std::sqrt(static_cast<Real>(problem.Start.size()));
    const auto whole = [](const std::vector<Real>& s) { return Length(s); };
    const std::vector<Real> ofStart = SingularValues(start), ofImage = SingularValues(image);
    found.Start = whole(ofStart) / root;
    found.LeastStart = ofStart[0] / root;
    found.Image = whole(ofImage) / root;
    found.LeastImage = ofImage[0] / root;
    found.Residual = Length(reference::Residuals(problem)) / root;

    Real coordinate = 0;
    for (const auto& p : problem.Start)
        for (const Real x : p) coordinate = std::max(coordinate, std::fabs(x));
    // What the rounding of coordinates to 64 bits makes of a column.
    const Real rounding = found.Start > 0 ? 1e-15L * coordinate / found.Start : 0;
    const Real nothing = std::max(kNothing, 100 * rounding),
               something = std::max(kSomething, 1e4L * rounding);
    Columns columns;
    for (const int parameter : problem.Free) {
        if (parameter <= kTraZ) continue;  // floats, so the others move points about their middle
        const auto k = static_cast<std::size_t>(parameter);
        reference::Problem up = problem, down = problem;
        for (auto [side, sign] : {std::pair{&up, 1}, std::pair{&down, -1}}) {
            side->Parameters[k] += static_cast<Real>(sign) * kStep;
            if (parameter == kScaleXYZ)
                for (const int scale : {kScaleX, kScaleY, kScaleZ})
                    side->Parameters[static_cast<std::size_t>(scale)] = side->Parameters[k];
        }
        const Columns above = AboutMiddle(Images(up)), below = AboutMiddle(Images(down));
        std::vector<Real> column;
        for (std::size_t axis = 0; axis < 3; ++axis)
            for (std::size_t i = 0; i < above[axis].size(); ++i)
                column.push_back((above[axis][i] - below[axis][i]) / (2 * kStep));
        const Real size = Length(column), share = found.Start > 0 ? size / (root * found.Start) : 0;
        if (share <= nothing) {
            ++found.Ways;
            continue;
        }
        found.Doubtful = found.Doubtful || share < something;
        for (Real& x : column) x /= size;
        columns.push_back(std::move(column));
    }
    for (const Real value : SingularValues(columns)) {
        if (value <= nothing) ++found.Ways;
        if (value > nothing && value < something) found.Doubtful = true;
    }
    return found;
}

}  // namespace truth
