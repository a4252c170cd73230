// The texts of the export files.
#include "analysis/exports.h"

#include <array>
#include <charconv>
#include <cmath>

#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/result_notes.h"
#include "engine/sound_angles.h"
#include "engine/transform.h"
#include "fit/matrix.h"

namespace corvinade::analysis {

namespace {

// What stands behind the frame. The blanks belong to the format, and so does it that the second palette is
// not quite the first.
constexpr std::array kPalettes = {"ATT / _PALETTE_LENGTH , 0;    ",
                                  "ATT / _PALETTE_LENGTH , 0;    ",
                                  "ATT / _PALETTE_AMBIENT , 0.0;    ",
                                  "ATT / _PALETTE_DIFFUSE , 0.0;    ",
                                  "ATT / _PALETTE_SPECULAR , 0.0;  ",
                                  "ATT / _PALETTE_EMISSION , 0.0;   ",
                                  "ATT / _PALETTE_SHININESS , 0.0;   ",
                                  "ATT / _PALETTE_TEXTURE_HEIGHT , 0;    ",
                                  "ATT / _PALETTE_TEXTURE_WIDTH , 0;    ",
                                  "ATT / _PALETTE_S_PLANE , 0.0;    ",
                                  "ATT / _PALETTE_T_PLANE , 0.0;    ",
                                  "ATT / _PALETTE_LENGTH , 0;    ",
                                  "ATT / _PALETTE_MATERIAL_IN_USE , 0;    ",
                                  "ATT / _PALETTE_AMBIENT , 0.0;    ",
                                  "ATT / _PALETTE_DIFFUSE , 0.0;    ",
                                  "ATT / _PALETTE_SPECULAR , 0.0;    ",
                                  "ATT / _PALETTE_EMISSION , 0.0;    ",
                                  "ATT / _PALETTE_SHININESS , 0.0;    ",
                                  "ATT / _PALETTE_TEXTURE_HEIGHT , 0;    ",
                                  "ATT / _PALETTE_TEXTURE_WIDTH , 0;    ",
                                  "ATT / _PALETTE_S_PLANE , 0.0;    ",
                                  "ATT / _PALETTE_T_PLANE , 0.0;    ",
                                  "END;        "};

// What a result has beside rotation and translation, with its values; "" for a rigid one. Scales that are off
// from 1 by rounding alone move nothing.
std::string ScalesAndShears() {
    constexpr double kRounding = 1e-12;
    const auto other = [](double scale) { return !(std::fabs(scale - 1) <= kRounding); };
    std::string text;
    const auto add = [&text](int parameter, double value, const std::string& unit) {
        text += (text.empty() ? "" : ", ") + std::string(ParameterName(parameter)) + " " + PlainText(value) +
                unit;
    };
    if (other(Job.ScaleX) && Job.ScaleX == Job.ScaleY && Job.ScaleX == Job.ScaleZ) {
        add(kScaleXYZ, Job.ScaleX, "");
    } else {
        if (other(Job.ScaleX)) add(kScaleX, Job.ScaleX, "");
        if (other(Job.ScaleY)) add(kScaleY, Job.ScaleY, "");
        if (other(Job.ScaleZ)) add(kScaleZ, Job.ScaleZ, "");
    }
    const std::string unit = " " + Printable(Job.AngleUnitName);
    if (std::fabs(Job.AngleXY) > kRounding) add(kAngleXY, Job.AngleXY * Units.AngleFactor, unit);
    if (std::fabs(Job.AngleZtoXY) > kRounding) {
        add(kAzimuth, Job.Azimuth * Units.AngleFactor, unit);
        add(kAngleZtoXY, Job.AngleZtoXY * Units.AngleFactor, unit);
    }
    return text;
}

// The numbers of a frame, and what five digits lose of them.
class FrameNumbers {
public:
    std::string Length(const char* name, double value_mm) {
        return Text(name, value_mm * Units.LengthFactor, Units.LengthFactor, kLeast_mm, 1, " mm");
    }
    std::string Angle(const char* name, double value_rad) {
        return Text(name, value_rad * Units.AngleFactor, Units.AngleFactor, kLeast_rad, 1000, " mrad");
    }
    void Note() const {
        if (!lost_.empty())
            AddNote(NoteCode::DigitsCut, "The frame file has five digits for a number: " + lost_);
    }

private:
    // Less than that is as good as nothing for a robot.
    static constexpr double kLeast_mm = 0.0005, kLeast_rad = 1e-6;

