#!/usr/bin/env python3
"""Checks the #include lines of the tree against its layers (docs/design/architecture.md, "Rooms"), the size
of its folders, that what computes has no texts for people, and that few files know a distribution by name.

    include_rules.py ROOT         prints each violation, an include line as `file:line: folder X may not include Y`;
                                  exit status 1 if any
    include_rules.py --self-test  runs the checks over small trees, one per kind of violation
"""
import collections
import os
import re
import sys
import tempfile
from typing import NamedTuple


class Room(NamedTuple):
    folder: str
    folders: str  # whose files they may include, and through these what those may include; their own folder always
    foreign: str  # headers from outside the tree, besides the standard library: "system", "third-party", "drawing"


# A name means all the folders of the table below it, but "host" leaves out drawing and ranks, libraries of their own.
ROOMS = (
    Room("host/base", "", "system third-party"),
    Room("host/base/process", "host/base", "system third-party"),
    Room("host/base/files", "host/base/process", "system third-party"),
    Room("host/numeric/special", "host/base", "third-party"),
    Room("host/numeric/vector", "host/numeric/special", "third-party"),
    Room("host/numeric/random", "host/numeric/vector", "third-party"),
    Room("host/numeric/algebra", "host/numeric/vector", "third-party"),
    Room("host/numeric/estimation", "host/numeric/vector", "third-party"),
    Room("host/numeric/estimation/johnson", "host/numeric/estimation", "third-party"),
    Room("host/numeric/estimation/mixture", "host/numeric/estimation", "third-party"),
    Room("host/numeric/distributions/common", "host/numeric/estimation", "third-party"),
    Room("host/numeric/distributions",
         "host/numeric/distributions/common host/numeric/estimation/johnson host/numeric/estimation/mixture",
         "third-party"),
    Room("host/numeric/distributions/rules", "host/numeric/distributions", ""),
    Room("host/numeric/censored", "host/numeric/distributions", ""),
    Room("host/numeric/reference", "host/numeric/distributions", "third-party"),
    Room("host/numeric/goodness_of_fit", "host/numeric/distributions", "third-party"),
    Room("host/tables", "host/base/files", "third-party"),
    Room("host/tables/editing", "host/tables", "third-party"),
    Room("host/tables/text", "host/tables", "third-party"),
    Room("host/tables/office", "host/tables/text", "third-party"),
    Room("host/tables/formats", "host/tables/office", "third-party"),
    Room("host/controls", "host/base", "third-party"),
    Room("host/automation", "host/base", "third-party"),
    Room("host/rounds", "host/base/files", ""),
    Room("host/ranks", "host/rounds", "third-party"),
    Room("host/statistics", "host/numeric host/tables", "third-party"),
    Room("host/formula", "host/numeric/distributions", "third-party"),
    Room("host/models/document", "host/base", "third-party"),
    Room("host/models/transformations", "host/models/document host/formula", "third-party"),
    Room("host/models/kinds", "host/models/transformations", "third-party"),
    Room("host/models", "host/models/kinds host/tables", "third-party"),
    Room("host/graphs", "host/tables host/statistics host/formula", "third-party"),
    Room("host/reporting", "host/graphs", ""),
    Room("host/analysis", "host/controls host/tables host/graphs host/automation", "third-party"),
    Room("host/analysis/ports", "host/analysis", "third-party"),
    Room("host/contract", "host/numeric host/analysis/ports", ""),
    Room("host/application", "host/models host/analysis/ports host/tables/formats", "third-party"),
    Room("host/jobs/base", "host/application host/reporting host/rounds", "third-party"),
    Room("host/jobs/notation", "host/jobs/base", "third-party"),
    Room("host/jobs", "host/jobs/notation", "third-party"),
    Room("host/jobs/exchange", "host/jobs", "third-party"),
    Room("host/jobs/measured", "host/jobs", "third-party"),
    Room("host/jobs/profile", "host/jobs", "third-party"),
    Room("host/jobs/dialogs", "host/jobs/profile", "third-party"),
    Room("host/jobs/json", "host/jobs/measured host/jobs/exchange host/jobs/profile", "third-party"),
    Room("host/jobs/reports", "host/jobs/measured host/jobs/exchange host/jobs/profile host/tables/editing",
         "third-party"),
    Room("host/drawing", "host/reporting", "third-party drawing"),
    # In every folder of the module the engine knows no dialog; its dialogs lie below it and stand on frame. Dialogs
    # meet in the folder module alone.
    Room("brv_sra/base", "host", ""),
    Room("brv_sra/resources", "brv_sra/base", ""),
    Room("brv_sra/distributions", "brv_sra/base", ""),
    Room("brv_sra/matrix", "brv_sra/base", ""),
    Room("brv_sra/fitting", "brv_sra/distributions brv_sra/matrix", ""),
    Room("brv_sra/simulation/sampling", "brv_sra/distributions", ""),
    Room("brv_sra/simulation", "brv_sra/simulation/sampling brv_sra/matrix", ""),
    Room("brv_sra/profiler", "brv_sra/fitting brv_sra/simulation", ""),
    Room("brv_sra/frame", "brv_sra/distributions brv_sra/resources", ""),
    Room("brv_sra/fitting/dialogs", "brv_sra/frame brv_sra/fitting", ""),
    Room("brv_sra/matrix/dialogs", "brv_sra/frame brv_sra/matrix", ""),
    Room("brv_sra/simulation/dialogs", "brv_sra/frame brv_sra/simulation brv_sra/matrix/dialogs", ""),
    Room("brv_sra/profiler/dialogs", "brv_sra/frame brv_sra/profiler brv_sra/fitting/dialogs brv_sra/matrix/dialogs",
         ""),
    Room("brv_sra/module", "brv_sra", ""),
    Room("apps/base", "host", "third-party"),
    Room("apps/cli", "apps/base", "third-party"),
    Room("apps/desktop/base", "host host/drawing", "third-party drawing"),
    Room("apps/desktop/dialogs", "apps/desktop/base", "third-party drawing"),
    Room("apps/desktop/port", "apps/desktop/dialogs", "third-party drawing"),
    Room("apps/desktop/documents", "apps/desktop/base", "third-party drawing"),
    Room("apps/desktop/views", "apps/desktop/documents", "third-party drawing"),
    Room("apps/desktop/workbench", "apps/desktop/port apps/desktop/views", "third-party drawing"),
    Room("apps/desktop", "apps/base apps/desktop/workbench", "third-party drawing"),
    Room("bindings/python", "apps/base", "third-party"),
    Room("bench", "host brv_sra", "third-party"),
    Room("tests", "host brv_sra", "system third-party"),
)
# Names for callers outside the tree: no file in it includes them, whatever its room may include.
CONTRACT = "host/contract"
# A name that means several folders, if the table names none below it.
GROUPS = ("host", "host/numeric", "brv_sra")
# What computes knows no text: what faults, progress and distributions are called is the dialogs' to say, and an engine
# returns its faults. A literal of three words or more stands where a text is made; it may be that of a mistake of the
# caller.
COMPUTING = ("brv_sra/base", "brv_sra/distributions", "brv_sra/matrix", "brv_sra/fitting", "brv_sra/simulation",
             "brv_sra/simulation/sampling", "brv_sra/profiler") + tuple(room.folder for room in ROOMS
                                                                        if room.folder.startswith("host/numeric/")) + (
    "host/statistics",)
