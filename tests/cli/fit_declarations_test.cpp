// `corvinade-cli fit` reads robot programs by what they declare.
#include "cli/fit_command.h"
#include "core/job.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class Declarations : public FitCommand {
protected:
    // The target positions of a fit of four start points, in their order, to the poses of a program.
    std::vector<std::vector<double>> Positions(const std::string& program, const std::string& kind) {
        FreshStart();
        const json fit = FitJson({tips_, program, "--as", kind});
        std::vector<std::vector<double>> positions;
        for (const json& point : fit["points"])
            positions.push_back(point["target_mm"].get<std::vector<double>>());
        return positions;
    }
    static const Note* NoteOf(NoteCode code) {
        for (const Note& note : Notes.List)
            if (note.Code == code) return &note;
        return nullptr;
    }
    std::string tips_ = Write("tips.txt", "1;1;2;3\n2;4;50;6\n3;70;8;9\n4;7;8;90\n");
    const std::vector<std::vector<double>> truth_ = {{1, 2, 3}, {4, 50, 6}, {70, 8, 9}, {7, 8, 90}};
};

}  // namespace

TEST_F(Declarations, OfAKukaProgramAreItsPosesWhereverAndHoweverTheyStand) {
    const std::string program =
        Write("program.dat",
              "&ACCESS RVP\n"
              "DEFDAT CALIB PUBLIC\n"
              ";DECL E6POS XP0={X 9,Y 9,Z 9,A 9,B 9,C 9,S 2,T 35}\n"
              "DECL E6POS XP1={X 1,Y 2,Z 3,A 10,B 20,C 30,S 2,T 35}\n"
              "DECL FRAME HOME={X 9,Y 9,Z 9,A 9,B 9,C 9}\n"
              "\t DECL GLOBAL E6POS XP2={X 4, Y 50, Z 6, A 10, B 20, C 30, S 2, T 35}\n"
              "DECL E6AXIS XJ={A1 0,A2 0,A3 0,A4 0,A5 0,A6 0}\n"
              "global decl pos XP3={pos: Z 9,X 70,Y 8,A 10,B 20,C 30} ; by hand\n"
              "XP4={X 9,Y 9,Z 9,A 9,B 9,C 9,S 2,T 35}\n"
              "DECL#E6POS#XP5={X#7,Y#8,Z#90,A#10,B#20,C#30,S#2,T#35}");
    EXPECT_EQ(Positions(program, "kuka"), truth_);
    const Note* const skipped = NoteOf(NoteCode::PosesSkipped);
    ASSERT_NE(skipped, nullptr);
    EXPECT_EQ(skipped->File, program);
    EXPECT_EQ(skipped->Line, 3);
    EXPECT_EQ(skipped->Count, 4) << "remark, frame, joint values, assignment";
    EXPECT_EQ(Job.Target.Name.size(), 5u);
}

TEST_F(Declarations, OfSeveralPosesInOneLineAreAllTaken) {
    const std::string program =
        Write("program.dat",
              "DECL E6POS A={X 1,Y 2,Z 3,A 1,B 2,C 3,S 2,T 35},B={X 4,Y 50,Z 6,A 1,B 2,C 3}\n"
              "GLOBAL POS C={X 70,Y 8,Z 9,A 1,B 2,C 3} , D = {POS: X 7,Y 8,Z 90,A 1,B 2,C 3}\n");
    EXPECT_EQ(Positions(program, "kuka"), truth_);
    EXPECT_EQ(NoteOf(NoteCode::PosesSkipped), nullptr);
    // What stands behind a pose and is none that is declared with it.
    const std::string other = Write("other.dat",
                                    "POS A={X 1,Y 2,Z 3,A 1,B 2,C 3}\nPOS B={X 4,Y 50,Z 6,A 1,B 2,C 3}\n"
                                    "POS C={X 70,Y 8,Z 9,A 1,B 2,C 3} ;POS E={X 9,Y 9,Z 9,A 1,B 2,C 3}\n"
                                    "POS D={X 7,Y 8,Z 90,A 1,B 2,C 3}");
    EXPECT_EQ(Positions(other, "kuka"), truth_);
    ASSERT_NE(NoteOf(NoteCode::PosesSkipped), nullptr);
    EXPECT_EQ(NoteOf(NoteCode::PosesSkipped)->Line, 3);
    EXPECT_EQ(NoteOf(NoteCode::PosesSkipped)->Count, 1);
}

