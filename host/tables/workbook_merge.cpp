#include "host/tables/workbook_merge.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <optional>
#include <string_view>

#include "host/base/error.h"

namespace brenvolt {
namespace {

class Digest {
 public:
  Digest& Add(std::string_view text) { return Put(std::hash<std::string_view>{}(text)); }
  Digest& Add(double number) { return Put(std::bit_cast<std::uint64_t>(number)); }
  Digest& Add(std::size_t number) { return Put(number); }
  std::size_t Value() const { return value_; }

 private:
  // Steele, Lea & Flood (2014), the finalizer of SplitMix.
  Digest& Put(std::uint64_t word) {
    value_ = (value_ ^ word) + 0x9E3779B97F4A7C15ULL;
    value_ = (value_ ^ value_ >> 30) * 0xBF58476D1CE4E5B9ULL;
    value_ = (value_ ^ value_ >> 27) * 0x94D049BB133111EBULL;
    value_ ^= value_ >> 31;
    return *this;
  }
  std::uint64_t value_ = 0;
};

VariableMemory Remember(const Variable& variable, const StoredColumns& columns) {
  VariableMemory memory;
  memory.name = variable.Name();
  const auto known = columns.find(variable.ContentStamp());
  memory.checksum = known != columns.end() ? known->second.checksum : ColumnChecksum(variable.Values());
  Digest about;
  about.Add(static_cast<std::size_t>(variable.Type())).Add(variable.MissingCode());
  for (const auto& [value, text] : variable.Labels()) about.Add(value).Add(text);
  memory.about = about.Value();
  memory.properties = variable.Properties();
  return memory;
}

SheetMemory Remember(const Spreadsheet& sheet, const StoredColumns& columns) {
  SheetMemory memory;
  memory.name = sheet.Name();
  memory.cases = sheet.CaseCount();
  Digest about;
  about.Add(static_cast<std::size_t>(sheet.Kind())).Add(sheet.Title()).Add(sheet.Header());
  about.Add(std::size_t{sheet.AreCasesNumbered()});
  if (sheet.HasCaseNames() && !sheet.AreCasesNumbered()) {
    for (std::size_t i = 0; i < sheet.CaseCount(); ++i) about.Add(sheet.CaseName(i));
  }
  memory.about = about.Value();
  const CaseSelection& selection = sheet.Selection();
  if (const auto place = sheet.WeightVariable()) {
    Digest weight;
    memory.weight = weight.Add(*place).Add(sheet.VariableAt(*place).Name()).Value();
  }
  Digest selected;
  selected.Add(std::size_t{selection.enabled}).Add(selection.condition);
  selected.Add(
      std::string_view(reinterpret_cast<const char*>(selection.accepted.data()), selection.accepted.size()));
  memory.selection = selected.Value();
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i)
    memory.variables.push_back(Remember(sheet.VariableAt(i), columns));
  return memory;
}

bool SameContent(const VariableMemory& a, const VariableMemory& b) {
  return a.checksum == b.checksum && a.about == b.about;
}

bool SameData(const SheetMemory& a, const SheetMemory& b) {
  return a.cases == b.cases && std::ranges::equal(a.variables, b.variables, [](const auto& x, const auto& y) {
           return x.name == y.name && SameContent(x, y);
         });
}

// The variable of a sheet that another sheet has at `place`: names may occur more than once.
std::optional<std::size_t> Counterpart(const SheetMemory* sheet, const SheetMemory& other,
                                       std::size_t place) {
  if (sheet == nullptr) return std::nullopt;
  const auto isNamed = [&](const VariableMemory& variable) {
    return variable.name == other.variables[place].name;
  };
  auto before = std::count_if(other.variables.begin(),
                              other.variables.begin() + static_cast<std::ptrdiff_t>(place), isNamed);
  for (std::size_t i = 0; i < sheet->variables.size(); ++i) {
    if (isNamed(sheet->variables[i]) && before-- == 0) return i;
  }
  return std::nullopt;
}

// One sheet as another program saved it, as it is here, and as both once had it, if they had.
struct Side {
  const Spreadsheet* sheet;
  const SheetMemory* memory;
};

class SheetMerge {
 public:
  SheetMerge(Side theirs, Side mine, const SheetMemory* base, const std::string& file)
      : theirs_(theirs), mine_(mine), base_(base), file_(file) {}

  std::unique_ptr<Spreadsheet> Merged() const {
    if (base_ != nullptr && *mine_.memory == *base_) return Copy(theirs_);
    const bool theirsIsOld = base_ != nullptr && SameData(*theirs_.memory, *base_);
    const bool mineIsOld = base_ != nullptr && SameData(*mine_.memory, *base_);
    if (mine_.sheet->Kind() == SheetKind::kMatrix) return Copy(mine_);
    if (mine_.memory->cases != theirs_.memory->cases && theirsIsOld) return Copy(mine_);
    if (mine_.memory->cases != theirs_.memory->cases && !mineIsOld) Refuse();
    auto merged = std::make_unique<Spreadsheet>(theirs_.sheet->Name(), theirs_.memory->cases);
    PutTexts(*merged);
    PutVariables(*merged);
    PutConditions(*merged);
    return merged;
  }

 private:
  [[noreturn]] void Refuse() const {
    throw Error(
        "another program changed the sheet \"" + mine_.sheet->Name() +
            "\" since it was read, and it was changed here as well; save the project under another name",
        file_);
  }

  static std::unique_ptr<Spreadsheet> Copy(const Side& side) {
    return std::make_unique<Spreadsheet>(*side.sheet);
  }

