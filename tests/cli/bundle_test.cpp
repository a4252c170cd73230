// `corvinade-cli bundle`: networks on the command line.
#include <cmath>
#include <filesystem>
#include <sstream>

#include "bundle/network_job.h"
#include "cli/fit_command.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

const std::string kNetwork = kExamples + "hall_network.txt";

class BundleCommand : public Program {
protected:
    static Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "bundle");
        if (std::find(arguments.begin(), arguments.end(), "--decimal") == arguments.end())
            arguments.insert(arguments.end(), {"--decimal", "."});
        return CommandLine(arguments);
    }
    static json RunJson(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return json::parse(outcome.Out);
    }
};

}  // namespace

TEST_F(BundleCommand, PrintsTheAdjustedCoordinatesAndTheirAccuracy) {
    const Outcome outcome = Run({kNetwork});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Err, "");
    for (const char* text :
         {"(6 stations, 14 object points)", "84 of 84 distances, 54 unknowns", "\nTH1 ", "\nT14 ", "held"})
        EXPECT_NE(outcome.Out.find(text), std::string::npos) << text << "\n" << outcome.Out;
    EXPECT_EQ(outcome.Out.find("written"), std::string::npos);
}

TEST_F(BundleCommand, TheJsonHasEveryDistanceComputedFromItsCoordinates) {
    const json all = RunJson({kNetwork});
    EXPECT_EQ(all["converged"], true);
    EXPECT_EQ(all["unknowns"], 54);
    EXPECT_EQ(all["distancesInUse"], 84);
    std::map<std::string, json> places;
    for (const char* kind : {"stations", "objectPoints"})
        for (const json& point : all[kind]) places[point["name"]] = point["xyz_mm"];
    double sumVV = 0;
    for (const json& distance : all["distances"]) {
        const json &a = places.at(distance["station"]), &b = places.at(distance["objectPoint"]);
        const double computed =
            std::hypot(a[0].get<double>() - b[0].get<double>(), a[1].get<double>() - b[1].get<double>(),
                       a[2].get<double>() - b[2].get<double>());
        const double v = distance["v_mm"];
        EXPECT_EQ(distance["used"], true);
        EXPECT_NEAR(computed - distance["measured_mm"].get<double>(), v, 1e-6);
        sumVV += v * v;
    }
    EXPECT_NEAR(all["s0_mm"].get<double>(), std::sqrt(sumVV / 83), 1e-12);
    EXPECT_LT(all["iterations"].back()["biggestX_mm"], 1e-5);
    EXPECT_EQ(all["stations"][0]["sigma_mm"], (json{nullptr, nullptr, nullptr}));
    EXPECT_EQ(all["files"], json::array());
}

