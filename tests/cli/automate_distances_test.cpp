// The distance scale and its trumpet plot by names alone.
#include <cmath>

#include "analysis/form_trompete.h"
#include "cli/automation.h"
#include "core/text.h"

using namespace corvinade;

namespace {

class DistancesByName : public Automated {
protected:
    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static std::string ErrorOf(const json& request) {
        const json reply = Ask(request);
        EXPECT_EQ(reply["ok"], false) << request.dump();
        return reply.value("error", "");
    }
    // Distances A B 5, A C 13, B C 12 at the start and 6, 16, 10 at the target.
    void Start(const std::string& start = "A;0;0;0\nB;3;4;0\nC;3;4;12\n",
               const std::string& target = "A;10;0;0\nB;16;0;0\nC;26;0;0\n") {
        StartAutomation({});
        Click("FormMain.MenuFileInputFiles");
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameMCS"}, {"value", Write("start.txt", start)}});
        Good({{"do", "set"}, {"at", "FormInputFiles.TextNameOCS"}, {"value", Write("target.txt", target)}});
        Click("FormInputFiles.BtnOK");
    }
    void StartWithPlot() {
        Start();
        Click("FormMain.MenuTransformationDistanceScale");
        Click("FormDistanceScale.BtnTrumpetGraph");
    }
    static json MouseAt(double x, double y) {
        return {{"do", "mouse"}, {"at", "FormTrompete.Trumpet"}, {"event", "move"}, {"x", x}, {"y", y}};
    }
};

TEST_F(DistancesByName, TheTableAndTheFileAreThere) {
    Start();
    Click("FormMain.MenuTransformationDistanceScale");
    const json table = Get("FormDistanceScale.TabelleScale");
    EXPECT_EQ(table["rows"], 4);
    EXPECT_EQ(table["cols"], 11);
    EXPECT_EQ(table["cells"][3], json({"C", "3.000", "A", "-2.000", "B", "1.230769", "A", "0.833333", "B",
                                       "2.500", "1.032051"}));
    Good({{"do", "answer"}, {"kind", "save"}, {"value", PathOf("pairs.txt")}});
    Click("FormDistanceScale.BtnSaveTrumpetData");
    EXPECT_EQ(Contents(PathOf("pairs.txt")),
              "A\tB\t5\t6\t1.000\r\nA\tC\t13\t16\t3.000\r\nB\tC\t12\t10\t-2.000\r\n");
}

TEST_F(DistancesByName, TheOptionsAreChosenByName) {
    Start();
    Click("FormMain.MenuTransformationDistanceScale");
    Good({{"do", "set"}, {"at", "FormDistanceScale.OptionWithCal"}, {"value", true}});
    EXPECT_EQ(Good({{"do", "record"}, {"name", "WithCal"}})["value"], -1);
    Good({{"do", "set"}, {"at", "FormDistanceScale.OptionWithoutCal"}, {"value", true}});
    EXPECT_EQ(Good({{"do", "record"}, {"name", "WithCal"}})["value"], 0);
}

TEST_F(DistancesByName, TooFewPointsAreTold) {
    Start("A;1;2;3\nB;1;2;3\n", "A;1;2;3\nC;3;2;1\n");
    const json reply = Click("FormMain.MenuTransformationDistanceScale");
    EXPECT_EQ(reply["dialogs"][0]["text"], "There are not enough identically Points for a calculation");
    EXPECT_EQ(Get("FormDistanceScale")["loaded"], false);
}

TEST_F(DistancesByName, ThePlotHandsOutItsPointsAndAxes) {
    StartWithPlot();
    const json plot = Get("FormTrompete.Trumpet");
    EXPECT_EQ(plot["kind"], "plot");
    EXPECT_EQ(plot["points"], json::parse("[[6.0, 1.0], [16.0, 3.0], [10.0, -2.0]]"));
    EXPECT_EQ(plot["pairs"], 3);
    EXPECT_EQ(plot["xMin"], 0);
    EXPECT_EQ(plot["xMax"], 16);
    EXPECT_EQ(plot["yMin"], -2);
    EXPECT_EQ(plot["yMax"], 3);
    EXPECT_LT(plot["axes"]["yLow"], -2);
    EXPECT_GT(plot["axes"]["xHigh"], 16);
    EXPECT_GE(plot["xTicks"].size(), 2u);
}

TEST_F(DistancesByName, FurtherPointsFollowByTheirNumber) {
    StartWithPlot();
    EXPECT_EQ(Good({{"do", "get"}, {"at", "FormTrompete.Trumpet"}, {"first", 2}})["points"],
              json::parse("[[16.0, 3.0], [10.0, -2.0]]"));
    EXPECT_EQ(Good({{"do", "get"}, {"at", "FormTrompete.Trumpet"}, {"first", 3}})["points"],
              json::parse("[[10.0, -2.0]]"));
    EXPECT_EQ(Good({{"do", "get"}, {"at", "FormTrompete.Trumpet"}, {"first", 4}})["points"], json::array());
    EXPECT_EQ(ErrorOf({{"do", "get"}, {"at", "FormTrompete.Trumpet"}, {"first", 0}}),
              "\"first\" is the number of a pair, from 1");
}

TEST_F(DistancesByName, ThePointUnderTheMouseNamesItsPair) {
    StartWithPlot();
    json plot = Get("FormTrompete.Trumpet");
    const auto at = [&plot](double x, double y) {
        const json &f = plot["frame"], &a = plot["axes"];
        const auto share = [](double v, const json& low, const json& high) {
            return (v - low.get<double>()) / (high.get<double>() - low.get<double>());
        };
        const double left = f["left"], right = f["right"], top = f["top"], bottom = f["bottom"];
        return MouseAt(left + share(x, a["xLow"], a["xHigh"]) * (right - left),
                       bottom + share(y, a["yLow"], a["yHigh"]) * (top - bottom));
    };
    Good(at(16, 3));
    EXPECT_EQ(Get("FormTrompete.LabelPair")["text"], "A - C: distance 16.000, delta s 3.000 millimeter");
    EXPECT_EQ(Get("FormTrompete.Trumpet")["pair"], json({1, 3}));
    Good({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 400}, {"height", 300}});
    plot = Get("FormTrompete.Trumpet");
    EXPECT_EQ(plot["width"], 400);
    Good(at(10, -2));
    EXPECT_EQ(Get("FormTrompete.LabelPair")["text"], "B - C: distance 10.000, delta s -2.000 millimeter");
    Good(MouseAt(1e300, -1e300));
    EXPECT_EQ(Get("FormTrompete.LabelPair")["text"], "");
}

