// Files of points and jobs for the module, by the readers of the program.
#include "reading.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>

#include "core/files.h"
#include "core/job_file.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/platform.h"
#include "corvinade/error.h"
#include "corvinade/transformation.h"
#include "import/cloud_points.h"
#include "import/coordinate_pairs.h"
#include "import/table_heading.h"
#include "import/table_sigmas.h"
#include "interruption.h"

namespace py = pybind11;
using namespace corvinade;
using core::PointSet;

namespace {

py::str TextOf(const std::string& text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "replace"));
}

py::list NamesOf(const PointSet& points) {
    py::list names(static_cast<std::size_t>(points.Count()));
    for (int i = 1; i <= points.Count(); ++i)
        names[static_cast<std::size_t>(i - 1)] = TextOf(points.Name[static_cast<std::size_t>(i)]);
    return names;
}

py::array_t<double> CoordinatesOf(const PointSet& points) {
    py::array_t<double> rows({py::ssize_t{points.Count()}, py::ssize_t{3}});
    double* to = rows.mutable_data();
    for (int i = 1; i <= points.Count(); ++i) {
        const fit::Vec3 point = points.Point(i);
        for (int axis = 1; axis <= 3; ++axis) *to++ = point(axis);
    }
    return rows;
}

py::object SigmasOf(const core::PointAccuracies& sigmas) {
    if (sigmas.Count() == 0) return py::none();
    py::array_t<double> rows({static_cast<py::ssize_t>(sigmas.Count()), py::ssize_t{3}});
    double* to = rows.mutable_data();
    for (std::size_t i = 0; i < sigmas.Count(); ++i)
        for (const auto& axis : sigmas.Of) *to++ = axis[i];
    return rows;
}

// Code, text and line of each.
py::list NotesOf(const std::vector<core::Note>& notes) {
    py::list told;
    for (const core::Note& note : notes)
        told.append(py::make_tuple(core::NoteKindOf(note.Code).Name, TextOf(note.Text), note.Line));
    return told;
}

struct ReadPoints {
    PointSet Points;
    core::PointAccuracies Sigmas;
    std::vector<core::Note> Notes;
    std::string Format, Unit;
};

struct Wish {
    std::string Columns, Unit, Delimiter, Decimal, Encoding;
    std::optional<std::string> Comment;
    std::int64_t Skip = 0;
    bool SkipBad = false;
};

// What ends a reading that was interrupted; Python has the error.
struct Interrupted {};

ReadPoints ReadCarrier(const std::string& path, import::CloudKind kind, const Wish& wish,
                       Interruption& interruption) {
    if (wish.Skip > 0 || wish.Comment)
        throw InvalidInput("\"" + path + "\" is " + import::CloudKindInWords(kind) +
                           ": skip and comment are of tables alone");
    import::CloudReading reading;
    std::string why;
    if (!wish.Columns.empty()) {
        const auto columns = import::ColumnsFromText(wish.Columns, why);
        if (!columns) throw InvalidInput("columns: " + why);
        reading.Wish.Columns = *columns;
    }
    reading.Wish.Unit = wish.Unit;
    if (!wish.Decimal.empty()) reading.Wish.Decimal = wish.Decimal.front();
    if (!wish.Delimiter.empty()) reading.Wish.Delimiter = wish.Delimiter.front();
    if (import::TableEncoding encoding{}; import::TableEncodingByName(wish.Encoding, encoding))
        reading.Wish.Encoding = encoding;
    reading.Wish.RefuseBad = !wish.SkipBad;
    reading.GoesOn = [&interruption] { return !interruption.Wanted(); };
    std::optional<import::CloudSet> read = import::ReadCloud(path, std::move(reading), false);
    if (!read) throw Interrupted{};
    import::CloudSet& set = *read;
    std::vector<core::Note> notes = import::NotesOfCloud(set.Facts, path, false);
    const std::string unit = set.Facts.Unit.empty() ? "mm" : set.Facts.Unit;
    return {std::move(set.Points), std::move(set.Sigmas), std::move(notes), import::CloudKindName(kind),
            unit};
}

