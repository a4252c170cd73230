// Every call of the system on the files of a command fails once, in every way: the command says so or has
// done its work, its target is the old file or the new one, and nothing stays beside it.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <map>

#include "cli/command_line.h"
#include "support/fixture.h"
#include "support/program_path.h"

using namespace corvinade;

namespace fs = std::filesystem;

class Faults : public Program {
protected:
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

    End Run(const std::vector<std::string>& arguments, const std::string& input, int at, int error) const {
        const std::string log = PathOf("log"), out = PathOf("out"), err = PathOf("err"),
                          text = Write("input", input);
        fs::remove(log);
        const pid_t child = fork();
        EXPECT_GE(child, 0);
        if (child == 0) {
            dup2(open(text.c_str(), O_RDONLY), 0);
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
            dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
            const rlimit core = {0, 0};
            setrlimit(RLIMIT_CORE, &core);
            setenv("LD_PRELOAD", FaultsPath().c_str(), 1);
            setenv("FAULTS_FOLDER", in_.c_str(), 1);
            setenv("FAULTS_AT", std::to_string(at).c_str(), 1);
            setenv("FAULTS_ERRNO", std::to_string(error).c_str(), 1);
            setenv("FAULTS_LOG", log.c_str(), 1);
            const std::string program = ProgramPath();
            std::vector<char*> argv = {const_cast<char*>(program.c_str())};
            for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
            argv.push_back(nullptr);
            execv(program.c_str(), argv.data());
            _exit(127);
        }
        End end;
        EXPECT_EQ(waitpid(child, &end.Status, 0), child);
        end.Fault = fs::exists(log) ? Contents(log) : "";
        end.Out = Contents(out);
        end.Err = Contents(err);
        return end;
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

    // `told` is what a run shows that has not done its work.
    void EveryCallFails(const std::vector<std::string>& arguments, const std::string& input = "",
                        bool (*told)(const End&) = nullptr) const {
        const Files before = FilesNow();
        const End good = Run(arguments, input, 0, 0);
        ASSERT_TRUE(WIFEXITED(good.Status) && WEXITSTATUS(good.Status) == 0) << good.Err;
        const Files after = FilesNow();
        int faults = 0;
        for (const int error : {EIO, ENOSPC, EACCES, EINTR, ENOMEM}) {
            for (int at = 1;; ++at) {
                PutBack(before);
                const End end = Run(arguments, input, at, error);
                if (end.Fault.empty()) break;
                ++faults;
                const std::string what = arguments[0] + ": call " + std::to_string(at) + ", " + end.Fault +
                                         ", " + std::strerror(error);
                ASSERT_TRUE(WIFEXITED(end.Status)) << what << ", signal " << WTERMSIG(end.Status);
                const Files now = FilesNow();
                const bool failed = told == nullptr ? WEXITSTATUS(end.Status) != 0 : told(end);
                for (const auto& [path, text] : now) {
                    EXPECT_EQ(path.find(".cvnew"), std::string::npos) << what << ": " << path;
                    const bool isOld = before.contains(path) && before.at(path) == text;
                    const bool isNew = after.contains(path) && after.at(path) == text;
                    EXPECT_TRUE(isOld || isNew) << what << ": " << path << " is neither old nor new";
                }
                if (failed && told == nullptr) {
                    EXPECT_NE(end.Err, "") << what;
                } else if (!failed) {
                    EXPECT_TRUE(now == after) << what << ": has said nothing, and has not done its work\n"
                                              << end.Err;
                }
            }
        }
        EXPECT_GT(faults, 5 * 5);
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

TEST_F(Faults, OfASaveByNameAndOfTheSettings) {
    const std::string job = In("j.cvn");
    const std::string input = R"({"do":"click","at":"FormMain.MenuFileSave"})"
                              "\n"
                              R"({"do":"quit"})"
                              "\n";
    fs::create_directories(In("settings"));
    // A first start, so that the settings stand.
    Run({"automate", "--settings-dir", In("settings"), "--job", job}, R"({"do":"quit"})", 0, 0);
    EveryCallFails({"automate", "--settings-dir", In("settings"), "--job", job}, input, [](const End& end) {
        return end.Out.find("Cannot ") != std::string::npos ||
               end.Out.find("could not") != std::string::npos ||
               end.Out.find("not been") != std::string::npos ||
               end.Out.find("not exist") != std::string::npos;
    });
}
