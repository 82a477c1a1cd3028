#include "host/tables/formats/json_lines.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <utility>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/base/work_watch.h"
#include "host/tables/office/sheet_grid.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

// Gathers the members of lines as cells below their names.
class LineGatherer {
 public:
  explicit LineGatherer(const std::string& where) : where_(where) {}

  void Take(std::string_view line, std::size_t number) {
    const Json object = Json::parse(line, nullptr, false);
    if (object.is_discarded()) Fail("the line is not JSON", number);
    if (!object.is_object()) Fail("the line is not a JSON object", number);
    ++rows_;
    const std::size_t former = cells_.size();
    for (const auto& [name, value] : object.items()) TakeMember(name, value, number);
    const auto isOfLine = [this](const GridCell& cell) { return cell.row == rows_; };
    // A line without values is a case as well.
    if (std::none_of(cells_.begin() + static_cast<std::ptrdiff_t>(former), cells_.end(), isOfLine))
      cells_.push_back({rows_, 0, 0, "NA", true});
  }

  // None if no line had a member.
  std::vector<GridCell> Cells() { return columns_.empty() ? std::vector<GridCell>() : std::move(cells_); }

 private:
  void TakeMember(const std::string& name, const Json& value, std::size_t number) {
    const auto [found, isNew] = columns_.try_emplace(name, static_cast<std::uint32_t>(columns_.size()));
    if (isNew) cells_.push_back({0, found->second, 0, name, true});
    if (value.is_null()) return;
    if (!value.is_primitive()) Fail(Quoted(name) + " holds an array or an object", number);
    GridCell cell{rows_, found->second, 0, {}, value.is_string()};
    if (value.is_string()) {
      cell.text = value.get<std::string>();
    } else {
      cell.number = value.is_boolean() ? (value.get<bool>() ? 1 : 0) : value.get<double>();
    }
    cells_.push_back(std::move(cell));
  }
  [[noreturn]] void Fail(const std::string& what, std::size_t number) const {
    throw Error(what, where_ + ", line " + std::to_string(number));
  }

  const std::string& where_;
  std::uint32_t rows_ = 0;
  std::unordered_map<std::string, std::uint32_t> columns_;
  std::vector<GridCell> cells_;
};

}  // namespace

DataRead ReadJsonLines(std::string_view text, const std::string& name, const std::string& where,
                       const TextOptions& options) {
  RequireTableOptions(options, "JSON lines", where);
  LineGatherer gatherer(where);
  constexpr std::size_t kStep = 1 << 12;
  WatchedSteps steps(std::ssize(text));
  std::size_t number = 1;
  std::size_t told = 0;
  for (std::size_t offset = 0; offset < text.size(); ++number) {
    if (number % kStep == 0) steps.Done(static_cast<std::int64_t>(offset - std::exchange(told, offset)));
    const std::size_t end = std::min(text.find('\n', offset), text.size());
    const std::string_view line = text.substr(offset, end - offset);
    if (line.find_first_not_of(" \t\r") != std::string_view::npos) gatherer.Take(line, number);
    offset = end + 1;
  }
  SheetGrid grid{name, gatherer.Cells(), 0};
  if (grid.cells.empty()) throw Error("the file has no members to make columns of", where);
  TextOptions known = options;
  known.header = "1";
  if (!known.unitsRow) known.unitsRow = false;
  return TableOf(std::move(grid), where, known);
}

}  // namespace brenvolt
