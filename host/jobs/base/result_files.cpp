#include "host/jobs/base/result_files.h"

#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "host/analysis/analysis_graph_doc.h"
#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/formats/data_file_writer.h"

namespace brenvolt {
namespace {

using Path = std::filesystem::path;

Plot PictureIn(const Path& path) {
  Plot plot;
  plot.file = path;
  return plot;
}

// Whether the result is a table or a graph is known only when it is made.
void CheckName(const Path& path) {
  JobFaults asTable;
  CheckDataTarget("file", path, asTable);
  JobFaults asGraph;
  CheckGraphsTarget("file", path, asGraph);
  if (path.empty() || asTable.empty() || asGraph.empty()) return;
  JobFaults asPicture;
  CheckPlot(PictureIn(path), {}, asPicture);
  if (asPicture.empty()) return;
  if (IsPictureName(path)) throw Error(asPicture.front().message, path.string());
  throw Error(
      "expected a file in an existing folder that ends in .csv, .npz, .xlsx, .sav, .dta or .bvw for a table, "
      "in .json, .png, "
      ".svg "
      "or .pdf for a graph",
      path.string());
}

}  // namespace

void SaveResultTable(const CAnalysisTableDoc& table, const Path& path) {
  if (HasEnding(path, ".json") || IsPictureName(path))
    throw Error("a table goes into .csv, .npz, .xlsx, .sav, .dta or .bvw", path.string());
  if (HasProjectEnding(path)) {
    std::vector<std::unique_ptr<Spreadsheet>> sheets;
    sheets.push_back(std::make_unique<Spreadsheet>(table.Table()));
    AppendToProject(path, std::move(sheets));
  } else {
    RefuseProjectTarget(path);
    WriteDataFile(table.Table(), path);
  }
}

void SaveResultGraph(const CAnalysisGraphDoc& graph, const Path& path) {
  if (IsPictureName(path)) {
    const std::string& title = graph.Content().title;
    return WritePlot(PictureIn(path), title, {SinglePage(title, graph.Content())});
  }
  JobFaults faults;
  CheckGraphsTarget("file", path, faults);
  if (!faults.empty()) throw Error("a graph goes into .json, .png, .svg or .pdf", path.string());
  OutputFile file(path);
  file.Write(JsonText(GraphJson(graph.Content())));
  file.Commit();
}

void OfferResultFiles(CAnalysisDoc& document) {
  document.SetResultSaver({CheckName, SaveResultTable, SaveResultGraph});
}

}  // namespace brenvolt
