// Files that are not a project, or no longer one: each gives one clear line that names the file.
#include <sys/stat.h>

#include "host/tables/workbook.h"
#include "host/tables/workbook_support_test.h"

namespace brenvolt {
namespace {

void ExpectRefused(const std::filesystem::path& path, const std::string& message) {
  const Error error = ErrorOf([&] { Workbook::Open(path); });
  EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
  EXPECT_EQ(error.Where(), path.string());
}

TEST(WorkbookDamageTest, SaysWhatIsWrongWithAFileThatIsNoProject) {
  const TemporaryFolder folder;
  RichWorkbook().Save(folder / "newer.bvw");
  RunSql(folder / "newer.bvw", "PRAGMA user_version = 2; CREATE TABLE future(x)");
  RichWorkbook().Save(folder / "unversioned.bvw");
  RunSql(folder / "unversioned.bvw", "PRAGMA user_version = 0");
  RunSql(folder / "foreign.bvw", "CREATE TABLE sheet(id); PRAGMA application_id = 17");
  RunSql(folder / "anonymous.bvw", "CREATE TABLE t(id)");
  WriteBytes(folder / "empty.bvw", "");
  WriteBytes(folder / "table.csv", "a,b\n1,2\n");
  WriteBytes(folder / "magic.bvw", std::string("SQLite format 3\0", 16));
  std::filesystem::create_directory(folder / "folder.bvw");
  ASSERT_EQ(mkfifo((folder / "pipe.bvw").c_str(), 0600), 0);

  const std::pair<const char*, const char*> refused[] = {
      {"newer.bvw",
       "was written by a newer version of this program (format 2, this version reads formats up to 1)"},
      {"unversioned.bvw", "the project is damaged: it has no format version"},
      {"foreign.bvw", "the file is not a project; import makes one of a data file"},
      {"anonymous.bvw", "the file is not a project; import makes one of a data file"},
      {"empty.bvw", "the file is not a project; import makes one of a data file"},
      {"table.csv", "the file is not a project; import makes one of a data file"},
      {"magic.bvw", "the file is not a project; import makes one of a data file"},
      {"folder.bvw", "a folder stands in place of the project"},
      {"pipe.bvw", "a device or pipe stands in place of the project"},
      {"missing.bvw", "the project cannot be read: No such file or directory"},
      {"table.csv/inside.bvw", "the project cannot be read: Not a directory"},
  };
  for (const auto& [name, message] : refused) {
    SCOPED_TRACE(name);
    const std::filesystem::path path = folder / name;
    ExpectRefused(path, message);
    EXPECT_EQ(ErrorOf([&] { Workbook::Outline(path); }).Where(), path.string());
    const bool isProject =
        std::string_view(name) == "newer.bvw" || std::string_view(name) == "unversioned.bvw";
    EXPECT_EQ(Workbook::IsWorkbookFile(path), isProject);
  }
}

TEST(WorkbookDamageTest, RefusesContentThatContradictsItself) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  const std::pair<const char*, const char*> damages[] = {
      {"DELETE FROM column_chunk WHERE id = 2", "fewer values of \"Hard\" than cases"},
      {"UPDATE column_chunk SET position = 2 WHERE id = 2", "a part of the values of \"Hard\" is missing"},
      {"UPDATE column_chunk SET doubles = substr(doubles, 9)", "fewer values"},
      {"UPDATE column_chunk SET doubles = substr(doubles, 4)", "fewer values"},
      {"UPDATE column_chunk SET doubles = zeroblob(56)", "more values"},
      {"UPDATE column_chunk SET doubles = zeroblob(48)", "values of \"Hard\" have changed"},
      {"UPDATE column_chunk SET doubles = 5", "the project is damaged"},
      {"INSERT INTO column_chunk VALUES (900, 1, 2, zeroblob(8))", "more values"},
      {"UPDATE sheet SET cases = -1", "a sheet of -1 cases"},
      {"UPDATE sheet SET cases = 4611686018427387904", "a sheet of 4611686018427387904 cases"},
      {"UPDATE sheet SET cases = 100000000000 WHERE id = 3", "it claims more content than it can hold"},
      {"DELETE FROM variable WHERE sheet = 3; UPDATE sheet SET cases = 1000000000 WHERE id = 3",
       "a sheet of 1000000000 cases without any variable"},
      {"UPDATE sheet SET cases = 7 WHERE id = 3", "fewer values"},
      {"UPDATE sheet SET cases = 5 WHERE id = 3", "more values"},
      {"UPDATE sheet SET cases = 'many'", "a text or nothing in place of a whole number"},
      {"UPDATE sheet SET kind = 'graph'", "a sheet of unknown kind"},
      {"UPDATE sheet SET selection_accepted = x'01' WHERE id = 1", "a case selection does not match"},
      {"UPDATE sheet SET weight_variable = 77", "the weight variable of a sheet is missing"},
      {"UPDATE variable SET type = 'date'", "a variable of unknown type"},
      {"UPDATE variable SET missing_code = 'NA'", "a text in place of a number"},
      {"UPDATE variable SET missing_code = x'00'", "a text in place of a number"},
      {"DELETE FROM case_name WHERE position = 3", "a case name is missing"},
      {"DELETE FROM case_name WHERE position = 6", "the case names do not match the number of cases"},
      {"UPDATE sheet SET cases_numbered = 1 WHERE id = 1", "its numbered cases have names"},
      {"INSERT INTO case_name VALUES (1, 7, 'x')", "the case names do not match the number of cases"},
      {"DROP TABLE label", "its table \"label\" is missing or not as it should be"},
      {"ALTER TABLE label ADD COLUMN more", "its table \"label\" is missing or not as it should be"},
      {"DROP TABLE label; CREATE VIEW label AS WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM "
       "r) "
       "SELECT n AS variable, n AS value, n AS text FROM r",
       "its table \"label\" is missing or not as it should be"},
      {"UPDATE variable SET name = 'two' || char(10) || 'lines'; DELETE FROM column_chunk", "\"two?lines\""},
  };
  for (const auto& [sql, message] : damages) {
    SCOPED_TRACE(sql);
    std::filesystem::remove(path);
    RichWorkbook().Save(path);
    RunSql(path, sql);
    ExpectRefused(path, message);
  }
}

TEST(WorkbookDamageTest, RefusesTwoSheetsOfOneName) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  Workbook workbook;
  workbook.Add(std::make_unique<Spreadsheet>("AAAAAAAA"));
  workbook.Add(std::make_unique<Spreadsheet>("BBBBBBBB"));
  workbook.Save(path);
  std::string bytes = BytesOf(path);
  for (std::size_t at = 0; (at = bytes.find("BBBBBBBB", at)) != std::string::npos;)
    bytes.replace(at, 8, "AAAAAAAA");
  WriteBytes(path, bytes);
  ExpectRefused(path, "the project is damaged: it has two sheets of the same name");
  EXPECT_THROW(Workbook::Outline(path), Error);
}

