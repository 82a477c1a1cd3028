#include "host/tables/workbook.h"

#include <sys/stat.h>

#include "host/tables/workbook_support_test.h"

namespace brenvolt {
namespace {

ino_t FileNumber(const std::filesystem::path& path) {
  struct stat state {};
  stat(path.c_str(), &state);
  return state.st_ino;
}

constexpr std::size_t kSeveralChunks = 300'000;

TEST(WorkbookTest, KeepsEveryDetailThroughTheFile) {
  const TemporaryFolder folder;
  Workbook workbook = RichWorkbook();
  workbook.Save(folder / "rich.bvw");
  Workbook read = Workbook::Open(folder / "rich.bvw");
  ExpectSameContent(workbook, read);

  // The same through an update of the file in place, after what was read changed.
  read.SheetAt(0).VariableAt(1).SetProperty("alpha", "Gamma;2;2");
  read.SheetAt(2).VariableAt(0).MutableValues()[3] = 7;
  read.SheetAt(0).SetWeightVariable(std::nullopt);
  read.Remove("Without variables");
  read.Save(folder / "rich.bvw");
  ExpectSameContent(read, Workbook::Open(folder / "rich.bvw"));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"rich.bvw"});
}

TEST(WorkbookTest, KeepsColumnsLongerThanOneChunkAndAnEmptyProject) {
  const TemporaryFolder folder;
  for (const std::size_t cases : {131071U, 131072U, 131073U, 300000U}) {
    Workbook workbook = PlainWorkbook(cases, 2);
    workbook.Save(folder / "long.bvw");
    ExpectSameContent(workbook, Workbook::Open(folder / "long.bvw"));
  }
  Workbook().Save(folder / "empty.bvw");
  EXPECT_EQ(Workbook::Open(folder / "empty.bvw").SheetCount(), 0U);
}

TEST(WorkbookTest, FileOfLongColumnsIsNotMuchLongerThanTheirDoubles) {
  const TemporaryFolder folder;
  PlainWorkbook(kSeveralChunks, 5).Save(folder / "long.bvw");
  EXPECT_LT(static_cast<double>(std::filesystem::file_size(folder / "long.bvw")),
            1.1 * kSeveralChunks * 5 * 8);
  PlainWorkbook(10, 5).Save(folder / "short.bvw");
  EXPECT_LT(std::filesystem::file_size(folder / "short.bvw"), 64U << 10);
}

TEST(WorkbookTest, EqualContentGivesEqualBytesWhateverItsHistory) {
  const TemporaryFolder folder;
  RichWorkbook().Save(folder / "one.bvw");
  RichWorkbook().Save(folder / "two.bvw");
  Workbook::Open(folder / "one.bvw").Save(folder / "three.bvw");
  EXPECT_EQ(BytesOf(folder / "one.bvw"), BytesOf(folder / "two.bvw"));
  EXPECT_EQ(BytesOf(folder / "one.bvw"), BytesOf(folder / "three.bvw"));
}

