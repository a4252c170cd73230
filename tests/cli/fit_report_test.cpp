// The page that a fit writes, and its plots.
#include <cmath>
#include <regex>

#include "cli/fit_command.h"
#include "cli/svg_plots.h"
#include "core/files.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

// Every tag that is opened is closed in its order.
bool IsWellFormed(const std::string& html) {
    static const std::regex tag("<(/?)([a-zA-Z0-9]+)([^>]*?)(/?)>");
    std::vector<std::string> open;
    for (std::sregex_iterator it(html.begin(), html.end(), tag), end; it != end; ++it) {
        const std::string name = (*it)[2];
        if (name == "meta" || (*it)[4].length() > 0) continue;
        if ((*it)[1].length() == 0) {
            open.push_back(name);
        } else if (open.empty() || open.back() != name) {
            return false;
        } else {
            open.pop_back();
        }
    }
    return open.empty();
}

class FitReportPage : public FitCommand {
protected:
    std::string Page(std::vector<std::string> arguments) {
        const std::string path = PathOf("out.html");
        arguments.insert(arguments.end(), {"--report", path});
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return Contents(path);
    }
};

}  // namespace

TEST_F(FitReportPage, NamesParametersQualityAndTheLargestDeviation) {
    const std::string page = Page({kMeasured, kNominal, "--leave-out", "F09"});
    for (const char* part : {"Tra x", "Rot z", "significance", "s0, millimeter", "largest deviation, F09",
                             "F09 (largest)", "14 identical points", "39 coordinates in use for 6 unknowns"})
        EXPECT_NE(page.find(part), std::string::npos) << part;
    EXPECT_EQ(Count(page, "<svg"), 1 + 4) << "the picture and the plots";
    EXPECT_EQ(Count(page, "<tr"), 1 + 6 + 1 + 14);
    EXPECT_TRUE(IsWellFormed(page));
}

TEST_F(FitReportPage, StandsAlone) {
    const std::string page = Page({kMeasured, kNominal});
    for (const char* part : {"http:", "https:", "src=", "href=", "<script", "@import", "url("})
        EXPECT_EQ(page.find(part), std::string::npos) << part;
    EXPECT_NE(page.find("size: A4"), std::string::npos);
}

TEST_F(FitReportPage, NamesOfAnyKindStayText) {
    const std::string start = Write("s.txt", "<b>&\"';0;0;0\nB;1000;0;0\nC;0;2000;0\n");
    const std::string page = Page({start, start});
    EXPECT_NE(page.find("&lt;b&gt;&amp;&quot;&#39;"), std::string::npos);
    EXPECT_TRUE(IsWellFormed(page));
}

