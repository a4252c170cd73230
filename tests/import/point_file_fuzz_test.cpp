// Whatever a point file holds: the import ends, with a message or with points, and the job's counts fit.
#include <algorithm>
#include <random>

#include "cli/headless.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "import/matching.h"
#include "import/point_file.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class PointFileFuzz : public Program {
protected:
    PointFileFuzz() { ExpectUnanswered(); }

    void Import(const std::string& start, const std::string& target) {
        Job.PathMCS = Write("start.txt", start);
        Job.PathOCS = Write("target.txt", target);
        ::Run.ImportFailed = kFalse;
        Headless.Dialogs.clear();
        const bool yes = random_() % 2 == 0;
        Headless.OnQuestion = [yes](const DialogShown&) {
            return std::optional<std::string>(yes ? "Yes" : "No");
        };
        bool failed = false;
        try {
            Einlesen_Neu();
            failed = IsTrue(::Run.ImportFailed);
            if (!failed) {
                ASSERT_TRUE(JobIsWhole(Job));
                MCS_OCS_aufbereiten();
                failed = IsTrue(::Run.ImportFailed);
            }
            if (!failed) {
                GetInfoFromData();
                IdentischePkte_Neu();
                for (std::size_t i = 1; i <= static_cast<std::size_t>(Job.Pairs()); ++i)
                    ASSERT_EQ(Job.Start.Name[i], Job.Target.Name[i]);
            }
        } catch (const PlatformError& error) {
            EXPECT_FALSE(error.What.empty());
        }
        EXPECT_TRUE(!failed || !Messages().empty());
        ASSERT_TRUE(JobIsWhole(Job));
    }
    std::string Good(const std::string& delimiter, int rows) {
        std::string text;
        for (int i = 0; i < rows; ++i) {
            text += (i % 7 == 3 ? "Pü" : "P") + std::to_string(random_() % 100);
            for (int c = 0; c < 3; ++c) text += delimiter + std::to_string(random_() % 10000) + ".5";
            text += random_() % 9 == 0 ? "\n" : "\r\n";
        }
        return text;
    }
    std::string Random(std::size_t size, const std::string& letters) {
        std::string text(size, '\0');
        for (char& c : text)
            c = letters.empty() ? static_cast<char>(random_()) : letters[random_() % letters.size()];
        return text;
    }
    std::mt19937 random_{20240229};
};

TEST_F(PointFileFuzz, RandomBytesEndInAMessageOrInPoints) {
    const std::string likely = "0123456789.,;;;;\t\r\n\r\n- eEPX#:*\xC3\xBC\xFF\xEF\xBB\xBF";
    for (int round = 0; round < 250; ++round)
        Import(Random(random_() % 300, round % 3 == 0 ? "" : likely), Random(random_() % 300, likely));
}

TEST_F(PointFileFuzz, MutatedFilesEndInAMessageOrInPoints) {
    const std::string delimiters = ";:*#\t, ";
    for (int round = 0; round < 400; ++round) {
        const std::string delimiter(1, delimiters[random_() % delimiters.size()]);
        std::string start = Good(delimiter, 20);
        for (unsigned change = random_() % 6; change > 0 && !start.empty(); --change) {
            const std::size_t place = random_() % start.size();
            switch (random_() % 5) {
                case 0:
                    start[place] = static_cast<char>(random_());
                    break;
                case 1:
                    start.erase(place, random_() % 20);
                    break;
                case 2:
                    start.insert(place, start.substr(random_() % start.size(), 15));
                    break;
                case 3:
                    start.resize(place);
                    break;
                default:
                    std::replace(start.begin(), start.end(), '.', ',');
                    break;
            }
        }
        Import(start, round % 2 == 0 ? start : Good(delimiter, 10));
    }
}

TEST_F(PointFileFuzz, OddFilesEndInAMessageOrInPoints) {
    const std::string good = "A;1;2;3\r\n";
    const std::vector<std::string> odd = {
        "",
        "\n",
        "\r",
        ";",
        "A;1;2;3",
        std::string(1000, '\0'),
        std::string("A;1;\0;3\r\n", 9),
        std::string(200, '\n') + good,
        "\xFF\xFE" + std::string("A\0;\0"
                                 "1\0;\0"
                                 "2\0;\0"
                                 "3\0\r\0\n\0",
                                 18),
        "\xEF\xBB\xBF",
        std::string(5000, ';'),
        std::string(20000, ';') + "\r\n" + good,
    };
    for (const std::string& text : odd) {
        Import(text, good);
        Import(good, text);
        Import(text, text);
    }
}

TEST_F(PointFileFuzz, LinesOfTenMegabytesEndInAMessageOrInPoints) {
    const std::string digits(10'000'000, '7'), good = "A;1;2;3\r\n";
    Import(good + digits, good);
    Import("A;" + digits + ";2;3\r\n", good);
    Import(digits + ";1;2;3\r\n" + good, good);
    Import("A;1;" + std::string(10'000'000, ' ') + "2;3\r\n", good);
    EXPECT_EQ(Job.Start.Y[1], 2);
    Import("A;0." + std::string(10'000'000, '1') + ";2;3\r\n", good);
    EXPECT_NEAR(*Job.Start.X[1], 1 / 9.0, 1e-15);
    Import(std::string(10'000'000, ';'), good);
}

}  // namespace
