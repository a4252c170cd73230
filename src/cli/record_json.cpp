// Records of the job and of the program run as JSON, and back.
#include "cli/record_json.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "core/controller.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/units.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

json FlagToJson(const FlagRecord& flag) {
    json object = json::object();
    for (const FlagField& field : FlagFields())
        std::visit([&](auto place) { object[field.Name] = flag.*place; }, field.Place);
    return object;
}

json FieldToJson(const std::vector<FlagRecord>& flags) {
    json list = json::array();
    for (const FlagRecord& flag : flags) list.push_back(FlagToJson(flag));
    return list;
}
json FieldToJson(const Mat3& matrix) {
    json rows = json::array();
    for (int row = 0; row <= 3; ++row) {
        json values = json::array();
        for (int column = 0; column <= 3; ++column) values.push_back(matrix(row, column));
        rows.push_back(values);
    }
    return rows;
}
template <class Value>
constexpr bool kIsList = false;
template <class Element>
constexpr bool kIsList<std::vector<Element>> = true;

template <class Value>
json FieldToJson(const Value& value) {
    return value;
}

// An array of a view by its indices: as every array it has an element 0, whatever its lowest index is. One
// that came from a file with other indices is a list of what it holds.
template <class Element>
json ArrayToJson(const std::vector<Element>& values, const ScreenArray& array, const ArrayShape& shape) {
    json list = FieldToJson(values);
    if (!shape.empty() || values.empty() || (array.Rows > 0 && values.size() % array.Rows != 0)) return list;
    const json none = std::is_class_v<Element> ? json() : json(0);
    json rows = json::array();
    for (std::size_t row = 0; row < std::max<std::size_t>(array.Rows, 1); ++row) {
        json columns = json::array();
        for (int below = 0; below < array.LowestColumn; ++below) columns.push_back(none);
        // The first index runs fastest.
        for (std::size_t k = row; k < list.size(); k += std::max<std::size_t>(array.Rows, 1))
            columns.push_back(list[k]);
        rows.push_back(std::move(columns));
    }
    if (array.Rows == 0) return rows[0];
    rows.insert(rows.begin(), json(rows[0].size(), none));
    return rows;
}

json ListOf(const std::vector<TaggedValue>& values) {
    json list = json::array();
    for (const TaggedValue& value : values) list.push_back(value ? json(*value) : json());
    return list;
}
json ListOf(const std::vector<std::string>& values) {
    return values;
}
json ListOf(const std::vector<double>& values) {
    return values;
}

struct ToJson {
    template <class Value>
    json operator()(Value* value) const {
        return *value;
    }
    json operator()(std::vector<TaggedValue>* values) const { return ListOf(*values); }
    json operator()(const PointsPlace& points) const {
        return WithColumn(*points.Set, points.Part, [](const auto& column) { return ListOf(column); });
    }
    json operator()(const CountPlace& count) const { return CountOf(*count.Of, count.Count); }
    json operator()(Matrix* matrix) const {
        json rows = json::array();
        for (int row = 0; row <= matrix->Rows; ++row) {
            json values = json::array();
            for (int column = 0; column <= matrix->Columns; ++column)
                values.push_back((*matrix)(row, column));
            rows.push_back(std::move(values));
        }
        return rows;
    }
    json operator()(const TextTable& table) const {
        json rows = json::array();
        for (std::size_t row = 0; row < table.First->size(); ++row) {
            json texts = json::array({""});
            for (int column = 0; column < table.Columns; ++column) texts.push_back(table.First[column][row]);
            rows.push_back(std::move(texts));
        }
        return rows;
    }
    json operator()(const std::vector<Note>* notes) const { return NotesToJson(*notes); }
    json operator()(const ViewRow& views) const {
        json list = json::array();
        for (int i = 0; i < views.Count; ++i) list.push_back(ScreenToJson(views.First[i]));
        return list;
    }
    template <class Row>
    json operator()(const Row& row) const requires requires {
        row.Count;
    }
    {
        json list = json::array();
        for (int i = 0; i < row.Count; ++i) list.push_back(row.First[i]);
        return list;
    }
};

