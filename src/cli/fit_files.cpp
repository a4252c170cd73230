// Reading the point files of a fit, and telling how it was done.
#include "cli/fit_files.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/arguments.h"
#include "cli/input_bytes.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/cloud_columns.h"
#include "import/cloud_points.h"
#include "import/point_file_checks.h"
#include "import/point_text.h"
#include "import/robot_files.h"
#include "import/table_heading.h"
#include "import/table_sigmas.h"

namespace corvinade::cli {

namespace {

const char* WhatOf(int file) {
    return file == 0 ? "START" : "TARGET";
}

const std::string& PathOf(const FitOptions& options, int file) {
    return file == 0 ? options.Start : options.Target;
}

std::string DelimiterName(char delimiter) {
    for (const auto& [name, text] : DelimiterNames())
        if (text.front() == delimiter) return name;
    return std::string(1, delimiter);
}

// The short name of the unit in use.
std::string UsualUnit(const FitOptions& options) {
    for (const UnitRow& unit : LengthUnits())
        if (options.LengthUnit == unit.Name) return unit.Given.front();
    return "mm";
}

// The extension of files whose rows are coordinates first, with what they measured behind.
bool IsCloud(const std::string& path) {
    const std::string upper = UpperAscii(path);
    return upper.ends_with(".XYZ") || upper.ends_with(".PTS") || upper.ends_with(".ASC");
}

TableOptions OptionsOf(const FitOptions& options, int file) {
    const TableFile& given = options.Files[static_cast<std::size_t>(file)];
    TableOptions table;
    if (!given.Columns.empty()) TakeTableColumns(given.Columns, table.Columns);
    table.Skip = given.Skip;
    table.Comment = given.Comment;
    table.Delimiter = given.Delimiter.empty() ? '\0' : given.Delimiter.front();
    table.Decimal = given.Decimal.value_or('\0');
    table.Unit = given.Unit;
    table.UsualUnit = UsualUnit(options);
    TableEncoding encoding{};
    if (TableEncodingByName(given.Encoding, encoding)) table.Encoding = encoding;
    table.SkipBad = options.SkipBad;
    const InputKind& kind = InputKindOf(TargetKindByName(options.TargetKind));
    table.DoubleNames = options.Match != "id" || kind.NumbersPoints;
    table.FirstIsX = IsCloud(PathOf(options, file));
    return table;
}

ReadFileFacts FactsOf(const TableResult& table, const FitOptions& options, int file) {
    ReadFileFacts facts;
    facts.What = WhatOf(file);
    facts.File = PathOf(options, file);
    facts.Format = table.Plain ? "plain" : "table";
    facts.Encoding = TableEncodingName(table.Form.Encoding);
    facts.Delimiter = DelimiterName(table.Form.Delimiter);
    facts.Decimal = std::string(1, table.Form.Decimal);
    facts.HeadingLines = table.Form.HeadingLines;
    facts.Columns = TableColumnsText(table.Form.Columns);
    facts.Unit = table.Form.Unit;
    facts.Skipped = table.Skipped;
    return facts;
}

// Is the file one of points, and not of poses or of a shape?
bool IsPointFile(const FitOptions& options, int file) {
    return file == 0 || options.TargetKind == "points";
}

// What the user has said of a file; of --pairs both have the same.
CloudReading ReadingOf(const FitOptions& options, int file) {
    const TableFile& given = options.Files[static_cast<std::size_t>(file)];
    CloudReading reading;
    reading.Wish.Decimal = given.Decimal;
    if (!given.Delimiter.empty()) reading.Wish.Delimiter = given.Delimiter.front();
    reading.Wish.Unit = given.Unit;
    if (TableEncoding encoding{}; TableEncodingByName(given.Encoding, encoding))
        reading.Wish.Encoding = encoding;
    std::string why;
    if (!given.Columns.empty())
        reading.Wish.Columns = ColumnsFromText(given.Columns, why).value_or(std::vector<PointColumn>{});
    reading.Wish.RefuseBad = !options.SkipBad;
    reading.NamesOnce = options.Match == "id";
    reading.UsualUnitsPerMm = Units.LengthFactor;
    return reading;
}

void TakeCloud(CloudSet& set, const FitOptions& options, int file, FitFile& read) {
    read.Facts = ReadFileFacts{};
    read.Facts.What = WhatOf(file);
    read.Facts.File = PathOf(options, file);
    const CloudKind kind = KindOfFile(read.Facts.File);
    read.Facts.Format = kind == CloudKind::Text ? "table" : CloudKindName(kind);
    read.Facts.Unit = set.Facts.Unit.empty() ? UsualUnit(options) : set.Facts.Unit;
    read.Facts.Skipped = set.Facts.Bad + set.Facts.NotFinite;
    read.Points = std::move(set.Points);
    read.Sigmas = std::move(set.Sigmas);
    read.Read = true;
}

}  // namespace

std::string ReadFitPairs(const FitOptions& options, std::array<FitFile, 2>& files) {
    if (!Dispatch([&] {
            HoldStream(options.Pairs, options.In);
            CheckReadable(options.Pairs);
        }))
        return Run.LastPlatformError;
    CloudReading reading = ReadingOf(options, 0);
    std::string why;
    if (!options.PairColumns.empty())
        reading.Wish.Columns = ColumnsFromText(options.PairColumns, why).value_or(std::vector<PointColumn>{});
    try {
        CloudPairs pairs = ReadCloudPairs(options.Pairs, std::move(reading));
        NoteCloud(pairs.Start.Facts, options.Pairs, false);
        TakeCloud(pairs.Start, options, 0, files[0]);
        TakeCloud(pairs.Target, options, 1, files[1]);
    } catch (const PlatformError& error) {
        return error.What;
    }
    return "";
}

std::string ReadFitFile(const FitOptions& options, int file, std::istream* in, FitFile& read) {
    const std::string& path = PathOf(options, file);
    const bool told = options.Files[static_cast<std::size_t>(file)].Format == "plain";
    try {
        HoldStream(path, in);
        if (!IsPointFile(options, file) || told) {
            CheckReadable(path);
            return "";
        }
        const bool found = options.Files[static_cast<std::size_t>(file)].Format == "auto";
        const CloudKind kind = found && File_Exist(path) ? KindOfFile(path) : CloudKind::Text;
        if (IsCarrier(kind)) {
            const TableFile& given = options.Files[static_cast<std::size_t>(file)];
            if (given.Skip > 0 || given.Comment)
                return "Cannot read \"" + path + "\": it is " + CloudKindInWords(kind) + ", and " +
                       (given.Skip > 0 ? "--skip" : "--comment") + " is of tables alone";
            CloudSet set = ReadCloud(path, ReadingOf(options, file), file == 1).value();
            NoteCloud(set.Facts, path, false);
            TakeCloud(set, options, file, read);
            return "";
        }
        const FileBytes bytes = ReadFile(path);
        TableResult table = ReadTable(bytes.View(), InputName(path), OptionsOf(options, file));
        PointAccuracies sigmas = SigmasOfTable(table, InputName(path));
        for (const Note& note : table.Notes) AddNote(note.Code, note.Text, note.File, note.Line, note.Count);
        if (table.Refusal.Refused()) return table.Refusal.Text;
        read.Facts = FactsOf(table, options, file);
        if (table.Plain && !table.Form.HasName) ShowMessage(OnlyThreeColumns(path));
        read.Delimiter = std::string(1, table.Form.Delimiter);
        read.Points = std::move(table.Points);
        read.Sigmas = std::move(sigmas);
        read.Read = true;
    } catch (const PlatformError& error) {
        return error.What;
    }
    return "";
}

std::string ProgramUnit(const std::string& unit) {
    for (const UnitRow& row : LengthUnits())
        if (unit == row.Given.front()) return row.Name;
    return "";
}

ReadFileFacts ToldFacts(const FitOptions& options, int file) {
    ReadFileFacts facts;
    facts.What = WhatOf(file);
    facts.File = PathOf(options, file);
    facts.Format = IsPointFile(options, file) ? "plain" : options.TargetKind;
    const std::string& unit = options.Files[static_cast<std::size_t>(file)].Unit;
    facts.Unit = unit.empty() ? UsualUnit(options) : unit;
    if (!IsPointFile(options, file)) return facts;
    try {
        const PointText text = LoadPointText(facts.File);
        std::string delimiter = options.Delimiter;
        Reading how;
        how.Decimal = options.Decimal.value_or('.');
        FindTrennzeichen(text, delimiter, FileRows::Points, how);
        std::string_view line;
        LineWalk lines(text);
        std::int32_t cells = 0;
        while (cells == 0 && lines.Next(line))
            if (!line.empty()) AnzSpalten(std::string(line), cells, delimiter);
        facts.Encoding = text.Ascii || IsValidUtf8(text.Text) ? "utf-8" : "windows-1252";
        if (!delimiter.empty()) facts.Delimiter = DelimiterName(delimiter.front());
        facts.Decimal = std::string(1, how.Decimal);
        facts.HeadingLines = 0;
        facts.Columns = cells == 3 ? "x,y,z" : "name,x,y,z";
        for (std::int32_t i = 4; i < cells; ++i) facts.Columns += ",-";
    } catch (const PlatformError&) {  // it has gone meanwhile: what is known of it is told
        return facts;
    }
    return facts;
}

std::string FactsLine(const ReadFileFacts& facts) {
    std::string line = facts.What + " " + Printable(facts.File, 300) + ": " + facts.Format;
    if (!facts.Encoding.empty()) line += ", " + facts.Encoding;
    if (!facts.Delimiter.empty()) line += ", " + facts.Delimiter;
    if (!facts.Decimal.empty()) line += ", decimal " + facts.Decimal;
    if (facts.HeadingLines >= 0)
        line += ", " + std::to_string(facts.HeadingLines) + (facts.HeadingLines == 1 ? " line" : " lines") +
                " of heading";
    if (!facts.Columns.empty()) line += ", columns " + facts.Columns;
    return line + ", in " + facts.Unit + ", " + std::to_string(facts.Skipped) + " lines passed over";
}

nlohmann::ordered_json FactsJson(const ReadFileFacts& facts) {
    const auto text = [](const std::string& value) {
        return value.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(value);
    };
    nlohmann::ordered_json json = {{"file", facts.File}, {"format", facts.Format}};
    json["encoding"] = text(facts.Encoding);
    json["delimiter"] = text(facts.Delimiter);
    json["decimal"] = text(facts.Decimal);
    json["headingLines"] = nullptr;
    if (facts.HeadingLines >= 0) json["headingLines"] = facts.HeadingLines;
    json["columns"] = text(facts.Columns);
    json["unit"] = facts.Unit;
    json["skipped"] = facts.Skipped;
    return json;
}

}  // namespace corvinade::cli