# What reads formulas and models that people wrote throws where it cannot go on, for the place and the cause are known
# there alone; beside that, it says of an output of a model why it is not available. It has no other texts. host/tables
# and host/graphs do not compute: how a file was read, and what a picture shows, are told in words, which are their
# results.
READING = ("host/formula",) + tuple(room.folder for room in ROOMS if room.folder.startswith("host/models"))
COMMENT = re.compile(r"//[^\n]*")
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
MISTAKE = re.compile(r"\bthrow std::(logic_error|out_of_range|invalid_argument)\b|\bstatic_assert\(")
THROWN = re.compile(r"\bthrow\b|Error\(|\bFail\(|\breason = ")
WORDS = re.compile(r"[A-Za-z']+[,:]?( [A-Za-z']+[,:]?){2,}")
# What a *_test file may include beyond what its subject may: the other folders of the same part of the tree
# (host/numeric, brv_sra/profiler), the test framework's headers and these.
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
MOST_FILES = 40  # sources of one folder

# What a distribution is stands in its facts. The files that know it by name, those that bear its name among them, are
# few; its estimator may have some more.
DISTRIBUTION_LIST = "host/numeric/distributions/all_distributions.h"
PRODUCTION = ("host", "brv_sra", "apps", "bindings")
ESTIMATORS = "host/numeric/estimation"
MOST_FILES_OF_DISTRIBUTION = 10
# Their names mean other things as well: a standard normal value, a histogram that is drawn, terms of a series.
AMBIGUOUS = ("Normal", "GaussianMixture", "Johnson", "Binomial", "Poisson", "Histogram")
SENTENCE = re.compile(r'"(?:[^"\\\n ]* ){3}[^"\n]*"')
PYTHON_COMMENT = re.compile(r'""".*?"""|#[^\n]*', re.DOTALL)


