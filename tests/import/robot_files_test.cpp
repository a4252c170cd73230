// The readers of robot programs: what each takes, and where it stops.
#include "import/robot_programs.h"

using namespace corvinade;

// --- Declarations -----------------------------------------------------------------------------------------

TEST_F(RobotFiles, DeclaredPosesHaveNumbersAsNamesAndTheirAnglesInTheColumnsZYX) {
    Kuka("&ACCESS RVP\nDEFDAT  CALIB PUBLIC\n\n" + kFirst + "DECL FDAT FP1={TOOL_NO 0,BASE_NO 0}\n" +
         kSecond + "ENDDAT\n");
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "1", "2"}));
    EXPECT_EQ(Job.Target.Count(), 2);
    EXPECT_EQ(Position(1), (Row{1.5, -2.25, 3}));
    EXPECT_EQ(Position(2), (Row{4, 5, 6}));
    ExpectAngles(1, {10.5, -20, 30.25});
    ExpectAngles(2, {170, 40, -50});
    EXPECT_NEAR(Run.SpanA, 159.5 * kDegree, kRoundings);
    EXPECT_NEAR(Run.SpanB, 60 * kDegree, kRoundings);
    EXPECT_NEAR(Run.SpanC, 80.25 * kDegree, kRoundings);
    EXPECT_FALSE(Job.Target.X[0]) << "element 0 stays empty";
    EXPECT_TRUE(Messages().empty());
}

TEST_F(RobotFiles, ValuesAreInTheUnitsThatAreChosen) {
    Job.LengthUnitName = "meter";
    Job.AngleUnitName = "grad (gon)";
    RhoFestlegung();
    Kuka(kFirst + kSecond + "ENDDAT\n");
    EXPECT_NEAR(*Job.Target.X[1], 1500, 1e-9);
    EXPECT_NEAR(Job.Target.Z[2], 6000, 1e-9);
    ExpectAngles(1, {9.45, -18, 27.225});
    EXPECT_NEAR(Run.SpanA, 159.5 * 0.9 * kDegree, kRoundings);
}

TEST_F(RobotFiles, BothFormsOfADeclarationMixInOneFile) {
    Kuka(kFirst + "DECL#E6POS#XP2={X#4,Y#5.5,Z#6,A#170,B#40,C#-50,S#2,T#35}\n" +
         KukaLine("XP3", "X 7,Y 8,Z 9,A 1,B 2,C 3") +
         "DECL#E6POS#XP4={X#-1,Y#-2,Z#-3,A#0.1,B#0.2,C#0.3, S#2,T#35}\nENDDAT\n");
    ASSERT_EQ(Job.Target.Count(), 4);
    EXPECT_EQ(Position(2), (Row{4, 5.5, 6}));
    EXPECT_EQ(Position(3), (Row{7, 8, 9}));
    EXPECT_EQ(Position(4), (Row{-1, -2, -3}));
    ExpectAngles(2, {170, 40, -50});
    ExpectAngles(4, {0.1, 0.2, 0.3});
}

TEST_F(RobotFiles, ABlankMayStandBeforeTheStatusAlone) {
    Kuka("DECL E6POS XP1={X 1,Y 2,Z 3,A 4,B 5,C 6, S 2,T 35}\nENDDAT\n");
    ExpectAngles(1, {4, 5, 6});
    EXPECT_EQ(Error(EinlesenKUKAdatDatei, "DECL E6POS XP1={X 1.5, Y 2, Z 3, A 4, B 5, C 6, S 2}\nENDDAT\n"),
              In(1) + "\"1.5,\" is not a number");
}

TEST_F(RobotFiles, MoreMarksThanDeclarationsLeaveRowsOfZeroAtTheEnd) {
    Kuka("DECL FRAME HOME={X 9,Y 9,Z 9,A 9,B 9,C 9}\n" + kFirst + kSecond +
         "GLOBAL E6POS XP7={X 9,Y 9,Z 9,A 9,B 9,C 9,S 2,T 35}\nENDDAT\n");
    EXPECT_EQ(Job.Target.Count(), 4);
    EXPECT_EQ(Position(2), (Row{4, 5, 6}));
    ExpectNoPose(3);
    ExpectNoPose(4);
    EXPECT_NEAR(Run.SpanC, 80.25 * kDegree, kRoundings) << "they have no angles that could count";
}

