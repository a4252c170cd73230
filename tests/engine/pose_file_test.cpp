// Orientations of poses from a text file.
#include "engine/calculation_job.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class PosesFromFile : public CalculationJob {
protected:
    PosesFromFile() {
        AddPairs(3, 0);
        Open();
        UserSetValue(trafoWindow.CheckUseABC, 1);
        UserSetValue(trafoWindow.CheckRDataKnown, 1);
    }
    void Load(const std::string& content) {
        Headless.Answers["open"].push_back(Write("poses.txt", content));
        UserClick(trafoWindow.BtnLoadRData);
    }
    static double Degrees(int row, int column) { return Job.RobotABC(row, column) * 180 / kPi; }
};

}  // namespace

TEST_F(PosesFromFile, LinesWithoutNamesGoByOrder) {
    Load("1 2 3 10 20 30\n\n4;5;6;-40;50;60\r\n7\t8\t9\t70\t80\t90\n");
    EXPECT_TRUE(Messages().empty()) << LastMessage();
    EXPECT_EQ(Job.RobotABC.Rows, 3);
    EXPECT_EQ(Job.RobotABC.Columns, 3);
    EXPECT_NEAR(Degrees(1, 1), 10, 1e-9);
    EXPECT_NEAR(Degrees(1, 3), 30, 1e-9);
    EXPECT_NEAR(Degrees(2, 1), -40, 1e-9);
    EXPECT_NEAR(Degrees(3, 2), 80, 1e-9);
}

TEST_F(PosesFromFile, LinesWithNamesGoByThem) {
    Job.Target.Name[2] = "MCS_a=OCS_b";
    Load("P3 0 0 0 3 3 3\nb 0 0 0 2 2 2\nelsewhere 0 0 0 9 9 9\nP1 0 0 0 1 1 1\n");
    EXPECT_TRUE(Messages().empty()) << LastMessage();
    for (int i = 1; i <= 3; ++i) EXPECT_NEAR(Degrees(i, 2), i, 1e-9);
}

TEST_F(PosesFromFile, CommasAreDecimalsWhereTheSystemHasThem) {
    Headless.Decimal = ',';
    Load("0 0 0 1,5 0 0\n0 0 0 2.5 0 0\n0 0 0 3 0 0\n");
    EXPECT_TRUE(Messages().empty()) << LastMessage();
    EXPECT_NEAR(Degrees(1, 1), 1.5, 1e-9);
    EXPECT_NEAR(Degrees(2, 1), 2.5, 1e-9);
}

TEST_F(PosesFromFile, ABadFileIsToldByLineAndChangesNothing) {
    Job.RobotABC = Matrix(3, 3);
    Job.RobotABC(1, 1) = 0.5;
    const std::string path = PathOf("poses.txt");
    const struct {
        const char* Content;
        std::string Message;
    } files[] = {
        {"0 0 0 1 2 3\n0 0 0 1 2\n",
         path + ", line 2: x y z a b c are expected, with a name before them or without; there are 5 fields"},
        {"0 0 0 1 2 3\n\n0 0 zero 1 2 3\n", path + ", line 3: \"zero\" is no number"},
        {"0 0 0 1 2 3\n", path + ": there is no pose for the identical point \"P2\""},
        {"", path + ": there is no pose for the identical point \"P1\""},
        {"0 0 0 1 2 3\n0 0 0 1 2 3\n0 0 0 1 2 3\n0 0 0 1 2 3\n",
         path + ", line 4: there are only 3 identical points; with names in front, the poses need no order"},
    };
    for (const auto& file : files) {
        Load(file.Content);
        EXPECT_EQ(LastMessage(), file.Message);
        EXPECT_EQ(Job.RobotABC(1, 1), 0.5);
    }
}

TEST_F(PosesFromFile, ACancelledDialogChangesNothing) {
    Headless.Answers["open"].push_back(std::nullopt);
    UserClick(trafoWindow.BtnLoadRData);
    EXPECT_EQ(Job.RobotABC.Rows, -1);
}
