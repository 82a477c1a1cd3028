#include "apps/desktop/documents/edit_stream.h"

#include <QDataStream>
#include <algorithm>
#include <bit>
#include <cstdint>

#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

// Puts fields into bytes, or replaces them by what stands in the bytes.
class Fields {
 public:
  Fields(QIODevice& device, bool reads) : stream_(&device), reads_(reads), size_(device.size()) {
    stream_.setVersion(QDataStream::Qt_6_0);
  }

  bool WroteAll() const { return stream_.status() == QDataStream::Ok; }

  void operator()(bool& flag) { Number<quint8>(flag); }
  void operator()(std::uint8_t& flag) { Number<quint8>(flag); }
  void operator()(std::size_t& number) { Number<quint64>(number); }
  void operator()(double& value) {
    auto bits = std::bit_cast<std::uint64_t>(value);
    Number<quint64>(bits);
    value = std::bit_cast<double>(bits);
  }
  void operator()(std::string& text) {
    QByteArray bytes = QByteArray::fromStdString(text);
    Bytes(bytes);
    if (reads_) text = bytes.toStdString();
  }
  void operator()(std::vector<double>& values) {
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(values.data()),
                                               static_cast<qsizetype>(values.size() * sizeof(double)));
    Bytes(bytes);
    if (!reads_) return;
    values.resize(static_cast<std::size_t>(bytes.size()) / sizeof(double));
    const std::size_t length = values.size() * sizeof(double);
    std::copy_n(bytes.constData(), length, reinterpret_cast<char*>(values.data()));
  }
  template <class T>
  void operator()(std::optional<T>& value) {
    bool isThere = value.has_value();
    (*this)(isThere);
    if (reads_ && isThere) value.emplace();
    if (isThere) (*this)(*value);
  }
  template <class First, class Second>
  void operator()(std::pair<First, Second>& pair) {
    (*this)(pair.first);
    (*this)(pair.second);
  }
  template <class T>
  void operator()(std::vector<T>& items) {
    items.resize(Count(items.size()));
    for (T& item : items) (*this)(item);
  }

  void operator()(VariableFacts& facts) {
    (*this)(facts.name);
    bool isText = facts.type == VariableType::kText;
    (*this)(isText);
    facts.type = isText ? VariableType::kText : VariableType::kNumeric;
    (*this)(facts.missingCode);
    std::vector<std::pair<double, std::string>> labels(facts.labels.begin(), facts.labels.end());
    (*this)(labels);
    facts.labels = {labels.begin(), labels.end()};
    (*this)(facts.properties);
  }
  void operator()(CellRun& run) {
    (*this)(run.variable);
    (*this)(run.firstCase);
    (*this)(run.values);
  }
  void operator()(CaseSelection& selection) {
    (*this)(selection.enabled);
    (*this)(selection.condition);
    (*this)(selection.accepted);
  }
  void operator()(Variable& variable) {
    VariableFacts facts = FactsOf(variable);
    (*this)(facts);
    std::vector<double> values(variable.Values().begin(), variable.Values().end());
    (*this)(values);
    if (!reads_) return;
    GiveFacts(facts, variable);
    variable.AssignValues(std::move(values));
  }
  void operator()(SheetVariables& variables) {
    const std::size_t count = Count(variables.variables.size());
    if (reads_) variables.variables.assign(count, Variable({}, 0));
    for (Variable& variable : variables.variables) (*this)(variable);
    (*this)(variables.weight);
  }
  void operator()(SheetCases& cases) {
    (*this)(cases.count);
    (*this)(cases.values);
    (*this)(cases.names);
    (*this)(cases.accepted);
  }
  void operator()(std::unique_ptr<Spreadsheet>& sheet) {
    std::string name = reads_ ? std::string() : sheet->Name();
    std::size_t cases = reads_ ? 0 : sheet->CaseCount();
    (*this)(name);
    (*this)(cases);
    if (reads_) sheet = std::make_unique<Spreadsheet>(name, cases);
    SheetTexts(*sheet);
    SheetVariableList(*sheet);
    CaseNames(*sheet);
  }

  void operator()(SetCells& edit) { All(edit.sheet, edit.runs); }
  void operator()(SetFacts& edit) { All(edit.sheet, edit.variables); }
  void operator()(SetConditions& edit) { All(edit.sheet, edit.weight, edit.selection); }
  void operator()(AddVariables& edit) { All(edit.sheet, edit.at, edit.variables); }
  void operator()(DropVariables& edit) { All(edit.sheet, edit.at, edit.count); }
  void operator()(AddCases& edit) { All(edit.sheet, edit.at, edit.cases); }
  void operator()(DropCases& edit) { All(edit.sheet, edit.at, edit.count); }
  void operator()(AddSheet& edit) { All(edit.at, edit.sheet); }
  void operator()(DropSheet& edit) { All(edit.sheet); }
  void operator()(NameSheet& edit) { All(edit.sheet, edit.name); }

  void operator()(Edit& edit) {
    std::size_t kind = edit.index();
    (*this)(kind);
    if (reads_) edit = EmptyEdit(kind);
    std::visit(*this, edit);
  }

 private:
  template <class... Members>
  void All(Members&... members) {
    ((*this)(members), ...);
  }

  template <class Stored, class T>
  void Number(T& value) {
    auto stored = static_cast<Stored>(value);
    if (reads_) {
      stream_ >> stored;
      Require();
      value = static_cast<T>(stored);
    } else {
      stream_ << stored;
    }
  }

  void Bytes(QByteArray& bytes) {
    if (reads_) {
      stream_ >> bytes;
      Require();
    } else {
      stream_ << bytes;
    }
  }

  // Each of the things that are counted takes a byte at least.
  std::size_t Count(std::size_t count) {
    (*this)(count);
    if (reads_ && count > static_cast<std::size_t>(size_)) throw Error("the journal is damaged");
    return count;
  }

  void Require() const {
    if (stream_.status() != QDataStream::Ok) throw Error("the journal is damaged");
  }

  void SheetTexts(Spreadsheet& sheet) {
    bool isMatrix = sheet.Kind() == SheetKind::kMatrix;
    std::string title = sheet.Title();
    std::string header = sheet.Header();
    All(isMatrix, title, header);
    if (!reads_) return;
    sheet.SetKind(isMatrix ? SheetKind::kMatrix : SheetKind::kData);
    sheet.SetTitle(std::move(title));
    sheet.SetHeader(std::move(header));
  }

  void SheetVariableList(Spreadsheet& sheet) {
    const std::size_t count = Count(sheet.VariableCount());
    for (std::size_t i = 0; i < count; ++i) {
      Variable read({}, 0);
      (*this)(reads_ ? read : sheet.VariableAt(i));
      if (reads_) sheet.AddVariable(std::move(read));
    }
    std::optional<std::size_t> weight = sheet.WeightVariable();
    CaseSelection selection = sheet.Selection();
    All(weight, selection);
    if (!reads_) return;
    sheet.SetWeightVariable(weight);
    sheet.SetSelection(std::move(selection));
  }

  void CaseNames(Spreadsheet& sheet) {
    bool areNumbered = sheet.AreCasesNumbered();
    std::vector<std::string> names;
    if (!reads_ && !areNumbered && sheet.HasCaseNames()) {
      for (std::size_t i = 0; i < sheet.CaseCount(); ++i) names.push_back(sheet.CaseName(i));
    }
    All(areNumbered, names);
    if (!reads_) return;
    if (!names.empty()) sheet.SetCaseNames(std::move(names));
    if (areNumbered) sheet.NumberCases();
  }

  template <std::size_t kind = 0>
  static Edit EmptyEdit(std::size_t wanted) {
    if constexpr (kind == std::variant_size_v<Edit>) {
      throw Error("the journal is damaged");
    } else {
      return wanted == kind ? Edit(std::in_place_index<kind>) : EmptyEdit<kind + 1>(wanted);
    }
  }

  QDataStream stream_;
  bool reads_;
  qint64 size_;
};

}  // namespace

void WriteEdits(Edits& edits, QIODevice& device) {
  Fields fields(device, false);
  fields(edits);
  if (!fields.WroteAll()) throw Error("the edits cannot be written");
}

Edits ReadEdits(QIODevice& device) {
  Fields fields(device, true);
  Edits edits;
  fields(edits);
  return edits;
}

}  // namespace brenvolt::desktop
