// Every call of the system on the files of a command fails once, in every way: the command says so or has
// done its work, its target is the old file or the new one, and nothing stays beside it.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>

#include "cli/command_line.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "faults/fault_request.h"
#include "support/fixture.h"
#include "support/program_path.h"

using namespace corvinade;

namespace fs = std::filesystem;

class Faults : public Program {
protected:
    // What fails, beside the calls on files.
    struct Failing {
        bool Removals = false;
        int Memory = 0, Times = 0;
    };
    struct End {
        int Status = 0;     // of the process
        std::string Fault;  // the call that has failed; "" where none did
        std::string Out, Err;
    };
    using Files = std::map<std::string, std::string>;

    // The folder in which calls fail; what the test writes down itself lies beside it.
    std::string in_ = PathOf("in");

    static std::string Lines(double by) {
        std::string text;
        for (int i = 0; i < 20; ++i)
            text += "P" + std::to_string(i) + ";" + std::to_string(i * i % 17 * 100 + by) + ";" +
                    std::to_string(i * 37 % 23 * 10 - by) + ";" + std::to_string(i * 5 % 11 + by) + "\n";
        return text;
    }

    // The program with its arguments, and the files of its standard streams.
    struct Start {
        std::vector<std::string> Arguments;
        std::string Input;
    };
    // A program that stands before its first call on a file; Process is -1 where it does not wait there.
    struct Served {
        Served() = default;
        Served(const Served&) = delete;
        Served& operator=(const Served&) = delete;
        ~Served() {
            if (Process < 0) return;
            close(To);
            close(From);
            int status = 0;
            waitpid(Process, &status, 0);
        }
        pid_t Process = -1;
        int To = -1, From = -1;
    };

    std::string log_ = PathOf("log"), out_ = PathOf("out"), err_ = PathOf("err");

