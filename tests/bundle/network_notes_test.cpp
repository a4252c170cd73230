// What the reading of a network notes: entries that the format passes over, and distances that cannot be
// meant.
#include "bundle/network_job.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class NetworkNotes : public NetworkJob {
protected:
    void ReadBytes(const std::string& text) {
        Headless.Dialogs.clear();
        Dispatch([path = Write("net.txt", text)] { ReadBundleFile(path); });
    }
    static const Note* Of(std::string_view code) {
        for (const Note& note : Notes.List)
            if (NoteKindOf(note.Code).Name == code) return &note;
        return nullptr;
    }
    static std::vector<std::string> Codes() {
        std::vector<std::string> codes;
        for (const Note& note : Notes.List) codes.emplace_back(NoteKindOf(note.Code).Name);
        return codes;
    }
    void ExpectNote(const char* code, int line, int count, const std::string& text) {
        const Note* note = Of(code);
        ASSERT_NE(note, nullptr) << code;
        EXPECT_EQ(note->Weight, Severity::Warning) << code;
        EXPECT_EQ(note->File, PathOf("net.txt"));
        EXPECT_EQ(note->Line, line) << code;
        EXPECT_EQ(note->Count, count) << code;
        EXPECT_EQ(note->Text, text);
    }
    // Stations S1 and S2 in lines 3 and 5, object points P1 and P2 in lines 10 and 12; distances from
    // line 17.
    static std::string WithDistances(const std::string& distances) {
        return "Theodolite\nname x y z\nS1 0 0 0\n2 sets\nS2 10 0 0\n2 sets\nEND\n"
               "Object Points\nP1 P2 follow\nP1 0 5 0\n\nP2 10 0 0\n\nEND\n"
               "Distances\nfrom to distance\n" +
               distances + "END\n";
    }
};

}  // namespace

TEST_F(NetworkNotes, ThereAreNoneOfANetworkAsItShouldBe) {
    ReadBytes(network_.Text());
    EXPECT_EQ(Codes(), std::vector<std::string>{});
    ReadBytes(WithDistances("S1 P1 5\nS2 P1 11.18\n"));
    EXPECT_EQ(Codes(), std::vector<std::string>{});
    EXPECT_EQ(BundleObjections(Bundle), "");
}

TEST_F(NetworkNotes, EntriesOfOneLineSwallowEachOther) {
    ReadBytes(
        "Theodolite\nname x y z\nS1 0 0 0\n2 sets\nEND\nObject Points\nname x y z\n"
        "P1 0 5 0\nP2 1.5 -5 2e1\nP3 0 7 0\nP4 0,5 8,5 0\nP5 1 1 1\nmeasured 3 times\nEND\n"
        "Distances\nfrom to distance\nS1 P1 5\nS1 P2 5\nS1 P4 5\nEND\n");
    EXPECT_EQ(Bundle.nObjectPoints, 3);
    ExpectNote(
        "entry-skipped", 9, 2,
        "The line \"P2 1.5 -5 2e1\" looks like an entry, and is not read: it stands in the place of the "
        "second line of the entry before it");
    EXPECT_EQ(Codes(), (std::vector<std::string>{"entry-skipped", "distance-unknown"}));
}

TEST_F(NetworkNotes, RemarksThatLookLikeAnEntryAreNoWarning) {
    ReadBytes(
        "Theodolite\nname x y z\nS1 0 0 0\ntemp 20.5 1013 45\nS2 10 0 0\nsets 2 4 8\nEND\n"
        "Date 2026 11 22\nObject Points\nname x y z\nP1 0 5 0\n\nP2 10 0 0\n\nEND\n"
        "Distances\nfrom to distance\nS1 P1 5\nEND\n");
    EXPECT_EQ(Codes(), std::vector<std::string>{"empty-row"});
    const Note* note = Of("empty-row");
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->Weight, Severity::Note);
    EXPECT_EQ(note->Line, 4);
    EXPECT_EQ(note->Count, 3);
    EXPECT_EQ(
        note->Text,
        "The line \"temp 20.5 1013 45\" looks like an entry, and is not read: it stands in the place of "
        "the second line of the entry before it; no distance names it, so it is taken as a remark");
}

TEST_F(NetworkNotes, AnEntryInThePlaceOfAHeadingIsNotRead) {
    const std::string rest = "Object Points\nname x y z\nP1 0 5 0\n\nEND\nDistances\nheading\nS1 P1 5\nEND\n";
    ReadBytes("Theodolite\nS1 0 0 0\nS2 1 1 1\n\nEND\n" + rest);
    EXPECT_EQ(Bundle.nStations, 1);
    EXPECT_EQ(Bundle.StationName[1], "S2");
    ASSERT_NE(Of("entry-skipped"), nullptr);
    ExpectNote("entry-skipped", 2, 1,
               "The line \"S1 0 0 0\" looks like an entry, and is not read: it stands in the line behind a "
               "keyword, where a heading is expected");
    // A first distance likewise; a heading of words and a number is none.
    ReadBytes("Theodolite\n\nS1 0 0 0\n\nEND\nObject Points\n\nP1 0 5 0\n\nEND\nDistances\nS1 P1 5\nEND\n");
    ExpectNote("entry-skipped", 12, 1,
               "The line \"S1 P1 5\" looks like an entry, and is not read: it stands in the line behind a "
               "keyword, where a heading is expected");
    ReadBytes(
        "Theodolite\n\nS1 0 0 0\n\nEND\nObject Points\n\nP1 0 5 0\n\nEND\nDistances\nin May 2026\nS1 P1 5\nEND\n");
    EXPECT_EQ(Codes(), std::vector<std::string>{});
}

