// What is found in a corpus of text files, each of another shape (reference/make_text_corpus.py).
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "host/tables/csv_layout.h"
#include "host/tables/formats/data_file_reader.h"

namespace brenvolt {
namespace {

using Json = nlohmann::json;

const std::string kCorpus = BRENVOLT_SOURCE_DIR "/host/tables/formats/reference/text/";

TextOptions OptionsIn(const Json& given) {
  TextOptions options;
  for (const auto& [name, value] : given.items()) {
    if (name == "missingText") options.missingText = value.get<std::vector<std::string>>();
    if (name == "text") options.text = value.get<std::vector<std::string>>();
    if (name == "encoding") options.encoding = value;
    if (name == "delimiter") options.delimiter = value;
    if (name == "header") options.header = value;
  }
  return options;
}

// The first value of a column: a number, a text, or null if it is missing.
Json FirstValue(const Variable& variable) {
  if (variable.IsMissing(0)) return nullptr;
  if (const auto label = variable.Label(variable.Values()[0])) return std::string(*label);
  return variable.Values()[0];
}

void ExpectAsWritten(const std::string& file, const Json& expected) {
  SCOPED_TRACE(file);
  DataRead read;
  try {
    read = ReadDataFile(kCorpus + file, OptionsIn(expected["options"]));
  } catch (const Error& error) {
    FAIL() << error.what() << " (" << error.Where() << ")";
  }
  const Spreadsheet& sheet = *read.sheets.front();
  for (const Json& column : expected["columns"]) {
    const auto index = sheet.FindVariable(column[0].get<std::string>());
    if (!index) {
      ADD_FAILURE() << "no column " << column[0] << " but " << sheet.VariableAt(0).Name();
      continue;
    }
    EXPECT_EQ(FirstValue(sheet.VariableAt(*index)), column[1]) << column[0];
  }
  EXPECT_EQ(sheet.CaseCount(), expected["rows"]);
  EXPECT_EQ(read.readAs, expected["readAs"]);
  Json doubts = Json::array();
  for (const ReadingNote& doubt : read.doubts) doubts.push_back(doubt.field);
  EXPECT_EQ(doubts, expected["doubts"]) << (read.doubts.empty() ? "" : read.doubts.front().message);
  for (const auto& [name, unit] : expected["units"].items())
    EXPECT_EQ(sheet.VariableAt(*sheet.FindVariable(name)).Property(kUnitProperty), unit.get<std::string>());
}

TEST(TextCorpusReference, EveryFileIsReadAsItIsMeant) {
  std::ifstream stream(kCorpus + "expected.json");
  const Json expected = Json::parse(stream);
  EXPECT_GE(expected.size(), 60u);
  for (const auto& [file, meaning] : expected.items()) ExpectAsWritten(file, meaning);
}

}  // namespace
}  // namespace brenvolt
