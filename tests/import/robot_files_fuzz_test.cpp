// Whatever a robot program holds: the import ends, with a message or with poses, and the job's counts fit.
#include <algorithm>
#include <cmath>
#include <random>

#include "core/job.h"
#include "import/import_request.h"
#include "import/input_dialog.h"
#include "import/robot_files.h"

using namespace corvinade;

namespace {

constexpr int kKinds = 5;  // entries 1 to 5 of the list

class RobotFilesFuzz : public InputDialog {
protected:
    RobotFilesFuzz() {
        ExpectUnanswered();
        start_ = Write("start.txt", "1;0;0;0\r\n2;100;0;0\r\n3;0;200;0\r\nP4;0;0;300\r\n");
        Open();
        Headless.OnQuestion = [this](const DialogShown& dialog) -> std::optional<std::string> {
            if (dialog.Kind == "input") return "0.5";
            const bool overwrite = dialog.Title == "Overwrite old Points?";
            return overwrite || random_() % 2 == 0 ? "Yes" : "No";
        };
    }
    static void ImportByDeclarations(TargetKind kind) {
        ImportRequest request;
        request.StartPath = InputFiles.TextNameMCS.Text;
        request.TargetPath = InputFiles.TextNameOCS.Text;
        request.Kind = kind;
        request.ByDeclarations = true;
        request.Way = InputFiles.OptionByDis.Value == 1          ? Pairing::ByDistance
                      : InputFiles.OptionByCoordinate.Value == 1 ? Pairing::ByCoordinate
                                                                 : Pairing::ByID;
        Dispatch([&request] { ::Import(request); });
    }
    void Import(int kind, const std::string& program) {
        UserSetText(InputFiles.TextNameOCS, Write("program.txt", program));
        UserSetIndex(InputFiles.ComboOCS_Data, kind);
        const unsigned way = random_() % 4;
        UserSetValue(way == 0   ? InputFiles.OptionByDis
                     : way == 1 ? InputFiles.OptionByCoordinate
                                : InputFiles.OptionByID,
                     1);
        Headless.Dialogs.clear();
        ::Run.JobDataValid = kFalse;
        if (++imports_ % 2 == 0) {
            ImportByDeclarations(static_cast<TargetKind>(kind));  // as the command line does
        } else {
            UserClick(InputFiles.BtnApply);
        }
        ASSERT_TRUE(JobIsWhole(Job));
        ASSERT_TRUE(IsTrue(::Run.JobDataValid) || !Messages().empty());
        ASSERT_EQ(::Run.WaitPointers, 0);
        ASSERT_EQ(Job.PathOCS, InputFiles.TextNameOCS.Text);
        if (IsTrue(::Run.JobDataValid)) {
            ++imported_;
            ASSERT_EQ(Job.RobotABC.Rows, Job.Target.Count());
            for (const double angle : Job.RobotABC.Elements) ASSERT_TRUE(std::isfinite(angle));
            for (const double span : {::Run.SpanA, ::Run.SpanB, ::Run.SpanC}) ASSERT_GE(span, 0);
        }
    }
    std::string Random(std::size_t size, const std::string& letters) {
        std::string text(size, '\0');
        for (char& c : text)
            c = letters.empty() ? static_cast<char>(random_()) : letters[random_() % letters.size()];
        return text;
    }
    std::mt19937 random_{20240922};
    int imports_ = 0, imported_ = 0;
};

const std::string kGood[kKinds] = {
    "DEFDAT  T\r\n"
    "DECL E6POS XP1={X 1.5,Y -2.25,Z 3,A 10.5,B -20,C 30.25,S 2,T 35,E1 0.0}\r\n"
    "DECL#E6POS#XP2={X#101.5,Y#-2.25,Z#3,A#10.5,B#-20,C#30.25,S#2,T#35}\r\n"
    "DECL E6POS XP3={X 1.5,Y 200.25,Z 3,A 10.5,B -20,C 30.25, S 2,T 35}\r\nENDDAT\r\n",
    "MODULE T\r\n"
    "  CONST robtarget p1:=[[1,2,3],[0.5,0.5,0.5,0.5],[0,0,0,0],[9E9,9E9]];\r\n"
    "  CONST robtarget p2:=[[101,2,3],[0.6,0.8,0,0],[0,0,0,0],[9E9,9E9]];\r\n"
    "  CONST robtarget p3:=[[1,202,3],[0,0.6,0,0.8],[0,0,0,0],[9E9,9E9]];\r\nENDMODULE\r\n",
    "/PROG  T\r\n/POS\r\n"
    "P[1]{\r\n   GP1:\r\n\tUF : 0, UT : 1,\r\n"
    "\tX =    10.500  mm,\tY =    -2.250  mm,\tZ =     3.000  mm,\r\n"
    "\tW =   180.000 deg,\tP =     0.000 deg,\tR =    90.000 deg\r\n};\r\n"
    "P[2]{\r\n   GP1:\r\n\tUF : 0, UT : 1,\r\n"
    "\tX =   110.500  mm,\tY =    -2.250  mm,\tZ =     3.000  mm,\r\n"
    "\tW =   180.000 deg,\tP =     0.000 deg,\tR =    90.000 deg\r\n};\r\n/END\r\n",
    "1;0.5;0;0;10;20;30\r\n2;100.5;0;0;11;21;31\r\nX;0.5;200;0;12;22;32\r\n",
    "1;0.5;0;0;1;0;0;0\r\n2;100.5;0;0;0.6;0.8;0;0\r\nX;0.5;200;0;0;0.6;0;0.8\r\n",
};

}  // namespace

