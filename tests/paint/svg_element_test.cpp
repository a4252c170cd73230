// Elements of SVG as text.
#include "paint/svg_element.h"

#include <gtest/gtest.h>

using namespace corvinade;

TEST(SvgElements, AttributesStandInTheirOrderAndTheElementEnds) {
    std::string svg = "<g>";
    SvgElement(svg, "line").Number("x1", 3).Fixed("y1", 0.5).Word("class", "grid").Empty();
    EXPECT_EQ(svg, "<g><line x1=\"3\" y1=\"0.50\" class=\"grid\"/>");
    svg.clear();
    SvgElement(svg, "rect").Opens("\n");
    EXPECT_EQ(svg, "<rect>\n");
}

TEST(SvgElements, WhatTheUserWroteIsEscapedInTextsTitlesAndAttributes) {
    std::string svg;
    SvgElement(svg, "text").Text("aria-label", "a\"b").Holds("<&>", "\n");
    EXPECT_EQ(svg, "<text aria-label=\"a&quot;b\">&lt;&amp;&gt;</text>\n");
    svg.clear();
    SvgElement(svg, "circle").HoldsTitle("it's <1>");
    EXPECT_EQ(svg, "<circle><title>it&#39;s &lt;1&gt;</title></circle>");
    EXPECT_EQ(EscapeMarkup("a\x01"
                           "b\xff"
                           "\xEF\xBF\xBE"),
              "a?b??");
}

TEST(SvgElements, PathsAreWrittenByTheirCallerUpToTheirEnd) {
    std::string svg;
    SvgElement(svg, "path").Word("fill", SvgColour(0xff0a0bccU)).BeginsPath();
    svg += "M1 2h3";
    EndPath(svg);
    EXPECT_EQ(svg, "<path fill=\"#0a0bcc\" d=\"M1 2h3\"/>\n");
}

TEST(SvgElements, NumbersHaveTwoDigitsAndNoZerosBehindThem) {
    EXPECT_EQ(SvgNumber(12), "12");
    EXPECT_EQ(SvgNumber(-0.001), "0");
    EXPECT_EQ(SvgNumber(100), "100");
    EXPECT_EQ(SvgNumber(1.5), "1.5");
    EXPECT_EQ(SvgNumber(-2.256), "-2.26");
    EXPECT_EQ(SvgFixed(1.5), "1.50");
}

TEST(SvgElements, ThePictureSaysWhatItIs) {
    std::string alone, inPage;
    BeginSvg(alone, 640, 400, "A & B");
    BeginSvg(inPage, 640, 400, "A & B", true);
    const std::string rest =
        " width=\"640\" height=\"400\" viewBox=\"0 0 640 400\" role=\"img\" aria-label=\"A &amp; B\">\n"
        "<title>A &amp; B</title>\n";
    EXPECT_EQ(alone, "<svg xmlns=\"http://www.w3.org/2000/svg\"" + rest);
    EXPECT_EQ(inPage, "<svg" + rest);
}