TEST_F(NetworkNotes, ANameThatBeginsWithEndEndsItsSectionAndWhatFollowsIsNotRead) {
    ReadBytes(
        "The hall in 3 parts\nP0 1 2 3\nTheodolite\n\nS1 0 0 0\n\nENDPOINT 4 5 6\n\nS3 1 1 1\n\nEND\n"
        "Object Points\n\nP1 0 5 0\n\nEND of points\nDistances\n\nS1 P1 5\nS3 P1 4\nEND\n");
    EXPECT_EQ(Bundle.nStations, 1);
    ExpectNote(
        "entry-skipped", 7, 2,
        "The line \"ENDPOINT 4 5 6\" looks like an entry, and is not read: it begins with END, and ends "
        "its section");
}

TEST_F(NetworkNotes, DistancesThatCannotBeMeantAreNotedByTheirKinds) {
    ReadBytes(WithDistances(
        "S1 P1 5\nS3 P1 3\nS1 P9 3\nP1 S1 5\nP2 S1 10\nP1 S2 11\nS1 P2 0\nS2 P1 -4\nS2 P2 1\n"));
    ExpectNote("distance-unknown", 18, 2,
               "The distance from \"S3\" to \"P1\" names a point that is not there, and is left out of the "
               "adjustment");
    ExpectNote(
        "distance-swapped", 20, 3,
        "The distance from \"P1\" to \"S1\" names the object point before the station, and is left out "
        "of the adjustment");
    ExpectNote("distance-not-positive", 23, 2,
               "The distance from \"S1\" to \"P2\" is 0 or less, and takes part as it stands");
    ExpectNote(
        "distance-one-place", 25, 1,
        "The distance from \"S2\" to \"P2\" is one between points at the same place, and is left out of "
        "the adjustment");
    EXPECT_EQ(Notes.List.size(), 4u);
    // The message before an adjustment is what it was.
    EXPECT_EQ(BundleObjections(Bundle),
              "5 distances name points that are not there and are left out, the first: \"S3\" to \"P1\"\r\n"
              "1 distance is one between points at the same place and is left out: \"S2\" to \"P2\"\r\n"
              "2 distances are 0 or less, the first: \"S1\" to \"P2\"");
    // What the notes say of the adjustment is so.
    const BundleWork work = PrepareBundle(Bundle, 100);
    const std::vector<bool> takesPart = {true, false, false, false, false, false, true, true, false};
    BundleWork rows = work;
    AMatrix(Bundle.Net, rows);
    for (std::size_t k = 0; k < takesPart.size(); ++k)
        EXPECT_EQ(rows.A[k + 1].Station != 0, takesPart[k]) << k;
}

TEST_F(NetworkNotes, AnAdjustmentWithoutAnEndIsNotedOnTheDesktopToo) {
    std::string text = network_.Text();
    const std::size_t at = text.find("S1 P1 ");
    text.replace(at, text.find("\r\n", at) - at, "S1 P1 100000");
    Read(text);
    EXPECT_EQ(Of("not-converged"), nullptr);
    Calculate();
    ASSERT_NE(LastMessage().find("iterations the coordinates still change by"), std::string::npos)
        << LastMessage();
    const Note* note = Of("not-converged");
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->Count, 1);
    EXPECT_TRUE(
        note->Text.starts_with("The adjustment of the network did not converge: after 1000 iterations"))
        << note->Text;
    Read(network_.Text());
    Calculate();
    EXPECT_EQ(Of("not-converged"), nullptr);
}

TEST_F(NetworkNotes, AsManyDistancesAsUnknownsAreTold) {
    // 4 stations and 6 points: 24 distances, and 30 coordinates less the 6 that are held.
    for (const int objects : {6, 7}) {
        SCOPED_TRACE(objects);
        Read(SimulatedNetwork(4, objects).Text());
        Calculate();
        const bool told = std::any_of(Notes.List.begin(), Notes.List.end(),
                                      [](const Note& note) { return note.Code == NoteCode::NoRedundancy; });
        EXPECT_EQ(told, objects == 6);
        UnloadWindow("FormBündel");
    }
}

TEST_F(NetworkNotes, WhatNoDistanceNamesTakesNoRedundancy) {
    // Of 7 points there are 28 distances for 27 unknowns; one more point that no distance names has three.
    std::string text = SimulatedNetwork(4, 7).Text();
    const std::size_t at = text.find("P7");
    ASSERT_NE(at, std::string::npos);
    const std::size_t begin = text.rfind("\n", at) + 1, end = text.find("\n", text.find("\n", at) + 1) + 1;
    std::string lines = text.substr(begin, end - begin);
    lines.replace(lines.find("P7"), 2, "P99");
    text.insert(end, lines);
    Read(text);
    Calculate();
    EXPECT_NE(Of("network-open"), nullptr);
    EXPECT_EQ(Of("no-redundancy"), nullptr);
}
