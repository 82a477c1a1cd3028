#include "host/tables/numpy_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <bit>
#include <exception>
#include <limits>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr std::size_t kValuesPerPiece = std::size_t{1} << 16;

// The header of a .npy file, version 1.0 (NumPy Enhancement Proposal 1): a whole number of 64 bytes, so that
// the values are aligned in a file of their own.
std::string ArrayHeader(std::uint64_t length) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::size_t kPreamble = 10;
  constexpr std::size_t kAlignment = 64;
  std::string text = "{'descr': '<f8', 'fortran_order': False, 'shape': (" + std::to_string(length) + ",), }";
  text.resize((kPreamble + text.size() + kAlignment) / kAlignment * kAlignment - kPreamble - 1, ' ');
  text += '\n';
  std::string header = "\x93NUMPY";
  header += {1, 0, static_cast<char>(text.size() % 256), static_cast<char>(text.size() / 256)};
  return header + text;
}

// The values of a column, some at a time, with NaN for those that are missing.
template <class Take>
void TakePieces(const Variable& variable, const Take& take) {
  std::vector<double> piece;
  for (std::size_t first = 0; first < variable.Size(); first += kValuesPerPiece) {
    const std::size_t end = std::min(first + kValuesPerPiece, variable.Size());
    piece.clear();
    for (std::size_t i = first; i < end; ++i) {
      piece.push_back(variable.IsMissing(i) ? std::numeric_limits<double>::quiet_NaN()
                                            : variable.Values()[i]);
    }
    take(std::span<const double>(piece));
  }
}

// Where there is room for what an archive will hold.
std::filesystem::path FolderFor(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  const bool isFile = !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
  if (!isFile) return std::filesystem::temp_directory_path();
  return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

}  // namespace

// What libarchive works on; a fault of the file goes through its C code as a value.
struct NumpyArchive::Stream {
  explicit Stream(OutputFile& target) : file(target) {}

  static la_ssize_t Write(archive*, void* self, const void* bytes, std::size_t size) {
    auto& stream = *static_cast<Stream*>(self);
    if (stream.fault) return -1;
    try {
      stream.file.Write({static_cast<const char*>(bytes), size});
    } catch (...) {
      stream.fault = std::current_exception();
      return -1;
    }
    return static_cast<la_ssize_t>(size);
  }

  OutputFile& file;
  std::exception_ptr fault;
  std::set<std::string> names;  // of the entries
  std::unique_ptr<archive, decltype(&archive_write_free)> zip{archive_write_new(), archive_write_free};
};

NumpyArchive::NumpyArchive(const std::filesystem::path& path)
    : path_(path), file_(path), stream_(std::make_unique<Stream>(file_)) {
  archive* zip = stream_->zip.get();
  Check(archive_write_set_format_zip(zip));
  Check(archive_write_zip_set_compression_store(zip));
  Check(archive_write_set_options(zip, "hdrcharset=UTF-8"));
  Check(archive_write_set_bytes_in_last_block(zip, 1));
  Check(archive_write_open(zip, stream_.get(), nullptr, Stream::Write, nullptr));
}

// What is left of the archive is of no use to anyone: nothing more is written.
NumpyArchive::~NumpyArchive() {
  if (!stream_->fault) stream_->fault = std::make_exception_ptr(Error("was left unfinished"));
}

void NumpyArchive::Check(std::int64_t result) const {
  if (result >= ARCHIVE_OK) return;
  if (stream_->fault) std::rethrow_exception(stream_->fault);
  const char* why = archive_error_string(stream_->zip.get());
  throw Error("the file cannot be written: " + std::string(why == nullptr ? "unknown fault" : why),
              path_.string());
}

namespace {

// A name that stays within whatever folder an archive is unpacked to, in whatever system.
std::string WithoutFolders(std::string name) {
  const auto isUnsafe = [](char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f' ||
           std::string_view("/\\:").find(c) != std::string_view::npos;
  };
  std::ranges::replace_if(name, isUnsafe, '_');
  return name.starts_with("..") ? "_" + name : name;
}

}  // namespace

void NumpyArchive::BeginColumn(const std::string& column, std::uint64_t length) {
  const std::string safe = WithoutFolders(column);
  std::string name = safe;
  for (int number = 2; !stream_->names.insert(name).second; ++number)
    name = safe + "_" + std::to_string(number);
  const std::string header = ArrayHeader(length);
  const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry{archive_entry_new(),
                                                                            archive_entry_free};
  archive_entry_set_pathname_utf8(entry.get(), (name + ".npy").c_str());
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), 0644);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(header.size() + length * sizeof(double)));
  Check(archive_write_header(stream_->zip.get(), entry.get()));
  Check(archive_write_data(stream_->zip.get(), header.data(), header.size()));
}

void NumpyArchive::Append(std::span<const double> values) {
  Check(archive_write_data(stream_->zip.get(), values.data(), values.size_bytes()));
}

void NumpyArchive::Commit() {
  Check(archive_write_close(stream_->zip.get()));
  file_.Commit();
}

bool IsNumpyArchiveName(const std::filesystem::path& path) {
  const std::filesystem::path ending = path.extension();
  return ending == ".npz" || ending == ".NPZ";
}

void WriteNumpyArchive(const Spreadsheet& sheet, const std::filesystem::path& path) {
  NumpyArchive file(path);
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    const Variable& variable = sheet.VariableAt(c);
    file.BeginColumn(variable.Name(), variable.Size());
    TakePieces(variable, [&file](std::span<const double> piece) { file.Append(piece); });
  }
  file.Commit();
}

NumpyPieces::NumpyPieces(const std::filesystem::path& path) : path_(path), waiting_(FolderFor(path)) {}

void NumpyPieces::Append(const Spreadsheet& piece) {
  if (names_.empty()) {
    for (std::size_t c = 0; c < piece.VariableCount(); ++c) names_.push_back(piece.VariableAt(c).Name());
  }
  for (std::size_t c = 0; c < names_.size(); ++c)
    TakePieces(piece.VariableAt(c), [this](std::span<const double> values) { waiting_.Append(values); });
  lengths_.push_back(piece.CaseCount());
}

void NumpyPieces::Commit() {
  NumpyArchive file(path_);
  const std::uint64_t total = std::accumulate(lengths_.begin(), lengths_.end(), std::uint64_t{0});
  std::vector<double> values;
  for (std::size_t c = 0; c < names_.size(); ++c) {
    file.BeginColumn(names_[c], total);
    std::uint64_t piece = 0;  // where it begins
    for (const std::uint64_t length : lengths_) {
      values.resize(length);
      waiting_.Read(piece + c * length, values);
      file.Append(values);
      piece += names_.size() * length;
    }
  }
  file.Commit();
}

}  // namespace brenvolt