TEST(WorkbookDamageTest, RefusesAFileCutAtAnyLength) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  RichWorkbook().Save(path);
  const std::string whole = BytesOf(path);
  for (std::size_t length = 0; length < whole.size(); length += length % 4096 == 4095 ? 1 : 39) {
    WriteBytes(path, std::string_view(whole).substr(0, length));
    EXPECT_THROW(Workbook::Open(path), Error) << length << " of " << whole.size() << " bytes";
  }
  WriteBytes(path, std::string_view(whole).substr(0, whole.size() - 1));
  EXPECT_THROW(Workbook::Open(path), Error);
}

TEST(WorkbookDamageTest, AnyChangedByteOfAColumnIsNoticed) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  PlainWorkbook(1000, 1).Save(path);
  const std::string whole = BytesOf(path);
  const double first[] = {100, 101, 102};
  const std::size_t start = whole.find(std::string_view(reinterpret_cast<const char*>(first), sizeof first));
  ASSERT_NE(start, std::string::npos);
  for (std::size_t bit = 0; bit < 64; ++bit) {
    std::string changed = whole;
    // The same bit of two values, which a sum or exclusive or would not see.
    changed[start + bit / 8] = static_cast<char>(changed[start + bit / 8] ^ 1 << bit % 8);
    changed[start + 32 + bit / 8] = static_cast<char>(changed[start + 32 + bit / 8] ^ 1 << bit % 8);
    WriteBytes(path, changed);
    ExpectRefused(path, "values of \"Var1\" have changed");
  }
}

TEST(WorkbookDamageTest, AnyOtherChangedByteGivesAnErrorOrAProject) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  RichWorkbook().Save(path);
  const std::string whole = BytesOf(path);
  int opened = 0;
  for (std::size_t at = 0; at < whole.size(); at += 23) {
    std::string changed = whole;
    changed[at] = static_cast<char>(~changed[at]);
    WriteBytes(path, changed);
    try {
      opened += Workbook::Open(path).SheetCount() > 0 ? 1 : 0;
    } catch (const Error& error) {
      EXPECT_EQ(error.Where(), path.string());
    }
  }
  EXPECT_GT(opened, 0);
}

}  // namespace
}  // namespace brenvolt
