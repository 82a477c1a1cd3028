// Any bytes as a project file: opening gives a project or an Error, and a project that opens can be saved and
// opened again. The seeds are projects with pages of 512 bytes, the smallest that SQLite knows, to keep them
// short.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "host/base/error.h"
#include "host/tables/workbook.h"

namespace {

// A folder that goes at the end of the process.
class ScratchFolder {
 public:
  ScratchFolder()
      : path_(std::filesystem::temp_directory_path() /
              ("brenvolt_fuzz_" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

void RequireSameOutline(const brenvolt::Workbook& workbook, const std::filesystem::path& saved) {
  const auto outline = brenvolt::Workbook::Outline(saved);
  if (outline.size() != workbook.SheetCount()) std::abort();
  for (std::size_t i = 0; i < outline.size(); ++i) {
    if (outline[i].name != workbook.SheetAt(i).Name() ||
        outline[i].cases != workbook.SheetAt(i).CaseCount() ||
        outline[i].variables != workbook.SheetAt(i).VariableCount()) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchFolder folder;
  static const std::filesystem::path given = folder / "given.bvw";
  static const std::filesystem::path saved = folder / "saved.bvw";
  std::ofstream(given, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    brenvolt::Workbook workbook = brenvolt::Workbook::Open(given);
    workbook.Save(given);
    workbook.Save(saved);
    RequireSameOutline(workbook, saved);
    if (brenvolt::Workbook::Open(saved).SheetCount() != workbook.SheetCount()) std::abort();
  } catch (const brenvolt::Error& error) {
    if (error.Where() != given.string()) std::abort();
  }
  std::filesystem::remove(given);
  std::filesystem::remove(saved);
  return 0;
}
