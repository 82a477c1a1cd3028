#include "brv_sra/frame/module.h"

#include <array>
#include <memory>

#include "brv_sra/resources/strings.h"
#include "host/base/dynamic_library.h"
#include "host/base/logging.h"

namespace brenvolt::sra {
namespace {

InstanceHandle instance = nullptr;
ExtensionModule extension;
std::unique_ptr<CAnalysisContext> context;
std::unique_ptr<CDynLinkLibrary> resources;

void NoHook() {}

// The automation classes, one per interface; a class with state of its own hooks in here.
constexpr std::array<ObjectMapEntry, 4> kObjectMap{{{"SRAStartup", NoHook, NoHook},
                                                    {"SRAFitDistribution", NoHook, NoHook},
                                                    {"SRAFitDistributionResults", NoHook, NoHook},
                                                    {"SRASimulationFromDistribution", NoHook, NoHook}}};

AutomationModule& TheAutomationModule() {
  static AutomationModule module(kObjectMap);
  return module;
}

// Runs when the library is loaded, in this order; it always succeeds.
__attribute__((constructor)) void AttachModule() {
  instance = LibraryInstanceOf(reinterpret_cast<const void*>(&AttachModule));
  InitExtensionModule(extension, instance);
  context = std::make_unique<CAnalysisContext>(instance, &ResourceString);
  LogLine("analysis context created");
  resources = std::make_unique<CDynLinkLibrary>(extension);
  for (const ObjectMapEntry& entry : TheAutomationModule().ObjectMap()) entry.initialise();
  LogLine("object map initialised");
  KroOleRegisterTypeLib(instance, LIBID_BRVSRA, nullptr, nullptr);
}

// Runs when the library is unloaded.
__attribute__((destructor)) void DetachModule() {
  for (const ObjectMapEntry& entry : TheAutomationModule().ObjectMap()) entry.terminate();
  LogLine("object map terminated");
  context.reset();
  LogLine("analysis context deleted");
  TermExtensionModule(extension);
}

}  // namespace

InstanceHandle ModuleInstance() {
  return instance;
}

const CAnalysisContext& ModuleContext() {
  return *context;
}

AutomationModule& ModuleAutomation() {
  return TheAutomationModule();
}

}  // namespace brenvolt::sra
