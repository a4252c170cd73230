// What the library shows of itself.
#pragma once

#if defined(__GNUC__) && !defined(_WIN32)
#define CORVINADE_API __attribute__((visibility("default")))
#else
#define CORVINADE_API
#endif
