// Points that the distances of a network do not determine.
#include "bundle/open_points.h"

#include <cmath>
#include <functional>
#include <sstream>

#include "bundle/bundle_file.h"
#include "bundle/bundle_run.h"
#include "bundle/network_job.h"
#include "cli/command_line.h"
#include "core/job.h"
#include "core/notes.h"
#include "import/point_file.h"

using namespace corvinade;

namespace {

class OpenPoints : public NetworkJob {
protected:
    // The text of the network without the distances that `drop` names, "S1 P3" for instance.
    std::string Without(
        const std::function<bool(const std::string& station, const std::string& object)>& drop) const {
        std::istringstream in(network_.Text());
        std::string text, line;
        bool distances = false;
        while (std::getline(in, line)) {
            distances = distances || line.starts_with("Distances");
            std::istringstream fields(line);
            std::string station, object;
            const bool pair = distances && fields >> station >> object && object.starts_with("P");
            if (!pair || !drop(station, object)) text += line + "\n";
        }
        return text;
    }
    struct Adjusted {
        BundleRecord Network;
        BundleWork Work;
        BundleEnd End;
        bool AnyOpen(int point) const {  // stations first, from 1
            for (int axis = 1; axis <= 3; ++axis)
                if (IsOpenCoordinate(Work, 3 * (point - 1) + axis)) return true;
            return false;
        }
    };
    Adjusted Adjust(const std::string& text) const {
        Adjusted a;
        a.Network = BündelInputFileEinlesen(Write("net.txt", text));
        a.Work = PrepareBundle(a.Network, 100);
        a.End = AdjustBundle(a.Network, a.Work, kBundleLimit, {});
        return a;
    }
    static int Stations() { return 5; }
    static int Times(const std::string& text, const std::string& part) {
        int count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
    static std::vector<int> OpenOf(const Adjusted& a) {
        std::vector<int> open;
        for (int point = 1; point <= a.Network.nStations + a.Network.nObjectPoints; ++point)
            if (a.AnyOpen(point)) open.push_back(point);
        return open;
    }
    // How much the distances change, to first order, when the coordinates of a point move in any direction
    // and the others do as well as they can: 0 for an open one. By the whole matrix, and not block by block.
    static double LeastChange(const Adjusted& a, int column) {
        const int u = a.Work.nUnknown, free = a.Work.Unknown[static_cast<std::size_t>(column)];
        const auto n = static_cast<std::size_t>(u);
        std::vector<std::vector<double>> rows;
        for (std::size_t k = 1; k < a.Work.A.size(); ++k) {
            const DistanceRow& row = a.Work.A[k];
            if (row.Station == 0) continue;
            std::vector<double> full(n + 1);
            for (int axis = 1; axis <= 3; ++axis) {
                const auto at = [&](int point) {
                    return static_cast<std::size_t>(
                        a.Work.Unknown[static_cast<std::size_t>(3 * (point - 1) + axis)]);
                };
                full[at(row.Station)] += row.Direction[axis - 1];
                full[at(a.Network.nStations + row.Object)] -= row.Direction[axis - 1];
            }
            full[0] = 0;
            rows.push_back(full);
        }
        // Orthogonal directions of all other columns; what is left of this one's.
        std::vector<std::vector<double>> basis;
        const auto reduced = [&](int unknown) {
            std::vector<double> v(rows.size());
            for (std::size_t k = 0; k < rows.size(); ++k) v[k] = rows[k][static_cast<std::size_t>(unknown)];
            for (int twice = 0; twice < 2; ++twice)
                for (const auto& b : basis) {
                    double dot = 0;
                    for (std::size_t k = 0; k < v.size(); ++k) dot += b[k] * v[k];
                    for (std::size_t k = 0; k < v.size(); ++k) v[k] -= dot * b[k];
                }
            return v;
        };
        const auto size = [](const std::vector<double>& v) {
            double sum = 0;
            for (const double x : v) sum += x * x;
            return std::sqrt(sum);
        };
        for (int other = 1; other <= u; ++other) {
            if (other == free) continue;
            std::vector<double> v = reduced(other);
            const double length = size(v);
            if (length < 1e-9) continue;
            for (double& x : v) x /= length;
            basis.push_back(v);
        }
        return size(reduced(free));
    }
};

}  // namespace

TEST_F(OpenPoints, AWholeNetworkHasNone) {
    const Adjusted a = Adjust(network_.Text());
    EXPECT_EQ(a.End, BundleEnd::Converged);
    EXPECT_EQ(OpenOf(a), std::vector<int>{});
    NoteOpenPoints(a.Network, a.Work);
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(OpenPoints, AnObjectPointOfTwoDistancesIsOneAndTheOthersAreAsWithoutIt) {
    const auto dropped = [](const std::string& station, const std::string& object) {
        return object == "P12" && station != "S1" && station != "S2";
    };
    const Adjusted a = Adjust(Without(dropped));
    EXPECT_EQ(OpenOf(a), std::vector<int>{Stations() + 12});
    // The network that has never heard of it.
    const Adjusted without =
        Adjust(Without([](const std::string&, const std::string& object) { return object == "P12"; }));
    EXPECT_EQ(OpenOf(without), std::vector<int>{Stations() + 12}) << "no distance at all";
    const Adjusted whole = Adjust(network_.Text());
    for (int column = 1; column <= 3 * (Stations() + 11); ++column) {
        const auto at = static_cast<std::size_t>(column);
        ASSERT_EQ(a.Work.Cofactor[at].has_value(), whole.Work.Cofactor[at].has_value());
        if (!a.Work.Cofactor[at]) continue;
        EXPECT_NEAR(*a.Work.Cofactor[at] / *without.Work.Cofactor[at], 1, 1e-6) << column;
        EXPECT_GT(*a.Work.Cofactor[at] * (1 + 1e-6), *whole.Work.Cofactor[at]) << "fewer distances";
    }
}

TEST_F(OpenPoints, TheCofactorsOfADeterminedNetworkComeOutOfTheBlocksAsOutOfTheWholeInverse) {
    // One point more that is open makes them be taken from the blocks.
    const Adjusted whole = Adjust(network_.Text());
    BundleRecord network = whole.Network;
    network.nObjectPoints += 1;
    network.ObjectName.emplace_back("open");
    Matrix places(network.nObjectPoints, 3);
    for (int i = 1; i <= whole.Network.nObjectPoints; ++i)
        for (int k = 1; k <= 3; ++k) places(i, k) = whole.Network.Net.ObjectXYZ(i, k);
    network.Net.ObjectXYZ = places;
    BundleWork work = PrepareBundle(network, 100);
    ASSERT_EQ(AdjustBundle(network, work, kBundleLimit, {}), BundleEnd::Converged);
    for (int column = 1; column <= 3 * (Stations() + 12); ++column) {
        const auto at = static_cast<std::size_t>(column);
        if (whole.Work.Cofactor[at]) {
            EXPECT_NEAR(*work.Cofactor[at] / *whole.Work.Cofactor[at], 1, 1e-6) << column;
        }
        EXPECT_FALSE(IsOpenCoordinate(work, column));
    }
    for (int axis = 1; axis <= 3; ++axis) EXPECT_TRUE(IsOpenCoordinate(work, 3 * (Stations() + 12) + axis));
}

// A station that sees three points only, and other gaps; each coordinate against the whole matrix.
TEST_F(OpenPoints, EveryCoordinateIsFoundAsTheWholeMatrixHasIt) {
    using Drop = std::function<bool(const std::string&, const std::string&)>;
    const std::vector<Drop> gaps = {
        [](const std::string& s, const std::string& o) { return s == "S5" && o != "P1" && o != "P2"; },
        [](const std::string& s, const std::string& o) {
            return s == "S4" && o != "P1" && o != "P2" && o != "P3";
        },
        [](const std::string& s, const std::string& o) { return s == "S4" || (o == "P7" && s != "S1"); },
        [](const std::string& s, const std::string& o) {
            return (s == "S5" && o != "P1" && o != "P2" && o != "P12") ||
                   (o == "P12" && s != "S5" && s != "S1" && s != "S2");
        },
        // Every station sees only three of the points.
        [](const std::string& s, const std::string& o) {
            return (std::stoi(o.substr(1)) + std::stoi(s.substr(1))) % 4 != 0;
        }};
    for (std::size_t k = 0; k < gaps.size(); ++k) {
        const Adjusted a = Adjust(Without(gaps[k]));
        if (a.Work.Open.empty()) continue;  // no whole iteration
        for (int column = 1; column < static_cast<int>(a.Work.Unknown.size()); ++column) {
            if (a.Work.Unknown[static_cast<std::size_t>(column)] == 0) {
                EXPECT_FALSE(IsOpenCoordinate(a.Work, column)) << "held";
                continue;
            }
            EXPECT_EQ(IsOpenCoordinate(a.Work, column), LeastChange(a, column) < 1e-7)
                << k << ", column " << column;
        }
        // Three points are enough for a station.
        if (k < 4) {
            EXPECT_EQ(OpenOf(a).empty(), k == 1) << k;
        }
    }
}

TEST_F(OpenPoints, TheNoteNamesThem) {
    const Adjusted a = Adjust(Without([](const std::string& s, const std::string& o) {
        return (o == "P12" && s != "S1" && s != "S2") || (o == "P3" && s != "S2") ||
               (s == "S5" && o != "P1" && o != "P2");
    }));
    NoteOpenPoints(a.Network, a.Work);
    NoteOpenPoints(a.Network, a.Work);
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NetworkOpen);
    EXPECT_EQ(
        Notes.List[0].Text,
        "The distances do not determine station \"S5\" and object points \"P3\", \"P12\"; what is shown for them "
        "is arbitrary");
    EXPECT_EQ(Notes.List[0].Count, 3);
    EXPECT_EQ(Notes.List[0].File, PathOf("net.txt"));
}

// Two stations and fifteen object points, put together here: three columns of unknowns a point.
TEST_F(OpenPoints, TheNoteNamesTwelveOfManyAndOnceEachKind) {
    BundleRecord network;
    BundleWork work;
    network.nStations = 2;
    network.StationName = {"", "S1", "S2"};
    network.nObjectPoints = 15;
    network.ObjectName = {""};
    work.UsedObject = {0};
    for (int i = 1; i <= 15; ++i) {
        network.ObjectName.push_back("P" + std::to_string(i));
        work.UsedObject.push_back(i);
    }
    const auto note = [&](const std::vector<int>& open) -> std::string {
        work.Open.assign(3 * 17 + 1, false);
        for (const int column : open) work.Open[static_cast<std::size_t>(column)] = true;
        NoteOpenPoints(network, work);
        NoteOpenPoints(network, work);  // which takes the place of the one before
        std::string text;
        for (const Note& entry : Notes.List)
            if (entry.Code == NoteCode::NetworkOpen) text += entry.Text + "|" + std::to_string(entry.Count);
        return text;
    };
    const std::string end = "; what is shown for them is arbitrary|";
    EXPECT_EQ(note({}), "");
    // One coordinate of a point is enough, whichever it is.
    for (const int column : {4, 5, 6})
        EXPECT_EQ(note({column}), "The distances do not determine station \"S2\"" + end + "1");
    for (const int column : {7, 8, 9})
        EXPECT_EQ(note({column}), "The distances do not determine object point \"P1\"" + end + "1");
    EXPECT_EQ(note({1, 5, 51}),
              "The distances do not determine stations \"S1\", \"S2\" and object point \"P15\"" + end + "3");
    const std::string twelve =
        "The distances do not determine object points \"P1\", \"P2\", \"P3\", \"P4\", \"P5\", \"P6\", \"P7\", "
        "\"P8\", \"P9\", \"P10\", \"P11\", \"P12\"";
    std::vector<int> open;
    for (int i = 0; i < 12; ++i) open.push_back(7 + 3 * i);
    EXPECT_EQ(note(open), twelve + end + "12");
    open.push_back(7 + 3 * 12);
    EXPECT_EQ(note(open), twelve + " and 1 more" + end + "13");
}

TEST_F(OpenPoints, TheWindowShowsNoAccuracyForThemAndKeepsTheNote) {
    Read(Without(
        [](const std::string& s, const std::string& o) { return o == "P12" && s != "S1" && s != "S2"; }));
    for (int run = 0; run < 2; ++run) {
        Calculate();
        EXPECT_TRUE(BündelWindow.TextResults.Text.ends_with("\topen\topen\topen\r\n"))
            << BündelWindow.TextResults.Text;
        ASSERT_EQ(Notes.List.size(), 1u);
        EXPECT_EQ(Notes.List[0].Code, NoteCode::NetworkOpen);
    }
    // In the file of the adjusted network each point says what it is; the approximate one is as ever.
    const std::string file = Contents(FolderOfFiles() + kBundleStartFile);
    EXPECT_TRUE(file.ends_with("\topen\r\n")) << file;
    EXPECT_EQ(Times(file, "\topen\r\n"), 1);
    EXPECT_EQ(Times(file, "\tdetermined\r\n"), Stations() + 11);
    const std::string approximate = Contents(FolderOfFiles() + kBundleTargetFile);
    EXPECT_EQ(Times(approximate, "open") + Times(approximate, "determined"), 0);
    UserClick(BündelWindow.Command1);
    EXPECT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Count, 1);
}

