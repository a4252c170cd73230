// Job files of any content: corrupted copies of files of all versions. Each is read or refused with a place,
// in little memory; what was read can be saved, and opens again as the same job.
//
// It runs for longer with CORVINADE_FUZZ_SECONDS, CORVINADE_FUZZ_SEED and CORVINADE_FUZZ_INPUT, the file that
// each input is put into before it is tried; tools/fuzz looks for inputs of all readers.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::string Environment(const char* name, const char* otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : otherwise;
}

// Small files of all versions, with everything that a version can have.
std::vector<std::string> Corpus() {
    HandJob ten = HandExample();
    for (int i = 5; i <= 9; ++i) ten.MCS.Add("P" + std::to_string(i), i, i, i);
    ten.TMCS = ten.MCS;
    ten.nMCS = 9;
    HandJob robot = ten;
    robot.IsKuka = true;
    robot.Robot = {{0, 0, 0, 0}, {0, 1, 2, 3}};
    robot.RVecX = robot.RVecY = {{}, 1.0, 2.0, 3.0};
    robot.RVecZ = {0, 1, 2, 3};
    HandJob views = HandRobotExample();
    views.ViewNames = {"a"};
    std::vector<std::string> files = {HandFile(HandJob{}),
                                      HandFile(ten),
                                      HandFile(robot),
                                      HandFile(HandParaboloidExample()),
                                      HandFile15(robot, "2.0.57"),
                                      HandFile46(HandParaboloidExample(), "2.0.46"),
                                      HandFile72(ten, "1.3.72"),
                                      HandFile71(ten, "1.3.71"),
                                      HandFile71(HandExample(), "1.2.70"),
                                      HandFile68(ten, "1.3.68"),
                                      HandFile68(HandExample(), "1.3.68"),
                                      HandFile40(ten, "1.2.40"),
                                      HandFile(views)};
    // Views whose arrays were never sized: short enough to be hit everywhere.
    HandBytes none;
    const std::string plain = HandFile(HandJob{});
    none.Raw(plain.substr(0, plain.size() - 6)).I16(1).I32(0).Short("a");
    for (int i = 0; i < 51; ++i) PutHandView(none, i, {false, 0, i % 7 == 0 ? 1 : 0, i % 5});
    files.push_back(none.I32(0).Text);
    return files;
}

class Mutator {
public:
    explicit Mutator(unsigned seed) : random_(seed), corpus_(Corpus()) {}

    std::string Next() {
        std::string file = corpus_[Below(corpus_.size())];
        for (std::size_t n = 1 + Below(4); n > 0; --n) Change(file);
        return file;
    }
    std::size_t Below(std::size_t n) { return n == 0 ? 0 : random_() % n; }

private:
    void Change(std::string& file) {
        const std::size_t place = Below(file.size());
        switch (Below(9)) {
            case 0:
                file.resize(place);
                break;
            case 1:
                Put(file, place, HandBytes().Whole(random_(), 1));
                break;
            case 2:
                if (!file.empty()) file[place] = static_cast<char>(file[place] ^ (1 << Below(8)));
                break;
            case 3:
                Put(file, place, HandBytes().I32(OddNumber(file)));
                break;
            case 4:
                Put(file, place, HandBytes().I16(static_cast<int>(OddNumber(file))));
                break;
            case 5:
                file.erase(place, 1 + Below(20));
                break;
            case 6:
                file.insert(place, std::string(1 + Below(20), static_cast<char>(random_())));
                break;
            case 7: {  // the end of another file
                const std::string& other = corpus_[Below(corpus_.size())];
                file = file.substr(0, place) + other.substr(Below(other.size()));
                break;
            }
            default:  // a piece of the file once more
                file.insert(place, file.substr(Below(file.size()), Below(60)));
                break;
        }
    }
    static void Put(std::string& file, std::size_t place, const HandBytes& bytes) {
        file.replace(std::min(place, file.size()), bytes.Text.size(), bytes.Text);
    }
    std::int64_t OddNumber(const std::string& file) {
        const std::int64_t numbers[] = {-1,         0,
                                        1,          7,
                                        8,          50,
                                        51,         255,
                                        32767,      65535,
                                        2147483647, -2147483648LL,
                                        -32768,     static_cast<std::int64_t>(file.size()),
                                        5,          static_cast<std::int64_t>(random_())};
        return numbers[Below(std::size(numbers))];
    }

