// The tables of docs/degenerate.md: what is said of points that do not determine the result, with each norm
// the same.
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "cli/command_line.h"
#include "support/fixture.h"
#include "support/memory_use.h"

using namespace corvinade;

using nlohmann::json;

namespace {

using Cells = std::vector<std::string>;

Cells Split(const std::string& text, const std::string& by) {
    Cells cells;
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + by.size()) {
        end = text.find(by, begin);
        cells.push_back(text.substr(begin, end - begin));
    }
    return cells;
}

// The rows of the table behind a heading.
std::vector<Cells> TableUnder(const std::string& heading) {
    std::istringstream lines(Contents(std::string(CORVINADE_SOURCE_DIR) + "/docs/degenerate.md"));
    std::vector<Cells> rows;
    bool under = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("## ")) under = line == "## " + heading;
        if (under && line.starts_with("| ")) rows.push_back(Split(line.substr(2, line.size() - 4), " | "));
    }
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

std::string PointLines(const std::string& points) {
    std::string text;
    int number = 0;
    for (std::string point : Split(points, ", ")) {
        std::replace(point.begin(), point.end(), ' ', ';');
        text += "P" + std::to_string(++number) + ";" + point + "\n";
    }
    return text;
}

std::set<std::string> SetOf(const std::string& text, const std::string& none) {
    if (text == none) return {};
    const Cells cells = Split(text, ", ");
    return {cells.begin(), cells.end()};
}

}  // namespace

using DegenerateTable = Program;

TEST_F(DegenerateTable, IsWhatEachNormSays) {
    for (const Cells& points : TableUnder("The points")) {
        ASSERT_EQ(points.size(), 3U);
        Write(points[0] + ".s.txt", PointLines(points[1]));
        Write(points[0] + ".t.txt", PointLines(points[2]));
    }
    const std::vector<Cells> rows = TableUnder("What is said");
    EXPECT_EQ(rows.size(), 45U);
    const std::set<std::string> told = {"open-parameters", "hardly-known", "collapsed-scale", "mirrored"};
    for (const Cells& row : rows) {
        ASSERT_EQ(row.size(), 6U) << row[0];
        for (const char* norm : {"l2", "l1", "loo", "l1-exact", "minimax"}) {
            if (UnderSanitizers() && (norm == std::string("l1") || norm == std::string("loo"))) continue;
            const std::string what = row[0] + ", " + row[1] + ", " + norm;
            const Cells fit = {
                "fit", PathOf(row[0] + ".s.txt"), PathOf(row[0] + ".t.txt"), "--parameters", row[1], "--norm",
                norm};
            const auto with = [&fit](const char* option) {
                Cells all = fit;
                all.emplace_back(option);
                return FreshCommandLine(all);
            };
            const Outcome reply = with("--json");
            const json result = json::parse(reply.Out, nullptr, false);
            if (row[2] == "refused") {
                EXPECT_EQ(reply.Status, 1) << what;
                EXPECT_TRUE(result.contains("error") && row[5] == "1") << what;
                continue;
            }
            EXPECT_EQ(reply.Status, result["converged"] == true ? 0 : 4) << what;
            EXPECT_TRUE(result["converged"] == true || std::string(norm) == "loo") << what;
            EXPECT_EQ(result["openParameters"].get<std::set<std::string>>(), SetOf(row[2], "none")) << what;
            std::set<std::string> notes;
            std::size_t noEffect = 0;  // the table marks one that turns nothing as well
            for (const json& note : result["notes"]) {
                if (told.contains(note["code"])) notes.insert(note["code"].get<std::string>());
                noEffect += note["code"] == "no-effect" ? 1U : 0U;
                if (note["code"] != "open-parameters") continue;
                const std::string text = note["text"];
                if (text.find("leave ") != std::string::npos) {
                    EXPECT_NE(text.find("leave " + row[3] + " of the "), std::string::npos)
                        << what << ": " << text;
                }
            }
            EXPECT_EQ(notes, SetOf(row[4], "nothing")) << what;
            EXPECT_EQ(result["collapsedScale"] == true, notes.contains("collapsed-scale")) << what;
            // The table of text marks as many.
            // Where the scale is 0 it marks the turns besides, which turn nothing then.
            const bool isExact = !notes.contains("collapsed-scale");
            if (isExact && norm == std::string("l2")) {
                const Outcome table = FreshCommandLine(fit);
                std::size_t marks = 0;
                for (const std::string& line : Split(table.Out, "\n"))
                    marks += line.find("          open  ") != std::string::npos;
                EXPECT_EQ(marks, result["openParameters"].size() + noEffect) << what << "\n" << table.Out;
            }
            const bool isStrict = !notes.empty();
            EXPECT_EQ(row[5], isStrict ? "0, with `--strict` 3" : "0") << what;
            if (norm == std::string("l2")) {
                EXPECT_EQ(with("--strict").Status, isStrict ? 3 : 0) << what;
            }
        }
    }
}
