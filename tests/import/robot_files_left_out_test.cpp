// The readers of robot programs: what is left out, and what is said of it.
#include "import/robot_programs.h"

using namespace corvinade;

TEST_F(RobotFiles, PlacesWithoutAPoseAreNoted) {
    Kuka("DECL FRAME HOME={X 9,Y 9,Z 9,A 9,B 9,C 9}\n" + kFirst + kSecond);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 1);
    EXPECT_EQ(Notes.List[0].Count, 2) << "the frame, and the last line";
    ForgetNotes();
    const std::string pose = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    Fanuc(kFanucHead + pose + "/END\n" + pose);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    ForgetNotes();
    Fanuc(kFanucHead + pose + "/END\n");
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(RobotFiles, ASecondPoseInALineIsNotedWithItsLine) {
    std::string two = kFirst;
    two.insert(two.find('\n'), ",XP9={X 7,Y 8,Z 9,A 0,B 0,C 0}");
    Kuka(kSecond + two + "ENDDAT\n");
    EXPECT_EQ(Position(2), (Row{1.5, -2.25, 3}));
    ExpectNoPose(3);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 1);
    // What is taken without a mark does not make up for what is left with one.
    ForgetNotes();
    Kuka(
        "DECL E6POS XP1={ X 1,Y 2,Z 3,A 4,B 5,C 6,S 2}\nDECL FRAME HOME={X 9,Y 9,Z 9,A 9,B 9,C 9}\nENDDAT\n");
    EXPECT_EQ(Position(1), (Row{1, 2, 3}));
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Line, 2);
    ForgetNotes();
    const std::string target = kTurned.substr(0, kTurned.find('\n'));
    Abb("MODULE M\n" + target + " " + target + "\n" + kTurned + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 2);
    ForgetNotes();
    std::string groups = FanucPose(1, {1, 2, 3}, {4, 5, 6}), second = FanucPose(1, {7, 8, 9}, {4, 5, 6});
    second.erase(0, second.find('\n') + 1);
    groups.erase(groups.rfind('}'));
    Fanuc(kFanucHead + groups + second + "/END\n");
    EXPECT_EQ(Position(1), (Row{1, 2, 3}));
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
}

TEST_F(RobotFiles, APoseInAnotherFrameOrWithAnotherToolIsDoubtful) {
    const std::string first = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    for (const auto& [from, to] : {std::pair("UF : 0", "UF : 3"), std::pair("UT : 1", "UT : 2")}) {
        ForgetNotes();
        std::string other = FanucPose(2, {1, 2, 3}, {4, 5, 6});
        ASSERT_NE(other.find(from), std::string::npos) << other;
        other.replace(other.find(from), 6, to);
        Fanuc(kFanucHead + first + other + FanucPose(3, {7, 8, 9}, {4, 5, 6}) + "/END\n");
        EXPECT_EQ(Job.Target.Count(), 3);
        ASSERT_EQ(Notes.List.size(), 1u) << to;
        EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesDoubtful);
        EXPECT_EQ(Notes.List[0].Count, 1);
        EXPECT_NE(Notes.List[0].Text.find(to), std::string::npos) << Notes.List[0].Text;
    }
}

TEST_F(RobotFiles, APoseWithMixedUnitsIsDoubtful) {
    std::string pose = FanucPose(1, {1, 2, 3}, {4, 5, 6});
    pose.replace(pose.find(" mm"), 3, " in");
    Fanuc(kFanucHead + pose + "/END\n");
    ASSERT_FALSE(Notes.List.empty());
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesDoubtful);
}

TEST_F(RobotFiles, DigitsThatTheColumnsCutAreNoted) {
    std::string pose = FanucPose(1, {1.234, 2.345, 3.456}, {4, 5, 6});
    pose.erase(pose.find(", \n\tW") + 1, 1);
    Fanuc(kFanucHead + pose + "/END\n");
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::DigitsCut);
    EXPECT_EQ(Notes.List[0].Line, 10);
    EXPECT_NE(Notes.List[0].Text.find("3.456"), std::string::npos) << Notes.List[0].Text;
}

TEST_F(RobotFiles, WhatAModuleHasOfOtherTypesIsTakenWithAWarning) {
    Abb("MODULE M\n  PERS tooldata t:=[TRUE,[[1,2,3],[1,0,0,0]],[1,[0,0,1],[1,0,0,0],0,0,0]];\n  ! " +
        kTurned + kTurned + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 3);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesDoubtful);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 2);
}

TEST_F(RobotFiles, PosesWithTheirTypeInFrontOfTheValuesAreNoted) {
    Kuka(kFirst + "LIN {E6POS: X 900,Y 700,Z 500,A 1,B 2,C 3} C_DIS\nPTP {POS: X 1,Y 2,Z 3}\nENDDAT\n");
    EXPECT_EQ(Position(1), (Row{1.5, -2.25, 3}));
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 2);
}

TEST_F(RobotFiles, TargetsBehindTheFirstBlockAreNoted) {
    for (const std::string end : {"ENDMODULE\nMODULE N\n", "\n\n"}) {
        ForgetNotes();
        Abb("MODULE M\n" + kTurned + end + kTurned + kTurned + "ENDMODULE\n");
        EXPECT_EQ(Job.Target.Count(), 1);
        ASSERT_EQ(Notes.List.size(), 1u);
        EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
        EXPECT_EQ(Notes.List[0].Line, 5);
        EXPECT_EQ(Notes.List[0].Count, 2);
    }
}

TEST_F(RobotFiles, ATargetThatAFunctionIsGivenIsTakenWithAWarning) {
    std::string moved = kTurned.substr(kTurned.find("[["));
    moved = "  MoveL Offs(" + moved.substr(0, moved.find(';')) + ",0,0,250),v100,fine,t;\n";
    Abb("MODULE M\n" + kTurned + moved + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesDoubtful);
    EXPECT_EQ(Notes.List[0].Line, 3);
    EXPECT_EQ(Notes.List[0].Count, 1);
}

TEST_F(RobotFiles, ATargetWhoseBracketsAreDividedIsNoted) {
    std::string divided = kTurned;
    divided.insert(divided.find("[[") + 1, "\n");
    Abb("MODULE M\n" + kTurned + divided + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 1);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 3);
}

TEST_F(RobotFiles, WhatAModuleHasOfSeveralKindsIsOneNoteWithTheLineOfEach) {
    std::string other = kTurned;
    other.replace(other.find("p10"), 3, "p11");
    const std::string target = kTurned.substr(0, kTurned.find(';'));
    Read(
        [](const TargetFile& file) {
            EinlesenABB_MODX({file.Path, true});
        },
        "MODULE M\nPERS tooldata t:=[TRUE,[[1,2,3],[1,0,0,0]],[1,[0,0,1],[1,0,0,0],0,0,0]];\n" + target +
            " " + target + ";\n" + other + "ENDMODULE\n");
    EXPECT_EQ(Job.Target.Count(), 2);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::PosesSkipped);
    EXPECT_EQ(Notes.List[0].Line, 2);
    EXPECT_EQ(Notes.List[0].Count, 2);
    EXPECT_TRUE(Notes.List[0].Text.starts_with("What looks like a pose is no robot target"));
    EXPECT_NE(
        Notes.List[0].Text.find("; a second pose in the statement of another one is not taken, as in line 3"),
        std::string::npos)
        << Notes.List[0].Text;
}
