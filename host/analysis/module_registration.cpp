#include "host/analysis/module_registration.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "host/base/logging.h"

namespace brenvolt {
namespace {

struct Registry {
  std::mutex mutex;
  std::vector<std::string> typeLibraries;
  std::vector<std::string> interfaces;
  std::vector<std::string> classes;
};

// Lives until the process ends: modules still take their entries back while the process ends.
Registry& TheRegistry() {
  static Registry* const registry = std::make_unique<Registry>().release();
  return *registry;
}

using Names = std::vector<std::string> Registry::*;

void AddName(Names names, std::string_view name) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  (registry.*names).emplace_back(name);
}

void RemoveName(Names names, std::string_view name) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  std::erase(registry.*names, name);
}

std::vector<std::string> CopyNames(Names names) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.*names;
}

}  // namespace

bool InitExtensionModule(ExtensionModule& module, InstanceHandle instance) {
  module.instance = instance;
  module.initialised = true;
  LogLine("extension module initialised");
  return true;
}

void TermExtensionModule(ExtensionModule& module) {
  module.initialised = false;
  LogLine("extension module terminated");
}

CDynLinkLibrary::CDynLinkLibrary(const ExtensionModule& /*module*/) {
  LogLine("resource library recorded");
}

void RegisterTypeLibrary(const LibraryId& library) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  const std::string text(library.text);
  if (std::ranges::find(registry.typeLibraries, text) == registry.typeLibraries.end()) {
    registry.typeLibraries.push_back(text);
  }
  if (library.contents != nullptr) AddTypeLibrary(library.contents());
  LogLine("type library registered " + text);
}

std::vector<std::string> RegisteredTypeLibraries() {
  return CopyNames(&Registry::typeLibraries);
}

void RegisterInterface(const ObjectMapEntry& entry) {
  AddName(&Registry::interfaces, entry.interfaceName);
}

void UnregisterInterface(const ObjectMapEntry& entry) {
  RemoveName(&Registry::interfaces, entry.interfaceName);
}

std::vector<std::string> RegisteredInterfaces() {
  return CopyNames(&Registry::interfaces);
}

void RegisterObjectClass(const ObjectClass& entry) {
  AddName(&Registry::classes, entry.className);
}

void UnregisterObjectClass(const ObjectClass& entry) {
  RemoveName(&Registry::classes, entry.className);
}

std::vector<std::string> RegisteredObjectClasses() {
  return CopyNames(&Registry::classes);
}

void AutomationModule::Initialise() {
  for (const ObjectMapEntry& entry : objectMap_) entry.initialise(entry);
  LogLine("object map initialised");
  for (const ObjectClass& entry : classes_) entry.initialise(entry);
  LogLine("object classes initialised");
}

void AutomationModule::Terminate() {
  for (const ObjectMapEntry& entry : objectMap_) entry.terminate(entry);
  LogLine("object map terminated");
  for (const ObjectClass& entry : classes_) entry.terminate(entry);
  LogLine("object classes terminated");
  LogLine("automation module terminated");
}

}  // namespace brenvolt
