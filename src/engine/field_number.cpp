// Numbers that the user types into the fields of the calculation window.
#include "engine/field_number.h"

#include "core/job.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"

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
