"""Brenvolt Distributions & Simulation: fits probability distributions to data, ranks the fits, simulates from them.

The common jobs, each in one call:

    result = brenvolt.fit(frame)                    # every numeric column, all distributions
    result.variables["strength"].fits               # a DataFrame, best first
    result.best["strength"].cdf(100)
    samples = brenvolt.simulate(result, 10000, method="latin-hypercube", seed=7)

`brenvolt.distributions` has the sixteen distributions. Everything else the system offers is driven through its
dialogs, as macros do; see Application and Analysis.
"""

from . import _arguments  # before anything takes functions of the extension
from ._automation import (Analysis, Application, Array, AutomationObject, GraphDocument, IndexedProperty, Nothing,
                          TableDocument)
from ._brenvolt import Message, NotSet, Spreadsheet, Variable, Workbook, __version__, read_csv, save_wait, version_text
from ._capability import CapabilityResult, capability
from ._censored import CensoredFitResult, CensoredVariable
from ._design import Design, design
from ._errors import Error, MessageWarning
from ._jobs import FitResult, FittedVariable, ProfiledResponse, ProfileResult, fit, profile, score, simulate
from ._macro_check import check_macro
from ._reading import open_workbook, preview
from ._recording import record
from . import _automation, _sheets, dialogs, distributions

_OFFERED = ("Analysis", "Application", "Array", "AutomationObject", "CapabilityResult",
            "CensoredFitResult", "CensoredVariable", "Design", "Error", "FitResult", "FittedVariable",
            "GraphDocument", "IndexedProperty", "Message", "MessageWarning", "NotSet", "Nothing",
            "ProfileResult", "ProfiledResponse", "Spreadsheet", "TableDocument", "Variable", "Workbook", "capability",
            "check_macro", "dialogs", "design", "distributions", "fit", "open_workbook", "preview", "profile",
            "read_csv", "record", "save_wait", "score", "simulate", "version_text")


def __getattr__(name):
    """The enumerations and constants of the type library, and with them __all__, which lists everything."""
    if name == "__all__":
        return [*_OFFERED, *_automation.enumerations(), *_automation.constants()]
    if not name.startswith("_"):
        for offered in (_automation.enumerations, _automation.constants):
            if name in offered():
                return offered()[name]
    raise AttributeError(f"module {__name__!r} has no attribute {name!r}")


def __dir__():
    return sorted([*_OFFERED, "__version__", *_automation.enumerations(), *_automation.constants()])
