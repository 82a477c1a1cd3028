#include "host/tables/office/ods_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "host/base/number_text.h"
#include "host/tables/office/workbook_bounds.h"
#include "host/tables/office/workbook_dates.h"
#include "host/tables/office/xml_scan.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

constexpr std::string_view kContentPart = "content.xml";
constexpr std::string_view kManifestPart = "META-INF/manifest.xml";

// How often a cell or row repeats.
std::size_t Repeated(const XmlTag& tag, std::string_view name, std::size_t most) {
  const std::string text = tag.Value(name);
  std::size_t count = 1;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return std::clamp<std::size_t>(count, 1, most);
}

// "2024-02-29 10:30:00" of "2024-02-29T10:30:00.5".
std::string DateOf(std::string_view value) {
  std::string text(value.substr(0, value.find('.')));
  std::ranges::replace(text, 'T', ' ');
  constexpr std::string_view kMidnight = " 00:00:00";
  if (text.ends_with(kMidnight)) text.resize(text.size() - kMidnight.size());
  return text;
}

class OdsWalk : public XmlHandler {
 public:
  OdsWalk(std::size_t bytes, const std::string& where) : where_(where), bound_(bytes, where) {}

  void Start(std::string_view name, const XmlTag& tag) override {
    // Remarks and shapes hold paragraphs, shapes also tables.
    if (aside_ > 0 || name == "annotation" || name == "shapes" || name == "tracked-changes") {
      ++aside_;
    } else if (name == "table") {
      grids.push_back({tag.Value("name"), {}, 0});
      row_ = 0;
    } else if (name == "table-row") {
      rowRepeats_ = Repeated(tag, "number-rows-repeated", kMostSheetRows);
      column_ = 0;
      cells_.clear();
    } else if (name == "table-cell" || name == "covered-table-cell") {
      BeginCell(tag);
    } else if (name == "p") {
      if (hasParagraph_) text_ += ' ';
      hasParagraph_ = true;
      ++inParagraph_;
    } else if (name == "s") {
      text_.append(Repeated(tag, "c", kMostBlanks), ' ');
    } else if (name == "tab") {
      text_ += ' ';
    }
  }
  void Text(std::string_view text) override {
    if (aside_ == 0 && inParagraph_ > 0) text_ += text;
  }
  void End(std::string_view name) override {
    if (aside_ > 0) {
      --aside_;
    } else if (name == "p") {
      --inParagraph_;
    } else if (name == "table-cell" || name == "covered-table-cell") {
      EndCell();
    } else if (name == "table-row") {
      EndRow();
    }
  }

  std::vector<SheetGrid> grids;

 private:
  static constexpr std::size_t kMostBlanks = 1000;

  void BeginCell(const XmlTag& tag) {
    cellRepeats_ = Repeated(tag, "number-columns-repeated", kMostSheetColumns);
    type_ = tag.Value("value-type");
    value_ = tag.Value(type_ == "boolean" || type_ == "date" || type_ == "time" ? type_ + "-value" : "value");
    text_.clear();
    hasParagraph_ = false;
    const bool isMerged = Repeated(tag, "number-columns-spanned", kMostSheetColumns) > 1 ||
                          Repeated(tag, "number-rows-spanned", kMostSheetRows) > 1;
    if (isMerged && !grids.empty()) ++grids.back().mergedRanges;
  }

  void EndCell() {
    GridCell cell;
    if (type_ == "float" || type_ == "percentage" || type_ == "currency") {
      const auto number = ParseNumber(value_);
      if (!number) throw Error("the file is damaged: a cell of a number does not hold one", where_);
      cell.number = *number;
    } else if (type_ == "boolean") {
      cell.number = value_ == "true" ? 1 : 0;
    } else if (const auto hours = type_ == "time" ? HoursOfDuration(value_) : std::nullopt) {
      cell.number = *hours;
      if (!grids.empty()) grids.back().hasTimes = true;
    } else {
      cell.isText = true;
      cell.text = type_ == "date" ? DateOf(value_) : text_;
    }
    const std::size_t first = column_;
    column_ = std::min(column_ + cellRepeats_, kMostSheetColumns);
    if (cell.isText && cell.text.empty()) return;
    for (std::size_t column = first; column < column_; ++column) {
      cell.column = static_cast<std::uint32_t>(column);
      Count(cell);
      cells_.push_back(cell);
    }
  }

  void EndRow() {
    const std::size_t end = std::min(row_ + rowRepeats_, kMostSheetRows);
    for (std::size_t row = row_; row < end && !cells_.empty(); ++row) {
      for (GridCell cell : cells_) {
        cell.row = static_cast<std::uint32_t>(row);
        if (row > row_) Count(cell);
        if (!grids.empty()) grids.back().cells.push_back(std::move(cell));
      }
    }
    row_ = end;
    cells_.clear();
  }
  void Count(const GridCell& cell) {
    bound_.AddCell();
    bound_.AddText(cell.text.size());
  }

  const std::string& where_;
  WorkbookBound bound_;
  std::size_t row_ = 0;
  std::size_t column_ = 0;
  std::size_t rowRepeats_ = 1;
  std::size_t cellRepeats_ = 1;
  std::vector<GridCell> cells_;  // of the row
  std::string type_;
  std::string value_;
  std::string text_;
  bool hasParagraph_ = false;  // in the cell
  int inParagraph_ = 0;
  std::size_t aside_ = 0;
};

}  // namespace

std::vector<SheetGrid> ReadOds(std::string_view bytes, const std::string& where) {
  const auto isRead = [](std::string_view name) { return name == kContentPart || name == kManifestPart; };
  const ZipPart* content = nullptr;
  const std::vector<ZipPart> parts = UnpackedParts(bytes, where, isRead);
  for (const ZipPart& part : parts) {
    // The parts themselves do not tell that they are encrypted.
    if (part.name == kManifestPart && part.content.find("encryption-data") != std::string::npos)
      throw Error("the workbook is encrypted; save it without a password", where);
    if (part.name == kContentPart) content = &part;
  }
  if (content == nullptr) throw Error("the workbook is damaged: it has no content", where);
  return ReadOdsContent(content->content, where);
}

std::vector<SheetGrid> ReadOdsContent(std::string_view content, const std::string& where) {
  OdsWalk walk(content.size(), where);
  ScanXml(content, walk, where);
  return std::move(walk.grids);
}

}  // namespace brenvolt
