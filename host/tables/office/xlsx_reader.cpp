#include "host/tables/office/xlsx_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/tables/office/workbook_bounds.h"
#include "host/tables/office/workbook_dates.h"
#include "host/tables/office/xml_scan.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

std::optional<std::size_t> NumberIn(std::string_view text) {
  std::size_t number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool IsTrue(std::string_view text) {
  return text == "1" || text == "true";
}

// Which parts the workbook refers to.
struct Relations : XmlHandler {
  std::map<std::string, std::string, std::less<>> targets;  // by identifier
  std::string strings;
  std::string styles;

  void Start(std::string_view name, const XmlTag& tag) override {
    if (name != "Relationship") return;
    const std::string part = PartNamed(tag.Value("Target"));
    const std::string type = tag.Value("Type");
    targets[tag.Value("Id")] = part;
    if (type.ends_with("/sharedStrings")) strings = part;
    if (type.ends_with("/styles")) styles = part;
  }

 private:
  // Names begin at the root, or where the workbook lies.
  static std::string PartNamed(std::string_view target) {
    if (target.starts_with('/')) return std::string(target.substr(1));
    std::string folder = "xl/";
    if (target.starts_with("../")) {
      target.remove_prefix(3);
      folder.clear();
    }
    if (target.starts_with("./")) target.remove_prefix(2);
    return folder + std::string(target);
  }
};

struct Sheets : XmlHandler {
  std::vector<std::pair<std::string, std::string>> names;  // with the identifiers of their parts
  bool beginsIn1904 = false;

  void Start(std::string_view name, const XmlTag& tag) override {
    if (name == "sheet") names.emplace_back(tag.Value("name"), tag.PrefixedValue("id"));
    if (name == "workbookPr") beginsIn1904 = IsTrue(tag.Value("date1904"));
  }
};

// What the formats of cells show numbers as.
struct DateStyles : XmlHandler {
  std::vector<Shown> shown;  // by the number of the cell format

  void Start(std::string_view name, const XmlTag& tag) override {
    if (name == "cellXfs") inCellFormats_ = true;
    const std::size_t number = NumberIn(tag.Value("numFmtId")).value_or(0);
    if (name == "numFmt") codes_[number] = tag.Value("formatCode");
    if (name != "xf" || !inCellFormats_) return;
    const auto code = codes_.find(number);
    shown.push_back(code != codes_.end() ? ShownBy(code->second) : ShownByBuiltIn(number));
  }
  void End(std::string_view name) override {
    if (name == "cellXfs") inCellFormats_ = false;
  }

 private:
  std::map<std::size_t, std::string> codes_;
  bool inCellFormats_ = false;
};

// The texts that cells share. Parts of other looks are one text; how it is pronounced is none.
struct SharedTexts : XmlHandler {
  std::vector<std::string> texts;

  void Start(std::string_view name, const XmlTag&) override {
    if (name == "si") texts.emplace_back();
    if (name == "rPh") ++pronounced_;
    inText_ = name == "t" && pronounced_ == 0;
  }
  void Text(std::string_view text) override {
    if (inText_ && !texts.empty()) texts.back() += text;
  }
  void End(std::string_view name) override {
    if (name == "rPh") --pronounced_;
    inText_ = false;
  }

 private:
  int pronounced_ = 0;
  bool inText_ = false;
};

class SheetWalk : public XmlHandler {
 public:
  SheetWalk(const SharedTexts& shared, const DateStyles& styles, std::int64_t origin, WorkbookBound& bound,
            const std::string& where)
      : shared_(shared), styles_(styles), origin_(origin), bound_(bound), where_(where) {}

  void Start(std::string_view name, const XmlTag& tag) override {
    takesText_ = name == "v" || (name == "t" && pronounced_ == 0);
    if (name == "rPh") ++pronounced_;
    if (name == "row") {
      row_ = NumberIn(tag.Value("r")).value_or(row_ + 1);
      column_ = 0;
    } else if (name == "c") {
      BeginCell(tag);
    } else if (name == "mergeCell") {
      ++grid.mergedRanges;
    }
  }
  void Text(std::string_view text) override {
    if (takesText_) text_ += text;
  }
  void End(std::string_view name) override {
    takesText_ = false;
    if (name == "rPh") --pronounced_;
    if (name == "c") EndCell();
  }

  SheetGrid grid;

 private:
  // Cells whose place is not said follow each other.
  void BeginCell(const XmlTag& tag) {
    const std::string place = tag.Value("r");
    if (place.empty()) {
      ++column_;
    } else {
      SetPlace(place);
    }
    if (row_ == 0 || row_ > kMostSheetRows || column_ == 0 || column_ > kMostSheetColumns)
      throw Error("the file is damaged: a cell lies outside of the sheet", where_);
    type_ = tag.Value("t");
    style_ = NumberIn(tag.Value("s")).value_or(0);
    text_.clear();
  }
  void SetPlace(std::string_view place) {
    column_ = 0;
    std::size_t i = 0;
    for (; i < place.size() && place[i] >= 'A' && place[i] <= 'Z' && column_ <= kMostSheetColumns; ++i)
      column_ = column_ * 26 + static_cast<std::size_t>(place[i] - 'A' + 1);
    row_ = NumberIn(place.substr(i)).value_or(0);
  }

  void EndCell() {
    if (text_.empty()) return;
    if (type_ == "s") {
      const std::size_t index = NumberIn(text_).value_or(shared_.texts.size());
      if (index >= shared_.texts.size())
        throw Error("the file is damaged: a cell refers to a text that is not there", where_);
      if (!shared_.texts[index].empty()) PutText(shared_.texts[index]);
    } else if (type_ == "inlineStr" || type_ == "str" || type_ == "e" || type_ == "d") {
      PutText(std::move(text_));
    } else {
      PutNumber();
    }
    text_.clear();
  }
  void PutNumber() {
    const auto number = ParseNumber(text_);
    if (!number) throw Error("the file is damaged: a cell of a number does not hold one", where_);
    const Shown shown = style_ < styles_.shown.size() ? styles_.shown[style_] : Shown::kNumber;
    if (shown == Shown::kDate && IsSerial(*number)) return PutText(DateText(*number, origin_));
    if (shown == Shown::kTime) grid.hasTimes = true;
    Put({.number = shown == Shown::kTime ? *number * kHoursOfDay : *number, .text = {}});
  }
  void PutText(std::string text) {
    bound_.AddText(text.size());
    Put({.text = std::move(text), .isText = true});
  }
  void Put(GridCell cell) {
    bound_.AddCell();
    cell.row = static_cast<std::uint32_t>(row_ - 1);
    cell.column = static_cast<std::uint32_t>(column_ - 1);
    grid.cells.push_back(std::move(cell));
  }

  const SharedTexts& shared_;
  const DateStyles& styles_;
  std::int64_t origin_;
  WorkbookBound& bound_;
  const std::string& where_;
  std::size_t row_ = 0;  // from 1, as is the column
  std::size_t column_ = 0;
  std::string type_;
  std::size_t style_ = 0;
  std::string text_;
  bool takesText_ = false;
  int pronounced_ = 0;
};

template <class Handler>
Handler Taken(XlsxParts& parts, std::string_view name, const std::string& where) {
  Handler handler;
  const auto part = parts.find(name);
  if (part != parts.end()) ScanXml(part->second, handler, where);
  return handler;
}

}  // namespace

