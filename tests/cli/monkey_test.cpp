// Random actions of every kind on every control, by name, as a user with no plan would do them. After each
// the program is whole: it answers, says why it refuses, its counts and arrays fit, a result that it has is
// that of the points that it has, and a job that is saved opens as the same.
//
// tools/monkey runs this for longer. It sets CORVINADE_MONKEY_SEED, CORVINADE_MONKEY_ACTIONS and
// CORVINADE_MONKEY_LOG, the file that gets the requests since the program last began.
// Its enumerator has the name of a record that the others declare.
#include "core/records.h"
//
#include <malloc.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <random>

#include "cli/automation.h"
#include "cli/headless.h"
#include "core/form_main.h"
#include "core/fresh_start.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "engine/calculation.h"
#include "engine/transform.h"
#include "graphics/screen_window.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

constexpr int kActionsOfAProgram = 500;
// The shown points of pairs are the targets and the last residuals, which end a few steps of rounding, or of
// the tolerance of the iteration, beside the image; those of another result are far from it.
constexpr double kNear = 1e-4;

std::uint64_t Environment(const char* name, std::uint64_t otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr ? std::stoull(value) : otherwise;
}

}  // namespace

class Monkey : public Automated {
protected:
    // A file that is named without a folder lies in that of the test.
    Monkey() : before_(fs::current_path()) {
        ExpectUnanswered();
        fs::current_path(folder_);
    }
    ~Monkey() override {
        std::error_code none;
        fs::current_path(before_, none);
    }