def subject(path):
    """The name of the file without its ending, a test taken for what it tests."""
    return re.sub(r"_(test|fuzz)$", "", os.path.splitext(os.path.basename(path))[0])


def subject_path(path):
    return f"{os.path.dirname(path)}/{subject(path)}"


def is_test(path):
    return re.search(r"_test\.\w+$", path) is not None


def is_dialog(path):
    """A dialog, or the automation members of one."""
    return path.startswith("brv_sra/") and subject(path).endswith(("_dialog", "_automation"))


def folder_of(path):
    """The folder of the table that the path lies in; for one outside the table, its own directory."""
    named = [room.folder for room in ROOMS if path.startswith(room.folder + "/")]
    return max(named, key=len) if named else os.path.dirname(path)


def room_of(path):
    folder = folder_of(path)
    return next((room for room in ROOMS if room.folder == folder), None)


def named_folders(text):
    for name in text.split():
        if name not in GROUPS:
            yield name
            continue
        for room in ROOMS:
            if room.folder.startswith(name + "/") and (name, room.folder) not in (("host", "host/drawing"),
                                                                                  ("host", "host/ranks")):
                yield room.folder


def reachable(folders):
    """The folders, and those that they may include."""
    seen, waiting = set(), list(folders)
    while waiting:
        folder = waiting.pop()
        if folder not in seen:
            seen.add(folder)
            waiting += [further for room in ROOMS if room.folder == folder for further in named_folders(room.folders)]
    return seen


def is_beside(path, folder):
    """A test may include what lies beside its subject in the same part of the tree; one of a dialog, also the folder
    that opens all dialogs."""
    if not is_test(path):
        return False
    opens_dialog = folder == "brv_sra/module" and "/dialogs/" in path and path.startswith("brv_sra/")
    return opens_dialog or folder.split("/")[:2] == path.split("/")[:2]


def fault(path, target):
    """Why the file may not include the file `target` of the tree: the text for "may not include", or None."""
    room, folder = room_of(path), folder_of(target)
    if folder == CONTRACT and room.folder != CONTRACT:
        return folder
    if folder != room.folder and folder not in reachable(named_folders(room.folders)) and not is_beside(path, folder):
        return folder
    if is_dialog(target) and path.startswith("brv_sra/") and folder != room.folder and room.folder != "brv_sra/module":
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


def texts_of_file(root, path):
    """The literals in words that are in a file that only computes or reads."""
    if is_test(path) or folder_of(path) not in COMPUTING + READING:
        return
    allowed = THROWN if folder_of(path) in READING else MISTAKE
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        code = COMMENT.sub("", file.read())
    for literal in LITERAL.finditer(code):
        statement = re.split(r"[;{}]", code[:literal.start()])[-1]
        if WORDS.search(literal[1]) and not allowed.search(statement):
            yield f"{path}:{code.count(chr(10), 0, literal.start()) + 1}: a text in what computes: {literal[0]}"


