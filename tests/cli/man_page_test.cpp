// The man page, the document on the command line and the program's own help tell of the same options.
#include <regex>
#include <set>

#include "cli/fit_command.h"

using namespace corvinade;

namespace {

using ManPage = FitCommand;

const std::string kDocument = std::string(CORVINADE_SOURCE_DIR) + "/docs/command-line.md";
const std::string kPage = std::string(CORVINADE_SOURCE_DIR) + "/packaging/corvinade-cli.1.in";

std::set<std::string> LongOptions(const std::string& text) {
    std::set<std::string> options;
    const std::regex pattern("--[a-z0-9][a-z0-9-]*");
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it)
        options.insert(it->str());
    return options;
}

// The text of the page: in its source a hyphen that is none of a word's bears a backslash.
std::string Page() {
    std::string page = Contents(kPage);
    page.erase(std::remove(page.begin(), page.end(), '\\'), page.end());
    return page;
}

std::set<std::string> OptionsOfTheHelp() {
    std::set<std::string> options;
    for (const char* command : {"fit", "info", "convert", "render", "distances", "bundle", "transform",
                                "export", "automate", "completion"}) {
        const Outcome help = CommandLine({command, "--help"});
        EXPECT_EQ(help.Status, 0) << help.Err;
        options.merge(LongOptions(help.Out));
    }
    options.merge(LongOptions(CommandLine({"--help"}).Out));
    return options;
}

TEST_F(ManPage, TellsOfEveryOptionOfTheProgramAndOfNoOther) {
    const std::set<std::string> options = OptionsOfTheHelp();
    EXPECT_TRUE(options.count("--monte-carlo"));
    EXPECT_EQ(LongOptions(Page()), options);
}

TEST_F(ManPage, AndTheDocumentTellOfTheSame) {
    std::set<std::string> options = OptionsOfTheHelp();
    options.erase("--version");
    EXPECT_EQ(LongOptions(Contents(kDocument)), options);
}

TEST_F(ManPage, NamesEveryExitStatus) {
    const std::string page = Page();
    for (const char* status : {"0", "1", "2", "3", "4", "5"})
        EXPECT_NE(page.find(std::string(".TP\n.B ") + status + "\n"), std::string::npos) << status;
}

}  // namespace
