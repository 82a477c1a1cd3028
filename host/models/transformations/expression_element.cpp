#include "host/models/transformations/expression_element.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "host/models/document/arrays.h"

namespace brenvolt::pmml {
namespace {

Operand ConstantOf(const std::string& text, std::optional<TypeInfo> type, const Place& place,
                   const Element& at) {
  Operand operand;
  operand.literal = text;
  if (type) {
    operand.type = *type;
  } else {
    operand.type = ReadReal(text) ? kDouble : kText;
  }
  operand.slot = place.Build().Constant(place.Build().ValueOf(text, operand.type, at));
  return operand;
}

Operand MissingConstant(std::optional<TypeInfo> type, const Place& place) {
  Operand operand;
  operand.type = type.value_or(kDouble);
  operand.slot = place.Build().Constant(kMissing);
  return operand;
}

// `operand` with its missing values replaced, where `replacement` is given.
Operand Replacing(const Operand& operand, std::optional<std::string_view> replacement, const Place& place,
                  const Element& at) {
  if (!replacement) return operand;
  const double value = place.Build().ValueOf(*replacement, operand.type, at);
  Operand result = operand;
  result.field = nullptr;
  result.literal.reset();
  result.slot = place.Build().NewSlot(at);
  AddStep(place.program, [in = operand.slot, out = result.slot, value](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = std::isnan(x[i]) ? value : x[i];
  });
  return result;
}

Operand CompileConstant(const Element& element, const Place& place, std::optional<TypeInfo> expected) {
  const bool isMissing = element.Flag("missing", false);
  std::optional<TypeInfo> type;
  if (element.Find("dataType")) {
    type = ReadDataType(element, kDouble);
  } else if (expected && expected->IsText()) {
    type = expected;
  }
  element.RefuseAnythingElse();
  const std::string content = element.Content();
  if (isMissing) return MissingConstant(type, place);
  // Blanks belong to a text and to nothing else.
  const bool isText = type ? type->IsText() : !ReadReal(content);
  return ConstantOf(isText ? content : std::string(TrimXml(content)), type, place, element);
}

Operand CompileFieldRef(const Element& element, const Place& place) {
  const Operand operand = place.scope.Resolve(element.Text("field"), element);
  const auto replacement = element.Find("mapMissingTo");
  element.RefuseAnythingElse();
  return Replacing(operand, replacement, place, element);
}

enum class Outliers : std::uint8_t { kAsIs, kMissing, kExtreme };

// Stepwise linear interpolation between points (orig, norm).
struct Normalisation {
  std::vector<double> from;
  std::vector<double> to;
  Outliers outliers = Outliers::kAsIs;

