"""What a macro would call, found from its text alone: nothing of it is run.

A macro as it is recorded is a list of calls and assignments on Application, its workbooks, sheets, analyses and
dialogs. Such a macro reads and writes the files that it names, and nothing else. Everything further of Python is
refused: other modules, functions, loops and conditions, names of Python's own, and members that dialogs and documents
do not have.
"""

import ast
import os

from . import _automation
from ._brenvolt import Spreadsheet, Variable, Workbook
from ._errors import Error

# What leads from sheets and graphs into other packages, whose members nobody has looked through.
_FOREIGN = {"to_pandas", "plot"}
_MODULE = "brenvolt"
_CALLED = ("Application", "Array")
# A macro is text that people wrote or a recording; what is longer or nested deeper is neither.
_MOST_BYTES = 10_000_000


def _members():
    names = {name for kind in (_automation.Application, _automation.Analysis, _automation.TableDocument,
                               _automation.GraphDocument, Spreadsheet, Variable, Workbook) for name in dir(kind)}
    for kind in _automation.classes().values():
        names.update(dir(kind))
    return {name for name in names if not name.startswith("_")} - _FOREIGN


class _Refusal(Exception):
    def __init__(self, node, what):
        super().__init__(what)
        self.line = getattr(node, "lineno", 1)


class _Check:
    def __init__(self):
        self.members = _members()
        self.constants = {"Nothing", "NotSet", *_automation.enumerations(), *_automation.constants()}
        self.variables = set()
        self.calls = []

    def statement(self, node):
        if isinstance(node, ast.ImportFrom):
            known = {*_CALLED, *self.constants, "*"}
            if node.module != _MODULE or node.level or any(name.asname or name.name not in known
                                                           for name in node.names):
                raise _Refusal(node, f"'{ast.unparse(node)}' takes more than dialogs into the macro")
            return
        if isinstance(node, ast.Expr) and isinstance(node.value, ast.Constant):
            return
        if isinstance(node, ast.Expr):
            self.expression(node.value)
        elif isinstance(node, ast.Assign):
            self.expression(node.value)
            for target in node.targets:
                self.target(target)
        else:
            raise _Refusal(node, f"'{ast.unparse(node).splitlines()[0]}' is neither a call nor an assignment")
        self.calls.append(f"line {node.lineno}: {ast.unparse(node)}")

    def target(self, node):
        if isinstance(node, ast.Name):
            if node.id.startswith("_") or node.id in _CALLED or node.id in self.constants:
                raise _Refusal(node, f"'{node.id}' is given another meaning")
            self.variables.add(node.id)
            return
        if not isinstance(node, (ast.Attribute, ast.Subscript)) or self.root(node) not in self.variables:
            raise _Refusal(node, f"'{ast.unparse(node)}' cannot be assigned to by a macro of dialogs")
        self.expression(node)

    @staticmethod
    def root(node):
        while isinstance(node, (ast.Attribute, ast.Subscript)):
            node = node.value
        return node.id if isinstance(node, ast.Name) else None

    def expression(self, node):
        if isinstance(node, ast.Constant):
            return
        if isinstance(node, ast.Name):
            if node.id not in self.variables and node.id not in self.constants:
                raise _Refusal(node, f"'{node.id}' is no dialog, document or constant")
        elif isinstance(node, ast.Attribute):
            if node.attr not in self.members:
                raise _Refusal(node, f"'{ast.unparse(node)}' is no member of dialogs and documents")
            self.expression(node.value)
        elif isinstance(node, ast.Subscript):
            self.expression(node.value)
            self.expression(node.slice)
        elif isinstance(node, ast.Call):
            self.call(node)
        elif isinstance(node, (ast.Tuple, ast.List)):
            for part in node.elts:
                self.expression(part)
        elif isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub):
            self.expression(node.operand)
        else:
            raise _Refusal(node, f"'{ast.unparse(node)}' is no call on a dialog")

    def call(self, node):
        if not (isinstance(node.func, ast.Name) and node.func.id in _CALLED):
            if not isinstance(node.func, ast.Attribute):
                raise _Refusal(node, f"'{ast.unparse(node)}' is no call on a dialog")
            self.expression(node.func)
        if any(keyword.arg is None for keyword in node.keywords):
            raise _Refusal(node, f"'{ast.unparse(node)}' does not show what it passes")
        for argument in [*node.args, *(keyword.value for keyword in node.keywords)]:
            self.expression(argument)


def check_macro(path: str | os.PathLike) -> list[str]:
    """The calls and assignments of a macro with their lines; nothing of it is run.

    Raises Error for a macro that holds anything but calls on dialogs and documents, naming the first line that does.
    """
    where = os.fspath(path)
    try:
        with open(path, "rb") as file:
            text = file.read(_MOST_BYTES + 1)
    except OSError as failure:
        raise Error(f"the macro cannot be read: {failure.strerror}", where) from None
    check = _Check()
    try:
        if len(text) > _MOST_BYTES:
            raise Error(f"the macro is longer than {_MOST_BYTES} bytes", where)
        for node in ast.parse(text, where).body:
            check.statement(node)
    except _Refusal as refusal:
        raise Error(f"{refusal}; run only macros that you trust", f"{where}, line {refusal.line}") from None
    except (SyntaxError, ValueError) as fault:
        raise Error("the macro is no Python program", f"{where}, line {getattr(fault, 'lineno', None) or 1}") from None
    except (RecursionError, MemoryError):
        raise Error("the macro is nested too deep", where) from None
    return check.calls
