/* The library for C and for languages that call C. Lengths in mm, angles in rad. Handles are opaque; what a
   procedure gives stays valid until its handle is freed. Any number of threads may work at once, each with
   handles of its own. No procedure ends the program or throws. */
#ifndef CORVINADE_CORVINADE_H
#define CORVINADE_CORVINADE_H

#include <stddef.h>

#include "corvinade/api.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct corvinade_options corvinade_options;
typedef struct corvinade_result corvinade_result;

typedef enum corvinade_status {
    CORVINADE_OK = 0,
    CORVINADE_INVALID_INPUT = 1, /* the text says what was expected and what came */
    CORVINADE_NO_MEMORY = 2
} corvinade_status;

/* What went wrong, in words; "" where nothing did. */
typedef struct corvinade_error {
    char text[512];
} corvinade_error;

/* "2.0.64" */
CORVINADE_API const char* corvinade_version(void);

/* Options of a fit: a rigid one by least squares of all coordinates, until told otherwise. Null: no memory.
 */
CORVINADE_API corvinade_options* corvinade_options_new(void);
CORVINADE_API void corvinade_options_free(corvinade_options* options);

/* "level", "6", "7", "9", "12"; what was held before is forgotten. */
CORVINADE_API corvinade_status corvinade_set_parameters(corvinade_options* options, const char* name,
                                                        corvinade_error* error);
/* Holds "trax", "rotz", "scalexyz", ... at a value: mm, rad, or a factor. */
CORVINADE_API corvinade_status corvinade_hold(corvinade_options* options, const char* parameter, double value,
                                              corvinade_error* error);
/* "l2", "l1", "loo", "l1-exact", "minimax". */
CORVINADE_API corvinade_status corvinade_set_norm(corvinade_options* options, const char* name,
                                                  corvinade_error* error);
/* Three flags a pair, x y z: 0 takes no part in the fit. Copied. A count of 0: all take part. */
CORVINADE_API corvinade_status corvinade_set_use(corvinade_options* options, const unsigned char* flags,
                                                 size_t count, corvinade_error* error);

/* Carries `start` onto `target`: `pairs` rows of x y z each. `options` may be null. *result is set where the
   status is CORVINADE_OK alone, and has to be freed. `error` may be null. */
CORVINADE_API corvinade_status corvinade_fit(const double* start, const double* target, size_t pairs,
                                             const corvinade_options* options, corvinade_result** result,
                                             corvinade_error* error);
CORVINADE_API void corvinade_result_free(corvinade_result* result);

/* 16 numbers, row by row: X = M x + t. */
CORVINADE_API const double* corvinade_result_matrix(const corvinade_result* result);
/* 13 numbers each, in the order trax tray traz rotx roty rotz scalex scaley scalez scalexyz xy azimuth ztoxy.
   A sigma is NaN where the points leave its parameter open. */
CORVINADE_API const double* corvinade_result_values(const corvinade_result* result);
CORVINADE_API const double* corvinade_result_sigmas(const corvinade_result* result);
/* Three a pair: transformed start minus target, mm. */
CORVINADE_API const double* corvinade_result_residuals(const corvinade_result* result);
CORVINADE_API double corvinade_result_s0(const corvinade_result* result);
CORVINADE_API int corvinade_result_converged(const corvinade_result* result);
/* What the fit has decided on its own, or leaves to be said; null beyond the last. */
CORVINADE_API size_t corvinade_result_note_count(const corvinade_result* result);
CORVINADE_API const char* corvinade_result_note_code(const corvinade_result* result, size_t index);
CORVINADE_API const char* corvinade_result_note_text(const corvinade_result* result, size_t index);

/* The sums that a fit by least squares needs, taken piece by piece: of more pairs than memory holds, or of
   pairs on many machines. In whatever order these are added and merged, the sums are the same bit by bit.
   Null: no memory. One may be read by many threads, and changed by one at a time. */
typedef struct corvinade_moments corvinade_moments;
CORVINADE_API corvinade_moments* corvinade_moments_new(void);
CORVINADE_API void corvinade_moments_free(corvinade_moments* moments);
/* Takes in `pairs` rows of x y z each, all of them or, where it fails, none. */
CORVINADE_API corvinade_status corvinade_moments_add(corvinade_moments* moments, const double* start,
                                                     const double* target, size_t pairs,
                                                     corvinade_error* error);
/* Takes in all that another one has, which stays as it is. */
CORVINADE_API corvinade_status corvinade_moments_merge(corvinade_moments* moments,
                                                       const corvinade_moments* other,
                                                       corvinade_error* error);
CORVINADE_API unsigned long long corvinade_moments_count(const corvinade_moments* moments);
/* All of it as bytes that any machine reads, 1 or 2 kB: *size gets their number. They are written to `bytes`
   where `room` is enough for them; null and 0 ask for the number alone. */
CORVINADE_API corvinade_status corvinade_moments_bytes(const corvinade_moments* moments, unsigned char* bytes,
                                                       size_t room, size_t* size, corvinade_error* error);
/* *moments is set where the status is CORVINADE_OK alone, and has to be freed. */
CORVINADE_API corvinade_status corvinade_moments_from_bytes(const unsigned char* bytes, size_t size,
                                                            corvinade_moments** moments,
                                                            corvinade_error* error);
/* As corvinade_fit, of all pairs: the result has no residuals, whose pointer says nothing then. */
CORVINADE_API corvinade_status corvinade_fit_moments(const corvinade_moments* moments,
                                                     const corvinade_options* options,
                                                     corvinade_result** result, corvinade_error* error);

#ifdef __cplusplus
}
#endif

#endif