  double At(double x) const {
    if (std::isnan(x)) return x;
    const std::size_t last = from.size() - 1;
    if (outliers != Outliers::kAsIs && (x < from[0] || x > from[last])) {
      if (outliers == Outliers::kMissing) return kMissing;
      return x < from[0] ? to[0] : to[last];
    }
    std::size_t k = 1;
    while (k < last && x > from[k]) ++k;
    return to[k - 1] + (x - from[k - 1]) / (from[k] - from[k - 1]) * (to[k] - to[k - 1]);
  }
};

Operand CompileNormContinuous(const Element& element, const Place& place) {
  const Operand in = place.scope.Resolve(element.Text("field"), element);
  Normalisation norm;
  norm.outliers = element.Choice<Outliers>("outliers",
                                           {{"asIs", Outliers::kAsIs},
                                            {"asMissingValues", Outliers::kMissing},
                                            {"asExtremeValues", Outliers::kExtreme}},
                                           Outliers::kAsIs);
  const auto replacement = element.Find("mapMissingTo");
  element.RefuseOtherAttributes();
  for (const Element& child : element.Children()) {
    if (!child.Is("LinearNorm")) child.Refuse();
    norm.from.push_back(child.Real("orig"));
    norm.to.push_back(child.Real("norm"));
    child.RefuseAnythingElse();
    const std::size_t n = norm.from.size();
    if (n > 1 && norm.from[n - 1] <= norm.from[n - 2]) child.Fail("the points of a LinearNorm must ascend");
  }
  if (norm.from.size() < 2) element.Fail("NormContinuous needs at least two points");
  Operand result;
  result.slot = place.Build().NewSlot(element);
  AddStep(place.program, [in = NumberSlot(in, place, element), out = result.slot, norm](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = norm.At(x[i]);
  });
  return Replacing(result, replacement, place, element);
}

Operand CompileNormDiscrete(const Element& element, const Place& place) {
  const Operand in = place.scope.Resolve(element.Text("field"), element);
  const double value = place.Build().ValueOf(element.Text("value"), in.type, element);
  element.Choice<int>("method", {{"indicator", 0}}, 0);
  const auto replacement = element.Find("mapMissingTo");
  element.RefuseAnythingElse();
  Operand result;
  result.slot = place.Build().NewSlot(element);
  AddStep(place.program, [in = in.slot, out = result.slot, value](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const double indicator = x[i] == value ? 1 : 0;
      y[i] = std::isnan(x[i]) ? kMissing : indicator;
    }
  });
  return Replacing(result, replacement, place, element);
}

// The type of the texts that a table gives as results: numbers where all of them are.
TypeInfo TypeOfResults(const Element& element, std::optional<TypeInfo> expected,
                       std::span<const std::string> texts) {
  if (element.Find("dataType")) return ReadDataType(element, kText);
  if (expected) return *expected;
  const bool allNumbers =
      std::ranges::all_of(texts, [](const auto& text) { return ReadReal(text).has_value(); });
  return allNumbers && !texts.empty() ? kDouble : kText;
}

Operand CompileDiscretize(const Element& element, const Place& place, std::optional<TypeInfo> expected) {
  const Operand in = place.scope.Resolve(element.Text("field"), element);
  const auto otherwise = element.Find("defaultValue");
  const auto replacement = element.Find("mapMissingTo");
  std::vector<Interval> intervals;
  std::vector<std::string> texts;
  for (const Element& bin : element.Children()) {
    if (!bin.Is("DiscretizeBin")) bin.Refuse();
    texts.push_back(bin.Text("binValue"));
    bin.RefuseOtherAttributes();
    const Element interval = bin.OnlyChild();
    if (!interval.Is("Interval")) interval.Refuse();
    intervals.push_back(ReadInterval(interval));
  }
  Operand result;
  result.type = TypeOfResults(element, expected, texts);
  result.opType = OpType::kCategorical;
  result.slot = place.Build().NewSlot(element);
  element.RefuseOtherAttributes();
  std::vector<double> values;
  for (const auto& text : texts) values.push_back(place.Build().ValueOf(text, result.type, element));
  const double rest = otherwise ? place.Build().ValueOf(*otherwise, result.type, element) : kMissing;
  AddStep(place.program,
          [in = NumberSlot(in, place, element), out = result.slot, intervals, values, rest](Frame& frame) {
            const double* x = frame.In(in);
            double* y = frame.Out(out);
            for (std::size_t i = 0; i < frame.Rows(); ++i) {
              std::size_t k = 0;
              while (k < intervals.size() && !intervals[k].Holds(x[i])) ++k;
              y[i] = k < intervals.size() ? values[k] : rest;
              if (std::isnan(x[i])) y[i] = kMissing;
            }
          });
  return Replacing(result, replacement, place, element);
}

// A table from combinations of values to values, sorted by the combinations.
struct ValueTable {
  std::size_t width = 0;
  std::vector<double> keys;  // row after row, `width` of each
  std::vector<double> results;

