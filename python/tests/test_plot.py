"""What is left over, as a picture."""

import sys

import numpy as np
import pytest

import corvinade

POINTS = np.array([[0, 0, 0], [1000, 0, 0], [0, 800, 0], [0, 0, 600], [700, 500, 300.0]])


def fitted(**more):
    return corvinade.fit(POINTS, POINTS + 0.3 * np.eye(5, 3), "6", **more)


def test_bars_are_as_high_as_the_residuals_are_long():
    matplotlib = pytest.importorskip("matplotlib")
    matplotlib.use("Agg")
    result = fitted(names=list("abcde"))
    axes = result.plot()
    heights = [bar.get_height() for bar in axes.patches]
    assert np.allclose(heights, np.sqrt((np.asarray(result.residuals) ** 2).sum(axis=1)), rtol=1e-12)
    assert [label.get_text() for label in axes.get_xticklabels()] == list("abcde")
    other = axes.figure.add_subplot()
    assert fitted().plot(other) is other and other.get_xlabel() == "pair, from 0"


def test_without_matplotlib_it_says_so(monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib", None)
    with pytest.raises(ImportError, match="install python3-matplotlib"):
        fitted().plot()
