#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "host/base/error.h"
#include "host/base/files/file_replacement.h"
#include "host/base/files/mapped_file.h"
#include "host/base/number_text.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/workbook_file.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

// A workbook's names of sheets: up to 31 characters, some of which are not taken, and no two alike but for their case.
std::string SheetName(const std::string& wanted, std::set<std::string>& taken) {
  constexpr std::size_t kLongest = 31;
  const auto isTaken = [&taken](const std::string& name) {
    std::string lower = name;
    std::ranges::transform(lower, lower.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return !taken.insert(lower).second;
  };
  std::string base = wanted.empty() ? "Sheet" : wanted;
  std::ranges::replace_if(
      base, [](char c) { return std::string_view("[]:*?/\\'").find(c) != std::string_view::npos; }, '_');
  const auto cut = [](std::string text, std::size_t length) {
    if (text.size() <= length) return text;
    // No character of several bytes is cut in two.
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    return text.substr(0, length);
  };
  std::string name = cut(base, kLongest);
  for (int number = 2; isTaken(name); ++number) {
    const std::string tail = " " + std::to_string(number);
    name = cut(base, kLongest - tail.size()) + tail;
  }
  return name;
}

// Writes row by row, so that a long table needs no more memory than a row.
class WorkbookWriter {
 public:
  WorkbookWriter(const std::filesystem::path& file, std::string target) : target_(std::move(target)) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    book_ = workbook_new_opt(file.c_str(), &options);
    if (book_ == nullptr) throw Error("the workbook cannot be written", target_);
    bold_ = workbook_add_format(book_);
    format_set_bold(bold_);
  }
  ~WorkbookWriter() {
    if (book_ != nullptr) lxw_workbook_free(book_);
  }
  WorkbookWriter(const WorkbookWriter&) = delete;
  WorkbookWriter& operator=(const WorkbookWriter&) = delete;

  void Add(const Spreadsheet& sheet) {
    const std::string tooLarge =
        WhyTooLarge("x.xlsx", sheet.CaseCount(), sheet.VariableCount() + (sheet.HasCaseNames() ? 1 : 0));
    if (!tooLarge.empty()) throw Error(tooLarge, target_);
    page_ = workbook_add_worksheet(book_, SheetName(sheet.Name(), names_).c_str());
    const lxw_col_t first = sheet.HasCaseNames() ? 1 : 0;
    if (first > 0) Text(0, 0, sheet.Header(), bold_);
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v)
      Text(0, static_cast<lxw_col_t>(first + v), sheet.VariableAt(v).Name(), bold_);
    worksheet_freeze_panes(page_, 1, first);
    for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
      const auto row = static_cast<lxw_row_t>(i + 1);
      if (first > 0) CaseName(row, sheet, i);
      for (std::size_t v = 0; v < sheet.VariableCount(); ++v)
        Cell(row, static_cast<lxw_col_t>(first + v), sheet.VariableAt(v), i);
    }
  }

  void AddCharts(const ChartSheet& charts) {
    lxw_worksheet* const page = workbook_add_worksheet(book_, SheetName(charts.name, names_).c_str());
    Add(charts.data);
    constexpr lxw_row_t kRowsOfChart = 24;
    constexpr double kScale = 1.6;
    lxw_row_t row = 0;
    for (const WorkbookChart& chart : charts.charts) {
      lxw_chart_options options{};
      options.x_scale = options.y_scale = kScale;
      Check(worksheet_insert_chart_opt(page, row, 0, Chart(chart), &options));
      row += kRowsOfChart;
    }
  }

  void Close() {
    lxw_workbook* const book = std::exchange(book_, nullptr);
    Check(workbook_close(book));
  }

 private:
  void Check(lxw_error result) const {
    if (result != LXW_NO_ERROR)
      throw Error(std::string("the workbook cannot be written: ") + lxw_strerror(result), target_);
  }
  void Text(lxw_row_t row, lxw_col_t column, const std::string& text, lxw_format* format = nullptr) {
    Check(worksheet_write_string(page_, row, column, text.c_str(), format));
  }
  void CaseName(lxw_row_t row, const Spreadsheet& sheet, std::size_t index) {
    if (sheet.AreCasesNumbered()) {
      Check(worksheet_write_number(page_, row, 0, static_cast<double>(index + 1), nullptr));
    } else {
      Text(row, 0, sheet.CaseName(index));
    }
  }
  // Of columns of the sheet that was added last.
  lxw_chart* Chart(const WorkbookChart& wanted) {
    lxw_chart* const chart = workbook_add_chart(book_, LXW_CHART_SCATTER_STRAIGHT);
    chart_title_set_name(chart, wanted.title.c_str());
    chart_axis_set_name(chart->x_axis, wanted.xTitle.c_str());
    chart_axis_set_name(chart->y_axis, wanted.yTitle.c_str());
    chart_legend_set_position(chart, LXW_CHART_LEGEND_BOTTOM);
    for (const ChartSeries& one : wanted.series) {
      lxw_chart_series* const series = chart_add_series(chart, nullptr, nullptr);
      const auto last = static_cast<lxw_row_t>(one.rows);
      const auto x = static_cast<lxw_col_t>(one.x);
      const auto y = static_cast<lxw_col_t>(one.y);
      chart_series_set_categories(series, page_->name, 1, x, last, x);
      chart_series_set_values(series, page_->name, 1, y, last, y);
      chart_series_set_name(series, one.name.c_str());
      if (one.isLine) continue;
      lxw_chart_line none{};
      none.none = LXW_TRUE;
      chart_series_set_line(series, &none);
      chart_series_set_marker_type(series, LXW_CHART_MARKER_CIRCLE);
    }
    return chart;
  }
  // A workbook's cells hold no infinities: these become the texts that reading takes for them.
  void Cell(lxw_row_t row, lxw_col_t column, const Variable& variable, std::size_t index) {
    if (variable.IsMissing(index)) return;
    const double value = variable.Values()[index];
    const auto label = variable.Type() == VariableType::kText ? variable.Label(value) : std::nullopt;
    if (label) {
      Text(row, column, std::string(*label));
    } else if (std::isfinite(value)) {
      Check(worksheet_write_number(page_, row, column, value, nullptr));
    } else {
      Text(row, column, ShortestNumber(value));
    }
  }

  lxw_workbook* book_ = nullptr;
  lxw_worksheet* page_ = nullptr;
  lxw_format* bold_ = nullptr;
  std::set<std::string> names_;
  std::string target_;
};

}  // namespace

void WriteWorkbookFile(const std::vector<const Spreadsheet*>& sheets, const std::filesystem::path& path,
                       const ChartSheet* charts) {
  FileReplacement replacement(path);
  WorkbookWriter writer(replacement.Temporary(), path.string());
  for (const Spreadsheet* sheet : sheets) writer.Add(*sheet);
  if (charts != nullptr) writer.AddCharts(*charts);
  writer.Close();
  // The library keeps pages in temporary files of its own and does not notice when one of them could not be written.
  if (!MappedFile(replacement.Temporary()).Use(AreXmlPartsWhole)) {
    throw Error(
        "the workbook cannot be written: parts of it are cut off; the disk may be full, or that of temporary "
        "files",
        path.string());
  }
  replacement.Commit();
}

}  // namespace brenvolt