  // The row of the keys at inputs[…][i], or nothing.
  std::optional<std::size_t> Find(std::span<const double* const> inputs, std::size_t i) const {
    std::size_t low = 0;
    std::size_t high = results.size();
    while (low < high) {
      const std::size_t middle = (low + high) / 2;
      std::size_t k = 0;
      while (k < width && keys[middle * width + k] == inputs[k][i]) ++k;
      if (k == width) return middle;
      (keys[middle * width + k] < inputs[k][i] ? low : high) =
          keys[middle * width + k] < inputs[k][i] ? middle + 1 : middle;
    }
    return std::nullopt;
  }
};

// Sorts the rows; of rows with equal keys the first one counts.
ValueTable MakeTable(std::size_t width, const std::vector<std::vector<double>>& keys,
                     const std::vector<double>& results) {
  std::vector<std::size_t> order(keys.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  ValueTable table;
  table.width = width;
  const std::vector<double>* former = nullptr;
  for (const std::size_t row : order) {
    if (former != nullptr && *former == keys[row]) continue;
    former = &keys[row];
    table.keys.insert(table.keys.end(), keys[row].begin(), keys[row].end());
    table.results.push_back(results[row]);
  }
  return table;
}

Operand CompileMapValues(const Element& element, const Place& place, std::optional<TypeInfo> expected) {
  std::vector<std::string> columns;
  std::vector<Operand> inputs;
  std::optional<Element> rows;
  for (const Element& child : element.Children()) {
    if (child.Is("FieldColumnPair")) {
      inputs.push_back(place.scope.Resolve(child.Text("field"), child));
      columns.push_back(child.Text("column"));
      child.RefuseAnythingElse();
    } else if (child.Is("InlineTable") && !rows) {
      rows = child;
    } else {
      child.Refuse();
    }
  }
  if (!rows || inputs.empty()) element.Fail("MapValues needs a FieldColumnPair and an InlineTable");
  const std::size_t width = columns.size();
  columns.push_back(element.Text("outputColumn"));
  const auto otherwise = element.Find("defaultValue");
  const auto replacement = element.Find("mapMissingTo");
  const auto cells = ReadInlineTable(*rows, columns);
  std::vector<std::string> texts;
  for (const auto& row : cells) texts.push_back(row.back().value_or(""));
  Operand result;
  result.type = TypeOfResults(element, expected, texts);
  result.opType = OpType::kCategorical;
  result.slot = place.Build().NewSlot(element);
  element.RefuseOtherAttributes();
  std::vector<std::vector<double>> keys;
  std::vector<double> results;
  for (const auto& row : cells) {
    auto& key = keys.emplace_back();
    for (std::size_t k = 0; k < width; ++k) {
      if (!row[k]) rows->Fail("a row has no column " + columns[k]);
      key.push_back(place.Build().ValueOf(*row[k], inputs[k].type, *rows));
    }
    if (!row.back()) rows->Fail("a row has no column " + columns.back());
    results.push_back(place.Build().ValueOf(*row.back(), result.type, *rows));
  }
  const double rest = otherwise ? place.Build().ValueOf(*otherwise, result.type, element) : kMissing;
  std::vector<Slot> slots;
  for (const Operand& input : inputs) slots.push_back(input.slot);
  AddStep(
      place.program, [slots, out = result.slot, table = MakeTable(width, keys, results), rest](Frame& frame) {
        std::vector<const double*> x;
        for (const Slot slot : slots) x.push_back(frame.In(slot));
        double* y = frame.Out(out);
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          const bool isMissing = std::ranges::any_of(x, [i](const double* in) { return std::isnan(in[i]); });
          const auto row = table.Find(x, i);
          y[i] = row ? table.results[*row] : rest;
          if (isMissing) y[i] = kMissing;
        }
      });
  return Replacing(result, replacement, place, element);
}

// A function that the file defines, with its parameters put in.
Operand CallDefined(const Element& function, const std::string& name, std::span<const Operand> arguments,
                    const Place& place, const Element& at) {
  const Builder::Depth depth(place.Build(), at);
  const Builder::Call call(place.Build(), name, at);
  function.PassOver({"name"});
  const TypeInfo type = ReadDataType(function, kText);
  const bool hasType = function.Find("dataType").has_value();
  ReadOpType(function, OpType::kContinuous);
  function.RefuseOtherAttributes();
  Scope parameters(place.Build(), nullptr, place.program);
  const Place inside{parameters, place.program};
  std::size_t count = 0;
  std::optional<Element> body;
  for (const Element& child : function.Children()) {
    if (child.Is("ParameterField")) {
      if (count >= arguments.size()) at.Fail("the function " + name + " needs more arguments");
      const Operand& argument = arguments[count++];
      const TypeInfo wanted = ReadDataType(child, argument.type);
      ReadOpType(child, argument.opType);
      child.PassOver({"displayName"});
      parameters.Define(child.Text("name"), Cast(argument, wanted, place, at));
      child.RefuseAnythingElse();
    } else if (IsExpression(child) && !body) {
      body = child;
    } else {
      child.Refuse();
    }
  }
  if (count < arguments.size()) at.Fail("the function " + name + " takes fewer arguments");
  if (!body) function.Fail("the function " + name + " has no expression");
  const Operand result = CompileExpression(*body, inside, hasType ? std::optional(type) : std::nullopt);
  return hasType ? Cast(result, type, place, at) : result;
}

Operand CompileApply(const Element& element, const Place& place) {
  const std::string name = element.Text("function");
  const auto replacement = element.Find("mapMissingTo");
  const auto otherwise = element.Find("defaultValue");
  element.Choice<int>("invalidValueTreatment", {{"returnInvalid", 0}, {"asIs", 0}, {"asMissing", 0}}, 0);
  element.RefuseOtherAttributes();
  std::vector<Operand> arguments;
  for (const Element& child : element.Children()) arguments.push_back(CompileExpression(child, place));
  const Element* defined = place.Build().FindFunction(name);
  auto result = defined != nullptr ? CallDefined(*defined, name, arguments, place, element)
                                   : CompileBuiltIn(name, arguments, place, element);
  if (!result) result = CompileTextFunction(name, arguments, place, element);
  if (!result) element.Fail("the function " + name + " is not supported");
  if (!replacement) return Replacing(*result, otherwise, place, element);
  // mapMissingTo is for missing arguments, defaultValue for a result that is missing without one.
  std::vector<Slot> slots;
  for (const Operand& argument : arguments) slots.push_back(argument.slot);
  const double mapped = place.Build().ValueOf(*replacement, result->type, element);
  const Operand replaced = Replacing(*result, otherwise, place, element);
  Operand final = replaced;
  final.slot = place.Build().NewSlot(element);
  AddStep(place.program, [slots, in = replaced.slot, out = final.slot, mapped](Frame& frame) {
    std::copy_n(frame.In(in), frame.Rows(), frame.Out(out));
    double* y = frame.Out(out);
    for (const Slot slot : slots) {
      const double* x = frame.In(slot);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        if (std::isnan(x[i])) y[i] = mapped;
      }
    }
  });
  return final;
}

