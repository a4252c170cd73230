"""Fits by sums: of more pairs than memory holds, or of pairs on many machines."""

from __future__ import annotations

import os
from typing import Any, Mapping, Optional

from . import _corvinade
from ._points import Points, paired, points_of
from ._result import Result


class Moments:
    """The sums that a fit by least squares needs, without any rounding.

    However pairs are cut into pieces, and in whatever order these are added and merged, the sums are the same bit by
    bit, and so is the fit. It is pickled as 1 or 2 kB, so engines such as Dask carry it between machines.

    >>> import numpy as np
    >>> import corvinade
    >>> measured = np.array([[0, 0, 0], [1000, 0, 0], [0, 800, 0], [0, 0, 600.0]])
    >>> a, b = corvinade.Moments(), corvinade.Moments()
    >>> a.add(measured[:3], measured[:3] + [100, 200, 50]).merge(b.add(measured[3:], measured[3:] + [100, 200, 50]))
    Moments(4 pairs)
    >>> np.round(a.fit("6").translation, 6) + 0.0
    array([100., 200.,  50.])
    """

    __slots__ = ("_sums",)

    def __init__(self, measured: Any = None, nominal: Any = None):
        self._sums = _corvinade.Sums()
        if measured is not None or nominal is not None:
            self.add(measured, nominal)

    def add(self, measured: Any, nominal: Any) -> Moments:
        """Takes pairs in: arrays of shape (n, 3), mm, or frames, as `corvinade.fit` does; gives itself.

        All are taken or, where an error comes, none. Frames whose points have not all their partner are refused, for
        there is no result yet that could tell of it. Other threads run meanwhile, and Ctrl-C ends it.
        """
        for side, what in ((measured, "measured"), (nominal, "nominal")):
            if isinstance(side, (str, os.PathLike)):
                raise TypeError(f"{what}: points were expected, and the path {os.fspath(side)!r} came; read_points reads it "
                                "and tells what is to be known of it")
            if isinstance(side, Points) and side.sigma is not None:
                raise ValueError(f"{what}: these points have standard deviations, which Moments have no place for; add "
                                 "their coordinates")
        start, of_measured = points_of(measured, "measured")
        target, of_nominal = points_of(nominal, "nominal")
        if of_measured is not None and of_nominal is not None:
            here, there = paired(of_measured, of_nominal)
            alone = set(of_measured) ^ set(of_nominal)
            if alone:
                raise ValueError(f"{len(alone)} points have no partner of their name, {min(alone)!r} among them: leave "
                                 "them out of what is added")
            start, target = start[here], target[there]
        self._sums.add(start, target)
        return self

    def merge(self, other: Moments) -> Moments:
        """Takes in all that another one has, which stays as it is; gives itself."""
        if not isinstance(other, Moments):
            raise TypeError(f"Moments were expected, and {type(other).__name__} came")
        self._sums.merge(other._sums)
        return self

    def fit(self, parameters: str = "7", hold: Optional[Mapping[str, float]] = None, *,
            max_iterations: int = 100) -> Result:
        """What `corvinade.fit` finds of the same pairs with the norm l2, to the rounding of their coordinates.

        Of single pairs sums say nothing: `residuals` of the result has the shape (0, 3), and norms other than l2, use
        and standard deviations want the points.
        """
        return Result(self._sums.fit(parameters, dict(hold) if hold else {}, max_iterations), None, "l2", ([], []))

    def to_bytes(self) -> bytes:
        """All of it, as any machine reads it; equal sums have equal bytes."""
        return self._sums.to_bytes()

    @classmethod
    def from_bytes(cls, data: bytes) -> Moments:
        """ValueError where they are damaged, or none of these."""
        moments = cls()
        moments._sums = _corvinade.Sums.from_bytes(data)
        return moments

    def __len__(self) -> int:
        return self._sums.count()

    def __eq__(self, other: Any) -> bool:
        return isinstance(other, Moments) and self.to_bytes() == other.to_bytes()

    __hash__ = None

    def __reduce__(self) -> tuple:
        return Moments.from_bytes, (self.to_bytes(),)

    def __repr__(self) -> str:
        return f"Moments({len(self)} pairs)"
