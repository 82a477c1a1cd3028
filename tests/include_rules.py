#!/usr/bin/env python3
"""Checks the #include lines of the tree against its layers (docs/design.md, "Rooms").

    include_rules.py ROOT         prints each violation as `file:line: folder X may not include Y`; exit status 1 if any
    include_rules.py --self-test  runs the checks over small trees, one per kind of violation
"""
import os
import re
import sys
import tempfile
from typing import NamedTuple


class Room(NamedTuple):
    folder: str
    files: str  # "all", or the kind that this row is for: "headers", "sources", "engine", "dialogs"
    folders: str  # whose files they may include, and through these what those may include; their own folder always
    foreign: str  # headers from outside the tree, beside the standard library: "system", "third-party", "drawing"


# "host" stands for every folder of host/ but drawing, which is a library of its own; "brv_sra" for all of brv_sra/.
ROOMS = (
    Room("host/base", "all", "", "system third-party"),
    Room("host/numeric", "all", "host/base", "third-party"),
    Room("host/tables", "all", "host/base", "third-party"),
    Room("host/controls", "all", "host/base", "third-party"),
    Room("host/automation", "all", "host/base", "third-party"),
    Room("host/statistics", "all", "host/numeric host/tables", "third-party"),
    Room("host/formula", "all", "host/numeric", "third-party"),
    Room("host/models", "all", "host/formula host/tables", "third-party"),
    Room("host/graphs", "all", "host/tables host/statistics host/formula", "third-party"),
    Room("host/analysis", "all", "host/controls host/tables host/graphs host/automation", "third-party"),
    Room("host/application", "all", "host", "third-party"),
    Room("host/drawing", "all", "host/graphs", "third-party drawing"),
    # Every folder may show the texts of resources. Dialogs also stand on the headers of frame; the engine beside them
    # knows no dialog.
    Room("brv_sra/resources", "all", "host", ""),
    Room("brv_sra/frame", "headers", "brv_sra/distributions host", ""),
    Room("brv_sra/frame", "sources", "brv_sra", ""),
    Room("brv_sra/distributions", "all", "brv_sra/resources host", ""),
    Room("brv_sra/matrix", "engine", "brv_sra/resources host", ""),
    Room("brv_sra/matrix", "dialogs", "brv_sra/frame brv_sra/resources host", ""),
    Room("brv_sra/fitting", "engine", "brv_sra/distributions brv_sra/matrix host", ""),
    Room("brv_sra/fitting", "dialogs", "brv_sra/frame brv_sra/distributions brv_sra/matrix host", ""),
    Room("brv_sra/simulation", "engine", "brv_sra/distributions brv_sra/matrix host", ""),
    Room("brv_sra/simulation", "dialogs", "brv_sra/frame brv_sra/distributions brv_sra/matrix host", ""),
    Room("brv_sra/profiler", "engine", "brv_sra/distributions brv_sra/fitting brv_sra/matrix brv_sra/simulation host",
         ""),
    Room("brv_sra/profiler", "dialogs",
         "brv_sra/frame brv_sra/distributions brv_sra/fitting brv_sra/simulation host", ""),
    Room("apps/cli", "all", "host", "third-party"),
    Room("apps/desktop", "all", "host host/drawing", "third-party drawing"),
    Room("bindings/python", "all", "host", "third-party"),
    Room("bench", "all", "host brv_sra", "third-party"),
    Room("tests", "all", "host brv_sra", "system third-party"),
)
# What a *_test file may include beyond what its subject may: the test framework's headers and these.
TEST_FRAMEWORK = ("gtest/", "gmock/")
TEST_FOREIGN = "system"

STANDARD_LIBRARY = frozenset("""
    algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts condition_variable
    coroutine deque exception execution filesystem format forward_list fstream functional future initializer_list
    iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new numbers
    numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex
    source_location span sstream stack stdexcept stop_token streambuf string string_view strstream syncstream
    system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant
    vector version cassert ccomplex cctype cerrno cfenv cfloat cinttypes ciso646 climits clocale cmath csetjmp csignal
    cstdalign cstdarg cstdbool cstddef cstdint cstdio cstdlib cstring ctgmath ctime cuchar cwchar cwctype
    assert.h complex.h ctype.h errno.h fenv.h float.h inttypes.h iso646.h limits.h locale.h math.h setjmp.h signal.h
    stdalign.h stdarg.h stdatomic.h stdbool.h stddef.h stdint.h stdio.h stdlib.h string.h tgmath.h time.h uchar.h
    wchar.h wctype.h
    """.split())
SYSTEM_HEADER = re.compile(
    r"^((sys|linux|asm|bits|net|netinet|arpa|mach|mach-o)/.*|(aio|alloca|cpio|cpuid|dirent|dlfcn|elf|endian|err|"
    r"execinfo|fcntl|features|fmtmsg|fnmatch|fts|ftw|getopt|glob|gnu/.*|grp|iconv|ifaddrs|langinfo|libgen|link|malloc|"
    r"monetary|mqueue|ndbm|netdb|nl_types|paths|poll|pthread|pty|pwd|regex|resolv|sched|search|semaphore|spawn|"
    r"strings|sysexits|syslog|tar|termios|ucontext|ulimit|utime|utmpx|wordexp|xlocale|unistd|wait|"
    r"windows|winsock2|winnls|io|direct|process|share|conio|crtdbg|dbghelp|psapi|shlobj)\.h)$", re.IGNORECASE)
