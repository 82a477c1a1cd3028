#!/usr/bin/env python3
"""Writes the stubs of what the package makes from the type library when it runs: its constants, enumerations and
dialogs.

    make_stubs.py FOLDER    writes __init__.pyi and dialogs.pyi into FOLDER, which is the package's
"""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(sys.argv[1])))

import brenvolt  # noqa: E402 - found by the line before
from brenvolt import _automation  # noqa: E402

# The modules that offer what is not a constant.
SOURCES = ("_automation", "_brenvolt", "_capability", "_censored", "_design", "_errors", "_jobs", "_macro_check",
           "_reading", "_recording")
SUBMODULES = ("dialogs", "distributions")
TYPES = {"document": "Any", "object": "Any", "enumeration": "int", "": "None"}


def annotation(kind):
    return TYPES.get(kind, kind)


def init_stub():
    lines = ['"""Made from the type library."""', "", "import enum", "",
             "from . import " + ", ".join(f"{name} as {name}" for name in SUBMODULES)]
    missing = set(brenvolt._OFFERED) - set(SUBMODULES)
    for source in SOURCES:
        module = sys.modules[f"brenvolt.{source}"]
        names = sorted(name for name in brenvolt._OFFERED if hasattr(module, name)
                       and getattr(getattr(module, name), "__module__", module.__name__) == module.__name__)
        lines.append(f"from .{source} import " + ", ".join(f"{name} as {name}" for name in names))
        missing.difference_update(names)
    if missing:
        sys.exit(f"make_stubs.py: no module of SOURCES defines {', '.join(sorted(missing))}")
    lines.append("from ._brenvolt import __version__ as __version__")
    for name, kind in _automation.enumerations().items():
        lines += ["", f"class {name}(enum.IntEnum):", f'    """{kind.__doc__}"""']
        lines += [f"    {constant.name} = {constant.value}" for constant in kind]
    lines += ["", *(f"{name} = {type(constant).__name__}.{name}" for name, constant in _automation.constants().items())]
    lines += ["", "__all__ = [" + ", ".join(repr(name) for name in brenvolt.__all__) + "]"]
    return "\n".join(lines) + "\n"


def member_stub(member):
    value = annotation("bool" if member["put"] == "bool" else member["get"] or member["put"])
    if member["enumeration"]:
        value = f"brenvolt.{member['enumeration']}"
    if member["method"]:
        return [f"    def {member['name']}(self) -> {'bool' if member['get'] == 'int' else annotation(member['get'])}:"]
    if member["indexes"]:
        return ["    @property", f"    def {member['name']}(self) -> IndexedProperty:"]
    if not member["get"]:
        return [f"    {member['name']}: _WriteOnly"]
    lines = ["    @property", f"    def {member['name']}(self) -> {value}:"]
    return lines


def setter_stub(member):
    if member["method"] or member["indexes"] or not member["get"] or not member["put"]:
        return []
    return [f"    @{member['name']}.setter", f"    def {member['name']}(self, value: Any) -> None: ..."]


def dialogs_stub():
    lines = ['"""Made from the type library."""', "", "from typing import Any", "", "import brenvolt",
             "from brenvolt import AutomationObject, IndexedProperty",
             "from brenvolt import GraphDocument as Graph, TableDocument as Spreadsheet"]
    lines += ["", "class _WriteOnly:", '    """A member that can be set, but not read."""',
              "    def __set__(self, instance: Any, value: Any) -> None: ..."]
    library = _automation._library()
    for description in library["host"] + library["interfaces"]:
        if description["name"] in _automation._DOCUMENTS:
            continue
        base = _automation.classes()[description["name"]].__base__.__name__
        lines += ["", f"class {description['name']}({base}):", f'    """{description["help"]}"""']
        for member in description["members"]:
            indent = "        " if member["get"] or member["method"] else "    "
            lines += [*member_stub(member), f'{indent}"""{_automation.help_of(member)}"""', *setter_stub(member)]
    return "\n".join(lines) + "\n"


def main(folder):
    for name, text in (("__init__.pyi", init_stub()), ("dialogs.pyi", dialogs_stub())):
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)


if __name__ == "__main__":
    main(sys.argv[1])
