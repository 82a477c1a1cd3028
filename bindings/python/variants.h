// Values of automation calls as Python's, and back.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>

#include "host/analysis/analysis_table_doc.h"
#include "host/automation/variant.h"

namespace brenvolt::python {

class AnalysisRef;
class SheetRef;

// Python objects for None, bool, int, float, str and lists of these; automation objects as AutomationRef of
// the analysis that they come from.
pybind11::object ToPython(const Variant& value, const std::shared_ptr<AnalysisRef>& analysis);

// The reverse, also of NumPy's numbers and of any sequence. A spreadsheet is passed as a document: its own,
// or one of a copy. None inside a sequence is a value that is not set. Throws TypeError for anything else,
// bytes among them, and ValueError for what cannot be passed of these: a text that is no Unicode, a whole
// number of more than 64 bits, sequences more than 32 deep.
Variant FromPython(const pybind11::handle& value);

// The document of a sheet: its own, or one of a copy.
std::shared_ptr<CAnalysisTableDoc> DocumentOf(const std::shared_ptr<SheetRef>& sheet);

}  // namespace brenvolt::python
