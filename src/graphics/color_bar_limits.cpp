// The limits of the colour scale: from fields, from points, and back into the fields.
#include "graphics/color_bar_limits.h"

#include <algorithm>

#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/units.h"
#include "graphics/form_color_bar.h"
#include "graphics/point_trust.h"
#include "graphics/tolerance.h"

namespace corvinade::graphics {

namespace {

// Up to six decimals, at least two.
std::string LimitText(double value) {
    std::string text = FormatNumber(value, "0.000000");
    const std::size_t separator = text.find(SystemDecimal());
    if (separator == std::string::npos) return text;
    std::size_t end = text.size();
    while (end > separator + 3 && text[end - 1] == '0') --end;
    return text.substr(0, end);
}

double LimitOf(const std::string& text, const std::string& shown, double stored) {
    return text == shown ? stored : ColorBar_NumberOf(text) / ColorBarWindow.LengthFactor;
}

// Needs a limit on each side of zero.
bool IsTwoSided(const ScreenRecord& state) {
    return IsSigned(state) && HasDesktopLimits(state);
}

// Writes the largest or the smallest size to the field of a limit.
void SetLimitFromSizes(Control& text, double SizeRange::*size) {
    ScreenWindow* window = findLFDFORM();
    if (window == nullptr) return;
    const SizeRange range = ShownSizes(*window);
    if (!range.Any) return;
    const bool upper = size == &SizeRange::Largest;
    if (IsTwoSided(window->State) && (upper ? range.Largest <= 0 : range.Smallest >= 0)) {
        ColorBarWindow.LabelLimits.Text =
            upper ? "Not taken: no point in use is above 0" : "Not taken: no point in use is below 0";
        return;
    }
    const double shown = TwoDecimalsDown(range.*size * ColorBarWindow.LengthFactor);
    // What two decimals would turn to 0 keeps all that the field shows.
    const bool vanishes = IsTwoSided(window->State) && shown == 0;
    SetText(text,
            vanishes ? LimitText(range.*size * ColorBarWindow.LengthFactor) : FormatNumber(shown, "0.00"));
}

void TellLimits(const ScreenRecord& state) {
    FormColorBar& d = ColorBarWindow;
    const bool alike = IsTwoSided(state) && state.Max == -state.Min;
    d.LabelLimits.Text = !d.LimitRefused.empty() ? d.LimitRefused
                         : alike                 ? "Alike on both sides: the component has a sign"
                                                 : "";
}

}  // namespace

double ColorBar_NumberOf(std::string text) {
    std::replace(text.begin(), text.end(), SystemDecimal(), '.');
    return Val(text);
}

bool ColorBar_TakeLimits(ScreenRecord& state) {
    FormColorBar& d = ColorBarWindow;
    const double upper = LimitOf(d.TextObereGrenze.Text, d.UpperShown, state.Max);
    const double lower = LimitOf(d.TextUntereGrenze.Text, d.LowerShown, state.Min);
    const bool typed = d.TextObereGrenze.Text != d.UpperShown || d.TextUntereGrenze.Text != d.LowerShown;
    const bool upperGood = !IsTwoSided(state) || upper > 0, lowerGood = !IsTwoSided(state) || lower < 0;
    if (upperGood) state.Max = upper;
    if (lowerGood) state.Min = lower;
    d.LimitRefused = !lowerGood   ? "Not taken: the lower limit of a component with sign is below 0"
                     : !upperGood ? "Not taken: the upper limit of a component with sign is above 0"
                                  : "";
    // From now on these texts stand for what has just been read, also while one of them is being typed.
    if (upperGood) d.UpperShown = d.TextObereGrenze.Text;
    if (lowerGood) d.LowerShown = d.TextUntereGrenze.Text;
    return typed;
}

void ColorBar_SetUpperLimit() {
    SetLimitFromSizes(ColorBarWindow.TextObereGrenze, &SizeRange::Largest);
}
void ColorBar_SetLowerLimit() {
    SetLimitFromSizes(ColorBarWindow.TextUntereGrenze, &SizeRange::Smallest);
}

void ColorBar_ShowLimits(const ScreenWindow& window) {
    if (!IsLoaded("FormColorBar") || &window != Screens().Active) return;
    TellLimits(window.State);
    if (ColorBarWindow.Typing) return;
    FormColorBar& d = ColorBarWindow;
    d.LengthFactor = LimitFactor(window.State);
    const bool test = window.State.ColorBased == kByStandardized;
    d.LabelUnit1.Text = d.LabelUnit2.Text = test ? "" : Job.LengthUnitName;
    d.UpperShown = d.TextObereGrenze.Text = LimitText(window.State.Max * d.LengthFactor);
    d.LowerShown = d.TextUntereGrenze.Text = LimitText(window.State.Min * d.LengthFactor);
}

}  // namespace corvinade::graphics