// The value of an input some rows before.
Operand CompileLag(const Element& element, const Place& place) {
  Operand result = place.scope.Resolve(element.Text("field"), element);
  const int lag = element.FindInteger("n").value_or(1);
  element.Choice<int>("aggregate", {{"none", 0}}, 0);
  element.RefuseAnythingElse();
  if (lag < 1) element.Fail("a Lag must go back at least one row");
  if (result.slot >= 0) element.Fail("a Lag of a field that is derived or treated is not supported");
  const Slot in = result.slot;
  result.slot = place.Build().NewSlot(element);
  AddStep(place.program, [in, out = result.slot, lag = static_cast<std::size_t>(lag)](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const bool isThere = frame.FirstRow() + i >= lag;
      y[i] = isThere ? *(x + static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(lag)) : kMissing;
    }
  });
  return result;
}

using Compiler = Operand (*)(const Element&, const Place&, std::optional<TypeInfo>);
// A compiler that has no use for the expected type.
template <Operand (*compile)(const Element&, const Place&)>
Operand Untyped(const Element& element, const Place& place, std::optional<TypeInfo>) {
  return compile(element, place);
}

constexpr std::array<std::pair<std::string_view, Compiler>, 9> kExpressions{{
    {"Constant", CompileConstant},
    {"FieldRef", Untyped<CompileFieldRef>},
    {"NormContinuous", Untyped<CompileNormContinuous>},
    {"NormDiscrete", Untyped<CompileNormDiscrete>},
    {"Discretize", CompileDiscretize},
    {"MapValues", CompileMapValues},
    {"TextIndex", Untyped<CompileTextIndex>},
    {"Apply", Untyped<CompileApply>},
    {"Lag", Untyped<CompileLag>},
}};

Operand ToText(const Operand& operand, const Place& place, const Element& at) {
  Operand result;
  result.type = kText;
  result.opType = OpType::kCategorical;
  if (operand.literal) {
    result.literal = operand.literal;
    result.slot = place.Build().Constant(place.Build().Pool().Number(*operand.literal));
    return result;
  }
  result.slot = place.Build().NewSlot(at);
  AddStep(place.program, [in = operand.slot, out = result.slot, type = operand.type](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      y[i] = std::isnan(x[i]) ? kMissing : frame.Pool().Number(FormatValue(type, x[i]));
    }
  });
  return result;
}

