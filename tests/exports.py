#!/usr/bin/env python3
"""Checks the dynamic symbols of the analysis module: its two entry points and its one class, all of it, nothing else.

    exports.py path/to/libbrv_sra.so
"""
import re
import subprocess
import sys

C_NAMES = {"Kro6NewAnalysis", "GetFittedDistributionList"}
CLASS = "brenvolt::sra::CSimulationAndRisk"
# What a host that includes the class's header links against.
REQUIRED = {f"vtable for {CLASS}", f"typeinfo for {CLASS}", f"typeinfo name for {CLASS}"}
REQUIRED_MEMBERS = (
    "CSimulationAndRisk", "~CSimulationAndRisk", "Initialize", "Init", "GetAnalysisID", "GetAnalysisName",
    "GetLibInstance", "ForwardSequence", "StartAnalysis", "FitDistributionDialog", "FitDistributionResultsDialog",
    "SimulationFromDistributionDialog", "SimulationResultsDialog", "ValidateInputMatrixFile",
    "ValidateOrDesignInputMatrixFile", "CreateAndAttachCorrelationInputFile", "UpdateFromInputMatrixFile",
    "UpdateFromInputSpreadsheet", "IsCorrelationMatrixSymmetric")
OF_CLASS = re.compile(rf"((vtable|VTT|typeinfo|typeinfo name) for {CLASS}|"
                      rf"((non-)?virtual thunk to )?{CLASS}::(?P<member>~?\w+)(\(.*|\[abi:.*|::.*)?)$")


def exported_names(library):
    symbols = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", library],
                             check=True, capture_output=True, text=True).stdout
    mangled = [line.split()[0].split("@")[0] for line in symbols.splitlines()]
    return set(subprocess.run(["c++filt"], input="\n".join(mangled), check=True, capture_output=True,
                              text=True).stdout.splitlines())


def faults(names):
    members = {match["member"] for match in map(OF_CLASS.match, names) if match}
    yield from (f"missing: {name}" for name in sorted((C_NAMES | REQUIRED) - names))
    yield from (f"missing: {CLASS}::{name}" for name in REQUIRED_MEMBERS if name not in members)
    yield from (f"exported beyond the interface: {name}" for name in sorted(names - C_NAMES)
                if not OF_CLASS.match(name))


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    found = list(faults(exported_names(arguments[0])))
    print("\n".join(found) if found else "the exports are as they should be")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
