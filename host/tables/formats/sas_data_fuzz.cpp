// Arbitrary bytes as a SAS data file.
#include "host/tables/formats/packages_reader.h"
#include "host/tables/formats/reader_fuzz_support_test.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return brenvolt::TryReader(data, size, [](std::string_view bytes) {
    return brenvolt::ReadPackageFile(bytes, brenvolt::FileKind::kSasData, "data", "file");
  });
}