ReadPoints ReadTextTable(const std::string& path, const Wish& wish, Interruption& interruption) {
    import::TableOptions options;
    if (!wish.Columns.empty())
        if (const std::string why = import::TakeTableColumns(wish.Columns, options.Columns); !why.empty())
            throw InvalidInput("columns: " + why);
    options.Skip = wish.Skip;
    options.Comment = wish.Comment;
    options.Delimiter = wish.Delimiter.empty() ? '\0' : wish.Delimiter.front();
    options.Decimal = wish.Decimal.empty() ? '\0' : wish.Decimal.front();
    options.Unit = wish.Unit;
    if (import::TableEncoding encoding{}; import::TableEncodingByName(wish.Encoding, encoding))
        options.Encoding = encoding;
    options.SkipBad = wish.SkipBad;
    options.DoubleNames = true;
    options.GoesOn = [&interruption](const import::TableProgress&) { return !interruption.Wanted(); };
    const core::FileBytes bytes = core::ReadFile(path);
    import::TableResult table = import::ReadTable(bytes.View(), path, options);
    if (table.Cancelled) throw Interrupted{};
    core::PointAccuracies sigmas = import::SigmasOfTable(table, path);
    if (table.Refusal.Refused()) throw InvalidInput(table.Refusal.Text);
    return {std::move(table.Points), std::move(sigmas), std::move(table.Notes), "table", table.Form.Unit};
}

py::tuple PointsOfFile(const std::string& path, const Wish& wish) {
    if (import::TableEncoding encoding{};
        !wish.Encoding.empty() && !import::TableEncodingByName(wish.Encoding, encoding))
        throw InvalidInput("encoding: utf-8, utf-16le, utf-16be or windows-1252 was expected, and \"" +
                           wish.Encoding + "\" came");
    if (!wish.Unit.empty() && import::TableUnitByWord(wish.Unit) == nullptr)
        throw InvalidInput("unit: mm, cm, m, km, in or ft was expected, and \"" + wish.Unit + "\" came");
    ReadPoints read;
    Interruption interruption;
    try {
        const py::gil_scoped_release others;
        const import::CloudKind kind = import::KindOfFile(path);
        read = import::IsCarrier(kind) ? ReadCarrier(path, kind, wish, interruption)
                                       : ReadTextTable(path, wish, interruption);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    } catch (const Interrupted&) {
        throw py::error_already_set();
    }
    return py::make_tuple(NamesOf(read.Points), CoordinatesOf(read.Points), SigmasOf(read.Sigmas),
                          NotesOf(read.Notes), read.Format, read.Unit);
}