    std::mt19937 random_;
    std::vector<std::string> corpus_;
};

// Is the place that an error names inside the file?
bool NamesAPlace(const std::string& error, const std::string& path, std::size_t size) {
    const std::string before = "\"" + path + "\", byte ";
    return error.starts_with(before) && std::stoul(error.substr(before.size())) <= size;
}

}  // namespace

class JobFileFuzz : public Program {
protected:
    void Try(const std::string& file) {
        const MemoryUse memory;
        try {
            const JobFileContent content = ReadJobBytes(file, "a.cvn");
            ++Opened;
            ASSERT_LT(memory.Peak(), 12 * file.size() + 100000);
            ASSERT_EQ(JobFault(LengthsOf(content.Job)), "");
            const std::string saved = JobBytes(content.Job, content.ViewNames);
            const JobFileContent again = ReadJobBytes(saved, "b.cvn");
            ASSERT_TRUE(JobBytes(again.Job, again.ViewNames) == saved);
        } catch (const PlatformError& error) {
            ASSERT_TRUE(NamesAPlace(error.What, "a.cvn", file.size())) << error.What;
            ASSERT_LT(memory.Peak(), 12 * file.size() + 100000);
        }
    }

    // The same by the program's own way.
    void TryOpening(const std::string& file) {
        const std::string path = Write("a.cvn", file);
        Headless.Dialogs.clear();
        Headless.OnQuestion = [](const DialogShown&) { return "Yes"; };
        Job = JobRecord{};
        Job.Start.Add("before", {}, {}, 0);
        const bool opened = Dispatch([&] { OpenFile(path); });
        ASSERT_EQ(Run.JobDataValid, opened ? kTrue : kFalse);
        ASSERT_EQ(Run.WaitPointers, 0);
        if (!opened) {
            ASSERT_EQ(Job.Start.Name, (std::vector<std::string>{"", "before"}));
            ASSERT_TRUE(NamesAPlace(LastMessage(), path, file.size())) << LastMessage();
        } else {
            ASSERT_EQ(Main.ComboSaveView.Items.size(), static_cast<std::size_t>(Job.nSavedViews));
        }
        ASSERT_TRUE(Contents(path) == file);
    }

    int Opened = 0;
};

TEST_F(JobFileFuzz, AnyFileIsReadOrRefused) {
    const std::string input = Environment("CORVINADE_FUZZ_INPUT", "");
    const double seconds = std::stod(Environment("CORVINADE_FUZZ_SECONDS", "0"));
    const auto seed = static_cast<unsigned>(std::stoul(Environment("CORVINADE_FUZZ_SEED", "1")));
    constexpr int kRounds = 12000;
    Mutator mutator(seed);
    const auto begin = Clock::now();
    int round = 0;
    for (; seconds > 0 ? SecondsSince(begin) < seconds : round < kRounds; ++round) {
        const std::string file = mutator.Next();
        if (!input.empty()) std::ofstream(input, std::ios::binary) << file;
        ASSERT_NO_FATAL_FAILURE(Try(file)) << "round " << round << " of seed " << seed;
        if (round % 20 == 0) {
            ASSERT_NO_FATAL_FAILURE(TryOpening(file)) << "round " << round;
        }
    }
    if (seconds > 0) std::cout << round << " inputs, " << Opened << " of them opened\n";
    EXPECT_GT(Opened, round / 100);
    EXPECT_LT(Opened, round);
}

TEST_F(JobFileFuzz, RandomBytesAreReadOrRefused) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        std::string file;
        // Half of them begin like a file of the present version.
        if (round % 2 == 0) file = HandBytes().Long("2.0.64").I32(static_cast<int>(random() % 3)).Text;
        for (std::size_t n = random() % 400; n > 0; --n)
            file += random() % 3 == 0 ? static_cast<char>(random()) : '\0';
        ASSERT_NO_FATAL_FAILURE(Try(file)) << round;
    }
}
