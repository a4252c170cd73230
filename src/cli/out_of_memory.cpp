// The reserve, and the end without one.
#include "cli/out_of_memory.h"

#include <cstdlib>
#include <exception>
#include <new>

#include "cli/fit_options.h"
#include "core/system_files.h"
#include "core/system_process.h"

namespace corvinade::cli {

namespace {

constexpr std::size_t kReserve = std::size_t{2} << 20;
void* Reserve = nullptr;

void GiveUp() {
    std::free(Reserve);
    Reserve = nullptr;
    throw std::bad_alloc();
}

bool IsForMemory() {
    if (!std::current_exception()) return Reserve == nullptr;  // there was none for the exception itself
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
}

// An allocation failed inside a destructor or another place that lets nothing through.
[[noreturn]] void EndOfAll() {
    if (!IsForMemory()) std::abort();
    constexpr char kText[] = "corvinade-cli: there is not enough memory for this\n";
    RemoveFilesBesideNow();
    EndAtOnce(kText, sizeof kText - 1, kRefused);
}

}  // namespace

void KeepReserve() {
    if (Reserve == nullptr) Reserve = std::malloc(kReserve);
}

void PrepareForNoMemory() {
    KeepReserve();
    std::set_new_handler(GiveUp);
    std::set_terminate(EndOfAll);
}

}  // namespace corvinade::cli
