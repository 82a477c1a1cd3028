// The analysis object as its dialogs see it: what they share, and what they ask of it. The folder module/ implements it, since
// the object opens every dialog.
#pragma once

#include <cstdint>

#include "host/analysis/analysis_support.h"
#include "host/base/export.h"

namespace brenvolt::sra {

struct FitState;
struct MatrixState;
struct ProfilerState;
struct SimulationState;

class BRENVOLT_EXPORT AnalysisServices : public CAnalysisSupport {
 public:
  using CAnalysisSupport::CAnalysisSupport;

  // What the fit dialogs share, what is known of the correlation matrix, what the simulation dialogs share,
  // and what the profiler keeps.
  virtual FitState& Fit() = 0;
  virtual MatrixState& Matrix() = 0;
  virtual SimulationState& Simulation() = 0;
  virtual ProfilerState& Profiler() = 0;

  // Defaults of numeric settings; everything around them starts at zero. The contract prescribes all of them, also those
  // that nothing reads.
  struct NumericDefaults {
    std::int32_t reservedCount = 0;
    std::int32_t numberOfSamples = 100;
    double randomSeed = 1000.0;
    std::int32_t textLength = 256;
    const void* reservedPointer = nullptr;
  };
  virtual const NumericDefaults& Defaults() const = 0;
  // The startup dialog's "AutoProfiler" choice, read by the profiler.
  virtual bool AutoProfiler() const = 0;

  // Lets the person choose a data file, which becomes the input; what was specified for the previous input is
  // forgotten. False, and nothing changed, when the person cancelled or the file could not be read: a message
  // has then said why.
  virtual bool OpenData() = 0;
  // A matrix file can be fitted like other data, which is seldom meant: if the input is one, asks. False
  // when the person decides against it.
  virtual bool MayFitInput() const = 0;

  // The correlation matrix file; each returns nonzero for success.
  //
  // Checks the input as a matrix file and reads it; shows a message for a fault. `parent` is the window that
  // asks. If it fails, no matrix file is attached and no values are kept.
  virtual std::int32_t ValidateInputMatrixFile(WindowHandle parent = nullptr) = 0;
  // The same, then the names of its variables; for an input that is not a valid matrix file, asks whether to
  // create one, except under automation.
  virtual std::int32_t ValidateOrDesignInputMatrixFile() = 0;
  // Reads number and names of variables of the input, which is a matrix file or data; 0 without an input. Of a
  // spreadsheet they are those that are selected for fitting, continuous ones first, and for simulation; all where none
  // is. Nothing is read, and the answer is 1, while the profiler works with formulas.
  virtual std::int32_t UpdateFromInputSpreadsheet() = 0;
};

}  // namespace brenvolt::sra
