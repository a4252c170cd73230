#include "fuzz/harnesses.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "bundle/bundle_file.h"
#include "cli/automate.h"
#include "cli/command_line.h"
#include "cli/transformation_file.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/settings.h"
#include "import/cloud.h"
#include "import/point_file.h"
#include "import/robot_files.h"
#include "import/table_reader.h"
#include "paraboloid/paraboloid.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kInput = "input.txt";

std::string Written(std::string_view bytes) {
    // Some file systems flush a file that is written over to the disk.
    std::error_code none;
    fs::remove(kInput, none);
    std::ofstream(kInput, std::ios::binary) << bytes;
    return kInput;
}

std::string JobIsOdd() {
    return JobFault(LengthsOf(Job));
}

// A refusal says something, and leaves the job with counts that fit.
template <class Work>
std::string Refusing(Work work) {
    try {
        work();
    } catch (const PlatformError& error) {
        if (error.What.empty()) return "refused without a word";
    }
    return JobIsOdd();
}

std::string Points(std::string_view bytes) {
    const std::string path = Written(bytes);
    const std::string fault = Refusing([&] { Einlesen_Neu({.Start = path, .Target = path}); });
    return fault != "" ? fault : Refusing([&] { ReadMorePoints(path, "a", "b"); });
}

// What is in memory is whole whatever the options.
std::string Table(std::string_view bytes) {
    TableOptions wish;
    for (const bool other : {false, true}) {
        wish.SkipBad = wish.KeepRest = wish.DoubleNames = wish.FirstIsX = other;
        const TableResult table = ReadTable(bytes, kInput, wish);
        const auto points = static_cast<std::size_t>(table.Points.Count());
        if (table.Refusal.Refused() && points != 0) return "refused, and has points";
        if (!table.Refusal.Refused() && points == 0) return "neither points nor a refusal";
        if (table.Refusal.Refused()) continue;
        for (const auto* sigmas : {&table.SX, &table.SY, &table.SZ})
            if (!sigmas->empty() && sigmas->size() != points + 1) return "not as many sigmas as points";
        if (other && table.Rest.size() != points + 1) return "not as many rests as points";
    }
    return "";
}

template <PoseReader reader>
std::string Program(std::string_view bytes) {
    const std::string path = Written(bytes);
    for (const bool declarations : {false, true}) {
        const std::string fault = Refusing([&] { reader({path, declarations}); });
        if (fault != "") return fault;
    }
    const bool fits = Job.RobotABC.Rows <= 0 || Job.RobotABC.Rows == Job.Target.Count();
    return fits ? "" : "rows of angles do not fit";
}

std::string Poses(std::string_view bytes) {
    const std::string fault = Program<EinlesenXYZABC>(bytes);
    return fault != "" ? fault : Program<EinlesenABB>(bytes);
}

std::string Shape(std::string_view bytes) {
    const std::string path = Written(bytes);
    return Refusing([&] { EinlesenParaboloidData({path}); });
}

std::string Network(std::string_view bytes) {
    const std::string path = Written(bytes);
    return Refusing([&] { BundleObjections(BündelInputFileEinlesen(path)); });
}

// What is read can be written, and is the same when it is read again.
std::string JobFile(std::string_view bytes) {
    try {
        const JobFileContent content = ReadJobBytes(bytes, "a.cvn");
        if (const std::string fault = JobFault(LengthsOf(content.Job)); fault != "") return fault;
        const std::string saved = JobBytes(content.Job, content.ViewNames);
        const JobFileContent again = ReadJobBytes(saved, "b.cvn");
        if (JobBytes(again.Job, again.ViewNames) != saved) return "is another job when it is read again";
    } catch (const PlatformError& error) {
        if (!error.What.starts_with("\"a.cvn\", byte ")) return "refused without a place: " + error.What;
    }
    return "";
}

// The properties of flags stand among the settings.
std::string SettingsFile(std::string_view bytes) {
    const std::string fault = Refusing([&] { ReadSettingsText(bytes, "a.ini"); });
    const IniLine line = {"FahnenProp", "ShowPointNumber", "True"};
    const std::string once = WithIniValue(bytes, line);
    return fault;
}

// A path in a request could lead anywhere.
bool LeadsAway(std::string_view text) {
    return text.find('/') != std::string_view::npos || text.find("\\u002") != std::string_view::npos ||
           text.find('~') != std::string_view::npos;
}

