#include "brv_sra/frame/loaded_module.h"

#include <array>
#include <memory>

#include "brv_sra/resources/strings.h"
#include "host/base/logging.h"
#include "host/base/process/crash_report.h"
#include "host/base/process/dynamic_library.h"

namespace brenvolt::sra {
namespace {

constexpr ObjectMapEntry Interface(std::string_view name) {
  return {name, RegisterInterface, UnregisterInterface};
}
constexpr ObjectClass Class(std::string_view name) {
  return {name, RegisterObjectClass, UnregisterObjectClass};
}

constexpr std::array kObjectMap{Interface("SRAStartup"),
                                Interface("SRASimulation"),
                                Interface("SRAFitDistribution"),
                                Interface("SRAFitDistributionResults"),
                                Interface("SRADesignSimulation"),
                                Interface("SRASimulationFromDistribution"),
                                Interface("SRASimulationProfiler"),
                                Interface("SRASimulationResults")};
constexpr std::array kObjectClasses{Class("CComDefineTask"),         Class("CComSimulation"),
                                    Class("CComFitDistribution"),    Class("CComFitDistributionResults"),
                                    Class("CComDesignSimulation"),   Class("CComSimulationFromDistribution"),
                                    Class("CComSimulationProfiler"), Class("CComSimulationResults")};

// Lives until the process ends: automation objects that clients still hold count themselves out here.
AutomationModule& TheAutomationModule() {
  static AutomationModule* const module =
      std::make_unique<AutomationModule>(kObjectMap, kObjectClasses).release();
  return *module;
}

// What the library does when it is loaded and unloaded, each in its order.
class LoadedModule {
 public:
  LoadedModule() : instance_(LibraryInstanceOf(this)) {
    InitExtensionModule(extension_, instance_);
    context_ = std::make_unique<CAnalysisContext>(instance_, &ResourceString);
    LogLine("analysis context created");
    resources_ = std::make_unique<CDynLinkLibrary>(extension_);
    TheAutomationModule().Initialise();
    RegisterTypeLibrary(LIBID_BRVSRA);
    InstallCrashReports();
  }
  ~LoadedModule() {
    TheAutomationModule().Terminate();
    context_.reset();
    LogLine("analysis context deleted");
    resources_.reset();
    TermExtensionModule(extension_);
  }
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  InstanceHandle Instance() const { return instance_; }
  const CAnalysisContext& Context() const { return *context_; }

 private:
  InstanceHandle instance_;
  ExtensionModule extension_;
  std::unique_ptr<CAnalysisContext> context_;
  std::unique_ptr<CDynLinkLibrary> resources_;
};

const LoadedModule loadedModule;

}  // namespace

InstanceHandle ModuleInstance() {
  return loadedModule.Instance();
}

const CAnalysisContext& ModuleContext() {
  return loadedModule.Context();
}

AutomationModule& ModuleAutomation() {
  return TheAutomationModule();
}

}  // namespace brenvolt::sra
