// The file of all pairs of points.
#include "analysis/trumpet_file.h"

#include <filesystem>
#include <random>

#include "analysis/distance_job.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"

using namespace corvinade;

namespace {

class TrumpetFile : public DistanceJob {
protected:
    // Clicks the button, the dialog giving this path.
    static void Save(const std::string& path) {
        Headless.Answers["save"].push_back(path);
        UserClick(DistanceScaleWindow.BtnSaveTrumpetData);
    }
    std::string path_ = PathOf("trumpet.txt");
};

TEST_F(TrumpetFile, HasALineForEachPairOnce) {
    Triangle();
    Open();
    Save(path_);
    EXPECT_EQ(Contents(path_), "A\tB\t5\t6\t1.000\r\nA\tC\t13\t16\t3.000\r\nB\tC\t12\t10\t-2.000\r\n");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(TrumpetFile, TheDifferenceAloneStandsInTheLengthUnit) {
    Triangle();
    Open();
    Units.LengthFactor = 0.1;
    Units.FmtLength = "0.00";
    Save(path_);
    EXPECT_EQ(Contents(path_), "A\tB\t5\t6\t0.10\r\nA\tC\t13\t16\t0.30\r\nB\tC\t12\t10\t-0.20\r\n");
}

TEST_F(TrumpetFile, DistancesAreIn32BitsAndWithTheSystemsDelimiter) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    Pair("B", {1.0L / 3, 0, 0}, {0.125, 0, 0});
    Headless.Decimal = ',';
    Open();
    Save(path_);
    EXPECT_EQ(Contents(path_), "A\tB\t0,3333333\t0,125\t-0,208\r\n");
}

TEST_F(TrumpetFile, TakesTheTransformedPointsWhereTheyAreChosen) {
    Pair("A", {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    Pair("B", {10, 0, 0}, {12, 0, 0}, {11, 0, 0});
    Open();
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    Save(path_);
    EXPECT_EQ(Contents(path_), "A\tB\t11\t12\t1.000\r\n");
}

TEST_F(TrumpetFile, AsksBeforeItReplacesAFile) {
    Triangle();
    Open();
    Write("trumpet.txt", "old");
    Headless.Answers["message"].push_back("No");
    Save(path_);
    EXPECT_EQ(LastMessage(), "File " + path_ + " is existing.\r\nWill you replace it?");
    EXPECT_EQ(Headless.Dialogs.back().Buttons, (Texts{"Yes", "No"}));
    EXPECT_EQ(Contents(path_), "old");
    Headless.Answers["message"].push_back("Yes");
    Save(path_);
    EXPECT_EQ(Contents(path_).substr(0, 4), "A\tB\t");
}

TEST_F(TrumpetFile, ACancelledDialogWritesNothing) {
    Triangle();
    Open();
    Headless.Answers["save"].push_back(std::nullopt);
    UserClick(DistanceScaleWindow.BtnSaveTrumpetData);
    Save("");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(TrumpetFile, AFullDiskLeavesTheOldFile) {
    Triangle();
    Open();
    Write("trumpet.txt", "old");
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        FileFaults.Refuse = [operation](const std::string& now, const std::string&) {
            return now == operation ? "no space left on device" : "";
        };
        Headless.Answers["message"].push_back("Yes");
        Save(path_);
        EXPECT_EQ(LastMessage(), "Cannot write \"" + path_ + "\": no space left on device");
        EXPECT_EQ(Contents(path_), "old");
        EXPECT_EQ(Run.WaitPointers, 0);
    }
    const std::filesystem::directory_iterator files(folder_);
    int beside = 0;
    for (const auto& file : files) beside += file.path().string().find("trumpet") != std::string::npos;
    EXPECT_EQ(beside, 1);
}

TEST_F(TrumpetFile, TheBusyPointerIsOnMeanwhile) {
    Cloud(2400);
    Open();
    int pointers = 0;
    Headless.OnYield = [&pointers] {
        pointers = Run.WaitPointers;
        UserClick(Progress.BtnCancel);
    };
    Save(path_);
    EXPECT_EQ(pointers, 1);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(TrumpetFile, ALargeOneCanBeCancelled) {
    Cloud(2400);
    Open();
    Write("trumpet.txt", "old");
    int yields = 0;
    Headless.OnYield = [&yields] {
        EXPECT_TRUE(IsLoaded("FormProgressBar"));
        if (++yields == 3) UserClick(Progress.BtnCancel);
    };
    Headless.Answers["message"].push_back("Yes");
    Save(path_);
    EXPECT_EQ(yields, 3);
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
    EXPECT_EQ(Contents(path_), "old");
    EXPECT_FALSE(File_Exist(path_ + ".new1"));
}

TEST_F(TrumpetFile, TheOptionChosenWhileItIsWrittenLeavesItsNumbers) {
    Cloud(2400);
    for (auto& x : Job.Transformed.X) x = 0;
    Open();
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    };
    const TrumpetPair last = PairOfPoints(*DistanceScale.Points, 2399, 2400);
    Save(path_);
    const std::string text = Contents(path_);
    const std::string expected = "P2399\tP2400\t" + PlainText(last.FromDistance) + "\t" +
                                 PlainText(last.ToDistance) + "\t" +
                                 FormatNumber(static_cast<double>(last.DeltaS), "0.000") + "\r\n";
    ASSERT_GT(text.size(), expected.size());
    EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2400 * 2399 / 2);
}

// Numbers of all sizes, and those where a digit more or less is decided.
TEST_F(TrumpetFile, EveryNumberHasTheFormThatItHasElsewhere) {
    std::mt19937 random(11);
    std::vector<double> lengths = {0,      1e-5,     9.9999997e-5, 1e-4,   1.0000001e-4, 0.5,      0.9999999,
                                   1,      9.999999, 9.9999999,    10,     99999.99,     999999.9, 999999.94,
                                   1e6,    1234567,  9999999,      1e7,    1e12,         3e37,     0.0005,
                                   0.0015, 0.0025,   2.5e-4,       1024.5, 8388608.5,    1e-30};
    for (int k = 0; k < 3000; ++k) {
        const double share = static_cast<double>(random()) / 4294967296.0;
        lengths.push_back(share * std::pow(10.0, static_cast<double>(random() % 16) - 7));
    }
    for (const auto& [factor, picture] :
         {std::pair{1.0, "0.000"}, {0.1, "0.000000"}, {1 / 25.4, "0.00"}, {0.001, "0"}}) {
        Units.LengthFactor = factor;
        Units.FmtLength = picture;
        DistancePoints points;
        points.Names.resize(3, "N");
        for (const double length : lengths) {
            const double other = length * (1 + (static_cast<double>(random()) / 4294967296.0 - 0.5) / 100);
            for (auto* side : {&points.From, &points.To})
                for (auto& column : *side) column.assign(3, 0);
            points.From[0][2] = length;
            points.To[0][2] = other;
            ASSERT_TRUE(WriteTrumpetFile(path_, points));
            const auto from = static_cast<float>(length), to = static_cast<float>(other);
            const auto delta = static_cast<double>(static_cast<float>(other - length));
            ASSERT_EQ(Contents(path_), "N\tN\t" + PlainText(from) + "\t" + PlainText(to) + "\t" +
                                           FormatNumber(delta * factor, picture) + "\r\n");
        }
        if (factor == 1.0) lengths.resize(300);  // the rest is a matter of the difference alone
    }
}

TEST_F(TrumpetFile, NamesAreWrittenAsEveryTextOfAFile) {
    Pair("Pfad\xc3\xa4", {0, 0, 0}, {0, 0, 0});
    Pair("\xc3\x9c", {1, 0, 0}, {1, 0, 0});
    Open();
    Save(path_);
    EXPECT_EQ(Contents(path_), "Pfad\xe4\t\xdc\t1\t1\t0.000\r\n");
    EXPECT_EQ(DecodeText(Contents(path_)), "Pfad\xc3\xa4\t\xc3\x9c\t1\t1\t0.000\r\n");
    // A character without a place in the single-byte code page makes the file one of UTF-8.
    Pair("\xce\xa9", {2, 0, 0}, {2, 0, 0});
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    Headless.Answers["message"].push_back("Yes");
    Save(path_);
    EXPECT_EQ(
        Contents(path_),
        "Pfad\xc3\xa4\t\xc3\x9c\t1\t1\t0.000\r\nPfad\xc3\xa4\t\xce\xa9\t2\t2\t0.000\r\n\xc3\x9c\t\xce\xa9"
        "\t1\t1\t0.000\r\n");
}

}  // namespace
