"""What the documents show runs as it stands there."""

import pathlib
import re

import numpy as np


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
