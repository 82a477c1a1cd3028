"""Runs a macro as a program of its own, and records it. The exit status is the macro's; 0 means success.

    python3 -m brenvolt._record_macro RECORD.py FILE.py ARGUMENT ...
"""

import os
import runpy
import shlex
import sys

import brenvolt


def run(target, file, arguments):
    sys.argv = [file, *arguments]
    sys.path[0] = os.path.dirname(os.path.abspath(file))
    with brenvolt.record(target, shlex.join(["brenvolt", "macro", "--record", target, file, *arguments])):
        try:
            runpy.run_path(file, run_name="__main__")
        except SystemExit as end:
            if end.code not in (None, 0):
                raise


if __name__ == "__main__":
    run(sys.argv[1], sys.argv[2], sys.argv[3:])
