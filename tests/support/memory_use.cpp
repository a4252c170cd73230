// Counting of memory: by the hooks of the address sanitizer, which has an allocator of its own, or else by
// operators new and delete in the place of the library's.
#include "support/memory_use.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
// g++ brings these with the sanitizer's library, but without the header that declares them.
extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*taken)(const volatile void*, std::size_t),
                                              void (*given)(const volatile void*));
std::size_t __sanitizer_get_allocated_size(const volatile void* place);
}
#else
#include <malloc.h>
#endif

namespace {

// Tests run on one thread.
struct Counters {
    std::size_t Now = 0, Peak = 0, Allocations = 0;
};
Counters counters;

void Taken(std::size_t size) {
    counters.Now += size;
    counters.Peak = std::max(counters.Peak, counters.Now);
    ++counters.Allocations;
}
// What was taken before the counting began is given back too.
void Given(std::size_t size) {
    counters.Now -= std::min(counters.Now, size);
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__)

namespace {

void OnTaken(const volatile void*, std::size_t size) {
    Taken(size);
}
void OnGiven(const volatile void* place) {
    if (place != nullptr) Given(__sanitizer_get_allocated_size(place));
}
[[maybe_unused]] const int kInstalled = __sanitizer_install_malloc_and_free_hooks(OnTaken, OnGiven);

}  // namespace

#else

void* operator new(std::size_t size) {
    void* const place = std::malloc(std::max<std::size_t>(size, 1));
    if (place == nullptr) throw std::bad_alloc();
    Taken(malloc_usable_size(place));
    return place;
}
void* operator new[](std::size_t size) {
    return ::operator new(size);
}
void operator delete(void* place) noexcept {
    if (place != nullptr) Given(malloc_usable_size(place));
    std::free(place);
}
void operator delete[](void* place) noexcept {
    ::operator delete(place);
}
void operator delete(void* place, std::size_t) noexcept {
    ::operator delete(place);
}
void operator delete[](void* place, std::size_t) noexcept {
    ::operator delete(place);
}

#endif

MemoryUse::MemoryUse() : before_(counters.Now), allocationsBefore_(counters.Allocations) {
    counters.Peak = counters.Now;
}
std::size_t MemoryUse::Peak() const {
    return counters.Peak - before_;
}
std::size_t MemoryUse::Allocations() const {
    return counters.Allocations - allocationsBefore_;
}

bool UnderSanitizers() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#else
    return false;
#endif
}
