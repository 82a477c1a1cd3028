// Prediction models from PMML files (versions 3.0 to 4.4): what they predict from what, and the predictions
// for columns of values.
//
// A file is read and checked as a whole when it is loaded; docs/reference/models.md lists what is supported.
// An element or attribute that is not is refused then, by name and line. A loaded model does not change;
// threads may use it at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/models/model_function.h"
#include "host/models/unpredicted_cases.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

enum class ModelFieldKind : std::uint8_t { kContinuous, kCategorical };

struct NumberRange {
  double low = 0;
  double high = 0;
};

// A field of a model as its file describes it.
struct ModelField {
  std::string name;
  bool isPredictor = true;  // else a dependent
  ModelFieldKind kind = ModelFieldKind::kContinuous;
  bool isText = false;
  // Of a categorical field: its values as codes with their texts, in the order of the data dictionary. The
  // codes of texts are 1, 2, …; those of numbers are the numbers. A dependent's codes are 1, 2, … always.
  std::vector<double> codes;
  std::vector<std::string> labels;
  // The relative frequencies of the codes in the data of training, if the file gives them; else empty.
  std::vector<double> frequencies;
  // The range of valid numbers that the file declares: that of its intervals, narrowed by the bounds beyond
  // which outliers become missing.
  std::optional<double> lowest;
  std::optional<double> highest;
  std::vector<NumberRange> parts;  // of that range, ascending, if it has gaps; else none
  bool isListed = false;           // only `codes` are valid
  // Whether a value that is not valid has a prediction nevertheless: the model takes it as it is, or replaces
  // it. If not, a case with such a value has none.
  bool predictsInvalid = false;
  // The value that takes the place of a missing one, if the model has one: a code for texts. Such a predictor
  // may be left out of the data.
  std::optional<double> replacement;
  // False for a predictor that the file lists but no prediction reads.
  bool isUsed = true;

  // "In;Cont", "In;Cat", "Out;Cont" or "Out;Cat".
  std::string Type() const;
};

enum class InvalidValues : std::uint8_t {
  kError,   // a value that the model's treatment of invalid values refuses is an Error naming field, value,
            // case
  kMissing  // the predictions of that case are missing
};

struct ScoreOptions {
  InvalidValues invalid = InvalidValues::kError;
  bool classProbabilities = false;  // adds a column "probability(CLASS)" for every class
};

// An output that a file declares and that cannot be given.
struct UnavailableOutput {
  std::string name;
  std::string reason;  // with the place in the file
};

struct PredictOptions {
  // By predictor, the texts of its codes if they are not those of the model's description; null for the
  // others. Empty: all codes are the model's.
  std::span<const std::map<double, std::string>* const> labels;
  // By dependent, why cases have no prediction is added to them. Empty: nothing is counted.
  std::span<UnpredictedCases> unpredicted;
  std::size_t firstCase = 0;  // the number of the first case, for a function
};

class PredictionModel {
 public:
  // Throws Error naming the file, and the line where the fault has one. A function that the program provides under the
  // path (ProvidedModel) comes before a file.
  static PredictionModel Load(const std::filesystem::path& path);
  // The same over text in memory; `name` takes the place of the file in errors.
  static PredictionModel Parse(std::string_view text, const std::string& name);
  // The model that a function is: all its fields are numbers.
  static PredictionModel FromFunction(std::shared_ptr<const ModelFunction> function);
  ~PredictionModel();
  PredictionModel(PredictionModel&&) noexcept;
  PredictionModel& operator=(PredictionModel&&) noexcept;

  // The model's name in the file; the file's name without folder and ending if it has none.
  const std::string& Name() const;
  // Whether it is a function, which takes one block of cases after the other.
  bool IsFunction() const;
  // The active fields in the order of the mining schema.
  const std::vector<ModelField>& Predictors() const;
  // The targets that it predicts.
  const std::vector<ModelField>& Dependents() const;
  // The mean squared error of a dependent that the file reports of its training, if it does.
  std::optional<double> MeanSquaredError(std::size_t dependent) const;
  // The outputs that Score leaves out for these data: those that the model cannot give, or that read fields which
  // the data lack and no prediction needs.
  std::vector<UnavailableOutput> UnavailableOutputs(const Spreadsheet& data) const;

  // What a text of the data means as a value of a predictor that is not of texts: a truth value, a date, a
  // number. Nothing if it means none.
  std::optional<double> ValueOf(std::size_t predictor, std::string_view text) const;

  // Predicts columns from columns: predictors[k] holds the values of Predictors()[k], in codes for texts,
  // dependents[k] receives those of Dependents()[k]; all of one length. NaN is missing; a code that stands
  // for no text is an unknown value. Cases whose values the model refuses as invalid get NaN. The columns of
  // predictors that are not used may be empty. Throws Error for columns of wrong number or length.
  void Predict(std::span<const std::span<const double>> predictors,
               std::span<const std::span<double>> dependents, const PredictOptions& options = {}) const;

  // Predicts from a sheet whose variables have the names of the model's fields, in any order; variables that
  // the model does not know are left alone. Returns a sheet named `name` of the dependents, the outputs, and
  // what the options ask for. A categorical dependent is a text variable: the code of its class in the order
  // of the data dictionary, from 1, with the class as label. Adds to `unpredicted`, if it is not null, why
  // cases have no prediction of all dependents. Throws Error naming every field that the sheet lacks, and, with its case, a
  // text where a field needs numbers.
  Spreadsheet Score(const Spreadsheet& data, const std::string& name, const ScoreOptions& options = {},
                    UnpredictedCases* unpredicted = nullptr) const;

 private:
  struct Content;
  explicit PredictionModel(std::unique_ptr<const Content> content);

  std::unique_ptr<const Content> content_;
};

}  // namespace brenvolt
