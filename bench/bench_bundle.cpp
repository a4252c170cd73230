// A network of distances: the inverse of its normal matrix beside the plain sweep, which it agrees with bit
// by bit, and beside LAPACK's Cholesky inverse, which does half of the work; the assembly of the matrix
// beside the plain product. Peers run in turn on one thread, and ratios are taken round by round from the
// processor time.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <vector>

#include "bundle/prepare_bundle.h"
#include "core/fresh_start.h"
#include "fit/bundle_iteration.h"
#include "fit/matrix.h"
#include "timing.h"

using namespace corvinade;

#ifdef CORVINADE_BENCH_LAPACK
extern "C" {
void dpotrf_(const char* part, const int* n, double* a, const int* step, int* info);
void dpotri_(const char* part, const int* n, double* a, const int* step, int* info);
void openblas_set_num_threads(int count) __attribute__((weak));
}
#endif

namespace {

double ProcessorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}
template <class Work>
double Took(Work work) {
    const double begin = ProcessorMilliseconds();
    work();
    return ProcessorMilliseconds() - begin;
}

// Ten stations and so many object points that there are about `unknowns`, every distance measured.
BundleRecord Network(int unknowns) {
    BundleRecord network;
    const int points = (unknowns + 6) / 3, stations = 10, objects = points - stations;
    const auto place = [](int k, int axis) {
        return 9000 * std::sin(1.7 * k + 11.3 * axis + 0.013 * k * axis);
    };
    network.nStations = static_cast<std::int16_t>(stations);
    network.nObjectPoints = static_cast<std::int16_t>(objects);
    network.Net.StationXYZ = Matrix(stations, 3);
    network.Net.ObjectXYZ = Matrix(objects, 3);
    for (auto& end : network.DistancePair) end = {""};
    for (int axis = 1; axis <= 3; ++axis) {
        for (int i = 1; i <= stations; ++i) network.Net.StationXYZ(i, axis) = place(i, axis);
        for (int i = 1; i <= objects; ++i) network.Net.ObjectXYZ(i, axis) = place(stations + i, axis);
    }
    for (int i = 1; i <= stations; ++i) network.StationName.push_back("S" + std::to_string(i));
    for (int i = 1; i <= objects; ++i) network.ObjectName.push_back("P" + std::to_string(i));
    for (int s = 1; s <= stations; ++s)
        for (int o = 1; o <= objects; ++o) {
            network.DistancePair[1].push_back(network.StationName[static_cast<std::size_t>(s)]);
            network.DistancePair[2].push_back(network.ObjectName[static_cast<std::size_t>(o)]);
            network.Net.DistanceValue.push_back(5000);
        }
    network.nDistances = stations * objects;
    return network;
}

// With the normal matrix in Qxx.
BundleWork Prepared(const BundleRecord& network) {
    BundleWork work = PrepareBundle(network, 100);
    AMatrix(network.Net, work);
    HoldDatum(network.Net, work);
    NormalMatrix(network.nStations, work);
    return work;
}

void PlainSweep(Matrix& B, int n) {
    for (int k = 1; k <= n; ++k) {
        double* const rowK = B.Row(k);
        const double pivot = 1 / (1e-12 + rowK[k]);
        for (int j = 1; j <= n; ++j) rowK[j] = -rowK[j] * pivot;
        rowK[k] = pivot;
        for (int i = 1; i <= n; ++i) {
            if (i == k) continue;
            double* const row = B.Row(i);
            const double factor = row[k];
            for (int j = 1; j <= n; ++j) row[j] += factor * rowK[j];
            row[k] = factor * pivot;
        }
    }
}

void Bundle_Inverse(benchmark::State& state) {
    const BundleRecord network = Network(static_cast<int>(state.range(0)));
    const BundleWork work = Prepared(network);
    const int n = work.nUnknown;
    std::vector<double> own, plain, lapack;
#ifdef CORVINADE_BENCH_LAPACK
    if (openblas_set_num_threads != nullptr) openblas_set_num_threads(1);
#endif
    for (auto _ : state) {
        Matrix B = work.Qxx;
        own.push_back(Took([&] { MatrixInverse(B, n, n, B); }));
        state.SetIterationTime(own.back() / 1000);
        Matrix C = work.Qxx;
        plain.push_back(Took([&] { PlainSweep(C, n); }) / own.back());
        if (std::memcmp(B.Elements.data(), C.Elements.data(), B.Elements.size() * sizeof(double)) != 0)
            state.SkipWithError("the inverse is not that of the plain sweep");
#ifdef CORVINADE_BENCH_LAPACK
        Matrix D(n - 1, n - 1);
        for (int i = 1; i <= n; ++i)
            std::memcpy(D.Row(i - 1), work.Qxx.Row(i) + 1, static_cast<std::size_t>(n) * sizeof(double));
        int info = 0;
        lapack.push_back(own.back() / Took([&] {
                             dpotrf_("L", &n, D.Elements.data(), &n, &info);
                             dpotri_("L", &n, D.Elements.data(), &n, &info);
                         }));
#endif
    }
    state.counters["unknowns"] = n;
    state.counters["ms"] = Median(own);
    state.counters["plain/own"] = Median(plain);
    if (!lapack.empty()) state.counters["own/LAPACK"] = Median(lapack);
}

void Bundle_Assembly(benchmark::State& state) {
    const BundleRecord network = Network(static_cast<int>(state.range(0)));
    BundleWork work = Prepared(network);
    const int u = work.nUnknown, m = network.nDistances;
    const bool withPlain = u <= 1200;
    Matrix A(m, withPlain ? u : 0), At(withPlain ? u : 0, m), N(u, u);
    for (int k = 1; withPlain && k <= m; ++k) {
        const DistanceRow& row = work.A[static_cast<std::size_t>(k)];
        for (int axis = 1; axis <= 3; ++axis) {
            const auto put = [&](int column, double value) {
                if (const int i = work.Unknown[static_cast<std::size_t>(column)]; i != 0)
                    A(k, i) = At(i, k) = value;
            };
            put(3 * (row.Station - 1) + axis, row.Direction[axis - 1]);
            put(3 * (network.nStations + row.Object - 1) + axis, -row.Direction[axis - 1]);
        }
    }
    std::vector<double> own, plain;
    for (auto _ : state) {
        own.push_back(Took([&] { NormalMatrix(network.nStations, work); }));
        state.SetIterationTime(own.back() / 1000);
        // The product as it is written down: every sum over all rows, terms with a zero factor left out.
        if (withPlain)
            plain.push_back(Took([&] {
                                for (int i = 1; i <= u; ++i)
                                    for (int j = 1; j <= u; ++j) {
                                        double sum = 0;
                                        for (int l = 1; l <= m; ++l)
                                            if (At(i, l) != 0 && A(l, j) != 0) sum += At(i, l) * A(l, j);
                                        N(i, j) = sum;
                                    }
                            }) /
                            own.back());
        if (withPlain &&
            std::memcmp(N.Elements.data(), work.Qxx.Elements.data(), N.Elements.size() * sizeof(double)) != 0)
            state.SkipWithError("the normal matrix is not the plain product");
    }
    state.counters["unknowns"] = u;
    state.counters["ms"] = Median(own);
    if (withPlain) state.counters["plain/own"] = Median(plain);
}

BENCHMARK(Bundle_Inverse)
    ->ArgName("unknowns")
    ->Arg(300)
    ->Arg(1000)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Bundle_Inverse)
    ->ArgName("unknowns")
    ->Arg(3000)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Bundle_Assembly)
    ->ArgName("unknowns")
    ->Arg(300)
    ->Arg(1000)
    ->Arg(3000)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
