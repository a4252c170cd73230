// PLY files.
#include "import/ply_cloud.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/text.h"
#include "import/cloud_records.h"
#include "import/cloud_rows.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kLongestHeader = std::size_t{1} << 20;
constexpr std::size_t kLargestRecord = std::size_t{16} << 20;  // bytes of an element with its lists

struct Property {
    std::string Name;
    Scalar Type = Scalar::Float;      // of the value, or of the elements of the list
    std::optional<Scalar> CountType;  // of a list
};

struct Element {
    std::string Name;
    std::int64_t Count = 0;
    std::vector<Property> Properties;
    bool HasLists() const {
        return std::any_of(Properties.begin(), Properties.end(),
                           [](const Property& property) { return property.CountType.has_value(); });
    }
};

enum class Form { Ascii, LittleEndian, BigEndian };

struct Header {
    Form Kind = Form::Ascii;
    std::vector<Element> Elements;
};

std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> words;
    FieldsOf(line, '\0', 16, words);
    return words;
}

std::optional<Scalar> ScalarByName(std::string_view name) {
    struct Row {
        std::string_view Old, New;
        Scalar Type;
    };
    static constexpr std::array<Row, 8> kRows = {{{"char", "int8", Scalar::Int8},
                                                  {"uchar", "uint8", Scalar::UInt8},
                                                  {"short", "int16", Scalar::Int16},
                                                  {"ushort", "uint16", Scalar::UInt16},
                                                  {"int", "int32", Scalar::Int32},
                                                  {"uint", "uint32", Scalar::UInt32},
                                                  {"float", "float32", Scalar::Float},
                                                  {"double", "float64", Scalar::Double}}};
    for (const Row& row : kRows)
        if (name == row.Old || name == row.New) return row.Type;
    return std::nullopt;
}

Scalar TypeOf(const CloudTask& task, std::string_view name) {
    const std::optional<Scalar> type = ScalarByName(name);
    if (!type) task.In.FailAtLine("\"" + Printable(name) + "\" is no type of a property");
    return *type;
}

void TakeElement(const CloudTask& task, const std::vector<std::string_view>& words, Header& header) {
    Element element;
    if (words.size() != 3) task.In.FailAtLine("an element has a name and a count");
    element.Name = words[1];
    const std::string_view count = words[2];
    const auto [end, error] = std::from_chars(count.data(), count.data() + count.size(), element.Count);
    if (error != std::errc() || end != count.data() + count.size() || element.Count < 0)
        task.In.FailAtLine("\"" + Printable(count) + "\" is no count of elements");
    for (const Element& other : header.Elements)
        if (other.Name == element.Name)
            task.In.FailAtLine("the element \"" + Printable(element.Name) + "\" stands twice");
    header.Elements.push_back(std::move(element));
}

void TakeProperty(const CloudTask& task, const std::vector<std::string_view>& words, Header& header) {
    if (header.Elements.empty()) task.In.FailAtLine("a property stands in front of all elements");
    Property property;
    if (words.size() == 5 && words[1] == "list") {
        property.CountType = TypeOf(task, words[2]);
        if (!IsWhole(*property.CountType)) task.In.FailAtLine("the length of a list is no whole number");
        property.Type = TypeOf(task, words[3]);
    } else if (words.size() == 3) {
        property.Type = TypeOf(task, words[1]);
    } else {
        task.In.FailAtLine("a property has a type and a name");
    }
    property.Name = words.back();
    std::vector<Property>& properties = header.Elements.back().Properties;
    for (const Property& other : properties)
        if (other.Name == property.Name)
            task.In.FailAtLine("the property \"" + Printable(property.Name) + "\" stands twice");
    properties.push_back(std::move(property));
}

