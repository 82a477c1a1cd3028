// The host's services under the names that modules compiled apart from it know.
//
// An analysis module that is built elsewhere reaches the host by these names, with these argument orders;
// they are a contract and never change. They are kept in this folder and nowhere else: the host and its own
// module use the plain names on the right. The declarations of the plain names say what they mean.
//
// Members of the bases of analyses and of their dialogs (CAnalysisSupport: InitCommons, GetDialgInterface, get_md,
// dsplst, …; CAnalysisDialog: szLoadResString, GetDlgItemLong, …) cannot have a second name: they are declared there
// under the contract's names, the virtual ones in the contract's order, which this folder's test holds.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "host/analysis/analysis_support.h"
#include "host/analysis/module_registration.h"
#include "host/automation/automation_object.h"
#include "host/controls/progress_bar.h"

namespace brenvolt {

// The blocks that the host shares with an analysis, in the order in which InitCommons takes them.
using KroTag = CaseSelectionBlock;
using Kro88Tag = StartupMenuBlock;
using b1_com = CaseCountBlock;
using Wght_com = CaseWeightBlock;
using _AddMenu = MenuBlock;

// A row of the sequence table; the window that asks; the way from an automation object to its dialog.
using SEQFUNCTTBL = SequenceStep;
using HWND = WindowHandle;
using IMFCPointer = DialogPointer;
inline constexpr InterfaceId IID_IMFCPointer = kDialogPointer;

class CKroProgressBar : public ProgressBar {
 public:
  using ProgressBar::ProgressBar;
  static std::unique_ptr<CKroProgressBar> new_ProgressBar(ProgressPort& port, std::string_view caption,
                                                          std::int64_t steps);
};

// RegisterTypeLibrary. The two last arguments are reserved and must be null. Returns true.
bool KroOleRegisterTypeLib(InstanceHandle instance, const LibraryId& library, const void* path,
                           const void* help);

// The process's random stream. rnd_(0): NextUniform. rnd_(s), s != 0: SeedProcessStream, then NextUniform.
double rnd_(std::int32_t seed);
// NextNormal.
double znormal_(double sd);
// SeedProcessStream, also for a seed of 0. `reserved` must be 0.
void inirnd_(std::int32_t seed, std::int32_t reserved);
class CRandomizer {
 public:
  double GetDouble();
};

// RoundAxis.
double scling_double_QUA(double& minimum, double& maximum, int mostSteps, int fewestSteps);

}  // namespace brenvolt
