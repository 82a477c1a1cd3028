#include "host/tables/workbook_merge.h"

#include <gtest/gtest.h>

#include "host/tables/workbook_support_test.h"

namespace brenvolt {
namespace {

using Change = std::function<void(Workbook&)>;

void AddSheet(Workbook& workbook, const char* name, double value) {
  auto sheet = std::make_unique<Spreadsheet>(name, 1, 1);
  sheet->VariableAt(0).AssignValues({value});
  workbook.Add(std::move(sheet));
}

Variable Named(const char* name, std::size_t cases) {
  return {name, cases};
}

// What two programs did to one project, and what it then is: a workbook to which `expected` was done.
struct Meeting {
  const char* what;
  Change theirs;
  Change mine;
  Change expected;  // none: the second save is refused
};

const Meeting kMeetings[] = {
    {"fits of different variables",
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).SetProperty("fit", "theirs"); },
     [](Workbook& w) { w.SheetAt(0).VariableAt(1).SetProperty("fit", "mine"); },
     [](Workbook& w) {
       w.SheetAt(0).VariableAt(0).SetProperty("fit", "theirs");
       w.SheetAt(0).VariableAt(1).SetProperty("fit", "mine");
     }},
    {"fits of one variable: the last one, whole",
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).SetProperty("a", "theirs"); },
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).SetProperty("b", "mine"); },
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).SetProperty("b", "mine"); }},
    {"values beside a fit", [](Workbook& w) { w.SheetAt(0).VariableAt(0).MutableValues()[0] = 9; },
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).SetProperty("b", "mine"); },
     [](Workbook& w) {
       w.SheetAt(0).VariableAt(0).MutableValues()[0] = 9;
       w.SheetAt(0).VariableAt(0).SetProperty("b", "mine");
     }},
    {"one variable's values, twice", [](Workbook& w) { w.SheetAt(0).VariableAt(0).MutableValues()[0] = 9; },
     [](Workbook& w) { w.SheetAt(0).VariableAt(0).MutableValues()[1] = 8; }, nullptr},
    {"different numbers of cases", [](Workbook& w) { w.SheetAt(0).AddCases(1); },
     [](Workbook& w) { w.SheetAt(0).AddCases(2); }, nullptr},
    {"cases beside a fit", [](Workbook& w) { w.SheetAt(0).VariableAt(1).SetProperty("a", "theirs"); },
     [](Workbook& w) { w.SheetAt(0).AddCases(2); }, [](Workbook& w) { w.SheetAt(0).AddCases(2); }},
    {"new variables", [](Workbook& w) { w.SheetAt(0).AddVariable(Named("theirs", 3)); },
     [](Workbook& w) { w.SheetAt(0).AddVariable(Named("mine", 3)); },
     [](Workbook& w) {
       w.SheetAt(0).AddVariable(Named("theirs", 3));
       w.SheetAt(0).AddVariable(Named("mine", 3));
     }},
    {"new sheets", [](Workbook& w) { AddSheet(w, "theirs", 1); }, [](Workbook& w) { AddSheet(w, "mine", 2); },
     [](Workbook& w) {
       AddSheet(w, "theirs", 1);
       AddSheet(w, "mine", 2);
     }},
    {"new sheets of one name with other data", [](Workbook& w) { AddSheet(w, "new", 1); },
     [](Workbook& w) { AddSheet(w, "new", 2); }, nullptr},
    {"a sheet gone that nobody changed", [](Workbook& w) { w.SheetAt(0).SetTitle("theirs"); },
     [](Workbook& w) { w.Remove("Other"); },
     [](Workbook& w) {
       w.SheetAt(0).SetTitle("theirs");
       w.Remove("Other");
     }},
    {"a sheet gone that the other changed", [](Workbook& w) { w.Find("Other")->SetTitle("theirs"); },
     [](Workbook& w) { w.Remove("Other"); }, [](Workbook& w) { w.Find("Other")->SetTitle("theirs"); }},
    {"weights and selection", [](Workbook& w) { w.SheetAt(0).SetWeightVariable(1); },
     [](Workbook& w) {
       w.SheetAt(0).SetSelection({true, "v1 > 0", {0, 1, 1}});
     },
     [](Workbook& w) {
       w.SheetAt(0).SetWeightVariable(1);
       w.SheetAt(0).SetSelection({true, "v1 > 0", {0, 1, 1}});
     }},
};

Workbook Common() {
  Workbook workbook = PlainWorkbook(3, 2);
  workbook.Add(std::make_unique<Spreadsheet>("Other", 2, 1));
  return workbook;
}

TEST(WorkbookMergeTest, SaveKeepsWhatAnotherProgramSavedSinceTheProjectWasRead) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  for (const auto& [what, theirs, mine, expected] : kMeetings) {
    SCOPED_TRACE(what);
    Common().Replace(path);
    Workbook first = Workbook::Open(path);
    Workbook second = Workbook::Open(path);
    theirs(first);
    mine(second);
    first.Save(path);
    if (!expected) {
      EXPECT_NE(
          std::string(ErrorOf([&] { second.Save(path); }).what()).find("save the project under another name"),
          std::string::npos);
      ExpectSameContent(first, Workbook::Open(path));
      continue;
    }
    second.Save(path);
    Workbook wanted = Common();
    expected(wanted);
    ExpectSameContent(wanted, Workbook::Open(path));
    // Who has merged once does so again.
    second.SheetAt(0).VariableAt(1).SetProperty("later", "mine");
    wanted.SheetAt(0).VariableAt(1).SetProperty("later", "mine");
    second.Save(path);
    first = Workbook::Open(path);
    EXPECT_EQ(first.SheetAt(0).VariableAt(1).Property("later"), "mine");
    EXPECT_EQ(first.SheetCount(), wanted.SheetCount());
    EXPECT_EQ(first.SheetAt(0).VariableCount(), wanted.SheetAt(0).VariableCount());
  }
}

}  // namespace
}  // namespace brenvolt
