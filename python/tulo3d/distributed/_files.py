# SPDX-License-Identifier: MIT
"""Files that are complete or absent."""

from __future__ import annotations

import os
import uuid
from collections.abc import Callable
from pathlib import Path
from typing import IO, Any

import numpy as np
import numpy.typing as npt

Array = npt.NDArray[Any]


def needs(error: ImportError, what: str) -> ImportError:
    """Return an error that says what to install."""
    return ImportError(f"{what} needs {error.name}: pip install {error.name}")


def allow_many_open_files() -> None:
    """Raise the limit of this process as far as it may: a file in memory counts as open, and a tile maps all others'."""
    try:
        import resource
    except ImportError:  # where there is no such limit
        return
    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    if soft != hard:
        resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))


def write(path: Path, contents: Callable[[IO[bytes]], object]) -> None:
    """Write a file under another name and rename it at the end: the same task may run twice at a time."""
    unfinished = path.with_name(f"{path.name}.{uuid.uuid4().hex}.part")
    try:
        with open(unfinished, "wb") as file:
            contents(file)
        os.replace(unfinished, path)
    except BaseException:
        unfinished.unlink(missing_ok=True)
        raise


class Scratch:
    """The arrays that tasks leave for others, each in a file of its own, by its name and a number."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder

    def path(self, name: str, number: int) -> Path:
        return self.folder / f"{name}_{number}.npy"

    def save(self, name: str, number: int, array: Array) -> None:
        write(self.path(name, number), lambda file: np.save(file, array))

    def load(self, name: str, number: int) -> Array:
        """Map a file into memory: what is not read of it is never loaded."""
        path = self.path(name, number)
        try:
            array: Array = np.load(path, mmap_mode="r")
        except ValueError:  # an empty array cannot be mapped
            array = np.load(path)
        return array

    def expect(self) -> None:
        """Raise an error when the work has been stopped: then the folder is gone."""
        if not self.folder.exists():
            raise FileNotFoundError(f"{self.folder} is gone: the work was stopped")

    def remove(self, *names: str) -> None:
        for name in names:
            for path in self.folder.glob(f"{name}_*.npy"):
                path.unlink()
