// The texts that the details window puts on the clipboard.
#include "engine/details_texts.h"

#include "core/numbers.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/details_tables.h"
#include "engine/parameter_kind.h"

namespace corvinade::engine {

namespace {

std::string Line(const std::vector<std::string>& cells) {
    std::string line;
    for (const std::string& cell : cells) {
        if (&cell != &cells.front()) line += '\t';
        line += cell;
    }
    return line + kLineEnd;
}

std::string Lines(const Cells& cells) {
    std::string text;
    for (const auto& row : cells) text += Line(row);
    return text;
}

std::string MatrixText(const Mat3& M) {
    std::string text;
    for (int i = 1; i <= 3; ++i) text += Line({PlainText(M(i, 1)), PlainText(M(i, 2)), PlainText(M(i, 3))});
    return text;
}

std::string PlainAngle(double value_rad) {
    return PlainText(value_rad * Units.AngleFactor);
}

}  // namespace

std::string RotationMatrixText(const SolutionDetails& details) {
    return MatrixText(details.Rotation);
}

std::string AffineMatrixText(const SolutionDetails& details) {
    return MatrixText(details.Affine);
}

std::string ScaleMatrixText(const SolutionDetails& details) {
    return MatrixText(details.Scale) + kLineEnd;
}

std::string InverseText(const SolutionDetails& details) {
    return Lines(InverseCells(details));
}

std::string HomogenText(const SolutionDetails& details) {
    const Mat3& R = details.Rotation;
    std::string text;
    for (int i = 1; i <= 3; ++i)
        text +=
            Line({PlainText(R(i, 1)), PlainText(R(i, 2)), PlainText(R(i, 3)), ShownLength(details.Shift(i))});
    return text + Line({"0", "0", "0", "1"}) + kLineEnd;
}

std::string RotationText(const SolutionDetails& details, RotationOrder order) {
    const RotationSolutions& solutions = details.Of(order);
    std::string text = Line({" ", "Solution 1", "Solution 2"});
    for (std::size_t k = 0; k < 3; ++k) {
        const char axis = static_cast<char>(AxesOf(order)[k] - 'A' + 'a');
        text += Line({std::string("Rot ") + axis + std::string(k, '\'') + ' ', PlainAngle(solutions.First[k]),
                      PlainAngle(solutions.Second[k])});
    }
    return text + kLineEnd;
}

std::string QuaternionText(const SolutionDetails& details) {
    const auto& q = details.Quaternion;
    return Line({"qw", PlainText(q[0])}) + Line({"qx", PlainText(q[1])}) + Line({"qy", PlainText(q[2])}) +
           Line({"qz", PlainText(q[3])}) + Line({"Angel of Rot", PlainAngle(details.Angle)}) +
           Line({"Vec x of Rot", PlainText(details.Axis(1))}) +
           Line({"Vec y of Rot", PlainText(details.Axis(2))}) +
           Line({"Vec z of Rot", PlainText(details.Axis(3))}) +
           Line({"Rot x", PlainAngle(details.QuaternionAngles(1))}) +
           Line({"Rot y'", PlainAngle(details.QuaternionAngles(2))}) +
           Line({"Rot z''", PlainAngle(details.QuaternionAngles(3))});
}

std::string MonteCarloText(const SolutionDetails& details) {
    return Lines(MonteCarloCells(details));
}

std::string DetailsText(const SolutionDetails& details) {
    std::string text = RotationMatrixText(details) + AffineMatrixText(details) + ScaleMatrixText(details) +
                       InverseText(details) + HomogenText(details);
    for (const RotationOrder order : kRotationOrders) text += RotationText(details, order);
    return text + QuaternionText(details) + Line({"last MonteCarlo - sigma of parameter"}) +
           MonteCarloText(details);
}

}  // namespace corvinade::engine
