// Five marks of a cell, measured and nominal: where does the one lie in the other?
#include <corvinade/fit.h>

#include <cstdio>
#include <vector>

int main() {
    const std::vector<double> measured = {0.02,  0, 0,    1000, 0.03, 0,   0,  800,
                                          -0.02, 0, 0.01, 600,  700,  500, 300};
    const std::vector<double> nominal = {100, 200, 50,  100, 1200, 50,  -700, 200,
                                         50,  100, 200, 650, -400, 900, 350};
    try {
        const corvinade::FitResult result =
            corvinade::Fit(corvinade::Points(measured), corvinade::Points(nominal));
        for (std::size_t row = 0; row < 4; ++row)
            std::printf("%14.9f %14.9f %14.9f %14.6f\n", result.Matrix[4 * row], result.Matrix[4 * row + 1],
                        result.Matrix[4 * row + 2], result.Matrix[4 * row + 3]);
        std::printf("s0 %.6f mm\n", result.S0);
        for (const corvinade::Note& note : result.Notes)
            std::printf("%s: %s\n", corvinade::NameOf(note.Code), note.Text.c_str());
        return result.Converged ? 0 : 4;
    } catch (const corvinade::InvalidInput& wrong) {
        std::fprintf(stderr, "%s\n", wrong.what());
        return 1;
    }
}
