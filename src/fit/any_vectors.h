// Loops that the compiler turns into vectors, once for each instruction set; the machine's own is chosen when
// the program starts. Every one gives the same bits, as long as no element depends on another. The
// sanitizers' build has the plain form alone, for they and the choice at the start do not go together.
#pragma once

#if defined(__x86_64__) && !defined(CORVINADE_NO_CLONES)
#define ON_ANY_VECTORS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ON_ANY_VECTORS
#endif
