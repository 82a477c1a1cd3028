#include "host/jobs/base/job_data.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <random>
#include <utility>

#include "host/base/bytes.h"
#include "host/base/quoted.h"
#include "host/jobs/base/correctable_data.h"
#include "host/jobs/base/project_files.h"
#include "host/rounds/crew.h"
#include "host/tables/csv_layout.h"
#include "host/tables/text/sheet_notes.h"

namespace brenvolt {

void RequireCases(const Spreadsheet& sheet) {
  if (sheet.Kind() != SheetKind::kData) throw Error("the sheet holds a matrix, not cases", sheet.Name());
}

std::int32_t DrawSeed() {
  Round round{"seed", 1, {}, {}, {}};
  round.run = [](PartRange) {
    std::random_device source;
    ByteWriter drawn;
    drawn.Put(
        std::uniform_int_distribution<std::int32_t>(1, std::numeric_limits<std::int32_t>::max())(source));
    return std::move(drawn).Take();
  };
  round.finish = [](const std::string& all) { return all; };
  const std::string told = TheCrew().Run(round);
  return ByteReader(told).Get<std::int32_t>();
}

namespace {

// The options with what the decimal comma stands for.
TextOptions OptionsOf(const JobData& data) {
  TextOptions options = data.text;
  if (!data.decimalComma) return options;
  if (!options.decimal) options.decimal = ",";
  if (!options.delimiter) options.delimiter = ";";
  return options;
}

std::string Listed(const std::vector<std::string>& texts, const char* separator) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : separator) + text;
  return list;
}

// The texts, and the options that say what they are.
TextsAmongNumbers WrongTexts(const std::vector<StrayTexts>& columns) {
  const StrayTexts& first = columns.front();
  std::vector<std::string> cells;
  std::vector<std::string> texts;
  for (const StrayTexts::Cell& cell : first.first) {
    cells.push_back(Quoted(cell.text) + " in line " + std::to_string(cell.line));
    if (std::ranges::find(texts, cell.text) == texts.end()) texts.push_back(cell.text);
  }
  std::vector<std::string> names;
  for (const StrayTexts& column : columns) names.push_back(column.column);
  const std::string several =
      columns.size() > 1 ? "; so are values of " + Listed({names.begin() + 1, names.end()}, ", ") : "";
  const std::string verb = first.texts == 1 ? " is not a number: " : " are not numbers: ";
  return TextsAmongNumbers(
      {{"missingText", std::to_string(first.texts) + " of the " + std::to_string(first.values) +
                           " values of " + first.column + verb + Listed(cells, ", ") + several + "; " +
                           Quoted(Listed(texts, ",")) + " here reads such texts as missing"},
       {"text", Quoted(Listed(names, ",")) + " here reads all values as texts"}},
      names);
}

DataFile Opened(const JobData& data) {
  try {
    return OpenDataFile(data.file, OptionsOf(data));
  } catch (const StrayTextsError& stray) {
    throw WrongTexts(stray.Columns());
  } catch (const OptionError& wrong) {
    throw WrongJob(wrong.Field(), std::string(wrong.what()) + " (" + wrong.Where() + ")");
  }
}

// A field of the options that is given; empty if none is.
std::string FirstGiven(const JobData& data) {
  const TextOptions& text = data.text;
  const std::pair<bool, const char*> given[] = {
      {data.decimalComma, "decimalComma"},        {text.delimiter.has_value(), "delimiter"},
      {text.decimal.has_value(), "decimal"},      {text.thousands.has_value(), "thousands"},
      {text.header.has_value(), "header"},        {text.unitsRow.has_value(), "unitsRow"},
      {text.comment.has_value(), "comment"},      {text.encoding.has_value(), "encoding"},
      {!text.missingText.empty(), "missingText"}, {!text.text.empty(), "text"}};
  for (const auto& [isGiven, field] : given) {
    if (isGiven) return field;
  }
  return {};
}

// Leaves out what was found of other sheets than the one that is named, or says which there are if none is.
void TellOfOneSheet(const JobData& data, DataFile& file) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < file.workbook.SheetCount(); ++i)
    names.push_back(file.workbook.SheetAt(i).Name());
  if (!data.sheet.empty()) {
    const auto isOfAnother = [&](const ReadingNote& note) {
      return note.message.starts_with("sheet ") && !note.message.starts_with(AboutSheet(data.sheet));
    };
    if (names.size() > 1) std::erase_if(file.doubts, isOfAnother);
  } else if (names.size() > 1) {
    file.doubts.push_back({"sheet", Quoted(names.front()) + " is taken, other sheets are left out: " +
                                        Listed({names.begin() + 1, names.end()}, ", ")});
  }
}

}  // namespace

void CheckReading(const JobData& data, JobFaults& faults) {
  for (const ReadingNote& fault : CheckTextOptions(data.text)) faults.push_back({fault.field, fault.message});
  const auto differs = [&data](const std::optional<std::string>& given,
                               std::initializer_list<const char*> same) {
    return data.decimalComma && given && std::ranges::find(same, *given) == same.end();
  };
  if (differs(data.text.decimal, {","}))
    faults.push_back({"decimal", "decimal commas are asked for as well; give one of the two"});
  if (data.decimalComma && data.text.delimiter && *data.text.delimiter == ",")
    faults.push_back({"delimiter", "a comma cannot be both the delimiter and the decimal sign"});
}

JobRecorder::Arguments ReadingArguments(const JobData& data) {
  JobRecorder::Arguments arguments{DecimalCommaArgument(data.decimalComma)};
  const auto add = [&arguments](const char* name, const std::optional<std::string>& text) {
    if (text) arguments.push_back(name + ("=" + PythonText(*text)));
  };
  const TextOptions& text = data.text;
  add("delimiter", text.delimiter);
  add("decimal", text.decimal);
  add("thousands", text.thousands);
  add("header", text.header);
  if (text.unitsRow) arguments.push_back(*text.unitsRow ? "units_row=True" : "units_row=False");
  add("comment", text.comment);
  add("encoding", text.encoding);
  const auto addList = [&arguments](const char* name, const std::vector<std::string>& texts) {
    std::vector<std::string> quoted;
    for (const std::string& one : texts) quoted.push_back(PythonText(one));
    if (!texts.empty()) arguments.push_back(std::string(name) + "=[" + Listed(quoted, ", ") + "]");
  };
  addList("missing_text", text.missingText);
  addList("text", text.text);
  return arguments;
}

std::string ReadAsText(const DataFile& file) {
  const std::string name = file.path == kStandardInput ? "standard input" : file.path.filename().string();
  return file.readAs.empty() ? std::string() : name + " has " + file.readAs;
}

DataFile OpenJobData(const JobData& data) {
  JobFaults faults;
  CheckReading(data, faults);
  RequireNone(std::move(faults));
  DataFile file = Opened(data);
  if (const std::string given = FirstGiven(data); file.isProject && !given.empty())
    throw WrongJob(given, "this applies to text files, and the data are a project");
  if (!file.isProject) TellOfOneSheet(data, file);
  if (data.tell) data.tell(file);
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
