// The scripts by which shells complete: each option of each command is in them, and bash takes its own.
#include <cstdlib>
#include <regex>
#include <set>
#include <sstream>

#include "cli/fit_command.h"

using namespace corvinade;

namespace {

class Completion : public FitCommand {
protected:
    static std::string Script(const std::string& shell) {
        const Outcome outcome = CommandLine({"completion", shell});
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return outcome.Out;
    }
    // The commands that the help tells.
    static std::vector<std::string> Commands() {
        std::istringstream help(CommandLine({"--help"}).Out);
        std::vector<std::string> commands;
        bool behind = false;
        for (std::string line; std::getline(help, line);) {
            std::smatch found;
            if (behind && std::regex_search(line, found, std::regex("^  ([a-z]+) ")))
                commands.push_back(found[1]);
            behind = behind || line.starts_with("Subcommands:") || line.starts_with("SUBCOMMANDS:");
        }
        return commands;
    }
    // The options that a command's help has at the beginning of its lines.
    static std::set<std::string> Options(const std::string& command) {
        std::istringstream help(CommandLine({command, "--help"}).Out);
        std::set<std::string> options;
        const std::regex pattern("^ +(-[a-z],)?(--[a-z0-9-]+)(,--[a-z0-9-]+)*( |$)");
        for (std::string line; std::getline(help, line);) {
            std::smatch found;
            if (std::regex_search(line, found, pattern)) options.insert(found[2]);
        }
        return options;
    }
    // What bash offers behind these words.
    std::set<std::string> Offered(const std::vector<std::string>& words) {
        std::string list;
        for (const std::string& word : words) list += " '" + word + "'";
        const std::string script = Write("c.bash", Script("bash")), out = PathOf("out.txt");
        const std::string run =
            Write("run.bash", "source '" + script + "'\nCOMP_WORDS=(corvinade-cli" + list +
                                  ")\nCOMP_CWORD=" + std::to_string(words.size()) +
                                  "\n_corvinade_cli\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
        EXPECT_EQ(std::system(("cd '" + folder_ + "' && bash '" + run + "' > '" + out + "'").c_str()), 0);
        std::istringstream lines(Contents(out));
        std::set<std::string> offered;
        for (std::string line; std::getline(lines, line);)
            if (!line.empty()) offered.insert(line);
        return offered;
    }
};

TEST_F(Completion, HoldsEveryOptionOfEveryCommandInEveryShell) {
    const std::vector<std::string> commands = Commands();
    ASSERT_GE(commands.size(), 9u);
    const std::string bash = Script("bash"), zsh = Script("zsh"), fish = Script("fish");
    for (const std::string& command : commands) {
        const std::set<std::string> options = Options(command);
        ASSERT_TRUE(options.count("--help")) << command;
        if (command == "fit") {
            EXPECT_TRUE(options.count("--export") && options.count("--quiet") && options.count("--names"));
        }
        if (command == "export") {
            EXPECT_TRUE(options.count("--as") && options.count("--out"));
        }
        const auto part = [&command](const std::string& script, const std::string& begin,
                                     const std::string& end) {
            const std::size_t at = script.find(begin);
            EXPECT_NE(at, std::string::npos) << command;
            return script.substr(at, script.find(end, at + begin.size()) - at);
        };
        const std::string ofBash = part(bash, "\n    " + command + ")\n", "fi ;;"),
                          ofZsh = part(zsh, "\n    " + command + ")\n", "'*:file:_files' ;;");
        for (const std::string& option : options) {
            EXPECT_TRUE(std::regex_search(ofBash, std::regex("[ '|]" + option + "[ '|)]")))
                << command << option;
            EXPECT_NE(ofZsh.find("'*" + option + "["), std::string::npos) << command << " " << option;
            const std::regex line("__fish_seen_subcommand_from " + command + "'[^\n]* -l " +
                                  option.substr(2) + "[ \n]");
            EXPECT_TRUE(std::regex_search(fish, line)) << command << " " << option;
        }
    }
}

TEST_F(Completion, BashOffersCommandsOptionsChoicesAndFiles) {
    Write("measured.txt", "A;0;0;0\n");
    EXPECT_EQ(Offered({"fi"}), std::set<std::string>{"fit"});
    EXPECT_EQ(Offered({"fit", "--leng"}), std::set<std::string>{"--length-unit"});
    EXPECT_EQ(Offered({"fit", "a", "b", "--match", ""}),
              (std::set<std::string>{"id", "coordinate", "distance"}));
    EXPECT_EQ(Offered({"export", "a.cvn", "--as", "kuka"}),
              (std::set<std::string>{"kuka-base", "kuka-tool"}));
    EXPECT_EQ(Offered({"fit", "meas"}), std::set<std::string>{"measured.txt"});
    EXPECT_EQ(Offered({"fit", "--report", "meas"}), std::set<std::string>{"measured.txt"});
    EXPECT_EQ(Offered({"fit", "--digits", ""}), std::set<std::string>{});
}

TEST_F(Completion, ShellsReadTheirScripts) {
    for (const std::string shell : {"bash", "zsh", "fish"}) {
        if (std::system(("command -v " + shell + " >/dev/null 2>&1").c_str()) != 0) continue;
        const std::string script = Write("script", Script(shell));
        EXPECT_EQ(std::system((shell + " -n '" + script + "'").c_str()), 0) << shell;
    }
    EXPECT_TRUE(Script("zsh").starts_with("#compdef corvinade-cli\n"));
}

TEST_F(Completion, ThereAreThreeShells) {
    EXPECT_EQ(CommandLine({"completion"}).Status, 2);
    EXPECT_EQ(CommandLine({"completion", "tcsh"}).Status, 2);
}

}  // namespace