    std::size_t Below(std::size_t n) { return n == 0 ? 0 : random_() % n; }
    int Number(int low, int high) {
        return low + static_cast<int>(Below(static_cast<std::size_t>(high - low + 1)));
    }
    template <class List>
    auto Any(const List& list) {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

    std::string FileName() {
        static const char* const kFiles[] = {"start.txt", "target.txt",  "robot.dat", "one.cvn",
                                             "two.cvn",   "network.txt", "shape.txt", "out.txt",
                                             "none.txt",  "view.png"};
        return Any(kFiles);
    }
    json AnyValue() {
        static const char* const kTexts[] = {"",     "0", "1",  "-1",  "0.5", "10",    "100",   "1e300",
                                             "nan",  "x", "ä",  "1,5", "90",  "-180",  "P1",    "P4",
                                             "=1+1", " ", "\n", "<b>", "7",   "1e-12", "32768", "999"};
        switch (Below(8)) {
            case 0:
                return FileName();
            case 1:
                return Number(-2, 8);
            case 2:
                return Below(2) == 0;
            case 3:
                return random_() % 4 == 0 ? json() : json::array({1, "a"});
            default:
                return Any(kTexts);
        }
    }

    // A window that is open, the main one and pictures among them.
    std::string AnyWindow() {
        if (!Screens().Open.empty() && Below(4) == 0)
            return "Screen#" +
                   std::to_string(Number(1, static_cast<int>(Screens().Open.size()) + (Below(9) == 0)));
        std::vector<const char*> open;
        for (const WindowEntry* window : AllWindows())
            if (window->State->Loaded || Below(40) == 0) open.push_back(window->Name);
        return open.empty() ? "FormMain" : Any(open);
    }

    json OnScreen(const std::string& screen) {
        static const char* const kEvents[] = {"down", "move", "up", "click", "dblclick", "wheel"};
        static const char* const kButtons[] = {"left", "right", "middle"};
        static const char* const kKeys[] = {"a",      "r",       "n",      "Left",  "Space",  "Pause",
                                            "KP_Add", "Shift+r", "Ctrl+C", "Up",    "PageUp", "Escape",
                                            "Delete", "f",       "l",      "Shift", "Ctrl"};
        switch (Below(8)) {
            case 0:
                return {
                    {"do", "resize"}, {"at", screen}, {"width", Number(-1, 900)}, {"height", Number(0, 700)}};
            case 1:
            case 2:
                return {{"do", "key"}, {"at", screen}, {"key", Any(kKeys)}};
            case 3:
                return {{"do", "click"},
                        {"at", screen + ".Fahne#" + std::to_string(Number(1, 3))},
                        {"row", Number(0, 4)},
                        {"col", Number(0, 8)},
                        {"button", Any(kButtons)}};
            default:
                return {{"do", "mouse"},          {"at", screen},          {"event", Any(kEvents)},
                        {"x", Number(-10, 810)},  {"y", Number(-10, 610)}, {"button", Any(kButtons)},
                        {"delta", Number(-3, 3)}, {"shift", Below(4) == 0}};
        }
    }

    json OnControl(const WindowEntry& window) {
        std::size_t chosen = Below(window.Controls.size());
        // Mostly one that a user can reach.
        for (int tries = 0; tries < 20 && Below(10) != 0; ++tries, chosen = Below(window.Controls.size())) {
            const Control& there = *window.Controls[chosen].Place;
            const bool passive = there.Kind == ControlKind::Label || there.Kind == ControlKind::Frame ||
                                 there.Kind == ControlKind::Toolbar;
            const bool ends =
                std::string_view(window.Controls[chosen].Name) == "MenuFileExit" && Below(20) != 0;
            if (there.Enabled && there.Visible && !passive && !ends) break;
        }
        const ControlEntry& entry = window.Controls[chosen];
        const Control& control = *entry.Place;
        const std::string at = std::string(window.Name) + "." + entry.Name;
        if (Below(20) == 0) return {{"do", "set"}, {"at", at}, {"value", AnyValue()}};
        switch (control.Kind) {
            case ControlKind::Text:
                return {{"do", "set"}, {"at", at}, {"value", AnyValue()}};
            case ControlKind::Check:
                return {{"do", "set"}, {"at", at}, {"value", Number(0, 2)}};
            case ControlKind::Option:
                return {{"do", "set"}, {"at", at}, {"value", true}};
            case ControlKind::Scroll:
                return {{"do", "set"}, {"at", at}, {"value", Number(control.Min, control.Max)}};
            case ControlKind::Combo:
                return {
                    {"do", "set"}, {"at", at}, {"value", Number(0, static_cast<int>(control.Items.size()))}};
            case ControlKind::Grid: {
                static const char* const kDo[] = {"click", "dblclick", "click", "select", "key"};
                static const char* const kKeys[] = {"Ctrl+C", "Ctrl+A", "Delete", "Space", "Down", "Ctrl+V"};
                return {{"do", Any(kDo)},       {"at", at},
                        {"row", Number(0, 9)},  {"col", Number(0, 9)},
                        {"row2", Number(0, 9)}, {"col2", Number(0, 9)},
                        {"key", Any(kKeys)},    {"shift", Below(5) == 0}};
            }
            default:
                return {{"do", Below(9) == 0 ? "dblclick" : "click"}, {"at", at}};
        }
    }

    json AnAnswer() {
        static const char* const kKinds[] = {"message", "input", "open", "save", "folder", "colour"};
        static const char* const kButtons[] = {"Yes", "No", "Cancel", "OK", "overwrite all ", "x"};
        const std::string kind = Any(kKinds);
        json value = AnyValue();
        if (kind == "message") value = Any(kButtons);
        if (kind == "open" || kind == "save") value = FileName();
        if (kind == "folder") value = ".";
        if (kind == "colour") value = Number(0, 0xffffff);
        return {{"do", "answer"}, {"kind", kind}, {"value", value}};
    }

    json Action() {
        switch (Below(16)) {
            case 0:
                return AnAnswer();
            case 1: {
                const std::span<const RecordEntry> records = Any(AllRecords());
                json request = {{"do", "record"}, {"name", records[Below(records.size())].Name}};
                if (writesRecords_) request["value"] = AnyValue();
                return request;
            }
            case 2:
                return {{"do", "clipboard"},
                        {"value", Below(2) == 0 ? "A;1;2;3\r\nB;2;3;5\r\nC;9;1;4" : "x"}};
            case 3: {
                const std::string window = AnyWindow();
                const bool closes = Below(4) == 0 && (window != "FormMain" || Below(20) == 0);
                return {{"do", closes ? "close" : "get"}, {"at", window}};
            }
            case 4:
                return {{"do", "during"}, {"yield", Number(1, 3)}, {"request", ActionInWindow()}};
            default:
                return ActionInWindow();
        }
    }
    json ActionInWindow() {
        if (Below(40) == 0) return ImportPoints();
        const std::string window = AnyWindow();
        if (window.starts_with("Screen#")) return OnScreen(window);
        return OnControl(*FindWindow(window));
    }
    // What brings a program without a plan into the middle of its work.
    json ImportPoints() {
        static const char* const kSteps[] = {
            "FormMain.MenuFileInputFiles", "FormMain.MenuTransformationCalculation",
            "FormTrafoBerechnung.BtnCalculate", "FormMain.MenueGraphics", "FormInputFiles.BtnOK"};
        const std::size_t step = Below(std::size(kSteps) + 2);
        if (step >= std::size(kSteps))
            return {{"do", "set"},
                    {"at", step % 2 == 0 ? "FormInputFiles.TextNameMCS" : "FormInputFiles.TextNameOCS"},
                    {"value", Below(2) == 0 ? "start.txt" : "target.txt"}};
        return {{"do", "click"}, {"at", kSteps[step]}};
    }

    void NewProgram() {
        FreshStart();
        Headless = HeadlessRecord{};
        Headless.Decimal = '.';
        Headless.SettingsDir = folder_ + "/settings";
        Headless.ProgramDir = folder_ + "/program";
        for (const auto& entry : fs::directory_iterator(folder_)) fs::remove_all(entry.path());
        std::string start, target;
        for (int i = 1; i <= 7; ++i) {
            const int x = i * i % 5 * 100, y = i * 37 % 23 * 10, z = i * 5 % 11;
            const std::string name = "P" + std::to_string(i) + ";";
            start += name + std::to_string(x) + ";" + std::to_string(y) + ";" + std::to_string(z) + "\n";
            target += name + std::to_string(-y + 5) + ";" + std::to_string(x) + ";" +
                      std::to_string(z + i % 2) + "\n";
        }
        Write("start.txt", start);
        Write("target.txt", target);
        Write("shape.txt", "0;0\n10;1\n20;4\n30;9\n40;16\n50;25\n");
        Write("robot.dat",
              "DECL E6POS XP1={X 1,Y 2,Z 3,A 0,B 0,C 0}\nDECL E6POS XP2={X 9,Y 2,Z 3,A 1,B 0,C 5}\n");
        writesRecords_ = Below(3) == 0;
        requests_.clear();
        StartAutomation({});
        Ask({{"do", "set"}, {"at", "FormInputFiles.TextNameMCS"}, {"value", "start.txt"}});
        if (Below(8) == 0) return;
        for (const char* request : {R"({"do":"click","at":"FormMain.MenuFileInputFiles"})",
                                    R"({"do":"set","at":"FormInputFiles.TextNameMCS","value":"start.txt"})",
                                    R"({"do":"set","at":"FormInputFiles.TextNameOCS","value":"target.txt"})",
                                    R"({"do":"click","at":"FormInputFiles.BtnOK"})",
                                    R"({"do":"click","at":"FormMain.MenuTransformationCalculation"})",
                                    R"({"do":"click","at":"FormTrafoBerechnung.BtnCalculate"})"})
            Ask(json::parse(request));
    }

    // The result that the program has is the one of the points that it has. Points that have been added to a
    // job stand behind the others, at their start, until the next calculation.
    static void ResultBelongsToThePoints() {
        if (Run.TrafoValid != kTrue || Run.CalcDone != kTrue) return;
        ASSERT_TRUE(JobIsWhole(Job));
        bool added = false;
        for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Start.Count()); ++i) {
            const auto &start = Job.Start, &shown = Job.Transformed;
            std::array<double, 3> image{};
            TransformPoint(start.X[i].value_or(0), start.Y[i].value_or(0), start.Z[i], image[0], image[1],
                           image[2]);
            const double size = 1 + std::abs(image[0]) + std::abs(image[1]) + std::abs(image[2]);
            if (!std::isfinite(size)) continue;
            const auto stands = [&](double x, double y, double z) {
                return std::abs(shown.X[i].value_or(0) - x) <= kNear * size &&
                       std::abs(shown.Y[i].value_or(0) - y) <= kNear * size &&
                       std::abs(shown.Z[i] - z) <= kNear * size;
            };
            const bool isImage = stands(image[0], image[1], image[2]);
            added |= !isImage;
            ASSERT_TRUE(added ? stands(start.X[i].value_or(0), start.Y[i].value_or(0), start.Z[i]) : isImage)
                << "point " << i << " of " << start.Count() << ": " << image[0] << " " << image[1] << " "
                << image[2] << " is shown at " << shown.X[i].value_or(0) << " " << shown.Y[i].value_or(0)
                << " " << shown.Z[i];
        }
    }

    static void ASavedJobOpensEqual() {
        std::string saved;
        try {
            JobRecord job = Job;
            job.AutoRecalc = kFalse;  // a job that is opened does not calculate by itself
            saved = JobBytes(job, Main.ComboSaveView.Items);
        } catch (const PlatformError& error) {
            ASSERT_NE(error.What, "");
            return;
        }
        const JobFileContent again = ReadJobBytes(saved, "a.cvn");
        ASSERT_TRUE(JobBytes(again.Job, again.ViewNames) == saved) << "is another job when it is read again";
    }

    void Act() {
        const json request = Action();
        requests_.push_back(request);
        if (log_ != nullptr)
            std::ofstream(log_, requests_.size() == 1 ? std::ios::trunc : std::ios::app) << request << "\n";
        bool quit = false;
        const json reply =
            json::parse(AnswerLine(request.dump(-1, ' ', false, json::error_handler_t::replace), quit));
        (reply["ok"] == true ? ++done_ : ++refused_);
        if (reply["ok"] == true) ++kinds_[request["do"].get<std::string>()];
        ASSERT_TRUE(reply["ok"] == true || reply.value("error", "") != "") << reply;
        ASSERT_TRUE(!reply.contains("platformError") || reply["platformError"] != "") << reply;
        if (reply.contains("dialogs")) {
            for (const json& dialog : reply["dialogs"])
                ASSERT_TRUE(dialog["kind"] != "message" || dialog["text"] != "") << reply;
        }
        ASSERT_EQ(JobFault(LengthsOf(Job)), "");
        ASSERT_EQ(::Run.WaitPointers, 0);
        if (writesRecords_) return;
        ASSERT_NO_FATAL_FAILURE(ResultBelongsToThePoints()) << reply;
    }

    std::mt19937 random_{static_cast<unsigned>(Environment("CORVINADE_MONKEY_SEED", 1))};
    const char* log_ = std::getenv("CORVINADE_MONKEY_LOG");
    bool writesRecords_ = false;
    std::vector<json> requests_;  // since the program began
    std::uint64_t done_ = 0, refused_ = 0;
    std::map<std::string, int> kinds_;
    fs::path before_;
};

