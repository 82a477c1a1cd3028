"""What the package raises and warns of."""

import os
import sys
import warnings

_PACKAGE = os.path.dirname(__file__)


class Error(RuntimeError):
    """The system refused, or could not do, what was asked; nothing was changed.

    text: what happened, in the system's words; where: the file, sheet or variable that it is about, may be
    empty; method: of a failed call on a dialog, the system's name for it, else empty.
    """

    def __init__(self, text: str, where: str = "", method: str = "") -> None:
        super().__init__(text, where, method)
        self.text = text
        self.where = where
        self.method = method

    def __str__(self) -> str:
        return f"{self.text} ({self.where})" if self.where else self.text


class MessageWarning(UserWarning):
    """A message that the system shows while it goes on."""


def warn(text: str) -> None:
    """Warns of a message at the line outside the package that led to it."""
    level = 2
    frame = sys._getframe(1)
    while frame.f_back is not None and os.path.dirname(frame.f_code.co_filename) == _PACKAGE:
        level, frame = level + 1, frame.f_back
    warnings.warn(text, MessageWarning, stacklevel=level)
