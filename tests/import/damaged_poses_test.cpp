// The readers of robot programs and of files of poses on every kind of damaged field.
#include "import/damaged_fields.h"

using namespace corvinade;

TEST_F(DamagedFields, OfRobotPrograms) {
    const auto kuka = [](const Fields& f) {
        return "DECL E6POS XP" + Named(f, 0) + "={X " + Named(f, 1) + ",Y " + Named(f, 2) + ",Z " +
               Named(f, 3) + ",A 10,B 20,C 30,S 2,T 35}\n";
    };
    const auto abb = [](const Fields& f) {
        return "CONST robtarget p" + Named(f, 0) + ":=[[" + Named(f, 1) + "," + Named(f, 2) + "," +
               Named(f, 3) + "],[1,0,0,0],[0,0,0,0],[9E9]];\n";
    };
    const auto fanuc = [](const Fields& f) {
        const auto padded = [&f](std::size_t i) {
            const std::string text =
                Named(f, i) == "" ? "" : Named(f, i) + (Named(f, i).size() < 3 ? ".000" : "");
            return std::string(text.size() < 10 ? 10 - text.size() : 0, ' ') + text;
        };
        return "P[1]{\n   GP1:\n\tUF : 0, UT : 1,\n\tX =" + padded(1) + "  mm,\tY =" + padded(2) +
               "  mm,\tZ =" + padded(3) +
               "  mm, \n\tW =    30.000 deg,\tP =    20.000 deg,\tR =    10.000 deg\n};\n";
    };
    for (const bool declarations : {false, true}) {
        const std::string mode = declarations ? ", by declarations" : "";
        const auto read = [declarations](PoseReader reader) {
            return [declarations, reader](const std::string& path) {
                return ReadPoses(reader, path, declarations);
            };
        };
        Walk({"kuka" + mode, kuka, "DEFDAT T\n", "ENDDAT\n", ";" + kuka({"", "9", "9", "9"}), 3, false,
              read(EinlesenKUKAdatDatei), true});
        Walk({"abb" + mode, abb, "MODULE T\n", "ENDMODULE\n", "! " + abb({"", "9", "9", "9"}), 3, false,
              read(EinlesenABB_MODX), true});
    }
    // Their orientations.
    const auto angles = [](PoseReader reader, bool declarations) {
        return [reader, declarations](const std::string& path) {
            ReadPoses(reader, path, declarations);
            return Angles();
        };
    };
    const auto kukaAngles = [](const Fields& f) {
        return "DECL E6POS XP" + Named(f, 0) + "={X 10,Y 20,Z 30,A " + Named(f, 1) + ",B " + Named(f, 2) +
               ",C " + Named(f, 3) + ",S 2,T 35}\n";
    };
    const auto abbTurn = [](const Fields& f) {
        return "CONST robtarget p" + Named(f, 0) + ":=[[10,20,30],[10," + Named(f, 1) + "," + Named(f, 2) +
               "," + Named(f, 3) + "],[0,0,0,0],[9E9]];\n";
    };
    for (const bool declarations : {false, true}) {
        Walk({"angles of kuka", kukaAngles, "DEFDAT T\n", "ENDDAT\n", "", 3, false,
              angles(EinlesenKUKAdatDatei, declarations), true, 0, true, false});
        Walk({"quaternions of abb", abbTurn, "MODULE T\n", "ENDMODULE\n", "", 3, false,
              [declarations](const std::string& path) { return Turns(EinlesenABB_MODX, path, declarations); },
              true, 0, true, false});
    }
    const auto fanucAngles = [](const Fields& f) {
        const auto padded = [&f](std::size_t i) {
            const std::string text =
                Named(f, i) == "" ? "" : Named(f, i) + (Named(f, i).size() < 3 ? ".000" : "");
            return std::string(text.size() < 10 ? 10 - text.size() : 0, ' ') + text;
        };
        return "P[1]{\n   GP1:\n\tUF : 0, UT : 1,\n\tX =    10.000  mm,\tY =    20.000  mm,\tZ =    30.000  mm, "
               "\n\tW =" +
               padded(3) + " deg,\tP =" + padded(2) + " deg,\tR =" + padded(1) + " deg\n};\n";
    };
    Walk({"angles of fanuc", fanucAngles, "/PROG T\n/POS\n", "/END\n", "", 3, false,
          angles(EinlesenFanucDatei, false), true, 4, true, false});
    Walk({"fanuc", fanuc, "/PROG T\n/POS\n", "/END\n", "", 3, false,
          [](const std::string& path) { return ReadPoses(EinlesenFanucDatei, path); }, true, 3});
}

TEST_F(DamagedFields, OfTextsOfPoses) {
    const auto with = [](std::vector<std::string> before, std::vector<std::string> behind) {
        return [=](const Fields& fields) {
            Fields all = {fields[0]};
            all.insert(all.end(), before.begin(), before.end());
            all.insert(all.end(), fields.begin() + 1, fields.end());
            all.insert(all.end(), behind.begin(), behind.end());
            return Joined(all, ";");
        };
    };
    const auto angles = [](const std::string& path) { return ReadPoses(EinlesenXYZABC, path); };
    Walk({"xyz of angles", with({}, {"10", "20", "30"}), "", "", "# by hand\n", 3, true, WithNames(angles)});
    Walk({"angles", with({"1", "2", "3"}, {}), "", "", "# by hand\n", 3, true,
          WithNames([](const std::string& path) {
              ReadPoses(EinlesenXYZABC, path);
              return Angles();
          })});
    Walk({"xyz of quaternions", with({}, {"1", "0", "0", "0"}), "", "", "# by hand\n", 3, true,
          WithNames([](const std::string& path) { return ReadPoses(EinlesenABB, path); })});
    Walk({"quaternions", with({"1", "2", "3", "10"}, {}), "", "", "# by hand\n", 3, true,
          WithNames([](const std::string& path) { return Turns(EinlesenABB, path); })});
    // The orientations that the calculation window loads for pairs that are there.
    const auto load = [](const std::string& path) {
        Job = JobRecord{};
        RhoFestlegung();
        for (PointSet* points : {&Job.Start, &Job.Target})
            for (const char* name : {"A", "B", "C"}) points->Add(name, {}, {}, 0);
        Job.SetPairs(3);
        LoadPoses(path);
        return Angles();
    };
    Walk({"loaded", with({"0", "0", "0"}, {}), "", "", "# by hand\n", 3, true, load});
}
