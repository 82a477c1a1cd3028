#include "host/graphs/picture.h"

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "host/base/error.h"
#include "host/base/process/dynamic_library.h"

namespace brenvolt {
namespace {

constexpr const char* kLibrary = "libbrenvolt_drawing.so";

// The library, or why there is none.
struct Loaded {
  std::unique_ptr<DynamicLibrary> library;
  PictureFunction* draw = nullptr;
  std::string fault;
};

Loaded Load() {
  const std::filesystem::path file =
      LibraryFileOf(reinterpret_cast<const void*>(&DrawPictures)).parent_path() / kLibrary;
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    return {nullptr, nullptr,
            "this build draws no pictures; install the Debian packages qt6-base-dev, qt6-svg-dev and "
            "libqcustomplot-dev, and build again"};
  }
  try {
    auto library = std::make_unique<DynamicLibrary>(file);
    PictureFunction* const draw = library->Symbol<PictureFunction*()>(kPictureSymbol)();
    return {std::move(library), draw, {}};
  } catch (const Error& error) {
    return {nullptr, nullptr,
            "the library that draws pictures " + std::string(error.what()) +
                "; the Debian packages libqcustomplot2.1-qt6 and libqt6svg6 bring what it needs"};
  }
}

const Loaded& Library() {
  static const Loaded loaded = Load();
  return loaded;
}

}  // namespace

std::string WhyNoPictures() {
  return Library().fault;
}

const DynamicLibrary& DrawingLibrary() {
  if (Library().library == nullptr) throw Error(Library().fault);
  return *Library().library;
}

int LeastWidthOf(const Graph& graph) {
  if (graph.kind != GraphKind::kScatterMatrix) return 0;
  return kMatrixFrame + static_cast<int>(graph.panelColumns) * kLeastCellWidth;
}

std::string DrawPictures(std::span<const Graph> graphs, const PictureStyle& style) {
  if (Library().draw == nullptr) throw Error(Library().fault);
  if (graphs.empty()) throw Error("there is nothing to draw");
  return Library().draw(graphs, style);
}

}  // namespace brenvolt
