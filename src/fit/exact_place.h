// A place on the way to an exact norm's optimum: the job's parameters, and the residuals made linear there.
#pragma once

#include <functional>
#include <vector>

#include "fit/linear_optimum.h"
#include "fit/linear_rows.h"
#include "fit/norm_run.h"

namespace corvinade::fit {

// What the unknowns of a place stand for, besides the translations. Angles that all float are no unknowns of
// their own, for there are places where two of them do the same (Rot y at a right angle, an azimuth without
// lean) and no linearisation tells the way on.
enum class PlaceUnknowns {
    Parameters,  // the floating parameters themselves
    Turns,       // three turns in place of the rotations
    Elements     // the nine elements of R K S, where rotations, scales and angles of the frame all float
};

struct ExactPlace {
    FitRun& Run;  // whose parameters are the place
    const GatheredPoints& Points;
    const FitModel& Model;
    PlaceUnknowns Kind;
    Mat3 Along;          // directions of the start points, one a column, that turns and elements go by
    Linearisation Here;  // by the place's unknowns, numbered as the parameters that they stand for
    LinearRows Rows;     // orthonormal columns, those of y
    std::vector<std::vector<double>> T;
    bool AllTold = true;  // the points tell all unknowns apart

    ExactPlace(FitRun& run, const GatheredPoints& points, const FitModel& model);

    // At the present parameters.
    void Linearise();

    // Goes by y, mm, and linearises there. The image of the points' centre moves as y says and by nothing
    // else, where its translations float: a turn far from the origin would carry it away by its square.
    void Step(const std::vector<double>& y);

    // How the sum of the rows, each times its weight, curves in y: how fast its gradient turns.
    //   weights  one a row
    //   Returns columns by columns, row by row.
    std::vector<double> Curvature(const std::vector<double>& weights) const;

    // Do the points tell the parameters apart, whatever the directions that the unknowns go by? False about
    // a line, for instance, which leaves the turn about it open.
    bool PointsTellAll() const;

private:
    std::array<Vec3, 3> Axes() const;  // that the turns are about
    Linearisation LineariseAbout(const std::array<Vec3, 3>& axes) const;
    void MoveInner(const Column& x) const;

    std::array<bool, 3> spreads_{};  // the points are apart along this direction
    std::array<bool, 3> turns_{};    // or across it
    std::array<Vec3, 3> axes_;
};

// The sum of the rows in use, each times its weight: A'w. One entry a column.
std::vector<double> WeightedSum(const LinearRows& rows, const std::vector<double>& weights);

}  // namespace corvinade::fit
