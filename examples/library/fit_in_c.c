/* The same fit from C. */
#include <corvinade/corvinade.h>
#include <stdio.h>

int main(void) {
    const double measured[] = {0.02, 0, 0, 1000, 0.03, 0, 0, 800, -0.02, 0, 0.01, 600, 700, 500, 300};
    const double nominal[] = {100, 200, 50, 100, 1200, 50, -700, 200, 50, 100, 200, 650, -400, 900, 350};
    corvinade_error error;
    corvinade_result* result;
    size_t i;
    if (corvinade_fit(measured, nominal, 5, NULL, &result, &error) != CORVINADE_OK) {
        fprintf(stderr, "%s\n", error.text);
        return 1;
    }
    for (i = 0; i < 4; ++i) {
        const double* row = corvinade_result_matrix(result) + 4 * i;
        printf("%14.9f %14.9f %14.9f %14.6f\n", row[0], row[1], row[2], row[3]);
    }
    printf("s0 %.6f mm\n", corvinade_result_s0(result));
    for (i = 0; i < corvinade_result_note_count(result); ++i)
        printf("%s: %s\n", corvinade_result_note_code(result, i), corvinade_result_note_text(result, i));
    corvinade_result_free(result);
    return 0;
}
