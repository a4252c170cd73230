// `--with FILE`.
#include "cli/transformation_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <istream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <vector>

#include "cli/fit_output.h"
#include "cli/input_bytes.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "core/file_source.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/text.h"
#include "import/cloud_rows.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

using Sixteen = std::array<double, 16>;

constexpr std::size_t kLargest_bytes = std::size_t{1} << 30;
constexpr std::size_t kLargestMatrix_bytes = std::size_t{1} << 16;

[[noreturn]] void Fail(const std::string& path, const std::string& why) {
    throw PlatformError{"Cannot read \"" + path + "\": " + why};
}

std::string AllBytes(const std::string& path) {
    std::string bytes;
    const auto take = [&](auto read) {
        std::string block(std::size_t{1} << 16, '\0');
        for (std::size_t count = 0; (count = read(block.data(), block.size())) > 0;) {
            bytes.append(block, 0, count);
            if (bytes.size() > kLargest_bytes) Fail(path, "it is larger than 1 GiB");
        }
    };
    FileSource file(path);
    take([&file](char* to, std::size_t most) { return file.Read(to, most); });
    return bytes;
}

// --- Text -------------------------------------------------------------------------------------------------

Sixteen MatrixOfText(std::string_view text, const std::string& path) {
    if (text.size() > kLargestMatrix_bytes) Fail(path, "it is no matrix of 4 by 4 numbers");
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    std::vector<double> numbers;
    std::string_view line;
    for (int row = 1; CutLine(text, line); ++row) {
        const std::size_t begin = line.find_first_not_of(" \t");
        if (begin == std::string_view::npos || line[begin] == '#' || line[begin] == '%' ||
            line.substr(begin).starts_with("//"))
            continue;
        std::size_t at = 0;
        for (int column = 1; at < line.size(); ++column) {
            constexpr std::string_view kBetween = " \t,;[]";
            at = std::min(line.find_first_not_of(kBetween, at), line.size());
            if (at == line.size()) break;
            const std::size_t end = std::min(line.find_first_of(kBetween, at), line.size());
            const std::string_view field = line.substr(at, end - at);
            double value = 0;
            if (NumberOf(field, '.', value) != NumberKind::Finite)
                throw PlatformError{"Cannot read \"" + path + "\", line " + std::to_string(row) +
                                    ", column " + std::to_string(column) + ": \"" + Printable(field) +
                                    "\" is not a number of a matrix"};
            numbers.push_back(value);
            at = end;
        }
    }
    if (numbers.size() != 16)
        Fail(path,
             "a matrix has 4 rows of 4 numbers, and this has " + std::to_string(numbers.size()) + " numbers");
    Sixteen matrix{};
    std::copy(numbers.begin(), numbers.end(), matrix.begin());
    return matrix;
}

// --- JSON -------------------------------------------------------------------------------------------------

// The members that hold a value a point; of a million points they take gigabytes.
bool IsBulk(const std::string& member) {
    return member == "points" || member == "startOnly" || member == "targetOnly";
}

Sixteen MatrixOfJson(const json& rows, const std::string& path) {
    Sixteen matrix{};
    bool good = rows.is_array() && rows.size() == 4;
    for (std::size_t i = 0; i < 4 && good; ++i) {
        good = rows[i].is_array() && rows[i].size() == 4;
        for (std::size_t k = 0; k < 4 && good; ++k) {
            good = rows[i][k].is_number();
            if (good) matrix[4 * i + k] = rows[i][k].get<double>();
            good = good && std::isfinite(matrix[4 * i + k]);
        }
    }
    if (!good) Fail(path, "its member \"matrix\" is no list of 4 lists of 4 numbers");
    return matrix;
}

// What a fit has warned of, and what goes for all that use its result.
void TakeNotes(const json& root, const std::string& path) {
    const auto list = root.find("notes");
    if (list == root.end() || !list->is_array()) return;
    for (const json& note : *list) {
        if (!note.is_object()) continue;
        const std::string name = note.value("code", json("")).is_string() ? note.value("code", "") : "";
        for (const NoteCode code : {NoteCode::OpenParameters, NoteCode::CollapsedScale})
            if (name == NoteKindOf(code).Name && note.value("text", json()).is_string())
                AddNote(code, note.value("text", ""), path);
    }
}

