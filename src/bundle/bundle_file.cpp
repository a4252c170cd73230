// The reader of network files.
#include "bundle/bundle_file.h"

#include <array>
#include <limits>
#include <string_view>
#include <unordered_set>

#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_text.h"

namespace {

struct Section {
    const char* Keyword;
    bool SecondLine;  // each entry has a further one, which is skipped
    std::int64_t MostEntries;
};
constexpr std::array<Section, 3> kSections = {
    {{"Theodolite", true, std::numeric_limits<std::int16_t>::max()},
     {"Object Points", true, std::numeric_limits<std::int16_t>::max()},
     {"Distances", false, std::numeric_limits<std::int32_t>::max() - 1}}};

// A line that must be there; the file's end is a failure of the read, told with what was looked for.
std::string_view NextLine(const PointText& file, LineWalk& lines, const std::string& missing) {
    std::string_view line;
    if (lines.Next(line)) return line;
    throw PlatformError{"Cannot read \"" + file.Path + "\": it ends behind line " +
                        std::to_string(lines.Row) + ", before " + missing};
}

// Walks over all sections; `take` gets the section's number and each of its entries.
template <class Take>
void ForEachEntry(const PointText& file, Take take) {
    LineWalk lines(file);
    for (std::size_t s = 0; s < kSections.size(); ++s) {
        const Section& section = kSections[s];
        const std::string name = std::string("\"") + section.Keyword + "\"";
        const std::string end = "the line END of the section " + name;
        while (!NextLine(file, lines, "a section " + name).starts_with(section.Keyword)) {
        }
        NextLine(file, lines, end);
        for (;;) {
            const std::string_view entry = NextLine(file, lines, end);
            if (entry.starts_with("END")) break;
            take(s, entry, lines.Row);
            if (section.SecondLine) NextLine(file, lines, end);
        }
    }
}

// Fields of a line, one after the other.
class Fields {
public:
    explicit Fields(std::string_view line) : rest_(line) {}
    std::string Text() { return std::string(CutField(rest_, ' ', scratch_)); }
    double Length() { return Val(CutField(rest_, ' ', scratch_)) / Units.LengthFactor; }

private:
    std::string_view rest_;
    std::string scratch_;
};

void TakePoint(Fields fields, std::size_t number, std::vector<std::string>& names, Matrix& xyz) {
    names[number] = fields.Text();
    for (int axis = 1; axis <= 3; ++axis) xyz(static_cast<int>(number), axis) = fields.Length();
}

// Counts what is wrong, with the first of them.
struct Objection {
    std::int64_t Count = 0;
    std::string First;

    void Add(const std::string& text) {
        if (++Count == 1) First = text;
    }
    // "3 distances name ...; the first is ..."
    void Tell(const std::string& one, const std::string& many, std::string& all) const {
        if (Count == 0) return;
        if (!all.empty()) all += kLineEnd;
        all += (Count == 1 ? "1 distance " + one : std::to_string(Count) + " distances " + many) +
               (Count == 1 ? ": " : ", the first: ") + First;
    }
};

}  // namespace

BundleRecord BündelInputFileEinlesen(const std::string& path) {
    const PointText file = LoadPointText(path);
    std::array<std::int64_t, 3> counts{};
    ForEachEntry(file, [&](std::size_t section, std::string_view, std::int64_t row) {
        if (++counts[section] > kSections[section].MostEntries)
            throw PlatformError{"Cannot read \"" + path + "\", line " + std::to_string(row) +
                                ": the section \"" + kSections[section].Keyword + "\" has more than " +
                                std::to_string(kSections[section].MostEntries) + " entries"};
    });

    BundleRecord network;
    network.BundleFilePath = path;
    network.nStations = static_cast<std::int16_t>(counts[0]);
    network.nObjectPoints = static_cast<std::int16_t>(counts[1]);
    network.nDistances = static_cast<std::int32_t>(counts[2]);
    network.StationName.resize(static_cast<std::size_t>(counts[0]) + 1);
    network.StationXYZ = Matrix(network.nStations, 3);
    network.ObjectName.resize(static_cast<std::size_t>(counts[1]) + 1);
    network.ObjectXYZ = Matrix(network.nObjectPoints, 3);
    for (const std::size_t end : {1U, 2U})
        network.DistancePair[end].resize(static_cast<std::size_t>(counts[2]) + 1);
    network.DistanceValue.resize(static_cast<std::size_t>(counts[2]) + 1);

    std::array<std::size_t, 3> number{};
    std::string scratch;
    ForEachEntry(file, [&](std::size_t section, std::string_view line, std::int64_t) {
        Fields fields(DecodedLine(file, line, scratch));
        const std::size_t k = ++number[section];
        if (section == 0) {
            TakePoint(fields, k, network.StationName, network.StationXYZ);
        } else if (section == 1) {
            TakePoint(fields, k, network.ObjectName, network.ObjectXYZ);
        } else {
            network.DistancePair[1][k] = fields.Text();
            network.DistancePair[2][k] = fields.Text();
            network.DistanceValue[k] = fields.Length();
        }
    });
    return network;
}

std::string BundleObjections(const BundleRecord& network) {
    const std::unordered_set<std::string_view> stations(network.StationName.begin() + 1,
                                                        network.StationName.end());
    const std::unordered_set<std::string_view> objects(network.ObjectName.begin() + 1,
                                                       network.ObjectName.end());
    Objection unknown, nothing;
    for (std::size_t k = 1; k < network.DistanceValue.size(); ++k) {
        const std::string& from = network.DistancePair[1][k];
        const std::string& to = network.DistancePair[2][k];
        const std::string pair = "\"" + Printable(from) + "\" to \"" + Printable(to) + "\"";
        if (!stations.contains(from) || !objects.contains(to)) unknown.Add(pair);
        if (!(network.DistanceValue[k] > 0)) nothing.Add(pair);
    }
    std::string text;
    if (network.nDistances == unknown.Count)
        text =
            "There is no distance between a station and an object point of the file, so nothing can be "
            "adjusted.";
    unknown.Tell("names a point that is not there and is left out",
                 "name points that are not there and are left out", text);
    nothing.Tell("is 0 or less", "are 0 or less", text);
    return text;
}
