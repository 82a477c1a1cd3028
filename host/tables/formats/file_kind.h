// What a file is, told by its content: the name does not count.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

enum class FileKind {
  kText,  // separated values, or whatever else is no other kind
  kJsonLines,
  kCompressed,  // by gzip, zstd, xz, or bzip2
  kXlsx,
  kOds,
  kNumpyArchive,
  kSpss,
  kStata,
  kSasTransport,
  kSasData,
  kUnread  // known, but not read
};

struct KindFound {
  FileKind kind = FileKind::kText;
  std::string name;  // for people: "a Parquet file"; empty for text
  std::string hint;  // how to get at data of a kind that is not read; may be empty
};

KindFound FindKind(std::string_view bytes);

// How the names of files usually end that are read, for who chooses among files: ".csv".
const std::vector<std::string>& ReadableEndings();

}  // namespace brenvolt
