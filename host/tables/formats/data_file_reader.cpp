#include "host/tables/formats/data_file_reader.h"

#include "host/base/error.h"
#include "host/base/files/mapped_file.h"
#include "host/tables/formats/file_kind.h"
#include "host/tables/formats/json_lines.h"
#include "host/tables/formats/numpy_reader.h"
#include "host/tables/formats/packages_reader.h"
#include "host/tables/office/sheet_grid.h"
#include "host/tables/office/zip_content.h"
#include "host/tables/text/text_table.h"

namespace brenvolt {
namespace {

constexpr const char* kStandardInputFile = "/dev/stdin";

[[noreturn]] void Refuse(const KindFound& kind, const std::string& where) {
  throw Error("this is " + kind.name + ", which is not read" + (kind.hint.empty() ? "" : "; " + kind.hint),
              where);
}

void RequireNoOptions(const TextOptions& options, const KindFound& kind, const std::string& where) {
  RequireTableOptions(options, kind.name, where);
  const std::pair<bool, const char*> given[] = {{options.header.has_value(), "header"},
                                                {options.unitsRow.has_value(), "unitsRow"},
                                                {!options.missingText.empty(), "missingText"},
                                                {!options.text.empty(), "text"}};
  for (const auto& [isGiven, field] : given) {
    if (isGiven) throw OptionError({field, "this is " + kind.name + ", to which this does not apply"}, where);
  }
}

// The name without the ending of what compressed the file.
std::string WithoutPacking(const std::filesystem::path& path) {
  const std::filesystem::path name = path.filename();
  const std::string ending = name.extension().string();
  const bool packed = ending == ".gz" || ending == ".zst" || ending == ".xz" || ending == ".bz2";
  return (packed ? name.stem() : name).stem().string();
}

}  // namespace

DataRead ReadDataBytes(std::string_view bytes, const std::string& name, const std::string& where,
                       const TextOptions& options) {
  const KindFound found = FindKind(bytes);
  switch (found.kind) {
    case FileKind::kText:
      return ReadTextTable(bytes, name, where, options);
    case FileKind::kCompressed: {
      const std::string unpacked = Unpacked(bytes, where);
      if (FindKind(unpacked).kind == FileKind::kCompressed)
        throw Error("the file is compressed twice; unpack it", where);
      DataRead read = ReadDataBytes(unpacked, name, where, options);
      read.readAs = "content packed by " + found.name + (read.readAs.empty() ? "" : ", " + read.readAs);
      return read;
    }
    case FileKind::kJsonLines:
      return ReadJsonLines(bytes, name, where, options);
    case FileKind::kXlsx:
    case FileKind::kOds:
      return ReadWorkbookFile(bytes, found.kind == FileKind::kOds, where, options);
    case FileKind::kNumpyArchive:
      RequireNoOptions(options, found, where);
      return ReadNumpyFile(bytes, name, where);
    case FileKind::kSpss:
    case FileKind::kStata:
    case FileKind::kSasTransport:
    case FileKind::kSasData:
      RequireNoOptions(options, found, where);
      return ReadPackageFile(bytes, found.kind, name, where);
    case FileKind::kUnread:
      break;
  }
  Refuse(found, where);
}

DataRead ReadDataFile(const std::filesystem::path& path, const TextOptions& options) {
  if (path == kStandardInput) {
    const MappedFile file(kStandardInputFile);
    return file.Use([&](std::string_view text) {
      return ReadDataBytes(text, "standard input", "standard input", options);
    });
  }
  const MappedFile file(path);
  return file.Use([&](std::string_view text) {
    return ReadDataBytes(text, WithoutPacking(path), path.string(), options);
  });
}

}  // namespace brenvolt