TEST_F(DistancesByName, ThePictureOfThePlotHasItsSizeAndItsPoints) {
    StartWithPlot();
    Good({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 640}, {"height", 400}});
    const std::string file = PathOf("plot.svg");
    const json request = {{"do", "picture"}, {"at", "FormTrompete.Trumpet"}, {"file", file}};
    Good(request);
    const std::string svg = Contents(file);
    EXPECT_NE(svg.find("width=\"640\" height=\"400\" viewBox=\"0 0 640 400\""), std::string::npos) << svg;
    const json plot = Get("FormTrompete.Trumpet");
    const json &f = plot["frame"], &a = plot["axes"];
    const double left = f["left"], right = f["right"], low = a["xLow"], high = a["xHigh"];
    for (const json& point : plot["points"]) {
        char place[40];
        std::snprintf(place, sizeof place, "cx=\"%.2f",
                      left + (point[0].get<double>() - low) / (high - low) * (right - left));
        std::string cx = place;
        while (cx.back() == '0') cx.pop_back();
        EXPECT_NE(svg.find(cx), std::string::npos) << cx << "\n" << svg;
    }
    EXPECT_NE(svg.find("A - C: distance 16.000, delta s 3.000 millimeter"), std::string::npos);
    EXPECT_EQ(svg.find("after the transformation"), std::string::npos);
    Good({{"do", "set"}, {"at", "FormDistanceScale.OptionWithCal"}, {"value", true}});
    Good(request);
    EXPECT_NE(Contents(file).find("after the transformation"), std::string::npos);
}