TEST_F(OpenPoints, ANetworkWithoutThemIsWrittenAsEver) {
    Read(network_.Text());
    Calculate();
    const std::string file = Contents(FolderOfFiles() + kBundleStartFile);
    EXPECT_EQ(Times(file, "\t"), 3 * Times(file, "\r\n"));
    EXPECT_EQ(file, NetworkText(Bundle, PrepareBundle(Bundle, 100)));
}

// Four fields are a point, whatever the fifth says; what it says is told.
TEST_F(OpenPoints, TheMarksAreReadBackWithoutLoss) {
    Read(Without(
        [](const std::string& s, const std::string& o) { return o == "P12" && s != "S1" && s != "S2"; }));
    Calculate();
    ForgetNotes();
    Einlesen_Neu();
    ASSERT_EQ(Job.Start.Count(), Stations() + 12);
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Start.Count()); ++i) {
        const int row = static_cast<int>(i) - Stations();
        const bool station = row < 1;
        EXPECT_EQ(Job.Start.Name[i], station ? Bundle.StationName[i] : Bundle.ObjectName[i - 5]);
        const double* xyz =
            station ? Bundle.Net.StationXYZ.Row(static_cast<int>(i)) : Bundle.Net.ObjectXYZ.Row(row);
        // The file has fifteen digits.
        EXPECT_NEAR(*Job.Start.X[i], xyz[1], 1e-9);
        EXPECT_NEAR(*Job.Start.Y[i], xyz[2], 1e-9);
        EXPECT_NEAR(Job.Start.Z[i], xyz[3], 1e-9);
    }
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NetworkOpen);
    EXPECT_EQ(Notes.List[0].File, Job.PathMCS);
    EXPECT_EQ(Notes.List[0].Line, Stations() + 12);
    EXPECT_NE(Notes.List[0].Text.find("\"P12\""), std::string::npos) << Notes.List[0].Text;
}
