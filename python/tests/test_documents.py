"""What the documents show runs as it stands there."""

import json
import os
import pathlib
import re
import subprocess

import numpy as np
import pytest


def test_the_lines_of_the_page_run(tmp_path, monkeypatch, capsys):
    page = pathlib.Path(__file__).parents[2] / "docs" / "python.md"
    code = re.search(r"```python\n(.*?)```", page.read_text(encoding="utf-8"), re.DOTALL).group(1)
    monkeypatch.chdir(tmp_path)
    names = {}
    exec(compile(code, str(page), "exec"), names)
    # A quarter turn about z, and the shift.
    turn = np.array([[0, -1, 0], [1, 0, 0], [0, 0, 1]])
    assert np.allclose(names["result"].matrix[:3, :3], turn, rtol=0, atol=1e-4)
    assert np.allclose(names["result"].translation, [100, 200, 50], rtol=0, atol=0.05)
    assert (tmp_path / "cell.json").exists() and capsys.readouterr().out


def test_the_fit_of_the_readme_is_the_same_as_command_python_and_cpp(monkeypatch, capsys):
    top = pathlib.Path(__file__).parents[2]
    page = (top / "README.md").read_text(encoding="utf-8")
    command = re.search(r"```\n\./run (fit examples/robot_cell_measured.*?)\n```", page).group(1)
    python = re.search(r"```python\n(.*?)```", page, re.DOTALL).group(1)
    cpp = re.search(r"```cpp\n(.*?)```", page, re.DOTALL).group(1)
    monkeypatch.chdir(top)
    names = {}
    exec(compile(python, "README.md", "exec"), names)
    shown = re.search(r"# (\[.*\])", python).group(1)
    assert capsys.readouterr().out.strip() == shown
    told = subprocess.run([os.environ["CORVINADE_CLI"], *command.split(), "--json"], check=True, capture_output=True)
    values = {row["name"]: row["value"] for row in json.loads(told.stdout)["parameters"]}
    translation = [values[name] for name in ("trax", "tray", "traz")]
    # The command sorts the pairs by name, and frames keep their order: the sums end by some rounding apart.
    assert np.allclose(names["result"].translation, translation, rtol=0, atol=1e-9)
    # The excerpt stands in the program, which the tests of the library build and run.
    assert cpp in (top / "examples" / "library" / "robot_cell.cpp").read_text(encoding="utf-8")


def test_the_way_from_a_tracker_to_the_robot_runs(tmp_path, monkeypatch, capsys):
    pytest.importorskip("matplotlib").use("Agg")
    top = pathlib.Path(__file__).parents[2]
    page = (top / "docs" / "python.md").read_text(encoding="utf-8")
    code = re.findall(r"```python\n(.*?)```", page, re.DOTALL)[1]
    assert len([line for line in code.splitlines() if line and not line.startswith("import")]) <= 15
    monkeypatch.chdir(tmp_path)
    (tmp_path / "examples").symlink_to(top / "examples")
    names = {}
    exec(compile(code, "docs/python.md", "exec"), names)
    told = capsys.readouterr().out
    assert "no beam" in told and "worst F09" in told and "static_transform_publisher" in told
    command = subprocess.run(
        [os.environ["CORVINADE_CLI"], "fit", "examples/robot_cell_tracker.csv", "examples/robot_cell_nominal.txt",
         "--skip-bad", "--leave-out", "F09", "--json", "--no-points"], check=True, capture_output=True)
    values = [row["value"] for row in json.loads(command.stdout)["parameters"]][:6]
    assert np.allclose([names["result"].parameters[name].value for name in ("trax", "tray", "traz", "rotx", "roty", "rotz")],
                       values, rtol=0, atol=1e-8)
    assert (tmp_path / "cell.png").read_bytes().startswith(b"\x89PNG")
