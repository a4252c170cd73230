// Points of LandXML.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "import/cloud_columns.h"
#include "import/cloud_rows.h"
#include "import/text_cloud.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kLongestTag = std::size_t{1} << 20;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Puts out what is in view and counts its lines.
void Pass(CloudTask& task, std::size_t count) {
    const std::string_view text = task.In.View().substr(0, count);
    task.In.Line += std::count(text.begin(), text.end(), '\n');
    task.Out.Put(text);
    task.In.Drop(count);
}

// Puts out everything up to the end of the next `text`. False where there is none.
bool PassBehind(CloudTask& task, std::string_view text) {
    for (;;) {
        const std::string_view view = task.In.View();
        if (const std::size_t place = view.find(text); place != std::string_view::npos) {
            Pass(task, place + text.size());
            return true;
        }
        if (view.size() >= text.size()) Pass(task, view.size() - text.size() + 1);
        if (!task.In.More()) {
            Pass(task, task.In.View().size());
            return false;
        }
    }
}

// The bytes of the tag that is in view, up to its ">".
std::size_t LengthOfTag(CloudTask& task) {
    char quote = '\0';
    for (std::size_t i = 1;; ++i) {
        if (i >= kLongestTag) task.In.FailAtLine("a tag is longer than 1 MiB");
        if (!task.In.Need(i + 1)) task.In.FailAtLine("it ends within a tag");
        const char c = task.In.View()[i];
        if (quote != '\0') {
            if (c == quote) quote = '\0';
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return i + 1;
        }
    }
}