TEST_F(Declarations, ThatLackSomethingAreRefusedWithTheirLine) {
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"POS P={X 1,Y 2,Z 3,A 4,B 5}", "line 2: there is no \"C\" in"},
        {"POS P={X 1,Y 2,Z 3,A 4,B 5,C 6,X 7}", "line 2: \"X\" stands twice in"},
        {"POS P={X 1,Y ,Z 3,A 4,B 5,C 6}", "line 2: a number is missing in"},
        {"POS P={X 1,Y two,Z 3,A 4,B 5,C 6}", "line 2: \"two\" is not a number"},
        {"POS P={X 1,Y 2 mm,Z 3,A 4,B 5,C 6}", "line 2: \"2 mm\" is not a number"},
    };
    for (const auto& [line, text] : wrong) {
        const Outcome outcome =
            Fit({tips_, Write("program.dat", "DEFDAT T\n" + line + "\n"), "--as", "kuka"});
        EXPECT_EQ(outcome.Status, 3) << line;
        EXPECT_NE(outcome.Err.find(text), std::string::npos) << outcome.Err;
    }
}

TEST_F(Declarations, OfAModuleAreItsRobotTargetsAlone) {
    const std::string rest = ",[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];";
    const std::string program =
        Write("program.modx",
              "MODULE Calib\n"
              "  PERS tooldata t:=[TRUE,[[9,9,9],[1,0,0,0]],[1,[0,0,1],[1,0,0,0],0,0,0]];\n"
              "  TASK PERS wobjdata w:=[FALSE,TRUE,\"a!b\",[[9,9,9],[1,0,0,0]],[[0,0,0],[1,0,0,0]]];\n"
              "\n"
              "  CONST jointtarget j:=[[0,0,0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\n"
              "  ! CONST robtarget p0:=[[9,9,9]" +
                  rest +
                  "\n"
                  "  LOCAL CONST robtarget p1:=[[1,2,3]" +
                  rest +
                  "\n"
                  "  PERS tooldata u:=[TRUE,\n"
                  "    [[9,9,9],[1,0,0,0]],\n"
                  "    [1,[0,0,1],[1,0,0,0],0,0,0]];\n"
                  "  VAR RobTarget p2:=\n"
                  "    [[4,50,6]" +
                  rest +
                  "\n"
                  "  p3:=[[70,8,9]" +
                  rest +
                  "\n"
                  "  MoveL [[7,8,90],[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]],v100,fine,t;\n"
                  "  MoveAbsJ [[0,0,0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]],v100,fine,t;\n"
                  "ENDMODULE ! Calib");
    EXPECT_EQ(Positions(program, "abb"), truth_);
    const Note* const skipped = NoteOf(NoteCode::PosesSkipped);
    ASSERT_NE(skipped, nullptr);
    EXPECT_EQ(skipped->Line, 2);
    EXPECT_EQ(skipped->Count, 6) << "two tools, work object, two of joints, remark";
    EXPECT_EQ(NoteOf(NoteCode::PosesDoubtful), nullptr);
}

TEST_F(Declarations, ADelimiterThatIsNamedIsNoDecisionOfTheProgram) {
    const std::string blanks = Write("blanks.txt", "1 1 2 3\n2 4 50 6\n3 70 8 9\n4 7 8 90\n");
    EXPECT_EQ(Fit({blanks, blanks, "--delimiter", "space"}).Status, 0);
    EXPECT_EQ(NoteOf(NoteCode::OldDelimiter), nullptr);
    FreshStart();
    EXPECT_EQ(Fit({tips_, blanks, "--format", "plain"}).Status, 0);
    ASSERT_NE(NoteOf(NoteCode::OldDelimiter), nullptr);
    EXPECT_EQ(NoteOf(NoteCode::OldDelimiter)->File, blanks);
}

namespace {

const std::string kNoTurnAtAll = ",[1,0,0,0],[0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]]";

std::string RobTarget(const std::string& name, const std::string& position) {
    return "CONST robtarget " + name + ":=[[" + position + "]" + kNoTurnAtAll + ";\n";
}

}  // namespace

TEST_F(Declarations, OfTargetsThatAFunctionMovesNoneIsTaken) {
    const std::string moved = "[[9,9,9]" + kNoTurnAtAll;
    const std::string program = Write(
        "program.modx", "MODULE A\n" + RobTarget("p1", "1,2,3") + RobTarget("p2", "4,50,6") + "MoveL Offs(" +
                            moved + ",0,0,250),v100,fine,t;\np9:=RelTool(" + moved +
                            ",0,0,5);\nVAR robtarget p8:=Offs(\n  " + moved + ",0,0,5);\nMoveJ [[70,8,9]" +
                            kNoTurnAtAll + ",v100,fine,t;\n" + RobTarget("p4", "7,8,90") + "ENDMODULE\n");
    EXPECT_EQ(Positions(program, "abb"), truth_);
    const Note* const skipped = NoteOf(NoteCode::PosesSkipped);
    ASSERT_NE(skipped, nullptr);
    EXPECT_EQ(skipped->File, program);
    EXPECT_EQ(skipped->Line, 4);
    EXPECT_EQ(skipped->Count, 3);
    EXPECT_NE(skipped->Text.find("what a function is given"), std::string::npos) << skipped->Text;
}

