// A simulated network, and the window on it.
#pragma once

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "bundle/bundle_file.h"
#include "bundle/bundle_run.h"
#include "bundle/form_buendel.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "import/form_input_files.h"
#include "support/fixture.h"

using namespace corvinade;

using Place = std::array<double, 3>;

// Stations and object points in a hall of some metres, in mm, every object point measured from every station.
// The distances carry errors of tenths of a millimetre, the approximate coordinates errors of millimetres.
struct SimulatedNetwork {
    std::vector<Place> Stations, Objects;  // approximate
    std::vector<double> Distances;         // station by station

    SimulatedNetwork(int stations, int objects) {
        std::vector<Place> truth;
        for (int i = 0; i < stations + objects; ++i) {
            const double size = i < stations ? 4000 : 2500;
            truth.push_back({size * Wave(3 * i + 1) + 6000, size * Wave(3 * i + 2) + 3000,
                             (i < stations ? 700 : 1800) * Wave(3 * i + 3) + 1500});
            Place near = truth.back();
            for (std::size_t axis = 0; axis < 3; ++axis)
                near[axis] += 5 * Wave(1000 + 3 * i + static_cast<int>(axis));
            (i < stations ? Stations : Objects).push_back(near);
        }
        for (int s = 0; s < stations; ++s)
            for (int o = 0; o < objects; ++o) {
                const Place &a = truth[static_cast<std::size_t>(s)],
                            &b = truth[static_cast<std::size_t>(stations + o)];
                Distances.push_back(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]) +
                                    0.2 * Wave(5000 + 100 * s + o));
            }
    }
    // -1 to 1, without a pattern that matters.
    static double Wave(int k) {
        const double x = std::sin(12.9898 * k) * 43758.5453;
        return 2 * (x - std::floor(x)) - 1;
    }
    static std::string StationName(std::size_t i) { return "S" + std::to_string(i + 1); }
    static std::string ObjectName(std::size_t i) { return "P" + std::to_string(i + 1); }

    std::string Text(double factor = 1) const {
        std::string text = "A network\r\nTheodolite\r\nname x y z\r\n";
        const auto add = [&](const std::string& name, const Place& p) {
            text += name;
            for (const double value : p) text += " " + Number(value * factor);
            text += "\r\n0 0\r\n";
        };
        for (std::size_t i = 0; i < Stations.size(); ++i) add(StationName(i), Stations[i]);
        text += "END\r\n\r\nObject Points\r\nname x y z\r\n";
        for (std::size_t i = 0; i < Objects.size(); ++i) add(ObjectName(i), Objects[i]);
        text += "END\r\n\r\nDistances\r\nfrom to distance\r\n";
        for (std::size_t s = 0; s < Stations.size(); ++s)
            for (std::size_t o = 0; o < Objects.size(); ++o)
                text += StationName(s) + " " + ObjectName(o) + " " +
                        Number(Distances[s * Objects.size() + o] * factor) + "\r\n";
        return text + "END\r\n";
    }

private:
    static std::string Number(double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.15g", value);
        return text;
    }
};

class NetworkJob : public Program {
protected:
    NetworkJob() { StartUp(""); }

    // Reads a network by way of the input dialog's OK; the window is open then.
    void Read(const std::string& text) {
        InputFiles.BundleFile = Write("net.txt", text);
        Dispatch([] { myBtn_OK(); });
        Headless.Dialogs.clear();
    }
    static void Calculate() { UserClick(BündelWindow.BtnCalculate); }
    std::string FolderOfFiles() const { return folder_ + "/settings/Corvinade/"; }

    const SimulatedNetwork network_{5, 12};
};