// The name of an element without its prefix: "CgPoint" of <lx:CgPoint name="1">.
std::string_view NameOf(std::string_view tag) {
    std::size_t end = 1;
    while (end < tag.size() && !IsSpace(tag[end]) && tag[end] != '>' && tag[end] != '/') ++end;
    const std::string_view name = tag.substr(1, end - 1);
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

void AppendCharacter(unsigned long code, std::string& text) {
    const auto put = [&text](unsigned long byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x110000) {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

// "&amp;", "&#228;" and their like as the characters that they stand for.
std::string Plain(std::string_view text) {
    static constexpr std::array<std::array<std::string_view, 2>, 5> kNames = {
        {{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}}};
    std::string plain;
    while (!text.empty()) {
        const std::size_t end = text.front() == '&' ? text.find(';') : std::string_view::npos;
        if (end == std::string_view::npos) {
            plain += text.front();
            text.remove_prefix(1);
            continue;
        }
        const std::string_view name = text.substr(1, end - 1);
        if (name.starts_with('#')) {
            const bool hex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
            unsigned long code = 0;
            std::from_chars(name.data() + std::min(name.size(), std::size_t{hex ? 2u : 1u}),
                            name.data() + name.size(), code, hex ? 16 : 10);
            AppendCharacter(code, plain);
        } else {
            for (const auto& [word, character] : kNames)
                if (name == word) plain += character;
        }
        text.remove_prefix(end + 1);
    }
    return plain;
}

// The value of an attribute; nothing where the tag has none of that name.
std::optional<std::string> AttributeOf(std::string_view tag, std::string_view name) {
    std::size_t at = 1 + NameOf(tag).size();
    while (at < tag.size()) {
        while (at < tag.size() && !IsSpace(tag[at])) ++at;
        while (at < tag.size() && IsSpace(tag[at])) ++at;
        const std::size_t equals = tag.find('=', at);
        const std::size_t open = equals == std::string_view::npos ? equals : tag.find_first_of("\"'", equals);
        if (open == std::string_view::npos) return std::nullopt;
        const std::size_t close = tag.find(tag[open], open + 1);
        if (close == std::string_view::npos) return std::nullopt;
        std::string_view key = tag.substr(at, equals - at);
        while (!key.empty() && IsSpace(key.back())) key.remove_suffix(1);
        if (key == name) return Plain(tag.substr(open + 1, close - open - 1));
        at = close + 1;
    }
    return std::nullopt;
}

// What LandXML calls the unit of lengths; "" where this knows none of that name.
std::string UnitByName(const std::string& name) {
    static constexpr std::array<std::array<const char*, 2>, 7> kNames = {{{"millimeter", "mm"},
                                                                          {"centimeter", "cm"},
                                                                          {"meter", "m"},
                                                                          {"kilometer", "km"},
                                                                          {"foot", "ft"},
                                                                          {"inch", "in"},
                                                                          {"USSurveyFoot", "ftUS"}}};
    for (const auto& [theirs, ours] : kNames)
        if (name == theirs) return ours;
    return "";
}

// Carries north, east and height, which are y, x and z. False where the text is no three numbers.
bool CarryPoint(CloudTask& task, std::string name, std::string_view text, const CloudMotion& motion) {
    constexpr std::array<std::size_t, 3> kAxisOf = {1, 0, 2};
    std::array<std::string_view, 3> field{};
    std::size_t at = 0, count = 0;
    while (at < text.size()) {
        while (at < text.size() && IsSpace(text[at])) ++at;
        const std::size_t begin = at;
        while (at < text.size() && !IsSpace(text[at])) ++at;
        if (begin == at) break;
        if (count == 3) return false;
        field[count++] = text.substr(begin, at - begin);
    }
    if (count != 3) return false;
    CloudPoint point;
    bool finite = true;
    for (std::size_t i = 0; i < 3; ++i) {
        const NumberKind kind = NumberOf(field[i], '.', point.At[kAxisOf[i]]);
        if (kind == NumberKind::None) return false;
        if (kind == NumberKind::OutOfRange)
            task.In.FailAtLine("\"" + Printable(field[i]) + "\" is beyond what a number can hold");
        finite = finite && kind == NumberKind::Finite;
    }
    if (!finite) {
        if (task.Facts.NotFinite++ == 0) task.Facts.FirstNotFinite = task.In.Line;
        task.Facts.FirstIsLine = true;
        task.Out.Put(text);
        return true;
    }
    ++task.Facts.Points;
    if (task.Motion == nullptr) {
        point.Name = std::move(name);
        task.Take(point);
        return true;
    }
    const std::array<double, 3> carried = motion.Carry(point.At);
    std::size_t done = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double value = carried[kAxisOf[i]];
        if (!std::isfinite(value))
            task.In.FailAtLine("the transformed point is larger than any number can be");
        std::string shown;
        AppendFixed(value,
                    task.Wish.Digits.value_or(std::max(task.Wish.LeastDigits, DecimalsOf(field[i], '.'))),
                    '.', shown);
        const auto begin = static_cast<std::size_t>(field[i].data() - text.data());
        task.Out.Put(text.substr(done, begin - done));
        task.Out.Put(shown);
        done = begin + field[i].size();
    }
    task.Out.Put(text.substr(done));
    return true;
}

}  // namespace

void RunLandXml(CloudTask& task) {
    CloudInput& in = task.In;
    in.Line = 1;
    CloudMotion motion;
    if (task.Motion != nullptr) motion = InUnit(*task.Motion, task.UnitsPerMm);
    // Further points may have stood behind a place where the file was cut off between two of them.
    bool ends = false;
    const auto keep = [&task] {
        if (task.Facts.LinesKept++ == 0) task.Facts.FirstKept = task.In.Line;
        ++task.Facts.Bad;
    };
    for (;;) {
        const std::size_t open = in.View().find('<');
        Pass(task, std::min(open, in.View().size()));
        if (open == std::string_view::npos) {
            if (in.More()) continue;
            break;
        }
        in.Need(9);
        const std::string_view view = in.View();
        if (view.starts_with("<!--") || view.starts_with("<![CDATA[") || view.starts_with("<?")) {
            const char* const end = view[1] == '?' ? "?>" : view[2] == '-' ? "-->" : "]]>";
            if (!PassBehind(task, end)) in.FailAtLine(std::string("it ends without \"") + end + "\"");
            continue;
        }
        const std::size_t length = LengthOfTag(task);
        const std::string tag(in.View().substr(0, length));
        const std::string_view element = NameOf(tag);
        Pass(task, length);
        if (element == "Metric" || element == "Imperial") {
            if (task.Facts.UnitGiven) continue;
            const std::string name = AttributeOf(tag, "linearUnit").value_or("");
            task.Facts.Unit = UnitByName(name);
            if (task.Facts.Unit.empty())
                in.FailAtLine("\"" + Printable(name) +
                              "\" is no unit of lengths that is known here (--unit says which it is)");
            task.UnitsPerMm = UnitsPerMm(task.Facts.Unit);
            task.Wish.LeastDigits = DecimalsOfUnit(task.UnitsPerMm);
            if (task.Motion != nullptr) motion = InUnit(*task.Motion, task.UnitsPerMm);
            if (task.Facts.Points > 0) in.FailAtLine("its unit stands behind its first points");
            continue;
        }
        if (tag.starts_with("</") && NameOf(std::string_view(tag).substr(1)) == "LandXML") ends = true;
        if (element != "CgPoint" || tag.starts_with("</")) continue;
        if (tag.ends_with("/>")) {
            // A mere reference brings nothing new. A point that is to have the place of another one, or none,
            // is not taken.
            if (!AttributeOf(tag, "pntRef") || AttributeOf(tag, "name")) keep();
            continue;
        }
        std::size_t end = 0;
        while ((end = in.View().find('<')) == std::string_view::npos) {
            if (in.View().size() > kLongestTag) in.FailAtLine("a point is longer than 1 MiB");
            if (!in.More()) in.FailAtLine("it ends within a point");
        }
        const std::string text(in.View().substr(0, end));
        std::optional<std::string> name = AttributeOf(tag, "name");
        if (!name) name = AttributeOf(tag, "oID");
        // Text goes on behind such a mark, a last coordinate too.
        constexpr std::string_view kMoreText = "<![CDATA[";
        in.Need(end + kMoreText.size());
        const std::string_view behind = in.View().substr(end);
        const bool goesOn = behind.starts_with(kMoreText);
        if (goesOn || !CarryPoint(task, name.value_or(""), text, motion)) {
            // A point without any text may have the place of another one; else it was meant to have its own.
            const bool isEmpty = std::all_of(text.begin(), text.end(), IsSpace);
            if (task.Motion == nullptr && task.Wish.RefuseBad &&
                (!isEmpty || goesOn || behind.starts_with("<!--")))
                in.FailAtLine("\"" + Printable(text) + "\" of point \"" + Printable(name.value_or("")) +
                              "\" is no three numbers (--skip-bad passes it over)");
            keep();
            task.Out.Put(text);
        }
        in.Line += std::count(text.begin(), text.end(), '\n');
        in.Drop(end);
    }
    if (!ends) in.FailAtLine("it ends without \"</LandXML>\"");
}

}  // namespace corvinade::import
