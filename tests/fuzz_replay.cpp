// Stands in for libFuzzer if the compiler has none: a main() that gives LLVMFuzzerTestOneInput each of the
// files that the arguments name or hold, in the order of their names. A fault ends the program; the last name
// printed is that of the input that brought it about.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using std::filesystem::path;

std::vector<path> FilesOf(std::span<char*> arguments) {
  std::vector<path> files;
  for (const path argument : arguments) {
    if (!std::filesystem::is_directory(argument)) {
      files.push_back(argument);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argument)) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  std::ranges::sort(files);
  return files;
}

// An exception that leaves the target ends the program. The input lies in an array of exactly its size, so
// that a sanitizer sees a read past its end.
bool Replay(const path& file) noexcept {
  std::fprintf(stderr, "%s\n", file.c_str());
  std::ifstream stream(file, std::ios::binary);
  std::vector<std::uint8_t> input(stream ? std::filesystem::file_size(file) : 0);
  if (!stream.read(reinterpret_cast<char*>(input.data()), static_cast<std::streamsize>(input.size()))) {
    std::fprintf(stderr, "cannot read this file\n");
    return false;
  }
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  const auto files = FilesOf(std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
  if (files.empty()) std::fprintf(stderr, "name the files or folders of inputs to replay\n");
  return !files.empty() && std::ranges::all_of(files, Replay) ? 0 : 2;
}
