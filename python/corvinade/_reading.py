"""Points and jobs from files, and which points of two sets are the same."""

from __future__ import annotations

import os
from typing import Any, NamedTuple, Optional, Sequence, Union

import numpy as np

from . import _corvinade
from ._points import Points, paired, points_of
from ._result import Note, Transformation

Path = Union[str, "os.PathLike[str]"]
_DELIMITERS = {"space": " ", "semicolon": ";", "colon": ":", "star": "*", "sharp": "#", "tab": "\t", "comma": ",",
               "pipe": "|"}


def _file(path: Path) -> str:
    """Its name, where it can be opened; the error of the system else."""
    text = os.fspath(path)
    if not isinstance(text, str):
        raise TypeError(f"a path was expected, and {path!r} came")
    with open(text, "rb"):
        return text


def _notes(rows: Sequence[tuple[str, str, int]], path: str) -> list[Note]:
    return [Note(code, f"{path}{f', line {line}' if line else ''}: {text}") for code, text, line in rows]


def read_points(path: Path, *, columns: str = "", unit: str = "", delimiter: str = "", decimal: str = "",
                encoding: str = "", comment: Optional[str] = None, skip: int = 0, skip_bad: bool = False) -> Points:
    """The points of a file, as ``corvinade-cli fit`` reads it; mm.

    Any table of text (heading, delimiter, units, decimal delimiter, encoding are found), and clouds and other carriers:
    PLY, PCD, .xyz, .pts, .asc, trajectories, LandXML, control points of a map.

    columns: "name,x,y,z", also sx, sy, sz or s for standard deviations, "-" for what is passed over.
    unit: "mm", "cm", "m", "km", "in", "ft"; without it the one that the file names, else mm.
    delimiter: a character, or its name such as "tab"; decimal: "." or ","; encoding: "utf-8", "windows-1252", ...
    comment: first characters of lines that are none of the table; skip: so many lines at the beginning are none.
    skip_bad: rows that are no points are passed over, which a note tells, in place of ending it.

    >>> import corvinade
    >>> points = corvinade.read_points("examples/robot_cell_measured.txt")
    >>> points
    Points(16 points of examples/robot_cell_measured.txt, 0 notes)
    >>> points.coordinates.shape
    (16, 3)

    OSError where the file cannot be opened; ValueError (InvalidInput) with file, line and column for what is no table.
    """
    mark = _DELIMITERS.get(delimiter, delimiter)
    if len(mark) > 1:
        raise ValueError(f"delimiter: a character or one of {', '.join(_DELIMITERS)} was expected, and {delimiter!r} came")
    if decimal not in ("", ".", ","):
        raise ValueError(f'decimal: "." or "," was expected, and {decimal!r} came')
    name = _file(path)
    names, coordinates, sigma, notes, form, found = _corvinade.read_points(
        name, columns, unit, mark, decimal, encoding, comment, skip, skip_bad)
    return Points(names, coordinates, sigma, name, form, found, _notes(notes, name))


class Job:
    """What a job file holds.

    measured, nominal: `Points`, with the standard deviations that the job has of them. The first `pairs` of each are the
        pairs, in the order of their names.
    use: of shape (pairs, 3), bool: False takes no part in the fit.
    transformation: the result that the job was saved with, from measured to nominal; None where it has none. converged:
        False where that is no best fit.
    direction: "mcs-ocs"; "ocs-mcs" where the job's direction is switched, so that `measured`, which is what is
        transformed, are the points of its second system.
    parameters: by name "float", "not used", or the text of the value that it is held at, in the job's units; hold: by
        name those values, mm, rad and factors; norm: "l2", "l1" or "loo"; seed: the pairs, from 0, of the start values.
    refusal: "" where ``corvinade.fit(job)`` has the job's fit, else why not: one to distances, to a tool, to a shape.
    """

    __slots__ = ("path", "measured", "nominal", "pairs", "use", "transformation", "converged", "parameters",
                 "direction", "length_unit", "angle_unit", "notes", "norm", "hold", "seed", "refusal", "_states")

    def paired(self) -> tuple[Points, Points]:
        """The pairs alone, so that ``corvinade.fit(*job.paired(), use=job.use)`` fits them by other choices."""
        places = range(self.pairs)
        return self.measured._at(list(places)), self.nominal._at(list(places))

    def __repr__(self) -> str:
        return (f"Job({self.path}: {len(self.measured)} measured, {len(self.nominal)} nominal, {self.pairs} pairs"
                f"{'' if self.transformation is not None else ', no result'})")


def read_job(path: Path) -> Job:
    """The job of a file .cvn of any version. OSError, or ValueError (InvalidInput) where it is none or damaged."""
    job = Job()
    job.path = _file(path)
    told = _corvinade.read_job(job.path)
    job.measured, job.nominal = (Points(*told[side], path=file)
                                 for side, file in zip(("measured", "nominal"), told["paths"]))
    job.hold, job._states = told["held"], told["states"]
    for name in ("pairs", "use", "converged", "direction", "length_unit", "angle_unit", "norm", "seed", "refusal"):
        setattr(job, name, told[name])
    job.transformation = None if told["matrix"] is None else Transformation(told["matrix"])
    job.parameters = dict(zip(_corvinade.PARAMETERS, told["parameters"]))
    job.notes = _notes(told["notes"], job.path) + [Note("job-version", text) for text in told["said"]]
    return job


