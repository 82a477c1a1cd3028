#include "host/models/model_file.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_set>

#include "host/models/document/arrays.h"

namespace brenvolt::pmml {
namespace {

void CheckVersion(const Element& root) {
  constexpr double kOldest = 3.0;
  constexpr double kNewest = 4.4;
  if (!root.Is("PMML")) root.Fail("the file is not PMML: its element is " + std::string(root.Name()));
  const std::string version = root.Text("version");
  // Of 4.4.1 the first two numbers count.
  const auto second = version.find('.', version.find('.') + 1);
  const auto number = ReadReal(version.substr(0, second));
  if (!number || *number < kOldest || *number > kNewest) {
    root.Fail("the version " + version + " of PMML is not supported; 3.0 to 4.4 are");
  }
  root.RefuseOtherAttributes();
}

enum class Property : std::uint8_t { kValid, kInvalid, kMissing };

// `known` are the valid values so far: there may be as many as the file has room for.
void ReadFieldValue(const Element& element, Field& field, std::unordered_set<double>& known,
                    Builder& builder) {
  const std::string text = element.Text("value");
  const auto property = element.Choice<Property>(
      "property",
      {{"valid", Property::kValid}, {"invalid", Property::kInvalid}, {"missing", Property::kMissing}},
      Property::kValid);
  const std::string display = element.Text("displayValue", "");
  element.RefuseAnythingElse();
  // A mark of missing values need not be of the field's type; values of that type never equal it then.
  const bool isOfType = field.type.IsText() || ParseValue(field.type, text);
  if (property == Property::kMissing && !isOfType) return;
  const double value = builder.ValueOf(text, field.type, element);
  if (property == Property::kInvalid) field.domain.invalid.push_back(value);
  if (property == Property::kMissing) field.domain.missing.push_back(value);
  if (property != Property::kValid) return;
  if (!known.insert(value).second) return;
  field.domain.valid.push_back(value);
  field.labels.push_back(text);
  field.displayLabels.push_back(display);
}

void ReadDataField(const Element& element, Builder& builder) {
  auto field = std::make_unique<Field>();
  field->name = element.Text("name");
  field->opType = ReadOpType(element, OpType::kContinuous);
  // Old files leave the type out where the kind says enough.
  field->type = ReadDataType(element, field->opType == OpType::kContinuous ? kDouble : kText);
  element.PassOver({"displayName", "isCyclic"});
  element.RefuseOtherAttributes();
  std::unordered_set<double> known;
  for (const Element& child : element.Children()) {
    if (child.Is("Value")) {
      ReadFieldValue(child, *field, known, builder);
    } else if (child.Is("Interval")) {
      field->domain.intervals.push_back(ReadInterval(child));
    } else {
      child.Refuse();
    }
  }
  if (field->type.IsText() && !field->domain.intervals.empty()) element.Fail("texts have no intervals");
  builder.Declare(builder.AddField(std::move(field)), element);
}

void ReadDictionary(const Element& dictionary, Builder& builder) {
  dictionary.PassOver({"numberOfFields"});
  dictionary.RefuseOtherAttributes();
  for (const Element& child : dictionary.Children()) {
    if (!child.Is("DataField")) child.Refuse();
    ReadDataField(child, builder);
  }
}

// The raw fields, around everything.
void DeclareRawFields(Scope& scope, const Element& at) {
  Builder& builder = scope.Build();
  for (const Field* field : builder.Declared()) {
    scope.DefineLater(
        field->name,
        [field, &builder] {
          Operand operand;
          operand.type = field->type;
          operand.opType = field->opType;
          operand.field = field;
          operand.slot = builder.Input(*field);
          return operand;
        },
        at);
  }
}

// Frequencies of values in ModelStats: what the file tells of its training.
void ReadCounts(const Element& model, ReadyModel& ready) {
  if (const auto stats = model.FindChild("ModelStats")) {
    for (const Element& field : stats->Children()) {
      const auto counts = field.Is("UnivariateStats") ? field.FindChild("DiscrStats") : std::nullopt;
      if (!counts) continue;
      std::vector<std::vector<std::string>> arrays;
      for (const Element& array : counts->Children()) {
        if (array.Is("Array")) arrays.push_back(SplitArray(array.Content()));
      }
      if (arrays.size() != 2 || arrays[0].size() != arrays[1].size()) continue;
      // A string array holds the values as texts, an array of numbers the counts.
      for (std::size_t k = 0; k < arrays[0].size(); ++k) {
        if (const auto count = ReadReal(arrays[1][k])) {
          ready.counts[field.Text("field", "")].emplace_back(arrays[0][k], *count);
        }
      }
    }
  }
}

// The mean squared error of a target in ModelExplanation.
std::optional<double> ReadError(const Element& model, const std::string& target, bool isOnly) {
  const auto explanation = model.FindChild("ModelExplanation");
  if (!explanation) return std::nullopt;
  for (const Element& quality : explanation->Children()) {
    if (!quality.Is("PredictiveModelQuality")) continue;
    if (!isOnly && quality.Text("targetField", "") != target) continue;
    const auto square = quality.FindReal("meanSquaredError");
    const auto root = quality.FindReal("rootMeanSquaredError");
    return square || !root ? square : std::optional(*root * *root);
  }
  return std::nullopt;
}

// What a dependent is called: its target or, if the model has none, what it is.
std::string DependentName(const ModelResult& result) {
  if (!result.target.empty()) return result.target;
  return result.function == Function::kClustering ? "cluster" : "prediction";
}

class FileReader {
 public:
  FileReader(const Document& document, ReadyModel& ready) : root_(document, document.Root()), ready_(ready) {}

