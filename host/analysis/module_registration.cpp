#include "host/analysis/module_registration.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "host/base/logging.h"

namespace brenvolt {
namespace {

struct Registry {
  std::mutex mutex;
  std::vector<InstanceHandle> resourceLibraries;
  std::vector<std::string> typeLibraries;
};

// Lives until the process ends: modules take their entries back while the process is ending, too.
Registry& TheRegistry() {
  static Registry* const registry = std::make_unique<Registry>().release();
  return *registry;
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

CDynLinkLibrary::CDynLinkLibrary(const ExtensionModule& module) : instance_(module.instance) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  registry.resourceLibraries.push_back(instance_);
  LogLine("resource library recorded");
}

CDynLinkLibrary::~CDynLinkLibrary() {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  std::erase(registry.resourceLibraries, instance_);
}

std::vector<InstanceHandle> ResourceLibraries() {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.resourceLibraries;
}

bool KroOleRegisterTypeLib(InstanceHandle /*instance*/, const LibraryId& library, const void* /*path*/,
                           const void* /*help*/) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  const std::string text(library.text);
  if (std::ranges::find(registry.typeLibraries, text) == registry.typeLibraries.end()) {
    registry.typeLibraries.push_back(text);
  }
  LogLine("type library registered " + text);
  return true;
}

std::vector<std::string> RegisteredTypeLibraries() {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.typeLibraries;
}

}  // namespace brenvolt
