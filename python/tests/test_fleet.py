"""The fleet: a folder of cells and a large cloud, on two workers of this machine."""

import json
import os
import pathlib
import signal
import subprocess
import sys

import distributed
import numpy as np
import pandas
import pytest

import corvinade

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"
RANDOM = np.random.default_rng(5)


@pytest.fixture
def fleet(monkeypatch):
    monkeypatch.syspath_prepend(str(EXAMPLES))
    # The processes of workers find it there too.
    monkeypatch.setenv("PYTHONPATH", f"{EXAMPLES}{os.pathsep}{os.environ.get('PYTHONPATH', '')}")
    import fleet as module

    return module


@pytest.fixture
def client(fleet, tmp_path):
    with distributed.Client(n_workers=2, threads_per_worker=1, dashboard_address=None,
                            local_directory=tmp_path / "workers") as started:
        yield started


@pytest.fixture
def cloud(tmp_path):
    measured = RANDOM.uniform(-3000, 3000, (40_001, 3)) + [1e6, 2e6, 0]
    nominal = measured[:, [1, 2, 0]] + [100, 200, 50] + RANDOM.normal(0, 0.2, measured.shape)
    paths = [str(tmp_path / name) for name in ("measured.npy", "nominal.npy")]
    for path, rows in zip(paths, (measured, nominal)):
        np.save(path, rows)
    return paths, measured, nominal


def cells_in(folder):
    truth = {}
    for number in range(5):
        cell = folder / f"cell {number}"
        cell.mkdir(parents=True)
        names = [f"P{i}" for i in range(8)]
        measured = RANDOM.uniform(-500, 500, (8, 3))
        for name, rows in (("measured.csv", measured), ("nominal.csv", measured + [number, 20, 30])):
            pandas.DataFrame(rows, index=names, columns=list("xyz")).to_csv(cell / name, index_label="name")
        truth[cell.name] = [number, 20, 30]
    return truth


def test_a_cloud_on_two_workers_has_the_bits_of_one_process(fleet, client, cloud):
    paths, measured, nominal = cloud
    whole = corvinade.Moments(measured, nominal).fit("6")
    for piece in (997, 10_000, 1_000_000):
        result = fleet.fit_cloud(client, *paths, "6", piece)
        assert np.array_equal(result.matrix, whole.matrix)
        assert result.statistics == whole.statistics
    of_points = corvinade.fit(measured, nominal, "6")
    assert np.allclose(whole.transform(measured), of_points.transform(measured), rtol=0, atol=1e-6)


def test_a_worker_that_is_killed_in_the_middle_changes_no_bit(fleet, client, cloud):
    paths, measured, nominal = cloud
    before = set(client.run(os.getpid).values())
    assert len(before) == 2
    seen = []

    def told(done, of):
        seen.append((done, of))
        if done == 10:
            os.kill(min(before), signal.SIGKILL)

    result = fleet.fit_cloud(client, *paths, "6", 400, told)
    assert seen[-1] == (101, 101) and len(seen) == 101
    whole = corvinade.Moments(measured, nominal).fit("6")
    assert np.array_equal(result.matrix, whole.matrix) and result.statistics == whole.statistics
    client.wait_for_workers(2)
    assert min(before) not in client.run(os.getpid).values()


def test_a_cell_that_fails_ends_no_other(fleet, client, tmp_path):
    folder = tmp_path / "cells"
    truth = cells_in(folder)
    (folder / "cell 1" / "nominal.csv").unlink()
    (folder / "cell 3" / "measured.csv").write_text("name,x,y,z\nP0,1,2,three\nP1,1,2,3\n")
    rows = fleet.fit_cells(client, folder, "6")
    assert [row["cell"] for row in rows] == sorted(truth)
    assert [row["status"] for row in rows] == ["done", "failed", "done", "failed", "done"]
    assert "nominal.csv" in rows[1]["error"]
    for row in rows[::2]:
        assert np.allclose(row["result"]["transformation"]["translation_mm"], truth[row["cell"]], rtol=0, atol=1e-9)


def test_the_program_works_on_a_cluster_by_its_address(fleet, client, cloud, tmp_path):
    paths, measured, nominal = cloud
    address, out = client.scheduler.address, tmp_path / "fit.json"
    run = subprocess.run([sys.executable, str(EXAMPLES / "fleet.py"), "cloud", *paths, "--out", str(out), "--piece",
                          "5000", "--parameters", "6", "--scheduler", address], capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    told = json.loads(out.read_text())
    assert told["counts"]["pairs"] == 40_001
    assert told["transformation"]["matrix"] == corvinade.Moments(measured, nominal).fit("6").matrix.tolist()


def test_the_program_starts_processes_of_its_own_and_says_what_failed(fleet, tmp_path):
    cells_in(tmp_path / "cells")
    (tmp_path / "cells" / "cell 2" / "measured.csv").unlink()
    out = tmp_path / "results.jsonl"
    run = subprocess.run([sys.executable, str(EXAMPLES / "fleet.py"), "cells", str(tmp_path / "cells"), "--out", str(out),
                          "--workers", "2"], capture_output=True, text=True)
    assert run.returncode == 1
    assert "5 cells: 4 done, 1 not" in run.stdout
    assert "cell 2" in run.stderr and "measured.csv" in run.stderr
    assert len(out.read_text().splitlines()) == 5
    bad = subprocess.run([sys.executable, str(EXAMPLES / "fleet.py"), "cloud", str(out), str(out), "--out", "x"],
                         capture_output=True, text=True)
    assert bad.returncode == 1 and bad.stderr.startswith("fleet.py: ")
