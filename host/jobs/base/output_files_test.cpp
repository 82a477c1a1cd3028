#include "host/jobs/base/output_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

// What a job reads must still be there when it has written.
TEST(JobOutputs, NoOutputReplacesWhatIsReadOrWrittenElsewhere) {
  const TemporaryFolder folder;
  const auto file = [&](const std::string& name) {
    return name.empty() ? std::filesystem::path() : folder.Path() / name;
  };
  std::ofstream(file("data.csv")) << "x\n1\n";
  std::filesystem::create_hard_link(file("data.csv"), file("linked.csv"));
  const struct {
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::vector<std::string> fields;  // of the faults
  } rows[] = {
      {{"data.csv"}, {"runs.csv", "graphs.json"}, {}},
      {{"data.csv"}, {"data.csv", ""}, {"output"}},
      {{"data.csv"}, {"linked.csv", ""}, {"output"}},
      {{"new.csv"}, {"./new.csv", ""}, {"output"}},
      {{"data.csv", "m.json"}, {"", "m.json"}, {"graphs"}},
      {{"data.csv"}, {"same.json", "same.json"}, {"graphs"}},
      {{"p.bvw"}, {"p.bvw", "g.json"}, {}},
      {{""}, {"", ""}, {}},
  };
  for (const auto& row : rows) {
    std::vector<JobFile> inputs;
    for (const std::string& name : row.inputs) inputs.push_back({"data", file(name)});
    const std::vector<JobFile> outputs{{"output", file(row.outputs[0])}, {"graphs", file(row.outputs[1])}};
    JobFaults faults;
    CheckTargetsApart(inputs, outputs, faults);
    std::vector<std::string> fields;
    for (const JobFault& fault : faults) fields.push_back(fault.field);
    EXPECT_EQ(fields, row.fields) << row.inputs.front() << " " << row.outputs[0] << " " << row.outputs[1];
  }
}

TEST(JobOutputs, GraphsGoToJsonAlone) {
  for (const auto& [name, isRefused] : {std::pair("", false),
                                        {"g.json", false},
                                        {"G.JSON", false},
                                        {"/dev/null", false},
                                        {"g.png", true},
                                        {"p.bvw", true}}) {
    JobFaults faults;
    CheckGraphsTarget("graphs", name, faults);
    EXPECT_EQ(!faults.empty(), isRefused) << name;
  }
}

}  // namespace
}  // namespace brenvolt
