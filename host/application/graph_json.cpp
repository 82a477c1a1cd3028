#include "host/application/graph_json.h"

#include <cstddef>
#include <vector>

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

Json BarsJson(const GraphBars& bars) {
  return {{"name", bars.name}, {"bounds", bars.bounds}, {"heights", bars.heights}};
}

Json SeriesJson(const GraphSeries& series) {
  static constexpr const char* kStyles[] = {"points", "line", "steps"};
  return {{"name", series.name},
          {"style", kStyles[static_cast<std::size_t>(series.style)]},
          {"x", series.x},
          {"y", series.y}};
}

Json CurveJson(const GraphCurve& curve) {
  const GraphSeries sampled = SampleCurve(curve);
  return {{"name", curve.name}, {"formula", curve.formula},           {"from", curve.from},
          {"to", curve.to},     {"wholeNumbers", curve.wholeNumbers}, {"x", sampled.x},
          {"y", sampled.y}};
}

Json BandJson(const GraphBand& band) {
  return {{"name", band.name}, {"x", band.x}, {"lower", band.lower}, {"upper", band.upper}};
}

// An end that is infinite is null.
Json RegionJson(const GraphRegion& region) {
  return {{"name", region.name}, {"from", region.from}, {"to", region.to}};
}

Json BoxJson(const GraphBox& box) {
  return {{"name", box.name},
          {"lowerWhisker", box.lowerWhisker},
          {"lowerQuartile", box.lowerQuartile},
          {"median", box.median},
          {"upperQuartile", box.upperQuartile},
          {"upperWhisker", box.upperWhisker},
          {"mean", box.mean},
          {"outliers", box.outliers}};
}

// What has no number is null.
Json CellsJson(const GraphCells& cells) {
  return {{"name", cells.name}, {"columns", cells.columns}, {"rows", cells.rows}, {"values", cells.values}};
}

template <class Part>
void AddParts(const char* name, const std::vector<Part>& parts, Json (*json)(const Part&), Json& graph) {
  if (parts.empty()) return;
  Json list = Json::array();
  for (const Part& part : parts) list.push_back(json(part));
  graph[name] = list;
}

}  // namespace

Json GraphJson(const Graph& graph) {
  Json json = {{"kind", GraphKindName(graph.kind)},
               {"title", graph.title},
               {"xTitle", graph.xTitle},
               {"yTitle", graph.yTitle}};
  AddParts("bars", graph.bars, BarsJson, json);
  AddParts("series", graph.series, SeriesJson, json);
  AddParts("curves", graph.curves, CurveJson, json);
  AddParts("bands", graph.bands, BandJson, json);
  AddParts("regions", graph.regions, RegionJson, json);
  AddParts("boxes", graph.boxes, BoxJson, json);
  AddParts("cells", graph.cells, CellsJson, json);
  AddParts("panels", graph.panels, GraphJson, json);
  if (graph.panelColumns > 0) json["panelColumns"] = graph.panelColumns;
  if (!graph.notes.empty()) json["notes"] = graph.notes;
  return json;
}

}  // namespace brenvolt
