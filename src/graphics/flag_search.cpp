// A search for the places of a few flags: each in turn goes where it costs least, in several rounds.
#include "graphics/flag_search.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "core/settings.h"
#include "graphics/flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

// Pixels of leader line that one covers or crosses for.
constexpr double kForPoint = 110, kForFlagged = 500, kForCrossing = 150, kForFlag = 60;
constexpr int kRounds = 6;

struct Spot {
    double X = 0, Y = 0;
};
struct Box {
    double Left = 0, Top = 0, Right = 0, Bottom = 0;
    Spot Middle() const { return {(Left + Right) / 2, (Top + Bottom) / 2}; }
};

struct PlacedFlag {
    Spot Point;
    double Width = 0, Height = 0;
    Box At;
    bool Placed = false;
};

bool Overlap(const Box& a, const Box& b) {
    constexpr double kBetween = 6;
    return a.Left < b.Right + kBetween && b.Left < a.Right + kBetween && a.Top < b.Bottom + kBetween &&
           b.Top < a.Bottom + kBetween;
}

bool Holds(const Box& box, const Spot& spot) {
    constexpr double kRound = 4;  // a point is no dot
    return spot.X > box.Left - kRound && spot.X < box.Right + kRound && spot.Y > box.Top - kRound &&
           spot.Y < box.Bottom + kRound;
}

double Turn(const Spot& a, const Spot& b, const Spot& c) {
    return (b.X - a.X) * (c.Y - a.Y) - (b.Y - a.Y) * (c.X - a.X);
}

bool Cross(const Spot& a, const Spot& b, const Spot& c, const Spot& d) {
    return Turn(a, b, c) * Turn(a, b, d) < 0 && Turn(c, d, a) * Turn(c, d, b) < 0;
}

bool Crosses(const Spot& a, const Spot& b, const Box& box) {
    const Spot leftTop{box.Left, box.Top}, rightTop{box.Right, box.Top}, leftLow{box.Left, box.Bottom},
        rightLow{box.Right, box.Bottom};
    return Cross(a, b, leftTop, rightLow) || Cross(a, b, rightTop, leftLow);
}

// How many points of the picture lie in a box: sums over the cells of a fine grid.
class PointMap {
public:
    PointMap(int width, int height) : columns_(width / kCell + 2), rows_(height / kCell + 2) {
        sums_.assign(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_), 0);
        for (int i = 1; i <= Scene.Rows; ++i) {
            const auto row = static_cast<std::size_t>(i);
            const float x = Scene.PixelX[row], y = Scene.PixelY[row];
            if (!IsSeen(i) ||
                !(x >= 0 && y >= 0 && x < static_cast<float>(width) && y < static_cast<float>(height)))
                continue;
            ++Sum(static_cast<int>(x) / kCell + 1, static_cast<int>(y) / kCell + 1);
        }
        for (int r = 1; r < rows_; ++r)
            for (int c = 1; c < columns_; ++c) Sum(c, r) += Sum(c - 1, r) + Sum(c, r - 1) - Sum(c - 1, r - 1);
    }
    int In(const Box& box) {
        const auto cell = [](double at, int most) {
            return std::clamp(static_cast<int>(at) / kCell, 0, most - 1);
        };
        const int left = cell(box.Left, columns_), right = cell(box.Right + kCell, columns_);
        const int top = cell(box.Top, rows_), bottom = cell(box.Bottom + kCell, rows_);
        return Sum(right, bottom) - Sum(left, bottom) - Sum(right, top) + Sum(left, top);
    }

private:
    static constexpr int kCell = 4;
    int columns_, rows_;
    std::vector<int> sums_;
    int& Sum(int column, int row) {
        return sums_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                     static_cast<std::size_t>(column)];
    }
};

