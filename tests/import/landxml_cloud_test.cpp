// LandXML whose tags, names, units and remarks are of kinds that few files have, and what is cut off within
// them.
#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

std::string Points(const std::string& points, const std::string& units = "") {
    return "<LandXML>" + units + "\n<CgPoints>" + points + "</CgPoints></LandXML>";
}

void ExpectRefused(const std::string& bytes, const std::string& why, const CloudWish& wish = {}) {
    const CloudRun run = ReadThrough(bytes, "a.xml", wish);
    EXPECT_NE(run.Error.find(why), std::string::npos) << bytes.substr(0, 100) << "\n" << run.Error;
}

TEST(LandXmlForms, APointIsNamedByItsNameElseByItsNumber) {
    const std::vector<std::array<std::string, 2>> tags = {
        {"CgPoint name=\"A\"", "A"},
        {"lx:CgPoint name='it\"s'", "it\"s"},
        {"CgPoint\n\tname = \"A\"", "A"},
        {"CgPoint oID=\"7\"", "7"},
        {"CgPoint oID=\"7\" name=\"A\"", "A"},
        {"CgPoint code=\"name='no'\" name=\"A\" ", "A"},
        {"CgPoint", ""},
        {"CgPoint name", ""},
        {"CgPoint name=A", ""},
        {"CgPoint name=\"\"", ""},
        {"CgPoint names=\"A\"", ""},
    };
    for (const auto& [tag, name] : tags) {
        const std::string end = tag.starts_with("lx:") ? "</lx:CgPoint>" : "</CgPoint>";
        const CloudRun run = ReadThrough(Points("<" + tag + ">2 1 3" + end), "a.xml");
        ASSERT_EQ(run.Points.size(), 1U) << tag << run.Error;
        EXPECT_EQ(run.Points[0].Name, name) << tag;
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{1, 2, 3})) << tag;
    }
}

TEST(LandXmlForms, OtherElementsRemarksAndInstructionsHoldNoPoints) {
    const std::string hidden = "<CgPoint name=\"no\">9 9 9</CgPoint>";
    for (const std::string& around :
         {"<!-- " + hidden + " -->", "<![CDATA[" + hidden + "]]>", "<?note " + hidden + "?>",
          "<Feature code='" + hidden + "'/>", std::string("<CgPoints/>"), std::string("<!DOCTYPE x>")}) {
        const CloudRun run = ReadThrough(Points(around + "<CgPoint name=\"A\">2 1 3</CgPoint>"), "a.xml");
        ASSERT_EQ(run.Points.size(), 1U) << around << run.Error;
        EXPECT_EQ(run.Points[0].Name, "A");
    }
}

TEST(LandXmlForms, WhatIsNotClosedIsRefused) {
    ExpectRefused("<LandXML>\n<!-- 1 2 3", "line 2: it ends without \"-->\"");
    ExpectRefused("<LandXML>\n\n<![CDATA[ 1 2 3 ]]", "line 3: it ends without \"]]>\"");
    ExpectRefused("<LandXML><?xml", "line 1: it ends without \"?>\"");
    ExpectRefused("<LandXML>\n<CgPoint name=\"A>2 1 3</CgPoint>", "line 2: it ends within a tag");
    ExpectRefused("<LandXML>\n<CgPoint>2 1 3", "line 2: it ends within a point");
    ExpectRefused("<LandXML><CgPoint>" + std::string((std::size_t{1} << 20) + 4096, ' '),
                  "line 1: a point is longer than 1 MiB");
    ExpectRefused("<LandXML></LandXML>", "there is no point in it");
}

