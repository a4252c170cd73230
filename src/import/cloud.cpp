// Clouds: what a file is, and who reads it.
#include "import/cloud.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <limits>
#include <utility>

#include "core/notes.h"
#include "core/numbers.h"
#include "core/text.h"
#include "import/cloud_columns.h"
#include "import/pcd_cloud.h"
#include "import/ply_cloud.h"
#include "import/text_cloud.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kHead_bytes = 4096;

struct KindRow {
    CloudKind Kind;
    const char *Name, *InWords;
};
constexpr std::array<KindRow, 7> kKinds = {{{CloudKind::Ply, "ply", "a PLY cloud"},
                                            {CloudKind::Pcd, "pcd", "a PCD cloud"},
                                            {CloudKind::Xyz, "xyz", "a text cloud"},
                                            {CloudKind::MapPoints, "points", "control points of a map"},
                                            {CloudKind::Tum, "tum", "a trajectory"},
                                            {CloudKind::LandXml, "landxml", "LandXML"},
                                            {CloudKind::Text, "text", "a table"}}};

std::string ExtensionOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    std::string extension = path.substr(dot);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

std::string_view FirstLine(std::string_view head) {
    return head.substr(0, std::min(head.find_first_of("\r\n"), head.size()));
}

// The heading of a map's control points stands in the first line, or behind one that names the reference
// system.
bool IsMapPoints(std::string_view head) {
    const std::string_view first = FirstLine(head);
    if (first.starts_with("#CRS:")) return true;
    return first.starts_with("mapX") && first.find("mapY") != std::string_view::npos;
}

// Is the beginning of a file UTF-8? Its last character may be cut off.
bool IsValidUtf8Head(std::string_view head) {
    constexpr std::size_t kLongest = 4;
    for (std::size_t cut = 0; cut < kLongest && cut <= head.size(); ++cut)
        if (IsValidUtf8(head.substr(0, head.size() - cut))) return true;
    return false;
}

// Puts the mark of an encoding out, and reads the rest as UTF-8.
void PassMark(CloudTask& task) {
    const std::string_view view = task.In.View();
    const std::optional<TableEncoding> wish = task.Wish.Encoding;
    const bool wide = wish == TableEncoding::Utf16Le || wish == TableEncoding::Utf16Be;
    const bool littleMark = view.starts_with("\xFF\xFE"), bigMark = view.starts_with("\xFE\xFF");
    const bool little = wish ? wish == TableEncoding::Utf16Le : littleMark;
    const bool big = wish ? wish == TableEncoding::Utf16Be : bigMark;
    if (wide && (little ? bigMark : littleMark))
        task.In.Fail(std::string("it begins with the mark of ") + (little ? "utf-16be" : "utf-16le") +
                     " (--encoding)");
    const std::size_t length = littleMark || bigMark ? 2 : view.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    task.Out.Put(view.substr(0, length));
    task.In.Drop(length);
    if (wish == TableEncoding::Utf8 && !IsValidUtf8Head(task.In.View()))
        task.In.Fail("it is no UTF-8 (--encoding windows-1252, or utf-16le, utf-16be)");
    if (!little && !big) return;
    const std::string path = task.In.Path();
    task.In.ReadThrough([big, &path](ReadBytes before) { return FromUtf16(std::move(before), big, path); });
    task.Out.WriteThrough([big](WriteBytes behind) { return ToUtf16(std::move(behind), big); });
    task.In.Need(kHead_bytes);
}

bool IsPlyOrPcd(CloudKind kind) {
    return kind == CloudKind::Ply || kind == CloudKind::Pcd;
}

}  // namespace

CloudKind CloudKindOf(std::string_view head, const std::string& path) {
    if (head.starts_with("ply\n") || head.starts_with("ply\r")) return CloudKind::Ply;
    if (head.starts_with("# .PCD")) return CloudKind::Pcd;
    if (IsMapPoints(head)) return CloudKind::MapPoints;
    const std::string extension = ExtensionOf(path);
    const std::size_t begin = std::min(head.find_first_not_of(" \t\r\n"), head.size());
    if (head.substr(begin).starts_with("<") && head.find("LandXML") != std::string_view::npos)
        return CloudKind::LandXml;
    if (extension == ".ply") return CloudKind::Ply;
    if (extension == ".pcd") return CloudKind::Pcd;
    if (extension == ".xyz" || extension == ".pts" || extension == ".asc") return CloudKind::Xyz;
    if (extension == ".points") return CloudKind::MapPoints;
    if (extension == ".tum") return CloudKind::Tum;
    return CloudKind::Text;
}

const char* CloudKindName(CloudKind kind) {
    return kKinds[static_cast<std::size_t>(kind)].Name;
}

const char* CloudKindInWords(CloudKind kind) {
    return kKinds[static_cast<std::size_t>(kind)].InWords;
}

