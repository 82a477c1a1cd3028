// Libraries loaded at run time.
#pragma once

#include <filesystem>
#include <string>

namespace brenvolt {

class DynamicLibrary {
 public:
  // Loads a library with all its symbols resolved. It stays loaded until the process ends, since objects made
  // by its code may live as long. Throws Error naming the file and the loader's reason.
  explicit DynamicLibrary(const std::filesystem::path& path);
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  // The address of an exported C name. Throws Error when there is none.
  template <class Function>
  Function* Symbol(const std::string& name) const {
    return reinterpret_cast<Function*>(Address(name));
  }
  // The same; null when there is none.
  template <class Function>
  Function* FindSymbol(const std::string& name) const {
    return reinterpret_cast<Function*>(FindAddress(name));
  }

 private:
  void* Address(const std::string& name) const;
  void* FindAddress(const std::string& name) const;

  std::filesystem::path path_;
  void* handle_;
};

// The file of the library or program that holds the code or data at `address`, and the address at which it is
// loaded: the instance handle of the library.
std::filesystem::path LibraryFileOf(const void* address);
const void* LibraryInstanceOf(const void* address);

}  // namespace brenvolt
