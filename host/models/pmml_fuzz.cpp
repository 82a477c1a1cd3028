// Arbitrary bytes as a PMML file. It is refused with an Error that names the file, or the model scores cases
// of every sort of value, the same way every time, with predictions that its own description allows.
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/error.h"
#include "host/models/prediction_model.h"

namespace brenvolt {
namespace {

constexpr std::string_view kFile = "fuzz.pmml";
constexpr std::size_t kCases = 7;

void Require(bool holds) {
  if (!holds) std::abort();
}

bool Same(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Numbers of every size, codes, and missing values, another order of them in every column.
std::vector<double> Column(std::size_t number) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr std::array<double, kCases> kValues{
      0, 1, 2, -3.5, 1e300, kInfinity, std::numeric_limits<double>::quiet_NaN()};
  std::vector<double> values;
  for (std::size_t i = 0; i < kCases; ++i) values.push_back(kValues[(i + number) % kCases]);
  return values;
}

void CheckPrediction(const ModelField& field, double value) {
  if (!field.isText || std::isnan(value)) return;
  Require(value >= 1 && value <= static_cast<double>(field.labels.size()) && value == std::floor(value));
}

void CheckColumns(const PredictionModel& model) {
  std::vector<std::vector<double>> columns;
  for (std::size_t k = 0; k < model.Predictors().size(); ++k) columns.push_back(Column(k));
  const std::vector<std::span<const double>> predictors(columns.begin(), columns.end());
  std::array<std::vector<double>, 2> answers;
  for (auto& answer : answers) {
    answer.resize(kCases);
    const std::span<double> dependent(answer);
    model.Predict(predictors, std::span(&dependent, 1));
  }
  for (std::size_t i = 0; i < kCases; ++i) {
    Require(Same(answers[0][i], answers[1][i]));
    CheckPrediction(model.Dependents().front(), answers[0][i]);
  }
}

void CheckSheet(const PredictionModel& model) {
  Spreadsheet data("data");
  for (std::size_t k = 0; k < model.Predictors().size(); ++k) {
    const ModelField& field = model.Predictors()[k];
    Variable variable(field.name, kCases);
    variable.AssignValues(Column(k));
    if (field.isText) {
      variable.SetType(VariableType::kText);
      for (const double value : Column(k)) {
        if (!std::isnan(value)) variable.SetLabel(value, "other");
      }
      for (std::size_t i = 0; i < field.labels.size(); ++i)
        variable.SetLabel(field.codes[i], field.labels[i]);
    }
    data.AddVariable(std::move(variable));
  }
  if (data.VariableCount() == 0) return;
  ScoreOptions options;
  options.invalid = InvalidValues::kMissing;
  options.classProbabilities = true;
  try {
    Require(model.Score(data, "out", options).CaseCount() == kCases);
  } catch (const Error& error) {
    Require(!error.Where().empty());  // the sheet lacks a field that is not a predictor
  }
}

}  // namespace
}  // namespace brenvolt

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brenvolt;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const PredictionModel model = PredictionModel::Parse(text, std::string(kFile));
    CheckColumns(model);
    CheckSheet(model);
  } catch (const Error& error) {
    Require(error.Where().starts_with(kFile));
  }
  return 0;
}