    // Becomes the program; the environment beside what is given here names the fault.
    [[noreturn]] void Become(const Start& start, const std::string& input) const {
        dup2(open(input.c_str(), O_RDONLY), 0);
        dup2(open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        const rlimit core = {0, 0};
        setrlimit(RLIMIT_CORE, &core);
        setenv("LD_PRELOAD", FaultsPath().c_str(), 1);
        setenv("FAULTS_FOLDER", in_.c_str(), 1);
        setenv("FAULTS_LOG", log_.c_str(), 1);
        const std::string program = ProgramPath();
        std::vector<char*> argv = {const_cast<char*>(program.c_str())};
        for (const std::string& argument : start.Arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    End Ended(int status) const {
        return {.Status = status,
                .Fault = fs::exists(log_) ? Contents(log_) : "",
                .Out = Contents(out_),
                .Err = Contents(err_)};
    }
    // Without a fault.
    End Run(const Start& start) const {
        const std::string input = Write("input", start.Input);
        fs::remove(log_);
        const pid_t child = fork();
        EXPECT_GE(child, 0);
        if (child == 0) Become(start, input);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return Ended(status);
    }

    // Loads the program once for many runs, each of which begins where it makes its first call on a file.
    void Serve(const Start& start, Served& served) const {
        const std::string input = Write("input", start.Input);
        int requests[2], answers[2];
        ASSERT_EQ(pipe2(requests, O_CLOEXEC) + pipe2(answers, O_CLOEXEC), 0);
        served.Process = fork();
        ASSERT_GE(served.Process, 0);
        if (served.Process == 0) {
            dup2(requests[0], kFaultRequests);
            dup2(answers[1], kFaultAnswers);
            setenv("FAULTS_SERVED", "yes", 1);
            Become(start, input);
        }
        close(requests[0]);
        close(answers[1]);
        served.To = requests[1];
        served.From = answers[0];
        int ready = -1;
        ASSERT_EQ(read(served.From, &ready, sizeof ready), static_cast<ssize_t>(sizeof ready));
        ASSERT_EQ(ready, 0) << "has written something before its first call";
    }
    End Run(const Served& served, int at, int error, const Failing& failing) const {
        fs::remove(log_);
        FaultRequest request = {.At = at,
                                .Errno = error,
                                .Removals = failing.Removals,
                                .Memory = failing.Memory,
                                .Times = failing.Times};
        std::strncpy(request.In, PathOf("input").c_str(), sizeof request.In - 1);
        std::strncpy(request.Out, out_.c_str(), sizeof request.Out - 1);
        std::strncpy(request.Err, err_.c_str(), sizeof request.Err - 1);
        int status = -1;
        EXPECT_EQ(write(served.To, &request, sizeof request), static_cast<ssize_t>(sizeof request));
        EXPECT_EQ(read(served.From, &status, sizeof status), static_cast<ssize_t>(sizeof status));
        return Ended(status);
    }

    Files FilesNow() const {
        Files files;
        for (const auto& entry : fs::recursive_directory_iterator(in_))
            if (entry.is_regular_file()) files[entry.path().string()] = Contents(entry.path().string());
        return files;
    }
    void PutBack(const Files& files) const {
        for (const auto& [path, now] : FilesNow())
            if (!files.contains(path)) fs::remove(path);
        for (const auto& [path, text] : files) {
            fs::create_directories(fs::path(path).parent_path());
            if (!fs::exists(path) || Contents(path) != text) {
                fs::remove(path);
                Write(fs::relative(path, folder_).string(), text);
            }
        }
    }

    // Settings, copies and their locks are written several times in a run, and may stay as at one of these.
    static bool IsWholeBetween(const std::string& path, const std::string& text) {
        if (path.ends_with(".lock")) return true;
        if (path.ends_with(".ini")) {
            std::istringstream lines(text);
            for (std::string line; std::getline(lines, line);)
                if (line != "\r" && line.find('=') == std::string::npos && line[0] != '[') return false;
            return !text.empty();
        }
        // A job that is saved behind a step that failed, as that has said, is one without what failed.
        if (path.find("/recovery-") == std::string::npos && !path.ends_with("/new.cvn")) return false;
        try {
            return ReadJobBytes(text, path).BlockFault.empty();
        } catch (const PlatformError&) {
            return false;
        }
    }

    // Has a run with a fault ended as it has to? `told` is what one shows that has not done its work.
    void ExpectWhole(const End& end, const std::string& what, const Files& before, const Files& after,
                     bool (*told)(const End&)) const {
        ASSERT_TRUE(WIFEXITED(end.Status)) << what << ", signal " << WTERMSIG(end.Status);
        const Files now = FilesNow();
        const bool failed = told == nullptr ? WEXITSTATUS(end.Status) != 0 : told(end);
        // What cannot be removed stays.
        const bool stays = end.Fault == "unlink" || end.Fault == "remove";
        bool strays = false;
        for (const auto& [path, text] : now) {
            const bool beside = path.find(".cvnew") != std::string::npos;
            // So does what was there already and cannot be told to be left behind.
            if ((stays && (beside || !after.contains(path))) || (beside && before.contains(path))) {
                strays = true;
                continue;
            }
            EXPECT_FALSE(beside) << what << ": " << path;
            const bool isOld = before.contains(path) && before.at(path) == text;
            const bool isNew = after.contains(path) && after.at(path) == text;
            EXPECT_TRUE(isOld || isNew || IsWholeBetween(path, text))
                << what << ": " << path << " is neither old nor new";
        }
        if (failed && told == nullptr) {
            EXPECT_TRUE(end.Err != "" || end.Out.find("\"corvinade-error\"") != std::string::npos) << what;
        } else if (!failed && !strays) {
            EXPECT_TRUE(now == after) << what << ": has said nothing, and has not done its work\n" << end.Err;
        }
    }

    void EveryCallFails(const std::vector<std::string>& arguments, const std::string& input = "",
                        bool (*told)(const End&) = nullptr, bool removals = false) const {
        const Files before = FilesNow();
        const End good = Run({arguments, input});
        ASSERT_TRUE(WIFEXITED(good.Status) && WEXITSTATUS(good.Status) == 0) << good.Err;
        const Files after = FilesNow();
        int faults = 0, ofRemovals = 0;
        PutBack(before);
        Served served;
        ASSERT_NO_FATAL_FAILURE(Serve({arguments, input}, served));
        const std::vector<int> all = {EIO, ENOSPC, EACCES, EINTR, ENOMEM}, ofRemoval = {EIO, EACCES};
        for (const int error : removals ? ofRemoval : all) {
            for (int at = 1;; ++at) {
                PutBack(before);
                const End end = Run(served, at, error, {.Removals = removals});
                if (end.Fault.empty()) break;
                ++faults;
                ofRemovals += end.Fault == "unlink" || end.Fault == "remove" ? 1 : 0;
                const std::string what = arguments[0] + ": call " + std::to_string(at) + ", " + end.Fault +
                                         ", " + std::strerror(error);
                ASSERT_NO_FATAL_FAILURE(ExpectWhole(end, what, before, after, told));
            }
        }
        EXPECT_GT(faults, removals ? 2 * 5 : 5 * 5);
        EXPECT_EQ(ofRemovals > 0, removals);
        PutBack(before);
    }

    // Allocations fail one by one and a hundred at a time, at so many places spread over all that there are.
    void AllocationsFail(const std::vector<std::string>& arguments, const std::string& input = "",
                         bool (*told)(const End&) = nullptr) const {
        constexpr int kPlaces = 25;
        const Files before = FilesNow();
        Run({arguments, input});
        const Files after = FilesNow();
        PutBack(before);
        Served served;
        ASSERT_NO_FATAL_FAILURE(Serve({arguments, input}, served));
        int most = 1;  // allocations, to a power of two
        for (;; most *= 2) {
            PutBack(before);
            if (Run(served, 0, 0, {.Memory = most, .Times = 1}).Fault.empty()) break;
        }
        ASSERT_GT(most, kPlaces);
        int faults = 0;
        for (const int times : {1, 100}) {
            for (int place = 0; place < kPlaces; ++place) {
                // The first ones each, then further and further apart.
                const int at = 1 + place + static_cast<int>(std::pow(most, double(place) / kPlaces));
                PutBack(before);
                const End end = Run(served, 0, 0, {.Memory = at, .Times = times});
                if (end.Fault.empty()) continue;
                ++faults;
                const std::string what = arguments[0] + ": " + std::to_string(times) + " allocations from " +
                                         std::to_string(at) + " on of " + std::to_string(most);
                ASSERT_NO_FATAL_FAILURE(ExpectWhole(end, what, before, after, told)) << end.Err;
            }
        }
        EXPECT_GT(faults, kPlaces);
        PutBack(before);
    }

    std::string In(const std::string& name) const { return in_ + "/" + name; }

    void SetUp() override {
        if (FaultsPath().empty()) GTEST_SKIP() << "the sanitizers want to be loaded first";
        Write("in/s.txt", Lines(0));
        Write("in/t.txt", Lines(3));
        ASSERT_EQ(FreshCommandLine({"fit", In("s.txt"), In("t.txt"), "--save", In("j.cvn")}).Status, 0);
    }
};

TEST_F(Faults, OfAFitThatSavesOverAJob) {
    Write("in/old.cvn", Contents(In("j.cvn")) + "old");
    EveryCallFails({"fit", In("s.txt"), In("t.txt"), "--parameters", "7", "--save", In("old.cvn")});
}

TEST_F(Faults, OfAFitOfAJobThatIsSavedOverIt) {
    EveryCallFails({"fit", "--job", In("j.cvn"), "--parameters", "7", "--save", In("j.cvn")});
}

TEST_F(Faults, OfAConversion) {
    Write("in/o.json", "old");
    EveryCallFails({"convert", In("j.cvn"), In("o.json")});
}

TEST_F(Faults, OfAnExport) {
    Write("in/o.txt", "old");
    EveryCallFails({"export", In("j.cvn"), "--points", In("o.txt")});
}

TEST_F(Faults, OfTheTransformationOfAFile) {
    Write("in/o.txt", "old");
    EveryCallFails({"transform", In("j.cvn"), In("s.txt"), "--out", In("o.txt"), "--overwrite"});
}

TEST_F(Faults, OfTheTransformationOfAFolder) {
    Write("in/many/a.txt", Lines(1));
    Write("in/many/b.txt", Lines(2));
    Write("in/to/a_out.txt", "old");
    EveryCallFails({"transform", In("j.cvn"), In("many"), "--to", In("to"), "--overwrite"});
}

namespace {

bool SaysSo(const std::string& out) {
    for (const char* words : {"Cannot ", "cannot be", "could not", "not been", "not exist", "enough memory",
                              "is in use", "error"})
        if (out.find(words) != std::string::npos) return true;
    return false;
}

}  // namespace

TEST_F(Faults, OfASaveByNameAndOfTheSettings) {
    const std::string job = In("j.cvn");
    const std::string input = R"({"do":"click","at":"FormMain.MenuFileSave"})"
                              "\n"
                              R"({"do":"quit"})"
                              "\n";
    fs::create_directories(In("settings"));
    // A first start, so that the settings stand.
    Run({{"automate", "--settings-dir", In("settings"), "--job", job}, R"({"do":"quit"})"});
    const std::vector<std::string> arguments = {"automate", "--settings-dir", In("settings"), "--job", job};
    const auto told = [](const End& end) { return SaysSo(end.Out) || end.Err != ""; };
    EveryCallFails(arguments, input, told);
    AllocationsFail(arguments, input, told);
}

namespace {

// Requests by name, a line each; ended by `quit`.
std::string Click(const std::string& at) {
    return R"({"do":"click","at":")" + at + "\"}\n";
}
std::string SetTo(const std::string& at, const std::string& value) {
    return R"({"do":"set","at":")" + at + R"(","value":")" + value + "\"}\n";
}
std::string Answer(const std::string& kind, const std::string& value) {
    return R"({"do":"answer","kind":")" + kind + R"(","value":")" + value + "\"}\n";
}
const std::string kQuit = R"({"do":"quit"})"
                          "\n";

}  // namespace