py::dict JobOfFile(const std::string& path) {
    core::JobFileContent content;
    try {
        const core::FileBytes bytes = core::ReadFile(path);
        content = core::ReadJobBytes(bytes.View(), path);
    } catch (const core::PlatformError& error) {
        throw InvalidInput(error.What);
    }
    if (!content.HeadKnown) throw InvalidInput("\"" + path + "\" does not begin like a job file");
    if (!content.BlockFault.empty()) throw InvalidInput(content.BlockFault);
    const core::JobRecord& job = content.Job;
    py::dict told;
    const auto points = [](const PointSet& set, const std::optional<core::SideAccuracy>& ofAll,
                           const core::SharedAccuracies& ofEach) {
        core::PointAccuracies sigmas = ofEach != nullptr ? *ofEach : core::PointAccuracies{};
        if (ofEach == nullptr && ofAll)
            for (std::size_t axis = 0; axis < 3; ++axis)
                sigmas.Of[axis].assign(static_cast<std::size_t>(set.Count()), (*ofAll)[axis]);
        return py::make_tuple(NamesOf(set), CoordinatesOf(set), SigmasOf(sigmas));
    };
    const core::MeasurementSigmas sigmas = core::SigmasOf(job);
    told["measured"] = points(job.Start, sigmas.Start, sigmas.StartOfEach);
    told["nominal"] = points(job.Target, sigmas.Target, sigmas.TargetOfEach);
    told["pairs"] = job.Pairs();
    py::array_t<bool> use({py::ssize_t{job.Pairs()}, py::ssize_t{3}});
    for (std::size_t i = 0; i < static_cast<std::size_t>(use.size()); ++i)
        use.mutable_data()[i] = i + 1 >= job.UseFlags.size() || job.UseFlags[i + 1] == 1;
    told["use"] = use;
    told["direction"] = core::IsTrue(job.DirectionMCStoOCS) ? "mcs-ocs" : "ocs-mcs";
    told["length_unit"] = TextOf(job.LengthUnitName);
    told["angle_unit"] = TextOf(job.AngleUnitName);
    told["names"] = py::make_tuple(TextOf(job.NameMCS), TextOf(job.NameOCS));
    told["paths"] = py::make_tuple(TextOf(job.PathMCS), TextOf(job.PathOCS));
    told["converged"] = !core::IsTrue(job.Unconverged);
    // Without a result the fields of the parameters are empty.
    told["matrix"] = py::none();
    if (!job.ParamText[1].empty()) {
        const corvinade::Matrix4 matrix = corvinade::MatrixOf({{job.TraX, job.TraY, job.TraZ},
                                                               {job.RotX, job.RotY, job.RotZ},
                                                               {job.ScaleX, job.ScaleY, job.ScaleZ},
                                                               {job.AngleXY, job.Azimuth, job.AngleZtoXY}});
        py::array_t<double> rows({4, 4});
        std::copy(matrix.begin(), matrix.end(), rows.mutable_data());
        told["matrix"] = rows;
    }
    py::list parameters;
    for (std::size_t k = 1; k <= fit::kAngleZtoXY; ++k) parameters.append(TextOf(job.ParamText[k]));
    told["parameters"] = parameters;
    told["notes"] = NotesOf(content.Noticed);
    py::list said;
    for (const std::string& text : content.Said) said.append(TextOf(text));
    told["said"] = said;
    return told;
}

// The place of the partner of each measured point, from 0; -1 where it has none.
py::array_t<std::int64_t> PairedByCoordinates(const py::array_t<double, py::array::c_style>& measured,
                                              const py::array_t<double, py::array::c_style>& nominal,
                                              double tolerance) {
    const auto columns = [](const py::array_t<double, py::array::c_style>& rows) {
        const auto count = static_cast<std::size_t>(rows.shape(0));
        std::array<std::vector<double>, 3> axes;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            axes[axis].resize(count + 1);
            for (std::size_t i = 0; i < count; ++i) axes[axis][i + 1] = rows.data()[3 * i + axis];
        }
        return axes;
    };
    const auto start = columns(measured), target = columns(nominal);
    std::vector<std::int32_t> partners;
    {
        const py::gil_scoped_release others;
        partners = import::PairByCoordinates(
            {start[0], start[1], start[2]}, {target[0], target[1], target[2]}, static_cast<float>(tolerance));
    }
    py::array_t<std::int64_t> places(measured.shape(0));
    for (std::size_t i = 0; i < static_cast<std::size_t>(places.size()); ++i)
        places.mutable_data()[i] = partners[i + 1] - 1;
    return places;
}

}  // namespace

void AddReading(py::module_& module) {
    module.def("read_points", [](const std::string& path, const std::string& columns, const std::string& unit,
                                 const std::string& delimiter, const std::string& decimal,
                                 const std::string& encoding, const std::optional<std::string>& comment,
                                 std::int64_t skip, bool skipBad) {
        return PointsOfFile(path, {columns, unit, delimiter, decimal, encoding, comment, skip, skipBad});
    });
    module.def("read_job", &JobOfFile);
    module.def("pair_by_coordinates", &PairedByCoordinates);
}
