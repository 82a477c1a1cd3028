// What jobs found, as dictionaries of Python; brenvolt/_jobs.py makes frames of them. Columns bear the identifiers of
// host/analysis/result_columns.h.
#pragma once

#include <pybind11/pybind11.h>

#include <vector>

#include "host/jobs/fit_results.h"
#include "host/jobs/profile/profile_results.h"
#include "host/jobs/simulation_results.h"

namespace brenvolt::python {

pybind11::list FitDicts(const std::vector<FittedVariable>& variables);
// What speaks against simulating variables, in sentences, by their names.
pybind11::dict CautionTexts(const std::vector<VariableCautions>& variables);
// {"asked": {(first, second): number}, …} of the simulated pairs, in their order.
pybind11::dict PairDicts(const SimulationResults& results);
// The correlations that took the place of those asked for, {name: {name: number}}; None where there was no repair.
pybind11::object RepairedMatrix(const SimulationResults& results);
pybind11::dict ProfileDict(const ProfileResults& results);
// {table: {column: the keys of its place in an object of JSON}}, of the tables that are read out of JSON.
pybind11::dict ColumnPlaces();

}  // namespace brenvolt::python
