// Workbooks of results: sheets of data and of results, and charts that spreadsheet programs draw from the numbers beside them.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "host/graphs/graph.h"
#include "host/tables/formats/workbook_file.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Variables or responses that have a chart; tables have all.
inline constexpr std::size_t kMostCharts = 50;

class ResultWorkbook {
 public:
  // The data, which come first and stay the caller's.
  explicit ResultWorkbook(const Spreadsheet& data) : data_(data) {}
  // A sheet of results; one without variables is left out.
  void Add(Spreadsheet results);
  // A chart of the bars, lines and curves of a graph over numbers; a graph without any is left out.
  void AddChart(const std::string& title, const Graph& graph);
  // Throws Error, naming the file, which is replaced only when all was written.
  void Write(const std::filesystem::path& path) &&;

 private:
  void AddSeries(const std::string& title, GraphSeries series, WorkbookChart& chart);

  const Spreadsheet& data_;
  std::vector<Spreadsheet> results_;
  std::vector<WorkbookChart> charts_;
  std::vector<std::pair<std::string, std::vector<double>>> columns_;  // of the charts
};

// Pearson's coefficients of the variables of these names, over the cases that count.
Spreadsheet PearsonSheet(const Spreadsheet& data, const std::vector<std::string>& variables);

}  // namespace brenvolt