class Program:
    """The poses of a robot program: `names`, n texts ("" where a pose has none), and `frames` of shape (n, 4, 4), the place,
    mm, and the axes of each in the base; `path`, `form`, `notes`."""

    __slots__ = ("path", "form", "names", "frames", "notes")

    @property
    def positions(self) -> np.ndarray:
        """Of shape (n, 3), mm."""
        return self.frames[:, :3, 3]

    def transform(self, transformation: Any, to: Path) -> list[Note]:
        """Writes the program once more as `to`, its poses carried by a rigid transformation, a `Result` or a matrix of shape
        (4, 4); all else stays byte by byte, what poses say of the configuration of the arm among it. Gives what is to
        be known of it. ValueError (InvalidInput) where the transformation has a scale, a shear or a mirror, or a number
        has no room in its columns."""
        target = os.fspath(to)
        matrix = np.ascontiguousarray(getattr(transformation, "matrix", transformation), dtype=np.float64)
        if matrix.shape != (4, 4):
            raise ValueError(f"a matrix of shape (4, 4) was expected, and one of shape {matrix.shape} came")
        return _notes(_corvinade.transform_program(_file(self.path), target, self.form, matrix), self.path)

    def __len__(self) -> int:
        return len(self.names)

    def __repr__(self) -> str:
        return f"Program({len(self)} poses of {self.path})"


def read_program(path: Path, form: str) -> Program:
    """The poses of a robot program: `form` is "kuka" (.dat), "fanuc" (.ls) or "abb" (.modx).

    >>> import corvinade
    >>> program = corvinade.read_program("examples/robot_tool.dat", "kuka")
    >>> program.names[0], program.positions[0]
    ('XTIP1', array([1180.25, -640.1 , 1015.4 ]))

    OSError where the file cannot be opened; ValueError (InvalidInput) with file and line where it cannot be read."""
    program = Program()
    program.path, program.form = _file(path), form
    program.names, program.frames, notes = _corvinade.read_program(program.path, form)
    program.notes = _notes(notes, program.path)
    return program


class Match(NamedTuple):
    """Which points of two sets are the same: pair i is measured[here[i]] and nominal[there[i]].

    unpaired: names, or numbers from 0, of the points of each set without a partner.
    """

    here: np.ndarray
    there: np.ndarray
    unpaired: tuple[list, list]


def match(measured: Any, nominal: Any, by: str = "names", tolerance: float = 0.8) -> Match:
    """Which points of two sets are the same: `Points`, frames, paths, or by where they lie arrays too.

    >>> import corvinade, numpy as np
    >>> corvinade.match(corvinade.Points(["A", "B"], np.eye(2, 3)), corvinade.Points(["B", "C"], np.eye(2, 3)))
    Match(here=array([1]), there=array([0]), unpaired=(['A'], ['C']))

    by: "names", equal ones; "coordinates", near ones: each measured point, in their order, takes the nearest nominal
        point that is free and nearer than `tolerance`, mm; "distances", of sets in any two systems: three distances that
        occur in both, within the tolerance and clear of all others, give a transformation, under which near ones pair.

    ValueError where a name stands twice in a set, and where nothing pairs.
    """
    start, of_measured = points_of(measured, "measured")
    target, of_nominal = points_of(nominal, "nominal")
    if by == "names":
        for names, what in ((of_measured, "measured"), (of_nominal, "nominal")):
            if names is None:
                raise ValueError(f"{what}: points with names were expected, a frame with an index of names or a file")
        here, there = paired(of_measured, of_nominal)
    elif by in ("coordinates", "distances"):
        if not tolerance > 0:
            raise ValueError(f"tolerance: a length above 0 mm was expected, and {tolerance!r} came")
        for rows, what in ((start, "measured"), (target, "nominal")):
            if rows.ndim != 2 or rows.shape[1] != 3 or not len(rows):
                raise ValueError(f"{what}: an array of shape (n, 3) was expected, and one of shape {rows.shape} came")
        partners = _corvinade.pair_by_places(start, target, by == "distances", tolerance)
        here = np.flatnonzero(partners >= 0).tolist()
        there = partners[here].tolist()
        if not here:
            raise ValueError(f"no two points are nearer to each other than {tolerance} mm" if by == "coordinates" else
                             f"no three distances within {tolerance} mm of each other, and clear of all others, are in both sets")
    else:
        raise ValueError(f'by: "names", "coordinates" or "distances" was expected, and {by!r} came')
    return Match(np.array(here, dtype=np.intp), np.array(there, dtype=np.intp),
                 (_others(here, of_measured, len(start)), _others(there, of_nominal, len(target))))


def _others(taken: Sequence[int], names: Optional[Sequence[str]], count: int) -> list:
    kept = set(taken)
    return [i if names is None else names[i] for i in range(count) if i not in kept]
