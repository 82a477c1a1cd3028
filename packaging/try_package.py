"""Does the main job with the Python package that is installed, away from the tree.

    try_package.py EXAMPLES
"""

import importlib.metadata
import os
import sys

import brenvolt

package = os.path.dirname(brenvolt.__file__)
assert package.startswith(sys.prefix), f"{package} is not of this environment"
for name in ("py.typed", "__init__.pyi", "libs/libbrenvolt.so.0", "libs/libbrv_sra.so"):
    assert os.path.exists(os.path.join(package, name)), name
with open("/proc/self/maps", encoding="utf-8") as maps:
    loaded = {line.split()[-1] for line in maps if "libbrenvolt.so" in line}
assert loaded and all(path.startswith(package) for path in loaded), loaded
assert importlib.metadata.version("brenvolt") == brenvolt.__version__

result = brenvolt.fit(os.path.join(sys.argv[1], "portpirie_sea_level.csv"), save="sea.bvw")
samples = brenvolt.simulate(result, 1000, method="latin-hypercube", seed=7)
assert len(samples) == 1000
print(brenvolt.version_text())
print(result.best["sealevel"])