TEST_F(BundleCommand, WritesBothNetworksIntoAFolderThatIsAskedForAndNowhereElse) {
    const std::string folder = PathOf("to/here");
    const json all = RunJson({kNetwork, "--to", folder});
    EXPECT_EQ(all["files"], (json{folder + "/BündelOCS.txt", folder + "/BündelMCS.txt"}));
    EXPECT_EQ(Contents(folder + "/BündelOCS.txt").substr(0, 21), "TH1\t5.1\t-5.3\t1650.7\r\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
    EXPECT_FALSE(std::filesystem::exists(PathOf("settings")));
}

TEST_F(BundleCommand, WhatItWritesIsFittedByTheFit) {
    const std::string folder = PathOf("to");
    EXPECT_EQ(Run({kNetwork, "--to", folder}).Status, 0);
    const std::string start = folder + "/BündelMCS.txt", target = folder + "/BündelOCS.txt";
    const Outcome fitted = CommandLine({"fit", start, target, "--json", "--decimal", "."});
    EXPECT_EQ(fitted.Status, 0) << fitted.Err;
    EXPECT_EQ(json::parse(fitted.Out)["counts"]["pairs"], 20);
}

TEST_F(BundleCommand, ReducesTheObjectPoints) {
    const json all = RunJson({kNetwork, "--reduce", "50"});
    EXPECT_EQ(all["objectPoints"].size(), 7u);
    EXPECT_EQ(all["objectPoints"][1]["name"], "T03");
    EXPECT_EQ(all["distancesInUse"], 42);
    EXPECT_EQ(all["distances"].size(), 84u);
    EXPECT_EQ(all["distances"][1]["used"], false);
    for (const char* wrong : {"0", "101", "0.99", "half", "nan", ""}) {
        const Outcome outcome = Run({kNetwork, std::string("--reduce=") + wrong});
        EXPECT_EQ(outcome.Status, 2) << wrong;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(BundleCommand, ReadsAndShowsInTheUnitOfLength) {
    const std::string metres = Write("metres.txt", SimulatedNetwork(5, 12).Text(0.001));
    const json all = RunJson({metres, "--length-unit", "m"});
    const std::string millimetres = Write("mm.txt", SimulatedNetwork(5, 12).Text());
    const json same = RunJson({millimetres});
    EXPECT_NEAR(all["s0_mm"].get<double>(), same["s0_mm"].get<double>(), 1e-9);
    EXPECT_NE(Run({metres, "--length-unit", "m", "--digits", "6"}).Out.find("(in meter)"), std::string::npos);
}

TEST_F(BundleCommand, RefusesWhatCannotBeReadOrAdjustedAndSaysWhy) {
    Outcome outcome = Run({PathOf("missing.txt")});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("missing.txt"), std::string::npos);
    const std::string text = SimulatedNetwork(5, 12).Text();
    outcome = Run({Write("cut.txt", text.substr(0, text.find("Distances")))});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("\"Distances\""), std::string::npos) << outcome.Err;

    SimulatedNetwork line(5, 12);
    for (std::size_t i = 0; i < 5; ++i) line.Stations[i] = {1000.0 * static_cast<double>(i), 0, 0};
    outcome = Run({Write("line.txt", line.Text()), "--to", PathOf("to")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_EQ(outcome.Err, "corvinade-cli: All Stations are in one line; this is not working\n");
    EXPECT_FALSE(std::filesystem::exists(PathOf("to")));
}

TEST_F(BundleCommand, TellsOfDistancesThatItLeavesOut) {
    std::string text = SimulatedNetwork(5, 12).Text();
    text.insert(text.rfind("END"), "S1 X9 4000\r\n");
    const Outcome outcome = Run({Write("unknown.txt", text), "--json"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_NE(outcome.Err.find("\"S1\" to \"X9\""), std::string::npos) << outcome.Err;
    EXPECT_EQ(json::parse(outcome.Out)["distancesInUse"], 60);
}

TEST_F(BundleCommand, ANetworkThatItsDistancesDoNotDetermineEnds) {
    const Outcome outcome = Run({Write("weak.txt", SimulatedNetwork(4, 3).Text())});
    EXPECT_NE(outcome.Err.find("do not determine the network"), std::string::npos) << outcome.Err;
    EXPECT_TRUE(outcome.Status == 0 || outcome.Status == 1 || outcome.Status == 4);
}

TEST_F(BundleCommand, APercentageThatLeavesNoObjectPointIsTold) {
    const Outcome outcome = Run({kNetwork, "--reduce", "7"});
    EXPECT_NE(outcome.Err.find("larger percentage of the object points"), std::string::npos) << outcome.Err;
}

TEST_F(BundleCommand, AFolderThatCannotBeWrittenIsTold) {
    Write("file", "x");
    const Outcome outcome = Run({kNetwork, "--to", PathOf("file/below")});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("file/below"), std::string::npos) << outcome.Err;
}

TEST_F(BundleCommand, APointThatTheDistancesDoNotDetermineHasNoSigma) {
    std::string text;
    std::istringstream in(Contents(kNetwork));
    for (std::string line; std::getline(in, line);)
        if (line.find(" T14 ") == std::string::npos || line.starts_with("TH1 ") || line.starts_with("TH2 "))
            text += line + "\n";
    const std::string path = Write("net.txt", text);
    const json all = RunJson({path});
    const json& open = all["objectPoints"].back();
    EXPECT_EQ(open["name"], "T14");
    EXPECT_EQ(open["sigma_mm"], (json{nullptr, nullptr, nullptr}));
    EXPECT_EQ(open["determined"], (json{false, false, false}));
    EXPECT_EQ(all["stations"][0]["determined"], (json{true, true, true})) << "held";
    EXPECT_GT(all["objectPoints"][0]["sigma_mm"][0], 0);
    EXPECT_EQ(all["objectPoints"][0]["determined"], (json{true, true, true}));
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::NetworkOpen);
    EXPECT_NE(Notes.List[0].Text.find("\"T14\""), std::string::npos);
    // The written network says so too, and whoever goes on with it hears it.
    const std::string folder = PathOf("to");
    EXPECT_EQ(Run({path, "--to", folder}).Status, 0);
    const Outcome fitted =
        CommandLine({"fit", folder + "/BündelMCS.txt", folder + "/BündelOCS.txt", "--json"});
    EXPECT_EQ(fitted.Status, 0) << fitted.Err;
    const json notes = json::parse(fitted.Out)["notes"];
    ASSERT_EQ(notes.size(), 1u) << notes;
    EXPECT_EQ(notes[0]["code"], "network-open");
    EXPECT_NE(notes[0]["text"].get<std::string>().find("\"T14\""), std::string::npos);
    const Outcome table = Run({path});
    const std::size_t row = table.Out.find("\nT14 ");
    ASSERT_NE(row, std::string::npos);
    EXPECT_NE(table.Out.find("open        open        open", row), std::string::npos) << table.Out;
}

namespace {

// The network of the examples with other lines in the place of some of its own, by how they begin.
class BundleNotes : public BundleCommand {
protected:
    std::string Changed(const std::map<std::string, std::string>& lines) {
        std::string text;
        std::istringstream in(Contents(kNetwork));
        for (std::string line; std::getline(in, line);) {
            for (const auto& [begin, other] : lines)
                if (line.starts_with(begin)) line = other;
            text += line + "\n";
        }
        return Write("changed" + std::to_string(++files_) + ".txt", text);
    }
    static std::vector<std::string> Warnings(const json& all) {
        std::vector<std::string> codes;
        for (const json& note : all.at("notes"))
            if (note.at("severity") == "warning") codes.push_back(note.at("code"));
        return codes;
    }
    int files_ = 0;
};

}  // namespace

TEST_F(BundleNotes, DistancesThatCannotBeMeantEndAStrictCommand) {
    // An object point at the place of a station, by the approximate coordinates.
    const std::vector<std::pair<std::string, std::string>> cases = {
        {Changed({{"TH1 T01 ", "TH1 T99 6005.516"}}), "distance-unknown"},
        {Changed({{"TH1 T01 ", "T01 TH1 6005.516"}}), "distance-swapped"},
        {Changed({{"TH1 T14 ", "TH1 T14 0"}}), "distance-not-positive"},
        {Changed({{"T14 ", "T14 5.1 -5.3 1650.7"}}), "distance-one-place"}};
    for (const auto& [path, code] : cases) {
        const std::string to = PathOf("to " + code);
        const Outcome strict = Run({path, "--strict", "--to", to});
        EXPECT_EQ(strict.Status, 3) << code << strict.Err;
        EXPECT_EQ(strict.Out, "") << code;
        EXPECT_FALSE(std::filesystem::exists(to)) << code;
        const json all = json::parse(Run({path, "--json"}).Out);
        const std::vector<std::string> warnings = Warnings(all);
        EXPECT_NE(std::find(warnings.begin(), warnings.end(), code), warnings.end()) << all.at("notes");
    }
    EXPECT_EQ(Run({kNetwork, "--strict"}).Status, 0);
}

TEST_F(BundleNotes, PointsOfOneLineEndAStrictCommand) {
    // Without the second lines every other point is one.
    std::string text;
    std::istringstream in(Contents(kNetwork));
    bool objects = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("END")) objects = false;
        const bool kept = !objects || (line.starts_with("T") || line.starts_with("name"));
        if (line.starts_with("Object Points")) objects = true;
        if (kept) text += line + "\n";
    }
    const std::string path = Write("one.txt", text);
    const Outcome strict = Run({path, "--strict"});
    EXPECT_EQ(strict.Status, 3) << strict.Err;
    const json all = json::parse(Run({path, "--json"}).Out);
    EXPECT_EQ(all["objectPoints"].size(), 7u);
    const std::vector<std::string> warnings = Warnings(all);
    EXPECT_EQ(warnings, (std::vector<std::string>{"entry-skipped", "distance-unknown"}));
    EXPECT_EQ(all["notes"][0]["count"], 7);
}

TEST_F(BundleNotes, AnAdjustmentThatDoesNotConvergeIsOne) {
    const std::string path = Changed({{"TH1 T01 ", "TH1 T01 100000"}});
    const Outcome outcome = Run({path, "--json"});
    ASSERT_EQ(outcome.Status, 4) << outcome.Err;
    const json all = json::parse(outcome.Out);
    EXPECT_EQ(all["converged"], false);
    ASSERT_EQ(Warnings(all), std::vector<std::string>{"not-converged"});
    EXPECT_EQ(all["notes"][0]["file"], path);
    EXPECT_EQ(Run({path, "--strict"}).Status, 3);
    EXPECT_EQ(RunJson({kNetwork})["notes"], json::array());
}