DRAWING_HEADER = re.compile(r"^(Q[A-Z]\w*(/.*)?|Qt\w+/.*|qcustomplot\.h)$")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
TOPS = ("host", "brv_sra", "apps", "bindings", "bench", "tests")
ENDINGS = (".h", ".hpp", ".inc", ".cpp", ".cc")


def is_source(path):
    return path.endswith((".cpp", ".cc"))


def subject(path):
    """The name of the file without its ending, a test taken for what it tests."""
    return re.sub(r"_(test|fuzz)$", "", os.path.splitext(os.path.basename(path))[0])


def is_test(path):
    return re.search(r"_test\.\w+$", path) is not None


def is_dialog(path):
    """A dialog, or the automation members of one."""
    return path.startswith("brv_sra/") and subject(path).endswith(("_dialog", "_automation"))


KINDS = {
    "all": lambda path: True,
    "headers": lambda path: not is_source(path),
    "sources": is_source,
    "engine": lambda path: not is_dialog(path),
    "dialogs": is_dialog,
}


def folder_of(path):
    """The folder of the table that the path lies in; for one outside the table, its own directory."""
    named = [room.folder for room in ROOMS if path.startswith(room.folder + "/")]
    return max(named, key=len) if named else os.path.dirname(path)


def room_of(path):
    folder = folder_of(path)
    return next((room for room in ROOMS if room.folder == folder and KINDS[room.files](path)), None)


def named_folders(text):
    groups = {"host": lambda folder: folder.startswith("host/") and folder != "host/drawing",
              "brv_sra": lambda folder: folder.startswith("brv_sra/")}
    for name in text.split():
        yield from ({room.folder for room in ROOMS if groups[name](room.folder)} if name in groups else {name})


def reachable(folders):
    """The folders, and those that what they offer others (headers, engine) may include."""
    seen, waiting = set(), list(folders)
    while waiting:
        folder = waiting.pop()
        if folder not in seen:
            seen.add(folder)
            waiting += [further for room in ROOMS if room.folder == folder and room.files in ("all", "headers", "engine")
                        for further in named_folders(room.folders)]
    return seen


def fault(path, target):
    """Why the file may not include the file `target` of the tree: the text for "may not include", or None."""
    room, folder = room_of(path), folder_of(target)
    if folder != room.folder and folder not in reachable(named_folders(room.folders)):
        return folder
    if not is_dialog(target) or room.files == "sources":
        return None
    if room.files == "headers":
        return f"{target}: a header of {room.folder} knows no dialog"
    if path.startswith("brv_sra/") and not is_dialog(path):
        return f"{target}: an engine file knows no dialog"
    if is_dialog(path) and folder not in (room.folder, "brv_sra/frame"):
        return f"{target}: a dialog of another folder"
    return None


def foreign_fault(path, header):
    """The same for a header from outside the tree."""
    room = room_of(path)
    allowed = room.foreign.split() + (TEST_FOREIGN.split() if is_test(path) else [])
    if header in STANDARD_LIBRARY or (is_test(path) and header.startswith(TEST_FRAMEWORK)):
        return None
    kind = ("system" if SYSTEM_HEADER.match(header) else
            "drawing" if DRAWING_HEADER.match(header) else "third-party")
    return None if kind in allowed else f"<{header}>: {kind} header"


def target_of(root, path, header, quoted):
    """The path in the tree that an include line names, or None for a header from outside."""
    beside = os.path.normpath(os.path.join(os.path.dirname(path), header))
    if quoted and os.path.isfile(os.path.join(root, beside)):
        return beside
    return os.path.normpath(header) if header.split("/")[0] in TOPS and "/" in header else None


def violations_of_file(root, path):
    if room_of(path) is None:
        yield f"{path}:1: folder {folder_of(path)} is not in the table of include rules"
        return
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        for number, line in enumerate(file, 1):
            match = INCLUDE.match(line)
            if match is None:
                continue
            target = target_of(root, path, match[2], match[1] == '"')
            what = fault(path, target) if target else foreign_fault(path, match[2])
            if what:
                yield f"{path}:{number}: folder {folder_of(path)} may not include {what}"


def files(root):
    for top in TOPS:
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if name.endswith(ENDINGS):
                    yield os.path.relpath(os.path.join(directory, name), root)


def violations(root):
    return [line for path in sorted(files(root)) for line in violations_of_file(root, path)]


