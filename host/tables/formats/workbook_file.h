// Workbooks (.xlsx) of several sheets, with charts that spreadsheet programs draw themselves.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

// True for a name that ends in .xlsx, in capitals or not.
bool IsWorkbookName(const std::filesystem::path& path);

// A line or points over x, from two columns of a sheet, by their numbers from 0, and how many of their rows count.
struct ChartSeries {
  std::string name;
  std::size_t x = 0;
  std::size_t y = 0;
  std::size_t rows = 0;
  bool isLine = true;
};

struct WorkbookChart {
  std::string title;
  std::string xTitle;
  std::string yTitle;
  std::vector<ChartSeries> series;
};

// The data of charts, and the charts, which stand one below the other on a sheet before that of the data.
struct ChartSheet {
  std::string name;
  Spreadsheet data;
  std::vector<WorkbookChart> charts;
};

// The sheets in their order, then those of the charts. Throws Error naming the file, which is replaced only when everything
// was written.
void WriteWorkbookFile(const std::vector<const Spreadsheet*>& sheets, const std::filesystem::path& path,
                       const ChartSheet* charts = nullptr);

}  // namespace brenvolt
