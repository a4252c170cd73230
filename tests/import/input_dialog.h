// The input dialog with two small point files, as its tests stand on it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/window.h"
#include "import/form_input_files.h"
#include "support/fixture.h"

using namespace corvinade;

// Places in the list of the kinds.
enum DialogKind : int { kDefault, kKuka, kAbb, kFanuc, kXYZABC, kQuaternion, kShape };

inline const char* const kStart = "A;0;0;0\r\nB;100;0;0\r\nC;0;200;0\r\nD;0;0;300\r\nE;10;20;30\r\n";
inline const char* const kTarget = "A;5;6;7\r\nB;105;6;7\r\nC;5;206;7\r\nD;5;6;307\r\nF;1;1;1\r\n";

class InputDialog : public Program {
protected:
    InputDialog() {
        StartUp("");
        start_ = Write("start.txt", kStart);
        target_ = Write("target.txt", kTarget);
    }

    void Open() const {
        ShowWindow("FormInputFiles");
        UserSetText(InputFiles.TextNameMCS, start_);
        UserSetText(InputFiles.TextNameOCS, target_);
    }
    void Import() const {
        Open();
        UserClick(InputFiles.BtnOK);
    }
    static std::vector<std::string> Names(const std::vector<std::string>& names) {
        return {names.begin() + 1, names.end()};
    }
    static void Answer(const char* kind, std::optional<std::string> answer) {
        Headless.Answers[kind].push_back(std::move(answer));
    }

    std::string start_, target_;
};
