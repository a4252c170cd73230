// How the program ends when somebody else ends it: by signals, closed pipes, want of memory, a broken input.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "cli/command_line.h"
#include "support/fixture.h"
#include "support/program_path.h"

using namespace corvinade;

namespace fs = std::filesystem;

class Ends : public Program {
protected:
    std::string job_ = PathOf("j.cvn");

    Ends() {
        const std::string start = Write("s.txt", "A;0;0;0\nB;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
        const std::string target = Write("t.txt", "A;5;6;7\nB;1005;6;7\nC;5;2006;7\nD;5;6;3007\n");
        EXPECT_EQ(FreshCommandLine({"fit", start, target, "--save", job_}).Status, 0);
    }

    struct Child {
        pid_t Id = -1;
        int In = -1;  // what it reads
    };
    // The program with a pipe as its input; standard output and error go to files. `bytes` limits its memory.
    Child Run(const std::vector<std::string>& arguments, rlim_t bytes = RLIM_INFINITY) const {
        int pipes[2];
        EXPECT_EQ(pipe(pipes), 0);
        Child child;
        child.Id = fork();
        EXPECT_GE(child.Id, 0);
        if (child.Id == 0) {
            dup2(pipes[0], 0);
            dup2(open(PathOf("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
            dup2(open(PathOf("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
            close(pipes[0]);
            close(pipes[1]);
            // Who runs the tests may have these ignored (nohup does), and a program keeps what it was started
            // with.
            for (const int each : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT}) signal(each, SIG_DFL);
            const rlimit core = {0, 0}, memory = {bytes, bytes};
            setrlimit(RLIMIT_CORE, &core);
            if (bytes != RLIM_INFINITY) setrlimit(RLIMIT_AS, &memory);
            const std::string program = ProgramPath();
            std::vector<char*> argv = {const_cast<char*>(program.c_str())};
            for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
            argv.push_back(nullptr);
            execv(program.c_str(), argv.data());
            _exit(127);
        }
        close(pipes[0]);
        child.In = pipes[1];
        return child;
    }
    static int EndOf(const Child& child) {
        if (child.In >= 0) close(child.In);
        int status = 0;
        EXPECT_EQ(waitpid(child.Id, &status, 0), child.Id);
        return status;
    }
    bool StandsBeside() const {
        return std::any_of(fs::directory_iterator(folder_), fs::directory_iterator(), [](const auto& entry) {
            return entry.path().filename().string().find(".cvnew") != std::string::npos;
        });
    }
};

TEST_F(Ends, ASignalLeavesNothingBesideTheTargetAndEndsTheProgramByItself) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT}) {
        const std::string out = Write("o.xyz", "old");
        const Child child = Run({"transform", job_, "-", "--columns", "x,y,z", "--out", out, "--overwrite"});
        std::string text;
        for (int i = 0; i < 20000; ++i) text += "1 2 3\n";
        // The pipe takes less than that at once: when all is gone, the program has long begun to write.
        ASSERT_EQ(write(child.In, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        for (int wait = 0; wait < 20000 && !StandsBeside(); ++wait) usleep(1000);
        ASSERT_TRUE(StandsBeside());
        ASSERT_EQ(kill(child.Id, signal), 0);
        const int status = EndOf(child);
        EXPECT_TRUE(WIFSIGNALED(status)) << signal;
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_FALSE(StandsBeside()) << signal;
        EXPECT_TRUE(Contents(out) == "old") << signal;
    }
}

TEST_F(Ends, WhatAKillLeavesTheNextRunRemoves) {
    const std::string out = Write("o.xyz", "old");
    const std::vector<std::string> line = {"transform", job_,    "-", "--columns",
                                           "x,y,z",     "--out", out, "--overwrite"};
    const Child child = Run(line);
    for (int wait = 0; wait < 20000 && !StandsBeside(); ++wait) usleep(1000);
    ASSERT_TRUE(StandsBeside());
    ASSERT_EQ(kill(child.Id, SIGKILL), 0);
    EndOf(child);
    EXPECT_TRUE(StandsBeside());
    const Child second = Run(line);
    ASSERT_EQ(write(second.In, "1 2 3\n", 6), 6);
    EXPECT_EQ(EndOf(second), 0) << Contents(PathOf("err"));
    EXPECT_FALSE(StandsBeside());
    EXPECT_NE(Contents(out), "old");
}

TEST_F(Ends, AKillLeavesTheUnsavedJobToTheNextStart) {
    const std::vector<std::string> line = {"automate",   "--settings-dir", folder_,
                                           "--recovery", "--job",          job_};
    const std::string before = Contents(job_);
    const auto say = [](const Child& child, const std::string& text) {
        ASSERT_EQ(write(child.In, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    };
    for (const char* value : {"4711", "4712", "4713"}) {
        Write("out", "");  // the answer of the round before
        const Child child = Run(line);
        say(child, std::string(R"({"do":"record","name":"TraX","value":)") + value + "}\n");
        const auto answered = [&] { return Contents(PathOf("out")).find('\n') != std::string::npos; };
        for (int wait = 0; wait < 20000 && !answered(); ++wait) usleep(1000);
        ASSERT_TRUE(answered()) << Contents(PathOf("err"));
        ASSERT_EQ(kill(child.Id, SIGKILL), 0);
        EndOf(child);
        EXPECT_EQ(Contents(job_), before);
        const Child next = Run(line);
        say(next, R"({"do":"click","at":"FormRecovery.BtnRestore"})"
                  "\n"
                  R"({"do":"record","name":"TraX"})"
                  "\n"
                  R"({"do":"quit"})"
                  "\n");
        EXPECT_EQ(EndOf(next), 0);
        EXPECT_NE(Contents(PathOf("out")).find(std::string("\"value\":") + value), std::string::npos);
        EXPECT_FALSE(fs::exists(folder_ + "/Corvinade/recovery-1.cvn"));
    }
}

TEST_F(Ends, AnInputThatBreaksOffIsNoEndOfIt) {
    const std::string settings = folder_;
    const Child child = Run({"automate", "--settings-dir", settings});
    EXPECT_EQ(EndOf(child), 0);  // an end is one
    // A folder can be opened and not read.
    const pid_t id = fork();
    ASSERT_GE(id, 0);
    if (id == 0) {
        dup2(open(folder_.c_str(), O_RDONLY), 0);
        dup2(open("/dev/null", O_WRONLY), 1);
        dup2(open(PathOf("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        const std::string program = ProgramPath();
        execl(program.c_str(), program.c_str(), "automate", "--settings-dir", settings.c_str(), nullptr);
        _exit(127);
    }
    const int status = EndOf({id, -1});
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(Contents(PathOf("err")),
              "corvinade-cli: Cannot read \"standard input\": the stream has broken off\n");
}

TEST_F(Ends, WantOfMemoryIsToldAndNoSignalWhereverItComes) {
    if (ProgramIsSanitized()) GTEST_SKIP() << "sanitizers take their memory for themselves";
    std::string start, target;
    for (int i = 0; i < 20000; ++i) {
        const std::string name = "P" + std::to_string(i) + ";", x = std::to_string(i % 137) + ";",
                          y = std::to_string(i % 1003) + ";", z = std::to_string(i % 731);
        start += name + x + y + z + "\n";
        target += name + x + y + z + "\n";
    }
    const std::string a = Write("a.txt", start), b = Write("b.txt", target);
    int refused = 0, done = 0;
    constexpr rlim_t kStep = 500000;
    // Before main its libraries want theirs, and end as they like.
    rlim_t least = 40 * kStep;
    while (least < 800 * kStep && EndOf(Run({"--version"}, least)) != 0) least += kStep;
    for (rlim_t bytes = least + kStep; bytes <= least + 400 * kStep && done < 2; bytes += kStep) {
        const int status = EndOf(Run({"fit", a, b, "--json"}, bytes));
        ASSERT_TRUE(WIFEXITED(status)) << bytes << " bytes, signal " << WTERMSIG(status);
        if (WEXITSTATUS(status) == 0) {
            ++done;
            continue;
        }
        ++refused;
        EXPECT_NE((Contents(PathOf("err")) + Contents(PathOf("out"))).find("memory"), std::string::npos)
            << bytes;
    }
    EXPECT_GT(refused, 0);
    EXPECT_GT(done, 0);
}
