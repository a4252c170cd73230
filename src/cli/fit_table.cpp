// The result of a fit as a table for people.
#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>

#include "cli/fit_output.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"

namespace {

struct Style {
    bool Colour;
    std::string Heading(const std::string& text) const {
        return Colour ? "\x1b[1m" + text + "\x1b[0m" : text;
    }
    std::string Alarm(const std::string& text) const { return Colour ? "\x1b[31m" + text + "\x1b[0m" : text; }
    std::string Quiet(const std::string& text) const { return Colour ? "\x1b[2m" + text + "\x1b[0m" : text; }
};

std::string Left(const std::string& text, int width) {
    return text + std::string(static_cast<std::size_t>(std::max(0, width - CharacterCount(text))), ' ');
}
std::string Right(const std::string& text, int width) {
    return std::string(static_cast<std::size_t>(std::max(0, width - CharacterCount(text))), ' ') + text;
}

std::string Length(double value_mm) {
    return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
}

enum class Kind { Length, Angle, Scale };
struct Row {
    int Parameter;
    const char* Name;
    Kind Is;
};
constexpr std::array<Row, 13> kRows = {{{kTraX, "Tra x", Kind::Length},
                                        {kTraY, "Tra y", Kind::Length},
                                        {kTraZ, "Tra z", Kind::Length},
                                        {kRotX, "Rot x", Kind::Angle},
                                        {kRotY, "Rot y", Kind::Angle},
                                        {kRotZ, "Rot z", Kind::Angle},
                                        {kScaleXYZ, "Scale xyz", Kind::Scale},
                                        {kScaleX, "Scale x", Kind::Scale},
                                        {kScaleY, "Scale y", Kind::Scale},
                                        {kScaleZ, "Scale z", Kind::Scale},
                                        {kAngleXY, "xy", Kind::Angle},
                                        {kAzimuth, "Azimuth", Kind::Angle},
                                        {kAngleZtoXY, "z to xy", Kind::Angle}}};

std::string Shown(Kind kind, double value) {
    if (kind == Kind::Length) return Length(value);
    return kind == Kind::Angle ? WinkelFormat(value) : FormatNumber(value, Units.FmtScale);
}

std::string UnitOf(Kind kind) {
    if (kind == Kind::Length) return Job.LengthUnitName;
    return kind == Kind::Angle ? Job.AngleUnitName : "";
}

void WriteHead(const FitOptions& options, const Style& style, std::ostream& out) {
    const auto& c = Calculation;
    out << style.Heading("Corvinade " + ProgramVersion()) << "  least-squares 3D transformation\n\n";
    out << Left("start", 14) << options.Start << "  (" << Job.nMCS << " points)\n";
    out << Left("target", 14) << options.Target << "  (" << Job.nOCS << " points)\n";
    out << Left("pairs", 14) << Job.nIdent << " by " << options.Match;
    if (Job.nMCSOnly > 0) out << ", " << Job.nMCSOnly << " only in start";
    if (Job.nOCSOnly > 0) out << ", " << Job.nOCSOnly << " only in target";
    out << "\n"
        << Left("observations", 14) << ObservationsInUse() << " in use, " << c.nFloat << " unknowns\n";
    out << Left("iterations", 14) << Adjustment.Iterations;
    if (!c.Converged) out << "  " << style.Alarm("convergence not reached");
    out << "\n";
}

void WriteParameters(const Style& style, std::ostream& out) {
    out << "\n"
        << style.Heading(Left("Parameter", 12) + Right("value", 18) + Right("sigma", 14) +
                         Right("significance", 14))
        << "  unit\n";
    for (const Row& row : kRows) {
        const std::string& state = Job.ParamText[static_cast<std::size_t>(row.Parameter)];
        if (state == kNotUsed) continue;
        const auto index = static_cast<std::size_t>(row.Parameter);
        const bool isFloat = state == kFloat;
        out << Left(row.Name, 12) << Right(Shown(row.Is, ParameterValue(Job, row.Parameter)), 18)
            << Right(isFloat ? Shown(row.Is, Calculation.Sigma[index]) : "-", 14)
            << Right(isFloat ? FormatNumber(Calculation.Significance[index], "0.0") : "held", 14) << "  "
            << style.Quiet(UnitOf(row.Is)) << "\n";
    }
}

void WriteQuality(const Style& style, std::ostream& out) {
    const auto& c = Calculation;
    out << "\n"
        << style.Heading(Left("Quality", 12) + Right("x", 12) + Right("y", 12) + Right("z", 12) +
                         Right("xyz", 12))
        << "  " << style.Quiet(Job.LengthUnitName) << "\n";
    out << Left("mean error", 12) << Right(Length(c.sx), 12) << Right(Length(c.sy), 12)
        << Right(Length(c.sz), 12) << Right(Length(c.SigmaXYZ), 12) << "\n";
    out << Left("s0", 12) << Right(Length(c.s0), 12) << "\n";
}

void WriteDeviations(const Style& style, std::ostream& out) {
    const std::vector<FitPoint> points = FitPoints();
    int nameWidth = 12;
    for (const FitPoint& point : points) nameWidth = std::max(nameWidth, CharacterCount(point.Name) + 2);
    const auto largest =
        std::max_element(points.begin(), points.end(),
                         [](const FitPoint& a, const FitPoint& b) { return a.Deviation3D < b.Deviation3D; });
    out << "\n"
        << style.Heading(Left("Deviation", nameWidth) + Right("dx", 12) + Right("dy", 12) + Right("dz", 12) +
                         Right("3D", 12))
        << "  " << style.Quiet(Job.LengthUnitName + ", transformed start minus target") << "\n";
    bool leftOut = false;
    for (auto point = points.begin(); point != points.end(); ++point) {
        std::string line = Left(point->Name, nameWidth);
        for (int axis = 0; axis < 3; ++axis) {
            // A coordinate that takes no part stands in brackets.
            const std::string value = Length(point->Deviation[axis]);
            line += point->Used[axis] ? Right(value, 12) : Right("(" + value + ")", 12);
            leftOut |= !point->Used[axis];
        }
        line += Right(Length(point->Deviation3D), 12);
        out << (point == largest ? style.Alarm(line + "  <- largest") : line) << "\n";
    }
    if (leftOut) out << style.Quiet("(in brackets: not used in the fit)") << "\n";
}

}  // namespace

void WriteFitTable(const FitOptions& options, std::ostream& out, bool colour) {
    const Style style{colour};
    WriteHead(options, style, out);
    WriteParameters(style, out);
    WriteQuality(style, out);
    WriteDeviations(style, out);
}

void WriteFitCsv(const FitOptions&, std::ostream& out) {
    // Names may hold the delimiter or quotes, so they are quoted where needed, as spreadsheets read it.
    const auto quoted = [](const std::string& text) {
        if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
        std::string result = "\"";
        for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
        return result + "\"";
    };
    const auto number = [](double value_mm) { return PlainText(value_mm * Units.LengthFactor); };
    out << "name;start_x;start_y;start_z;target_x;target_y;target_z;transformed_x;transformed_y;transformed_z;"
           "dx;dy;dz;d3;use_x;use_y;use_z\r\n";
    for (const FitPoint& point : FitPoints()) {
        out << quoted(point.Name);
        for (const auto* triple : {point.Start, point.Target, point.Transformed, point.Deviation})
            for (int axis = 0; axis < 3; ++axis) out << ';' << number(triple[axis]);
        out << ';' << number(point.Deviation3D);
        for (const bool used : point.Used) out << ';' << (used ? 1 : 0);
        out << "\r\n";
    }
}
