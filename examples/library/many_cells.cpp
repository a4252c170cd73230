// A hundred cells, fitted by four threads at once: the library keeps no state, so nothing has to be locked.
#include <corvinade/fit.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

int main() {
    constexpr std::size_t kCells = 100, kMarks = 20;
    std::vector<corvinade::FitResult> results(kCells);
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t cell = next++; cell < kCells; cell = next++) {
            const corvinade::Matrix4 truth =
                corvinade::MatrixOf({.Translation = {100.0 * static_cast<double>(cell), 20, -30},
                                     .Rotation = {0, 0, 0.01 * static_cast<double>(cell)}});
            std::vector<double> marks, placed(3 * kMarks);
            for (std::size_t i = 0; i < 3 * kMarks; ++i)
                marks.push_back(1000 * std::sin(static_cast<double>(i * i)));
            corvinade::Apply(truth, marks, placed);
            results[cell] = corvinade::Fit(corvinade::Points(marks), corvinade::Points(placed));
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    std::size_t good = 0;
    for (std::size_t cell = 0; cell < kCells; ++cell)
        if (std::fabs(results[cell].Values[0] - 100.0 * static_cast<double>(cell)) < 1e-6) ++good;
    std::printf("%zu of %zu cells found\n", good, kCells);
    return good == kCells ? 0 : 1;
}
