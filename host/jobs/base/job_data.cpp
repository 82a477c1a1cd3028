#include "host/jobs/base/job_data.h"

#include <algorithm>
#include <limits>
#include <random>
#include <utility>

#include "host/base/quoted.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt {

void RequireCases(const Spreadsheet& sheet) {
  if (sheet.Kind() != SheetKind::kData) throw Error("the sheet holds a matrix, not cases", sheet.Name());
}

std::int32_t DrawSeed() {
  std::random_device source;
  return std::uniform_int_distribution<std::int32_t>(1, std::numeric_limits<std::int32_t>::max())(source);
}

DataFile OpenJobData(const JobData& data) {
  DataFile file = OpenDataFile(data.file, data.Format());
  if (file.isProject && data.decimalComma)
    throw WrongJob("decimalComma", "a project has no decimal separators, only CSV files do");
  return file;
}

AnalysisSession& Start(const JobInput& input, const JobData& data) {
  AnalysisSession& session = input.start();
  session.Interface().AnswerQuestions(data.yes);
  return session;
}

void SelectCases(Spreadsheet& sheet, const std::string& select) {
  if (select.empty()) {
    sheet.SetSelection({});
    return;
  }
  try {
    ApplySelection(sheet, select);
  } catch (const Error& error) {
    throw WrongJob("select", error.Where() + ": " + error.what());
  }
  const auto& accepted = sheet.Selection().accepted;
  if (!accepted.empty() && std::ranges::count(accepted, 0) == std::ssize(accepted))
    throw WrongJob("select", "no case meets the condition " + Quoted(select));
}

FormerConditions::~FormerConditions() {
  sheet_.SetWeightVariable(weight_);
  sheet_.SetSelection(std::move(selection_));
}

JobInput JobRun::Input(ProgramInterface& interface, JobRecorder& recorder) {
  const auto start = [this, &interface, &recorder]() -> AnalysisSession& {
    session = std::make_unique<AnalysisSession>(interface, *sheet);
    OfferMatrices(session->Input(), data.workbook);
    recorder.Started(sheet, session->Analysis());
    return *session;
  };
  return {*sheet, &data, sheet, start};
}

std::unique_ptr<Spreadsheet> MatrixFor(const std::string& name, const JobInput& input) {
  const Workbook none;
  const Workbook& workbook = input.home != nullptr ? input.home->workbook : none;
  return name.empty() ? SavedMatrix(workbook, input.sheet) : NamedMatrix(name, workbook, "matrix " + name);
}

Table RecordedMatrix(const std::string& name, std::unique_ptr<Spreadsheet> matrix, const JobInput& input,
                     JobRecorder& recorder) {
  if (matrix == nullptr) return nullptr;
  auto document = std::make_shared<CAnalysisTableDoc>(std::move(matrix));
  const std::string sheet = recorder.NameOf(input.recorded);
  if (name.empty()) {
    recorder.Gave("matrix", nullptr, "SavedMatrix", {sheet}, document.get());
  } else {
    recorder.Gave("matrix", nullptr, "NamedMatrix", {PythonText(name), sheet}, document.get());
  }
  return document;
}

void RecordShown(AnalysisSession& session, JobRecorder& recorder) {
  const auto& documents = session.Interface().Documents();
  for (std::size_t i = 0; i < documents.size(); ++i)
    recorder.Shown(session.Analysis(), i, documents[i].get());
}

}  // namespace brenvolt
