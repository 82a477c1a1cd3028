#include "host/automation/type_library.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace brenvolt {
namespace {

struct Libraries {
  std::mutex mutex;
  std::vector<const TypeLibrary*> all;
};

// Lives until the process ends: modules are unloaded while it is ending.
Libraries& TheLibraries() {
  static Libraries* const libraries = std::make_unique<Libraries>().release();
  return *libraries;
}

// The first that `pick` finds in a library.
template <class Pick>
auto FirstOf(Pick pick) -> decltype(pick(*TheLibraries().all.front())) {
  Libraries& libraries = TheLibraries();
  const std::lock_guard lock(libraries.mutex);
  for (const TypeLibrary* library : libraries.all) {
    if (const auto* found = pick(*library)) return found;
  }
  return nullptr;
}

template <class Description>
const Description* Named(std::span<const Description> descriptions, std::string_view name) {
  const auto found = std::ranges::find(descriptions, name, &Description::name);
  return found != descriptions.end() ? &*found : nullptr;
}

}  // namespace

const TypeLibrary* FindTypeLibrary(std::string_view nameOrIdentifier) {
  return FirstOf([&](const TypeLibrary& library) {
    const bool meant = library.name == nameOrIdentifier || library.identifier == nameOrIdentifier;
    return meant ? &library : nullptr;
  });
}

const InterfaceDescription* FindInterface(std::string_view name) {
  return FirstOf([&](const TypeLibrary& library) { return Named(library.interfaces, name); });
}

const EnumerationDescription* FindEnumeration(std::string_view name) {
  return FirstOf([&](const TypeLibrary& library) { return Named(library.enumerations, name); });
}

void AddTypeLibrary(const TypeLibrary& library) {
  Libraries& libraries = TheLibraries();
  const std::lock_guard lock(libraries.mutex);
  if (std::ranges::find(libraries.all, &library) == libraries.all.end()) libraries.all.push_back(&library);
}

}  // namespace brenvolt