// Other points come in by the dialog, are fitted, and go to a new job.
TEST_F(Faults, OfAnImportByName) {
    fs::create_directories(In("settings"));
    Run({{"automate", "--settings-dir", In("settings")}, kQuit});
    const std::string input =
        Click("FormMain.MenuFileInputFiles") + SetTo("FormInputFiles.TextNameMCS", In("s.txt")) +
        SetTo("FormInputFiles.TextNameOCS", In("t.txt")) + Click("FormInputFiles.BtnOK") +
        Click("FormMain.MenuTransformationCalculation") + Click("FormTrafoBerechnung.BtnCalculate") +
        Answer("save", In("new.cvn")) + Click("FormMain.MenuFileSaveAs") + kQuit;
    const std::vector<std::string> arguments = {"automate", "--settings-dir", In("settings")};
    const auto told = [](const End& end) { return SaysSo(end.Out) || end.Err != ""; };
    EveryCallFails(arguments, input, told);
    AllocationsFail(arguments, input, told);
}

// The window of the batch carries a folder through the result of a job.
TEST_F(Faults, OfTheBatchByName) {
    Write("in/many/a.txt", Lines(1));
    Write("in/many/b.txt", Lines(2));
    Write("in/to/a_out.txt", "old");
    fs::create_directories(In("settings"));
    const std::vector<std::string> arguments = {"automate", "--settings-dir", In("settings"), "--job",
                                                In("j.cvn")};
    Run({arguments, kQuit});
    const std::string input =
        Click("FormMain.MenuTransformationCalculation") + Click("FormTrafoBerechnung.BtnCalculate") +
        Click("FormMain.MenueTransformationBatch") + SetTo("FormBatch.TextNameMCSDirectory", In("many")) +
        SetTo("FormBatch.TextNameTCSDirectory", In("to")) + Answer("message", "overwrite all ") +
        Click("FormBatch.BtnStartBatch") + kQuit;
    const auto told = [](const End& end) { return SaysSo(end.Out) || end.Err != ""; };
    EveryCallFails(arguments, input, told);
    AllocationsFail(arguments, input, told);
}