TEST_F(FitReportPage, OfManyPointsTheWorstAreShown) {
    std::string start, target;
    for (int i = 0; i < 1200; ++i) {
        const std::string name =
            "P" + std::to_string(i) + ";" + std::to_string(i) + ";" + std::to_string(i * i % 977) + ";";
        start += name + std::to_string(i % 13) + "\n";
        target += name + std::to_string(i % 13 + (i == 700 ? 0.5 : 0.001 * (i % 7))) + "\n";
    }
    const std::string page = Page({Write("s.txt", start), Write("t.txt", target)});
    EXPECT_NE(page.find("The 500 largest of 1200 deviations"), std::string::npos);
    EXPECT_NE(page.find("P700 (largest)"), std::string::npos);
    EXPECT_NE(page.find("src=\"data:image/png;base64,iVBORw0KGgo"), std::string::npos)
        << "of many points the picture is one of pixels";
    EXPECT_LT(page.size(), 600'000u);
}

TEST_F(FitReportPage, HasAPictureThatTellsColoursAndTheLengthOfItsVectors) {
    const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;1000;0\nD;1000;1000;0\n");
    const std::string target = Write("t.txt", "A;0;0;0\nB;1000;0;0\nC;0;1000;0\nD;1000;1000;-1\n");
    const std::string page = Page({start, target});
    // A plate that is twisted by 1 mm at one corner keeps a quarter of it at each.
    EXPECT_NE(page.find("<span>0.250 millimeter and more</span>"), std::string::npos) << page;
    EXPECT_NE(page.find("<div class=\"scene\">\n<svg"), std::string::npos);
    const std::regex scale("the deviation, ([0-9]+) times as long as it is");
    std::smatch found;
    ASSERT_TRUE(std::regex_search(page, found, scale));
    EXPECT_EQ(found[1].str().find_first_not_of("0", 1), std::string::npos) << "a round number: " << found[1];
    EXPECT_EQ(Count(page, "<circle"), 4) << "no targets, which would hide the colours";
    EXPECT_EQ(Count(page, "<i style=\"background:#"), 10);
    const std::string tool =
        Page({kExamples + "robot_tool_measured.txt", kExamples + "robot_tool.dat", "--as", "kuka", "--tool"});
    EXPECT_EQ(tool.find("class=\"scene\""), std::string::npos) << "points are off their poses by the tool";
}

TEST_F(FitReportPage, APageThatCannotBeWrittenIsSaid) {
    const Outcome outcome = Fit({kMeasured, kNominal, "--report", PathOf("no/such/folder/out.html")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("out.html"), std::string::npos) << outcome.Err;
    EXPECT_EQ(Fit({kMeasured, kNominal, "--report", ""}).Status, 2);
}

TEST_F(FitReportPage, AFullDiskLeavesTheOldPage) {
    const std::string path = Write("out.html", "old");
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return std::string(operation == "write" ? "no space left" : "");
    };
    EXPECT_EQ(Fit({kMeasured, kNominal, "--report", path}).Status, 1);
    FileFaults.Refuse = nullptr;
    EXPECT_EQ(Contents(path), "old");
}

TEST(Plots, LimitsAreRoundedUpToOneTwoOrFive) {
    EXPECT_DOUBLE_EQ(RoundLimit(0.07), 0.1);
    EXPECT_DOUBLE_EQ(RoundLimit(3.1), 5);
    EXPECT_DOUBLE_EQ(RoundLimit(120), 200);
    EXPECT_DOUBLE_EQ(RoundLimit(50), 50);
    EXPECT_DOUBLE_EQ(RoundLimit(0), 1);
    EXPECT_DOUBLE_EQ(RoundLimit(-2), 1);
    EXPECT_DOUBLE_EQ(RoundLimit(std::nan("")), 1);
}

TEST(Plots, BarsStandToScaleAboveAndBelowTheirLine) {
    const std::string svg = BarChart("dx", {{"A", 1}, {"B", -0.5}}, "mm", 1);
    // The plot is 190 high with 26 above and 24 below: the zero line at 96, a full bar 70.
    EXPECT_NE(svg.find("y=\"26.00\" width=\"226.10\" height=\"70.00\""), std::string::npos) << svg;
    EXPECT_NE(svg.find("y=\"96.00\" width=\"226.10\" height=\"35.00\""), std::string::npos) << svg;
    EXPECT_TRUE(IsWellFormed(svg));
}

TEST(Plots, ABarBeyondTheAxisIsCutAndBearsItsValue) {
    const std::string svg = BarChart("dz", {{"A", 3.5, false, true}}, "mm", 1);
    EXPECT_NE(svg.find("height=\"70.00\""), std::string::npos);
    EXPECT_NE(svg.find(">3.5</text>"), std::string::npos) << svg;
    EXPECT_NE(svg.find("marked unused"), std::string::npos);
}

TEST(Plots, TheHistogramCountsEveryValueOnce) {
    const std::string svg = Histogram("all", {-1, -1, -0.99, 0, 0.4, 1}, "mm");
    static const std::regex count(": ([0-9]+)</title>");
    int sum = 0;
    for (std::sregex_iterator it(svg.begin(), svg.end(), count), end; it != end; ++it)
        sum += std::stoi((*it)[1]);
    EXPECT_EQ(sum, 6);
    EXPECT_NE(svg.find("-1 to -0.6 mm: 3"), std::string::npos) << svg;
    EXPECT_EQ(Histogram("none", {}, "mm"), "");
    EXPECT_TRUE(IsWellFormed(Histogram("zeros", {0, 0, 0}, "mm")));
}

TEST_F(FitReportPage, IsAPdfOrItsTablesByTheEndingOfItsPath) {
    const std::string pdf = PathOf("out.pdf"), csv = PathOf("out.CSV");
    EXPECT_EQ(Fit({kMeasured, kNominal, "--leave-out", "F09", "--report", pdf}).Status, 0);
    EXPECT_TRUE(Contents(pdf).starts_with("%PDF-"));
    EXPECT_EQ(Count(Contents(pdf), "/Dest ["), 5) << "result, parameters, trust, points and notes";
    EXPECT_EQ(Fit({kMeasured, kNominal, "--leave-out", "F09", "--report", csv}).Status, 0);
    const std::string cells = Contents(csv);
    EXPECT_NE(cells.find("\r\nparameter;unit;value;sigma;significance\r\nTra x;millimeter;"),
              std::string::npos);
    EXPECT_NE(cells.find("\r\npoint;dx;dy;dz;3D\r\n"), std::string::npos);
}