TEST_F(DistancesByName, ThePictureOfThePlotAsPngHasItsSizeAtTwoPixelsForOne) {
    StartWithPlot();
    Good({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 640}, {"height", 400}});
    Good({{"do", "picture"}, {"at", "FormTrompete.Trumpet"}, {"file", PathOf("plot.png")}});
    const std::string png = Contents(PathOf("plot.png"));
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1A\n");
    const auto number = [&png](std::size_t at) {
        return static_cast<unsigned char>(png[at + 2]) * 256 + static_cast<unsigned char>(png[at + 3]);
    };
    EXPECT_EQ(number(16), 1280);
    EXPECT_EQ(number(20), 800);
}

TEST_F(DistancesByName, ThePictureOfAPlotWithAxesOfAPartOfThePairsSaysSo) {
    StartWithPlot();
    const json request = {{"do", "picture"}, {"at", "FormTrompete.Trumpet"}, {"file", PathOf("part.svg")}};
    Good(request);
    EXPECT_EQ(Contents(PathOf("part.svg")).find("cancelled"), std::string::npos);
    Trumpet.RangeCut = true;
    Good(request);
    EXPECT_NE(Contents(PathOf("part.svg")).find("(cancelled: not all pairs)</text>"), std::string::npos);
}

TEST_F(DistancesByName, APictureOfThePlotThatCannotBeIsRefusedOrTold) {
    Start();
    json request = {{"do", "picture"}, {"at", "FormTrompete.Trumpet"}, {"file", PathOf("plot.svg")}};
    EXPECT_EQ(ErrorOf(request), "FormTrompete is not open");
    Click("FormMain.MenuTransformationDistanceScale");
    Click("FormDistanceScale.BtnTrumpetGraph");
    request["file"] = PathOf("plot.pdf");
    EXPECT_NE(ErrorOf(request).find("does not end in .svg or .png"), std::string::npos);
    request["file"] = PathOf("no folder/plot.svg");
    EXPECT_NE(Good(request)["platformError"].dump().find("Cannot write"), std::string::npos);
    Good({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 8192}, {"height", 8192}});
    request["file"] = PathOf("large.svg");
    Good(request);
    EXPECT_NE(Contents(PathOf("large.svg")).find("B - C: distance 10.000"), std::string::npos);
    Good({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 1}, {"height", 1}});
    Good(request);
}

TEST_F(DistancesByName, WhatThePlotCannotDoIsRefused) {
    Start();
    EXPECT_EQ(ErrorOf(MouseAt(1, 1)), "FormTrompete is not open");
    EXPECT_EQ(Get("FormTrompete.Trumpet")["points"], json::array());
    Click("FormMain.MenuTransformationDistanceScale");
    Click("FormDistanceScale.BtnTrumpetGraph");
    json request = MouseAt(1, 1);
    request["event"] = "click";
    EXPECT_EQ(ErrorOf(request), "the trumpet plot takes the mouse's moves alone");
    request = MouseAt(1, 1);
    request["x"] = "left";
    EXPECT_EQ(ErrorOf(request), "the member \"x\" must be a number");
    EXPECT_NE(ErrorOf({{"do", "resize"}, {"at", "FormTrompete.Trumpet"}, {"width", 0}, {"height", 9}}), "");
    EXPECT_EQ(ErrorOf({{"do", "resize"}, {"at", "FormTrompete"}, {"width", 9}, {"height", 9}}),
              "only a graphics window can be resized");
}

}  // namespace
