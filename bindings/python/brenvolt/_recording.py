"""Recording: what a program does with the package as a macro."""

import contextlib
import os
import shlex
import sys
from collections.abc import Iterator

from . import _brenvolt


@contextlib.contextmanager
def record(path: str | os.PathLike, origin: str | None = None) -> Iterator[None]:
    """Records what is done in a with block as a macro, written to a file when the block ends without an exception.

    Recorded are data opened, analyses started, the actions on their dialogs, and what is saved or written. origin is
    the comment at the top. Data that come from Python's own values cannot be recorded: Error is raised where an
    analysis starts from them.
    """
    _brenvolt._start_recording(path)
    try:
        yield
    except BaseException:
        _brenvolt._end_recording(None, "")
        raise
    call = shlex.join(["python3", *sys.argv])
    _brenvolt._end_recording(path, f"Recorded by brenvolt {_brenvolt.__version__}:\n{origin or call}")