    std::string Text(const char* name, double value, double factor, double least, double shown,
                     const char* unit) {
        std::string text = ScientificText(value);
        double written = value;
        TextToNumber(text, written);
        const double lost = std::fabs(written - value) / factor;
        if (lost > least)
            lost_ += (lost_.empty() ? "" : ", ") + std::string(name) + " " + PlainText(value) +
                     " is written as " + text + ", which is off by " + FormatNumber(lost * shown, "0.000") +
                     unit;
        return text;
    }
    std::string lost_;
};

// The frame and the matrix hold a movement. What else the result is made of is missing in them.
void NoteScalesLeftOut(const char* format) {
    const std::string text = ScalesAndShears();
    if (!text.empty())
        AddNote(NoteCode::ScaleLeftOut, std::string("The ") + format +
                                            " has no place for scales and shears and is written without " +
                                            text + "; it is not the whole result");
}

}  // namespace

std::string ScientificText(double value) {
    if (!std::isfinite(value)) return PlainText(value);
    // Its 15 digits d.dddd...e+xx first, then by hand to five.
    std::array<char, 40> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                      std::chars_format::scientific, 14);
    const std::string_view text(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
    std::uint64_t digits = 0;  // the first five and one more, which decides
    for (const char c : text.substr(0, 7))
        if (c != '.') digits = digits * 10 + static_cast<unsigned>(c - '0');
    digits = (digits + 5) / 10;
    int exponent = 0;
    std::string_view power = text.substr(text.find('e') + 1);
    if (power.front() == '+') power.remove_prefix(1);
    std::from_chars(power.data(), power.data() + power.size(), exponent);
    if (digits == 100000) {
        digits = 10000;
        ++exponent;
    }
    const std::string five = std::to_string(digits + 100000).substr(1);
    const std::string size = std::to_string(std::abs(exponent));
    return (value < 0 ? "-" : "") + five.substr(0, 1) + WrittenDecimal() + five.substr(1) + "E" +
           (exponent < 0 ? "-" : "+") + (size.size() < 2 ? "0" : "") + size;
}

std::string FormatText(const std::string& text, std::string_view picture) {
    double value = 0;
    return TextToNumber(text, value) ? FormatNumber(value, picture) : text;
}

std::string RobCadText(const std::string& place, const std::string& tool, const std::string& robot) {
    Mat3 R;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, R);
    const QuaternionForms forms = SoundQuaternionForms(R, Vec3(Job.RotX, Job.RotY, Job.RotZ));
    if (forms.FromMatrix) NoteMatrixAngles();
    NoteScalesLeftOut("frame file");
    FrameNumbers numbers;
    const std::string component = tool + "_" + place + "_" + robot + " ;     ";

    std::string text;
    const auto line = [&text](const std::string& content) { text += content + kLineEnd; };
    line("HEADER/ 00 , 00 , 00 , ROBFACEOUT ;");
    line("COMPONENT / " + component);
    line(tool + " =FRA / 0.0e-05 , 0.0e-05 , 0.0e-05 ,");
    line("0.0e-05 , 0.0e-05 , 0.0e-05 ;   ");
    // In this order: the note names them as they come.
    const std::string x = numbers.Length("Tra x", Job.TraX), y = numbers.Length("Tra y", Job.TraY),
                      z = numbers.Length("Tra z", Job.TraZ);
    const std::string a = numbers.Angle("the angle about x", forms.Angles(1)),
                      b = numbers.Angle("the angle about y", forms.Angles(2)),
                      c = numbers.Angle("the angle about z", forms.Angles(3));
    numbers.Note();
    line(robot + "_calpos =FRA / " + x + " , " + y + " , " + z + " ,");
    line(a + " , " + b + " , " + c + " ;");
    line("END / " + component);
    for (const char* const attribute : kPalettes) line(attribute);
    return EncodeText(text);
}

std::string RocalText() {
    Mat3 M;
    RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, M);
    const std::array<double, 3> shift = {Job.TraX, Job.TraY, Job.TraZ};
    NoteScalesLeftOut("matrix of the .bas file");
    std::string text = "[";
    for (int row = 1; row <= 3; ++row) {
        for (int column = 1; column <= 3; ++column) text += PlainText(M(row, column)) + ",";
        text += PlainText(shift[static_cast<std::size_t>(row) - 1] * Units.LengthFactor) + ";" + kLineEnd;
    }
    return text + "0,0,0,1]";
}

std::string OnlyMcsText() {
    std::string text;
    const auto shown = [](double value_mm) {
        return "\t" + FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
    };
    std::string rounded;
    int count = 0;
    for (int i = Job.Pairs() + 1; i <= Job.Start.Count(); ++i) {
        const std::string& name = Job.Transformed.Name[static_cast<std::size_t>(i)];
        const Vec3 point = TransformedPoint(i);
        const std::string written = FormatText(name, Units.FmtLength);
        double is = 0, was = 0;
        if (TextToNumber(name, was) && TextToNumber(written, is) && is != was && count++ == 0)
            rounded = "The name \"" + Printable(name) + "\" is a number and is written as one of lengths, " +
                      written;
        text += EncodeText(written + shown(point(1)) + shown(point(2)) + shown(point(3)) + kLineEnd);
    }
    if (count > 0) AddNote(NoteCode::DigitsCut, rounded, "", 0, count);
    return text;
}

std::string WithExtension(const std::string& path, std::string_view extension) {
    return path.substr(0, path.size() < 4 ? 0 : path.size() - 4) + std::string(extension);
}

bool UnconvergedConsent::Given() {
    if (!IsTrue(Job.Unconverged) || agreed_) return true;
    agreed_ = AskYesNo(std::string("The calculation did not converge, its result is not the best fit.") +
                       kLineEnd + kLineEnd + "Do you want to export it all the same?");
    return agreed_;
}

}  // namespace corvinade::analysis