TEST(WorkbookTest, SaveWritesOnlyChangedColumnsIntoItsOwnFile) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  const std::string chunks =
      "SELECT variable.name, group_concat(chunk.id, '+') FROM column_chunk chunk JOIN variable "
      "ON variable.id = chunk.variable GROUP BY variable.position";
  Workbook workbook = PlainWorkbook(100'000, 3);
  workbook.Save(path);
  EXPECT_EQ(QuerySql(path, chunks), "Var1|1 Var2|2 Var3|3 ");
  const ino_t file = FileNumber(path);

  workbook.SheetAt(0).VariableAt(0).MutableValues()[5] = -1;
  workbook.Save(path);
  EXPECT_EQ(QuerySql(path, chunks), "Var1|4 Var2|2 Var3|3 ");
  ExpectSameContent(workbook, Workbook::Open(path));

  // Also after opening, with a column gone, one new, one copied and the order changed.
  Workbook opened = Workbook::Open(path);
  auto sheet = opened.Remove("Data");
  auto other = std::make_unique<Spreadsheet>("Data");
  other->AddVariable(sheet->VariableAt(2));
  other->AddVariable(Variable("New", 100'000));
  other->AddVariable(sheet->VariableAt(1));
  other->AddVariable(sheet->VariableAt(2));
  opened.Add(std::move(other));
  opened.Save(path);
  EXPECT_EQ(QuerySql(path, chunks), "Var3|3 New|4 Var2|2 Var3|5 ");
  ExpectSameContent(opened, Workbook::Open(path));
  EXPECT_EQ(FileNumber(path), file);
}

TEST(WorkbookTest, FileShrinksAfterMostOfItsContentWasRemoved) {
  const TemporaryFolder folder;
  Workbook workbook = PlainWorkbook(100'000, 10);
  workbook.Save(folder / "p.bvw");
  auto sheet = workbook.Remove("Data");
  auto rest = std::make_unique<Spreadsheet>("Data");
  rest->AddVariable(sheet->VariableAt(4));
  workbook.Add(std::move(rest));
  workbook.Save(folder / "p.bvw");
  EXPECT_LT(std::filesystem::file_size(folder / "p.bvw"), 2'000'000U);
  ExpectSameContent(workbook, Workbook::Open(folder / "p.bvw"));
}

// Each of these makes the columns that the program believes to be in the file something else.
TEST(WorkbookTest, SaveNeverMixesWithWhatOthersPutIntoItsFile) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  // What the file holds after the save: what is here; both; what another put there, since the save is refused.
  enum Outcome { kMine, kBoth, kTheirs };
  struct Intruder {
    const char* what;
    std::function<void()> intrude;
    Outcome outcome = kMine;
  };
  const Intruder intruders[] = {
      {"an editor changed a value",
       [&] { RunSql(path, "UPDATE column_chunk SET doubles = zeroblob(800000)"); }},
      {"an editor swapped columns",
       [&] { RunSql(path, "UPDATE column_chunk SET variable = 100 - variable"); }},
      {"another project of equal history was copied over",
       [&] {
         Workbook other = PlainWorkbook(100'000, 2);
         other.SheetAt(0).VariableAt(1).MutableValues()[0] = 1e9;
         other.Save(folder / "other.bvw");
         std::filesystem::copy_file(folder / "other.bvw", path,
                                    std::filesystem::copy_options::overwrite_existing);
       },
       kBoth},
      {"the same program saved another project", [&] { PlainWorkbook(7, 1).Save(path); }, kTheirs},
      {"the file went away", [&] { std::filesystem::remove(path); }},
      {"the file lost its end", [&] { std::filesystem::resize_file(path, 100'000); }},
      {"the file became a text", [&] { WriteBytes(path, "no project"); }},
      {"the file became empty", [&] { WriteBytes(path, ""); }},
      {"an editor turned to a write-ahead log", [&] { RunSql(path, "PRAGMA journal_mode = WAL"); }},
  };
  for (const auto& [what, intrude, outcome] : intruders) {
    SCOPED_TRACE(what);
    Workbook workbook = PlainWorkbook(100'000, 2);
    workbook.Save(path);
    intrude();
    workbook.SheetAt(0).SetTitle(what);
    if (outcome == kTheirs) {
      workbook.SheetAt(0).VariableAt(0).MutableValues()[0] = 5;
      const std::string reason = ErrorOf([&] { workbook.Save(path); }).what();
      EXPECT_NE(reason.find("another program changed the sheet \"Data\""), std::string::npos) << reason;
      EXPECT_EQ(Workbook::Open(path).SheetAt(0).CaseCount(), 7U);
      workbook.Replace(path);
    } else {
      workbook.Save(path);
    }
    const Workbook saved = Workbook::Open(path);
    if (outcome == kBoth) {
      EXPECT_EQ(saved.SheetAt(0).Title(), what);
      EXPECT_EQ(saved.SheetAt(0).VariableAt(1).Values()[0], 1e9);
    } else {
      ExpectSameContent(workbook, saved);
    }
  }
}

TEST(WorkbookTest, OpensAndReplacesAFileWithAnUnfinishedWriteAheadLog) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  for (const bool replace : {false, true}) {
    Workbook workbook = RichWorkbook();
    workbook.Save(path);
    // Killed with its log still next to the file.
    ASSERT_EQ(RunInChild([&] {
                sqlite3* database = nullptr;
                sqlite3_open(path.c_str(), &database);
                sqlite3_exec(database, "PRAGMA journal_mode = WAL; UPDATE sheet SET title = 'logged'",
                             nullptr, nullptr, nullptr);
                return raise(SIGKILL);
              }),
              -SIGKILL);
    ASSERT_TRUE(std::filesystem::exists(folder / "p.bvw-wal"));
    if (replace) RichWorkbook().Save(path);
    EXPECT_EQ(Workbook::Open(path).SheetAt(0).Title(), replace ? workbook.SheetAt(0).Title() : "logged");
  }
}

TEST(WorkbookTest, SeesWhatAPersonEditedWithSql) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  Workbook workbook = PlainWorkbook(3, 2);
  workbook.SheetAt(0).VariableAt(1).SetProperty("Fit", "Weibull");
  workbook.SheetAt(0).VariableAt(1).SetProperty("Unit", "mm");
  workbook.SheetAt(0).SetWeightVariable(0);
  workbook.Save(path);

  RunSql(path,
         "UPDATE variable_property SET value = 'Gamma' WHERE sheet = 'Data' AND variable = 'Var2' AND key = "
         "'Fit';"
         "DELETE FROM variable_property WHERE key = 'Unit';"
         "INSERT INTO variable_property VALUES ('Data', 'Var2', 'Note', 'by hand');"
         "UPDATE sheet SET title = 'Edited'");
  EXPECT_EQ(QuerySql(path, "SELECT * FROM variable_property"), "Data|Var2|Fit|Gamma Data|Var2|Note|by hand ");
  const Workbook edited = Workbook::Open(path);
  using Properties = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(edited.SheetAt(0).VariableAt(1).Properties(),
            (Properties{{"Fit", "Gamma"}, {"Note", "by hand"}}));
  EXPECT_EQ(edited.SheetAt(0).Title(), "Edited");

  RunSql(path, "PRAGMA foreign_keys = ON; DELETE FROM variable WHERE name = 'Var1'");
  EXPECT_EQ(Workbook::Open(path).SheetAt(0).VariableCount(), 1U);
  EXPECT_FALSE(Workbook::Open(path).SheetAt(0).WeightVariable());

  // Values by another tool, which does not know the checksum.
  RunSql(path, "UPDATE column_chunk SET doubles = zeroblob(24); UPDATE variable SET checksum = NULL");
  EXPECT_EQ(Workbook::Open(path).SheetAt(0).VariableAt(0).Values()[2], 0);
}

TEST(WorkbookTest, OutlineSaysWhatTheSheetsAre) {
  const TemporaryFolder folder;
  const Workbook workbook = RichWorkbook();
  RichWorkbook().Save(folder / "p.bvw");
  const std::vector<SheetOutline> outline = Workbook::Outline(folder / "p.bvw");
  ASSERT_EQ(outline.size(), workbook.SheetCount());
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    EXPECT_EQ(outline[i].name, sheet.Name());
    EXPECT_EQ(outline[i].kind, sheet.Kind());
    EXPECT_EQ(outline[i].title, sheet.Title());
    EXPECT_EQ(outline[i].cases, sheet.CaseCount());
    EXPECT_EQ(outline[i].variables, sheet.VariableCount());
  }
}

TEST(WorkbookTest, NamesOfSheetsStayDistinct) {
  Workbook workbook;
  std::vector<std::string> names;
  for (const char* const name : {"Data", "Data", "", "Data (2)", "Data", ""}) {
    names.push_back(workbook.Add(std::make_unique<Spreadsheet>(name)).Name());
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{"Data", "Data (2)", " (2)", "Data (2) (2)", "Data (3)", " (3)"}));
  EXPECT_EQ(workbook.Find("data"), nullptr);
  EXPECT_EQ(workbook.Remove("Data")->Name(), "Data");
  EXPECT_EQ(workbook.Remove("Data"), nullptr);
  EXPECT_EQ(workbook.Find("Data (3)"), &workbook.SheetAt(3));
}

TEST(WorkbookTest, SaveFollowsLinksAndKeepsPermissions) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "real");
  RichWorkbook().Save(folder / "real/p.bvw");
  std::filesystem::permissions(folder / "real/p.bvw", std::filesystem::perms(0640));
  std::filesystem::create_symlink("real/p.bvw", folder / "link.bvw");
  std::filesystem::create_symlink("real/later.bvw", folder / "dangling.bvw");
  for (const char* const link : {"link.bvw", "dangling.bvw"}) {
    PlainWorkbook(4, 1).Save(folder / link);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / link));
    EXPECT_EQ(Workbook::Open(folder / link).SheetAt(0).CaseCount(), 4U);
  }
  EXPECT_TRUE(std::filesystem::is_regular_file(folder / "real/later.bvw"));
  EXPECT_EQ(std::filesystem::status(folder / "real/p.bvw").permissions(), std::filesystem::perms(0640));
}

