#include "host/tables/formats/file_kind.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  FileKind kind;
  const char* name;
  const char* hint;
};

constexpr const char* kSaveAs = "save it as .xlsx, .ods or .csv";
constexpr const char* kPandas = "in Python: brenvolt.fit(pandas.";

constexpr std::string_view Bytes(const char* bytes, std::size_t size) {
  return {bytes, size};
}

constexpr std::array kSignatures{
    Signature{0, "\x1F\x8B", FileKind::kCompressed, "gzip", ""},
    Signature{0, "\x28\xB5\x2F\xFD", FileKind::kCompressed, "zstd", ""},
    Signature{0,
              Bytes("\xFD"
                    "7zXZ\0",
                    6),
              FileKind::kCompressed, "xz", ""},
    Signature{4, "1AY&SY", FileKind::kCompressed, "bzip2", ""},
    Signature{0, "$FL2", FileKind::kSpss, "an SPSS file", ""},
    Signature{0, "$FL3", FileKind::kSpss, "an SPSS file", ""},
    Signature{0, "<stata_dta>", FileKind::kStata, "a Stata file", ""},
    Signature{0, "HEADER RECORD*******LIB", FileKind::kSasTransport, "a SAS transport file", ""},
    Signature{12, "\xC2\xEA\x81\x60\xB3\x14\x11\xCF\xBD\x92\x08", FileKind::kSasData, "a SAS data file", ""},
    Signature{0, "PAR1", FileKind::kUnread, "a Parquet file", "read_parquet"},
    Signature{0, Bytes("ARROW1\0", 7), FileKind::kUnread, "an Arrow file", "read_feather"},
    Signature{0, "FEA1", FileKind::kUnread, "a Feather file", "read_feather"},
    Signature{0, "\x89HDF\r\n", FileKind::kUnread, "an HDF5 file", "read_hdf"},
    Signature{0, "Obj\x01", FileKind::kUnread, "an Avro file", ""},
    Signature{0, "\x93NUMPY", FileKind::kUnread, "a NumPy array", "DataFrame(numpy.load"},
    Signature{0, "MATLAB 5.0", FileKind::kUnread, "a MATLAB file", ""},
    Signature{0, "RDX2\n", FileKind::kUnread, "an R data file", "save it in R by write.csv"},
    Signature{0, "RDX3\n", FileKind::kUnread, "an R data file", "save it in R by write.csv"},
    Signature{0, "CDF\x01", FileKind::kUnread, "a NetCDF file", ""},
    Signature{0, "CDF\x02", FileKind::kUnread, "a NetCDF file", ""},
    Signature{0, "%PDF-", FileKind::kUnread, "a PDF file", "it holds pages, not a table of data"},
    Signature{0, "\x89PNG", FileKind::kUnread, "a PNG picture", ""},
    Signature{0, "\xFF\xD8\xFF", FileKind::kUnread, "a JPEG picture", ""},
    Signature{0, "GIF89a", FileKind::kUnread, "a GIF picture", ""},
    Signature{0, "{\\rtf", FileKind::kUnread, "an RTF document", "save it as plain text"},
    Signature{0,
              "\x7F"
              "ELF",
              FileKind::kUnread, "a program", ""},
    Signature{0, "7z\xBC\xAF", FileKind::kUnread, "a 7-Zip archive", "unpack it"},
    Signature{0, "Rar!", FileKind::kUnread, "a RAR archive", "unpack it"},
    Signature{257, "ustar", FileKind::kUnread, "a tar archive", "unpack it"},
    Signature{0, "SQLite format 3", FileKind::kUnread, "an SQLite database", ""},
};

std::string HintOf(std::string_view hint) {
  if (!hint.starts_with("read_") && !hint.starts_with("DataFrame")) return std::string(hint);
  return kPandas + std::string(hint) + (hint.starts_with("DataFrame") ? "(FILE)))" : "(FILE))");
}

bool ContainsUtf16(std::string_view bytes, std::string_view word) {
  std::string wide;
  for (const char c : word) wide += {c, '\0'};
  return bytes.find(wide) != std::string_view::npos;
}

// Compound documents hold spreadsheets of the old format, and encrypted ones of the new.
KindFound CompoundKind(std::string_view bytes) {
  if (ContainsUtf16(bytes, "EncryptedPackage"))
    return {FileKind::kUnread, "an encrypted workbook", "save it without a password"};
  if (ContainsUtf16(bytes, "Workbook") || ContainsUtf16(bytes, "Book"))
    return {FileKind::kUnread, "a workbook in the old .xls format", kSaveAs};
  return {FileKind::kUnread, "an office document in an old format", kSaveAs};
}