TEST_F(RobotFiles, MarksCountAcrossLineEndsToo) {
    Kuka(kFirst + "! {\nX\nENDDAT\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ExpectNoPose(2);
}

TEST_F(RobotFiles, APoseInTheVeryLastLineIsNotTaken) {
    for (const char* end : {"", "\n"}) {
        std::string second = kSecond;
        second.pop_back();
        Kuka(kFirst + second + end);
        EXPECT_EQ(Job.Target.Count(), 2);
        EXPECT_EQ(Job.Target.Name[1], "1");
        ExpectNoPose(2);
        Kuka(second + end);
        EXPECT_EQ(Job.Target.Count(), 1);
        ExpectNoPose(1);
        EXPECT_EQ(Run.SpanA, 0);
    }
    Kuka(kFirst + kSecond + "\n");
    EXPECT_EQ(Position(2), (Row{4, 5, 6})) << "an empty line behind it is enough";
}

TEST_F(RobotFiles, DeclarationsBeginAtTheBeginningOfTheirLine) {
    Kuka(" " + kFirst + kSecond + "ENDDAT\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    EXPECT_EQ(Position(1), (Row{4, 5, 6}));
    ExpectNoPose(2);
}

TEST_F(RobotFiles, ADeclarationThatLacksSomethingIsNamedWithItsLineAndText) {
    const auto error = [this](const std::string& values) {
        return Error(EinlesenKUKAdatDatei, kFirst + "DECL E6POS XP2={" + values + "}\nENDDAT\n");
    };
    EXPECT_EQ(error("X 1,Y 2,Z 3,A 4,B 5,C 6,S 2"), "");
    EXPECT_EQ(error("X 1,Y two,Z 3,A 4,B 5,C 6,S 2"), In(2) + "\"two\" is not a number");
    EXPECT_EQ(Position(1), (Row{1.5, -2.25, 3})) << "what was read before stays";
    ExpectNoPose(2);
    EXPECT_EQ(error("X 1,Y 2,Z 3,A 4,C 6,S 2"),
              In(2) + "there is no \"B \" in \"DECL E6POS XP2={X 1,Y 2,Z 3,A 4,C 6,S 2}\"");
    EXPECT_EQ(error("X 1,Y 2,Z 3,A 4,B 5,C 6"), In(2) + "there is no \",S \" in \"C 6}\"");
    EXPECT_EQ(error("X 1,Y 2,Z 3,A 4,B 5,C 6,E1 0,S 2"), In(2) + "\"6,E1 0\" is not a number");
    EXPECT_EQ(error("X 1,Y 2,Z 3,A 4,B 5,C ,S 2").substr(0, In(2).size()), In(2));
    EXPECT_EQ(error("X 1,Y 2,Z 3,B 4,A 5,C 6,S 2").substr(0, In(2).size()), In(2));
    EXPECT_EQ(error("X 12Y 2,Z 3,A 4,B 5,C 6,S 2"),
              In(2) + "\"Y \" stands without a comma before it in \"X 12\"");
    EXPECT_EQ(error("X 1e999,Y 2,Z 3,A 4,B 5,C 6,S 2"), In(2) + "\"1e999\" is not a number");
}

TEST_F(RobotFiles, NumbersTooLargeForTheirUnitAreNoPose) {
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    const std::string line = KukaLine("XP1", "X 1e307,Y 2,Z 3,A 4,B 5,C 6");
    EXPECT_EQ(Error(EinlesenKUKAdatDatei, line + "ENDDAT\n").substr(0, In(1).size() + 27),
              In(1) + "these numbers are no pose: ");
}

TEST_F(RobotFiles, MorePosesThanMarksAreAnError) {
    EXPECT_EQ(Error(EinlesenKUKAdatDatei, kFirst + "DECL E6POS XP2={ X 1,Y 2,Z 3,A 4,B 5,C 6,S 2}\nENDDAT\n"),
              In(2) +
                  "one more pose than the 1 that the file announces: "
                  "\"DECL E6POS XP2={ X 1,Y 2,Z 3,A 4,B 5,C 6,S 2}\"");
    EXPECT_EQ(Position(1), (Row{1.5, -2.25, 3}));
}

TEST_F(RobotFiles, APointIsTakenOnASystemWithComma) {
    Headless.Decimal = ',';
    Kuka(kFirst + "DECL E6POS XP2={X 4,5,Y 5,Z 6,A 170,B 40,C -50,25,S 2}\nENDDAT\n");
    EXPECT_EQ(Position(1), (Row{1.5, -2.25, 3}));
    EXPECT_EQ(Position(2), (Row{4.5, 5, 6})) << "the system's own form is taken as well";
    ExpectAngles(2, {170, 40, -50.25});
    Headless.Decimal = '.';
    EXPECT_EQ(Error(EinlesenKUKAdatDatei, "DECL E6POS XP2={X 4,5,Y 5,Z 6,A 1,B 2,C 3,S 2}\nENDDAT\n"),
              In(1) + "\"4,5\" is not a number");
}

TEST_F(RobotFiles, AFileWithoutAPoseIsAnErrorAndTheJobStaysAsItWas) {
    Kuka(kFirst + kSecond + "ENDDAT\n");
    const JobRecord before = Job;
    for (const PoseReader reader : {EinlesenKUKAdatDatei, EinlesenABB_MODX}) {
        for (const char* content : {"", "\n", "DEFDAT CALIB\nENDDAT\n", "1;2;3;4\n"})
            EXPECT_EQ(Error(reader, content),
                      "Cannot read \"" + PathOf("program.txt") + "\": there is no pose in it");
    }
    EXPECT_EQ(Job.Target.Name, before.Target.Name);
    EXPECT_EQ(Job.RobotABC.Elements, before.RobotABC.Elements);
}

TEST_F(RobotFiles, AFileOfMarksAloneTakesNoMemoryForTheirPoses) {
    std::string marks;
    for (int i = 0; i < 200000; ++i) marks += "{X";
    EXPECT_NE(Error(EinlesenKUKAdatDatei, kFirst + marks + "\n").find("it announces 200001 poses"),
              std::string::npos);
    EXPECT_EQ(Job.Target.Count(), 0);
}

// --- Fixed columns ----------------------------------------------------------------------------------------

TEST_F(RobotFiles, PosesInColumnsHaveTheirAnglesInTheOrderRPW) {
    Fanuc(kFanucHead + FanucPose(1, {1234.5, -20.25, 600.125}, {-170, 15.5, 90.001}) +
          FanucPose(2, {-1, 2, -3}, {4, 5, 6}) + "/END\n");
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "1", "2"}));
    EXPECT_EQ(Position(1), (Row{1234.5, -20.25, 600.125}));
    EXPECT_EQ(Position(2), (Row{-1, 2, -3}));
    ExpectAngles(1, {90.001, 15.5, -170});
    ExpectAngles(2, {6, 5, 4});
    EXPECT_NEAR(Run.SpanA, 84.001 * kDegree, kRoundings);
    EXPECT_NEAR(Run.SpanC, 174 * kDegree, kRoundings);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(RobotFiles, TheLastDecimalOfZIsLostWhereItsLineEndsAtTheComma) {
    std::string pose = FanucPose(1, {1.234, 2.345, 3.456}, {4, 5, 6});
    pose.erase(pose.find(", \n\tW") + 1, 1);
    Fanuc(kFanucHead + pose + "/END\n");
    EXPECT_EQ(Position(1), (Row{1.234, 2.345, 3.45}));
}

