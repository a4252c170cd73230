// The trumpet plot as a PNG file.
#include <QImage>
#include <regex>

#include "analysis/distance_job.h"
#include "cli/command_line.h"
#include "core/files.h"
#include "core/job_file.h"

using namespace corvinade;

using TrumpetPng = DistanceJob;

TEST_F(TrumpetPng, HasItsPointsWhereTheSvgHasThem) {
    Triangle();
    Job.LengthUnitName = "millimeter";
    Job.AngleUnitName = "degree";
    const std::string job = PathOf("cell.cvn");
    WriteFile(job, JobBytes(Job, {}));
    EXPECT_EQ(FreshCommandLine({"distances", job, "--trumpet", PathOf("cell.svg")}).Status, 0);
    const Outcome outcome = FreshCommandLine({"distances", job, "--trumpet", PathOf("cell.PNG")});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    QImage png;
    ASSERT_TRUE(png.load(QString::fromStdString(PathOf("cell.PNG")), "PNG"));
    EXPECT_EQ(png.size(), QSize(2200, 1400));
    EXPECT_TRUE(png.text(QStringLiteral("Title")).startsWith(QStringLiteral("Differences of 3 distances")));
    const std::string svg = Contents(PathOf("cell.svg"));
    const std::regex circle("<circle class=\"point\" cx=\"([0-9.]+)\" cy=\"([0-9.]+)\"");
    int found = 0;
    for (std::sregex_iterator it(svg.begin(), svg.end(), circle), end; it != end; ++it, ++found) {
        const auto at = [](const std::string& text) { return static_cast<int>(2 * std::stod(text)); };
        EXPECT_EQ(png.pixel(at((*it)[1]), at((*it)[2])), qRgb(0x28, 0x70, 0xbb));
    }
    EXPECT_EQ(found, 3);
    EXPECT_EQ(png.pixel(2195, 5), qRgb(255, 255, 255));
}
