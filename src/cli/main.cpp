// The command line program.
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/fit_options.h"
#include "cli/out_of_memory.h"
#include "core/file_writer.h"
#include "core/fresh_start.h"
#include "core/platform.h"
#include "core/system_files.h"
#include "core/system_process.h"

using namespace corvinade;

// Before the tables that stand in memory from the start, which want some as well.
[[gnu::constructor(101)]] static void PrepareAtOnce() {
    PrepareForNoMemory();
}

int main(int argc, char** argv) {
    PrepareStandardStreams();
    LetTooLargeFilesRefuse();
    RemoveFilesBesideAtSignals();
    FreshStart();
    try {
        std::ios::sync_with_stdio(false);
        std::vector<std::string> texts = ProgramArguments(argc, argv);
        std::vector<char*> arguments;
        arguments.reserve(texts.size() + 1);
        for (std::string& text : texts) arguments.push_back(text.data());
        arguments.push_back(nullptr);
        return RunCommandLine(static_cast<int>(texts.size()), arguments.data(), std::cin, std::cout,
                              std::cerr, IsTerminal(stdout), IsTerminal(stderr));
    } catch (const PlatformError& error) {
        std::fprintf(stderr, "corvinade-cli: %s\n", error.What.c_str());
    } catch (const std::bad_alloc&) {
        std::fputs("corvinade-cli: there is not enough memory for this\n", stderr);
        return kRefused;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "corvinade-cli: %s\n", error.what());
    }
    return kUnreadable;
}
