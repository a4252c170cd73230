// The member `statistics` of a fit's JSON. Lengths are mm, angles rad; what cannot be had is null.
#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/fit_parameters.h"
#include "cli/fit_selection.h"
#include "cli/fit_statistics.h"
#include "cli/json_members.h"
#include "core/units.h"
#include "engine/parameter_kind.h"
#include "engine/transform.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

std::size_t PlaceOf(int i) {
    return static_cast<std::size_t>(i);
}

ordered_json Number(double value) {
    return std::isfinite(value) ? ordered_json(value) : ordered_json(nullptr);
}

// x, y, z of a pair from a column of three a pair.
ordered_json Three(const Column& column, int pair) {
    ordered_json three = ordered_json::array();
    for (int axis = 1; axis <= 3; ++axis) three.push_back(Number(column[PlaceOf(3 * (pair - 1) + axis)]));
    return three;
}

// The parameters that float, by their unknowns' numbers.
std::vector<int> Floating(const FitModel& model) {
    std::vector<int> parameters;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (model.UnknownOf[PlaceOf(k)] != 0) parameters.push_back(k);
    return parameters;
}

ordered_json Parameters(const AdjustmentStatistics& s) {
    ordered_json list = ordered_json::array();
    for (const int k : Floating(s.Model)) {
        const double sigma = s.Sigma(s.Model.UnknownOf[PlaceOf(k)]);
        ordered_json row = {
            {"name", HeldParameterName(k)}, {"unit", InternalUnitOf(KindOf(k))}, {"sigma", Number(sigma)}};
        if (s.APriori) row["sigmaPosterior"] = Number(sigma * s.s0);
        list.push_back(std::move(row));
    }
    return list;
}

template <class Element>
ordered_json Square(const AdjustmentStatistics& s, Element element) {
    ordered_json rows = ordered_json::array();
    for (int i = 1; i <= s.Unknowns; ++i) {
        ordered_json row = ordered_json::array();
        for (int j = 1; j <= s.Unknowns; ++j) row.push_back(Number(element(i, j)));
        rows.push_back(std::move(row));
    }
    return rows;
}

ordered_json GlobalTest(const AdjustmentStatistics& s) {
    if (s.Redundancy == 0) return nullptr;
    return {{"alpha", s.Levels.AlphaGlobal},
            {"statistic", s.Vtpv},
            {"lower", Number(s.ChiSquareLow)},
            {"upper", Number(s.ChiSquareHigh)},
            {"passed", s.Vtpv >= s.ChiSquareLow && s.Vtpv <= s.ChiSquareHigh}};
}

void PutAccuracy(const AdjustmentStatistics& s, const Vec3& start, ordered_json& row) {
    if (!std::isfinite(s.VarianceFactor)) {
        row["covariance_mm2"] = row["sigma_mm"] = row["ellipsoid"] = nullptr;
        return;
    }
    const Mat3 covariance = CovarianceOfTransformed(s, start);
    const Ellipsoid ellipsoid = EllipsoidOf(covariance, s.EllipsoidFactor);
    ordered_json matrix = ordered_json::array(), directions = ordered_json::array(),
                 sigmas = ordered_json::array(), semiAxes = ordered_json::array();
    for (int i = 1; i <= 3; ++i) {
        matrix.push_back({covariance(i, 1), covariance(i, 2), covariance(i, 3)});
        directions.push_back(
            {ellipsoid.Directions(i, 1), ellipsoid.Directions(i, 2), ellipsoid.Directions(i, 3)});
        sigmas.push_back(std::sqrt(std::max(0.0, covariance(i, i))));
        semiAxes.push_back(Number(ellipsoid.SemiAxes(i)));
    }
    row["covariance_mm2"] = std::move(matrix);
    row["sigma_mm"] = std::move(sigmas);
    row["ellipsoid"] = {{"confidence", s.Levels.Confidence},
                        {"semiAxes_mm", std::move(semiAxes)},
                        {"directions", std::move(directions)}};
}

ordered_json PointRow(const AdjustmentStatistics& s, int pair) {
    ordered_json outlier = ordered_json::array(), predicted = ordered_json::array(),
                 mdb = ordered_json::array();
    for (int axis = 1; axis <= 3; ++axis) {
        const std::size_t index = PlaceOf(3 * (pair - 1) + axis);
        const bool used = Used(pair, axis);
        const bool tested = std::isfinite(s.Standardized[index]) &&
                            std::isfinite(used ? s.CriticalValue : s.CriticalPredicted);
        outlier.push_back(tested ? ordered_json(s.IsOutlier(index, used)) : ordered_json(nullptr));
        predicted.push_back(!used);
        mdb.push_back(Number(s.Mdb(index)));
    }
    return {{"name", Job.Start.Name[PlaceOf(pair)]},
            {"redundancy", Three(s.Redundancies, pair)},
            {"standardized", Three(s.Standardized, pair)},
            {"mdb_mm", std::move(mdb)},
            {"outlier", std::move(outlier)},
            {"predicted", std::move(predicted)}};
}