TEST_F(Declarations, OfAModuleMayStandInAnyLinesAndWithAnyBlanks) {
    const std::string program = Write("program.modx",
                                      "MODULE A\n"
                                      "CONST robtarget p1:=[[1,2,3], ! the position\n"
                                      "  [1,0,0,0],\n"
                                      "  [0,0,0,0],[9E9,9E9,9E9,9E9,9E9,9E9]];\n"
                                      "CONST robtarget p2:=\n"
                                      "[\n"
                                      "  [ 4, 50,\n"
                                      "    6 ] ,\n"
                                      "\n"
                                      "  [1,0,0,0], [0,0,0,0], [9E9,9E9,9E9,9E9,9E9,9E9]\n"
                                      "];\n"
                                      "CONST robtarget\n"
                                      "  p3 := [ [70,8,9]" +
                                          kNoTurnAtAll + "; " + RobTarget("p4", "7,8,90") + "ENDMODULE\n");
    EXPECT_EQ(Positions(program, "abb"), truth_);
    EXPECT_EQ(NoteOf(NoteCode::PosesSkipped), nullptr);
}

TEST_F(Declarations, OfAModuleThatAreBrokenAreRefusedWithTheLineInWhichTheyBegin) {
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"CONST robtarget p2:=[[1,2,3],\n [1,0,0,zero],[0,0,0,0]];\n", "line 3: \"zero\" is not a number"},
        {"CONST robtarget p2:=[[1,2,3]\n [1,0,0,0]];\n",
         "line 3: \"],[\" is expected before the orientation"},
        {"CONST robtarget p2:=[[1,2,3],\n [1,0,0\n", "line 3: there is no \",\" in"}};
    for (const auto& [line, text] : wrong) {
        FreshStart();
        const Outcome outcome = Fit(
            {tips_, Write("program.modx", "MODULE A\n" + RobTarget("p1", "1,2,3") + line), "--as", "abb"});
        EXPECT_EQ(outcome.Status, 3) << line;
        EXPECT_NE(outcome.Err.find(text), std::string::npos) << outcome.Err;
    }
}

TEST_F(Declarations, BehindTheEndOfTheFirstBlockAreCounted) {
    const std::string four = RobTarget("p1", "1,2,3") + RobTarget("p2", "4,50,6") +
                             RobTarget("p3", "70,8,9") + RobTarget("p4", "7,8,90");
    const std::string more = RobTarget("p5", "9,9,9") + RobTarget("p6", "9,9,9");
    const std::vector<std::pair<std::string, int>> ends = {
        {"ENDMODULE\nMODULE B\n", 8}, {"\n\n", 8}, {"endmodule ! A\n\n\n", 9}};
    for (const auto& [end, line] : ends) {
        const std::string program = Write("program.modx", "MODULE A\n" + four + end + more + "ENDMODULE\n");
        EXPECT_EQ(Positions(program, "abb"), truth_);
        const Note* const skipped = NoteOf(NoteCode::PosesSkipped);
        ASSERT_NE(skipped, nullptr) << end;
        EXPECT_EQ(skipped->File, program);
        EXPECT_EQ(skipped->Line, line);
        EXPECT_EQ(skipped->Count, 2);
        EXPECT_NE(skipped->Text.find("behind the end of the first block"), std::string::npos);
    }
    const std::string program = Write("program.modx", "MODULE A\n" + four + "ENDMODULE\n\n! remark\n");
    EXPECT_EQ(Positions(program, "abb"), truth_);
    EXPECT_EQ(NoteOf(NoteCode::PosesSkipped), nullptr);
}

TEST_F(Declarations, OfAKukaProgramLeaveThePosesOfInstructionsOutAndCountThem) {
    const std::string four =
        "DECL E6POS P1={X 1,Y 2,Z 3,A 1,B 2,C 3}\nDECL E6POS P2={X 4,Y 50,Z 6,A 1,B 2,C 3}\n"
        "DECL E6POS P3={X 70,Y 8,Z 9,A 1,B 2,C 3}\nDECL E6POS P4={X 7,Y 8,Z 90,A 1,B 2,C 3}\n";
    const std::string program = Write("program.dat", four +
                                                         "LIN {E6POS: X 900,Y 700,Z 500,A 1,B 2,C 3} C_DIS\n"
                                                         "PTP {POS: X 1,Y 2,Z 3,A 4,B 5,C 6}\n"
                                                         "lin {frame: z 1, x 2, y 3}\n"
                                                         "LIN_REL {Z 5}\n"
                                                         "PTP { E6AXIS : A1 0,A2 0,A3 0}\n"
                                                         "PTP $POS\n"
                                                         "DECL LDAT L1={VEL 2,ACC 100}\n");
    EXPECT_EQ(Positions(program, "kuka"), truth_);
    const Note* const skipped = NoteOf(NoteCode::PosesSkipped);
    ASSERT_NE(skipped, nullptr);
    EXPECT_EQ(skipped->Line, 5);
    EXPECT_EQ(skipped->Count, 5);
    EXPECT_NE(skipped->Text.find("instruction"), std::string::npos) << skipped->Text;
}