// Each conversion gives "" or what is wrong. Nothing is written before all of a value has been checked.
template <class Whole>
std::string TakeWhole(const json& value, Whole& out) {
    if (!value.is_number_integer()) return "a whole number is expected";
    const bool tooLarge =
        value.is_number_unsigned() &&
        value.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<Whole>::max());
    const auto number = tooLarge ? 0 : value.get<std::int64_t>();
    if (tooLarge || number < std::numeric_limits<Whole>::min() || number > std::numeric_limits<Whole>::max())
        return "the number is out of range";
    out = static_cast<Whole>(number);
    return "";
}
std::string Take(const json& value, std::int16_t& out) {
    return TakeWhole(value, out);
}
std::string Take(const json& value, std::int32_t& out) {
    return TakeWhole(value, out);
}
std::string Take(const json& value, double& out) {
    if (!value.is_number()) return "a number is expected";
    out = value.get<double>();
    return "";
}
std::string Take(const json& value, float& out) {
    double number = 0;
    const std::string wrong = Take(value, number);
    if (!wrong.empty()) return wrong;
    if (std::fabs(number) > std::numeric_limits<float>::max()) return "the number is out of range";
    out = static_cast<float>(number);
    return "";
}
std::string Take(const json& value, std::string& out) {
    if (!value.is_string()) return "a text is expected";
    out = value.get<std::string>();
    return "";
}
std::string Take(const json& value, TaggedValue& out) {
    if (value.is_null()) {
        out.reset();
        return "";
    }
    double number = 0;
    const std::string wrong = Take(value, number);
    if (wrong.empty()) out = number;
    return wrong;
}

template <class Element>
std::string TakeList(const json& value, std::vector<Element>& out) {
    if (!value.is_array()) return "an array is expected";
    std::vector<Element> list(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const std::string wrong = Take(value[i], list[i]);
        if (!wrong.empty()) return "element " + std::to_string(i) + ": " + wrong;
    }
    out = std::move(list);
    return "";
}

template <class Element>
std::string TakeRow(const json& value, Element* first, int count) {
    std::vector<Element> list;
    const std::string wrong = TakeList(value, list);
    if (!wrong.empty()) return wrong;
    if (static_cast<int>(list.size()) != count) return std::to_string(count) + " elements are expected";
    std::move(list.begin(), list.end(), first);
    return "";
}

constexpr const char* kFitNoLonger = "counts and arrays of the job would no longer fit each other";

// A count follows from the points. Only in a job that is not whole may other ones of those that it has be
// counted.
std::string TakeCount(const CountPlace& place, std::int32_t count) {
    JobRecord& job = *place.Of;
    if (count == CountOf(job, place.Count)) return "";
    if (JobIsWhole(job) || count < 0) return kFitNoLonger;
    if (place.Count == JobCount::Pairs && count <= std::min(job.Start.Count(), job.Target.Count())) {
        job.SetPairs(count);
    } else if (place.Count == JobCount::Start && count <= UpperBound(job.Start.Name)) {
        job.Start.CountOnly(count);
    } else if (place.Count == JobCount::Target && count <= UpperBound(job.Target.Name)) {
        job.Target.CountOnly(count);
    } else {
        return kFitNoLonger;
    }
    return "";
}

struct FromJson {
    const json& Value;

    std::string operator()(const PointsPlace& points) const {
        return WithColumn(*points.Set, points.Part, [&](auto& column) -> std::string {
            std::vector<typename std::decay_t<decltype(column)>::value_type> values;
            const std::string wrong = TakeList(Value, values);
            if (!wrong.empty()) return wrong;
            return points.Set->Exchange(column, values) ? "" : kFitNoLonger;
        });
    }
    std::string operator()(const CountPlace& place) const {
        std::int32_t count = 0;
        const std::string wrong = Take(Value, count);
        return wrong.empty() ? TakeCount(place, count) : wrong;
    }