TEST(LandXmlForms, ItsUnitIsOneOfThoseThatTheFormatHas) {
    const std::vector<std::array<std::string, 2>> units = {
        {"millimeter", "mm"}, {"centimeter", "cm"}, {"meter", "m"},          {"kilometer", "km"},
        {"foot", "ft"},       {"inch", "in"},       {"USSurveyFoot", "ftUS"}};
    const std::string point = "<CgPoint name=\"A\">2 1 3</CgPoint>";
    for (const auto& [theirs, ours] : units)
        for (const std::string system : {"Metric", "Imperial"}) {
            const std::string bytes =
                Points(point, "<Units><" + system + " linearUnit=\"" + theirs + "\"/></Units>");
            const CloudRun run = ReadThrough(bytes, "a.xml");
            EXPECT_EQ(run.Error, "");
            EXPECT_EQ(run.Facts.Unit, ours);
            // The user knows better.
            CloudWish wish;
            wish.Unit = "cm";
            EXPECT_EQ(ReadThrough(bytes, "a.xml", wish).Facts.Unit, "cm");
        }
    ExpectRefused(Points(point, "<Metric linearUnit=\"Meter\"/>"), "line 1: \"Meter\" is no unit of lengths");
    ExpectRefused(Points(point, "<Metric areaUnit=\"squareMeter\"/>"), "line 1: \"\" is no unit of lengths");
    ExpectRefused(Points(point + "\n<Metric linearUnit=\"meter\"/>"),
                  "line 3: its unit stands behind its first points");
}

TEST(LandXmlForms, AnotherNumberOfValuesThanThreeIsRefusedOrPassedOver) {
    CloudWish strict;
    strict.RefuseBad = true;
    const std::string good = "<CgPoint name=\"A\">2 1 3</CgPoint>\n";
    for (const std::string text : {"1", "1 2", "1 2 3 4", "1 2 three", "1 2 <![CDATA[3]]>"}) {
        const std::string bytes = Points(good + "<CgPoint name=\"B\">" + text + "</CgPoint>");
        ExpectRefused(bytes, "of point \"B\" is no three numbers (--skip-bad passes it over)", strict);
        ExpectRefused(bytes, "line 3: ", strict);
        const CloudRun run = ReadThrough(bytes, "a.xml");
        EXPECT_EQ(run.Points.size(), 1U) << text;
        EXPECT_EQ(run.Facts.LinesKept, 1) << text;
        EXPECT_EQ(run.Facts.FirstKept, 3) << text;
    }
    // Without any text it may have the place of another one, and is none that was meant to have its own.
    for (const std::string text : {"", " \t\r\n"}) {
        const CloudRun run =
            ReadThrough(Points(good + "<CgPoint name=\"B\">" + text + "</CgPoint>"), "a.xml", strict);
        EXPECT_EQ(run.Error, "");
        EXPECT_EQ(run.Facts.LinesKept, 1);
    }
}

// X = 0.8 x - 0.6 y + 10, Y = 0.6 x + 0.8 y + 20, Z = z + 30, of x = 1, y = 2, z = 3; north comes first.
TEST(LandXmlForms, NewCoordinatesHaveTheDigitsThatAreWanted) {
    CloudWish wish;
    wish.Digits = 1;
    const CloudRun run = Carried(Points("<CgPoint name=\"A\"> 2.00000 1 3 </CgPoint>"), "a.xml", wish);
    EXPECT_EQ(run.Out, Points("<CgPoint name=\"A\"> 22.2 9.6 33.0 </CgPoint>"));
    EXPECT_EQ(Carried(Points("<CgPoint name=\"A\"> 2.00000 1 3 </CgPoint>"), "a.xml").Out,
              Points("<CgPoint name=\"A\"> 22.20000 9.600 33.000 </CgPoint>"));
}

// --- What a file is ---------------------------------------------------------------------------------------