std::vector<SheetGrid> ReadXlsx(std::string_view bytes, const std::string& where) {
  XlsxParts parts;
  const auto isRead = [](std::string_view name) { return name.ends_with(".xml") || name.ends_with(".rels"); };
  for (ZipPart& part : UnpackedParts(bytes, where, isRead)) parts[part.name] = std::move(part.content);
  return ReadXlsxParts(std::move(parts), where);
}

std::vector<SheetGrid> ReadXlsxParts(XlsxParts parts, const std::string& where) {
  const auto relations = Taken<Relations>(parts, "xl/_rels/workbook.xml.rels", where);
  const auto sheets = Taken<Sheets>(parts, "xl/workbook.xml", where);
  const auto shared = Taken<SharedTexts>(parts, relations.strings, where);
  const auto styles = Taken<DateStyles>(parts, relations.styles, where);
  const std::int64_t origin = sheets.beginsIn1904 ? DaysOf(1904, 1, 1) : DaysOf(1899, 12, 30);
  std::size_t size = 0;
  for (const auto& [name, content] : parts) size += content.size();
  WorkbookBound bound(size, where);
  std::vector<SheetGrid> grids;
  for (const auto& [name, identifier] : sheets.names) {
    const auto target = relations.targets.find(identifier);
    const auto part = target == relations.targets.end() ? parts.end() : parts.find(target->second);
    // Sheets of charts alone have no cells.
    if (part == parts.end() || !part->first.starts_with("xl/worksheets/")) continue;
    SheetWalk walk(shared, styles, origin, bound, where);
    ScanXml(part->second, walk, where);
    std::string().swap(part->second);
    walk.grid.name = name;
    grids.push_back(std::move(walk.grid));
  }
  return grids;
}

}  // namespace brenvolt
