// Numbers that the user types into the fields of the calculation window.
#include "engine/field_number.h"

#include <algorithm>

#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/selection.h"

namespace corvinade::engine {

namespace {

bool IsNumber(const std::string& text) {
    double value = 0;
    return TextToNumber(text, value) || TextToNumber(text, '.', value) || TextToNumber(text, ',', value);
}

}  // namespace

double FieldNumber(const std::string& text) {
    double value = 0;
    if (TextToNumber(text, value)) return value;
    // A job brings texts that were typed on systems with the other delimiter.
    for (const char decimal : {'.', ','})
        if (TextToNumber(text, decimal, value)) return value;
    return Val(text);
}

double FieldAngle(const std::string& text) {
    if (!IsItGradMinSek(text)) return FieldNumber(text);
    std::string rest = text;
    for (int field = 1; field <= 3; ++field) {
        double value = 0;
        const std::string part = Zerpflück(rest, ' ');
        if (!part.empty() && !TextToNumber(part, value)) return 0;
    }
    return GradMinSekToZahl(text);
}

bool IsHeldValue(const std::string& text) {
    return text != kFloat && text != kNotUsed;
}

double ParameterFromText(int parameter, const std::string& text) {
    const bool length = parameter >= kTraX && parameter <= kTraZ;
    const bool angle =
        (parameter >= kRotX && parameter <= kRotZ) || (parameter >= kAngleXY && parameter <= kAngleZtoXY);
    if (length) return FieldNumber(text) / Units.LengthFactor;
    if (angle) return FieldNumber(SaveWinkelZurück(text)) / Units.AngleFactor;
    return FieldNumber(text);
}

bool IsParameterNumber(int parameter, const std::string& text) {
    if (text.empty()) return true;
    const bool angle =
        (parameter >= kRotX && parameter <= kRotZ) || (parameter >= kAngleXY && parameter <= kAngleZtoXY);
    try {
        return IsNumber(angle ? SaveWinkelZurück(text) : text);
    } catch (const PlatformError&) {
        return false;
    }
}

int FirstHeldText() {
    for (int k = kTraX; k < kParameterEnd; ++k) {
        const std::string& text = Job.ParamText[static_cast<std::size_t>(k)];
        if (IsHeldValue(text) && !IsParameterNumber(k, text)) return k;
    }
    return 0;
}

void NoteHeldTexts() {
    const auto look = [](int k, const char* use, const std::string& text) {
        if (IsParameterNumber(k, text)) return;
        const std::string note = std::string(ParameterName(k)) + use + Printable(text) +
                                 "\", which is no number and counts as " + PlainText(FieldNumber(text));
        // A shape calculates again and again, which is one calculation.
        const bool told = std::any_of(Notes.List.begin(), Notes.List.end(),
                                      [&note](const Note& each) { return each.Text == note; });
        if (!told) AddNote(NoteCode::HeldText, note);
    };
    for (int k = kTraX; k < kParameterEnd; ++k) {
        const auto at = static_cast<std::size_t>(k);
        if (IsHeldValue(Job.ParamText[at])) look(k, " is held at \"", Job.ParamText[at]);
        const bool starts =
            Selection.DialogOpen && k <= kAngleZtoXY && Selection.Float[at] && Selection.Seed[at];
        if (starts && Selection.SeedText[at] != kFloat) look(k, " starts from \"", Selection.SeedText[at]);
    }
}

}  // namespace corvinade::engine
