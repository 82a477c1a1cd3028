#include "host/jobs/design_job.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "host/automation/type_library.h"
#include "host/base/almost_equal.h"
#include "host/base/quoted.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/numeric/algebra/symmetric_eigen.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr const char* kNames = "UserDefinedDesignMatrixVariableNames";
constexpr const char* kCorrelations = "UserDefinedDesignMatrixValues";
constexpr const char* kSpecification = "SimulationSpecificationOfVariable";
// The constants that name distributions in what dialogs give, by code.
constexpr const char* kKeys = "SupportedDistributionsType";

std::size_t PlaceOf(const std::vector<std::string>& names, const std::string& name) {
  return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
}

std::vector<std::string> NamesIn(AutomationObject& dialog) {
  std::vector<std::string> names;
  for (const Variant& name : dialog.Get(kNames).ToArray()) names.push_back(name.ToText());
  return names;
}

void PutCorrelations(AutomationObject& dialog, const DesignText& design,
                     const std::vector<std::string>& names) {
  if (design.correlations.empty()) return;
  std::vector<Variant::Array> rows;
  for (const Variant& row : dialog.Get(kCorrelations).ToArray()) rows.push_back(row.ToArray());
  for (const NotedCorrelation& correlation : design.correlations) {
    const std::size_t i = PlaceOf(names, correlation.first);
    const std::size_t j = PlaceOf(names, correlation.second);
    rows.at(i).at(j) = rows.at(j).at(i) = correlation.value;
  }
  Variant::Array matrix;
  for (Variant::Array& row : rows) matrix.emplace_back(std::move(row));
  dialog.Put(kCorrelations, matrix);
}

}  // namespace

Variant::Array SpecificationOf(const NotedDistribution& noted) {
  const DistributionFacts& facts = EntryOf(noted.code).facts;
  Variant::Array array{std::string(facts.name)};
  for (const double value : noted.values) array.emplace_back(value);
  for (std::size_t i = 0; i < noted.levels.size(); ++i)
    array[1 + i * facts.ParameterCount()] = noted.levels[i];
  if (facts.HasOffset()) array.emplace_back(noted.offset);
  for (const auto& bound : {noted.minimum, noted.maximum}) {
    array.emplace_back(std::int32_t{bound ? 1 : 0});
    array.emplace_back(bound.value_or(0.0));
  }
  return array;
}

NotedDistribution DistributionFrom(const Variant::Array& array) {
  const auto& keys = FindEnumeration(kKeys)->constants;
  const std::string key = array.front().ToText();
  NotedDistribution noted;
  noted.code = static_cast<DistributionCode>(std::ranges::find(keys, key) - keys.begin());
  const DistributionFacts& facts = EntryOf(noted.code).facts;
  const auto truncation = array.end() - 4;
  for (auto item = array.begin() + 1; item != truncation; ++item) noted.values.push_back(item->ToReal());
  if (facts.HasOffset()) {
    noted.offset = noted.values.back();
    noted.values.pop_back();
  }
  if (truncation[0].ToBoolean()) noted.minimum = truncation[1].ToReal();
  if (truncation[2].ToBoolean()) noted.maximum = truncation[3].ToReal();
  return noted;
}

std::vector<NotedCorrelation> CorrelationsIn(const Spreadsheet* matrix) {
  std::vector<NotedCorrelation> pairs;
  if (matrix == nullptr || !HasMatrixRows(*matrix)) return pairs;
  for (std::size_t i = 0; i < matrix->VariableCount(); ++i) {
    const Variable& column = matrix->VariableAt(i);
    for (std::size_t j = i + 1; j < matrix->VariableCount(); ++j)
      pairs.push_back({column.Name(), matrix->VariableAt(j).Name(), column.Values()[j]});
  }
  return pairs;
}