TEST_F(RobotFiles, ColumnsThatCutANumberAreAnError) {
    const std::string good = FanucPose(1, {1234.567, 2, 3}, {4, 5, 6});
    const auto error = [&](const std::string& what, const std::string& by) {
        std::string pose = good;
        pose.replace(pose.find(what), what.size(), by);
        return FanucError(kFanucHead + pose + "/END\n");
    };
    EXPECT_EQ(error("  mm,\tY", "mm,Y"), In(10) + "the fixed columns cut \" 1234.567\" to \" 1234.\"");
    EXPECT_EQ(error("     3.000  mm, ", "     300  mm,"),
              In(10) + "the fixed columns cut \"    300\" to \"    30\"");
    EXPECT_EQ(error("     3.000  mm, ", "     3.025  mm"),
              In(10) + "the fixed columns cut \"    3.025\" to \"    3.0\"")
        << "two decimals are more than the one that the columns cost";
    EXPECT_EQ(error("=  1234.567", "=-12345.678"), In(10) + "\"X =-12345.678\" is not in the fixed columns");
    EXPECT_EQ(error("=  1234.567", "= 12345.678"), "");
    EXPECT_EQ(error("6.000 deg", "6.000 deg "), In(11) + "\"    6.000 d\" is not a number");
}

TEST_F(RobotFiles, ExternalAxesBehindTheLastAngleAreAnErrorWithItsMessageAndItsLine) {
    std::string pose = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    pose.replace(pose.find("6.000 deg"), 9, "6.000 deg,\n\tE1 =     0.000  mm");
    EXPECT_EQ(FanucError(kFanucHead + pose + "/END\n"), In(11) + "\"    6.000 d\" is not a number");
    EXPECT_EQ(Messages(), std::vector<std::string>{"Error while importing FANUC Data"});
}