  void PutTexts(Spreadsheet& merged) const {
    const bool isMine = (base_ == nullptr || mine_.memory->about != base_->about) &&
                        mine_.memory->cases == theirs_.memory->cases;
    const Spreadsheet& from = isMine ? *mine_.sheet : *theirs_.sheet;
    merged.SetKind(from.Kind());
    merged.SetTitle(from.Title());
    merged.SetHeader(from.Header());
    if (from.AreCasesNumbered()) {
      merged.NumberCases();
    } else if (from.HasCaseNames()) {
      std::vector<std::string> names;
      for (std::size_t i = 0; i < from.CaseCount(); ++i) names.push_back(from.CaseName(i));
      merged.SetCaseNames(std::move(names));
    }
  }

  void PutVariables(Spreadsheet& merged) const {
    for (std::size_t i = 0; i < theirs_.memory->variables.size(); ++i) {
      const VariableMemory& now = theirs_.memory->variables[i];
      const auto here = Counterpart(mine_.memory, *theirs_.memory, i);
      const auto once = Counterpart(base_, *theirs_.memory, i);
      const VariableMemory* former = once ? &base_->variables[*once] : nullptr;
      const bool isRemovedHere = !here && former != nullptr && now == *former;
      if (isRemovedHere) continue;
      merged.AddVariable(here ? MergedVariable(i, *here, former) : theirs_.sheet->VariableAt(i));
    }
    for (std::size_t i = 0; i < mine_.memory->variables.size(); ++i) {
      if (Counterpart(theirs_.memory, *mine_.memory, i)) continue;
      const auto once = Counterpart(base_, *mine_.memory, i);
      const bool isRemovedThere = once && mine_.memory->variables[i] == base_->variables[*once];
      if (!isRemovedThere) Add(merged, mine_.sheet->VariableAt(i));
    }
  }

  Variable MergedVariable(std::size_t theirPlace, std::size_t myPlace, const VariableMemory* former) const {
    const VariableMemory& there = theirs_.memory->variables[theirPlace];
    const VariableMemory& here = mine_.memory->variables[myPlace];
    const Variable& own = mine_.sheet->VariableAt(myPlace);
    const bool differs = !SameContent(there, here);
    const bool isChangedHere = differs && (former == nullptr || !SameContent(here, *former));
    const bool isChangedThere = differs && (former == nullptr || !SameContent(there, *former));
    if (isChangedHere && (isChangedThere || own.Size() != theirs_.memory->cases)) Refuse();
    Variable merged = isChangedHere ? own : theirs_.sheet->VariableAt(theirPlace);
    const bool isMine = former == nullptr || here.properties != former->properties;
    const auto& wanted = isMine ? here.properties : there.properties;
    const auto given = merged.Properties();
    if (given == wanted) return merged;
    for (const auto& [key, value] : given) merged.RemoveProperty(key);
    for (const auto& [key, value] : wanted) merged.SetProperty(key, value);
    return merged;
  }

  void Add(Spreadsheet& merged, const Variable& variable) const {
    if (variable.Size() != merged.CaseCount()) Refuse();
    merged.AddVariable(variable);
  }

  void PutConditions(Spreadsheet& merged) const {
    const bool isMyWeight = base_ == nullptr || mine_.memory->weight != base_->weight;
    const Spreadsheet& weighing = isMyWeight ? *mine_.sheet : *theirs_.sheet;
    if (const auto weight = weighing.WeightVariable())
      merged.SetWeightVariable(merged.FindVariable(weighing.VariableAt(*weight).Name()));
    const bool isMySelection = base_ == nullptr || mine_.memory->selection != base_->selection;
    const CaseSelection& selection = (isMySelection ? mine_ : theirs_).sheet->Selection();
    const std::size_t flags = selection.accepted.size();
    if (flags != 0 && flags != merged.CaseCount()) Refuse();
    merged.SetSelection(selection);
  }

  Side theirs_;
  Side mine_;
  const SheetMemory* base_;
  const std::string& file_;
};

const SheetMemory* Find(const ProjectMemory& sheets, std::string_view name) {
  const auto found = std::ranges::find(sheets, name, &SheetMemory::name);
  return found == sheets.end() ? nullptr : &*found;
}

}  // namespace

ProjectMemory RememberSheets(SheetList sheets, const StoredColumns& columns) {
  ProjectMemory memory;
  for (const auto& sheet : sheets) memory.push_back(Remember(*sheet, columns));
  return memory;
}

void MergeSheets(std::vector<std::unique_ptr<Spreadsheet>>& theirs, const ProjectMemory& theirMemory,
                 SheetList mine, const ProjectMemory& myMemory, const ProjectMemory& base,
                 const std::string& file) {
  std::vector<std::unique_ptr<Spreadsheet>> merged;
  for (std::size_t i = 0; i < theirMemory.size(); ++i) {
    const SheetMemory& there = theirMemory[i];
    const SheetMemory* former = Find(base, there.name);
    const SheetMemory* here = Find(myMemory, there.name);
    const bool isRemovedHere = here == nullptr && former != nullptr && there == *former;
    if (isRemovedHere) continue;
    if (here == nullptr || there == *here) {
      merged.push_back(std::move(theirs[i]));
      continue;
    }
    const Side own{mine[static_cast<std::size_t>(here - myMemory.data())].get(), here};
    merged.push_back(SheetMerge({theirs[i].get(), &there}, own, former, file).Merged());
  }
  for (std::size_t i = 0; i < myMemory.size(); ++i) {
    if (Find(theirMemory, myMemory[i].name) != nullptr) continue;
    const SheetMemory* former = Find(base, myMemory[i].name);
    const bool isRemovedThere = former != nullptr && myMemory[i] == *former;
    if (!isRemovedThere) merged.push_back(std::make_unique<Spreadsheet>(*mine[i]));
  }
  theirs = std::move(merged);
}

}  // namespace brenvolt
