"""What a wrong argument is told: which one it is, what is accepted, and what was given.

The functions of the extension, which would tell the types of C++, say the same once this is imported.
"""

import functools
import numbers
import os
import re
from collections.abc import Iterable, Mapping
from decimal import Decimal

from . import _brenvolt


def _is_truth(value):
    return isinstance(value, bool) or type(value).__module__ == "numpy" and type(value).__name__.startswith("bool")


def _is_number(value):
    return isinstance(value, (numbers.Real, Decimal)) and not _is_truth(value)


def _is_text(value):
    return isinstance(value, str)


# What people call a type of the extension's signatures, and whether a value is of it.
_TYPES = {
    "str": ("a text", _is_text),
    "bool": ("True or False", _is_truth),
    "int": ("a whole number", lambda value: isinstance(value, numbers.Integral) and not _is_truth(value)),
    "float": ("a number", _is_number),
    "os.PathLike": ("a path", lambda value: isinstance(value, (str, bytes, os.PathLike))),
    "List[str]": ("a list of texts", lambda value: isinstance(value, (list, tuple)) and all(map(_is_text, value))),
    "Dict[float, str]": ("a mapping {number: text}", lambda value: isinstance(value, Mapping)
                         and all(map(_is_number, value)) and all(map(_is_text, value.values()))),
    "brenvolt._brenvolt.Spreadsheet": ("a Spreadsheet", lambda value: isinstance(value, _brenvolt.Spreadsheet)),
}
_FORM = re.compile(r"^    \d+\. [\w.]*\((.*?)\)(?: -> .*)?$", re.MULTILINE)
_PARAMETER = re.compile(r"(\w+): ((?:Optional\[)?[\w.]+(?:\[[^\]]*\])?\]?)")


def refuse(what, wanted, value):
    """Raises the TypeError of an argument."""
    raise TypeError(f"{what} must be {wanted}, not {type(value).__name__}")


def number(value, what, wanted="a number"):
    """A number (not a bool) that fits a double."""
    if not _is_number(value):
        refuse(what, wanted, value)
    try:
        return float(value)
    except OverflowError:
        raise ValueError(f"{what} is too large a number") from None


def path(value, what):
    """A path as text."""
    if not isinstance(value, (str, bytes, os.PathLike)):
        refuse(what, "a path", value)
    _brenvolt._require_value(what, os.fsdecode(value))
    return os.fsdecode(value)


def text(value, what, wanted="a text"):
    """A text that is not empty."""
    if not _is_text(value):
        refuse(what, wanted, value)
    _brenvolt._require_value(what, value)
    return value


def names(given, what):
    """One name or several as texts. Frames may call their columns anything but None."""
    if given is None:
        return []
    if isinstance(given, (str, numbers.Integral)) and not _is_truth(given):
        return [str(given)]
    if not isinstance(given, Iterable) or isinstance(given, (bytes, bytearray)):
        refuse(what, "a name or names", given)
    given = list(given)
    for place, name in enumerate(given):
        if name is None or isinstance(name, bytes) or _is_truth(name):
            refuse(f"{what}[{place}]", "a name", name)
    return [str(name) for name in given]


def texts(given, what, wanted):
    """One text or path, or several, as texts."""
    if given is None:
        return []
    if isinstance(given, (str, os.PathLike)):
        return [os.fspath(given)]
    if not isinstance(given, Iterable) or isinstance(given, (bytes, bytearray)):
        refuse(what, f"{wanted} or several", given)
    given = list(given)
    for place, one in enumerate(given):
        if not isinstance(one, (str, os.PathLike)):
            refuse(f"{what}[{place}]", wanted, one)
    return [os.fspath(one) for one in given]


def _accepted(kind):
    """The words for a type, and whether a value is of it."""
    if kind.startswith("Optional["):
        words, fits = _accepted(kind[len("Optional["):-1])
        return f"{words} or None", lambda value: value is None or fits(value)
    return _TYPES.get(kind, ("something else", lambda value: True))


