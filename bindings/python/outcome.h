// Host code over an analysis, carried out for Python.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "bindings/python/analysis.h"

namespace brenvolt::python {

// Does the work in the host's turn. An interruption ends it before all else. Messages shown meanwhile become
// warnings, except the one that says why it failed; a failure becomes the package's Error. `method` is given where the
// work is a single call, and names it where the host does not know; without, the work is a job. `analysis` may be
// null, or made by the work.
void CarryOut(const std::shared_ptr<AnalysisRef>& analysis, const std::function<void()>& work,
              const std::function<std::string()>& method = {});

}  // namespace brenvolt::python
