// Arbitrary bytes as the arrays of an archive, what lies between the marks of their beginnings.
#include <algorithm>

#include "host/tables/formats/numpy_reader.h"
#include "host/tables/formats/reader_fuzz_support_test.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return brenvolt::TryReader(data, size, [](std::string_view bytes) {
    std::vector<brenvolt::ZipPart> parts;
    constexpr std::string_view kMark = "\x93NUMPY";
    for (std::size_t begin = 0; begin < bytes.size();) {
      const std::size_t next = std::min(bytes.find(kMark, begin + 1), bytes.size());
      parts.push_back(
          {"a" + std::to_string(parts.size()) + ".npy", std::string(bytes.substr(begin, next - begin))});
      begin = next;
    }
    return brenvolt::ReadNumpyArrays(parts, "data", "file");
  });
}
