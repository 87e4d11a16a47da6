# SPDX-License-Identifier: MIT
"""What the documents show: the gallery, the docstrings, the lines in the README."""

import doctest
import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from families import sorted_rows

import tulo3d
from tulo3d import _delaunay, _interpolation

ROOT = Path(__file__).parents[2]
EXAMPLES = sorted((ROOT / "python" / "examples").glob("*.py"))


def run(*arguments):
    """Run Python in a process of its own: without a display VTK complains, and may end the process."""
    return subprocess.run([sys.executable, *arguments], capture_output=True, text=True, check=False)


@pytest.fixture(scope="session")
def renders(tmp_path_factory):
    picture = tmp_path_factory.mktemp("probe") / "probe.png"
    draw = f"import pyvista; pyvista.Sphere().plot(off_screen=True, screenshot={os.fspath(picture)!r})"
    return run("-c", draw).returncode == 0 and picture.exists()


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda path: path.stem)
def test_each_example_runs_and_draws(example, renders, tmp_path):
    result = run(example, *([tmp_path] if renders else []))
    assert result.returncode == 0, result.stderr
    assert len(result.stdout) > 0
    if not renders:
        pytest.skip("nothing can be drawn here, or PyVista is missing; all else was done")
    from PIL import Image

    with Image.open(tmp_path / f"{example.stem}.png") as picture:
        assert len(picture.getcolors(maxcolors=10**7)) > 100


CLIPPED = """
import sys, tulo3d, numpy as np
mesh = tulo3d.Delaunay(np.random.default_rng(1).random((300, 3)))
for i, clip in enumerate(("-x", ([1, 1, 0], [0.5, 0.5, 0.5]), None)):
    mesh.plot(clip=clip, off_screen=True, screenshot=f"{sys.argv[1]}/{i}.png")
"""


def test_a_mesh_is_drawn_clipped(renders, tmp_path):
    if not renders:
        pytest.skip("nothing can be drawn here, or PyVista is missing")
    assert run("-c", CLIPPED, tmp_path).returncode == 0
    assert len({picture.read_bytes() for picture in tmp_path.iterdir()}) == 3


def test_other_packages_get_the_same_mesh(tmp_path):
    pytest.importorskip("pyvista")
    meshio = pytest.importorskip("meshio")
    mesh = tulo3d.Delaunay(np.random.default_rng(1).random((100, 3)))
    grid = mesh.to_pyvista()
    np.testing.assert_array_equal(grid.cells_dict[10], mesh.simplices)
    np.testing.assert_allclose(grid.compute_cell_sizes()["Volume"], mesh.volumes, atol=1e-15)
    mesh.to_meshio().write(tmp_path / "mesh.vtu")
    read = meshio.read(tmp_path / "mesh.vtu")
    np.testing.assert_array_equal(read.points, mesh.points)
    assert sorted_rows(read.cells_dict["tetra"]) == sorted_rows(mesh.simplices)


def test_lines_in_documents_do_what_they_say():
    for module in _delaunay, _interpolation:
        assert doctest.testmod(module).failed == 0
    for document in ("README.md", "docs/python.md"):
        blocks = re.findall(r"```python\n(.*?)```", (ROOT / document).read_text(), flags=re.DOTALL)
        assert len(blocks) > 0
        result = run("-c", "\n".join(blocks))
        assert result.returncode == 0, f"{document}: {result.stderr}"
