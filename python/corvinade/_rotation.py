"""Rotations, told as scipy's Rotation tells them."""

from __future__ import annotations

import math
import warnings

import numpy as np

_LOCK = 1e-12


class Rotation:
    """An active rotation, R of X = T + R K S x: it turns points about axes that stay.

    Conventions are those of ``scipy.spatial.transform.Rotation``: quaternions have w behind, lower-case letters
    are axes that stay, capital ones axes that turn along.

    >>> import corvinade
    >>> turn = corvinade.Transformation([[0, -1, 0, 5], [1, 0, 0, 6], [0, 0, 1, 7], [0, 0, 0, 1.0]]).rotation
    >>> turn.as_euler("xyz", degrees=True).round(9) + 0.0
    array([ 0.,  0., 90.])
    >>> turn.as_quat().round(6) + 0.0
    array([0.      , 0.      , 0.707107, 0.707107])
    """

    __slots__ = ("_matrix", "_quaternion")

    def __init__(self, matrix: np.ndarray, quaternion: tuple[float, float, float, float]):
        self._matrix = matrix
        self._matrix.flags.writeable = False
        self._quaternion = quaternion

    def as_matrix(self) -> np.ndarray:
        """The matrix R, shape (3, 3)."""
        return self._matrix

    def as_quat(self) -> np.ndarray:
        """The unit quaternion x, y, z, w, shape (4,); w is not below 0."""
        return np.array(self._quaternion)

    def as_rotvec(self, degrees: bool = False) -> np.ndarray:
        """The axis times the angle of 0 to pi about it, shape (3,); rad, or degrees."""
        q = self.as_quat()
        sine = math.hypot(*q[:3])
        angle = 2 * math.atan2(sine, q[3])
        # About no axis: the angle is twice the sine.
        vector = q[:3] * (angle / sine if sine > 0 else 2)
        return np.degrees(vector) if degrees else vector

    def as_euler(self, seq: str, degrees: bool = False) -> np.ndarray:
        """Three angles, shape (3,), about the axes of `seq`; rad, or degrees.

        "xyz" turns about x, then y, then z of axes that stay; "XYZ" about x, the new y and the newest z. Where
        the second turn brings the third axis onto the first (gimbal lock), which is warned of, the third angle
        is 0.
        """
        fixed = seq.islower()
        axes = ["xyz".find(letter) for letter in seq.lower()]
        if len(seq) != 3 or not (fixed or seq.isupper()) or -1 in axes or axes[0] == axes[1] or axes[1] == axes[2]:
            raise ValueError(
                'three axes such as "xyz" (that stay) or "XYZ" (that turn along) were expected, none twice in a row, '
                f"and {seq!r} came"
            )
        # Turns about axes that stay are those about axes that turn along, in the opposite order.
        angles = self._turns(axes[::-1] if fixed else axes, lock_takes_first=fixed)
        if fixed:
            angles = angles[::-1]
        return np.degrees(angles) if degrees else angles

    def _turns(self, axes: list[int], lock_takes_first: bool) -> np.ndarray:
        """R = R_i(a) R_j(b) R_k(c) with the elementary rotations about the axes i, j and k."""
        R = self._matrix
        i, j = axes[0], axes[1]
        other = 3 - i - j  # the third axis, also where the sequence ends with the first again
        e = 1.0 if (j - i) % 3 == 1 else -1.0
        twice = axes[2] == i
        sides = math.hypot(R[i, j], R[i, other]) if twice else math.hypot(R[i, i], R[i, j])
        b = math.atan2(sides, R[i, i]) if twice else math.atan2(e * R[i, other], sides)
        if sides < _LOCK:
            warnings.warn("gimbal lock: only two of the three angles are determined, the third one is 0", stacklevel=4)
            if not lock_takes_first:
                return np.array([math.atan2(e * R[other, j], R[j, j]), b, 0.0])
            a = 0.0
        elif twice:
            a = math.atan2(R[j, i], -e * R[other, i])
        else:
            a = math.atan2(-e * R[j, other], R[other, other])
        # From what is left when the first turn is taken back, so that near the lock both together are right.
        row = math.cos(a) * R[j] + e * math.sin(a) * R[other]
        c = math.atan2(-e * row[other], row[j]) if twice else math.atan2(e * row[i], row[j])
        return np.array([a, b, c])

    def as_scipy(self):
        """The same as ``scipy.spatial.transform.Rotation``."""
        from scipy.spatial.transform import Rotation as Other

        return Other.from_quat(self.as_quat())

    def __repr__(self) -> str:
        x, y, z = self.as_rotvec(degrees=True)
        return f"Rotation(rotvec=[{x:.6f}, {y:.6f}, {z:.6f}] deg)"