TEST_F(RobotFiles, LinesBetweenTheAnglesAndTheBraceArePassedOver) {
    std::string first = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    first.insert(first.find("};"), "   GP2:\n\tJ1 =     0.000 deg\n");
    Fanuc(kFanucHead + first + FanucPose(2, {4, 5, 6}, {7, 8, 9}) + "/END\n");
    EXPECT_EQ(Position(2), (Row{4, 5, 6}));
}

TEST_F(RobotFiles, ASectionOfPosesEndsAtItsEndOrAtTheEndOfTheFile) {
    const std::string pose = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    Fanuc(kFanucHead + pose);
    EXPECT_EQ(Position(1), (Row{1, 2, 3}));
    Fanuc(kFanucHead + pose + "/END\n" + FanucPose(2, {4, 5, 6}, {7, 8, 9}));
    EXPECT_EQ(Job.Target.Count(), 2);
    ExpectNoPose(2);
    const std::string cut = kFanucHead + pose.substr(0, pose.find("};"));
    EXPECT_EQ(FanucError(cut), In(11) + "the file ends here, inside its poses");
    EXPECT_EQ(FanucError(pose), In(6) + "the file ends here, inside its poses") << "there is no /POS";
    EXPECT_EQ(FanucError(kFanucHead + pose + "\n/END\n"), In(14) + "the file ends here, inside its poses")
        << "a pose has no empty lines";
    EXPECT_EQ(FanucError(""), "Cannot read \"" + PathOf("program.txt") + "\": there is no pose in it");
    for (const std::string& message : Messages()) EXPECT_EQ(message, "Error while importing FANUC Data");
    EXPECT_EQ(Messages().size(), 4u);
}

TEST_F(RobotFiles, JointPositionsAreAnError) {
    EXPECT_EQ(FanucError(kFanucHead + "P[1]{\n   GP1:\n\tUF : 0, UT : 1,\n\tJ1 =     0.000 deg\n};\n/END\n"),
              In(10) + "there is no \"X \" in \"?J1 =     0.000 deg\"");
}

// --- Modules ----------------------------------------------------------------------------------------------

