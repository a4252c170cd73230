// What the open job holds, for people, as JSON, and as CSV.
#include "cli/job_info.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/csv.h"
#include "cli/fit_parameters.h"
#include "cli/fit_selection.h"
#include "cli/fit_style.h"
#include "cli/record_json.h"
#include "cli/text_columns.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/job_notes.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "core/records.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/field_number.h"
#include "engine/norm_table.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Counted up when a member goes or changes its meaning; new members leave it.
constexpr int kSchemaVersion = 1;

// A list of names in a table goes no further than this.
constexpr std::size_t kMostNames = 12;

// Jobs of before have no place for a tool vector that was fitted, and for a held one its text alone.
bool IsNotKept(int parameter) {
    return parameter >= kRvecX && parameter <= kRvecZ &&
           Job.ParamText[static_cast<std::size_t>(parameter)] == kFloat && Job.Rvec_x == 0 &&
           Job.Rvec_y == 0 && Job.Rvec_z == 0;
}

void TakeHeldToolVector() {
    for (int k = kRvecX; k <= kRvecZ; ++k) {
        const std::string& text = Job.ParamText[static_cast<std::size_t>(k)];
        if (IsHeldValue(text) && IsParameterNumber(k, text))
            ParameterValue(Job, k) = ParameterFromText(k, text);
    }
}

ordered_json ParameterOfJob(int k) {
    ordered_json parameter = ParameterAsJson(k);
    if (IsNotKept(k)) parameter["value"] = parameter["shown"] = nullptr;
    return parameter;
}

// What the target set came from, as far as a job keeps it.
std::string TargetKind() {
    if (IsTrue(Job.IsParaboloid))
        return "a paraboloid shape of " + std::to_string(Job.ParaboloidShape.Rows) + " rows";
    const std::string poses = " with " + std::to_string(Job.RobotABC.Rows) + " poses";
    if (IsTrue(Job.IsKuka)) return "a Kuka robot file" + poses;
    if (IsTrue(Job.IsQuaternion)) return "coordinates and quaternions" + poses;
    return "";
}

// The coordinates of a pair that take no part: "", or letters of "xyz".
std::string LeftOut(int pair) {
    std::string letters;
    for (int axis = 1; axis <= 3; ++axis)
        if (!Used(pair, axis)) letters += "wxyz"[axis];
    return letters;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < kMostNames; ++i)
        text.append(i == 0 ? "" : ", ").append(ForTable(names[i], kLongestName));
    if (names.size() > kMostNames) text += " and " + std::to_string(names.size() - kMostNames) + " more";
    return text;
}

std::vector<std::string> SeedNames() {
    std::vector<std::string> names;
    for (std::size_t i = 1; i < Job.SeedName.size(); ++i)
        if (!Job.SeedName[i].empty()) names.push_back(Job.SeedName[i]);
    return names;
}

std::string Digits(int digits) {
    return " (" + std::to_string(digits) + (digits == 1 ? " decimal)" : " decimals)");
}

void WritePoints(std::ostream& out) {
    out << HeadLabel("points") << Job.Start.Count() << " start, " << Job.Target.Count() << " target, "
        << Job.Pairs() << " identical";
    if (Job.StartOnly() > 0) out << ", " << Job.StartOnly() << " only in start";
    if (Job.TargetOnly() > 0) out << ", " << Job.TargetOnly() << " only in target";
    out << "\n";
    int used = 0;
    std::vector<std::string> leftOut;
    for (int pair = 1; pair <= Job.Pairs(); ++pair) {
        const std::string letters = LeftOut(pair);
        used += 3 - static_cast<int>(letters.size());
        if (letters.empty()) continue;
        const std::string& name = Job.Start.Name[static_cast<std::size_t>(pair)];
        leftOut.push_back(letters.size() == 3 ? name : name + ":" + letters);
    }
    out << HeadLabel("in use") << used << " of " << 3 * Job.Pairs() << " coordinates\n";
    if (!leftOut.empty()) out << HeadLabel("left out") << Joined(leftOut) << "\n";
}

