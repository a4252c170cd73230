// Reading of network files.
#include "bundle/network_job.h"
#include "core/form_main.h"
#include "core/units.h"

using namespace corvinade;

namespace {

class NetworkFile : public NetworkJob {
protected:
    void ReadBytes(const std::string& text) {
        Headless.Dialogs.clear();
        Dispatch([path = Write("net.txt", text)] { ReadBundleFile(path); });
    }
    static std::string Sections(const std::string& stations, const std::string& objects,
                                const std::string& distances) {
        return "Theodolite\nskipped\n" + stations + "END\nObject Points\nskipped\n" + objects +
               "END\nDistances\nskipped\n" + distances + "END\n";
    }
};

}  // namespace

TEST_F(NetworkFile, FillsTheModelFromItsThreeSections) {
    ReadBytes(
        "head of the file\r\nS9 9 9 9\r\nTheodolite of the hall\r\nname X Y Z\r\nS1 1.5 -2 3\r\n2 sets\r\n"
        "S2 4 5e2 6\r\n1 set\r\nEND of stations\r\nbetween\r\nObject Points\r\n\r\nP1 7 8 9\r\n\r\nEND\r\n"
        "Distances\r\nfrom to\r\nS1 P1 12.25\r\nS2   P1\t13\r\nS1 P1 14\r\nEND\r\n");
    EXPECT_EQ(Bundle.BundleFilePath, PathOf("net.txt"));
    EXPECT_EQ(Bundle.nStations, 2);
    EXPECT_EQ(Bundle.nObjectPoints, 1);
    EXPECT_EQ(Bundle.nDistances, 3);
    EXPECT_EQ(Bundle.StationName, (std::vector<std::string>{"", "S1", "S2"}));
    EXPECT_EQ(Bundle.Net.StationXYZ(1, 1), 1.5);
    EXPECT_EQ(Bundle.Net.StationXYZ(1, 2), -2);
    EXPECT_EQ(Bundle.Net.StationXYZ(2, 2), 500);
    EXPECT_EQ(Bundle.ObjectName, (std::vector<std::string>{"", "P1"}));
    EXPECT_EQ(Bundle.Net.ObjectXYZ(1, 3), 9);
    EXPECT_EQ(Bundle.DistancePair[1], (std::vector<std::string>{"", "S1", "S2", "S1"}));
    EXPECT_EQ(Bundle.DistancePair[2], (std::vector<std::string>{"", "P1", "P1", "P1"}));
    EXPECT_EQ(Bundle.Net.DistanceValue, (Column{0, 12.25, 13, 14}));
}