int MatrixOfResult(const std::string& bytes, const TransformationWish& wish, std::ostream& err,
                   Sixteen& matrix) {
    const auto keep = [](int depth, json::parse_event_t event, json& value) {
        return event != json::parse_event_t::key || depth != 1 ||
               !IsBulk(value.get_ref<const std::string&>());
    };
    json root;
    try {
        root = json::parse(bytes, keep);
    } catch (const json::exception& error) {
        Fail(wish.Path, std::string("it is no JSON: ") + Printable(error.what(), 200));
    }
    const std::string schema =
        root.is_object() && root.contains("schema") && root["schema"].is_string() ? root["schema"] : "";
    if (schema == "corvinade-transformation") {
        matrix = MatrixOfJson(root.value("matrix", json()), wish.Path);
        return kDone;
    }
    // The Python package tells a fit by a schema of its own, whose transformation is the same.
    if (schema != "corvinade-fit" && schema != "corvinade-library-fit")
        Fail(wish.Path, "its schema is neither \"corvinade-fit\" nor \"corvinade-transformation\"");
    const json transformation = root.value("transformation", json());
    if (!transformation.is_object()) Fail(wish.Path, "it has no member \"transformation\"");
    const json converged = root.value("converged", json());
    if (!converged.is_boolean()) Fail(wish.Path, "its member \"converged\" is neither true nor false");
    if (!converged.get<bool>() && !wish.Unconverged)
        return Refuse(err, kNotConverged,
                      "the result of \"" + wish.Path +
                          "\" did not converge; with --unconverged it is taken all the same");
    if (!converged.get<bool>())
        AddNote(NoteCode::NotConverged, "The result of the fit did not converge", wish.Path);
    matrix = MatrixOfJson(transformation.value("matrix", json()), wish.Path);
    TakeNotes(root, wish.Path);
    return kDone;
}

CloudMotion MotionOfMatrix(const Sixteen& m, const std::string& path) {
    if (m[12] != 0 || m[13] != 0 || m[14] != 0 || m[15] != 1)
        Fail(path, "the last row of its matrix is not 0 0 0 1");
    const std::optional<CloudMotion> motion =
        MotionOf({m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]}, {m[3], m[7], m[11]});
    if (!motion) Fail(path, "its matrix is singular: it carries all points into a plane");
    return *motion;
}

}  // namespace

int TransformationOfJob(const std::string& path, std::ostream& err, CloudMotion& motion) {
    const Mat3 m = FitMatrix();
    const std::optional<CloudMotion> found =
        MotionOf({m(1, 1), m(1, 2), m(1, 3), m(2, 1), m(2, 2), m(2, 3), m(3, 1), m(3, 2), m(3, 3)},
                 {Job.TraX, Job.TraY, Job.TraZ});
    if (!found)
        return Refuse(err, kRefused,
                      "the result of \"" + path + "\" is singular: it carries all points into a plane");
    motion = *found;
    return kDone;
}

int ReadTransformation(const TransformationWish& wish, std::istream& in, std::ostream& err,
                       CloudMotion& motion) {
    try {
        HoldStream(wish.Path, &in);
        const std::string bytes = AllBytes(wish.Path);
        const std::size_t begin = bytes.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
        if (begin == std::string::npos) Fail(wish.Path, "it is empty");
        if (bytes.find('\0') != std::string::npos) {
            JobFileFacts facts;
            if (const int status = OpenJob(wish.Path, wish.Questions, facts, err); status != kDone)
                return status;
            if (Job.ParamText[1].empty()) return Refuse(err, kRefused, "No Transformation calculated");
            if (!ResultIsFinite()) return Refuse(err, kRefused, kResultNotFinite);
            if (const int refused = RefuseUnconverged(err, wish.Unconverged); refused != kDone)
                return refused;
            NoteResultOfJob(wish.Path);
            return TransformationOfJob(wish.Path, err, motion);
        }
        Sixteen matrix{};
        if (bytes[begin] == '{') {
            const int status = MatrixOfResult(bytes, wish, err, matrix);
            if (status != kDone) return status;
        } else {
            matrix = MatrixOfText(bytes, wish.Path);
        }
        motion = MotionOfMatrix(matrix, wish.Path);
        if (motion.Mirrors)
            AddNote(NoteCode::Mirrored,
                    "The transformation is mirrored: it carries points onto their mirror image, as no "
                    "movement can",
                    wish.Path);
        return kDone;
    } catch (const PlatformError& error) {
        return Refuse(err, kUnreadable, error.What);
    }
}

}  // namespace corvinade::cli