TEST_F(Monkey, NothingThatAUserDoesBreaksTheProgram) {
    const std::uint64_t actions = Environment("CORVINADE_MONKEY_ACTIONS", UnderSanitizers() ? 500 : 5000);
    std::size_t settled = 0;
    for (std::uint64_t action = 0; action < actions; ++action) {
        // One that has been ended begins anew.
        if (action % kActionsOfAProgram == 0 || !IsLoaded("FormMain")) NewProgram();
        ASSERT_NO_FATAL_FAILURE(Act()) << "action " << action << ": " << requests_.back();
        if (action % 100 == 99) {
            ASSERT_NO_FATAL_FAILURE(ASavedJobOpensEqual()) << "action " << action;
        }
        // The memory of a program that has ended is there for the next.
        if ((action + 1) % kActionsOfAProgram == 0) {
            FreshStart();
            Headless = HeadlessRecord{};
            requests_.clear();
            const std::size_t used = mallinfo2().uordblks;
            if (settled == 0 && action >= 3 * kActionsOfAProgram) settled = used;
            if (settled != 0) {
                ASSERT_LT(used, settled + (std::size_t{16} << 20)) << "action " << action;
            }
        }
    }
    std::cout << done_ << " actions done, " << refused_ << " refused\n";
    for (const auto& [kind, count] : kinds_) std::cout << "  " << kind << ": " << count << "\n";
    EXPECT_GT(done_, actions / 4);
}