void WriteParameters(const Style& style, std::ostream& out) {
    if (Job.ParamText[kTraX].empty()) {
        out << "\n" << style.Quiet("(no parameters have been chosen yet)") << "\n";
        return;
    }
    const auto cells = [](const ShownParameter& p) -> std::vector<std::string> {
        return {p.Name, StateOfParameter(p.Number), IsNotKept(p.Number) ? "-" : p.Value};
    };
    const std::vector<ShownParameter> parameters = ShownParameters();
    TextColumns columns{{12, 8, 16}};
    for (const ShownParameter& p : parameters) columns.MakeRoom(cells(p));
    out << "\n" << style.Heading(columns.Line({"Parameter", "state", "value"})) << "  unit\n";
    for (const ShownParameter& p : parameters)
        out << columns.Line(cells(p)) << "  " << style.Quiet(p.Unit) << "\n";
    if (std::any_of(parameters.begin(), parameters.end(),
                    [](const ShownParameter& p) { return IsNotKept(p.Number); }))
        out << style.Quiet(
                   "(this job does not keep the tool vector that was fitted; fit --job fits it again)")
            << "\n";
}

// The sigmas of the two files, whichever of them is fitted to the other.
MeasurementSigmas SigmasOfFiles() {
    const MeasurementSigmas sigmas = SigmasOf(Job);
    return IsTrue(Job.DirectionMCStoOCS) ? sigmas : Swapped(sigmas);
}

ordered_json SigmasAsJson() {
    const MeasurementSigmas sigmas = SigmasOfFiles();
    if (!sigmas.Any()) return nullptr;
    const auto side = [](const std::optional<SideAccuracy>& of, const SharedAccuracies& ofEach) {
        if (ofEach == nullptr) return of ? ordered_json(*of) : ordered_json(nullptr);
        ordered_json points = ordered_json::array();
        for (std::size_t i = 0; i < ofEach->Count(); ++i)
            points.push_back({ofEach->Of[0][i], ofEach->Of[1][i], ofEach->Of[2][i]});
        return points;
    };
    return {{"start_mm", side(sigmas.Start, sigmas.StartOfEach)},
            {"target_mm", side(sigmas.Target, sigmas.TargetOfEach)}};
}

// What the result is marked with, in words of the table.
std::vector<std::string> MarksOfResult() {
    std::vector<std::string> marks;
    if (IsTrue(Job.Unconverged)) marks.emplace_back("convergence not reached");
    if (const std::string open = NamesMarkedOpen(); !open.empty())
        marks.push_back("leaves " + open + " open");
    if (IsTrue(Job.Collapsed)) marks.emplace_back("a scale has collapsed");
    return marks;
}

// Null as long as there is no result.
ordered_json OfResult(ordered_json mark) {
    return Job.ParamText[kTraX].empty() ? ordered_json(nullptr) : std::move(mark);
}

ordered_json Summary(const JobFileFacts& file) {
    int used = 0;
    for (int pair = 1; pair <= Job.Pairs(); ++pair) used += 3 - static_cast<int>(LeftOut(pair).size());
    TakeHeldToolVector();
    ordered_json parameters = ordered_json::array();
    for (int k = 1; k < kParameterEnd; ++k) parameters.push_back(ParameterOfJob(k));
    return {{"schema", "corvinade-job"},
            {"schemaVersion", kSchemaVersion},
            {"program", ProgramAsJson()},
            {"file", {{"path", file.Path}, {"version", file.Version}, {"bytes", file.Bytes}}},
            {"systems",
             {{"start", {{"name", Job.NameMCS}, {"path", Job.PathMCS}}},
              {"target", {{"name", Job.NameOCS}, {"path", Job.PathOCS}}}}},
            {"units",
             {{"length", Job.LengthUnitName},
              {"lengthDigits", Job.LengthDigits},
              {"angle", Job.AngleUnitName},
              {"angleDigits", Job.AngleDigits}}},
            {"counts",
             {{"start", Job.Start.Count()},
              {"target", Job.Target.Count()},
              {"identical", Job.Pairs()},
              {"startOnly", Job.StartOnly()},
              {"targetOnly", Job.TargetOnly()},
              {"coordinatesInUse", used}}},
            {"direction", IsTrue(Job.DirectionMCStoOCS) ? "mcs-ocs" : "ocs-mcs"},
            {"norm", NormOfJob().Label},
            {"sigmas", SigmasAsJson()},
            {"seedPoints", SeedNames()},
            {"targetKind", TargetKind()},
            {"parametersChosen", !Job.ParamText[kTraX].empty()},
            {"converged", OfResult(!IsTrue(Job.Unconverged))},
            {"openParameters", OfResult(NamesOfOpen())},
            {"collapsedScale", OfResult(IsTrue(Job.Collapsed))},
            {"parameters", std::move(parameters)},
            {"savedViews", file.Views},
            {"notes", NotesToJson(Notes.List)}};
}

}  // namespace