TEST_F(NetworkFile, TellsItsCountsMakesTheJobValidAndOpensTheWindow) {
    EXPECT_FALSE(Main.MenuTransformationBundle.Enabled);
    ReadBytes(network_.Text());
    EXPECT_EQ(Messages(),
              std::vector<std::string>{"Found 5 Stations and 12 Object Points and 60 Distance Observations"});
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_TRUE(Main.MenuTransformation.Enabled);
    EXPECT_TRUE(Main.MenuTransformationBundle.Enabled);
    EXPECT_TRUE(IsLoaded("FormBündel"));
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(NetworkFile, IsNamedInTheInputDialogAndReadByItsOkInPlaceOfPoints) {
    Headless.Answers["open"].push_back(Write("hall.txt", network_.Text()));
    ShowWindow("FormInputFiles");
    UserClick(InputFiles.Command2);
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(LastMessage(), "Found 5 Stations and 12 Object Points and 60 Distance Observations");
    EXPECT_EQ(InputFiles.BundleFile, "") << "the next OK imports points again";
    EXPECT_TRUE(IsLoaded("FormBündel"));
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
}

TEST_F(NetworkFile, OpensTheWindowAgainFromTheMenuWhileItIsInMemory) {
    ReadBytes(network_.Text());
    UnloadWindow("FormBündel");
    UserClick(Main.MenuTransformationBundle);
    EXPECT_TRUE(IsLoaded("FormBündel"));
}

TEST_F(NetworkFile, IsReadInTheChosenUnitOfLength) {
    Units.LengthFactor = 0.001;
    ReadBytes(Sections("S1 1 2 3\n\n", "P1 4 5 6\n\n", "S1 P1 5.5\n"));
    EXPECT_DOUBLE_EQ(Bundle.Net.StationXYZ(1, 2), 2000);
    EXPECT_DOUBLE_EQ(Bundle.Net.ObjectXYZ(1, 3), 6000);
    EXPECT_DOUBLE_EQ(Bundle.Net.DistanceValue[1], 5500);
}

TEST_F(NetworkFile, HasADecimalPointWhateverTheSystemHas) {
    Headless.Decimal = ',';
    ReadBytes(Sections("S1 1.5 2.5 3.5\n\n", "P1 4 5 6\n\n", "S1 P1 5.25\n"));
    EXPECT_EQ(Bundle.Net.StationXYZ(1, 1), 1.5);
    EXPECT_EQ(Bundle.Net.DistanceValue[1], 5.25);
}

TEST_F(NetworkFile, ChecksNoContent) {
    ReadBytes(
        Sections("S1 one 2 3\n\nS2 4\n\n\n\n", "P1 4 5 6 7 8\n\n", "S1 P1 far\nS1\nnobody nothing 4\n"));
    EXPECT_EQ(Bundle.nStations, 3);
    EXPECT_EQ(Bundle.Net.StationXYZ(1, 1), 0) << "no number is 0";
    EXPECT_EQ(Bundle.Net.StationXYZ(2, 1), 4);
    EXPECT_EQ(Bundle.Net.StationXYZ(2, 3), 0);
    EXPECT_EQ(Bundle.StationName[3], "");
    EXPECT_EQ(Bundle.Net.ObjectXYZ(1, 3), 6);
    EXPECT_EQ(Bundle.Net.DistanceValue[1], 0);
    EXPECT_EQ(Bundle.DistancePair[2][2], "");
    EXPECT_EQ(Bundle.DistancePair[1][3], "nobody");
    EXPECT_EQ(Messages().size(), 1u);
}

TEST_F(NetworkFile, SkipsTheLinesBehindKeywordsAndEntriesWhateverTheyHold) {
    ReadBytes(
        "Theodolite\nEND\nS1 1 2 3\nEND\nS2 4 5 6\nDistances\nEND\n"
        "Object Points\nDistances\nP1 1 1 1\nEND\nEND\nDistances\nEND\nS1 P1 3\nEND\n");
    EXPECT_EQ(Bundle.nStations, 2);
    EXPECT_EQ(Bundle.nObjectPoints, 1);
    EXPECT_EQ(Bundle.nDistances, 1);
}

TEST_F(NetworkFile, AnEntryThatBeginsWithEndEndsItsSection) {
    ReadBytes(Sections("S1 1 2 3\n\nENDPOINT 4 5 6\n\nS3 1 1 1\n\n", "P1 1 1 1\n\n", "S1 P1 3\n"));
    EXPECT_EQ(Bundle.nStations, 1);
}

TEST_F(NetworkFile, StationsAndObjectPointsMayBearTheSameNames) {
    ReadBytes(Sections("A 0 0 0\n\nB 9 0 0\n\n", "B 0 0 7\n\nA 0 5 0\n\n", "A B 7.5\n"));
    BundleWork work = PrepareBundle(Bundle, 100);
    EXPECT_EQ(work.StationOf[1], 1);
    EXPECT_EQ(work.ObjectOf[1], 1);
    AMatrix(Bundle.Net, work);
    EXPECT_DOUBLE_EQ(work.l[1], 0.5);
}

TEST_F(NetworkFile, WithoutOneOfItsSectionsIsRefusedAndNothingChanges) {
    const std::string whole = network_.Text();
    ReadBytes(whole);
    Job.PathMCS = "before";
    const std::uint64_t generation = ::Run.JobGeneration;
    for (const std::string keyword : {"Theodolite", "Object Points", "Distances"}) {
        std::string text = whole;
        text.replace(text.find(keyword), 3, "xxx");
        ReadBytes(text);
        ASSERT_EQ(Messages().size(), 1u) << keyword;
        EXPECT_NE(LastMessage().find("net.txt"), std::string::npos);
        EXPECT_NE(LastMessage().find("before a section \"" + keyword + "\""), std::string::npos)
            << LastMessage();
        EXPECT_EQ(Bundle.nStations, 5);
        EXPECT_EQ(Bundle.Net.DistanceValue.size(), 61u);
    }
    EXPECT_EQ(Job.PathMCS, "before");
    EXPECT_EQ(::Run.JobGeneration, generation);
}

TEST_F(NetworkFile, ARefusedOneLeavesAProgramWithoutDataAsItWas) {
    ReadBytes("Theodolite\nskipped\nS1 1 2 3\n\nEND\n");
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_TRUE(Bundle.IsEmpty());
    EXPECT_FALSE(IsLoaded("FormBündel"));
    EXPECT_FALSE(Main.MenuTransformationBundle.Enabled);
}

TEST_F(NetworkFile, CutAtAnyByteIsRefusedOrWhole) {
    const std::string whole = Sections("S1 1 2 3\nx\n", "P1 4 5 6\nx\n", "S1 P1 5\n");
    for (std::size_t length = 0; length < whole.size() - 2; ++length) {
        EXPECT_NE(ErrorOf([&] { BündelInputFileEinlesen(Write("net.txt", whole.substr(0, length))); }), "")
            << length;
    }
    EXPECT_EQ(ErrorOf([&] { BündelInputFileEinlesen(Write("net.txt", whole)); }), "");
}

TEST_F(NetworkFile, TheOrderOfTheSectionsIsFixed) {
    ReadBytes(
        "Object Points\nskipped\nP1 1 2 3\n\nEND\nTheodolite\nskipped\nS1 1 2 3\n\nEND\nDistances\nskipped\nEND\n");
    EXPECT_NE(LastMessage().find("before a section \"Object Points\""), std::string::npos) << LastMessage();
}

TEST_F(NetworkFile, WithMoreStationsThanTheCountsHoldIsRefused) {
    std::string stations;
    for (int i = 0; i < 32768; ++i) stations += "S 1 2 3\n\n";
    ReadBytes(Sections(stations, "", ""));
    EXPECT_NE(LastMessage().find("32767"), std::string::npos) << LastMessage();
    EXPECT_TRUE(Bundle.IsEmpty());
}

TEST_F(NetworkFile, ThatIsNoTextIsRefused) {
    ReadBytes(std::string("Theodolite\0\0\1\2", 14));
    EXPECT_NE(LastMessage(), "");
    EXPECT_TRUE(Bundle.IsEmpty());
    ReadBytes(std::string("\xff\xfeT\0h\0", 6));
    EXPECT_TRUE(Bundle.IsEmpty());
}

TEST_F(NetworkFile, PointsOfAClosedJobDoNotComeBackBehindANetwork) {
    Job.Start.Add("A", 1, 1, 1);
    Job.RobotABC = Matrix(1, 3);
    ReadBytes(network_.Text());
    EXPECT_EQ(Job.Start.Count(), 0);
    EXPECT_EQ(Job.Start.Name.size(), 1u);
    EXPECT_EQ(Job.RobotABC.Rows, -1);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(NetworkFile, ObjectionsNameWhatCannotBeMeant) {
    ReadBytes(Sections("S1 1 2 3\n\n", "P1 4 5 6\n\n", "S1 P1 5\nS2 P1 3\nS1 P9 3\nS1 P1 -4\n"));
    EXPECT_EQ(BundleObjections(Bundle),
              "2 distances name points that are not there and are left out, the first: \"S2\" to \"P1\"\r\n"
              "1 distance is 0 or less: \"S1\" to \"P1\"");
    ReadBytes(Sections("S1 1 2 3\n\n", "P1 4 5 6\n\n", ""));
    EXPECT_EQ(
        BundleObjections(Bundle),
        "There is no distance between a station and an object point of the file, so nothing can be adjusted.");
    ReadBytes(Sections("S1 4 5 6\n\n", "P1 4 5 6\n\nP2 4 5 7\n\n", "S1 P1 5\nS1 P2 3\n"));
    EXPECT_EQ(BundleObjections(Bundle),
              "1 distance is one between points at the same place and is left out: \"S1\" to \"P1\"");
    ReadBytes(network_.Text());
    EXPECT_EQ(BundleObjections(Bundle), "");
}

TEST_F(NetworkFile, ANumberThatIsNoneOrReadInPartIsToldBeforeAnAdjustment) {
    ReadBytes(Sections("S1 1,5 2 3\n\n", "P1 4 5\n\n", "S1 P1 5.25\n"));
    EXPECT_EQ(Bundle.Net.StationXYZ(1, 1), 1);
    EXPECT_EQ(BundleObjections(Bundle),
              "2 fields of the file are no numbers with a decimal point, the first: line 3, \"1,5\"");
    ReadBytes(Sections("S1 1.5 2e1 -3\n\n", "P1 4 5 6\n\n", "S1 P1 12m\n"));
    EXPECT_EQ(Bundle.Net.DistanceValue[1], 12);
    EXPECT_EQ(BundleObjections(Bundle),
              "1 field of the file is no number with a decimal point: line 13, \"12m\"");
}
