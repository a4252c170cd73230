// A result as `fit --json` has printed it, read with nothing taken for granted.
#include "cli/result_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "analysis/export_forms.h"
#include "cli/fit_selection.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

// What is read, and where it stands: "transformation.matrix[2][3]".
struct Member {
    const json& Value;
    std::string Place;
    const std::string& Path;

    [[noreturn]] void Fail(const std::string& what) const {
        throw PlatformError{"Cannot read \"" + Path + "\": " + (Place.empty() ? "its content" : Place) + " " +
                            what};
    }
    Member operator[](const char* name) const {
        if (!Value.is_object()) Fail("is no object");
        const auto found = Value.find(name);
        const std::string place = (Place.empty() ? "" : Place + ".") + name;
        if (found == Value.end()) Member{Value, "member " + place, Path}.Fail("is missing");
        return {*found, place, Path};
    }
    bool Has(const char* name) const { return Value.is_object() && Value.contains(name); }
    Member At(std::size_t i) const { return {Value[i], Place + "[" + std::to_string(i) + "]", Path}; }
    std::size_t Size() const {
        if (!Value.is_array()) Fail("is no list");
        return Value.size();
    }
    double Number() const {
        if (!Value.is_number() || !std::isfinite(Value.get<double>())) Fail("is no number");
        return Value.get<double>();
    }
    std::string Text() const {
        if (!Value.is_string()) Fail("is no text");
        return Value.get<std::string>();
    }
    bool Flag() const {
        if (!Value.is_boolean()) Fail("is neither true nor false");
        return Value.get<bool>();
    }
    std::vector<double> Numbers(std::size_t count) const {
        if (Size() != count) Fail("has not " + std::to_string(count) + " elements");
        std::vector<double> numbers;
        for (std::size_t i = 0; i < count; ++i) numbers.push_back(At(i).Number());
        return numbers;
    }
};

std::string LineAndColumn(std::string_view bytes, std::size_t byte) {
    const std::string_view before = bytes.substr(0, byte == 0 ? 0 : byte - 1);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t end = before.rfind('\n');
    const std::size_t column = end == std::string_view::npos ? before.size() + 1 : before.size() - end;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The members of objects that are open, for one that stands twice.
class KeysSeen {
public:
    void Begin() { open_.emplace_back(); }
    void End() { open_.pop_back(); }
    bool Add(const std::string& key) { return open_.back().insert(key).second; }

private:
    std::vector<std::set<std::string>> open_;
};

// The pairs, which nothing is made of here, are not kept: those of a million points would take gigabytes.
json Parse(std::string_view bytes, const std::string& path) {
    KeysSeen keys;
    std::string top;
    const auto look = [&](int depth, json::parse_event_t event, json& value) {
        using Event = json::parse_event_t;
        if (event == Event::object_start) keys.Begin();
        if (event == Event::object_end) keys.End();
        if (event == Event::key) {
            const std::string key = value.get<std::string>();
            if (depth == 1) top = key;
            if (!keys.Add(key))
                throw PlatformError{"Cannot read \"" + path + "\": the member \"" + Printable(key) +
                                    "\" stands twice in an object"};
        }
        const bool element = depth == 2 && event == Event::object_end;
        return !(element && (top == "points" || top == "targetOnly"));
    };
    try {
        return json::parse(bytes.begin(), bytes.end(), look);
    } catch (const json::parse_error& error) {
        throw PlatformError{"Cannot read \"" + path + "\", " + LineAndColumn(bytes, error.byte) +
                            ": it is no JSON there"};
    } catch (const json::exception&) {
        throw PlatformError{"Cannot read \"" + path + "\": it holds a number that is too large to be kept"};
    }
}

void CheckSchema(const Member& root) {
    const std::string schema = root["schema"].Text();
    if (schema != "corvinade-fit")
        root["schema"].Fail("is \"" + Printable(schema) +
                            "\"; a job file is taken, or what fit prints with --json (\"corvinade-fit\")");
    const Member version = root["schemaVersion"];
    if (!version.Value.is_number_integer() || version.Value != 1) version.Fail("is not 1");
}

void TakeUnit(const Member& unit, std::span<const UnitRow> units, std::string& name) {
    name = unit.Text();
    if (std::none_of(units.begin(), units.end(), [&name](const UnitRow& row) { return name == row.Name; }))
        unit.Fail("is \"" + Printable(name) + "\", which is no unit");
}

void TakeDigits(const Member& input, const char* name, std::int16_t& digits) {
    if (!input.Has(name)) return;
    const double number = input[name].Number();
    if (!(number >= 0 && number <= 6) || number != std::floor(number))
        input[name].Fail("is no number of digits from 0 to 6");
    digits = static_cast<std::int16_t>(number);
}

int ParameterOf(const Member& name) {
    const std::string text = name.Text();
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (text == HeldParameterName(k)) return k;
    name.Fail("is \"" + Printable(text) + "\", which is no parameter");
}

void TakeParameters(const Member& list, JobRecord& job) {
    for (std::string& text : job.ParamText) text = kNotUsed;
    std::array<bool, kParameterEnd> seen{};
    for (std::size_t i = 0; i < list.Size(); ++i) {
        const Member row = list.At(i);
        const int k = ParameterOf(row["name"]);
        const auto index = static_cast<std::size_t>(k);
        if (seen[index]) row.Fail("is a second \"" + std::string(HeldParameterName(k)) + "\"");
        seen[index] = true;
        ParameterValue(job, k) = row["value"].Number();
        const std::string state = row["state"].Text();
        if (state == "float") {
            job.ParamText[index] = kFloat;
            const Member sigma = row["sigma"];
            if (!sigma.Value.is_null()) sigma.Number();
        } else if (state == "held") {
            job.ParamText[index] = PlainText(ParameterValue(job, k));
        } else if (state != "not used") {
            row["state"].Fail("is \"" + Printable(state) + "\"");
        }
    }
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (!seen[static_cast<std::size_t>(k)])
            list.Fail("has no \"" + std::string(HeldParameterName(k)) + "\"");
    const auto of = [&seen](int k) { return seen[static_cast<std::size_t>(k)]; };
    if (of(kRvecX) != of(kRvecY) || of(kRvecX) != of(kRvecZ))
        list.Fail("has a part of the tool vector without the others");
}

// Results of before do not name their open parameters; those have no sigma.
void TakeMarks(const Member& root, JobRecord& job) {
    job.Unconverged = ToFlag(!root["converged"].Flag());
    if (root.Has("openParameters")) {
        const Member open = root["openParameters"];
        for (std::size_t i = 0; i < open.Size(); ++i)
            job.LeftOpen[static_cast<std::size_t>(ParameterOf(open.At(i)))] = 1;
        job.Collapsed = ToFlag(root["collapsedScale"].Flag());
        return;
    }
    const Member rows = root["parameters"];
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        const Member row = rows.At(i);
        if (row.Has("sigma") && row["sigma"].Value.is_null())
            job.LeftOpen[static_cast<std::size_t>(ParameterOf(row["name"]))] = 1;
    }
    const Member notes = root["notes"];
    for (std::size_t i = 0; i < notes.Size(); ++i)
        if (notes.At(i)["code"].Text() == "collapsed-scale") job.Collapsed = kTrue;
}

