// A graph as a document: what an analysis shows, and a program reads. Everything is read-only.
//
//   Title, Kind (GraphKindName), XAxisTitle, YAxisTitle
//   NumberOfCurves, CurveName(i), CurveFormula(i)
//   NumberOfNotes, Note(i)
//   NumberOfPanels, Panel(i): a graph document
//   Data: the data as a spreadsheet document (GraphTable)
//
// Indexes count from 1.
#pragma once

#include <memory>
#include <utility>

#include "host/automation/automation_object.h"
#include "host/graphs/graph.h"

namespace brenvolt {

class CAnalysisGraphDoc : public AutomationObject {
 public:
  explicit CAnalysisGraphDoc(Graph graph) : graph_(std::move(graph)) {}

  const Graph& Content() const { return graph_; }

  std::string_view InterfaceName() const override { return "Graph"; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;

 private:
  Graph graph_;
};

}  // namespace brenvolt