// Reads the header, up to the line end behind "end_header", and puts it out as it is.
Header ReadHeader(CloudTask& task) {
    Header header;
    CloudInput& in = task.In;
    in.Need(5);
    in.LoneReturns = in.View().starts_with("ply\r") && !in.View().starts_with("ply\r\n");
    std::size_t size = 0;
    bool hasFormat = false;
    std::string_view whole, lineEnd;
    while (in.NextLine(whole)) {
        size += whole.size();
        if (size > kLongestHeader) in.Fail("its header has no end");
        task.Out.Put(whole);
        const std::string_view line = WithoutLineEnd(whole, lineEnd);
        const std::vector<std::string_view> words = Words(line);
        if (words.empty() || words[0] == "comment" || words[0] == "obj_info" || in.Line == 1) continue;
        if (words[0] == "end_header") {
            if (!hasFormat) in.FailAtLine("its header does not say the format");
            return header;
        }
        if (words[0] == "format" && words.size() >= 2) {
            hasFormat = true;
            if (words[1] == "ascii") {
                header.Kind = Form::Ascii;
            } else if (words[1] == "binary_little_endian") {
                header.Kind = Form::LittleEndian;
            } else if (words[1] == "binary_big_endian") {
                header.Kind = Form::BigEndian;
            } else {
                in.FailAtLine("\"" + Printable(words[1]) + "\" is no format of a PLY file");
            }
        } else if (words[0] == "element") {
            TakeElement(task, words, header);
        } else if (words[0] == "property") {
            TakeProperty(task, words, header);
        } else {
            in.FailAtLine("\"" + Printable(line) + "\" is no line of a PLY header");
        }
    }
    in.Fail("its header has no end");
}

constexpr std::array<std::string_view, 3> kPointNames = {"x", "y", "z"};
constexpr std::array<std::string_view, 3> kNormalNames = {"nx", "ny", "nz"};

// The places of three properties of an element. False where one is not there, or is a list.
bool FindThree(const Element& element, const std::array<std::string_view, 3>& names,
               std::array<std::size_t, 3>& places) {
    for (std::size_t k = 0; k < 3; ++k) {
        const auto found = std::find_if(
            element.Properties.begin(), element.Properties.end(),
            [&](const Property& property) { return property.Name == names[k] && !property.CountType; });
        if (found == element.Properties.end()) return false;
        places[k] = static_cast<std::size_t>(found - element.Properties.begin());
    }
    return true;
}

[[noreturn]] void FailCutOff(const CloudTask& task, const Element& element, std::int64_t done) {
    task.In.Fail("it is cut off: " + std::to_string(done) + " of " + std::to_string(element.Count) +
                 " of its element \"" + Printable(element.Name) + "\" are there");
}

RecordForm FormOf(const Element& element, bool isVertex, bool swapped) {
    RecordForm form;
    form.Swapped = swapped;
    std::vector<std::size_t> offsets;
    for (const Property& property : element.Properties) {
        offsets.push_back(form.Size);
        form.Size += property.CountType ? 0 : SizeOf(property.Type);
    }
    std::array<std::size_t, 3> places{};
    form.HasPoint = isVertex && FindThree(element, kPointNames, places);
    if (form.HasPoint)
        for (std::size_t k = 0; k < 3; ++k)
            form.Point[k] = {offsets[places[k]], element.Properties[places[k]].Type};
    form.HasNormal = FindThree(element, kNormalNames, places);
    if (form.HasNormal)
        for (std::size_t k = 0; k < 3; ++k)
            form.Normal[k] = {offsets[places[k]], element.Properties[places[k]].Type};
    return form;
}

// --- Text -------------------------------------------------------------------------------------------------

// The columns of a row, where lists in front of a property move it on. Nothing where it is too short.
std::optional<std::vector<PointColumn>> ColumnsOfRow(const CloudTask& task, const Element& element,
                                                     const std::vector<PointColumn>& byProperty,
                                                     std::string_view row,
                                                     std::vector<std::string_view>& words) {
    FieldsOf(row, '\0', std::numeric_limits<std::size_t>::max(), words);
    std::vector<PointColumn> columns;
    for (std::size_t i = 0; i < element.Properties.size(); ++i) {
        if (columns.size() >= words.size()) return std::nullopt;
        if (!element.Properties[i].CountType) {
            columns.push_back(byProperty[i]);
            continue;
        }
        std::int64_t length = -1;
        const std::string_view text = words[columns.size()];
        std::from_chars(text.data(), text.data() + text.size(), length);
        if (length < 0) task.In.FailAtLine("\"" + Printable(text) + "\" is no length of a list");
        if (static_cast<std::size_t>(length) >= words.size() - columns.size()) return std::nullopt;
        columns.resize(columns.size() + 1 + static_cast<std::size_t>(length), PointColumn::None);
    }
    return columns;
}