TEST_F(Declarations, OfOneNameAreNotedWithTheirLines) {
    const auto expect = [](const std::string& program, const std::string& text, int line, int count) {
        const Note* const twice = NoteOf(NoteCode::DuplicateName);
        ASSERT_NE(twice, nullptr) << program;
        EXPECT_EQ(twice->Text, text);
        EXPECT_EQ(twice->File, program);
        EXPECT_EQ(twice->Line, line);
        EXPECT_EQ(twice->Count, count);
    };
    const std::string kuka = Write("program.dat",
                                   "DEFDAT T\nDECL E6POS XP1={X 1,Y 2,Z 3,A 1,B 2,C 3}\n"
                                   "POS Q={X 4,Y 50,Z 6,A 1,B 2,C 3}, xp1={X 70,Y 8,Z 9,A 1,B 2,C 3}\n"
                                   "POS q={X 7,Y 8,Z 90,A 1,B 2,C 3}\n");
    EXPECT_EQ(Positions(kuka, "kuka"), truth_);
    expect(kuka, "The name \"xp1\" stands in line 2 and in line 3", 2, 2);
    const std::string abb = Write("program.modx", "MODULE A\n" + RobTarget("p1", "1,2,3") +
                                                      RobTarget("p2", "4,50,6") + RobTarget("P1", "70,8,9") +
                                                      "p2:=[[7,8,90]" + kNoTurnAtAll + ";\nENDMODULE\n");
    EXPECT_EQ(Positions(abb, "abb"), truth_);
    expect(abb, "The name \"P1\" stands in line 2 and in line 4", 2, 1);
}

TEST_F(Declarations, ThatAreNotAsManyAsThePointsAreWarnedOfWhereOneIsLeftOut) {
    const std::string
        third = "DECL E6POS XP3={X 70,Y 8,Z 9,A 1,B 2,C 3}\n",
        rest =
            "DECL E6POS XP4={X 7,Y 8,Z 90,A 1,B 2,C 3}\nDECL E6POS XP5={X 1,Y 1,Z 50,A 1,B 2,C 3}\nENDDAT\n";
    const std::string two =
        "DECL E6POS XP1={X 1,Y 2,Z 3,A 1,B 2,C 3}\nDECL E6POS XP2={X 4,Y 50,Z 6,A 1,B 2,C 3}\n";
    // The third one is a remark: the fourth goes with the third point.
    Positions(Write("program.dat", two + ";" + third + rest), "kuka");
    EXPECT_EQ(NoteOf(NoteCode::PosesByTurn), nullptr) << "four poses for four points";
    ASSERT_NE(NoteOf(NoteCode::PosesSkipped), nullptr);
    EXPECT_NE(NoteOf(NoteCode::PosesSkipped)->Text.find("numbered by their turn"), std::string::npos);
    const std::string less =
        Write("less.dat", two + ";" + third + "DECL E6POS XP4={X 7,Y 8,Z 90,A 1,B 2,C 3}\n");
    Positions(less, "kuka");
    const Note* const turn = NoteOf(NoteCode::PosesByTurn);
    ASSERT_NE(turn, nullptr);
    EXPECT_EQ(turn->Weight, Severity::Warning);
    EXPECT_EQ(turn->File, less);
    EXPECT_EQ(turn->Text.find("3 poses are taken for 4 points"), 0u) << turn->Text;
    // Points that bear names of their own say themselves which pose is theirs.
    Positions(Write("more.dat", two + third + rest), "kuka");
    EXPECT_EQ(NoteOf(NoteCode::PosesByTurn), nullptr);
    // Where the points are numbered by their turn too, nothing does.
    Positions(Write("program.modx", "MODULE A\n" + RobTarget("p1", "1,2,3") + RobTarget("p2", "4,50,6") +
                                        RobTarget("p4", "7,8,90") + "ENDMODULE\n"),
              "abb");
    EXPECT_NE(NoteOf(NoteCode::PosesByTurn), nullptr);
}
