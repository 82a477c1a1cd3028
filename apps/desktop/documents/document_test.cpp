#include "apps/desktop/documents/document.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <csignal>
#include <cstring>
#include <fstream>
#include <string>

#include "apps/desktop/base/toolkit_support_test.h"
#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt::desktop {
namespace {

std::vector<double> ValuesOf(const Document& document, std::size_t variable) {
  const auto values = document.Content().SheetAt(0).VariableAt(variable).Values();
  return {values.begin(), values.end()};
}

template <class T>
Edits One(T edit) {
  Edits edits;
  edits.emplace_back(std::move(edit));
  return edits;
}

Edits Cell(std::size_t variable, std::size_t row, double value) {
  return One(SetCells{"Data", {{variable, row, {value}}}});
}

// Everything that an edit can be, over a sheet "Data" of three variables and ten cases.
std::vector<std::pair<const char*, Edits>> AllEdits() {
  std::vector<std::pair<const char*, Edits>> all;
  all.emplace_back("cells", Cell(1, 4, 0.1));
  VariableFacts facts{"Height", VariableType::kText, -9999, {{1, "low"}}, {{"zKey", "a;b"}, {"", ""}}};
  all.emplace_back("facts", One(SetFacts{"Data", {{2, facts}}}));
  all.emplace_back("conditions",
                   One(SetConditions{"Data", 1, {true, "v1 > 3", {1, 0, 1, 1, 1, 1, 1, 1, 1, 1}}}));
  SheetVariables variables;
  variables.variables.emplace_back("New", 10);
  variables.variables.back().MutableValues()[3] = std::bit_cast<double>(0x7ff8'0000'dead'beefULL);
  all.emplace_back("add variables", One(AddVariables{"Data", 1, std::move(variables)}));
  all.emplace_back("drop variables", One(DropVariables{"Data", 2, 1}));
  all.emplace_back("add cases", One(AddCases{"Data", 4, {2, {}, {}, {}}}));
  all.emplace_back("drop cases", One(DropCases{"Data", 0, 3}));
  auto sheet = std::make_unique<Spreadsheet>("Results", 2, 2);
  sheet->SetKind(SheetKind::kMatrix);
  sheet->SetTitle("Title");
  sheet->SetCaseNames({"a", "b"});
  all.emplace_back("add a sheet", One(AddSheet{0, std::move(sheet)}));
  all.emplace_back("rename", One(NameSheet{"Results", "Correlations"}));
  all.emplace_back("drop a sheet", One(DropSheet{"Correlations"}));
  return all;
}

struct DocumentTest : test::WithToolkit, testing::Test {
  TemporaryFolder folder;
  Document::Recovered Recovered(LeftJournal& left) const {
    return Document::Recover(Journals(), left, Document::ReadBase(left.Base()));
  }
  std::filesystem::path Journals() const { return folder / "journals"; }
  std::unique_ptr<Document> NewDocument() const {
    return Document::New(Journals(), std::make_unique<Spreadsheet>("Data", 10, 3));
  }
  std::string Saved(Document& document, const std::string& name = "compared.bvw") const {
    Workbook copy;
    for (std::size_t i = 0; i < document.Content().SheetCount(); ++i)
      copy.Add(std::make_unique<Spreadsheet>(document.Content().SheetAt(i)));
    copy.Save(folder / name);
    return BytesOf(folder / name);
  }
};

// The states on the way there are the states on the way back, and a killed process would leave each of them.
TEST_F(DocumentTest, EveryEditIsUndoneDoneAgainAndRecovered) {
  auto document = NewDocument();
  EXPECT_FALSE(document->IsModified());
  std::vector<std::string> states{Saved(*document)};
  for (auto& [what, edits] : AllEdits()) {
    SCOPED_TRACE(what);
    document->Do(what, std::move(edits));
    states.push_back(Saved(*document));
    EXPECT_TRUE(document->IsModified());
    EXPECT_NE(states.back(), states[states.size() - 2]);
  }
  const std::string last = states.back();
  for (std::size_t step = states.size() - 1; document->History().canUndo(); --step) {
    document->History().undo();
    EXPECT_EQ(Saved(*document), states[step - 1]) << step;
  }
  EXPECT_FALSE(document->IsModified());
  EXPECT_EQ(ValuesOf(*document, 1).size(), 10U);
  while (document->History().canRedo()) document->History().redo();
  EXPECT_EQ(Saved(*document), last);

  // A copy of the journal, as if the process had been killed.
  const auto journal = Journals() / "left.journal";
  for (const auto& entry : std::filesystem::directory_iterator(Journals())) {
    if (entry.path().extension() == ".journal") std::filesystem::copy_file(entry.path(), folder / "left");
  }
  std::filesystem::rename(folder / "left", journal);
  const auto left = LeftJournal::Take(journal);
  ASSERT_NE(left, nullptr);
  const auto recovered = Recovered(*left);
  EXPECT_TRUE(recovered.fitsFile);
  EXPECT_TRUE(recovered.document->IsModified());
  EXPECT_EQ(Saved(*recovered.document), last);
  EXPECT_FALSE(std::filesystem::exists(journal));
}

TEST_F(DocumentTest, ImpossibleEditsChangeNothing) {
  auto document = NewDocument();
  const std::string before = Saved(*document);
  Edits several = Cell(0, 0, 1);
  several.emplace_back(DropCases{"Data", 8, 3});
  std::vector<Edits> impossible;
  impossible.push_back(std::move(several));
  impossible.push_back(Cell(3, 0, 1));
  impossible.push_back(Cell(0, 10, 1));
  impossible.push_back(One(NameSheet{"Data", ""}));
  impossible.push_back(One(DropSheet{"None"}));
  impossible.push_back(One(AddSheet{0, std::make_unique<Spreadsheet>("Data")}));
  for (Edits& edits : impossible) {
    EXPECT_THROW(document->Do("Edit", std::move(edits)), Error);
    EXPECT_EQ(Saved(*document), before);
    EXPECT_FALSE(document->IsModified());
  }
  document->SetBusy(true);
  EXPECT_THROW(document->Do("Edit", Cell(0, 0, 1)), Error);
}

TEST_F(DocumentTest, SavingEndsTheJournalAndAFailedSaveKeepsIt) {
  auto document = NewDocument();
  document->Do("Edit", Cell(0, 0, 1));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Journals()), {}), 1);
  EXPECT_THROW(document->Save(folder / "no folder" / "a.bvw"), Error);
  EXPECT_TRUE(document->IsModified());
  EXPECT_THROW(document->Save(folder / "a.csv"), Error);
  document->Save(folder / "a.bvw");
  EXPECT_FALSE(document->IsModified());
  EXPECT_EQ(document->Title(), "a.bvw");
  EXPECT_TRUE(LeftJournals(Journals()).empty());
  EXPECT_FALSE(document->IsChangedOutside());
  Workbook other = Workbook::Open(folder / "a.bvw");
  other.SheetAt(0).SetTitle("By another program");
  other.Save(folder / "a.bvw");
  EXPECT_TRUE(document->IsChangedOutside());
  std::filesystem::remove(folder / "a.bvw");
  EXPECT_TRUE(document->IsChangedOutside());
  document->Do("Edit", Cell(0, 0, 2));
  document->Save(folder / "a.bvw");
  EXPECT_EQ(Workbook::Open(folder / "a.bvw").SheetAt(0).VariableAt(0).Values()[0], 2);
}

