// The options of `corvinade-cli render`.
#include "cli/render_arguments.h"

#include "cli/arguments.h"
#include "core/numbers.h"
#include "core/text.h"

namespace corvinade::cli {

namespace {

CLI::Validator Factor(double least, double most) {
    return CLI::Validator(
        [least, most](const std::string& text) {
            double factor = 0;
            const bool good = TextToNumber(text, '.', factor) && factor >= least && factor <= most;
            return good ? ""
                        : "\"" + Printable(text) + "\" is no factor from " + PlainText(least) + " to " +
                              PlainText(most);
        },
        "");
}

}  // namespace

CLI::App* AddRender(CLI::App& app, RenderSwitches& s) {
    PictureWish& wish = s.Options.Wish;
    CLI::App* render = app.add_subcommand("render", "Draw the points of a job and their deviations");
    render->add_option("JOB", s.Options.Job, "Job file of any version")->type_name("FILE.cvn")->required();
    render->add_option("--out", s.Options.Out, "File to write, its kind by its extension: .png or .svg")
        ->type_name("FILE")
        ->check(CheckPictureFile)
        ->required();
    render->add_option("--view", wish.View, "iso, top, side, front, or the name of a saved view of the job")
        ->type_name("NAME")
        ->capture_default_str();
    render->add_option("--size", s.Size, "Size of the picture, pixels")
        ->check(Written(SizeFromText))
        ->type_name("WxH")
        ->capture_default_str();
    render->add_option("--zoom", wish.Zoom, "Against the view in which all points fit, or the saved one")
        ->check(Factor(1e-3, 1e3))
        ->type_name("FACTOR")
        ->capture_default_str();
    s.VectorsOption = render
                          ->add_option("--vectors", s.Vectors,
                                       "Also the deviations as lines, SCALE times as long as in the scene;\n"
                                       "without SCALE so long that they can be seen")
                          ->expected(0, 1)
                          ->check(Factor(1e-6, 1e9))
                          ->type_name("[SCALE]");
    render->add_flag("--color-bar", wish.ColorBar, "Also the colour bar");
    render->add_option("--classes", wish.Classes, "Tolerance classes on each side of 0")
        ->check(Between(1, 100))
        ->type_name("N");
    render
        ->add_option("--limits", s.Limits,
                     "Limits of the colours in the job's unit, as in --limits=-0.2,0.5;\n"
                     "default: the largest deviation in use, both sides of 0")
        ->check(Written(LimitsFromText))
        ->type_name("MIN,MAX");
    render->add_flag("--names", wish.Names, "Also the names of the points");
    auto* flags = render->add_flag("--flags", wish.Flags,
                                   "Also flags: those of a saved view that has any, else on the\n"
                                   "points that deviate most");
    render->add_option("--flag-count", wish.FlagCount, "Of the latter, at most")
        ->check(Between(1, 1000))
        ->type_name("N")
        ->needs(flags)
        ->capture_default_str();
    render->add_flag("--labels", wish.AxisLabels, "Also the names of the axes");
    render->add_flag("--targets", wish.Targets, "Also the targets of the identical points");
    render->add_option("--point-size", wish.PointSize, "Pixels; default: after the number of points")
        ->check(Between(1, 100))
        ->type_name("N");
    render->add_option("--background", s.Background, "white, black, or red, green and blue as ffee00")
        ->check(Written(BackgroundFromText))
        ->type_name("COLOUR")
        ->capture_default_str();
    render->add_flag("--json", s.Options.Json, "Tell as JSON what was written and noticed");
    auto* yes = render->add_flag("--yes,-y", s.Yes,
                                 "A file without the head of a job file is one of an early version");
    render->add_flag("--no,-n", s.No, "It is none")->excludes(yes);
    AddStrict(*render, s.Options.Strict, "Options");
    AddDecimal(*render, s.Decimal, "Options");
    return render;
}

void TakeRenderSwitches(RenderSwitches& s) {
    RenderOptions& options = s.Options;
    PictureWish& wish = options.Wish;
    SizeFromText(s.Size, wish.Width, wish.Height);
    BackgroundFromText(s.Background, wish.Background.emplace());
    wish.Vectors = s.VectorsOption->count() > 0;
    if (!s.Vectors.empty()) wish.Magnification = Val(s.Vectors);
    if (!s.Limits.empty()) LimitsFromText(s.Limits, options.Limits.emplace());
    options.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) options.Questions = s.Yes;
}

}  // namespace corvinade::cli