TEST_F(RobotFilesFuzz, RandomBytesEndInAMessageOrInPoses) {
    const std::string likely = "0123456789.,;{}[[]XYZABC#= \t\r\n-eE";
    for (int round = 0; round < 400; ++round)
        Import(1 + round % kKinds, Random(random_() % 400, round % 3 == 0 ? "" : likely));
}

TEST_F(RobotFilesFuzz, ProgramsOfAnotherKindEndInAMessageOrInPoses) {
    for (int kind = 1; kind <= kKinds; ++kind)
        for (const std::string& program : kGood) Import(kind, program);
    EXPECT_GE(imported_, kKinds - 1);
}

TEST_F(RobotFilesFuzz, ProgramsCutAtEveryLengthEndInAMessageOrInPoses) {
    for (int kind = 1; kind <= kKinds; ++kind) {
        const std::string& good = kGood[kind - 1];
        for (std::size_t length = 0; length <= good.size(); ++length) Import(kind, good.substr(0, length));
    }
    EXPECT_GT(imported_, 20);
}

TEST_F(RobotFilesFuzz, DamagedProgramsEndInAMessageOrInPoses) {
    const std::string huge[] = {"1e308", "-1e308", "1e999", "99999999999999999999", std::string(400, '9'),
                                "nan"};
    for (int round = 0; round < 1500; ++round) {
        std::string text = kGood[round % kKinds];
        for (unsigned change = 1 + random_() % 3; change > 0 && !text.empty(); --change) {
            const std::size_t place = random_() % text.size();
            switch (random_() % 6) {
                case 0:
                    text[place] = static_cast<char>(random_());
                    break;
                case 1:
                    text.erase(place, random_() % 9);
                    break;
                case 2:
                    text.insert(place, text.substr(random_() % text.size(), 40));
                    break;
                case 3:
                    std::replace(text.begin(), text.end(), '.', ',');
                    break;
                default: {
                    const std::size_t number = text.find_first_of("0123456789", place);
                    if (number == std::string::npos) break;
                    text.replace(number, 1, huge[random_() % std::size(huge)]);
                    break;
                }
            }
        }
        Import(1 + round % kKinds, text);
    }
    EXPECT_GT(imported_, 100);
}

TEST_F(RobotFilesFuzz, OddProgramsEndInAMessageOrInPoses) {
    const std::string marks[] = {"{X", "[[", "]{", "1;", ";"};
    for (int kind = 1; kind <= kKinds; ++kind) {
        for (const std::string& mark : marks) {
            std::string many;
            for (int i = 0; i < 30000; ++i) many += mark;
            for (const char* between : {"", "\r\n"})
                Import(kind, kGood[kind - 1] + between + many + between + kGood[kind - 1]);
        }
        for (const std::string& odd :
             {std::string(1000, '\0'), std::string(100000, '\n'), std::string(100000, '\r'),
              std::string("\xFF\xFE\x41\x00", 4), std::string("\xEF\xBB\xBF")})
            Import(kind, odd);
        Import(kind, kGood[kind - 1] + std::string(3000000, '7'));
        Import(kind, std::string(3000000, ' ') + kGood[kind - 1]);
    }
}