Operand FromText(const Operand& operand, TypeInfo type, const Place& place, const Element& at) {
  Operand result;
  result.type = type;
  if (operand.literal) return ConstantOf(*operand.literal, type, place, at);
  result.slot = place.Build().NewSlot(at);
  AddStep(place.program, [in = operand.slot, out = result.slot, type](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      y[i] = std::isnan(x[i]) ? kMissing : ParseValue(type, frame.Pool().Text(x[i])).value_or(kMissing);
    }
  });
  return result;
}

Operand ToFloat(const Operand& operand, const Place& place, const Element& at) {
  Operand result = operand;
  result.slot = place.Build().NewSlot(at);
  result.literal.reset();
  AddStep(place.program, [in = operand.slot, out = result.slot](Frame& frame) {
    const double* x = frame.In(in);
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = static_cast<float>(x[i]);
  });
  return result;
}

void DeclareDerivedField(const Element& element, Scope& scope) {
  scope.DefineLater(
      element.Text("name"),
      [element, &scope] {
        return CompileDerivedField(element, Place{scope, scope.Steps()});
      },
      element);
}

}  // namespace

bool IsExpression(const Element& element) {
  return std::ranges::any_of(kExpressions, [&](const auto& entry) { return element.Is(entry.first); });
}

Operand CompileExpression(const Element& element, const Place& place, std::optional<TypeInfo> expected) {
  const Builder::Depth depth(place.Build(), element);
  place.Build().CountExpression(element);
  for (const auto& [name, compile] : kExpressions) {
    if (element.Is(name)) return compile(element, place, expected);
  }
  element.Refuse();
}

Operand Cast(const Operand& operand, TypeInfo type, const Place& place, const Element& at) {
  if (type.type == operand.type.type && type.year == operand.type.year) return operand;
  if (type.IsText()) return ToText(operand, place, at);
  if (operand.type.IsText()) return FromText(operand, type, place, at);
  Operand result = type.type == DataType::kFloat ? ToFloat(operand, place, at) : operand;
  result.type = type;
  return result;
}

Operand CompileDerivedField(const Element& element, const Place& place) {
  // Programs are found to misspell these.
  const std::string opTypeName = element.SpellingOf("optype");
  const std::string dataTypeName = element.SpellingOf("dataType");
  element.PassOver({"name", element.SpellingOf("displayName").c_str()});
  const OpType opType = ReadOpType(element, OpType::kContinuous, opTypeName.c_str());
  std::optional<TypeInfo> type;
  // An attribute with a slip in its name matters only if it may be the type.
  if (element.Find(dataTypeName.c_str())) {
    type = ReadDataType(element, kDouble, dataTypeName.c_str());
  } else {
    element.RefuseOtherAttributes();
  }
  std::optional<Element> body;
  std::vector<std::string> labels;
  for (const Element& child : element.Children()) {
    if (child.Is("Value")) {
      labels.push_back(child.Text("value"));
      child.PassOver({"displayValue", "property"});
      child.RefuseAnythingElse();
    } else if (!body) {
      body = child;
    } else {
      child.Refuse();
    }
  }
  if (!body) element.Fail("the derived field has no expression");
  Operand result = CompileExpression(*body, place, type);
  if (type) {
    // The texts of a categorical field may occur in it as numbers of its declared type only by its
    // expression.
    result = Cast(result, *type, place, element);
  }
  if (element.Find(opTypeName.c_str())) result.opType = opType;
  if (!labels.empty()) {
    auto field = std::make_unique<Field>();
    field->name = element.Text("name", "");
    field->type = result.type;
    field->opType = opType;
    field->labels = labels;
    result.field = &place.Build().AddField(std::move(field));
  }
  return result;
}

void DeclareTransformations(const Element& element, Scope& scope) {
  element.RefuseOtherAttributes();
  for (const Element& child : element.Children()) {
    if (child.Is("DerivedField")) {
      DeclareDerivedField(child, scope);
    } else if (child.Is("DefineFunction")) {
      scope.Build().DefineFunction(child);
    } else {
      child.Refuse();
    }
  }
}

Slot NumberSlot(const Operand& operand, const Place& place, const Element& at) {
  if (!operand.type.IsText()) return operand.slot;
  if (!operand.literal) at.Fail("texts cannot be used where numbers are needed");
  return FromText(operand, kDouble, place, at).slot;
}

Slot TextSlot(const Operand& operand, const Place& place, const Element& at) {
  return operand.type.IsText() ? operand.slot : ToText(operand, place, at).slot;
}

}  // namespace brenvolt::pmml
