// One loop in lanes for each width of vector that the machine may have: LANES_BODY, the file with the loop,
// is taken once for each, in a namespace of its own. It finds LANES_TARGET and LANES_WIDTH set; every width
// gives the same bits.

#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)

namespace lanes512 {
#define LANES_TARGET __attribute__((target("avx512f")))
#define LANES_WIDTH 8
#include LANES_BODY
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes512

namespace lanes256 {
#define LANES_TARGET __attribute__((target("avx2")))
#define LANES_WIDTH 4
#include LANES_BODY
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes256

#endif

namespace lanes128 {
#define LANES_TARGET
#define LANES_WIDTH 2
#include LANES_BODY
#undef LANES_TARGET
#undef LANES_WIDTH
}  // namespace lanes128

#undef LANES_BODY
