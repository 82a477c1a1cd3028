#include "host/tables/office/zip_content.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <new>

#include "host/base/error.h"
#include "host/base/work_watch.h"

namespace brenvolt {
namespace {

constexpr std::size_t kMostParts = 10'000;

// A reader of archives over bytes in memory.
class Reader {
 public:
  explicit Reader(const std::string& where) : archive_(archive_read_new()), where_(where) {
    if (archive_ == nullptr) throw std::bad_alloc();
  }
  ~Reader() { archive_read_free(archive_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  archive* Get() { return archive_; }
  bool Open(std::string_view bytes) {
    return archive_read_open_memory(archive_, bytes.data(), bytes.size()) == ARCHIVE_OK;
  }
  // The next part; null at the end. Throws if the archive is damaged.
  archive_entry* Next() {
    archive_entry* entry = nullptr;
    const int result = archive_read_next_header(archive_, &entry);
    if (result == ARCHIVE_EOF) return nullptr;
    if (result < ARCHIVE_WARN) Fail();
    return entry;
  }
  // Takes the content of the part piece by piece.
  template <class Take>
  void Read(const Take& take) {
    const void* block = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    WatchedSteps steps;
    for (;;) {
      const int result = archive_read_data_block(archive_, &block, &size, &offset);
      if (result == ARCHIVE_EOF) return;
      if (result < ARCHIVE_WARN) Fail();
      take(std::string_view(static_cast<const char*>(block), size));
      steps.Done();
    }
  }
  [[noreturn]] void Fail() {
    const char* why = archive_error_string(archive_);
    throw Error(
        std::string("the file is damaged or cut off: ") + (why != nullptr ? why : "it cannot be unpacked"),
        where_);
  }

 private:
  archive* archive_;
  const std::string& where_;
};

// Adds up what is unpacked.
class Bound {
 public:
  Bound(std::size_t packed, const std::string& where) : most_(MostUnpackedBytes(packed)), where_(where) {}
  void Add(std::size_t bytes) {
    sum_ += bytes;
    if (sum_ > most_) {
      throw Error("the file unpacks to more than " + std::to_string(most_ >> 20) +
                      " MB, which no table of data of its size does",
                  where_);
    }
  }

 private:
  std::size_t most_;
  std::size_t sum_ = 0;
  const std::string& where_;
};

// Whether the element that a document begins with, behind the declaration, is closed at its end.
bool EndsWithItsElement(std::string_view beginning, std::string_view end) {
  const std::size_t declared = beginning.find("?>");
  const std::size_t open = beginning.find('<', declared == std::string_view::npos ? 0 : declared);
  if (open == std::string_view::npos) return false;
  const std::string_view element =
      beginning.substr(open + 1, beginning.find_first_of(" \t\r\n/>", open) - open - 1);
  end = end.substr(0, end.find_last_not_of(" \t\r\n") + 1);
  return end.ends_with("</" + std::string(element) + ">");
}

}  // namespace

std::size_t MostUnpackedBytes(std::size_t packedBytes) {
  constexpr std::size_t kAlways = std::size_t{1} << 28;
  constexpr std::size_t kTimes = 200;
  return std::max(kAlways, packedBytes * kTimes);
}

ZipContent ListZip(std::string_view bytes) {
  const std::string nowhere;
  Reader reader(nowhere);
  archive_read_support_format_zip_seekable(reader.Get());
  ZipContent content;
  if (!reader.Open(bytes)) return content;
  try {
    while (archive_entry* entry = reader.Next()) {
      const char* name = archive_entry_pathname(entry);
      if (name == nullptr || content.names.size() >= kMostParts) break;
      content.names.emplace_back(name);
      if (content.names.back() != "mimetype") continue;
      reader.Read([&](std::string_view piece) {
        constexpr std::size_t kLongest = 256;
        if (content.mimetype.size() < kLongest) content.mimetype += piece.substr(0, kLongest);
      });
    }
  } catch (const Error&) {
    // What could be listed tells the kind; reading will say what is wrong.
  }
  return content;
}

std::string Unpacked(std::string_view bytes, const std::string& where) {
  Reader reader(where);
  archive_read_support_filter_all(reader.Get());
  archive_read_support_format_raw(reader.Get());
  std::string content;
  if (!reader.Open(bytes)) reader.Fail();
  if (reader.Next() == nullptr) return content;
  Bound bound(bytes.size(), where);
  reader.Read([&](std::string_view piece) {
    bound.Add(piece.size());
    content += piece;
  });
  return content;
}

bool AreXmlPartsWhole(std::string_view bytes) {
  constexpr std::size_t kBeginning = 256;
  constexpr std::size_t kEnd = 64;
  const std::string nowhere;
  Reader reader(nowhere);
  archive_read_support_format_zip_seekable(reader.Get());
  if (!reader.Open(bytes)) return false;
  try {
    while (reader.Next() != nullptr) {
      std::string beginning;
      std::string end;
      reader.Read([&](std::string_view piece) {
        if (beginning.size() < kBeginning) beginning += piece.substr(0, kBeginning);
        end = (end + std::string(piece.substr(piece.size() - std::min(piece.size(), kEnd))));
        end.erase(0, end.size() - std::min(end.size(), kEnd));
      });
      if (!EndsWithItsElement(beginning, end)) return false;
    }
  } catch (const Error&) {
    return false;
  }
  return true;
}

std::vector<ZipPart> UnpackedParts(std::string_view bytes, const std::string& where, IsPartRead isRead) {
  Reader reader(where);
  archive_read_support_format_zip_seekable(reader.Get());
  if (!reader.Open(bytes)) reader.Fail();
  Bound bound(bytes.size(), where);
  std::vector<ZipPart> parts;
  std::size_t count = 0;
  while (archive_entry* entry = reader.Next()) {
    if (++count > kMostParts)
      throw Error("the file has more than " + std::to_string(kMostParts) + " parts", where);
    if (archive_entry_is_encrypted(entry) != 0)
      throw Error("the file is encrypted; save it without a password", where);
    const char* name = archive_entry_pathname(entry);
    ZipPart part{name != nullptr ? name : "", {}};
    if (isRead != nullptr && !isRead(part.name)) continue;
    reader.Read([&](std::string_view piece) {
      bound.Add(piece.size());
      part.content += piece;
    });
    parts.push_back(std::move(part));
  }
  return parts;
}

}  // namespace brenvolt
