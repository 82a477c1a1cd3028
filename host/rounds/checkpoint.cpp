#include "host/rounds/checkpoint.h"

#include <string_view>
#include <system_error>

#include "host/base/bytes.h"
#include "host/base/error.h"
#include "host/base/files/mapped_file.h"
#include "host/base/files/output_file.h"

namespace brenvolt {
namespace {

constexpr std::string_view kMagic = "brenvolt checkpoint 1\n";

Checkpoint Read(std::string_view text) {
  ByteReader bytes(text);
  Checkpoint checkpoint;
  checkpoint.rounds.resize(bytes.Get<std::uint64_t>());
  for (auto& [label, told] : checkpoint.rounds) {
    label = bytes.Get<std::uint64_t>();
    told = bytes.GetText();
  }
  checkpoint.label = bytes.Get<std::uint64_t>();
  checkpoint.pieces.resize(bytes.Get<std::uint64_t>());
  for (auto& [range, piece] : checkpoint.pieces) {
    range.first = bytes.Get<std::uint64_t>();
    range.end = bytes.Get<std::uint64_t>();
    piece = bytes.GetText();
  }
  return checkpoint;
}

}  // namespace

void Checkpoint::Save(const std::filesystem::path& path) const {
  ByteWriter bytes;
  bytes.Put<std::uint64_t>(rounds.size());
  for (const auto& [finished, told] : rounds) {
    bytes.Put(finished);
    bytes.Put(told);
  }
  bytes.Put(label);
  bytes.Put<std::uint64_t>(pieces.size());
  for (const auto& [range, piece] : pieces) {
    bytes.Put(range.first);
    bytes.Put(range.end);
    bytes.Put(piece);
  }
  const std::string text = std::move(bytes).Take();
  ByteWriter hash;
  hash.Put(HashOf(text));
  OutputFile file(path);
  file.Write(kMagic);
  file.Write(std::move(hash).Take());
  file.Write(text);
  file.Commit();
}

Checkpoint Checkpoint::Load(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) return {};
  return MappedFile(path).Use([&path](std::string_view text) {
    if (!text.starts_with(kMagic))
      throw Error("the file is no checkpoint of this version; name another one, or remove it to begin anew",
                  path.string());
    text.remove_prefix(kMagic.size());
    constexpr std::size_t kHashSize = sizeof(std::uint64_t);
    if (text.size() < kHashSize || ByteReader(text).Get<std::uint64_t>() != HashOf(text.substr(kHashSize)))
      throw Error("the checkpoint is damaged; remove it to begin anew", path.string());
    return Read(text.substr(kHashSize));
  });
}

}  // namespace brenvolt
