// What the tests of `corvinade-cli fit` stand on: the command in this process, and a pair of files.
#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

inline const std::string kExamples = std::string(CORVINADE_SOURCE_DIR) + "/examples/";
inline const std::string kMeasured = kExamples + "robot_cell_measured.txt";
inline const std::string kNominal = kExamples + "robot_cell_nominal.txt";

class FitCommand : public Program {
protected:
    static Outcome Fit(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "fit");
        if (std::find(arguments.begin(), arguments.end(), "--decimal") == arguments.end()) {
            arguments.emplace_back("--decimal");
            arguments.emplace_back(".");
        }
        return CommandLine(arguments);
    }
    static json FitJson(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out);
    }

    std::string start_ = Write("start.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\nE;700;800;900\n");
    std::string target_ = Write("target.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\nE;705;806;907\n");
};