void RunAsciiElement(CloudTask& task, const Element& element, bool isVertex) {
    std::vector<PointColumn> byProperty(element.Properties.size(), PointColumn::None);
    std::array<std::size_t, 3> places{};
    const auto assign = [&](const std::array<std::string_view, 3>& names, PointColumn first) {
        if (!FindThree(element, names, places)) return false;
        for (std::size_t k = 0; k < 3; ++k)
            byProperty[places[k]] = static_cast<PointColumn>(static_cast<std::size_t>(first) + k);
        return true;
    };
    const bool lists = element.HasLists();
    const bool hasNormal = assign(kNormalNames, isVertex ? PointColumn::NormalX : PointColumn::X);
    if (isVertex) assign(kPointNames, PointColumn::X);
    // Normals of another element are carried as points are, by the rotation alone.
    CloudMotion turning;
    CloudTask inner = {task.In, task.Out, task.Motion, task.Take, task.Wish, {}, 1};
    if (task.Motion != nullptr && !isVertex) {
        turning.M = task.Motion->Turn;
        inner.Motion = &turning;
    }
    CloudTask& used = isVertex ? task : inner;
    inner.Wish.Digits.reset();
    if (isVertex) RefuseWholeNumbers(task, FormOf(element, true, false));
    constexpr int kDecimalsOfNormals = 6;
    RowCarrier carrier(used, {'\0', '.', byProperty, true},
                       isVertex ? task.Wish.LeastDigits : kDecimalsOfNormals);
    const bool looks = isVertex || (hasNormal && task.Motion != nullptr);
    if (isVertex && !lists) {
        task.In.Fill();
        carrier.LookAhead(task.In.View());
    }
    std::vector<std::string_view> words;
    std::string_view whole, lineEnd;
    for (std::int64_t done = 0; done < element.Count;) {
        if (!task.In.NextLine(whole)) FailCutOff(task, element, done);
        const std::string_view row = WithoutLineEnd(whole, lineEnd);
        if (row.find_first_not_of(" \t") == std::string_view::npos) {
            task.Out.Put(whole);
            continue;
        }
        ++done;
        if (!looks) {
            task.Out.Put(whole);
            continue;
        }
        if (lists) {
            std::optional<std::vector<PointColumn>> columns =
                ColumnsOfRow(task, element, byProperty, row, words);
            if (!columns) task.In.FailAtLine("it has fewer values than its element has properties");
            if (words.size() > columns->size())
                task.In.FailAtLine("it has more values than its element has properties");
            carrier.TakeColumns(std::move(*columns));
        } else {
            // One more than wanted: a value too many may stand in the midst, and has moved all behind it on.
            FieldsOf(row, '\0', element.Properties.size() + 1, words);
            if (words.size() != element.Properties.size())
                task.In.FailAtLine("it has " + CountOfValues(words.size(), element.Properties.size()) +
                                   ", and its element " + std::to_string(element.Properties.size()) +
                                   " properties");
        }
        if (!carrier.Carry(row))
            task.In.FailAtLine("it holds no three numbers for " +
                               std::string(isVertex ? "x, y and z" : "nx, ny and nz"));
        task.Out.Put(lineEnd);
    }
}

// --- Binary -----------------------------------------------------------------------------------------------

void RunRecords(CloudTask& task, const Element& element, const RecordForm& form) {
    if (form.Size == 0) return;  // without properties
    if (form.Size > kLargestRecord)
        task.In.Fail("a record of \"" + Printable(element.Name) + "\" is too large");
    std::int64_t done = 0;
    while (done < element.Count) {
        task.In.Fill();
        if (!task.In.Need(form.Size)) FailCutOff(task, element, done);
        const std::size_t count = static_cast<std::size_t>(std::min<std::int64_t>(
            element.Count - done, static_cast<std::int64_t>(task.In.View().size() / form.Size)));
        CarryRecords(task, form, task.In.Data(), count, done + 1);
        task.Out.Put(task.In.View().substr(0, count * form.Size));
        task.In.Drop(count * form.Size);
        done += static_cast<std::int64_t>(count);
    }
}

