// The defaults of the desktop.
#include "core/desktop_defaults.h"

#include "core/settings.h"

namespace corvinade::core {

namespace {

using Record = DesktopDefaultsRecord;

constexpr DesktopDefault kDefaults[] = {
    {"ColorLimits", &Record::ColorLimits},   {"NeutralColor", &Record::NeutralColor},
    {"ColorBar", &Record::ColorBar},         {"Fit", &Record::Fit},
    {"ResultState", &Record::ResultState},   {"ResultFields", &Record::ResultFields},
    {"AfterImport", &Record::AfterImport},   {"FailedImport", &Record::FailedImport},
    {"RecentJobs", &Record::RecentJobs},     {"PointTable", &Record::PointTable},
    {"GridNumbers", &Record::GridNumbers},   {"FlagLetters", &Record::FlagLetters},
    {"PointsFollow", &Record::PointsFollow}, {"SheetDeviation", &Record::SheetDeviation},
    {"StartPage", &Record::StartPage},       {"TypedFiles", &Record::TypedFiles},
    {"AxisColors", &Record::AxisColors},
};

}  // namespace

std::span<const DesktopDefault> AllDesktopDefaults() {
    return kDefaults;
}

void WantDesktopDefaults() {
    DesktopDefaults.Wanted = true;
}

void TakeDesktopDefaults() {
    for (const DesktopDefault& row : kDefaults)
        DesktopDefaults.*row.Place = DesktopDefaults.Wanted && FindIniWert(row.Key) != kAsBefore;
}

}  // namespace corvinade::core
