"""Runs, records and checks macros as programs of their own; see main(). The exit status is the macro's; 0 means success."""

import os
import runpy
import shlex
import sys

import brenvolt

from . import _macro_check


def run(file, arguments):
    sys.argv = [file, *arguments]
    # Modules beside the macro are found after all others, so that none takes the place of a known one.
    sys.path.append(os.path.dirname(os.path.abspath(file)))
    runpy.run_path(file, run_name="__main__")


def record(target, file, arguments):
    with brenvolt.record(target, shlex.join(["brenvolt", "macro", "--record", target, file, *arguments])):
        try:
            run(file, arguments)
        except SystemExit as end:
            if end.code not in (None, 0):
                raise


def check(file):
    try:
        print("\n".join(_macro_check.check_macro(file)))
    except brenvolt.Error as refusal:
        sys.exit(f"brenvolt: {refusal}")
    print("\nThe macro holds nothing but calls on dialogs and their documents.")


def _print_the_rest():
    """What Python holds back of the output, whose failing it would tell by the status 120 at its end."""
    try:
        sys.stdout.flush()
    except OSError as failure:
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        reason = f"brenvolt: the output cannot be written: {failure.strerror} (standard output)"
        sys.exit(1 if isinstance(failure, BrokenPipeError) else reason)


def main(words):
    """words: run FILE ARGUMENT…, record TARGET FILE ARGUMENT…, or check FILE."""
    task, *rest = words
    try:
        if task == "check":
            check(rest[0])
        elif task == "record":
            record(rest[0], rest[1], rest[2:])
        else:
            run(rest[0], rest[1:])
    except SystemExit as end:
        if end.code not in (None, 0):
            raise
    _print_the_rest()