double CostOf(const std::vector<PlacedFlag>& flags, std::size_t one, const Box& at, PointMap& points) {
    const PlacedFlag& flag = flags[one];
    const Spot middle = at.Middle();
    double cost = std::hypot(middle.X - flag.Point.X, middle.Y - flag.Point.Y) + kForPoint * points.In(at);
    for (std::size_t i = 0; i < flags.size(); ++i) {
        const PlacedFlag& other = flags[i];
        if (Holds(at, other.Point)) cost += kForFlagged;
        if (i == one || !other.Placed) continue;
        if (Overlap(at, other.At)) return std::numeric_limits<double>::infinity();
        const Spot otherMiddle = other.At.Middle();
        if (Cross(flag.Point, middle, other.Point, otherMiddle)) cost += kForCrossing;
        if (Crosses(flag.Point, middle, other.At)) cost += kForFlag;
        if (Crosses(other.Point, otherMiddle, at)) cost += kForFlag;
    }
    return cost;
}

// Moves one flag to the place of least cost; false where there is none at all.
bool PlaceBest(std::vector<PlacedFlag>& flags, std::size_t one, PointMap& points, int W, int H,
               bool colourBar) {
    constexpr int kScalesWide = 470, kSteps = 80;  // pixels
    PlacedFlag& flag = flags[one];
    const double right = W - (colourBar ? kColourBarRoom : kFlagEdge) - flag.Width;
    const double lower = H - kFlagEdge - flag.Height;
    const double step = std::max(12.0, static_cast<double>(std::max(W, H)) / kSteps);
    double least = std::numeric_limits<double>::infinity();
    flag.Placed = false;
    for (double top = kFlagEdge; top <= lower; top += step / 2)
        for (double left = kFlagEdge; left <= right; left += step) {
            if (left < kScalesWide && top + flag.Height > H - kScalesRoom) continue;
            const Box at{left, top, left + flag.Width, top + flag.Height};
            const double cost = CostOf(flags, one, at, points);
            if (!(cost < least)) continue;
            least = cost;
            flag.At = at;
            flag.Placed = true;
        }
    return flag.Placed;
}

// Two flags that would stand better in each other's place change over.
void ChangeOver(std::vector<PlacedFlag>& flags, PointMap& points) {
    const auto moved = [](const PlacedFlag& flag, const Box& to) {
        return Box{to.Left, to.Top, to.Left + flag.Width, to.Top + flag.Height};
    };
    for (std::size_t i = 0; i < flags.size(); ++i)
        for (std::size_t k = 0; k < i; ++k) {
            const auto cost = [&] {
                return CostOf(flags, i, flags[i].At, points) + CostOf(flags, k, flags[k].At, points);
            };
            const double before = cost();
            const Box atI = flags[i].At, atK = flags[k].At;
            flags[i].At = moved(flags[i], atK);
            flags[k].At = moved(flags[k], atI);
            if (cost() < before) continue;
            flags[i].At = atI;
            flags[k].At = atK;
        }
}

}  // namespace

bool PlaceBesidePoints(ScreenWindow& window, const std::vector<int>& rows) {
    if (rows.size() > static_cast<std::size_t>(kMostSearchedFlags)) return false;
    const int W = PictureWidth(window), H = PictureHeight(window) - window.Screen.StatusBarHeight;
    std::vector<PlacedFlag> flags;
    for (const int row : rows) {
        const FlagLabel& label = window.FlagLabels[static_cast<std::size_t>(FlagOfRow(window, row))];
        const auto at = static_cast<std::size_t>(row);
        // A point outside or without a place pulls its flag to the edge next to it.
        const auto inside = [](double pixel, int size) {
            return std::isfinite(pixel) ? std::clamp(pixel, 0.0, static_cast<double>(size)) : 0.0;
        };
        flags.push_back({{inside(Scene.PixelX[at], W), inside(Scene.PixelY[at], H)},
                         std::ceil(static_cast<double>(label.Width)),
                         std::ceil(static_cast<double>(label.Height)),
                         {},
                         false});
    }
    PointMap points(W, H);
    for (int round = 0; round < kRounds; ++round) {
        for (std::size_t one = 0; one < flags.size(); ++one)
            if (!PlaceBest(flags, one, points, W, H, LookOf(window).ColorBar)) return false;
        ChangeOver(flags, points);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        FlagRecord& record = FlagOf(window, FlagOfRow(window, rows[i]));
        record.Left = ToFlagPlace(flags[i].At.Left);
        record.Top = ToFlagPlace(flags[i].At.Top);
    }
    return true;
}

}  // namespace corvinade::graphics
