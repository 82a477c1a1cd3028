"""What the package raises and warns of."""

import os
import sys
import warnings

from ._brenvolt import visible_line

_PACKAGE = os.path.dirname(__file__)


class Error(RuntimeError):
    """The system refused, or could not do, what was asked; nothing was changed.

    text: what happened, in the system's words; where: the file, sheet or variable that it is about, may be
    empty. Of a failed call on a dialog or document, method is the system's name for it, such as
    "CFitDistribution::put_WeibullOffset" (with the name of the interface instead of the class where the system tells
    none, as for a refused OK), and code tells how it failed: "closed" (the dialog), "refused" (by the dialog),
    "not available", "no such call", or "exception" (anything else). Both are empty for other errors. If a message
    of the system says why, it is the text, and what failed is among __notes__. str() shows control characters of text
    and where as \\u001b; the attributes have them as they are.
    """

    def __init__(self, text: str, where: str = "", method: str = "", code: str = "") -> None:
        super().__init__(text, where, method, code)
        self.text = text
        self.where = where
        self.method = method
        self.code = code

    def __str__(self) -> str:
        return visible_line(f"{self.text} ({self.where})" if self.where else self.text)


class MessageWarning(UserWarning):
    """A message that the system shows while it goes on."""


def warn(text: str) -> None:
    """Warns of a message at the line outside the package that led to it."""
    level = 2
    frame = sys._getframe(1)
    while frame.f_back is not None and os.path.dirname(frame.f_code.co_filename) == _PACKAGE:
        level, frame = level + 1, frame.f_back
    warnings.warn(visible_line(text), MessageWarning, stacklevel=level)
