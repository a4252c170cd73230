// Files of points by the readers of the program.
#include "corvinade/point_file.h"
//
#include <array>
#include <charconv>
#include <cmath>
#include <unordered_set>

#include "core/files.h"
#include "core/notes.h"
#include "core/platform.h"
#include "import/cloud_points.h"
#include "import/table_heading.h"
#include "import/table_sigmas.h"
#include "library/named_points.h"
#include "library/records.h"

namespace corvinade {

namespace {

// Has a sign come to end it?
std::function<bool()> GoesOn(const PointFileOptions& options) {
    if (!options.StopIsWanted) return {};
    return [&options] { return !options.StopIsWanted(); };
}

std::optional<import::TableEncoding> EncodingOf(const PointFileOptions& options) {
    if (options.Encoding.empty()) return std::nullopt;
    import::TableEncoding encoding{};
    if (!import::TableEncodingByName(options.Encoding, encoding))
        throw InvalidInput("encoding: utf-8, utf-16le, utf-16be or windows-1252 was expected, and \"" +
                           options.Encoding + "\" came");
    return encoding;
}

[[noreturn]] void Stop() {
    throw Stopped("the reading has been stopped");
}

PointFile ReadCarrier(const std::string& path, import::CloudKind kind, const PointFileOptions& options) {
    if (options.Skip > 0 || options.Comment)
        throw InvalidInput("\"" + path + "\" is " + import::CloudKindInWords(kind) +
                           ": skip and comment are of tables alone");
    import::CloudReading reading;
    std::string why;
    if (!options.Columns.empty()) {
        const auto columns = import::ColumnsFromText(options.Columns, why);
        if (!columns) throw InvalidInput("columns: " + why);
        reading.Wish.Columns = *columns;
    }
    reading.Wish.Unit = options.Unit;
    if (options.Decimal != 0) reading.Wish.Decimal = options.Decimal;
    if (options.Delimiter != 0) reading.Wish.Delimiter = options.Delimiter;
    if (const auto encoding = EncodingOf(options)) reading.Wish.Encoding = *encoding;
    reading.Wish.RefuseBad = !options.SkipBad;
    reading.GoesOn = GoesOn(options);
    const std::optional<import::CloudSet> set = import::ReadCloud(path, std::move(reading), false);
    if (!set) Stop();
    return {library::NamedPointsOf(set->Points, set->Sigmas),
            library::FileNotesOf(import::NotesOfCloud(set->Facts, path, false)), import::CloudKindName(kind),
            set->Facts.Unit.empty() ? "mm" : set->Facts.Unit};
}

PointFile ReadTextTable(const std::string& path, const PointFileOptions& options) {
    import::TableOptions told;
    if (!options.Columns.empty())
        if (const std::string why = import::TakeTableColumns(options.Columns, told.Columns); !why.empty())
            throw InvalidInput("columns: " + why);
    told.Skip = static_cast<std::int64_t>(options.Skip);
    told.Comment = options.Comment;
    told.Delimiter = options.Delimiter;
    told.Decimal = options.Decimal;
    told.Unit = options.Unit;
    told.Encoding = EncodingOf(options);
    told.SkipBad = options.SkipBad;
    told.DoubleNames = true;
    if (const auto goesOn = GoesOn(options))
        told.GoesOn = [goesOn](const import::TableProgress&) { return goesOn(); };
    const core::FileBytes bytes = core::ReadFile(path);
    import::TableResult table = import::ReadTable(bytes.View(), path, told);
    if (table.Cancelled) Stop();
    const core::PointAccuracies sigmas = import::SigmasOfTable(table, path);
    if (table.Refusal.Refused()) throw InvalidInput(table.Refusal.Text);
    return {library::NamedPointsOf(table.Points, sigmas), library::FileNotesOf(table.Notes), "table",
            table.Form.Unit};
}

void Check(const NamedPoints& points) {
    const std::size_t count = points.Names.size();
    if (count == 0) throw InvalidInput("points were expected, and none came");
    if (points.Coordinates.size() != 3 * count)
        throw InvalidInput("coordinates are three a point, " + std::to_string(3 * count) + ", and " +
                           std::to_string(points.Coordinates.size()) + " came");
    if (!points.Sigmas.empty() && points.Sigmas.size() != 3 * count)
        throw InvalidInput("standard deviations are none or three a point, " + std::to_string(3 * count) +
                           ", and " + std::to_string(points.Sigmas.size()) + " came");
    std::unordered_set<std::string_view> names;
    for (const std::string& name : points.Names) {
        const bool ofEdges = name.empty() || name.front() == ' ' || name.back() == ' ';
        if (ofEdges || name.find_first_of("\r\n\t;\"") != std::string::npos)
            throw InvalidInput(
                "a name has letters, no blanks at its ends, no tab, line end, semicolon or quote, and \"" +
                name + "\" came");
        if (!names.insert(name).second) throw InvalidInput("the name \"" + name + "\" stands twice");
    }
    for (std::size_t i = 0; i < points.Coordinates.size(); ++i)
        if (!std::isfinite(points.Coordinates[i]))
            throw InvalidInput("coordinates are finite numbers, and one of point \"" + points.Names[i / 3] +
                               "\" is none");
    for (std::size_t i = 0; i < points.Sigmas.size(); ++i)
        if (!(points.Sigmas[i] >= 0) || std::isinf(points.Sigmas[i]))
            throw InvalidInput("standard deviations are finite and not below 0, and one of point \"" +
                               points.Names[i / 3] + "\" is not");
}

void PutNumbers(std::span<const double> numbers, std::string& text) {
    std::array<char, 40> digits;
    for (const double number : numbers) {
        text += ';';
        text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
    }
}

}  // namespace

PointFile ReadPoints(const std::string& path, const PointFileOptions& options) {
    EncodingOf(options);
    if (!options.Unit.empty() && import::TableUnitByWord(options.Unit) == nullptr)
        throw InvalidInput("unit: mm, cm, m, km, in or ft was expected, and \"" + options.Unit + "\" came");
    if (options.Decimal != 0 && options.Decimal != '.' && options.Decimal != ',')
        throw InvalidInput("decimal: \".\" or \",\" was expected, and \"" + std::string(1, options.Decimal) +
                           "\" came");
    try {
        const import::CloudKind kind = import::KindOfFile(path);
        return import::IsCarrier(kind) ? ReadCarrier(path, kind, options) : ReadTextTable(path, options);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    }
}

std::vector<FileNote> WritePoints(const std::string& path, const NamedPoints& points) {
    Check(points);
    std::string text = points.Sigmas.empty() ? "name;x [mm];y [mm];z [mm]\n"
                                             : "name;x [mm];y [mm];z [mm];sx [mm];sy [mm];sz [mm]\n";
    for (std::size_t i = 0; i < points.Names.size(); ++i) {
        text += points.Names[i];
        PutNumbers(std::span(points.Coordinates).subspan(3 * i, 3), text);
        if (!points.Sigmas.empty()) PutNumbers(std::span(points.Sigmas).subspan(3 * i, 3), text);
        text += '\n';
    }
    const library::RecordsHeld held;
    try {
        core::WriteFile(path, text);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    }
    return library::RecordsHeld::Notes();
}

}  // namespace corvinade
