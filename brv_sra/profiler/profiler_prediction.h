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

namespace brenvolt::sra {

class ProfilerPrediction {
 public:
  // The design must outlive it. Throws FormulaError about the formula of a dependent.
  explicit ProfilerPrediction(const ProfilerDesign& design);

  // The predictors that the prediction of a dependent reads, as places in the design.
  std::vector<std::size_t> ReadBy(std::size_t dependent) const;
  // Whether anything predicts it.
  bool IsPredicted(std::size_t dependent) const;

  // Fills a column for each dependent from a column for each predictor, all of one length, on all cores. NaN
  // if there is no prediction that is finite. Steps the bar by the cells filled; throws UserCancelled.
  void Predict(std::span<const std::span<const double>> predictors,
               std::span<const std::span<double>> dependents, ProgressBar& progress) const;

 private:
  // A model's predictor: its place in the design, none if it is not used, and of texts what their codes there
  // stand for.
  struct Input {
    std::optional<std::size_t> place;
    const std::map<double, std::string>* labels = nullptr;
  };
  // What predicts some dependents: a formula one of them, a model those that it has.
  struct ModelUse {
    const PredictionModel* model = nullptr;
    std::vector<Input> inputs;
    std::vector<std::optional<std::size_t>> dependents;  // by the model's own; nothing for one not wanted
  };
  void Use(const PredictionModel& model, std::size_t dependent);
  static void PredictRows(const ModelUse& use, std::span<const std::span<const double>> predictors,
                          std::span<const std::span<double>> dependents, std::size_t begin, std::size_t rows);

  const ProfilerDesign& design_;
  std::map<std::size_t, Formula> formulas_;  // by dependent
  std::vector<ModelUse> models_;
};

}  // namespace brenvolt::sra
