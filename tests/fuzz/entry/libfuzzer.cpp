// The program that tools/fuzz runs: one reader, named by CORVINADE_FUZZ, fed by libFuzzer. A line at the end
// says which input took longest and which most memory for its size; what takes too much is kept beside the
// findings.
#include <sanitizer/allocator_interface.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "fuzz/harnesses.h"

namespace {

struct Worst {
    double Seconds = 0, Times = 0;
    std::size_t SecondsSize = 0, TimesSize = 0, TimesBytes = 0;
};
Worst worst;
std::size_t now, peak;

// Below this an input's size says nothing of the memory that a program that has just begun takes.
constexpr std::size_t kSmall = 20000;

void OnTaken(const volatile void*, std::size_t size) {
    now += size;
    peak = std::max(peak, now);
}
void OnGiven(const volatile void* place) {
    if (place != nullptr) now -= std::min(now, __sanitizer_get_allocated_size(place));
}

const fuzz::Harness& Chosen() {
    const char* const name = std::getenv("CORVINADE_FUZZ");
    for (const fuzz::Harness& harness : fuzz::Harnesses())
        if (name != nullptr && std::string(name) == harness.Name) return harness;
    std::fputs("CORVINADE_FUZZ names one of:", stderr);
    for (const fuzz::Harness& harness : fuzz::Harnesses()) std::fprintf(stderr, " %s", harness.Name);
    std::fputs("\n", stderr);
    std::exit(2);
}

void Keep(const char* why, std::string_view bytes) {
    const char* const folder = std::getenv("CORVINADE_FUZZ_KEEP");
    if (folder == nullptr) return;
    std::ofstream(std::string(folder) + "/" + why, std::ios::binary) << bytes;
}

void Tell() {
    std::fprintf(stderr, "WORST slowest %.3f s (%zu bytes), memory %zu bytes of %zu, %.1f times\n",
                 worst.Seconds, worst.SecondsSize, worst.TimesBytes, worst.TimesSize, worst.Times);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Harness& harness = Chosen();
    static const fuzz::Room* const room = [] {
        __sanitizer_install_malloc_and_free_hooks(OnTaken, OnGiven);
        std::atexit(Tell);
        return new fuzz::Room;
    }();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto begin = std::chrono::steady_clock::now();
    now = peak = 0;
    const std::string fault = room->Try(harness, bytes);
    const std::size_t taken = peak;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    if (!fault.empty()) {
        std::fprintf(stderr, "FAULT %s: %s\n", harness.Name, fault.c_str());
        std::abort();
    }
    if (seconds > worst.Seconds) {
        worst.Seconds = seconds;
        worst.SecondsSize = size;
        Keep("slowest", bytes);
    }
    const double times = static_cast<double>(taken) / static_cast<double>(std::max(size, kSmall));
    if (times > worst.Times) {
        worst.Times = times;
        worst.TimesSize = size;
        worst.TimesBytes = taken;
        Keep("memory", bytes);
    }
    return 0;
}