// Elements whose lists give each a length of its own.
void RunLists(CloudTask& task, const Element& element, RecordForm form) {
    std::array<std::size_t, 3> points{}, normals{};
    FindThree(element, kPointNames, points);
    FindThree(element, kNormalNames, normals);
    std::vector<std::size_t> offsets(element.Properties.size());
    for (std::int64_t done = 0; done < element.Count; ++done) {
        std::size_t size = 0;
        const auto need = [&](std::size_t more) {
            if (more > kLargestRecord - size)
                task.In.Fail("a list of \"" + Printable(element.Name) + "\" " + std::to_string(done + 1) +
                             " is longer than " + std::to_string(kLargestRecord >> 20) + " MiB");
            if (!task.In.Need(size + more)) FailCutOff(task, element, done);
        };
        for (std::size_t i = 0; i < element.Properties.size(); ++i) {
            const Property& property = element.Properties[i];
            offsets[i] = size;
            if (property.CountType) {
                need(SizeOf(*property.CountType));
                const double length = LoadScalar(task.In.Data() + size, *property.CountType, form.Swapped);
                if (length < 0)
                    task.In.Fail("a list of \"" + Printable(element.Name) + "\" " + std::to_string(done + 1) +
                                 " has the length " + std::to_string(static_cast<std::int64_t>(length)));
                size += SizeOf(*property.CountType);
                need(static_cast<std::size_t>(std::min(length, 1e18)) * SizeOf(property.Type));
                size += static_cast<std::size_t>(length) * SizeOf(property.Type);
            } else {
                need(SizeOf(property.Type));
                size += SizeOf(property.Type);
            }
        }
        if (form.HasPoint || form.HasNormal) {
            form.Size = size;
            for (std::size_t k = 0; k < 3; ++k) {
                form.Point[k].Offset = offsets[points[k]];
                form.Normal[k].Offset = offsets[normals[k]];
            }
            CarryRecords(task, form, task.In.Data(), 1, done + 1);
        }
        task.Out.Put(task.In.View().substr(0, size));
        task.In.Drop(size);
    }
}

// A further element that the header does not count would stay as it was without a word. Less than that is
// kept where it is nothing, a line end for instance; other bytes tell that the header is of other records.
void RefuseMore(CloudTask& task, const Header& header) {
    const std::string why = "more stands behind the elements that its header counts";
    if (header.Kind == Form::Ascii) {
        std::string_view line;
        while (task.In.NextLine(line)) {
            if (line.find_first_not_of(" \t\r\n") != std::string_view::npos) task.In.FailAtLine(why);
            task.Out.Put(line);
        }
        return;
    }
    std::size_t least = 1;
    for (const Property& property : header.Elements.back().Properties)
        least += SizeOf(property.CountType.value_or(property.Type));
    if (task.In.Need(std::max<std::size_t>(least - 1, 4)) || !IsNothing(task.In.View())) task.In.Fail(why);
    task.Out.Put(task.In.View());
    task.In.Drop(task.In.View().size());
}

}  // namespace

void RunPly(CloudTask& task) {
    const Header header = ReadHeader(task);
    const Element* vertices = nullptr;
    for (const Element& element : header.Elements)
        if (element.Name == "vertex" && vertices == nullptr) vertices = &element;
    std::array<std::size_t, 3> places{};
    if (vertices == nullptr) task.In.Fail("it has no element \"vertex\"");
    if (!FindThree(*vertices, kPointNames, places))
        task.In.Fail("its element \"vertex\" has no properties x, y and z");
    const bool swapped = header.Kind != Form::Ascii &&
                         (header.Kind == Form::LittleEndian) != (std::endian::native == std::endian::little);
    for (const Element& element : header.Elements) {
        const bool isVertex = &element == vertices;
        if (header.Kind == Form::Ascii) {
            RunAsciiElement(task, element, isVertex);
            continue;
        }
        const RecordForm form = FormOf(element, isVertex, swapped);
        RefuseWholeNumbers(task, form);
        if (element.HasLists()) {
            RunLists(task, element, form);
        } else {
            RunRecords(task, element, form);
        }
    }
    RefuseMore(task, header);
}

}  // namespace corvinade::import
