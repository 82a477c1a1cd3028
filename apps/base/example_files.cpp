#include "apps/base/example_files.h"

#include <filesystem>
#include <system_error>

#include "host/application/application.h"
#include "host/base/process/dynamic_library.h"

namespace brenvolt {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFolder = " examples/";

// Beside the library, which the loader may know by a folder that is a link.
fs::path InstalledFolder() {
  std::error_code ignored;
  const fs::path library =
      fs::canonical(LibraryFileOf(reinterpret_cast<const void*>(&Application::DefaultModulePath)), ignored);
  const fs::path folder = library.parent_path().parent_path() / BRENVOLT_EXAMPLES;
  return fs::is_directory(folder, ignored) ? folder : fs::path();
}

}  // namespace

std::string WithInstalledExamples(std::string text) {
  const std::string installed = InstalledFolder().string();
  if (installed.empty()) return text;
  const std::string path = " " + installed + "/";
  for (auto at = text.find(kFolder); at != std::string::npos; at = text.find(kFolder, at + path.size()))
    text.replace(at, kFolder.size(), path);
  return text;
}

}  // namespace brenvolt
