// What tests of the command share: a folder of their own to run it in.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/run_program.h"

namespace brenvolt::test {

using Json = nlohmann::json;

inline const std::string kExamples = BRENVOLT_SOURCE_DIR "/examples/";

struct Command : testing::Test {
  TemporaryFolder folder;

  Outcome Run(const std::vector<std::string>& arguments) const {
    return RunBrenvolt(arguments, folder.Path());
  }
  Outcome MustRun(const std::vector<std::string>& arguments) const {
    Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome;
  }
  nlohmann::json JsonOf(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    return Json::parse(MustRun(arguments).out);
  }
  // Of a run that may also say something.
  nlohmann::json Report(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return Json::parse(outcome.out, nullptr, false);
  }
  std::filesystem::path File(const std::string& name) const { return folder.Path() / name; }
  void Write(const std::string& name, std::string_view text) const { WriteBytes(File(name), text); }
  void Sql(const std::string& project, const std::string& statement) const {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(File(project).c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }
};

}  // namespace brenvolt::test