TEST(CloudKinds, AreKnownByTheirFirstBytesElseByTheirExtension) {
    struct Row {
        std::string Head, Path;
        CloudKind Kind;
    };
    const std::vector<Row> rows = {
        {"ply\nformat", "a.txt", CloudKind::Ply},
        {"ply\rformat", "a.txt", CloudKind::Ply},
        {"plyer 1 2 3", "a.txt", CloudKind::Text},
        {"1 2 3", "A.PLY", CloudKind::Ply},
        {"# .PCD v0.7", "a.txt", CloudKind::Pcd},
        {"VERSION 0.7", "a.pcd", CloudKind::Pcd},
        {" \r\n\t<LandXML>", "a.txt", CloudKind::LandXml},
        {"<?xml?><LandXML>", "a.ply", CloudKind::LandXml},
        {"<gml>", "a.xml", CloudKind::Text},
        {"LandXML", "a.xml", CloudKind::Text},
        {"mapX,mapY,sourceX,sourceY", "a.txt", CloudKind::MapPoints},
        {"1,2", "a.points", CloudKind::MapPoints},
        {"1 2 3", "a.xyz", CloudKind::Xyz},
        {"1 2 3", "a.pts", CloudKind::Xyz},
        {"1 2 3", "a.ASC", CloudKind::Xyz},
        {"1 2 3", "a.tum", CloudKind::Tum},
        {"", "a", CloudKind::Text},
        {"mapX,y", "a.txt", CloudKind::Text},
        {"#CRS: x\nmapX,mapY", "a.txt", CloudKind::MapPoints},
        {"1 2 3", "a.ply/b", CloudKind::Text},
        {"1 2 3", "a.txt/b.ply", CloudKind::Ply},
    };
    for (const auto& [head, path, kind] : rows)
        EXPECT_EQ(CloudKindOf(head, path), kind) << head << " of " << path;
}

TEST(CloudKinds, WhatTheUserSaysHasToFitTheFile) {
    const std::string ply =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
        "property float z\nend_header\n1 2 3\n";
    CloudWish encoding, columns, pairs, little, big, utf8;
    encoding.Encoding = TableEncoding::Windows1252;
    columns.Columns = {PointColumn::X, PointColumn::Y, PointColumn::Z};
    pairs.Pairs = true;
    little.Encoding = TableEncoding::Utf16Le;
    big.Encoding = TableEncoding::Utf16Be;
    utf8.Encoding = TableEncoding::Utf8;
    const auto refused = [](const std::string& bytes, const std::string& path, const CloudWish& wish,
                            const std::string& why) {
        EXPECT_NE(ReadThrough(bytes, path, wish).Error.find(why), std::string::npos)
            << ReadThrough(bytes, path, wish).Error;
    };
    refused(ply, "a.ply", encoding, "the file itself says how it is written, so --encoding has no place");
    refused(ply, "a.ply", columns, "the file itself says what its columns are, so --columns has no place");
    refused(ply, "a.ply", pairs, "the file itself says what its columns are, so --columns has no place");
    refused(Points("<CgPoint>1 2 3</CgPoint>"), "a.xml", columns, "so --columns has no place");
    refused("1 2 3\n", "a.ply", {}, "it does not begin as a PLY file does, with \"ply\"");
    refused("", "a.xyz", {}, "it is empty");
    refused("\xFE\xFF", "a.xyz", little, "it begins with the mark of utf-16be (--encoding)");
    refused("\xFF\xFE", "a.xyz", big, "it begins with the mark of utf-16le (--encoding)");
    refused("M\xFCller 1 2 3\n", "a.csv", utf8,
            "it is no UTF-8 (--encoding windows-1252, or utf-16le, utf-16be)");
    // Without its mark too, where the user says what it is; with its mark as well.
    for (const std::string mark : {"", "\xFF\xFE"}) {
        const std::string text = std::string("1\0 \0002\0 \0003\0\n\0", 12);
        const CloudRun run = ReadThrough(mark + text, "a.xyz", little);
        ASSERT_EQ(run.Points.size(), 1U) << run.Error;
        EXPECT_EQ(run.Points[0].At, (std::array<double, 3>{1, 2, 3}));
    }
}

}  // namespace