void WriteJobTable(const JobFileFacts& file, std::ostream& out, bool colour) {
    const Style style{colour};
    out << style.Heading("Corvinade job") << "  " << ForTable(file.Path, kLongestPath) << "\n\n";
    out << HeadLabel("file") << "version " << Printable(file.Version) << ", " << file.Bytes << " bytes\n";
    out << HeadLabel("start") << ForTable(Job.NameMCS, kLongestName) << "  "
        << style.Quiet(ForTable(Job.PathMCS, kLongestPath)) << "\n";
    out << HeadLabel("target") << ForTable(Job.NameOCS, kLongestName) << "  "
        << style.Quiet(ForTable(Job.PathOCS, kLongestPath)) << "\n";
    if (!TargetKind().empty()) out << HeadLabel("target kind") << TargetKind() << "\n";
    WritePoints(out);
    out << HeadLabel("units") << Printable(Job.LengthUnitName) << Digits(Job.LengthDigits) << ", "
        << Printable(Job.AngleUnitName) << Digits(Job.AngleDigits) << "\n";
    out << HeadLabel("fit") << NormOfJob().Label << ", "
        << (IsTrue(Job.DirectionMCStoOCS) ? "MCS => OCS" : "OCS => MCS") << "\n";
    if (const MeasurementSigmas sigmas = SigmasOfFiles(); sigmas.Any())
        out << HeadLabel("sigmas") << "start " << SigmasInWords(sigmas.Start, sigmas.StartOfEach)
            << "; target " << SigmasInWords(sigmas.Target, sigmas.TargetOfEach) << "  "
            << style.Quiet(Job.LengthUnitName) << "\n";
    for (const std::string& mark : MarksOfResult()) out << HeadLabel("result") << style.Alarm(mark) << "\n";
    if (!SeedNames().empty()) out << HeadLabel("seed points") << Joined(SeedNames()) << "\n";
    if (!file.Views.empty())
        out << HeadLabel("saved views") << file.Views.size() << ": " << Joined(file.Views) << "\n";
    TakeHeldToolVector();
    WriteParameters(style, out);
}

void WriteJobJson(const JobFileFacts& file, bool records, std::ostream& out) {
    ordered_json root = Summary(file);
    if (records) {
        ordered_json& all = root["records"];
        for (const std::span<const RecordEntry> table : AllRecords())
            for (const RecordEntry& record : table)
                if (record.Stored == Storage::JobFile) all[record.Name] = RecordToJson(record);
    }
    out << root.dump(records ? 1 : 2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

void WriteJobCsv(std::ostream& out) {
    const std::string open = NamesMarkedOpen();
    out << "kind;name;start_x;start_y;start_z;target_x;target_y;target_z;transformed_x;transformed_y;"
           "transformed_z;dx;dy;dz;use_x;use_y;use_z"
        << UnconvergedHeading() << OpenHeading(open) << CollapsedHeading() << "\r\n";
    const int ends[] = {Job.Pairs(), Job.Start.Count(), Job.Pairs() + Job.TargetOnly()};
    const char* const kinds[] = {"pair", "start", "target"};
    for (int kind = 0; kind < 3; ++kind)
        for (int i = kind == 0 ? 1 : Job.Pairs() + 1; i <= ends[kind]; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const bool start = kind != 2, target = kind != 1;
            out << kinds[kind] << ';' << CsvText(start ? Job.Start.Name[k] : Job.Target.Name[k]);
            const Vec3 from = start ? StartPoint(i) : Vec3();
            const Vec3 to = target ? TargetPoint(i) : Vec3();
            const Vec3 moved = start ? TransformedPoint(i) : Vec3();
            for (const auto& [point, there] : {std::pair{from, start}, {to, target}, {moved, start}})
                for (int axis = 1; axis <= 3; ++axis) out << ';' << (there ? PlainText(point(axis)) : "");
            for (int axis = 1; axis <= 3; ++axis)
                out << ';' << (start && target ? PlainText(moved(axis) - to(axis)) : "");
            for (int axis = 1; axis <= 3; ++axis)
                out << ';' << (start && target ? (Used(i, axis) ? "1" : "0") : "");
            out << UnconvergedCell() << OpenCell(open) << CollapsedCell() << "\r\n";
        }
}

}  // namespace corvinade::cli
