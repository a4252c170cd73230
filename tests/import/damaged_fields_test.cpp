// The readers of points, shapes, networks and batches on every kind of damaged field.
#include "import/damaged_fields.h"

#include "paraboloid/paraboloid.h"

using namespace corvinade;

TEST_F(DamagedFields, OfPointFiles) {
    const auto row = [](const Fields& fields) { return Joined(fields, ";"); };
    const auto tabs = [](const Fields& fields) { return Joined(fields, "\t"); };
    const auto blanks = [](const Fields& fields) { return Joined(fields, " "); };
    const auto start = [this](const std::string& path) { return ReadStart(path); };
    const auto target = [this](const std::string& path) { return ReadTarget(path); };
    Walk({"import", row, "", "", "# by hand\n", 3, true,
          [this](const std::string& path) { return ImportTarget(path); }});
    Walk({"start", row, "", "", "# by hand\n", 3, true, WithNames(start)});
    Walk({"target", row, "", "", "# by hand\n", 3, true, WithNames(target)});
    Walk({"start, blanks", blanks, "", "", "# by hand\n", 3, true, WithNames(start)});
    Walk({"more points", row, "", "", "# by hand\n", 3, true,
          [this](const std::string& path) { return ReadMore(path); }});
    Walk({"start without names", row, "", "", "# by hand\n", 3, false, start});
    Walk({"target without names, tabs", tabs, "", "", "# by hand\n", 3, false, target});
    Walk({"start without names, blanks", blanks, "", "", "# by hand\n", 3, false, start});
}

TEST_F(DamagedFields, OfShapes) {
    Walk({"shape", [](const Fields& fields) { return Joined(fields, ";"); }, "", "", "# by hand\n", 2, false,
          [](const std::string& path) {
              EinlesenParaboloidData({path});
              Points points;
              for (int row = 1; row <= Job.ParaboloidShape.Rows; ++row)
                  points.push_back(
                      {std::to_string(row), {Job.ParaboloidShape(row, 1), Job.ParaboloidShape(row, 2)}});
              return points;
          }});
}

TEST_F(DamagedFields, OfNetworks) {
    Walk({"network", [](const Fields& fields) { return Joined(fields, " ") + "2 sets\n"; },
          "Theodolite\nskipped\nS 0 0 0\n2 sets\nEND\nObject Points\nskipped\n",
          "END\nDistances\nskipped\nS A 3\nEND\n", "# by hand\n2 sets\n", 3, true,
          [](const std::string& path) {
              const BundleRecord network = BündelInputFileEinlesen(path);
              Points points;
              for (int i = 1; i <= network.nObjectPoints; ++i)
                  points.push_back({network.ObjectName[static_cast<std::size_t>(i)],
                                    {network.Net.ObjectXYZ(i, 1), network.Net.ObjectXYZ(i, 2),
                                     network.Net.ObjectXYZ(i, 3)}});
              return points;
          }});
}

TEST_F(DamagedFields, OfTheOtherSectionsOfNetworks) {
    Walk({"stations", [](const Fields& fields) { return Joined(fields, " ") + "2 sets\n"; },
          "Theodolite\nskipped\n",
          "END\nObject Points\nskipped\nP 0 0 9\n2 sets\nEND\nDistances\nskipped\nA P 3\nEND\n",
          "# by hand\n2 sets\n", 3, true,
          [](const std::string& path) {
              const BundleRecord network = BündelInputFileEinlesen(path);
              Points points;
              for (int i = 1; i <= network.nStations; ++i)
                  points.push_back({network.StationName[static_cast<std::size_t>(i)],
                                    {network.Net.StationXYZ(i, 1), network.Net.StationXYZ(i, 2),
                                     network.Net.StationXYZ(i, 3)}});
              return points;
          }});
    Reader distances{
        "distances",
        [](const Fields& fields) { return "S " + Joined(fields, " "); },
        "Theodolite\nskipped\nS 0 0 0\n2 sets\nEND\nObject Points\nskipped\nA 1 1 1\n2 sets\nB 2 2 2\n2 sets\nC 3 3 3\n2 "
        "sets\nEND\nDistances\nskipped\n",
        "END\n",
        "# by hand\n",
        1,
        true,
        [](const std::string& path) {
            const BundleRecord network = BündelInputFileEinlesen(path);
            Points points;
            for (std::size_t k = 1; k < network.Net.DistanceValue.size(); ++k)
                points.push_back({network.DistancePair[2][k], {network.Net.DistanceValue[k]}});
            return points;
        }};
    distances.ComparesNames = false;
    Walk(distances);
}

TEST_F(DamagedFields, OfBatches) {
    const auto transform = [this](const std::string& path) {
        Job = JobRecord{};
        Job.LengthDigits = 6;
        RhoFestlegung();
        LineCounts counts;
        WriteBatchFile(ReadBatchFile(path), PathOf("out.txt"), nullptr, counts);
        const std::string written = Contents(PathOf("out.txt"));
        for (const char* word : {"Infinity", "inf\t", "NaN\t", "nan\t"})
            EXPECT_EQ(written.find(std::string("\t") + word), std::string::npos) << written;
        Points points;
        std::istringstream lines(Contents(PathOf("out.txt")));
        for (std::string line; std::getline(lines, line);) {
            std::istringstream fields(line);
            std::string name;
            Values values(3);
            std::getline(fields, name, '\t');
            fields >> values[0] >> values[1] >> values[2];
            points.push_back({name, values});
        }
        return points;
    };
    Reader reader{
        "batch",  [](const Fields& fields) { return Joined(fields, ";"); }, "", "", "# by hand\n", 3, true,
        transform};
    reader.ComparesNames = false;
    Walk(reader);
}