def _fault(what, kinds, value):
    """The exception for a value that is of none of the types, or that is beyond what they hold; else None."""
    accepted = [_accepted(kind) for kind in kinds]
    if not any(fits(value) for _, fits in accepted):
        return TypeError(f"{what} must be {' or '.join(words for words, _ in accepted)}, not {type(value).__name__}")
    if isinstance(value, str) and "\0" in value:
        return ValueError(f"{what} holds a null character: {value!r}")
    if isinstance(value, str) and not value.isprintable():
        return ValueError(f"{what} is not text that UTF-8 can hold: {value!r}")
    if _is_number(value) and (value < 0 or value > 1e15):
        return ValueError(f"{what} must not be negative" if value < 0 else f"{what} is too large a number")
    return None


def _explanation(error, arguments, keywords, operand=None):
    """The exception to raise in place of the extension's own, which tells the types of C++. `operand` names the only
    argument of an operator or property."""
    forms = [[found for found in _PARAMETER.findall(form) if found[0] != "self"] for form in _FORM.findall(str(error))]
    if "incompatible" not in str(error) or not forms:
        return error
    given = {}  # the types by the name of the argument, and its value
    for form in forms:
        if operand is not None:
            form = [(operand, form[-1][1])]
        for place, (parameter, kind) in enumerate(form):
            if place < len(arguments) or parameter in keywords:
                value = arguments[place] if place < len(arguments) else keywords[parameter]
                what = " or ".join(one[0][0] for one in forms) if len(forms) > 1 and operand is None else parameter
                given.setdefault(what, ([], value))[0].append(kind)
    faults = (_fault(what, kinds, value) for what, (kinds, value) in given.items())
    takes = " or ".join("(" + ", ".join(parameter for parameter, _ in form) + ")" for form in forms)
    return next(filter(None, faults), TypeError(f"wrong arguments; they are {takes}"))


def set_field(target, field, value):
    """Assigns to a member of an object of the extension, which would take a truth value for a number and the
    reverse."""
    _, kind = _PARAMETER.findall(getattr(type(target), field).fset.__doc__)[-1]
    words, fits = _accepted(kind)
    if not fits(value):
        refuse(field, words.removesuffix(" or None"), value)
    for one in value if isinstance(value, (list, tuple)) else [value]:
        if isinstance(one, (str, os.PathLike)):
            _brenvolt._require_value(field, os.fspath(one))
    try:
        setattr(target, field, value)
    except TypeError as error:
        fault = _explanation(error, (value,), {}, field)
    else:
        return
    raise fault


def _explaining(function, is_method, operand):
    @functools.wraps(function)
    def call(*arguments, **keywords):
        try:
            return function(*arguments, **keywords)
        except TypeError as error:
            fault = _explanation(error, arguments[is_method:], keywords, operand)
        raise fault

    return call


def _explain(owner, only=None):
    """Lets the functions of a class or module of the extension say in words what they refuse."""
    is_method = isinstance(owner, type)
    for name, member in list(vars(owner).items()):
        if only is not None and name not in only:
            continue
        if isinstance(member, property) and member.fset is not None:
            setter = _explaining(member.fset, is_method, name)
            setattr(owner, name, property(member.fget, setter, None, member.__doc__))
        elif type(member).__name__ in ("instancemethod", "builtin_function_or_method"):
            operand = "name" if name in ("__getitem__", "__contains__") else None
            setattr(owner, name, _explaining(member, is_method, operand))


for _owner in (_brenvolt.Spreadsheet, _brenvolt.Variable, _brenvolt.Workbook):
    _explain(_owner)
_explain(_brenvolt, ("open_workbook", "read_csv", "_start_recording", "_append", "_export", "_import", "_named_matrix",
                     "_preview", "_save_fits", "_take_former_properties", "_write_fit_graphs"))
