"""Bad input: exceptions that say what was expected and what came."""

import pathlib

import numpy as np
import pandas
import pytest

import corvinade

GOOD = np.random.default_rng(7).uniform(-500, 500, (6, 3))


def said(kind, *arguments, **options):
    with pytest.raises(kind) as caught:
        corvinade.fit(*arguments, **options)
    return str(caught.value)


def test_says_which_shape_was_expected_and_which_came():
    assert said(ValueError, GOOD.T.copy(), GOOD) == (
        "measured: an array of shape (n, 3) was expected, and one of shape (3, 6) came")
    assert said(ValueError, GOOD, GOOD.ravel()) == (
        "nominal: an array of shape (n, 3) was expected, and one of shape (18,) came")
    assert "different lengths" in said(ValueError, [[1, 2, 3], [4, 5]], GOOD)
    assert said(ValueError, GOOD[:4], GOOD) == "both sets have as many points, and 4 and 6 came"


def test_says_that_there_are_no_points():
    assert said(ValueError, np.empty((0, 3)), np.empty((0, 3))) == "measured: points were expected, and none came"
    assert "shape (0,)" in said(ValueError, [], [])


@pytest.mark.parametrize("wrong", [GOOD.astype(object), GOOD.astype(str), GOOD.astype(complex), GOOD > 0,
                                   GOOD.astype(np.longdouble)])
def test_takes_numbers_alone(wrong):
    assert said(TypeError, wrong, GOOD) == f"measured: an array of float64 was expected, and one of {wrong.dtype} came"


def test_says_which_number_is_none():
    for value, name in ((np.nan, "nan"), (np.inf, "inf")):
        damaged = GOOD.copy()
        damaged[4, 1] = value
        text = said(corvinade.InvalidInput, GOOD, damaged)
        assert f"that of point 4 along y is {name}" in text
    assert issubclass(corvinade.InvalidInput, ValueError)


def test_takes_no_missing_numbers_for_numbers():
    masked = np.ma.array(GOOD, mask=GOOD > 400)
    masked[0, 0] = np.ma.masked
    assert "masked" in said(TypeError, masked, GOOD)
    assert "2**53" in said(ValueError, np.full((6, 3), 2**53 + 1), GOOD)


def test_says_where_a_path_has_no_place():
    assert "measured.csv" in said(TypeError, GOOD, GOOD, sigma="measured.csv")
    assert "measured.csv" in said(TypeError, GOOD, GOOD, nominal_sigma=pathlib.Path("measured.csv"))


def test_says_which_names_there_are():
    assert "level, 6, 7, 9, 12" in said(ValueError, GOOD, GOOD, "8")
    assert "minimax" in said(ValueError, GOOD, GOOD, norm="l3")
    assert "rotz" in said(ValueError, GOOD, GOOD, hold={"rot": 0})
    assert "finite" in said(ValueError, GOOD, GOOD, hold={"rotz": np.nan})
    assert said(ValueError, GOOD, GOOD, names=["a"]) == "names: as many as pairs were expected, 6, and 1 came"
    assert "1 for 7" not in said(ValueError, GOOD[:2], GOOD[:2]) and "6 for 7" in said(ValueError, GOOD[:2], GOOD[:2])


def test_checks_flags_and_standard_deviations():
    assert "of bool" in said(TypeError, GOOD, GOOD, use=np.ones(6))
    assert "shape (5,)" in said(ValueError, GOOD, GOOD, use=np.ones(5, bool))
    assert "shape (4,)" in said(ValueError, GOOD, GOOD, sigma=np.ones(4))
    assert "not below 0" in said(ValueError, GOOD, GOOD, sigma=-1.0)
    assert "true optimum" in said(ValueError, GOOD, GOOD, sigma=1.0, norm="minimax")


def frames():
    nominal = pandas.DataFrame(GOOD + [1, 2, 3], columns=["x", "y", "z"], index=list("abcdef"))
    measured = pandas.DataFrame(GOOD, columns=["X", "Y", "Z"], index=list("abcdef"))
    return measured, nominal


def test_pairs_frames_by_their_names_and_tells_who_has_no_partner():
    measured, nominal = frames()
    nominal = nominal.iloc[[5, 0, 3, 2, 1]].rename(index={"b": "q"})
    result = corvinade.fit(measured, nominal, "6")
    assert result.names == ["a", "c", "d", "f"]
    assert np.allclose(result.translation, [1, 2, 3])
    assert result.unpaired == (["b", "e"], ["q"])
    told = [note.text for note in result.notes if note.code == "unpaired"]
    assert told == ["2 of the measured points have no partner of their name and take no part: b, e",
                    "1 of the nominal points have no partner of their name and take no part: q"]
    moved = result.transform(measured)
    assert list(moved.index) == list("abcdef") and np.allclose(moved.to_numpy(), GOOD + [1, 2, 3])


def test_takes_columns_by_their_names_whatever_stands_between():
    measured, nominal = frames()
    measured.insert(0, "time", "noon")
    assert np.allclose(corvinade.fit(measured[["Z", "time", "X", "Y"]], nominal, "6").translation, [1, 2, 3])
    assert "columns x, y, z" in said(ValueError, measured[["X", "Y"]], nominal)


def test_takes_frames_without_names_in_their_order():
    measured, nominal = frames()
    plain = pandas.DataFrame(measured.to_numpy())
    assert corvinade.fit(plain, plain, "6").names is None
    assert corvinade.fit(measured, nominal.to_numpy(), "6").names == list("abcdef")


def test_refuses_names_that_stand_twice_or_nowhere():
    measured, nominal = frames()
    assert "'a' stands there more than once" in said(ValueError, measured.rename(index={"b": "a"}), nominal)
    assert "no name stands in both" in said(ValueError, measured.rename(index=str.upper), nominal)
    assert "paired by their names" in said(ValueError, measured, nominal, use=np.ones(6, bool))
