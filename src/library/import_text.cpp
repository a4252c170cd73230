// The transformation in a text of one of the export forms.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "corvinade/error.h"
#include "corvinade/transformation.h"

namespace corvinade {

namespace {

// What the numbers of a form are, in their order.
enum class Numbers {
    Matrix,       // 16, row by row
    Json,         // 16, and the last column's three again
    Affine,       // the shift, then 9 row by row
    QuaternionX,  // the shift, then x y z w
    QuaternionW,  // the shift, then w x y z; a second one behind it changes nothing
    Turns         // the shift, then turns about x, y and z of axes that stay
};

struct TextForm {
    const char* Name;
    // As Export writes it: # is a number, ~ a name, a blank any blanks or line ends or none, and ... what is
    // of no interest, at the end alone. Letters may be capital or not.
    const char* Pattern;
    Numbers Of;
    double Lengths = 1, Angles = 1;  // in mm and rad
    bool FromZ = false;              // the turns stand as z, y, x
};

constexpr double kMetre = 1000, kDegree = 3.14159265358979323846 / 180;
constexpr const char* kKukaFrame = "{X # , Y # , Z # , A # , B # , C # }";
constexpr const char* kFanuc = "X = # mm , Y = # mm , Z = # mm , W = # deg , P = # deg , R = # deg";

// Blanks that have to be there are those between numbers and between words, where without them no number and
// no word would end.
const std::vector<TextForm>& Forms() {
    static const std::vector<TextForm> kForms = {
        {"matrix", "# # # # # # # # # # # # # # # #", Numbers::Matrix},
        {"matrix-csv", "# , # , # , # # , # , # , # # , # , # , # # , # , # , #", Numbers::Matrix},
        {"json",
         "{ \"schema\" : \"corvinade-transformation\" , \"matrix\" : [ [ # , # , # , # ] , [ # , # , # , # ] "
         ", [ # , # , # , # ] , [ # , # , # , # ] ] , \"translation_mm\" : [ # , # , # ] , \"quaternion\" : "
         "...",
         Numbers::Json},
        {"quaternion", "# # # # # # #", Numbers::QuaternionX},
        {"proj",
         "+proj=affine +xoff=# +yoff=# +zoff=# +s11=# +s12=# +s13=# +s21=# +s22=# +s23=# +s31=# +s32=# "
         "+s33=#",
         Numbers::Affine},
        {"ros",
         "ros2 run tf2_ros static_transform_publisher --x # --y # --z # --qx # --qy # --qz # --qw # "
         "--frame-id ~ --child-frame-id ~",
         Numbers::QuaternionX, kMetre},
        {"urdf", "<origin xyz=\"# # #\" rpy=\"# # #\" />", Numbers::Turns, kMetre},
        {"kuka-base", "$BASE = ", Numbers::Turns, 1, kDegree, true},
        {"kuka-tool", "$TOOL = ", Numbers::Turns, 1, kDegree, true},
        {"fanuc-uframe", kFanuc, Numbers::Turns, 1, kDegree},
        {"fanuc-utool", kFanuc, Numbers::Turns, 1, kDegree},
        {"abb-wobj",
         "PERS wobjdata ~ := [ FALSE , TRUE , \"\" , [ [ # , # , # ] , [ # , # , # , # ] ] , [ [ # , # , # ] , "
         "[ # , # , # , # ] ] ] ;",
         Numbers::QuaternionW},
        {"abb-tool", "PERS tooldata ~ := [ TRUE , [ [ # , # , # ] , [ # , # , # , # ] ] , [ ...",
         Numbers::QuaternionW},
    };
    return kForms;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
char Small(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
bool IsOfName(char c) {
    return (Small(c) >= 'a' && Small(c) <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '/';
}

// Walks along a text and a pattern, and takes the numbers.
class FormReader {
public:
    FormReader(std::string_view text, const char* form) : text_(text), form_(form) {}

    void Take(std::string_view pattern) {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern.substr(i) == "...") {
                TakeRest();
                return;
            }
            if (pattern[i] == ' ') {
                SkipBlanks();
            } else if (pattern[i] == '#') {
                TakeNumber();
            } else if (pattern[i] == '~') {
                if (at_ == text_.size() || !IsOfName(text_[at_])) Refuse("a name");
                while (at_ < text_.size() && IsOfName(text_[at_])) ++at_;
            } else if (at_ < text_.size() && Small(text_[at_]) == Small(pattern[i])) {
                ++at_;
            } else {
                Refuse("\"" + std::string(1, pattern[i]) + "\"");
            }
        }
    }
    std::vector<double> End() {
        SkipBlanks();
        if (at_ < text_.size()) Refuse("its end");
        return std::move(numbers_);
    }

private:
    void SkipBlanks() {
        while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
    }
    // Of no interest, but whole: every bracket has its end.
    void TakeRest() {
        const auto count = [this](char c) { return std::count(text_.begin(), text_.end(), c); };
        at_ = text_.size();
        if (count('{') != count('}') || count('[') != count(']')) Refuse("an end of each bracket");
    }
    void TakeNumber() {
        const char* const end = text_.data() + text_.size();
        const char* begin = text_.data() + at_;
        if (begin != end && *begin == '+') ++begin;
        double value = 0;
        const auto [behind, error] = std::from_chars(begin, end, value);
        // One number begins where another one ends, not in its midst.
        const bool whole = behind == end || IsBlank(*behind) ||
                           std::string_view(",;]})\"").find(*behind) != std::string_view::npos;
        if (error != std::errc() || !std::isfinite(value) || !whole) Refuse("a number");
        numbers_.push_back(value);
        at_ = static_cast<std::size_t>(behind - text_.data());
    }
    [[noreturn]] void Refuse(const std::string& expected) const {
        std::size_t line = 1;
        for (std::size_t i = 0; i < at_; ++i) line += text_[i] == '\n' ? 1 : 0;
        std::string_view there = text_.substr(at_, 20);
        there = there.substr(0, there.find_first_of("\r\n"));
        throw InvalidInput("a transformation of the form \"" + std::string(form_) +
                           "\" was expected as export writes it; in line " + std::to_string(line) + " " +
                           expected + " was expected, and " +
                           (at_ < text_.size() ? "\"" + std::string(there) + "\" stands there"
                                               : std::string("the text ends")));
    }

    std::string_view text_;
    const char* form_;
    std::size_t at_ = 0;
    std::vector<double> numbers_;
};

// Of a length that rounding of its numbers explains.
void TakeQuaternion(double w, double x, double y, double z, Matrix4& m) {
    const double length = std::sqrt(w * w + x * x + y * y + z * z);
    constexpr double kRounded = 1e-3;
    if (!(std::fabs(length - 1) <= kRounded))
        throw InvalidInput("a quaternion has the length 1, and that of this one is " +
                           std::to_string(length));
    w /= length, x /= length, y /= length, z /= length;
    m[0] = 1 - 2 * (y * y + z * z), m[1] = 2 * (x * y - w * z), m[2] = 2 * (x * z + w * y);
    m[4] = 2 * (x * y + w * z), m[5] = 1 - 2 * (x * x + z * z), m[6] = 2 * (y * z - w * x);
    m[8] = 2 * (x * z - w * y), m[9] = 2 * (y * z + w * x), m[10] = 1 - 2 * (x * x + y * y);
}

// Rz(z) Ry(y) Rx(x).
void TakeTurns(double x, double y, double z, Matrix4& m) {
    const double sx = std::sin(x), cx = std::cos(x), sy = std::sin(y), cy = std::cos(y), sz = std::sin(z),
                 cz = std::cos(z);
    m[0] = cz * cy, m[1] = cz * sy * sx - sz * cx, m[2] = cz * sy * cx + sz * sx;
    m[4] = sz * cy, m[5] = sz * sy * sx + cz * cx, m[6] = sz * sy * cx - cz * sx;
    m[8] = -sy, m[9] = cy * sx, m[10] = cy * cx;
}

Matrix4 MatrixFrom(const TextForm& form, const std::vector<double>& n) {
    Matrix4 m = Identity();
    if (form.Of == Numbers::Matrix || form.Of == Numbers::Json) {
        std::copy_n(n.begin(), 16, m.begin());
        if (form.Of == Numbers::Json && (n[16] != m[3] || n[17] != m[7] || n[18] != m[11]))
            throw InvalidInput("the translation and the last column of the matrix are not the same");
        return m;
    }
    for (std::size_t axis = 0; axis < 3; ++axis) m[4 * axis + 3] = n[axis] * form.Lengths;
    switch (form.Of) {
        case Numbers::Affine:
            for (std::size_t i = 0; i < 9; ++i) m[4 * (i / 3) + i % 3] = n[3 + i];
            break;
        case Numbers::QuaternionX:
            TakeQuaternion(n[6], n[3], n[4], n[5], m);
            break;
        case Numbers::QuaternionW:
            TakeQuaternion(n[3], n[4], n[5], n[6], m);
            if (n.size() > 7 &&
                std::vector(n.begin() + 7, n.end()) != std::vector<double>{0, 0, 0, 1, 0, 0, 0})
                throw InvalidInput(
                    "a work object whose object frame is its user frame was expected: [[0,0,0],[1,0,0,0]]");
            break;
        default:
            TakeTurns(n[form.FromZ ? 5 : 3] * form.Angles, n[4] * form.Angles,
                      n[form.FromZ ? 3 : 5] * form.Angles, m);
    }
    return m;
}

}  // namespace

Matrix4 Import(std::string_view text, std::string_view form) {
    std::string names;
    for (const TextForm& one : Forms()) {
        names += (names.empty() ? "" : ", ") + std::string(one.Name);
        if (form != one.Name) continue;
        FormReader reader(text, one.Name);
        reader.Take(" ");
        reader.Take(one.Pattern);
        if (one.FromZ) reader.Take(kKukaFrame);
        const Matrix4 matrix = MatrixFrom(one, reader.End());
        Invert(matrix);  // refuses what is none: another last row, or a plane
        return matrix;
    }
    throw InvalidInput("a form is one of " + names + ", and \"" + std::string(form) + "\" came");
}

}  // namespace corvinade
