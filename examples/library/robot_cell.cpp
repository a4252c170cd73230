// The marks of a robot cell: two files of points, paired by name, one mark left out that has been knocked.
#include <corvinade/fit.h>
#include <corvinade/point_file.h>

#include <cstddef>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

int main(int count, char** arguments) {
    if (count != 3) return 2;
    try {
        const corvinade::NamedPoints measured = corvinade::ReadPoints(arguments[1]).Points;
        const corvinade::NamedPoints nominal = corvinade::ReadPoints(arguments[2]).Points;
        std::map<std::string, std::size_t> marks;
        for (std::size_t i = 0; i < measured.Names.size(); ++i) marks[measured.Names[i]] = i;
        marks.erase("F09");
        std::vector<double> start, target;
        for (std::size_t i = 0; i < nominal.Names.size(); ++i) {
            const auto partner = marks.find(nominal.Names[i]);
            if (partner == marks.end()) continue;
            const double* const from = &measured.Coordinates[3 * partner->second];
            const double* const to = &nominal.Coordinates[3 * i];
            start.insert(start.end(), from, from + 3);
            target.insert(target.end(), to, to + 3);
        }
        const corvinade::FitResult result =
            corvinade::Fit(corvinade::Points(start), corvinade::Points(target));
        std::printf("%.3f %.3f %.3f\n", result.Values[0], result.Values[1], result.Values[2]);
        return result.Converged ? 0 : 4;
    } catch (const corvinade::InvalidInput& wrong) {
        std::fprintf(stderr, "%s\n", wrong.what());
        return 1;
    }
}