void TakeStartOnly(const Member& list, JobRecord& job) {
    PointArrays points;
    for (std::size_t i = 0; i < list.Size(); ++i) {
        const std::vector<double> mm = list.At(i)["mm"].Numbers(3);
        points.Name.push_back(list.At(i)["name"].Text());
        points.X.emplace_back(mm[0]);
        points.Y.emplace_back(mm[1]);
        points.Z.push_back(mm[2]);
    }
    job.Start = job.Transformed = PointSet(std::move(points));
}

// The job's own matrix against the one that stands beside the parameters.
void CheckMatrix(const Member& matrix) {
    constexpr double kSame = 1e-9;
    const analysis::Placement own = analysis::PlacementOfJob("");
    if (matrix.Size() != 4) matrix.Fail("has not 4 rows");
    for (int i = 1; i <= 4; ++i) {
        const std::vector<double> row = matrix.At(static_cast<std::size_t>(i) - 1).Numbers(4);
        for (int j = 1; j <= 4; ++j) {
            const double expected = i == 4 ? (j == 4 ? 1 : 0) : j == 4 ? own.Shift_mm(i) : own.Matrix(i, j);
            const double is = row[static_cast<std::size_t>(j) - 1];
            if (!(std::fabs(is - expected) <= kSame * std::max(1.0, std::fabs(expected))))
                matrix.Fail("is not that of the parameters: row " + std::to_string(i) + ", column " +
                            std::to_string(j) + " is " + PlainText(is) + " instead of " +
                            PlainText(expected));
        }
    }
}

}  // namespace

bool LooksLikeResult(std::string_view bytes) {
    const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
    return begin != std::string_view::npos && bytes[begin] == '{';
}

void ReadResult(std::string_view bytes, const std::string& path, bool& hasPoints) {
    const json content = Parse(bytes, path);
    const Member root{content, "", path};
    CheckSchema(root);
    JobRecord job;
    const Member input = root["input"];
    TakeUnit(input["lengthUnit"], LengthUnits(), job.LengthUnitName);
    TakeUnit(input["angleUnit"], AngleUnits(), job.AngleUnitName);
    job.LengthDigits = 3;
    job.AngleDigits = 4;
    TakeDigits(input, "lengthDigits", job.LengthDigits);
    TakeDigits(input, "angleDigits", job.AngleDigits);
    TakeParameters(root["parameters"], job);
    TakeMarks(root, job);
    hasPoints = root.Has("startOnly");
    if (hasPoints) TakeStartOnly(root["startOnly"], job);
    std::swap(Job, job);
    try {
        CheckMatrix(root["transformation"]["matrix"]);
    } catch (const PlatformError&) {
        std::swap(Job, job);
        throw;
    }
    RhoFestlegung();
}

}  // namespace corvinade::cli
