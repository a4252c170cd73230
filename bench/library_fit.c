/* The same fit by the library alone, for bench/python_fit.py: microseconds of each of some runs, 7 parameters.
   Gives 0, or 1 where a fit has failed. */
#include <time.h>

#include "corvinade/corvinade.h"

int fit_times(const double* start, const double* target, size_t pairs, int runs, double* microseconds) {
    corvinade_options* options = corvinade_options_new();
    int failed = options == NULL || corvinade_set_parameters(options, "7", NULL) != CORVINADE_OK;
    for (int i = 0; i < runs && !failed; ++i) {
        struct timespec begin, end;
        corvinade_result* result = NULL;
        clock_gettime(CLOCK_MONOTONIC, &begin);
        failed = corvinade_fit(start, target, pairs, options, &result, NULL) != CORVINADE_OK;
        corvinade_result_free(result);
        clock_gettime(CLOCK_MONOTONIC, &end);
        microseconds[i] = 1e6 * (double)(end.tv_sec - begin.tv_sec) + 1e-3 * (double)(end.tv_nsec - begin.tv_nsec);
    }
    corvinade_options_free(options);
    return failed;
}
