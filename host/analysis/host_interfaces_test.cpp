#include "host/analysis/host_interfaces.h"

#include <gtest/gtest.h>

#include "host/analysis/analysis_automation.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

// Descriptions and objects are written apart: a member that one of them lacks, or counts or indexes
// otherwise.
void ExpectDescribed(const InterfaceDescription& interface, AutomationObject& object) {
  EXPECT_EQ(interface.name, object.InterfaceName());
  DispatchId last = 0;
  for (const MemberDescription& member : interface.members) {
    EXPECT_EQ(object.FindMember(member.name), member.id) << interface.name << "." << member.name;
    last = member.id;
    const std::vector<Variant> toMany(member.indexes.size() + 1, Variant(1));
    try {
      object.Invoke(member.id, CallKind::kGet, toMany);
      ADD_FAILURE() << member.name << " takes more indexes than described";
    } catch (const Error& error) {
      EXPECT_STREQ(error.what(), "wrong number of arguments") << member.name;
    }
  }
  try {
    object.Invoke(last + 1, CallKind::kGet, {});
    ADD_FAILURE() << interface.name << " has members that are not described";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "no such member");
  }
}

TEST(HostInterfaces, DescribeEveryMemberOfTheirObjects) {
  CAnalysisTableDoc table(std::make_unique<Spreadsheet>("s", 1, 1));
  ExpectDescribed(kSpreadsheetInterface, table);
  CAnalysisGraphDoc graph(Graph{});
  ExpectDescribed(kGraphInterface, graph);
}

}  // namespace
}  // namespace brenvolt