TEST_F(RobotFiles, TargetsOfAModuleTurnAsTheirQuaternionsDo) {
    // 45 degrees about z; 30 degrees about y; both, z first; 180 degrees about x.
    const double c45 = std::cos(22.5 * kDegree), s45 = std::sin(22.5 * kDegree);
    const double c30 = std::cos(15 * kDegree), s30 = std::sin(15 * kDegree);
    const auto q = [](double w, double x, double y, double z) {
        std::array<char, 120> text{};
        std::snprintf(text.data(), text.size(), "%.15g,%.15g,%.15g,%.15g", w, x, y, z);
        return std::string(text.data());
    };
    Abb("MODULE Calib\n" + Target("p1", "100.5,-200,300.25", q(c45, 0, 0, s45)) +
        Target("p2", "1,2,3", q(c30, 0, s30, 0)) +
        Target("p3", "4,5,6", q(c45 * c30, -s45 * s30, c45 * s30, s45 * c30)) +
        Target("p4", "7,8,9", "0,1,0,0") + "ENDMODULE\n" + kTurned);
    ASSERT_EQ(Job.Target.Count(), 4);
    EXPECT_EQ(Job.Target.Name, (std::vector<std::string>{"", "1", "2", "3", "4"}));
    EXPECT_EQ(Position(1), (Row{100.5, -200, 300.25}));
    const Row expected[] = {{45, 0, 0}, {0, 30, 0}, {45, 30, 0}};
    for (int i = 1; i <= 3; ++i)
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(Job.RobotABC(i, k), expected[i - 1][static_cast<std::size_t>(k - 1)] * kDegree, 1e-9);
    EXPECT_NEAR(std::fabs(Job.RobotABC(4, 3)), std::numbers::pi, 1e-9);
    EXPECT_NEAR(Run.SpanA, 45 * kDegree, 1e-9) << "of angles in rad, whatever the unit of the files";
    EXPECT_NEAR(Run.SpanB, 30 * kDegree, 1e-9);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(RobotFiles, OfTwoBlocksTheFirstAloneIsImportedWithItsMessage) {
    Abb("MODULE Calib\n\n" + kTurned + "  ! a comment\n" + kTurned + "\n" + kTurned + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    EXPECT_EQ(Messages(), std::vector<std::string>{
                              "myabe there are more than one Block in the File - only importing the First "
                              "block in file with 2 Points"});
}

TEST_F(RobotFiles, ABlockEndsAtAnEmptyLineAndAModuleAtItsLastWordAlone) {
    // Blanks are something, and so is a remark.
    Abb("MODULE Calib\n" + kTurned + "  \n" + kTurned + "\t\n" + kTurned + "ENDMODULE ! of three\n" +
        kTurned + " ENDMODULE\n" + kTurned + "ENDMODULE\n" + kTurned);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(RobotFiles, AModuleWithoutItsEndIsReadToTheEndOfTheFile) {
    Abb(kTurned + kTurned);
    EXPECT_EQ(Job.Target.Count(), 2);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(RobotFiles, ATargetThatLacksSomethingIsNamedWithItsLineAndText) {
    const auto error = [this](const std::string& target) {
        return Error(EinlesenABB_MODX, "MODULE M\n" + kTurned + target + "\nENDMODULE\n");
    };
    EXPECT_EQ(error("p:=[[1,2,3],[1,0,0,0]];"), "");
    EXPECT_EQ(error("p:=[[1,two,3],[1,0,0,0]];"), In(3) + "\"two\" is not a number");
    EXPECT_EQ(Position(1), (Row{100.5, -200, 300.25}));
    EXPECT_EQ(error("p:=[[1,2],[1,0,0,0]];"), In(3) + "\"2]\" is not a number");
    EXPECT_EQ(error("p:=[[1,2,3],[1,0,0]];"), In(3) + "there is no \",\" in \"0]];\"");
    EXPECT_EQ(error("p:=[[1,2,3] ,[1,0,0,0]];"), In(3) + "\"],[\" is expected before the orientation");
    EXPECT_EQ(error("p:=[[1,2,3"), In(3) + "there is no \"]\" in \"3\"");
    EXPECT_EQ(error("p:=[["), In(3) + "there is no \",\" in \"\"");
    EXPECT_EQ(error("p:=[[,2,3],[1,0,0,0]];"), In(3) + "a number is missing in \"p:=[[,2,3],[1,0,0,0]];\"");
    EXPECT_EQ(error("p:=[[1,2,3],[0,0,0,0]];"),
              In(3) + "these numbers are no pose: \"p:=[[1,2,3],[0,0,0,0]];\"");
    Headless.Decimal = ',';
    EXPECT_EQ(error("p:=[[1.5,2,3],[1,0,0,0]];"), "") << "robot programs have the point";
    EXPECT_EQ(Position(2), (Row{1.5, 2, 3}));
}

TEST_F(RobotFiles, OrientationsThatTheFormulaLosesAreThoseOfTheRotation) {
    // At a right angle about y six digits make the sine larger than 1; 120 degrees about the diagonal, and
    // the other right angle, have no first and third angle there; of length 2 is the turn by 45 degrees.
    const std::vector<std::array<double, 4>> q = {{0.707107, 0, 0.707107, 0},
                                                  {0.5, 0.5, 0.5, 0.5},
                                                  {0.5, -0.5, -0.5, 0.5},
                                                  {1.847759065022574, 0, 0, 0.76536686473018},
                                                  {0.5, 0.5, 0.1, -0.1}};
    std::string module = kTurned;
    for (const auto& [w, x, y, z] : q) {
        std::array<char, 120> text{};
        std::snprintf(text.data(), text.size(), "%.16g,%.16g,%.16g,%.16g", w, x, y, z);
        module += Target("p", "1,2,3", text.data());
    }
    Abb(module + "ENDMODULE\n");
    ASSERT_EQ(Job.Target.Count(), 6);
    for (std::size_t i = 0; i < q.size(); ++i) {
        // The columns of the quaternion's matrix are the images of the unit vectors under Rz(A) Ry(B) Rx(C).
        auto [w, x, y, z] = q[i];
        const double n = std::sqrt(w * w + x * x + y * y + z * z);
        w /= n, x /= n, y /= n, z /= n;
        const int row = static_cast<int>(i) + 2;
        const double A = Job.RobotABC(row, 1), B = Job.RobotABC(row, 2), C = Job.RobotABC(row, 3);
        const double ca = std::cos(A), sa = std::sin(A), cb = std::cos(B), sb = std::sin(B), cc = std::cos(C),
                     sc = std::sin(C);
        const double turned[] = {ca * cb,
                                 ca * sb * sc - sa * cc,
                                 ca * sb * cc + sa * sc,
                                 sa * cb,
                                 sa * sb * sc + ca * cc,
                                 sa * sb * cc - ca * sc,
                                 -sb,
                                 cb * sc,
                                 cb * cc};
        const double wanted[] = {
            w * w + x * x - y * y - z * z, 2 * (x * y - w * z),           2 * (x * z + w * y),
            2 * (x * y + w * z),           w * w - x * x + y * y - z * z, 2 * (y * z - w * x),
            2 * (x * z - w * y),           2 * (y * z + w * x),           w * w - x * x - y * y + z * z};
        for (int k = 0; k < 9; ++k) EXPECT_NEAR(turned[k], wanted[k], 1e-9) << i << " " << k;
    }
    EXPECT_TRUE(Messages().empty());
    ASSERT_EQ(Notes.List.size(), 2u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::AnglesOfPose);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 5);
    EXPECT_EQ(Notes.List[0].File, PathOf("program.txt"));
    // Of lengths 2 and 0.72.
    EXPECT_EQ(Notes.List[1].Code, NoteCode::PosesDoubtful);
    EXPECT_EQ(Notes.List[1].Line, 5);
    EXPECT_EQ(Notes.List[1].Count, 2);
}

TEST_F(RobotFiles, TheUsualSixDigitsOfAQuaternionAreNotMeddledWith) {
    Abb(Target("p", "1,2,3", "0.923880,0.0,0.0,0.382683") + "ENDMODULE\n");
    EXPECT_NEAR(Job.RobotABC(1, 1), 45 * kDegree, 2e-6);
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(RobotFiles, ADigitOfAQuaternionThatItsDecimalsDoNotExplainIsWarnedOf) {
    // cos 22.5 and sin 22.5 degrees; in the second row 0.382683 is mistyped as 0.392683.
    for (const auto& [q, doubtful] :
         {std::pair{"0.923880,0.0,0.0,0.382683", false}, std::pair{"0.923880,0.0,0.0,0.392683", true},
          std::pair{"0.924,0.0,0.0,0.383", false}, std::pair{"0.9,0.0,0.0,0.4", false}}) {
        SCOPED_TRACE(q);
        ForgetNotes();
        Abb(Target("p", "1,2,3", q) + "ENDMODULE\n");
        const bool told = std::any_of(Notes.List.begin(), Notes.List.end(),
                                      [](const Note& note) { return note.Code == NoteCode::PosesDoubtful; });
        EXPECT_EQ(told, doubtful);
    }
}
