// Predicts the dependents of a design from columns of its predictors. Knows no dialog.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/profiler/profiler_design.h"
#include "host/controls/progress_bar.h"
#include "host/formula/formula.h"
#include "host/models/unpredicted_cases.h"

namespace brenvolt::sra {

class ProfilerPrediction {
 public:
  // The design must outlive it. Throws FormulaError about the formula of a dependent.
  explicit ProfilerPrediction(const ProfilerDesign& design);

  // The predictors that the prediction of a dependent reads, as places in the design; not those of the dependents
  // that it reads.
  std::vector<std::size_t> ReadBy(std::size_t dependent) const;
  // Whether anything predicts it.
  bool IsPredicted(std::size_t dependent) const;
  // A dependent that is predicted from itself, directly or by way of others.
  std::optional<std::size_t> PredictedFromItself() const { return circular_; }

  // Fills a column for each dependent from a column for each predictor, all of one length, on all cores. NaN
  // if there is no prediction that is finite. Dependents that others read come before those; none may be predicted
  // from itself. Returns, by dependent, why runs have none. Steps the bar by the cells filled; throws
  // UserCancelled.
  std::vector<UnpredictedCases> Predict(std::span<const std::span<const double>> predictors,
                                        std::span<const std::span<double>> dependents,
                                        ProgressBar& progress) const;

 private:
  // A model's predictor: its place among the predictors of the design, followed by the dependents, none for one
  // that the model does not read; and of texts what their codes in the design stand for.
  struct Input {
    std::optional<std::size_t> place;
    const std::map<double, std::string>* labels = nullptr;
  };
  // What a model predicts: those of its dependents that it is to.
  struct ModelUse {
    const PredictionModel* model = nullptr;
    std::vector<Input> inputs;
    std::vector<std::optional<std::size_t>> dependents;  // by the model's own; nothing for one not wanted
  };
  // One prediction after the other: that of a model, or of a dependent's formula.
  struct Step {
    std::optional<std::size_t> model;  // its place in models_
    std::size_t formula = 0;           // its dependent
  };
  void Use(const PredictionModel& model, std::size_t dependent);
  Input InputOf(const ModelField& field) const;
  std::vector<std::size_t> Predicted(const Step& step) const;
  std::vector<std::size_t> Places(const Step& step) const;
  void Order();
  // Returns which values models refused, by what the step predicts.
  std::vector<UnpredictedCases> Carry(const Step& step, std::span<const std::span<const double>> columns,
                                      std::span<const std::span<double>> dependents,
                                      ProgressBar& progress) const;
  UnpredictedCases MissingInputs(const Step& step, std::span<const std::span<const double>> columns,
                                 std::span<const double> predicted) const;
  static std::vector<UnpredictedCases> PredictRows(const ModelUse& use,
                                                   std::span<const std::span<const double>> columns,
                                                   std::span<const std::span<double>> dependents,
                                                   std::size_t begin, std::size_t rows);

  const ProfilerDesign& design_;
  std::map<std::size_t, Formula> formulas_;  // by dependent
  std::vector<ModelUse> models_;
  std::vector<Step> steps_;
  std::optional<std::size_t> circular_;
};

}  // namespace brenvolt::sra
