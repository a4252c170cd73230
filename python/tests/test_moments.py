"""Fits by sums, held against the fits of the points themselves."""

import copy
import pickle

import numpy as np
import pandas
import pytest

import corvinade

RANDOM = np.random.default_rng(11)
MEASURED = RANDOM.uniform(-2000, 2000, (500, 3)) + [1e6, -2e6, 5e5]
TURN = np.array([[0, -1, 0], [1, 0, 0], [0, 0, 1.0]])
NOMINAL = 1.001 * MEASURED @ TURN.T + [10, 20, 30] + RANDOM.normal(0, 0.05, (500, 3))


@pytest.mark.parametrize("parameters", ["level", "6", "7", "9", "12"])
def test_fit_is_that_of_the_points(parameters):
    of_points = corvinade.fit(MEASURED, NOMINAL, parameters)
    of_sums = corvinade.Moments(MEASURED, NOMINAL).fit(parameters)
    assert np.allclose(of_sums.transform(MEASURED), of_points.transform(MEASURED), rtol=0, atol=1e-7)
    assert of_sums.statistics.s0 == pytest.approx(of_points.statistics.s0, rel=1e-9)
    for name, parameter in of_points.parameters.items():
        assert of_sums.parameters[name].sigma == pytest.approx(parameter.sigma, rel=1e-6)
    assert of_sums.residuals.shape == (0, 3)
    assert "500 pairs" in repr(of_sums) and '"pairs": 500' in of_sums.to_json()


def test_fit_takes_them_in_the_place_of_both():
    moments = corvinade.Moments(MEASURED, NOMINAL)
    one, other = corvinade.fit(moments, parameters="6", hold={"rotx": 0}), moments.fit("6", {"rotx": 0})
    assert np.array_equal(one.matrix, other.matrix)
    for wrong in ({"norm": "l1"}, {"sigma": 1.0}, {"use": np.ones(500, bool)}, {"names": ["a"]},
                  {"nominal": NOMINAL}, {"seed": (3, 4, 5)}):
        with pytest.raises(ValueError, match="Moments"):
            corvinade.fit(moments, **wrong)


def test_pieces_in_any_order_give_the_same_bits():
    whole = corvinade.Moments(MEASURED, NOMINAL)
    for _ in range(10):
        cuts = np.sort(RANDOM.choice(499, 7, replace=False) + 1)
        pieces = [corvinade.Moments(a, b) for a, b in zip(np.split(MEASURED, cuts), np.split(NOMINAL, cuts))]
        RANDOM.shuffle(pieces)
        merged = corvinade.Moments()
        for piece in pieces:
            merged.merge(pickle.loads(pickle.dumps(piece)))
        assert merged == whole and len(merged) == 500
        assert np.array_equal(merged.fit().matrix, whole.fit().matrix)
    assert copy.deepcopy(whole) == whole and corvinade.Moments.from_bytes(whole.to_bytes()) == whole


def test_takes_all_or_nothing():
    moments = corvinade.Moments(MEASURED, NOMINAL)
    before = moments.to_bytes()
    wrong = NOMINAL.copy()
    wrong[499, 2] = np.nan
    for bad in (wrong, NOMINAL[:-1], NOMINAL[:, :2], NOMINAL.ravel()):
        with pytest.raises(ValueError):
            moments.add(MEASURED, bad)
    with pytest.raises(TypeError):
        moments.add(MEASURED, NOMINAL.astype(object))
    with pytest.raises(TypeError):
        moments.merge(3)
    with pytest.raises(ValueError, match="damaged"):
        corvinade.Moments.from_bytes(before[:-1])
    assert moments.to_bytes() == before


def test_frames_are_paired_by_name_and_all_of_them():
    names = [f"P{i}" for i in range(500)]
    one = pandas.DataFrame(MEASURED, index=names, columns=list("xyz"))
    other = pandas.DataFrame(NOMINAL, index=names, columns=list("xyz")).iloc[::-1]
    assert corvinade.Moments(one, other) == corvinade.Moments(MEASURED, NOMINAL)
    with pytest.raises(ValueError, match="'P7'"):
        corvinade.Moments(one, other.drop("P7"))


def test_arrays_are_taken_however_they_lie():
    assert corvinade.Moments(np.asfortranarray(MEASURED), np.ascontiguousarray(NOMINAL[::-1])[::-1]) == \
        corvinade.Moments(MEASURED, NOMINAL)
