#include "host/analysis/analysis_graph_doc.h"

#include <array>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/read_only_members.h"

namespace brenvolt {
namespace {

using Indexes = std::span<const Variant>;

Variant Count(std::size_t count) {
  return static_cast<std::int64_t>(count);
}

const GraphCurve& CurveOf(const Graph& graph, const Variant& number) {
  return graph.curves[IndexFrom(number, graph.curves.size(), "curve")];
}

constexpr std::array<ReadOnlyMember<Graph>, 12> kMembers{{
    {"Title", 0, [](const Graph& g, Indexes) { return Variant(g.title); }},
    {"Kind", 0, [](const Graph& g, Indexes) { return Variant(std::string(GraphKindName(g.kind))); }},
    {"XAxisTitle", 0, [](const Graph& g, Indexes) { return Variant(g.xTitle); }},
    {"YAxisTitle", 0, [](const Graph& g, Indexes) { return Variant(g.yTitle); }},
    {"NumberOfCurves", 0, [](const Graph& g, Indexes) { return Count(g.curves.size()); }},
    {"CurveName", 1, [](const Graph& g, Indexes i) { return Variant(CurveOf(g, i[0]).name); }},
    {"CurveFormula", 1, [](const Graph& g, Indexes i) { return Variant(CurveOf(g, i[0]).formula); }},
    {"NumberOfNotes", 0, [](const Graph& g, Indexes) { return Count(g.notes.size()); }},
    {"Note", 1,
     [](const Graph& g, Indexes i) { return Variant(g.notes[IndexFrom(i[0], g.notes.size(), "note")]); }},
    {"NumberOfPanels", 0, [](const Graph& g, Indexes) { return Count(g.panels.size()); }},
    {"Panel", 1,
     [](const Graph& g, Indexes i) {
       const Graph& panel = g.panels[IndexFrom(i[0], g.panels.size(), "panel")];
       return Variant(Variant::Object(std::make_shared<CAnalysisGraphDoc>(panel)));
     }},
    {"Data", 0,
     [](const Graph& g, Indexes) {
       return Variant(Variant::Object(std::make_shared<CAnalysisTableDoc>(GraphTable(g))));
     }},
}};

constexpr std::span<const ReadOnlyMember<Graph>> kAllMembers(kMembers);

}  // namespace

std::optional<DispatchId> CAnalysisGraphDoc::FindMember(std::string_view name) const {
  return FindReadOnlyMember(kAllMembers, name);
}

Variant CAnalysisGraphDoc::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  return GetReadOnlyMember(kAllMembers, graph_, InterfaceName(), member, kind, arguments);
}

}  // namespace brenvolt