KindFound ZipKind(std::string_view bytes) {
  const ZipContent content = ListZip(bytes);
  const auto has = [&content](std::string_view name) {
    return std::ranges::find(content.names, name) != content.names.end();
  };
  if (has("xl/workbook.xml")) return {FileKind::kXlsx, "an xlsx workbook", {}};
  if (has("xl/workbook.bin")) return {FileKind::kUnread, "a binary workbook (.xlsb)", kSaveAs};
  if (has("content.xml") && has("META-INF/manifest.xml")) {
    return content.mimetype.find("spreadsheet") != std::string::npos
               ? KindFound{FileKind::kOds, "an ods workbook", {}}
               : KindFound{FileKind::kUnread, "an OpenDocument file other than a spreadsheet", {}};
  }
  if (has("encrypted-package"))
    return {FileKind::kUnread, "an encrypted document", "save it without a password"};
  if (has("word/document.xml"))
    return {FileKind::kUnread, "a word processor's document", "save its table as .csv"};
  if (has("ppt/presentation.xml")) return {FileKind::kUnread, "a presentation", {}};
  const auto isArray = [](const std::string& name) { return name.ends_with(".npy"); };
  if (!content.names.empty() && std::ranges::all_of(content.names, isArray))
    return {FileKind::kNumpyArchive, "an archive of NumPy arrays", {}};
  // The list of what an archive holds stands at its end.
  constexpr std::size_t kLongestEnd = 65557;
  const std::string_view end = bytes.substr(bytes.size() - std::min(bytes.size(), kLongestEnd));
  if (end.find("PK\x05\x06") == std::string_view::npos) {
    const bool isWorkbook = bytes.find("xl/") != std::string_view::npos ||
                            bytes.find("opendocument.spreadsheet") != std::string_view::npos;
    return {FileKind::kUnread,
            isWorkbook ? "a workbook whose end is missing" : "a zip archive whose end is missing",
            "copy or download it again"};
  }
  return {FileKind::kUnread, "a zip archive", "unpack it"};
}

// Formats before that with tags begin with their number and the order of bytes.
bool IsOldStata(std::string_view bytes) {
  if (bytes.size() < 4) return false;
  const auto release = static_cast<std::uint8_t>(bytes[0]);
  const bool isRelease =
      release == 104 || release == 105 || release == 108 || (release >= 110 && release <= 115);
  return isRelease && (bytes[1] == 1 || bytes[1] == 2) && bytes[2] == 1 && bytes[3] == 0;
}

KindFound MarkedKind(std::string_view text) {
  if (text.starts_with("<!DOCTYPE html") || text.starts_with("<!doctype html") || text.starts_with("<html"))
    return {FileKind::kUnread, "an HTML page", "save its table as .csv"};
  if (text.starts_with("<?xml")) return {FileKind::kUnread, "an XML file", {}};
  if (text.starts_with('{')) {
    const std::size_t next = text.find_first_not_of(" \t\r\n", 1);
    const bool isJson = next != std::string_view::npos && (text[next] == '"' || text[next] == '}');
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::size_t last = line.find_last_not_of(" \t\r");
    if (isJson && last != std::string_view::npos && line[last] == '}')
      return {FileKind::kJsonLines, "JSON lines", {}};
    if (isJson) return {FileKind::kUnread, "a JSON document", "write an object in each line, or .csv"};
  }
  if (text.starts_with('[')) {
    const std::size_t next = text.find_first_not_of(" \t\r\n", 1);
    if (next != std::string_view::npos && (text[next] == '{' || text[next] == '['))
      return {FileKind::kUnread, "a JSON document", "write an object in each line, or .csv"};
  }
  return {};
}

}  // namespace

KindFound FindKind(std::string_view bytes) {
  if (bytes.starts_with("PK\x03\x04") || bytes.starts_with("PK\x05\x06")) return ZipKind(bytes);
  if (bytes.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")) return CompoundKind(bytes);
  for (const Signature& signature : kSignatures) {
    if (bytes.size() < signature.offset || !bytes.substr(signature.offset).starts_with(signature.bytes))
      continue;
    // Letters alone could also begin a table; these files end with them as well.
    const bool isWord = signature.bytes == "PAR1" || signature.bytes == "FEA1";
    if (!isWord || bytes.ends_with(signature.bytes))
      return {signature.kind, signature.name, HintOf(signature.hint)};
  }
  if (IsOldStata(bytes)) return {FileKind::kStata, "a Stata file", {}};
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  return first == std::string_view::npos ? KindFound{} : MarkedKind(bytes.substr(first));
}

const std::vector<std::string>& ReadableEndings() {
  static const std::vector<std::string> endings{".csv", ".tsv",   ".tab",    ".txt", ".dat", ".xlsx",
                                                ".ods", ".sav",   ".zsav",   ".dta", ".xpt", ".sas7bdat",
                                                ".npz", ".jsonl", ".ndjson", ".gz",  ".zst"};
  return endings;
}

}  // namespace brenvolt
