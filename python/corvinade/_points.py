"""What is handed over as points becomes arrays of doubles, or an error that says what came."""

from __future__ import annotations

import os
from typing import Any, Optional, Sequence

import numpy as np

_EXACT = 2**53


class Points:
    """Named points: `names`, n texts, and `coordinates` of shape (n, 3), mm, as numpy takes them (``np.asarray``).

    `sigma` is of shape (n, 3), mm, where the file had standard deviations of each point, else None. `path`, `format`
    ("table", "ply", "pcd", "landxml", ...) and `unit` tell what was read, `notes` what was decided on the way.
    """

    __slots__ = ("names", "coordinates", "sigma", "path", "format", "unit", "notes")

    def __init__(self, names: Sequence[str], coordinates: np.ndarray, sigma: Optional[np.ndarray] = None,
                 path: str = "", format: str = "", unit: str = "mm", notes: Sequence[Any] = ()):
        self.names = list(names)
        self.coordinates = coordinates
        self.sigma = sigma
        self.path, self.format, self.unit = path, format, unit
        self.notes = list(notes)

    def __len__(self) -> int:
        return len(self.names)

    def __array__(self, dtype: Any = None) -> np.ndarray:
        return self.coordinates if dtype is None else self.coordinates.astype(dtype)

    def __getitem__(self, name: str) -> np.ndarray:
        """The coordinates of the point of this name, shape (3,), mm."""
        if name not in self.names:
            raise KeyError(f"{name!r} is none of the {len(self)} points")
        return self.coordinates[self.names.index(name)]

    def drop(self, *names: str) -> Points:
        """The points without those of these names. KeyError for a name that none has."""
        for name in names:
            if name not in self.names:
                raise KeyError(f"{name!r} is none of the {len(self)} points")
        return self._at([i for i, name in enumerate(self.names) if name not in names])

    def _at(self, places: Sequence[int]) -> Points:
        return Points([self.names[i] for i in places], self.coordinates[places],
                      None if self.sigma is None else self.sigma[places], self.path, self.format, self.unit, self.notes)

    def to_frame(self) -> Any:
        """A frame of pandas with the columns x, y, z and the names as index."""
        import pandas

        return pandas.DataFrame(self.coordinates, index=pandas.Index(self.names, name="name"), columns=["x", "y", "z"])

    def __repr__(self) -> str:
        return f"Points({len(self)} points{f' of {self.path}' if self.path else ''}, {len(self.notes)} notes)"


def doubles(numbers: Any, what: str) -> np.ndarray:
    """An array of float64 with the same numbers; one that is such an array is not copied."""
    if type(numbers) is np.ndarray and numbers.dtype == np.float64:
        return numbers
    if isinstance(numbers, (str, bytes, os.PathLike)):
        raise TypeError(f"{what}: an array was expected, and the path or text {os.fspath(numbers)!r} came")
    if isinstance(numbers, np.ma.MaskedArray) and np.ma.is_masked(numbers):
        raise TypeError(f"{what}: numbers were expected, and a masked array came, in which some are missing")
    try:
        array = np.asarray(numbers)
    except ValueError:
        raise ValueError(f"{what}: an array of shape (n, 3) was expected, and rows of different lengths came") from None
    if array.size == 0 and array.dtype.kind == "f":
        return array.astype(np.float64)
    if array.dtype.kind not in "iuf" or array.dtype.itemsize > 8:
        raise TypeError(f"{what}: an array of float64 was expected, and one of {array.dtype} came")
    if array.dtype.kind in "iu" and array.size and (array.max() > _EXACT or array.min() < -_EXACT):
        raise ValueError(f"{what}: whole numbers beyond 2**53 have no place in a float64")
    return array.astype(np.float64)


def is_frame(points: Any) -> bool:
    return hasattr(points, "columns") and hasattr(points, "index") and hasattr(points, "to_numpy")


def points_of(points: Any, what: str) -> tuple[np.ndarray, Optional[list[str]]]:
    """Coordinates of shape (n, 3), and the names where a frame has them."""
    if type(points) is np.ndarray:
        return doubles(points, what), None
    if isinstance(points, (str, os.PathLike)):
        from ._reading import read_points

        points = read_points(points)
    if isinstance(points, Points):
        return doubles(points.coordinates, what), points.names
    if not is_frame(points):
        return doubles(points, what), None
    axes = {str(column).strip().lower(): column for column in points.columns}
    if {"x", "y", "z"} <= axes.keys():
        points = points[[axes["x"], axes["y"], axes["z"]]]
    elif len(points.columns) != 3:
        raise ValueError(f"{what}: a frame with the columns x, y, z was expected, or with three columns, and one with "
                         f"{', '.join(map(repr, points.columns))} came")
    # Without names of its own a frame counts its rows.
    counted = type(points.index).__name__ == "RangeIndex"
    return doubles(points.to_numpy(), what), None if counted else [str(name) for name in points.index]


def paired(of_measured: Sequence[str], of_nominal: Sequence[str]) -> tuple[list[int], list[int]]:
    """Places of the points that both have, in the order of the measured ones."""
    for names, what in ((of_measured, "measured"), (of_nominal, "nominal")):
        if len(set(names)) != len(names):
            seen: set[str] = set()
            twice = next(name for name in names if name in seen or seen.add(name))  # type: ignore[func-returns-value]
            raise ValueError(f"{what}: points are paired by their names, and {twice!r} stands there more than once")
    places = {name: i for i, name in enumerate(of_nominal)}
    both = [i for i, name in enumerate(of_measured) if name in places]
    if not both:
        raise ValueError(f"no name stands in both: measured has {of_measured[0]!r}, ..., nominal {of_nominal[0]!r}, ..."
                         if of_measured and of_nominal else "points were expected, and none came")
    return both, [places[of_measured[i]] for i in both]