def files(root):
    for top in TOPS:
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if name.endswith(ENDINGS):
                    yield os.path.relpath(os.path.join(directory, name), root)


def crowded_folders(paths):
    counts = collections.Counter(os.path.dirname(path) for path in paths)
    return [f"{folder}: {count} sources, more than {MOST_FILES} in one folder" for folder, count in counts.items()
            if count > MOST_FILES]


def distribution_names(root):
    """Those of the list of all distributions; nothing in a tree that has none."""
    path = os.path.join(root, DISTRIBUTION_LIST)
    if not os.path.isfile(path):
        return []
    with open(path, encoding="utf-8") as file:
        found = re.search(r"AllDistributions\s*=\s*DistributionList<([^>]*)>", file.read())
    return re.findall(r"\w+", found[1]) if found else []


def production_files(root):
    """The paths and the code of what is built and shipped, comments and sentences for people aside."""
    for top in PRODUCTION:
        for directory, _, names in os.walk(os.path.join(root, top)):
            path = os.path.relpath(directory, root)
            for name in sorted(names):
                is_production = name.endswith((*ENDINGS, ".py")) and not re.search(r"_(test|fuzz)\.", name)
                if not is_production or set(path.split("/")) & {"reference", "tests"} or path.startswith(ESTIMATORS):
                    continue
                with open(os.path.join(directory, name), encoding="utf-8", errors="replace") as file:
                    text = (PYTHON_COMMENT if name.endswith(".py") else COMMENT).sub("", file.read())
                yield os.path.join(path, name), SENTENCE.sub("", text)


def name_pattern(name):
    """A name in any spelling: HalfNormal, "Half Normal", half_normal."""
    words = re.findall("[A-Z][a-z]+", name)
    return re.compile("|".join((name, " ".join(words), "_".join(words).lower())))


def scattered_distributions(root):
    names = [name for name in distribution_names(root) if name not in AMBIGUOUS]
    code = dict(production_files(root)) if names else {}
    for name in names:
        found = sorted(path for path, text in code.items() if name_pattern(name).search(text))
        if len(found) > MOST_FILES_OF_DISTRIBUTION:
            yield f"{name}: in {len(found)} files, more than {MOST_FILES_OF_DISTRIBUTION}: {', '.join(found)}"


def violations(root):
    paths = sorted(files(root))
    return [line for path in paths for found in (violations_of_file, texts_of_file) for line in found(root, path)
            ] + crowded_folders(paths) + list(scattered_distributions(root))


