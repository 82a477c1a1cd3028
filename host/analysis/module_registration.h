// What an analysis module registers with the host when it is loaded, and withdraws when it is unloaded.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/automation/type_library.h"

namespace brenvolt {

// Where a library is loaded: identifies the module to the host.
using InstanceHandle = const void*;

// Serves a module's resource strings to the analysis objects that the module makes.
class CAnalysisContext {
 public:
  using StringSource = std::string_view (*)(std::int32_t number);

  CAnalysisContext(InstanceHandle instance, StringSource strings) : instance_(instance), strings_(strings) {}
  InstanceHandle Instance() const { return instance_; }
  // The text of a resource, or an empty text for a number without one.
  std::string_view String(std::int32_t number) const { return strings_(number); }

 private:
  InstanceHandle instance_;
  StringSource strings_;
};

// The framework's state of one extension module: initialised at attach, terminated at detach.
struct ExtensionModule {
  InstanceHandle instance = nullptr;
  bool initialised = false;
};
bool InitExtensionModule(ExtensionModule& module, InstanceHandle instance);
void TermExtensionModule(ExtensionModule& module);

// A module's record among the resource libraries.
class CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(const ExtensionModule& module);
};

// An interface that automation clients can ask for, and a class whose objects implement one; each with what
// it does when its module is loaded and unloaded.
struct ObjectMapEntry {
  std::string_view interfaceName;
  void (*initialise)(const ObjectMapEntry& entry);
  void (*terminate)(const ObjectMapEntry& entry);
};
struct ObjectClass {
  std::string_view className;
  void (*initialise)(const ObjectClass& entry);
  void (*terminate)(const ObjectClass& entry);
};

// The usual hooks: the host knows the interfaces and the classes of the modules that are loaded.
void RegisterInterface(const ObjectMapEntry& entry);
void UnregisterInterface(const ObjectMapEntry& entry);
std::vector<std::string> RegisteredInterfaces();
void RegisterObjectClass(const ObjectClass& entry);
void UnregisterObjectClass(const ObjectClass& entry);
std::vector<std::string> RegisteredObjectClasses();

// A module's automation side: its object map, its object classes, and the count of automation objects alive.
class AutomationModule {
 public:
  AutomationModule(std::span<const ObjectMapEntry> objectMap, std::span<const ObjectClass> classes)
      : objectMap_(objectMap), classes_(classes) {}
  // Runs the hooks of the object map, then those of the classes.
  void Initialise();
  void Terminate();

  void Lock() noexcept { ++locks_; }
  void Unlock() noexcept { --locks_; }
  std::int32_t LockCount() const noexcept { return locks_; }

 private:
  std::span<const ObjectMapEntry> objectMap_;
  std::span<const ObjectClass> classes_;
  std::atomic<std::int32_t> locks_{0};
};

// A type library's identity, 128 bits in their text form, and where the module keeps its content; null
// for a library without a description.
struct LibraryId {
  std::string_view text;
  const TypeLibrary& (*contents)() = nullptr;
};
// Makes a module's type library known: from then on FindTypeLibrary and its kin answer for it.
void RegisterTypeLibrary(const LibraryId& library);
std::vector<std::string> RegisteredTypeLibraries();

}  // namespace brenvolt