void RunCloud(CloudTask& task) {
    CloudInput& in = task.In;
    in.Need(kHead_bytes);
    if (in.View().empty()) in.Fail("it is empty");
    const auto kindInView = [&in] {
        return CloudKindOf(in.View().substr(0, std::min(in.View().size(), kHead_bytes)), in.Path());
    };
    if (task.Wish.Encoding && IsPlyOrPcd(kindInView()))
        in.Fail("the file itself says how it is written, so --encoding has no place");
    if (!task.Wish.Unit.empty()) {
        task.Facts.Unit = task.Wish.Unit;
        task.Facts.UnitGiven = true;
        task.UnitsPerMm = UnitsPerMm(task.Wish.Unit);
        task.Wish.LeastDigits = DecimalsOfUnit(task.UnitsPerMm);
    }
    PassMark(task);
    const CloudKind kind = kindInView();
    task.Facts.Kind = kind;
    if (kind == CloudKind::Ply && !in.View().starts_with("ply"))
        in.Fail("it does not begin as a PLY file does, with \"ply\"");
    const bool namesItsColumns = IsPlyOrPcd(kind) || kind == CloudKind::LandXml;
    if (namesItsColumns && (!task.Wish.Columns.empty() || task.Wish.Pairs))
        in.Fail("the file itself says what its columns are, so --columns has no place");
    if (IsPlyOrPcd(kind)) {
        const CloudMotion* const given = task.Motion;
        CloudMotion motion;
        if (given != nullptr) {
            motion = InUnit(*given, task.UnitsPerMm);
            task.Motion = &motion;
        }
        kind == CloudKind::Ply ? RunPly(task) : RunPcd(task);
        task.Motion = given;
    } else if (kind == CloudKind::LandXml) {
        RunLandXml(task);
    } else {
        RunText(task, kind);
    }
    if (task.Facts.Points + task.Facts.NotFinite == 0) in.Fail("there is no point in it");
    task.Out.Flush();
}

std::vector<Note> NotesOfCloud(const CloudFacts& facts, const std::string& path, bool carried) {
    std::vector<Note> notes;
    const auto add = [&](NoteCode code, std::string text, int line = 0, int count = 1) {
        notes.push_back({code, NoteKindOf(code).Weight, std::move(text), path, line, count});
    };
    const auto intOf = [](std::int64_t value) {
        return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
    };
    notes = facts.Notes;
    if (facts.LinesKept > 0)
        add(NoteCode::LinesKept,
            carried ? "Lines without three numbers stay as they are"
                    : "Lines without three numbers are passed over",
            intOf(facts.FirstKept), intOf(facts.LinesKept));
    if (facts.OtherFields > 0)
        add(NoteCode::ColumnsChanged,
            "A row has more or fewer fields than the first one: a number may be divided, or missing",
            intOf(facts.FirstOtherFields), intOf(facts.OtherFields));
    if (facts.NotFinite > 0) {
        const std::string first =
            facts.FirstIsLine ? "" : ", the first is point " + std::to_string(facts.FirstNotFinite);
        add(NoteCode::PointsKept,
            "Points whose coordinates are no finite numbers " +
                std::string(carried ? "stay as they are" : "are left out") + first,
            facts.FirstIsLine ? intOf(facts.FirstNotFinite) : 0, intOf(facts.NotFinite));
    }
    if (facts.Disabled > 0)
        add(NoteCode::PointsDisabled,
            "Control points that the file has switched off (enable is 0) are left out",
            intOf(facts.FirstDisabled), intOf(facts.Disabled));
    if (facts.TwoCoordinates)
        add(NoteCode::NoHeight, carried
                                    ? "The points have no z: it counts as 0, and what it becomes has no place"
                                    : "The points have no z, which counts as 0");
    if (!facts.Unit.empty() && !facts.UnitGiven)
        add(NoteCode::UnitOfFile, "The file says that its coordinates are in " + facts.Unit);
    if (!carried) return notes;
    if (!facts.Directions.empty())
        add(NoteCode::DirectionsKept, "Columns look like " + facts.Directions +
                                          "; they are not turned, unless a heading or --columns names them");
    if (facts.HasViewpoint)
        add(NoteCode::ViewpointKept, "The viewpoint of the cloud is not moved with its points");
    constexpr double kHalfOfLastPlace = 0x1p-25;  // of a 32-bit float, relative
    constexpr double kSmall = 0.0005, kMuch = 8;
    if (facts.LargestOut * kHalfOfLastPlace > kSmall && facts.LargestOut > kMuch * facts.LargestIn)
        add(NoteCode::SingleRounded,
            "The coordinates have 32 bits, too few for where they go: they are rounded by up to " +
                PlainText(facts.LargestOut * kHalfOfLastPlace));
    return notes;
}

void NoteCloud(const CloudFacts& facts, const std::string& path, bool carried) {
    for (const Note& note : NotesOfCloud(facts, path, carried))
        AddNote(note.Code, note.Text, note.File, note.Line, note.Count);
}

}  // namespace corvinade::import
