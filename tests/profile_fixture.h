// What tests of brenvolt profile share: data of known moments, models and what they predict.
#pragma once

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include "host/tables/csv.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {

inline const std::string kOzone = kExamples + "ozone.csv";
inline const std::string kModel = kExamples + "ozone_regression.pmml";
// The same prediction as the model's, written out.
inline const std::string kFormula =
    "O3 = -7.727982213955437 + 0.3804408287168912*temp - 0.001186227769643128*ibh - "
    "0.005821484614040797*ibt";

// y = 2 A, for A from 8 to 12 alone: one standard deviation on either side of its mean.
inline constexpr const char* kRanged = R"(<PMML version="4.2" xmlns="http://www.dmg.org/PMML-4_2"><Header/>
<DataDictionary><DataField name="A" optype="continuous" dataType="double">
<Interval closure="closedClosed" leftMargin="8" rightMargin="12"/></DataField>
<DataField name="y" optype="continuous" dataType="double"/></DataDictionary>
<RegressionModel functionName="regression"><MiningSchema><MiningField name="A"/>
<MiningField name="y" usageType="target"/></MiningSchema><RegressionTable intercept="0">
<NumericPredictor name="A" coefficient="2"/></RegressionTable></RegressionModel></PMML>)";

using Arguments = std::vector<std::string>;

struct ProfileCommand : Command {
  // A and B: means 10 and 4; standard deviations (divisor n - 1) 2 and 1; correlation 0.8 as near as 200
  // values come.
  void WriteData() const {
    constexpr int kCases = 200;
    std::vector<double> a(kCases);
    std::vector<double> b(kCases);
    for (int i = 0; i < kCases; ++i) {
      a[static_cast<std::size_t>(i)] = std::sin(i * 12.9898);
      b[static_cast<std::size_t>(i)] = std::sin(i * 78.233 + 1);
    }
    Standardize(a);
    Standardize(b);
    std::ofstream file(File("ab.csv"));
    file.precision(17);
    file << "A,B\n";
    for (std::size_t i = 0; i < a.size(); ++i) b[i] = 0.8 * a[i] + 0.6 * b[i];
    Standardize(b);
    for (std::size_t i = 0; i < a.size(); ++i) file << 10 + 2 * a[i] << "," << 4 + b[i] << "\n";
  }
  static void Standardize(std::vector<double>& x) {
    const auto n = static_cast<double>(x.size());
    const double mean = std::accumulate(x.begin(), x.end(), 0.0) / n;
    double squares = 0;
    for (double& value : x) {
      value -= mean;
      squares += value * value;
    }
    for (double& value : x) value /= std::sqrt(squares / (n - 1));
  }
  std::vector<double> Column(const std::string& file, const std::string& name) const {
    const Spreadsheet sheet = ReadCsv(File(file));
    const auto variable = sheet.FindVariable(name);
    EXPECT_TRUE(variable.has_value()) << name;
    if (!variable) return {};
    const auto values = sheet.VariableAt(*variable).Values();
    return {values.begin(), values.end()};
  }
};

inline double Share(const std::vector<double>& values, const auto& condition) {
  return static_cast<double>(std::ranges::count_if(values, condition)) / static_cast<double>(values.size());
}

}  // namespace brenvolt::test
