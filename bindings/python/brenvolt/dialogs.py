"""The classes of the dialogs and documents, made from the analysis module's type library: help(dialogs.SRAStartup)."""

from . import _automation


def __getattr__(name):
    if not name.startswith("_") and name in _automation.classes():
        return _automation.classes()[name]
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")


def __dir__():
    return sorted(_automation.classes())
