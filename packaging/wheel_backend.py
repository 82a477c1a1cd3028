"""Builds the wheel of the Python package, as `pip install .` asks for it: CMake builds, and this packs what it made.

The wheel holds the libraries of the host, of the analysis and, where Qt is installed, of pictures. Libraries of
Debian's packages, which the build links, are not inside: it is a wheel for the machine that built it and for its like.

    pip install .                                      builds in build/ if ./run or ./test have, else in build-wheel/
    pip install . --config-settings build-dir=FOLDER   builds elsewhere
"""

import base64
import hashlib
import os
import re
import subprocess
import sys
import sysconfig
import tomllib
import zipfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIBRARIES = ("libbrenvolt.so.0", "libbrv_sra.so", "libbrenvolt_drawing.so")
EARLIEST = (1980, 1, 1, 0, 0, 0)  # that zip files can hold: the same build makes the same wheel


def version():
    with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as file:
        return re.search(r"project\(brenvolt VERSION ([\d.]+)", file.read())[1]


def build_folder(settings):
    """A folder of its own is configured without tests, which build/ must have."""
    configured = os.path.exists(os.path.join(ROOT, "build/build.ninja"))
    return os.path.join(ROOT, (settings or {}).get("build-dir", "build" if configured else "build-wheel"))


def build(folder):
    """Brings what the wheel holds up to date; configures the folder first if it is new.

    pip hides Debian's NumPy from every Python that is started below it, by a module on PYTHONPATH.
    """
    plain = {name: value for name, value in os.environ.items() if not name.startswith("PYTHON")}
    if not os.path.exists(os.path.join(folder, "build.ninja")):
        subprocess.run(["cmake", "-G", "Ninja", "-S", ROOT, "-B", folder, "-DCMAKE_BUILD_TYPE=Release",
                        "-DBRENVOLT_TESTS=OFF"], check=True, env=plain)
    subprocess.run(["cmake", "--build", folder, "--target", "wheel_files"], check=True, env=plain)


def metadata():
    with open(os.path.join(ROOT, "pyproject.toml"), "rb") as file:
        project = tomllib.load(file)["project"]
    with open(os.path.join(ROOT, project["readme"]), encoding="utf-8") as file:
        readme = file.read()
    lines = ["Metadata-Version: 2.1", f"Name: {project['name']}", f"Version: {version()}",
             f"Summary: {project['description']}",
             f"Requires-Python: {project['requires-python']}", f"License: {project['license']['text']}",
             *(f"Requires-Dist: {name}" for name in project["dependencies"]), "Description-Content-Type: text/markdown"]
    return "\n".join(lines) + "\n\n" + readme


def tag():
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{python}-{python}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())


def contents(folder):
    """Names in the wheel with the files that they hold."""
    package = os.path.join(folder, "python/brenvolt")
    module = "_brenvolt" + sysconfig.get_config_var("EXT_SUFFIX")
    if not os.path.exists(os.path.join(package, module)):
        raise SystemExit(f"{folder} has no {module}: the package is built for Debian's Python ({sys.executable} is "
                         "another one)")
    for name in sorted(os.listdir(package)):
        if name == module or name.endswith((".py", ".pyi", "py.typed")):
            yield f"brenvolt/{name}", os.path.join(package, name)
    for name in LIBRARIES:
        path = os.path.join(folder, "lib", name)
        if os.path.exists(path):
            yield f"brenvolt/libs/{name}", path


def write_wheel(path, folder):
    information = f"brenvolt-{version()}.dist-info"
    record = []
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        def add(name, data, mode=0o644):
            entry = zipfile.ZipInfo(name, EARLIEST)
            entry.external_attr = (0o100000 | mode) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            wheel.writestr(entry, data)
            digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
            record.append(f"{name},sha256={digest},{len(data)}")

        for name, file in contents(folder):
            with open(file, "rb") as opened:
                add(name, opened.read(), 0o755 if ".so" in name else 0o644)
        with open(os.path.join(ROOT, "LICENSE"), "rb") as licence:
            add(f"{information}/LICENSE", licence.read())
        add(f"{information}/METADATA", metadata().encode())
        add(f"{information}/WHEEL",
            f"Wheel-Version: 1.0\nGenerator: brenvolt\nRoot-Is-Purelib: false\nTag: {tag()}\n".encode())
        record.append(f"{information}/RECORD,,")
        wheel.writestr(zipfile.ZipInfo(f"{information}/RECORD", EARLIEST), "\n".join(record) + "\n")


# ---- what pip calls --------------------------------------------------------------------------------------------------

def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    folder = build_folder(config_settings)
    build(folder)
    name = f"brenvolt-{version()}-{tag()}.whl"
    write_wheel(os.path.join(wheel_directory, name), folder)
    return name


def build_sdist(sdist_directory, config_settings=None):
    raise SystemExit("there is no source distribution for pip: git archive makes one that builds")
