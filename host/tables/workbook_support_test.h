// What the tests of the project file share: a folder of their own, a project in which everything occurs,
// exact comparison, and SQLite as another program would use it.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/tables/workbook.h"

namespace brenvolt {

// Runs SQL as the sqlite3 shell does, with views and triggers.
inline void RunSql(const std::filesystem::path& path, const std::string& sql) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  char* message = nullptr;
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &message), SQLITE_OK)
      << sql << ": " << message;
  sqlite3_free(message);
  sqlite3_close(database);
}

// All rows, cells separated by '|', each row ended by a blank.
inline std::string QuerySql(const std::filesystem::path& path, const std::string& sql) {
  sqlite3* database = nullptr;
  std::string rows;
  sqlite3_open(path.c_str(), &database);
  const auto append = [](void* target, int columns, char** cells, char**) {
    for (int i = 0; i < columns; ++i) {
      *static_cast<std::string*>(target) += std::string(i ? "|" : "") + (cells[i] ? cells[i] : "NULL");
    }
    *static_cast<std::string*>(target) += " ";
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(database, sql.c_str(), append, &rows, nullptr), SQLITE_OK) << sql;
  sqlite3_close(database);
  return rows;
}

// Runs `body` in a process of its own; its exit status, or minus the signal that ended it.
inline int RunInChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) {
    try {
      _exit(body());
    } catch (...) {
      _exit(255);
    }
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// The Error that `action` throws; an empty one, and a failed test, when it throws none.
inline Error ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
    return error;
  }
  ADD_FAILURE() << "no error";
  return Error("");
}

inline bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

inline void ExpectSameVariable(const Variable& a, const Variable& b) {
  SCOPED_TRACE("variable " + a.Name());
  EXPECT_EQ(a.Name(), b.Name());
  EXPECT_EQ(a.Type(), b.Type());
  EXPECT_TRUE(SameBits(a.MissingCode(), b.MissingCode()));
  EXPECT_TRUE(std::ranges::equal(a.Values(), b.Values(), SameBits));
  EXPECT_TRUE(std::ranges::equal(a.Labels(), b.Labels(), [](const auto& left, const auto& right) {
    return SameBits(left.first, right.first) && left.second == right.second;
  }));
  EXPECT_EQ(a.Properties(), b.Properties());
}

inline void ExpectSameSheet(const Spreadsheet& a, const Spreadsheet& b) {
  SCOPED_TRACE("sheet " + a.Name());
  EXPECT_EQ(a.Name(), b.Name());
  EXPECT_EQ(a.Kind(), b.Kind());
  EXPECT_EQ(a.Title(), b.Title());
  EXPECT_EQ(a.Header(), b.Header());
  EXPECT_EQ(a.CaseCount(), b.CaseCount());
  EXPECT_EQ(a.WeightVariable(), b.WeightVariable());
  EXPECT_EQ(a.Selection().enabled, b.Selection().enabled);
  EXPECT_EQ(a.Selection().condition, b.Selection().condition);
  EXPECT_EQ(a.Selection().accepted, b.Selection().accepted);
  ASSERT_EQ(a.HasCaseNames(), b.HasCaseNames());
  EXPECT_EQ(a.AreCasesNumbered(), b.AreCasesNumbered());
  for (std::size_t i = 0; a.HasCaseNames() && i < a.CaseCount(); ++i) EXPECT_EQ(a.CaseName(i), b.CaseName(i));
  ASSERT_EQ(a.VariableCount(), b.VariableCount());
  for (std::size_t i = 0; i < a.VariableCount(); ++i) ExpectSameVariable(a.VariableAt(i), b.VariableAt(i));
}

inline void ExpectSameContent(const Workbook& a, const Workbook& b) {
  ASSERT_EQ(a.SheetCount(), b.SheetCount());
  for (std::size_t i = 0; i < a.SheetCount(); ++i) ExpectSameSheet(a.SheetAt(i), b.SheetAt(i));
}

// Everything that a project can hold, with the values that are hardest to keep.
inline Workbook RichWorkbook() {
  using Limits = std::numeric_limits<double>;
  const double payload = std::bit_cast<double>(0x7ff8'0000'dead'beefULL);
  const double signalling = std::bit_cast<double>(0xfff0'0000'0000'0001ULL);

  auto data = std::make_unique<Spreadsheet>("Press \"7\"; DROP TABLE sheet", 6);
  data->SetTitle("Título\nof two lines");
  data->SetHeader("Serial");
  data->SetCaseNames({"a", "", "γ", std::string("nul\0inside", 10), "e", "a"});
  Variable hard("Hard", 0);
  hard.AssignValues(
      {payload, signalling, -0.0, Limits::infinity(), -Limits::infinity(), Limits::denorm_min()});
  hard.SetMissingCode(-9999);
  data->AddVariable(hard);
  Variable text("Hard", 0);  // the same name again
  text.SetType(VariableType::kText);
  text.AssignValues({1, 2, 3, 1, 2, -0.5});
  text.SetLabel(3, "three");
  text.SetLabel(1, "");
  text.SetLabel(-0.5, "half\r\n");
  text.SetLabel(1e300, "much");
  text.SetProperty("zeta", "first");
  text.SetProperty("alpha", "Weibull;3.5;1.25");
  text.SetProperty("", "");
  text.SetProperty("zeta", "set again, still first");
  text.SetMissingCode(payload);
  data->AddVariable(text);
  data->AddVariable(hard);  // a copy shares the stamp of its content
  data->VariableAt(2).SetMissingCode(-0.0);
  data->SetWeightVariable(1);
  data->SetSelection({true, "v1 > 3 and \"Hard\" <> 'x'", {1, 0, 1, 255, 0, 1}});

  auto matrix = std::make_unique<Spreadsheet>("Correlations", 6, 2);
  matrix->SetKind(SheetKind::kMatrix);
  auto caseless = std::make_unique<Spreadsheet>("Without variables", 12);
  caseless->SetSelection({false, "kept though off", {}});
  caseless->NumberCases();

  Workbook workbook;
  workbook.Add(std::move(data));
  workbook.Add(std::make_unique<Spreadsheet>("Aa, after in the order"));
  workbook.Add(std::move(matrix));
  workbook.Add(std::move(caseless));
  workbook.Add(std::make_unique<Spreadsheet>("Without cases", 0, 3));
  return workbook;
}

// Some columns of 0, 1, 2, … long enough for several pages and, with `cases` above the length of a chunk,
// chunks.
inline Workbook PlainWorkbook(std::size_t cases, std::size_t variables) {
  auto sheet = std::make_unique<Spreadsheet>("Data", cases, variables);
  for (std::size_t v = 0; v < variables; ++v) {
    const auto values = sheet->VariableAt(v).MutableValues();
    for (std::size_t i = 0; i < cases; ++i) values[i] = static_cast<double>(i * variables + v);
  }
  Workbook workbook;
  workbook.Add(std::move(sheet));
  return workbook;
}

}  // namespace brenvolt