ordered_json AccuracyAt(const FitOptions& options, const AdjustmentStatistics& s) {
    ordered_json list = ordered_json::array();
    for (const std::array<double, 3>& place : options.AccuracyAt) {
        Vec3 start, image;
        for (int axis = 1; axis <= 3; ++axis) start(axis) = place[PlaceOf(axis - 1)] / Units.LengthFactor;
        TransformPoint(start(1), start(2), start(3), image(1), image(2), image(3));
        ordered_json row = {{"start_mm", {start(1), start(2), start(3)}},
                            {"transformed_mm", {image(1), image(2), image(3)}}};
        PutAccuracy(s, start, row);
        list.push_back(std::move(row));
    }
    return list;
}

ordered_json Snooping(const FitStatistics& statistics) {
    ordered_json list = ordered_json::array();
    for (const TakenOut& out : statistics.Snooped)
        list.push_back({{"name", out.Name},
                        {"axis", std::string(1, "wxyz"[out.Axis])},
                        {"standardized", out.Standardized},
                        {"criticalValue", out.CriticalValue}});
    return list;
}

// All but what is written point by point.
ordered_json Head(const FitOptions& options, const FitStatistics& statistics) {
    const AdjustmentStatistics& s = *statistics.Of;
    ordered_json head = {{"observations", s.Observations}, {"unknowns", s.Unknowns}};
    const auto number = [&s](double value) { return s.Singular ? ordered_json(nullptr) : Number(value); };
    head["redundancy"] = s.Singular ? ordered_json(nullptr) : ordered_json(s.Redundancy);
    head["vtpv"] = number(s.Vtpv);
    head["s0"] = number(s.s0);
    head["s0Unit"] = s.APriori ? "" : "mm";
    if (const std::string note = NoteOfStatistics(s); !note.empty()) head["note"] = note;
    if (s.Singular) {
        ordered_json names = ordered_json::array();
        for (const int k : Floating(s.Model))
            if (s.Undetermined[PlaceOf(k)]) names.push_back(HeldParameterName(k));
        head["undetermined"] = std::move(names);
        for (const char* none :
             {"parameters", "covariance", "correlation", "globalTest", "points", "transformed"})
            head[none] = nullptr;
        if (options.Snoop) head["snooping"] = Snooping(statistics);
        return head;
    }
    head["parameters"] = Parameters(s);
    head["covariance"] = std::isfinite(s.VarianceFactor)
                             ? Square(s, [&s](int i, int j) { return s.Covariance(i, j); })
                             : ordered_json(nullptr);
    head["correlation"] = Square(s, [&s](int i, int j) { return s.Correlation(i, j); });
    if (s.APriori) head["globalTest"] = GlobalTest(s);
    head["alpha"] = s.Levels.AlphaSingle;
    head["power"] = s.Levels.Power;
    head["criticalValue"] = Number(s.CriticalValue);
    head["criticalValuePredicted"] = Number(s.CriticalPredicted);
    if (options.Snoop) head["snooping"] = Snooping(statistics);
    if (!options.AccuracyAt.empty()) head["accuracyAt"] = AccuracyAt(options, s);
    return head;
}

}  // namespace

void WriteStatisticsJson(const FitOptions& options, const FitStatistics& statistics, std::ostream& out) {
    if (!statistics.Of) {
        out << "null";
        return;
    }
    const AdjustmentStatistics& s = *statistics.Of;
    out << "{";
    JsonObject object{out, 4};
    const ordered_json head = Head(options, statistics);
    for (const auto& member : head.items()) WriteMember(object, member.key(), member.value());
    if (!s.Singular) {
        WriteList(object, "points", 1, PlaceOf(Job.Pairs()) + 1,
                  [&s](std::size_t i) { return PointRow(s, static_cast<int>(i)); });
        WriteList(object, "transformed", 1, PlaceOf(Job.Start.Count()) + 1, [&s](std::size_t i) {
            ordered_json row = {{"name", Job.Start.Name[i]}};
            PutAccuracy(s, StartPoint(static_cast<int>(i)), row);
            return row;
        });
    }
    out << "\n  }";
}

}  // namespace corvinade::cli
