// The command line program.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include "cli/commands.h"
#include "cli/fit_options.h"
#include "cli/out_of_memory.h"
#include "core/file_writer.h"
#include "core/fresh_start.h"
#include "core/platform.h"
#include "core/system_files.h"

using namespace corvinade;

// Before the tables that stand in memory from the start, which want some as well.
[[gnu::constructor(101)]] static void PrepareAtOnce() {
    PrepareForNoMemory();
}

int main(int argc, char** argv) {
    LetTooLargeFilesRefuse();
    RemoveFilesBesideAtSignals();
    FreshStart();
    try {
        std::ios::sync_with_stdio(false);
        return RunCommandLine(argc, argv, std::cin, std::cout, std::cerr, isatty(STDOUT_FILENO) == 1,
                              isatty(STDERR_FILENO) == 1);
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
