// A whole PMML file: from its elements to programs that are ready to run.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {

struct ReadyModel {
  std::string name;
  TextPool pool;
  std::vector<std::unique_ptr<Field>> fields;  // to which the rest refers
  std::vector<const Field*> predictors;
  Program program;
  std::size_t slots = 0;
  std::size_t fixed = 0;
  std::vector<std::pair<Slot, double>> constants;
  std::vector<InputColumn> inputs;   // what the program reads
  std::size_t predictionInputs = 0;  // so many of them, the first ones, for more than outputs
  std::map<const Field*, FieldUse> uses;
  std::vector<ModelResult> results;  // by dependent
  std::vector<OutputColumn> outputs;
  std::vector<OutputColumn> faultyOutputs;  // which the model cannot give
  std::vector<std::string> dependents;
  std::map<std::string, std::vector<std::pair<std::string, double>>> counts;  // of values, by field
  std::vector<std::optional<double>> meanSquaredErrors;                       // by dependent
};

std::unique_ptr<ReadyModel> ReadModelFile(std::string_view text, const std::string& file);

}  // namespace brenvolt::pmml
