// Every distribution type against its table of high-precision values, reference/<type>.csv: one test for all.
// The largest relative errors are recorded as properties of the test, per function and region.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "host/numeric/distributions.h"

namespace brenvolt {
namespace {

using Parameters = std::array<double, 3>;
using Function = std::function<double(double, const Parameters&)>;
using ArrayFunction = std::function<void(std::span<const double>, const Parameters&, std::span<double>)>;
using In = std::span<const double>;
using Out = std::span<double>;

Function BindScalar(double (*f)(double, double)) {
  return [f](double x, const Parameters& p) { return f(x, p[0]); };
}
Function BindScalar(double (*f)(double, double, double)) {
  return [f](double x, const Parameters& p) { return f(x, p[0], p[1]); };
}
Function BindScalar(double (*f)(double, double, double, double)) {
  return [f](double x, const Parameters& p) { return f(x, p[0], p[1], p[2]); };
}

ArrayFunction BindArray(void (*f)(In, double, Out)) {
  return [f](In x, const Parameters& p, Out out) { f(x, p[0], out); };
}
ArrayFunction BindArray(void (*f)(In, double, double, Out)) {
  return [f](In x, const Parameters& p, Out out) { f(x, p[0], p[1], out); };
}
ArrayFunction BindArray(void (*f)(In, double, double, double, Out)) {
  return [f](In x, const Parameters& p, Out out) { f(x, p[0], p[1], p[2], out); };
}

struct Type {
  std::string name;
  std::size_t parameterCount;
  int origin;  // index of the location or threshold, to which a quantile is relative; -1 for none
  std::map<std::string, Function> functions;
  std::map<std::string, ArrayFunction> arrays;
};

void PrintTo(const Type& type, std::ostream* out) {
  *out << type.name;
}

std::vector<Type> AllTypes() {
  return {{"normal",
           2,
           0,
           {{"Density", BindScalar(normal::Density)},
            {"LogDensity", BindScalar(normal::LogDensity)},
            {"Cdf", BindScalar(normal::Cdf)},
            {"Complement", BindScalar(normal::Complement)},
            {"Quantile", BindScalar(normal::Quantile)},
            {"ComplementQuantile", BindScalar(normal::ComplementQuantile)}},
           {{"Cdf", BindArray(normal::Cdf)}, {"Quantile", BindArray(normal::Quantile)}}},
          {"lognormal",
           3,
           2,
           {{"Density", BindScalar(lognormal::Density)},
            {"LogDensity", BindScalar(lognormal::LogDensity)},
            {"Cdf", BindScalar(lognormal::Cdf)},
            {"Complement", BindScalar(lognormal::Complement)},
            {"Quantile", BindScalar(lognormal::Quantile)},
            {"ComplementQuantile", BindScalar(lognormal::ComplementQuantile)}},
           {{"Cdf", BindArray(lognormal::Cdf)}, {"Quantile", BindArray(lognormal::Quantile)}}},
          {"weibull",
           3,
           2,
           {{"Density", BindScalar(weibull::Density)},
            {"LogDensity", BindScalar(weibull::LogDensity)},
            {"Cdf", BindScalar(weibull::Cdf)},
            {"Complement", BindScalar(weibull::Complement)},
            {"Quantile", BindScalar(weibull::Quantile)},
            {"ComplementQuantile", BindScalar(weibull::ComplementQuantile)}},
           {{"Cdf", BindArray(weibull::Cdf)}, {"Quantile", BindArray(weibull::Quantile)}}},
          {"poisson",
           1,
           -1,
           {{"Density", BindScalar(poisson::Density)},
            {"LogDensity", BindScalar(poisson::LogDensity)},
            {"Cdf", BindScalar(poisson::Cdf)},
            {"Complement", BindScalar(poisson::Complement)},
            {"Quantile", BindScalar(poisson::Quantile)},
            {"ComplementQuantile", BindScalar(poisson::ComplementQuantile)}},
           {{"Cdf", BindArray(poisson::Cdf)}, {"Quantile", BindArray(poisson::Quantile)}}}};
}

struct Row {
  std::string function;
  bool isTail;
  double argument;
  Parameters parameters;
  double value;
};

std::vector<Row> ReadTable(const Type& type) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/reference/" + type.name + ".csv");
  std::vector<Row> rows;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string field;
    const auto next = [&] {
      std::getline(fields, field, ',');
      return field;
    };
    Row row = {next(), next() == "tail", std::stod(next()), {}, 0.0};
    for (std::size_t i = 0; i < type.parameterCount; ++i) row.parameters[i] = std::stod(next());
    row.value = std::stod(next());
    rows.push_back(row);
  }
  return rows;
}

// The error relative to the value; of a logarithm, relative to 1 where it is small; of a quantile, relative
// to the location or threshold where the sum of the two is smaller.
double RelativeError(const Type& type, const Row& row, double computed) {
  double size = std::abs(row.value);
  if (row.function == "LogDensity") size = std::max(size, 1.0);
  const bool isQuantile = row.function == "Quantile" || row.function == "ComplementQuantile";
  if (isQuantile && type.origin >= 0) {
    size = std::max(size, std::abs(row.parameters[static_cast<std::size_t>(type.origin)]));
  }
  const double error = std::abs(computed - row.value);
  return error == 0.0 ? 0.0 : error / size;
}

class DistributionReference : public testing::TestWithParam<Type> {};

TEST_P(DistributionReference, AgreesWithTableInBodyAndTails) {
  constexpr double kBodyTolerance = 1e-13;
  constexpr double kTailTolerance = 1e-10;
  constexpr int kFewestRows = 200;
  const Type& type = GetParam();
  std::map<std::string, int> counts;
  std::map<std::string, double> worst;
  for (const Row& row : ReadTable(type)) {
    const double computed = type.functions.at(row.function)(row.argument, row.parameters);
    const double error = RelativeError(type, row, computed);
    ++counts[row.function];
    double& most = worst[row.function + (row.isTail ? "Tail" : "Body")];
    most = std::max(most, error);
    // Written so that NaN fails.
    EXPECT_TRUE(error <= (row.isTail ? kTailTolerance : kBodyTolerance))
        << row.function << " at " << row.argument << " with " << testing::PrintToString(row.parameters)
        << ": " << computed << " for " << row.value << ", relative error " << error;
  }
  ASSERT_EQ(counts.size(), type.functions.size());
  for (const auto& [function, count] : counts) EXPECT_GE(count, kFewestRows) << function;
  for (const auto& [place, error] : worst) {
    std::ostringstream text;
    text << error;
    RecordProperty(place, text.str());
  }
}

// Tables hold many parameters, so each row goes into an array of its own, long enough for whole vectors and a
// rest.
TEST_P(DistributionReference, ArrayFormsGiveTheBitsOfTheScalarForms) {
  constexpr std::size_t kLength = 19;
  const Type& type = GetParam();
  for (const Row& row : ReadTable(type)) {
    const auto array = type.arrays.find(row.function);
    if (array == type.arrays.end()) continue;
    std::vector<double> values(kLength, row.argument);
    array->second(values, row.parameters, values);
    const double expected = type.functions.at(row.function)(row.argument, row.parameters);
    for (const double value : values) {
      ASSERT_EQ(value, expected) << row.function << " at " << row.argument << " with "
                                 << testing::PrintToString(row.parameters);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, DistributionReference, testing::ValuesIn(AllTypes()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace brenvolt
