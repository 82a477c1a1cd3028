// What lies in archives and compressed files, read within bounds: a small file may unpack to more than any memory holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

struct ZipContent {
  std::vector<std::string> names;
  std::string mimetype;  // of a document that has a part of this name
};

// The names of the parts of a zip file; those that can be listed if it is damaged.
ZipContent ListZip(std::string_view bytes);

// Unpacks a file that gzip, zstd, xz or bzip2 compressed. Throws Error naming `where` if it is damaged, or unpacks to
// more than MostUnpackedBytes.
std::string Unpacked(std::string_view bytes, const std::string& where);

// What a file of that size may unpack to: 256 MB, or 200 times its size, which tables of data hardly reach.
std::size_t MostUnpackedBytes(std::size_t packedBytes);

// The parts of a zip file in their order; without a condition on their names, all. What is not asked for is not unpacked. Throws
// the same, also for encrypted parts.
struct ZipPart {
  std::string name;
  std::string content;
};
using IsPartRead = bool (*)(std::string_view name);
std::vector<ZipPart> UnpackedParts(std::string_view bytes, const std::string& where,
                                   IsPartRead isRead = nullptr);

// Whether every part of a zip file of XML documents ends with the element that it begins with, so that none was cut off when it
// was written.
bool AreXmlPartsWhole(std::string_view bytes);

}  // namespace brenvolt