TEST(WorkbookTest, RefusesToSaveWhatCouldNotBeReadAgain) {
  const TemporaryFolder folder;
  const std::pair<const char*, std::function<void(Workbook&)>> faults[] = {
      {"has the name of another sheet", [](Workbook& w) { w.SheetAt(1).SetName(w.SheetAt(0).Name()); }},
      {"differ in the number of cases", [](Workbook& w) { w.SheetAt(0).VariableAt(1).Resize(2, 0); }},
      {"weights its cases by", [](Workbook& w) { w.SheetAt(1).SetWeightVariable(0); }},
      {"has a case selection for",
       [](Workbook& w) {
         w.SheetAt(0).SetSelection({true, "", {1}});
       }},
  };
  RichWorkbook().Save(folder / "p.bvw");
  const std::string before = BytesOf(folder / "p.bvw");
  for (const auto& [message, spoil] : faults) {
    Workbook workbook = Workbook::Open(folder / "p.bvw");
    spoil(workbook);
    const Error error = ErrorOf([&] { workbook.Save(folder / "p.bvw"); });
    EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
    EXPECT_EQ(error.Where(), (folder / "p.bvw").string());
  }
  EXPECT_EQ(BytesOf(folder / "p.bvw"), before);
}

}  // namespace
}  // namespace brenvolt
