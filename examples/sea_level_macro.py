"""A macro: fits the sea levels of portpirie_sea_level.csv, saves the fits in a project, and simulates from them.

    brenvolt macro examples/sea_level_macro.py sea.bvw
"""

import sys
from pathlib import Path

from brenvolt import *

project = sys.argv[1] if len(sys.argv) > 1 else "sea.bvw"

application = Application()
workbook = application.Open(Path(__file__).with_name("portpirie_sea_level.csv"))
sheet = workbook.Sheet()
analysis = application.Analysis(sheet)

# Startup: fit distributions.
dialog = analysis.Dialog
dialog.TypeOfAnalysis = scSRAFitDistribution
dialog.OK()

# What is fitted beside the distributions that are checked already: a Weibull distribution from 3.5 m on. The
# Anderson-Darling test ranks.
dialog = analysis.Dialog
dialog.ContinuousVariable = "1"
dialog.IsWeibullDistribution[1] = True
dialog.WeibullOffset[1] = 3.5
dialog.IsGaussianMixtureDistribution[1] = False
dialog.ContinuousAndersonDarlingTest = True
dialog.OK()

# The results: the ranked fits, a Q-Q plot of the best, and own values in the place of the fitted Normal distribution.
dialog = analysis.Dialog
dialog.QuickTabVariable = 1
fits = dialog.QuickTabDistributionSummaryStats
for rank in range(1, fits.NumberOfCases + 1):
    print(rank, fits.CaseName[rank])
plot = dialog.QQPlot
print(f"{plot.Title}: {len(plot.series[0]['x'])} points")

dialog.IsUserDefinedDistributions = True
dialog.UserDefinedDistributions[1, "Normal"] = Array(4.0, 0.25)
dialog.IsUserDefinedTruncMin[1] = True
dialog.UserDefinedTruncMin[1] = 3.5
matrix = dialog.SaveDistributionFit
matrix.sheet.name = "Correlation matrix"
workbook.Add(matrix.sheet)
workbook.Save(project)
print(f"saved in {project}: {', '.join(workbook.names)}")

# Back to the startup dialog, and on to the simulation.
dialog.Cancel()
analysis.Dialog.Cancel()
dialog = analysis.Dialog
dialog.TypeOfAnalysis = scSRARunSimulation
dialog.OK()

dialog = analysis.Dialog
dialog.LHSMethod = True
dialog.NumberOfSamples = 1000
dialog.IsSeedRandomNumber = True
dialog.RandomSeedNumber = 7
dialog.OK()

samples = analysis.Documents[-1].sheet["sealevel"]
print(f"{samples.size} samples, mean {samples.mean():.4f}, least {samples.min():.4f}")