std::optional<std::string> WhatMatrixLacks(const Table& matrix, const std::vector<std::string>& variables) {
  if (matrix == nullptr) return std::nullopt;
  const std::vector<std::string> known = VariableNamesOf(matrix->Table());
  std::string lacks;
  std::size_t count = 0;
  for (const std::string& name : variables) {
    if (std::ranges::find(known, name) != known.end()) continue;
    lacks += (count++ == 0 ? "" : ", ") + name;
  }
  if (count == 0) return std::nullopt;
  return "The matrix lacks " + lacks + ", which " + (count == 1 ? "counts" : "count") + " as uncorrelated.";
}

std::vector<std::string> VariableNamesOf(const Spreadsheet& sheet) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) names.push_back(sheet.VariableAt(i).Name());
  return names;
}

DesignText HandInputs::Read(const std::vector<std::string>* others, JobFaults& faults) const {
  DesignText design;
  if (!fromFile.empty()) {
    try {
      ReadDesignFile(fromFile, others, design, faults);
    } catch (const Error& error) {
      faults.push_back({"fromFile", error.Where() + " " + error.what()});
    }
  }
  for (const std::string& text : designed) AddVariable("designed", text, design, faults);
  for (const auto& [name, text] : named) AddVariable("designed", name, text, design, faults);
  for (const std::string& text : correlations) AddCorrelation("correlations", text, others, design, faults);
  for (const NotedCorrelation& pair : pairs) AddCorrelation("correlations", pair, others, design, faults);
  if (correlationTable != nullptr) AddCorrelations("correlations", *correlationTable, others, design, faults);
  return design;
}

DesignText HandInputs::ReadNumeric(const std::vector<std::string>* others, JobFaults& faults) const {
  DesignText design = Read(others, faults);
  for (const NotedVariable& variable : design.variables) {
    if (variable.distribution.levels.empty()) continue;
    faults.push_back({"designed", "the levels of " + variable.name +
                                      " are texts, which only a predictor of a model may have; number them"});
  }
  return design;
}

void FillDesign(AnalysisSession& session, const DesignText& design, const Table& matrix) {
  const auto dialog = session.Dialog();
  const std::vector<std::string> former = NamesIn(*dialog);
  std::vector<std::string> names = former;
  for (const NotedVariable& variable : design.variables) {
    if (PlaceOf(names, variable.name) == names.size()) names.push_back(variable.name);
  }
  if (names != former) dialog->Put(kNames, Variant::Array(names.begin(), names.end()));
  for (const NotedVariable& variable : design.variables) {
    const auto place = static_cast<std::int32_t>(PlaceOf(names, variable.name)) + 1;
    dialog->Put(kSpecification, place, SpecificationOf(variable.distribution));
  }
  if (matrix != nullptr) dialog->Put(kCorrelations, Variant::Object(matrix));
  PutCorrelations(*dialog, design, names);
}

void BeginDesigned(AnalysisSession& session, const DesignText& design, const Table& matrix) {
  session.Begin(Task::kDesign);
  FillDesign(session, design, matrix);
  session.Ok();
}

std::vector<NotedVariable> DistributionsIn(AnalysisSession& session) {
  const auto dialog = session.Dialog();
  const std::vector<std::string> names = NamesIn(*dialog);
  std::vector<NotedVariable> variables;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Variant index(static_cast<std::int32_t>(i) + 1);
    const Variant specification = dialog->Get(kSpecification, {&index, 1});
    if (!specification.IsEmpty()) variables.push_back({names[i], DistributionFrom(specification.ToArray())});
  }
  return variables;
}

DesignText DesignIn(AnalysisSession& session) {
  const auto dialog = session.Dialog();
  const std::vector<std::string> names = NamesIn(*dialog);
  const Variant::Array rows = dialog->Get(kCorrelations).ToArray();
  DesignText design{DistributionsIn(session), {}};
  std::vector<std::size_t> places;
  for (const NotedVariable& variable : design.variables) {
    const std::size_t i = PlaceOf(names, variable.name);
    const Variant::Array row = rows[i].ToArray();
    for (const std::size_t other : places) {
      const double value = row[other].ToReal();
      if (value != 0) design.correlations.push_back({names[other], variable.name, value});
    }
    places.push_back(i);
  }
  return design;
}

