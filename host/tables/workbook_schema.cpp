#include "host/tables/workbook_schema.h"

#include "host/tables/sqlite_connection.h"

namespace brenvolt {
namespace {

constexpr std::size_t kHeaderSize = 100;
constexpr std::string_view kMagic{"SQLite format 3\0", 16};

std::uint32_t BigEndian(std::span<const unsigned char> bytes) {
  std::uint32_t number = 0;
  for (const unsigned char byte : bytes) number = number << 8 | byte;
  return number;
}

constexpr std::uint64_t Mix(std::uint64_t state, std::uint64_t word) {
  // Multiplication carries differences upwards, the shift brings them down again; both steps are reversible,
  // so that a change of one word always changes the result.
  state = (state ^ word) * 0x9E3779B97F4A7C15U;
  return state ^ state >> 32;
}

}  // namespace

std::int64_t ColumnChecksum(std::span<const double> values) {
  constexpr std::size_t kLanes = 4;  // independent, so that the processor works on them at once
  std::array<std::uint64_t, kLanes> lanes = {1, 2, 3, 4};
  std::size_t i = 0;
  for (; i + kLanes <= values.size(); i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      lanes[lane] = Mix(lanes[lane], std::bit_cast<std::uint64_t>(values[i + lane]));
    }
  }
  for (; i < values.size(); ++i) lanes[0] = Mix(lanes[0], std::bit_cast<std::uint64_t>(values[i]));
  std::uint64_t sum = values.size();
  for (const std::uint64_t lane : lanes) sum = Mix(sum, lane);
  return std::bit_cast<std::int64_t>(sum);
}

WorkbookHeader ReadWorkbookHeader(Connection& connection) {
  std::array<unsigned char, kHeaderSize> bytes{};
  WorkbookHeader header;
  if (connection.ReadStart(bytes) < bytes.size()) return header;
  const auto field = [&](std::size_t offset, std::size_t width) {
    return BigEndian(std::span<const unsigned char>(bytes).subspan(offset, width));
  };
  header.isDatabase = std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) == 0;
  const std::uint32_t pageSize = field(16, 2) == 1 ? 65536 : field(16, 2);
  header.writeAheadLog = field(18, 1) > 1 || field(19, 1) > 1;
  header.changeCounter = field(24, 4);
  header.size = std::uint64_t{pageSize} * field(28, 4);
  header.textEncoding = field(56, 4);
  header.formatVersion = field(60, 4);
  header.applicationId = field(68, 4);
  return header;
}

}  // namespace brenvolt