// A program that keeps copies changes, saves and ends.
TEST_F(Faults, OfRecoveryByName) {
    const std::string input = R"({"do":"record","name":"TraX","value":5})"
                              "\n"
                              R"({"do":"click","at":"FormMain.MenuFileSave"})"
                              "\n"
                              R"({"do":"quit"})"
                              "\n";
    const std::vector<std::string> arguments = {"automate",     "--recovery", "--settings-dir",
                                                In("settings"), "--job",      In("j.cvn")};
    fs::create_directories(In("settings"));
    Run({arguments, R"({"do":"quit"})"});
    const auto told = [](const End& end) { return SaysSo(end.Out) || end.Err != ""; };
    EveryCallFails(arguments, input, told);
    EveryCallFails(arguments, input, told, true);
    AllocationsFail(arguments, input, told);
}

// A copy that was left is restored and saved.
TEST_F(Faults, OfARestoredCopy) {
    const std::vector<std::string> arguments = {"automate",     "--recovery", "--settings-dir",
                                                In("settings"), "--job",      In("j.cvn")};
    fs::create_directories(In("settings"));
    // The end of the input leaves the copy, as a kill does.
    Run({arguments, R"({"do":"record","name":"TraX","value":5})"});
    ASSERT_TRUE(fs::exists(In("settings/Corvinade/recovery-1.cvn")));
    const std::string input = R"({"do":"click","at":"FormRecovery.BtnRestore"})"
                              "\n"
                              R"({"do":"click","at":"FormMain.MenuFileSave"})"
                              "\n"
                              R"({"do":"quit"})"
                              "\n";
    const auto told = [](const End& end) { return SaysSo(end.Out) || end.Err != ""; };
    EveryCallFails(arguments, input, told, true);
    AllocationsFail(arguments, input, told);
}

TEST_F(Faults, OfAllocationsInEachCommand) {
    Write("in/many/a.txt", Lines(1));
    Write("in/many/b.txt", Lines(2));
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"fit", In("s.txt"), In("t.txt"), "--parameters", "7", "--save", In("j.cvn")},
             {"fit", "--job", In("j.cvn"), "--json"},
             {"info", In("j.cvn"), "--json"},
             {"convert", In("j.cvn"), In("o.json")},
             {"export", In("j.cvn"), "--points", In("o.txt")},
             {"transform", In("j.cvn"), In("many"), "--to", In("to")}})
        AllocationsFail(arguments);
}

// A file that a killed program has left beside the target cannot be removed.
TEST_F(Faults, OfRemovalsBesideASave) {
    Write("in/j.cvn.cvnew1", "left behind");
    EveryCallFails({"fit", In("s.txt"), In("t.txt"), "--parameters", "7", "--save", In("j.cvn")}, "", nullptr,
                   true);
}