double SmallestEigenvalue(const DesignText& design) {
  const std::vector<std::string> names = design.Names();
  const std::size_t k = names.size();
  if (k == 0) return 1;
  std::vector<double> matrix(k * k, 0.0);
  for (std::size_t i = 0; i < k; ++i) matrix[i * k + i] = 1;
  for (const NotedCorrelation& correlation : design.correlations) {
    const std::size_t i = PlaceOf(names, correlation.first);
    const std::size_t j = PlaceOf(names, correlation.second);
    matrix[i * k + j] = matrix[j * k + i] = correlation.value;
  }
  std::vector<double> values(k);
  std::vector<double> vectors(k * k);
  if (!SymmetricEigen(matrix, k, values, vectors)) return 1;
  return *std::ranges::min_element(values);
}

JobFaults DesignJob::Check() const {
  if (project.empty()) return {{"project", "missing project file"}};
  JobFaults faults;
  CheckProjectEnding("project", project, faults);
  std::error_code ignored;
  const std::vector<std::string> none;
  const bool exists = std::filesystem::exists(project, ignored);
  const DesignText design = inputs.ReadNumeric(exists ? nullptr : &none, faults);
  if (exists) return faults;
  if (!inputs.IsEmpty()) CheckFolder("project", project, faults);
  if (inputs.IsEmpty()) faults.push_back({"project", "there is no file " + project.string()});
  if (!inputs.IsEmpty() && design.variables.empty() && faults.empty())
    faults.push_back({"designed", "a new project needs at least one variable"});
  if (!sheet.empty()) faults.push_back({"sheet", "a sheet can be chosen only in a project that exists"});
  return faults;
}

DesignFindings DesignJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  const std::vector<std::string> known = VariableNamesOf(input.sheet);
  JobFaults faults;
  const DesignText wanted = inputs.Read(&known, faults);
  RequireNone(std::move(faults));
  const Table given = RecordedMatrix(inputs.matrix, MatrixFor(inputs.matrix, input), input, recorder);
  AnalysisSession& session = input.start();
  session.Begin(Task::kDesign);
  FillDesign(session, wanted, given);
  DesignFindings findings{DesignIn(session), input.sheet.Name(), {}};
  // That of the project lacks what is new to it.
  const Table named = inputs.matrix.empty() ? nullptr : given;
  if (auto note = WhatMatrixLacks(named, findings.design.Names())) findings.notes.push_back(*std::move(note));
  if (inputs.IsEmpty()) return findings;
  session.Attempt([&] { return session.Dialog()->Call("SaveDistributionToInput"); });
  const Variant matrix = session.Dialog()->Get("CorrelationMatrix");
  const auto made = std::dynamic_pointer_cast<CAnalysisTableDoc>(matrix.ToObject());
  RecordShown(session, recorder);
  SaveFits(input.sheet, std::make_unique<Spreadsheet>(made->Table()), input.home, project);
  recorder.Called(nullptr, "SaveFits",
                  {recorder.NameOf(input.recorded), recorder.NameOf(made.get()), PythonPath(project)});
  return findings;
}

void OpenNewDesign(JobRun& run, JobRecorder& recorder) {
  run.sheet = &run.data.workbook.Add(std::make_unique<Spreadsheet>(std::string(kNewDesignSheet)));
  recorder.Gave("sheet", nullptr, "NewSheet", {PythonText(std::string(kNewDesignSheet))}, run.sheet);
}

DesignFindings DesignJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  std::error_code ignored;
  JobRun run;
  if (std::filesystem::exists(project, ignored)) {
    run.data = OpenProject(project);
    run.sheet = &FittedSheet(run.data, sheet);
    recorder.Opened(project, {}, &run.data.workbook);
    recorder.Took(&run.data.workbook, run.sheet->Name(), run.sheet);
  } else {
    OpenNewDesign(run, recorder);
  }
  JobInput input = run.Input(interface, recorder);
  if (!run.data.isProject) input.home = nullptr;
  return Run(input, recorder);
}

}  // namespace brenvolt