// While one exists, no file of this process grows beyond a size, as on a device that is full.
class FullDevice {
 public:
  explicit FullDevice(std::uintmax_t bytes) : former_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit full{bytes, limit_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
  }
  ~FullDevice() {
    setrlimit(RLIMIT_FSIZE, &limit_);
    signal(SIGXFSZ, former_);
  }
  FullDevice(const FullDevice&) = delete;
  FullDevice& operator=(const FullDevice&) = delete;

 private:
  void (*former_)(int);
  rlimit limit_{};
};

TEST_F(DocumentTest, AFullDeviceKeepsTheFileAndTheEdits) {
  auto document = NewDocument();
  const auto file = folder / "a.bvw";
  document->Do("Edit", Cell(0, 0, 1));
  document->Save(file);
  const std::string saved = BytesOf(file);
  document->Do("Longer", One(AddCases{"Data", 10, {100'000, {}, {}, {}}}));
  {
    const FullDevice full(saved.size() + 10'000);
    try {
      document->Save(file);
      ADD_FAILURE() << "saved";
    } catch (const Error& error) {
      EXPECT_EQ(error.Where(), file.string()) << error.what();
    }
  }
  EXPECT_TRUE(document->IsModified());
  EXPECT_EQ(BytesOf(file), saved);
  EXPECT_EQ(Workbook::Open(file).SheetAt(0).CaseCount(), 10U);
  document->Save(file);
  EXPECT_EQ(Workbook::Open(file).SheetAt(0).CaseCount(), 100'010U);
  EXPECT_TRUE(std::filesystem::is_empty(Journals()));
}

// The edits go on, and the person is told that a crash would lose them.
TEST_F(DocumentTest, AJournalThatCannotGrowIsSaidOnceAndEditingGoesOn) {
  auto document = NewDocument();
  int said = 0;
  QObject::connect(document.get(), &Document::journalFailed, [&](const QString&) { ++said; });
  const FullDevice full(100);
  for (int n = 1; n <= 3; ++n) document->Do("Edit", Cell(0, 0, n));
  EXPECT_EQ(said, 1);
  EXPECT_EQ(ValuesOf(*document, 0)[0], 3);
  document->History().undo();
  EXPECT_EQ(ValuesOf(*document, 0)[0], 2);
}

// What a job does to the workbook is one step of the history: properties, and a matrix that replaces another.
TEST_F(DocumentTest, WhatAJobChangesIsUndoneAsOneStep) {
  auto document = NewDocument();
  const auto matrix = [](double correlation) {
    auto sheet = std::make_unique<Spreadsheet>("Matrix", 6, 2);
    sheet->SetKind(SheetKind::kMatrix);
    sheet->VariableAt(0).MutableValues()[1] = correlation;
    return sheet;
  };
  document->Change("First", [&](Workbook& workbook) {
    workbook.SheetAt(0).VariableAt(1).SetProperty("zOrder", "Normal");
    PutCorrelationMatrix(workbook, "Data", matrix(0.25));
  });
  const std::string first = Saved(*document);
  document->Change("Second", [&](Workbook& workbook) {
    workbook.SheetAt(0).VariableAt(1).SetProperty("zOrder", "Weibull");
    PutCorrelationMatrix(workbook, "Data", matrix(0.5));
  });
  const std::string second = Saved(*document);
  EXPECT_EQ(document->Content().SheetCount(), 2U);
  document->Change("Nothing", [](Workbook&) {});
  EXPECT_EQ(document->History().count(), 2);
  document->History().undo();
  EXPECT_EQ(Saved(*document), first);
  document->History().redo();
  EXPECT_EQ(Saved(*document), second);
}

// Kills a process at a time of its own while `work` goes on in it.
void KillDuring(const std::function<void()>& work, int microseconds) {
  const pid_t child = fork();
  if (child == 0) {
    try {
      work();
    } catch (...) {
    }
    _exit(0);
  }
  usleep(static_cast<useconds_t>(microseconds));
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
}

// The n-th edit sets a cell to n and the next one to its double; every tenth is followed by a save.
TEST_F(DocumentTest, KilledWhileEditingAndSavingNothingIsLost) {
  const auto file = folder / "killed.bvw";
  const auto said = folder / "said";
  {
    auto document = NewDocument();
    document->Save(file);
  }
  int recoveries = 0;
  double found = 0;
  for (int run = 0; run < 30; ++run) {
    // Until its first edit a process stands where the one before it stood.
    WriteBytes(said, std::to_string(static_cast<int>(found)));
    KillDuring(
        [&] {
          auto document = Document::Open(Journals(), Document::Read(file, false));
          std::fstream count(said);
          for (int n = static_cast<int>(document->Content().SheetAt(0).VariableAt(0).Values()[0]) + 1;; ++n) {
            Edits edits = Cell(0, 0, n);
            edits.emplace_back(SetCells{"Data", {{1, 0, {2.0 * n}}}});
            document->Do("Edit", std::move(edits));
            count.seekp(0);
            count << n << std::flush;
            if (n % 10 == 0) document->Save(file);
          }
        },
        20000 + 1700 * run);
    double done = 0;
    std::ifstream(said) >> done;
    auto left = LeftJournals(Journals());
    ASSERT_LE(left.size(), 1U);
    std::unique_ptr<Document> document;
    if (left.empty()) {
      document = Document::Open(Journals(), Document::Read(file, false));
    } else {
      ++recoveries;
      auto recovered = Recovered(*left[0]);
      EXPECT_TRUE(recovered.fitsFile);
      document = std::move(recovered.document);
    }
    found = ValuesOf(*document, 0)[0];
    EXPECT_GE(found, done) << run;
    EXPECT_LE(found, done + 1) << run;
    EXPECT_TRUE(found == 0 || ValuesOf(*document, 1)[0] == 2 * found) << found;
    document->Save(file);
  }
  EXPECT_GT(recoveries, 5);
  EXPECT_TRUE(LeftJournals(Journals()).empty());
  EXPECT_TRUE(std::filesystem::is_empty(Journals()));
}

TEST_F(DocumentTest, JournalsThatDoNotFitAreSaidToAndDamagedOnesEndEarly) {
  const auto file = folder / "a.bvw";
  const auto copy = Journals() / "copy.journal";
  {
    auto document = NewDocument();
    document->Save(file);
    document->Do("Edit", Cell(0, 0, 1));
    document->Do("Edit", Cell(2, 9, 2));
    EXPECT_TRUE(LeftJournals(Journals()).empty());  // it belongs to this process
    for (const auto& entry : std::filesystem::directory_iterator(Journals())) {
      if (entry.path().extension() == ".journal") std::filesystem::copy_file(entry.path(), folder / "bytes");
    }
  }
  const std::string whole = BytesOf(folder / "bytes");
  std::size_t fewest = 2;
  for (std::size_t length = whole.size(); length > 0; length -= std::min<std::size_t>(length, 7)) {
    WriteBytes(copy, whole.substr(0, length));
    const auto left = LeftJournal::Take(copy);
    const std::size_t edits = left == nullptr ? 0 : left->EditCount();
    EXPECT_LE(edits, fewest);
    fewest = edits;
    EXPECT_EQ(left == nullptr, !std::filesystem::exists(copy));
  }
  EXPECT_EQ(fewest, 0U);

  Workbook other = Workbook::Open(file);
  RemoveVariables(other.SheetAt(0), 2, 1);
  other.Save(file);
  WriteBytes(copy, whole);
  const auto left = LeftJournal::Take(copy);
  const auto recovered = Recovered(*left);
  EXPECT_FALSE(recovered.fitsFile);
  EXPECT_EQ(recovered.edits, 1U);
  EXPECT_TRUE(std::filesystem::exists(copy));  // what could not be done is not thrown away
}

// Once the person has saved what could be made, it is not offered again.
TEST_F(DocumentTest, EditsThatWereRecoveredOverAnotherFileAreGoneOnceTheyAreSaved) {
  const auto file = folder / "a.bvw";
  const auto copy = Journals() / "copy.journal";
  NewDocument()->Save(file);
  {
    auto document = Document::Open(Journals(), Document::Read(file, false));
    document->Do("Edit", Cell(0, 0, 1));
    for (const auto& entry : std::filesystem::directory_iterator(Journals())) {
      if (entry.path().extension() == ".journal") std::filesystem::copy_file(entry.path(), folder / "bytes");
    }
  }
  std::filesystem::rename(folder / "bytes", copy);
  Workbook other = Workbook::Open(file);
  other.SheetAt(0).SetTitle("By another program");
  other.Save(file);
  auto left = LeftJournals(Journals());
  ASSERT_EQ(left.size(), 1U);
  const auto recovered = Recovered(*left[0]);
  left.clear();
  EXPECT_FALSE(recovered.fitsFile);
  EXPECT_TRUE(std::filesystem::exists(copy));
  recovered.document->Save(file);
  EXPECT_EQ(LeftJournals(Journals()).size(), 0U);
  EXPECT_TRUE(std::filesystem::is_empty(Journals()));
}

// Their version stands behind the four bytes that tell what the file is.
TEST_F(DocumentTest, JournalsOfAnotherVersionAreKeptAndTold) {
  std::filesystem::create_directories(Journals());
  const auto newer = Journals() / "newer.journal";
  const std::string bytes = std::string("BRVJ\0\0\0\7", 8) + " of which nothing else is known";
  WriteBytes(newer, bytes);
  WriteBytes(Journals() / "cut.journal", "BRVJ");
  EXPECT_TRUE(LeftJournals(Journals()).empty());
  EXPECT_EQ(JournalsOfOtherVersions(Journals()), std::vector<std::filesystem::path>{newer});
  EXPECT_EQ(BytesOf(newer), bytes);
  EXPECT_FALSE(std::filesystem::exists(Journals() / "cut.journal"));
}

TEST_F(DocumentTest, AStepThatCanNoLongerBeUndoneIsTold) {
  auto document = NewDocument();
  QStringList told;
  QObject::connect(document.get(), &Document::stepLost, [&](const QString& why) { told << why; });
  document->Do("Typing", Cell(2, 9, 1));
  RemoveVariables(document->Content().SheetAt(0), 2, 1);
  document->History().undo();
  ASSERT_EQ(told.size(), 1);
  EXPECT_TRUE(told[0].contains("Typing")) << told[0].toStdString();
  EXPECT_FALSE(document->History().canRedo());
}

}  // namespace
}  // namespace brenvolt::desktop