    template <class Plain>
    std::string operator()(Plain* out) const {
        return Take(Value, *out);
    }
    template <class Element>
    std::string operator()(std::vector<Element>* out) const {
        return TakeList(Value, *out);
    }
    std::string operator()(Matrix* out) const {
        if (!Value.is_array()) return "an array of rows is expected";
        if (Value.empty()) {
            *out = Matrix{};
            return "";
        }
        if (!Value[0].is_array() || Value[0].empty()) return "row 0: an array is expected";
        Matrix matrix(static_cast<int>(Value.size()) - 1, static_cast<int>(Value[0].size()) - 1);
        for (int row = 0; row <= matrix.Rows; ++row) {
            const std::string wrong =
                TakeRow(Value[static_cast<std::size_t>(row)], matrix.Row(row), matrix.Columns + 1);
            if (!wrong.empty()) return "row " + std::to_string(row) + ": " + wrong;
        }
        *out = std::move(matrix);
        return "";
    }
    std::string operator()(const TextTable& table) const {
        if (!Value.is_array()) return "an array of rows is expected";
        std::vector<std::vector<std::string>> columns(static_cast<std::size_t>(table.Columns) + 1);
        for (std::size_t row = 0; row < Value.size(); ++row) {
            std::vector<std::string> texts(columns.size());
            const std::string wrong = TakeRow(Value[row], texts.data(), static_cast<int>(texts.size()));
            if (!wrong.empty()) return "row " + std::to_string(row) + ": " + wrong;
            for (std::size_t column = 1; column < columns.size(); ++column)
                columns[column].push_back(std::move(texts[column]));
        }
        std::move(columns.begin() + 1, columns.end(), table.First);
        return "";
    }
    std::string operator()(const TextRow& row) const { return TakeRow(Value, row.First, row.Count); }
    std::string operator()(const NumberRow16& row) const { return TakeRow(Value, row.First, row.Count); }
    std::string operator()(const NumberRow& row) const { return TakeRow(Value, row.First, row.Count); }
    std::string operator()(const std::vector<Note>*) const { return "this record can only be read"; }
    std::string operator()(const ViewRow&) const { return "this record can only be read"; }
};

template <class Value>
bool IsPlaceOf(const RecordEntry& record, const Value& value) {
    const auto* const place = std::get_if<Value*>(&record.Place);
    return place != nullptr && *place == &value;
}

// What is wrong with a value that its type takes; empty when nothing is.
std::string FaultOfRecord(const RecordEntry& record) {
    constexpr auto kMostViews = static_cast<int>(std::tuple_size_v<decltype(Job.SavedView)>) - 1;
    if (IsPlaceOf(record, Job.nSavedViews) && (Job.nSavedViews < 0 || Job.nSavedViews > kMostViews))
        return "a number from 0 to " + std::to_string(kMostViews) + " is expected";
    const bool noUnit =
        (IsPlaceOf(record, Job.LengthUnitName) && !IsUnitName(LengthUnits(), Job.LengthUnitName)) ||
        (IsPlaceOf(record, Job.AngleUnitName) && !IsUnitName(AngleUnits(), Job.AngleUnitName));
    return noUnit ? "there is no such unit" : "";
}

}  // namespace

json NotesToJson(std::span<const Note> notes) {
    json list = json::array();
    for (const Note& note : notes)
        list.push_back({{"code", NoteKindOf(note.Code).Name},
                        {"severity", SeverityName(note.Weight)},
                        {"text", note.Text},
                        {"file", note.File.empty() ? json() : json(note.File)},
                        {"line", note.Line > 0 ? json(note.Line) : json()},
                        {"count", note.Count}});
    return list;
}

json ProgramAsJson() {
    return {{"name", kProgramName}, {"version", ProgramVersion()}};
}

json ScreenToJson(const ScreenRecord& view) {
    json object = json::object();
    for (const ScreenField& field : ScreenFields())
        std::visit(
            [&](auto place) {
                using Value = std::decay_t<decltype(view.*place)>;
                if constexpr (kIsList<Value>)
                    object[field.Name] = ArrayToJson(view.*place, field.Array, view.*field.Array.Shape);
                else
                    object[field.Name] = FieldToJson(view.*place);
            },
            field.Place);
    return object;
}

json RecordToJson(const RecordEntry& record) {
    return std::visit(ToJson{}, record.Place);
}

std::string RecordFromJson(const RecordEntry& record, const json& value) {
    const bool fitBefore = JobIsWhole(Job);
    const json before = RecordToJson(record);
    const std::string wrong = std::visit(FromJson{value}, record.Place);
    if (!wrong.empty()) return wrong;
    const std::string fault = fitBefore && !JobIsWhole(Job) ? kFitNoLonger : FaultOfRecord(record);
    if (!fault.empty()) std::visit(FromJson{before}, record.Place);
    return fault;
}

}  // namespace corvinade::cli
