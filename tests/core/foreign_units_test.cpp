// Unit names that are none of the program's: numbers in another unit would stand beside them.
#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

using ForeignUnits = Program;

namespace {

std::string FileWith(const std::string& length, const std::string& angle) {
    HandJob hand = HandExample();
    hand.LengthUnit = length;
    hand.AngleUnit = angle;
    return HandFile(hand);
}

std::size_t PlaceOf(const std::string& file, const std::string& text) {
    return file.find(HandBytes().Long(text).Text);
}

}  // namespace

TEST_F(ForeignUnits, OfAJobAreRefusedWithFileUnitAndPlace) {
    const std::string length = FileWith("furlong", "degree");
    EXPECT_EQ(ErrorOf([&] { ReadJobBytes(length, "a.cvn"); }),
              "\"a.cvn\", byte " + std::to_string(PlaceOf(length, "furlong")) +
                  ": LengthUnitName: the unit \"furlong\" is none of millimeter, meter, inch, feet");
    const std::string angle = FileWith("meter", "<img src='/dev/zero'>");
    EXPECT_EQ(ErrorOf([&] { ReadJobBytes(angle, "a.cvn"); }),
              "\"a.cvn\", byte " + std::to_string(PlaceOf(angle, "<img src='/dev/zero'>")) +
                  ": AngleUnitName: the unit \"<img src='/dev/zero'>\" is none of degree, grad (gon), rad, "
                  "mrad, arcsecond, arcminute, 360°60'60''");
}

TEST_F(ForeignUnits, OfAJobLeaveTheProgramWithoutOne) {
    const std::string path = Write("a.cvn", FileWith("Meter", "degree"));
    Run.JobFilePath = path;
    EXPECT_NE(ErrorOf([&] { OpenFile(path); }), "");
    EXPECT_EQ(Run.JobFilePath, kDefaultJobPath);
    EXPECT_FALSE(IsTrue(Run.JobDataValid));
    EXPECT_EQ(Job.LengthUnitName, "millimeter");
}

TEST_F(ForeignUnits, EachOfTheProgramsOwnAndNoneAreRead) {
    for (const UnitRow& unit : LengthUnits())
        EXPECT_EQ(ReadJobBytes(FileWith(unit.Name, ""), "a.cvn").Job.LengthUnitName, unit.Name);
    EXPECT_EQ(ReadJobBytes(FileWith("", "mrad"), "a.cvn").Job.LengthUnitName, "");
}

TEST_F(ForeignUnits, OfTheSettingsAreToldAndThoseOfANewJobStandInTheirPlace) {
    const std::string path = Write("Corvinade/Corvinade.ini",
                                   "[Units]\r\nUnitLength=furlong\r\nUnitAngle=mrad\r\nDigitLength=1\r\n");
    Headless.SettingsDir = folder_;
    StartUp("");
    EXPECT_EQ(LastMessage(),
              "\"" + path + "\": the unit \"furlong\" is none of millimeter, meter, inch, feet");
    EXPECT_EQ(Job.LengthUnitName, "millimeter");
    EXPECT_EQ(Job.AngleUnitName, "mrad");
}
