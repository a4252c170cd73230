// `corvinade-cli render`: a picture of a job.
#include "cli/render.h"

#include <cstdio>
#include <ostream>

#include "cli/automate_screens.h"
#include "cli/fit_options.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/written_json.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"

namespace corvinade::cli {

namespace {

bool IsSvg(const std::string& path) {
    return UpperAscii(path).ends_with(".SVG");
}

std::string UnknownView(const std::string& name, const std::vector<std::string>& views) {
    std::string text = "the job has no view \"" + Printable(name) + "\"; there are iso, top, side, front";
    constexpr std::size_t kMostNames = 12;
    for (std::size_t i = 0; i < views.size() && i < kMostNames; ++i) text += ", " + Printable(views[i]);
    return views.size() > kMostNames ? text + " and more" : text;
}

}  // namespace

std::string SizeFromText(const std::string& text, int& width, int& height) {
    char behind = 0;
    if (std::sscanf(text.c_str(), "%9dx%9d%c", &width, &height, &behind) != 2)
        return "\"" + Printable(text) + "\" is no size; it is written as 800x600";
    return CheckScreenSize(width, height);
}

std::string BackgroundFromText(const std::string& text, Colour& colour) {
    if (text == "white" || text == "black") {
        colour = QbColor(text == "white" ? 15 : 0);
        return "";
    }
    unsigned int rgb = 0;
    const bool digits =
        text.size() == 6 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!digits || std::sscanf(text.c_str(), "%6x", &rgb) != 1)
        return "\"" + Printable(text) + "\" is neither white nor black nor six digits as ffee00";
    colour = static_cast<Colour>((rgb & 0xffU) << 16U | (rgb & 0xff00U) | rgb >> 16U);
    return "";
}

std::string LimitsFromText(const std::string& text, std::pair<double, double>& limits) {
    const std::string wrong = "\"" + Printable(text) + "\" are no limits; they are written as -0.2,0.5";
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos || !TextToNumber(text.substr(0, comma), '.', limits.first) ||
        !TextToNumber(text.substr(comma + 1), '.', limits.second))
        return wrong;
    return limits.first < limits.second ? "" : "the first of the limits " + text + " must be the lower one";
}

std::string CheckPictureFile(const std::string& path) {
    if (IsSvg(path) || UpperAscii(path).ends_with(".PNG")) return "";
    return "\"" + Printable(path) + "\" ends neither in .png nor in .svg";
}

int RunRender(const RenderOptions& options, std::ostream& out, std::ostream& err) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    // A picture shall be the same on every machine, so nobody's settings are read for it.
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    ShowWindow("FormMain");
    JobFileFacts facts;
    const int status = OpenJob(options.Job, options.Questions, facts, err);
    if (status != kDone) return status;
    PictureWish wish = options.Wish;
    if (!IsFixedView(wish.View) && SavedViewNumber(facts.Views, wish.View) == 0)
        return Refuse(err, kWrongUsage, UnknownView(wish.View, facts.Views));
    NoteResultOfJob(options.Job);
    if (Job.Start.Count() + Job.Target.Count() == 0)
        return Refuse(err, kRefused, "the job has no points to draw");
    if (Job.Pairs() == 0) err << "the job has no identical points: there are no deviations to see\n";
    if (options.Limits)
        wish.Limits_mm = {options.Limits->first / Units.LengthFactor,
                          options.Limits->second / Units.LengthFactor};
    PictureFacts shown;
    if (EndsForWarnings(options.Strict, err)) return kUnreadable;
    const bool written = Dispatch([&] {
        WriteFile(options.Out, JobPicture(wish, IsSvg(options.Out) ? PictureForm::Svg : PictureForm::Png,
                                          facts.Views, shown));
    });
    Headless.Dialogs.clear();
    if (written && shown.FlagsLeftOut > 0)
        err << "no room for " << shown.FlagsLeftOut << " of the flags; a larger picture has more\n";
    if (!written) return Refuse(err, kRefused, Run.LastPlatformError);
    return options.Json ? TellWritten("render", options.Job, {options.Out}, out, err) : kDone;
}

}  // namespace corvinade::cli