# A file, an include line in it, and what the checker must say after "may not include"; None where it is clean.
SELF_TESTS = (
    ("host/base/a.cpp", "<unistd.h>", None),
    ("host/base/a.cpp", '"host/numeric/n.h"', "host/numeric"),
    ("host/numeric/a.cpp", '"host/base/b.h"', None),
    ("host/numeric/a.cpp", "<sys/stat.h>", "<sys/stat.h>: system header"),
    ("host/numeric/a.cpp", "  <boost/math/x.hpp>", None),
    ("host/numeric/a.h", '"host/tables/t.h"', "host/tables"),
    ("host/statistics/a.cpp", '"host/base/b.h"', None),
    ("host/tables/a.cpp", '"../numeric/n.h"', "host/numeric"),
    ("host/tables/a.cpp", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("host/application/a.cpp", '"host/analysis/b.h"', None),
    ("host/application/a.cpp", '"host/drawing/d.h"', "host/drawing"),
    ("host/application/a.cpp", "<brv_sra/frame/f.h>", "brv_sra/frame"),
    ("host/graphs/a.cpp", "<QPainter>", "<QPainter>: drawing header"),
    ("host/drawing/a.cpp", "<QPainter>", None),
    ("host/drawing/a.cpp", '"host/graphs/g.h"', None),
    ("host/tables/a_test.cpp", "<unistd.h>", None),
    ("host/tables/a_test.cpp", '"host/formula/f.h"', "host/formula"),
    ("brv_sra/distributions/a.cpp", "<cmath>", None),
    ("brv_sra/distributions/a.cpp", '"brv_sra/resources/strings.h"', None),
    ("brv_sra/resources/a.cpp", '"brv_sra/distributions/catalogue.h"', "brv_sra/distributions"),
    ("brv_sra/distributions/a.cpp", "<boost/math/x.hpp>", "<boost/math/x.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", '"json.hpp"', "<json.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", "<fcntl.h>", "<fcntl.h>: system header"),
    ("brv_sra/distributions/a.cpp", "<gtest/gtest.h>", "<gtest/gtest.h>: third-party header"),
    ("brv_sra/distributions/a_test.cpp", "<gtest/gtest.h>", None),
    ("brv_sra/distributions/a_test.cpp", "<boost/math/x.hpp>", "<boost/math/x.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("brv_sra/simulation/a.cpp", '"brv_sra/matrix/m.h"', None),
    ("brv_sra/simulation/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("brv_sra/simulation/run_dialog.cpp", '"brv_sra/frame/f.h"', None),
    ("brv_sra/simulation/run_automation.cpp", '"brv_sra/simulation/run_dialog.h"', None),
    ("brv_sra/simulation/run_dialog_test.cpp", '"brv_sra/simulation/run_dialog.h"', None),
    ("brv_sra/fitting/estimation.cpp", '"brv_sra/fitting/fit_dialog.h"',
     "brv_sra/fitting/fit_dialog.h: an engine file knows no dialog"),
    ("brv_sra/profiler/profiler_dialog.cpp", '"brv_sra/fitting/fit_dialog.h"',
     "brv_sra/fitting/fit_dialog.h: a dialog of another folder"),
    ("brv_sra/profiler/profiler_dialog.cpp", '"brv_sra/fitting/estimation.h"', None),
    ("brv_sra/frame/f.cpp", '"brv_sra/fitting/fit_dialog.h"', None),
    ("brv_sra/frame/f.h", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("brv_sra/frame/f.h", '"brv_sra/frame/start_dialog.h"',
     "brv_sra/frame/start_dialog.h: a header of brv_sra/frame knows no dialog"),
    ("apps/cli/a.cpp", '"host/application/b.h"', None),
    ("apps/cli/a.cpp", "<CLI/CLI.hpp>", None),
    ("apps/cli/a.cpp", "<unistd.h>", "<unistd.h>: system header"),
    ("apps/cli/a.cpp", '"host/drawing/d.h"', "host/drawing"),
    ("apps/cli/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("apps/desktop/a.cpp", '"host/drawing/d.h"', None),
    ("bindings/python/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("tests/a_test.cpp", "<sys/wait.h>", None),
    ("tests/a_test.cpp", '"apps/cli/b.h"', "apps/cli"),
)


def self_test():
    failures = []
    for path, include, expected in SELF_TESTS:
        with tempfile.TemporaryDirectory() as root:
            for name, text in (("host/numeric/n.h", ""), (path, f"// first line\n#include {include}\n")):
                os.makedirs(os.path.join(root, os.path.dirname(name)), exist_ok=True)
                with open(os.path.join(root, name), "w", encoding="utf-8") as file:
                    file.write(text)
            found = violations(root)
        wanted = [f"{path}:2: folder {folder_of(path)} may not include {expected}"] if expected else []
        if found != wanted:
            failures.append(f"{path} with {include}: found {found}, wanted {wanted}")
    with tempfile.TemporaryDirectory() as root:
        os.makedirs(os.path.join(root, "host/attic"))
        open(os.path.join(root, "host/attic/a.cpp"), "w", encoding="utf-8").close()
        if violations(root) != ["host/attic/a.cpp:1: folder host/attic is not in the table of include rules"]:
            failures.append("a folder that is not in the table passes")
    return failures


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    if arguments[0] != "--self-test" and not any(True for _ in files(arguments[0])):
        print(f"include_rules.py: no sources under {arguments[0]}", file=sys.stderr)
        return 2
    found = self_test() if arguments[0] == "--self-test" else violations(arguments[0])
    print("\n".join(found) if found else "no violation")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
