// Files of points and jobs for the module, by the library.
#include "reading.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>

#include "corvinade/job_file.h"
#include "corvinade/match.h"
#include "corvinade/point_file.h"
#include "corvinade/robot_program.h"
#include "interruption.h"

namespace py = pybind11;
using namespace corvinade;

namespace {

py::str TextOf(const std::string& text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "replace"));
}

py::list TextsOf(const std::vector<std::string>& texts) {
    py::list told(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) told[i] = TextOf(texts[i]);
    return told;
}

py::array_t<double> RowsOf(const std::vector<double>& numbers) {
    return py::array_t<double>({static_cast<py::ssize_t>(numbers.size() / 3), py::ssize_t{3}},
                               numbers.data());
}

// Names, coordinates, standard deviations or None.
py::tuple PointsOf(const NamedPoints& points) {
    return py::make_tuple(TextsOf(points.Names), RowsOf(points.Coordinates),
                          points.Sigmas.empty() ? py::object(py::none()) : RowsOf(points.Sigmas));
}

// Code, text and line of each.
py::list NotesOf(const std::vector<FileNote>& notes) {
    py::list told;
    for (const FileNote& note : notes) told.append(py::make_tuple(note.Code, TextOf(note.Text), note.Line));
    return told;
}

py::tuple PointsOfFile(const std::string& path, PointFileOptions options) {
    PointFile read;
    Interruption interruption;
    options.StopIsWanted = [&interruption] { return interruption.Wanted(); };
    try {
        const py::gil_scoped_release others;
        read = ReadPoints(path, options);
    } catch (const Stopped&) {
        if (!interruption.Came) throw;
        throw py::error_already_set();
    }
    const py::tuple points = PointsOf(read.Points);
    return py::make_tuple(points[0], points[1], points[2], NotesOf(read.Notes), read.Format, read.Unit);
}

py::dict JobOfFile(const std::string& path) {
    JobFile job;
    {
        const py::gil_scoped_release others;
        job = ReadJob(path);
    }
    py::dict told;
    told["measured"] = PointsOf(job.Start);
    told["nominal"] = PointsOf(job.Target);
    told["pairs"] = job.Pairs;
    py::array_t<bool> use({static_cast<py::ssize_t>(job.Pairs), py::ssize_t{3}});
    for (std::size_t i = 0; i < job.InUse.size(); ++i) use.mutable_data()[i] = job.InUse[i] != 0;
    told["use"] = use;
    told["direction"] = job.McsToOcs ? "mcs-ocs" : "ocs-mcs";
    told["length_unit"] = TextOf(job.LengthUnit);
    told["angle_unit"] = TextOf(job.AngleUnit);
    told["names"] = py::make_tuple(TextOf(job.StartName), TextOf(job.TargetName));
    told["paths"] = py::make_tuple(TextOf(job.StartPath), TextOf(job.TargetPath));
    told["converged"] = job.Converged;
    told["matrix"] = py::none();
    if (job.Result) {
        const Matrix4 matrix = MatrixOf(*job.Result);
        py::array_t<double> rows({4, 4});
        std::copy(matrix.begin(), matrix.end(), rows.mutable_data());
        told["matrix"] = rows;
    }
    py::list parameters;
    for (const std::string& text : job.ParameterTexts) parameters.append(TextOf(text));
    told["parameters"] = parameters;
    py::list states;
    py::dict held;
    for (std::size_t k = 0; k < kParameters; ++k) {
        const ParameterState state = job.Fit.Parameters.State[k];
        states.append(state == ParameterState::Floats ? "floats"
                      : state == ParameterState::Held ? "held"
                                                      : "unused");
        if (state == ParameterState::Held)
            held[NameOf(static_cast<Parameter>(k))] = job.Fit.Parameters.Value[k];
    }
    told["states"] = states;
    told["held"] = held;
    told["norm"] = job.Fit.Which == Norm::L1 ? "l1" : job.Fit.Which == Norm::Loo ? "loo" : "l2";
    told["seed"] = job.Fit.SeedPairs;
    told["refusal"] = TextOf(job.Fit.Refusal);
    told["notes"] = NotesOf(job.Notes);
    told["said"] = TextsOf(job.Said);
    return told;
}

py::tuple PosesOfProgram(const std::string& path, const std::string& form) {
    RobotPoses read;
    {
        const py::gil_scoped_release others;
        read = ReadProgram(path, form);
    }
    py::list names;
    py::array_t<double> frames({static_cast<py::ssize_t>(read.Poses.size()), py::ssize_t{4}, py::ssize_t{4}});
    double* to = frames.mutable_data();
    for (const RobotPose& pose : read.Poses) {
        names.append(TextOf(pose.Name));
        to = std::copy(pose.Frame.begin(), pose.Frame.end(), to);
    }
    return py::make_tuple(names, frames, NotesOf(read.Notes));
}

py::list MovedProgram(const std::string& from, const std::string& to, const std::string& form,
                      const py::array_t<double, py::array::c_style>& matrix) {
    Matrix4 move;
    if (matrix.size() != static_cast<py::ssize_t>(move.size()))
        throw py::value_error("a matrix of shape (4, 4) was expected");
    std::copy_n(matrix.data(), move.size(), move.begin());
    std::vector<FileNote> notes;
    {
        const py::gil_scoped_release others;
        notes = TransformProgram(from, to, form, move);
    }
    return NotesOf(notes);
}

// The place of the partner of each measured point, from 0; -1 where it has none.
py::array_t<std::int64_t> Paired(const py::array_t<double, py::array::c_style>& measured,
                                 const py::array_t<double, py::array::c_style>& nominal, bool byDistances,
                                 double tolerance) {
    const auto view = [](const py::array_t<double, py::array::c_style>& rows) {
        return Points(rows.data(), static_cast<std::size_t>(rows.shape(0)));
    };
    const Points start = view(measured), target = view(nominal);
    Interruption interruption;
    std::vector<std::ptrdiff_t> partners;
    try {
        const py::gil_scoped_release others;
        partners = (byDistances ? MatchByDistances : MatchByCoordinates)(
            start, target, tolerance, [&interruption] { return interruption.Wanted(); });
    } catch (const Stopped&) {
        if (!interruption.Came) throw;
        throw py::error_already_set();
    }
    py::array_t<std::int64_t> places(measured.shape(0));
    std::copy(partners.begin(), partners.end(), places.mutable_data());
    return places;
}

}  // namespace

void AddReading(py::module_& module) {
    module.def("read_points",
               [](const std::string& path, const std::string& columns, const std::string& unit,
                  const std::string& delimiter, const std::string& decimal, const std::string& encoding,
                  const std::optional<std::string>& comment, std::size_t skip, bool skipBad) {
                   PointFileOptions options;
                   options.Columns = columns;
                   options.Unit = unit;
                   options.Delimiter = delimiter.empty() ? '\0' : delimiter.front();
                   options.Decimal = decimal.empty() ? '\0' : decimal.front();
                   options.Encoding = encoding;
                   options.Comment = comment;
                   options.Skip = skip;
                   options.SkipBad = skipBad;
                   return PointsOfFile(path, std::move(options));
               });
    module.def("read_job", &JobOfFile);
    module.def("read_program", &PosesOfProgram);
    module.def("transform_program", &MovedProgram);
    module.def("pair_by_places", &Paired);
}
