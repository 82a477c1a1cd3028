// Models that a program provides itself, in place of files: functions of columns.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace brenvolt {

struct ModelFunction {
  std::string name;
  std::vector<std::string> predictors;
  std::vector<std::string> dependents;
  // Fills the columns of the dependents for a block of cases, of which `first` is the first, from 0, from those of the
  // predictors. Called for one block after the other; what it throws ends the work.
  std::function<void(std::size_t first, std::span<const std::span<const double>> predictors,
                     std::span<const std::span<double>> dependents)>
      predict;
};

// While it exists, PredictionModel::Load finds the function under its address in place of a file.
class ProvidedModel {
 public:
  explicit ProvidedModel(std::shared_ptr<const ModelFunction> function);
  ProvidedModel(const ProvidedModel&) = delete;
  ProvidedModel& operator=(const ProvidedModel&) = delete;
  ~ProvidedModel();

  static std::string AddressOf(const ModelFunction& function) { return "function:" + function.name; }

 private:
  std::string address_;
};

// Null where nothing is provided under that address.
std::shared_ptr<const ModelFunction> FindProvidedModel(const std::string& address);

}  // namespace brenvolt
