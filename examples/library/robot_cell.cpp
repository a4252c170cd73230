// The marks of a robot cell: two files of points, paired by name, one mark left out that has been knocked.
#include <corvinade/fit.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Marks = std::map<std::string, std::array<double, 3>>;

// "name;x;y;z" a line.
Marks Read(const char* path) {
    Marks marks;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        for (char& c : line)
            if (c == ';') c = ' ';
        std::istringstream fields(line);
        std::string name;
        std::array<double, 3> at{};
        if (fields >> name >> at[0] >> at[1] >> at[2]) marks[name] = at;
    }
    return marks;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    Marks measured = Read(arguments[1]);
    const Marks nominal = Read(arguments[2]);
    measured.erase("F09");
    std::vector<double> start, target;
    for (const auto& [name, at] : measured) {
        const auto partner = nominal.find(name);
        if (partner == nominal.end()) continue;
        start.insert(start.end(), at.begin(), at.end());
        target.insert(target.end(), partner->second.begin(), partner->second.end());
    }
    try {
        const corvinade::FitResult result =
            corvinade::Fit(corvinade::Points(start), corvinade::Points(target));
        std::printf("%.3f %.3f %.3f\n", result.Values[0], result.Values[1], result.Values[2]);
        return result.Converged ? 0 : 4;
    } catch (const corvinade::InvalidInput& wrong) {
        std::fprintf(stderr, "%s\n", wrong.what());
        return 1;
    }
}