  void Read() {
    CheckVersion(root_);
    ReadDictionary(root_.Child("DataDictionary"), builder_);
    std::optional<Element> model;
    std::optional<Element> transformations;
    for (const Element& child : root_.Children()) {
      if (child.Is("Header") || child.Is("MiningBuildTask") || child.Is("DataDictionary")) continue;
      if (child.Is("TransformationDictionary") && !transformations) {
        transformations = child;
      } else if (!IsModel(child)) {
        child.Refuse();
      } else if (model) {
        child.Fail("the file holds several models; one is supported");
      } else {
        model = child;
      }
    }
    if (!model) root_.Fail("the file holds no model");
    ready_.name = model->Text("modelName", "");
    Scope& raw = builder_.NewScope(nullptr, ready_.program);
    DeclareRawFields(raw, root_);
    ReadOptions options;
    options.transformations = transformations;
    TakeResults(ReadModel(*model, raw, ready_.program, options, ready_.outputs));
    SetFaultyOutputsApart();
    ReadPredictors(*model);
    builder_.CheckUnused(*model);
    ReadCounts(*model, ready_);
    for (const ModelResult& result : ready_.results) {
      const std::string& name = ready_.dependents.emplace_back(DependentName(result));
      ready_.meanSquaredErrors.push_back(ReadError(*model, name, ready_.results.size() == 1));
    }
    TakeColumns();
  }

 private:
  void TakeResults(ModelResult result) {
    std::vector<ModelResult> others = std::move(result.others);
    ready_.results.push_back(std::move(result));
    std::ranges::move(others, std::back_inserter(ready_.results));
  }

  void SetFaultyOutputsApart() {
    const auto isGood = [](const OutputColumn& output) { return !output.fault; };
    const auto faulty = std::stable_partition(ready_.outputs.begin(), ready_.outputs.end(), isGood);
    ready_.faultyOutputs.assign(std::move_iterator(faulty), std::move_iterator(ready_.outputs.end()));
    ready_.outputs.erase(faulty, ready_.outputs.end());
  }

  void ReadPredictors(const Element& model) {
    for (const Element& field : model.Child("MiningSchema").Children()) {
      if (field.Text("usageType", "active") != "active") continue;
      if (const Field* declared = builder_.FindDeclared(field.Text("name")))
        ready_.predictors.push_back(declared);
    }
  }

  void TakeColumns() {
    ready_.slots = builder_.Slots();
    ready_.fixed = builder_.FixedSlots();
    for (std::size_t k = 0; k < builder_.Constants().size(); ++k) {
      ready_.constants.emplace_back(builder_.ConstantSlots()[k], builder_.Constants()[k]);
    }
    ready_.inputs = builder_.Inputs();
    ready_.predictionInputs = builder_.PredictionInputs();
    ready_.uses = builder_.Uses();
    ready_.fields = builder_.TakeFields();
  }

  Element root_;
  ReadyModel& ready_;
  Builder builder_{ready_.pool};
};

}  // namespace

std::unique_ptr<ReadyModel> ReadModelFile(std::string_view text, const std::string& file) {
  const Document document(text, file);
  auto ready = std::make_unique<ReadyModel>();
  FileReader(document, *ready).Read();
  return ready;
}

}  // namespace brenvolt::pmml
