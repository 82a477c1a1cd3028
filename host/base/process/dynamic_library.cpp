#include "host/base/process/dynamic_library.h"

#include <dlfcn.h>

#include "host/base/error.h"

namespace brenvolt {
namespace {

Dl_info InfoOf(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0) throw Error("address belongs to no loaded library");
  return info;
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path)
    : path_(path), handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
  if (handle_ == nullptr)
    throw Error(std::string("the library cannot be loaded: ") + dlerror(), path.string());
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::FindAddress(const std::string& name) const {
  return dlsym(handle_, name.c_str());
}

void* DynamicLibrary::Address(const std::string& name) const {
  void* address = FindAddress(name);
  if (address == nullptr) throw Error("the library does not export " + name, path_.string());
  return address;
}

std::filesystem::path LibraryFileOf(const void* address) {
  return InfoOf(address).dli_fname;
}

const void* LibraryInstanceOf(const void* address) {
  return InfoOf(address).dli_fbase;
}

}  // namespace brenvolt