// A reply to each line, which is JSON and says why where it is none.
std::string Requests(std::string_view bytes) {
    if (LeadsAway(bytes)) return "";
    StartAutomation({});
    bool quit = false;
    int lines = 0;
    while (!bytes.empty() && !quit && ++lines <= 50) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        const std::string line(bytes.substr(0, end));
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        const nlohmann::json reply = nlohmann::json::parse(AnswerLine(line, quit), nullptr, false);
        if (reply.is_discarded() || !reply.contains("ok")) return "the reply is none: " + line;
        if (reply["ok"] != true && reply.value("error", "").empty()) return "refused without a word: " + line;
        if (const std::string fault = JobIsOdd(); fault != "") return fault + ": " + line;
    }
    return "";
}

// Arguments, a line each. No file is there that one of them could name.
std::string Arguments(std::string_view bytes) {
    if (LeadsAway(bytes) || bytes.size() > 4096) return "";
    std::vector<std::string> arguments;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        // The system ends an argument at its first zero.
        arguments.emplace_back(std::string(bytes.substr(0, end)).c_str());
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    if (!arguments.empty() && arguments[0] == "automate") return "";  // starts anew what runs here
    const Outcome outcome = CommandLine(arguments);
    if (outcome.Status < 0 || outcome.Status > 125) return "status " + std::to_string(outcome.Status);
    if (outcome.Status != 0 && outcome.Err.empty() && outcome.Out.empty()) return "failed without a word";
    return "";
}

std::string Transformation(std::string_view bytes) {
    std::istringstream in{std::string(bytes)};
    std::ostringstream err;
    CloudMotion motion;
    const int status = ReadTransformation({.Path = "-"}, in, err, motion);
    return status != 0 && err.str().empty() ? "refused without a word" : "";
}

// Read, and carried by a motion: both find the same points, or refuse.
std::string Cloud(std::string_view bytes, const std::string& path) {
    const auto run = [&](const CloudMotion* motion) -> std::int64_t {
        std::size_t place = 0;
        CloudInput in(path, [&](char* to, std::size_t most) {
            const std::size_t count = std::min(most, bytes.size() - place);
            std::memcpy(to, bytes.data() + place, count);
            place += count;
            return count;
        });
        std::int64_t taken = 0;
        CloudOutput out(motion == nullptr ? WriteBytes{} : [](std::string_view) {});
        CloudTask task = {in, out, motion, [&](const CloudPoint&) { ++taken; }, {}, {}, 1};
        try {
            RunCloud(task);
        } catch (const PlatformError& error) {
            return error.What.empty() ? -2 : -1;
        }
        return motion == nullptr ? taken : task.Facts.Points;
    };
    CloudMotion moved;
    moved.T = {1, 2, 3};
    const std::int64_t read = run(nullptr), carried = run(&moved);
    if (read == -2 || carried == -2) return "refused without a word";
    if (read >= 0 && carried >= 0 && read != carried) return "another number of points when they are carried";
    return "";
}
std::string Ply(std::string_view bytes) {
    return Cloud(bytes, "a.ply");
}
std::string Pcd(std::string_view bytes) {
    return Cloud(bytes, "a.pcd");
}
std::string TextCloud(std::string_view bytes) {
    for (const char* path : {"a.xyz", "a.txt", "a.tum", "a.points", "a.xml"})
        if (const std::string fault = Cloud(bytes, path); fault != "") return fault;
    return "";
}

constexpr fuzz::Harness kHarnesses[] = {
    {"points", Points},
    {"tables", Table},
    {"kuka", Program<EinlesenKUKAdatDatei>},
    {"abb", Program<EinlesenABB_MODX>},
    {"fanuc", Program<EinlesenFanucDatei>},
    {"poses", Poses},
    {"shape", Shape},
    {"network", Network},
    {"job", JobFile},
    {"settings", SettingsFile},
    {"automation", Requests},
    {"arguments", Arguments},
    {"transformation", Transformation},
    {"ply", Ply},
    {"pcd", Pcd},
    {"text-cloud", TextCloud},
};

}  // namespace

namespace fuzz {

std::span<const Harness> Harnesses() {
    return kHarnesses;
}

Room::Room() {
    std::string name = (fs::temp_directory_path() / "corvinade-fuzz-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw PlatformError{"cannot make " + name};
    folder_ = name;
    before_ = fs::current_path().string();
    fs::current_path(folder_);
}

Room::~Room() {
    std::error_code none;
    fs::current_path(before_, none);
    fs::remove_all(folder_, none);
}

std::string Room::Try(const Harness& harness, std::string_view bytes) const {
    FreshStart();
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
    Headless.SettingsDir = folder_ + "/settings";
    Headless.ProgramDir = folder_ + "/program";
    const std::string fault = harness.Read(bytes);
    // Nothing of it is left for the next one.
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder_, none)) fs::remove_all(entry.path(), none);
    return fault;
}

}  // namespace fuzz
