// The options of `corvinade-cli fit` that say how its files are written.
#include "cli/fit_table_arguments.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "cli/arguments.h"
#include "cli/fit_files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/norm_table.h"
#include "import/cloud.h"
#include "import/robot_files.h"
#include "import/table_heading.h"

namespace corvinade::cli {

// How the files are written: for both, and behind --start- or --target- for one of them.
void AddTableOptions(CLI::App& fit, FitSwitches& s) {
    const char* const group = "How the files are written";
    const std::string delimiters = "space|semicolon|colon|star|sharp|tab|comma|pipe";
    const auto add = [&](const std::string& name, std::string& value, const char* text) {
        return fit.add_option("--" + name, value, text)->group(group);
    };
    // 0 = both, told in full; 1 and 2 = one of them.
    for (std::size_t i = 0; i < s.Tables.size(); ++i) {
        TableSwitches& t = s.Tables[i];
        const std::string one = i == 0 ? "" : i == 1 ? "start-" : "target-";
        const char* const same = i == 1 ? "The same for START alone" : "The same for TARGET alone";
        const auto told = [&](const char* text) { return i == 0 ? text : same; };
        add(one + "format", t.Format,
            told("A table of any form, or the plain one alone, read as on the desktop;\n"
                 "default: auto"))
            ->check(OneOf({"auto", "plain", "table"}))
            ->type_name("auto|plain|table");
        add(one + "columns", t.Columns,
            told("What the columns hold: name, x, y, z, sx, sy, sz, s, and - for one to\n"
                 "pass over; of --pairs also X, Y, Z; default: as the heading says, else\n"
                 "name,x,y,z or x,y,z"))
            ->check([](const std::string& text) {
                // Those of --pairs have capitals too; TakeTables looks at what goes with what.
                std::vector<TableRole> columns;
                std::string why = TakeTableColumns(text, columns), wrong;
                return why.empty() || ColumnsFromText(text, wrong) ? std::string() : why;
            })
            ->type_name("NAME,X,Y,Z");
        fit.add_option("--" + one + "skip", t.Skip, told("So many lines at the beginning are passed over"))
            ->check(Between(0, 1000000000))
            ->type_name("N")
            ->group(group);
        add(one + "comment", t.Comment,
            told("A line that begins with one of these characters is a comment;\n"
                 "default: #%! and //"))
            ->type_name("CHARS");
        add(one + "delimiter", t.Delimiter,
            told("What stands between the fields; default: as the file shows it"))
            ->transform(NameOf(DelimiterNames()))
            ->type_name(delimiters);
        add(one + "decimal", t.Decimal,
            told("Decimal delimiter, a point or a comma, of the output too;\n"
                 "default: as the file shows it, and a point in the output"))
            ->check(OneOf({"auto", ".", ","}))
            ->type_name("auto|'.'|','");
        add(one + "unit", t.Unit, told("Unit of lengths; default: as the heading says, else --length-unit"))
            ->check(UnitOfTable())
            ->type_name("mm|cm|m|km|in|ft");
        if (i > 0)
            add(one + "angle-unit", t.AngleUnit,
                i == 1 ? "Unit of angles of START, which has none in any form so far"
                       : "Unit of angles of TARGET, a robot program; default: --angle-unit")
                ->transform(UnitByName(AngleUnits()))
                ->type_name(UnitChoices(AngleUnits()));
        add(one + "encoding", t.Encoding, told("Encoding of the text; default: as the file shows it"))
            ->check(OneOf(TableEncodings()))
            ->type_name("utf-8|utf-16le|utf-16be|windows-1252");
    }
    fit.add_flag("--skip-bad", s.Options.SkipBad,
                 "Pass rows over that cannot be read, and count them in a note")
        ->group(group);
    fit.add_flag("--verbose", s.Options.Verbose, "Tell on standard error how each file was read")
        ->group(group);
}

namespace {

// --pairs has what says how its text is written, once for both systems.
std::string TakePairs(FitSwitches& s) {
    FitOptions& o = s.Options;
    std::string why;
    if (!s.Tables[0].Columns.empty() && !ColumnsFromText(s.Tables[0].Columns, why))
        return "--columns: " + why;
    o.PairColumns = s.Tables[0].Columns;
    for (const char* name :
         {"format", "columns", "skip", "comment", "delimiter", "decimal", "unit", "encoding"})
        for (const char* prefix : {"--start-", "--target-", "--"}) {
            const std::string option = std::string(prefix) + name;
            const std::string text = name;
            const bool fits =
                std::string(prefix) == "--" && (text == "columns" || text == "delimiter" ||
                                                text == "decimal" || text == "unit" || text == "encoding");
            if (!fits && o.IsGiven(option)) return option + " does not go with --pairs";
        }
    return "";
}

}  // namespace

// What is said of one file goes before what is said of both. "" or what does not go together.
std::string TakeTables(FitSwitches& s) {
    FitOptions& o = s.Options;
    if (!o.Pairs.empty()) {
        const std::string wrong = TakePairs(s);
        if (!wrong.empty()) return wrong;
        s.Tables[0].Columns.clear();
    }
    for (const TableSwitches& table : s.Tables) {
        std::vector<TableRole> columns;
        const std::string wrong = table.Columns.empty() ? "" : TakeTableColumns(table.Columns, columns);
        if (!wrong.empty()) return "--columns: " + wrong;
    }
    for (std::size_t i = 0; i < o.Files.size(); ++i) {
        const TableSwitches &both = s.Tables[0], &one = s.Tables[i + 1];
        const auto first = [](const std::string& a, const std::string& b) { return a.empty() ? b : a; };
        const std::string prefix = i == 0 ? "--start-" : "--target-";
        const auto given = [&](const char* name) {
            return o.IsGiven(prefix + name) || o.IsGiven(std::string("--") + name);
        };
        TableFile& file = o.Files[i];
        file.Columns = first(one.Columns, both.Columns);
        file.Delimiter = first(one.Delimiter, both.Delimiter);
        const std::string decimal = first(one.Decimal, both.Decimal);
        file.Decimal = decimal == "auto" ? std::nullopt : DecimalOf(decimal);
        const std::string unit = first(one.Unit, both.Unit);
        file.Unit = unit.empty() ? "" : TableUnitByWord(unit)->Name;
        file.AngleUnit = first(one.AngleUnit, o.AngleUnit);
        file.Encoding = first(one.Encoding, both.Encoding);
        const std::string format = first(one.Format, both.Format);
        if (!format.empty()) file.Format = format;
        if (o.IsGiven(prefix + "comment")) {
            file.Comment = one.Comment;
        } else if (o.IsGiven("--comment")) {
            file.Comment = both.Comment;
        }
        file.Skip = o.IsGiven(prefix + "skip") ? one.Skip : both.Skip;
        if (file.Format != "plain") continue;
        for (const char* name : {"columns", "skip", "comment", "unit", "encoding"})
            if (given(name) || o.SkipBad)
                return "--format plain reads as on the desktop: " +
                       (given(name) ? (o.IsGiven(prefix + name) ? prefix : "--") + name
                                    : std::string("--skip-bad")) +
                       " does not go with it";
    }
    const std::string kind = o.TargetKind;
    if (kind != "points") {
        for (const char* name :
             {"--target-columns", "--target-skip", "--target-comment", "--target-encoding"})
            if (o.IsGiven(name))
                return std::string(name) + " is of tables of points, and does not go with --as";
        if (!o.Files[1].Unit.empty() && ProgramUnit(o.Files[1].Unit).empty())
            return "--as goes with the units mm, m, in and ft alone";
    }
    o.Decimal = s.Tables[0].Decimal == "auto" ? std::nullopt : DecimalOf(s.Tables[0].Decimal);
    o.Delimiter = s.Tables[0].Delimiter;
    return "";
}

}  // namespace corvinade::cli