# A file, an include line in it, and what the checker must say after "may not include"; None if it is clean.
SELF_TESTS = (
    ("host/base/a.cpp", "<unistd.h>", None),
    ("host/base/a.cpp", '"host/numeric/special/n.h"', "host/numeric/special"),
    ("host/numeric/algebra/a.cpp", '"host/base/b.h"', None),
    ("host/numeric/algebra/a.cpp", "<sys/stat.h>", "<sys/stat.h>: system header"),
    ("host/numeric/algebra/a.cpp", "  <boost/math/x.hpp>", None),
    ("host/numeric/algebra/a.h", '"host/tables/t.h"', "host/tables"),
    ("host/numeric/estimation/a.h", '"host/numeric/distributions/d.h"', "host/numeric/distributions"),
    ("host/numeric/estimation/a_test.cpp", '"host/numeric/distributions/d.h"', None),
    ("host/statistics/a.cpp", '"host/base/b.h"', None),
    ("host/statistics/a.cpp", '"host/numeric/algebra/b.h"', None),
    ("host/tables/a.cpp", '"../numeric/special/n.h"', "host/numeric/special"),
    ("host/tables/a.cpp", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("host/models/kinds/a.cpp", '"host/models/b.h"', "host/models"),
    ("host/models/transformations/a.cpp", '"host/tables/t.h"', "host/tables"),
    ("host/models/transformations/a.cpp", '"host/formula/k.h"', None),
    ("host/models/a.cpp", '"host/models/kinds/b.h"', None),
    ("host/application/a.cpp", '"host/analysis/b.h"', None),
    ("host/application/a.cpp", '"host/drawing/d.h"', "host/drawing"),
    ("host/application/a.cpp", '"host/jobs/j.h"', "host/jobs"),
    ("host/jobs/a.cpp", '"host/application/b.h"', None),
    ("host/jobs/base/a.cpp", '"host/jobs/notation/n.h"', "host/jobs/notation"),
    ("host/application/a.cpp", '"host/contract/c.h"', "host/contract"),
    ("host/contract/c.cpp", '"host/analysis/b.h"', None),
    ("host/application/a.cpp", "<brv_sra/frame/f.h>", "brv_sra/frame"),
    ("host/graphs/a.cpp", "<QPainter>", "<QPainter>: drawing header"),
    ("host/drawing/a.cpp", "<QPainter>", None),
    ("host/drawing/a.cpp", '"host/graphs/g.h"', None),
    ("host/tables/a_test.cpp", "<unistd.h>", None),
    ("host/tables/a_test.cpp", '"host/formula/f.h"', "host/formula"),
    ("brv_sra/distributions/a.cpp", "<cmath>", None),
    ("brv_sra/distributions/a.cpp", '"brv_sra/resources/strings.h"', "brv_sra/resources"),
    ("brv_sra/fitting/a.cpp", '"brv_sra/resources/strings.h"', "brv_sra/resources"),
    ("brv_sra/profiler/a_test.cpp", '"brv_sra/resources/resource_numbers.h"', "brv_sra/resources"),
    ("brv_sra/profiler/dialogs/a.cpp", '"brv_sra/resources/strings.h"', None),
    ("brv_sra/matrix/a.cpp", '"brv_sra/base/fault.h"', None),
    ("brv_sra/base/a.h", '"brv_sra/distributions/catalogue.h"', "brv_sra/distributions"),
    ("brv_sra/resources/a.cpp", '"brv_sra/distributions/catalogue.h"', "brv_sra/distributions"),
    ("brv_sra/distributions/a.cpp", "<boost/math/x.hpp>", "<boost/math/x.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", '"json.hpp"', "<json.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", "<fcntl.h>", "<fcntl.h>: system header"),
    ("brv_sra/distributions/a.cpp", "<gtest/gtest.h>", "<gtest/gtest.h>: third-party header"),
    ("brv_sra/distributions/a_test.cpp", "<gtest/gtest.h>", None),
    ("brv_sra/distributions/a_test.cpp", "<boost/math/x.hpp>", "<boost/math/x.hpp>: third-party header"),
    ("brv_sra/distributions/a.cpp", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("brv_sra/simulation/a.cpp", '"brv_sra/matrix/m.h"', None),
    ("brv_sra/simulation/sampling/a.cpp", '"brv_sra/simulation/s.h"', "brv_sra/simulation"),
    ("brv_sra/simulation/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("brv_sra/simulation/dialogs/run_dialog.cpp", '"brv_sra/frame/f.h"', None),
    ("brv_sra/simulation/dialogs/run_automation.cpp", '"brv_sra/simulation/dialogs/run_dialog.h"', None),
    ("brv_sra/fitting/estimation.cpp", '"brv_sra/fitting/dialogs/fit_dialog.h"', "brv_sra/fitting/dialogs"),
    ("brv_sra/profiler/run_test.cpp", '"brv_sra/profiler/dialogs/graphs.h"', None),
    ("brv_sra/profiler/dialogs/profiler_dialog.cpp", '"brv_sra/fitting/dialogs/fit_dialog.h"',
     "brv_sra/fitting/dialogs/fit_dialog.h: a dialog of another folder"),
    ("brv_sra/profiler/dialogs/profiler_dialog.cpp", '"brv_sra/fitting/dialogs/fit_documents.h"', None),
    ("brv_sra/profiler/dialogs/profiler_dialog.cpp", '"brv_sra/fitting/estimation.h"', None),
    ("brv_sra/module/f.cpp", '"brv_sra/fitting/dialogs/fit_dialog.h"', None),
    ("brv_sra/frame/f.h", '"brv_sra/fitting/estimation.h"', "brv_sra/fitting"),
    ("brv_sra/frame/f.cpp", '"brv_sra/module/start.h"', "brv_sra/module"),
    ("brv_sra/fitting/dialogs/fit_dialog.cpp", '"brv_sra/module/start.h"', "brv_sra/module"),
    ("brv_sra/fitting/dialogs/fit_dialog_test.cpp", '"brv_sra/module/start.h"', None),
    ("brv_sra/fitting/estimation_test.cpp", '"brv_sra/module/start.h"', "brv_sra/module"),
    ("apps/cli/a.cpp", '"host/application/b.h"', None),
    ("apps/cli/a.cpp", "<CLI/CLI.hpp>", None),
    ("apps/cli/a.cpp", "<unistd.h>", "<unistd.h>: system header"),
    ("apps/cli/a.cpp", '"host/drawing/d.h"', "host/drawing"),
    ("apps/cli/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("apps/desktop/workbench/a.cpp", '"host/drawing/d.h"', None),
    ("apps/desktop/dialogs/a.cpp", '"apps/desktop/workbench/w.h"', "apps/desktop/workbench"),
    ("bindings/python/a.cpp", '"brv_sra/frame/f.h"', "brv_sra/frame"),
    ("tests/a_test.cpp", "<sys/wait.h>", None),
    ("tests/a_test.cpp", '"apps/cli/b.h"', "apps/cli"),
)


def self_test_of_texts():
    """The lines that are found in a file of a folder, and those that pass."""
    source = ('// "a comment may speak"\nconst char* a = "the value is missing";\n'
              'void F() { throw Error("no value", "the file has none"); }\n'
              'void G() { throw std::logic_error("no such value here"); }\n')
    failures = []
    for folder, expected in (("host/statistics", [2, 3]), ("host/formula", [2]), ("host/tables", [])):
        with tempfile.TemporaryDirectory() as root:
            os.makedirs(os.path.join(root, folder))
            with open(os.path.join(root, folder, "a.cpp"), "w", encoding="utf-8") as file:
                file.write(source)
            found = [int(line.split(":")[1]) for line in violations(root)]
        if found != expected:
            failures.append(f"texts in {folder}: found in lines {found}, wanted {expected}")
    return failures


def self_test_of_distributions():
    """A file more than may be knows a distribution; tests, comments and sentences do not count."""
    count = MOST_FILES_OF_DISTRIBUTION
    texts = {f"host/base/{k}.cpp": text for k, text in enumerate(
        ['const char* a = "Half Normal";', "Fit(half_normal);", *["EstimateHalfNormal();"] * (count - 2)])}
    texts["host/base/a_test.cpp"] = texts["host/numeric/estimation/a.cpp"] = "HalfNormal"
    texts["host/base/a.cpp"] = '// HalfNormal\nThrow(Error("the HalfNormal has none"));'
    failures = []
    for further, expected in (("", []), ("HalfNormal", [f"HalfNormal: in {count + 1} files, more than {count}"])):
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**texts, DISTRIBUTION_LIST: "using AllDistributions = DistributionList<Normal, "
                                                           f"{further}>;"}.items():
                os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text)
            found = [line.split(": host")[0] for line in violations(root)]
        if found != expected:
            failures.append(f"a distribution in {count + 1} files: found {found}, wanted {expected}")
    return failures


def self_test():
    failures = []
    for path, include, expected in SELF_TESTS:
        with tempfile.TemporaryDirectory() as root:
            for name, text in (("host/numeric/special/n.h", ""), (path, f"// first line\n#include {include}\n")):
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
    failures += self_test_of_texts()
    failures += self_test_of_distributions()
    paths = [f"host/base/{number}.h" for number in range(MOST_FILES + 1)]
    if crowded_folders(paths[1:]) or not crowded_folders(paths):
        failures.append("a crowded folder passes, or one that is full does not")
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
