// ClusteringModel: the cluster whose centre is nearest.
#include <algorithm>
#include <cmath>

#include "host/models/document/arrays.h"
#include "host/models/kinds/comparison_measure.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

class ClusterReader {
 public:
  ClusterReader(const Element& model, ModelPlace& place)
      : model_(model), place_(place), measure_(model.Child("ComparisonMeasure")) {}

  ModelResult Read() {
    model_.Choice<int>("modelClass", {{"centerBased", 0}});
    model_.PassOver({"numberOfClusters"});
    if (place_.function != Function::kClustering)
      model_.Fail("a clustering model must have the function clustering");
    result_.classes = Classes(kText);
    // Fields come first, whatever the order in the file.
    for (const Element& child : OwnChildren(model_)) {
      if (child.Is("ClusteringField")) ReadField(child);
    }
    if (fields_.empty()) model_.Fail("the model has no ClusteringField");
    for (const Element& child : OwnChildren(model_)) {
      if (child.Is("MissingValueWeights")) {
        ReadMissingWeights(child);
      } else if (child.Is("Cluster")) {
        ReadCluster(child);
      } else if (!child.Is("ClusteringField") && !child.Is("ComparisonMeasure")) {
        child.Refuse();
      }
    }
    if (centres_.empty()) model_.Fail("the model has no clusters");
    return Finish();
  }

 private:
  void ReadField(const Element& element) {
    ComparisonField field = ReadComparisonField(element, measure_);
    const Operand operand = place_.scope.Resolve(element.Text("field"), element);
    field.slot = NumberSlot(operand, place_, element);
    const bool isCentre = element.Flag("isCenterField", true);
    element.RefuseAnythingElse();
    if (isCentre) fields_.push_back(std::move(field));
  }

  void ReadMissingWeights(const Element& element) {
    element.RefuseOtherAttributes();
    const std::vector<double> weights = ReadNumbers(element.OnlyChild(), fields_.size());
    for (std::size_t k = 0; k < weights.size(); ++k) fields_[k].missingWeight = weights[k];
  }

  void ReadCluster(const Element& element) {
    const std::string id =
        element.Text("id", element.Text("name", std::to_string(centres_.size() / fields_.size() + 1)));
    element.PassOver({"name", "size"});
    element.RefuseOtherAttributes();
    const std::size_t number = result_.classes.Number(id, place_.Build(), element);
    if (number * fields_.size() != centres_.size()) element.Fail("two clusters have the number " + id);
    bool hasCentre = false;
    for (const Element& child : element.Children()) {
      const bool isArray = child.Is("Array") || child.Is("REAL-SparseArray");
      if (isArray && !hasCentre) {
        const std::vector<double> centre = ReadNumbers(child, fields_.size());
        centres_.insert(centres_.end(), centre.begin(), centre.end());
        hasCentre = true;
      } else if (!child.Is("Partition") && !child.Is("Covariances") && !child.Is("KohonenMap")) {
        child.Refuse();  // the others describe the cluster
      }
    }
    if (!hasCentre) element.Fail("the cluster has no centre");
  }

  ModelResult Finish() {
    const std::size_t clusters = result_.classes.Count();
    result_.value = place_.NewResult(model_);
    for (std::size_t k = 0; k < clusters; ++k) result_.affinities.push_back(place_.NewResult(model_));
    result_.entities = {result_.value};
    result_.entityIds = result_.classes.Labels();
    AddStep(place_.program, [fields = fields_, centres = centres_, measure = measure_, value = result_.value,
                             slots = result_.affinities](Frame& frame) {
      const std::size_t width = fields.size();
      std::vector<double> record(width);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        for (std::size_t k = 0; k < width; ++k) record[k] = frame.In(fields[k].slot)[i];
        double best = kMissing;
        double winner = kMissing;
        for (std::size_t c = 0; c < slots.size(); ++c) {
          const double d = measure.Between(fields, record, std::span(centres).subspan(c * width, width));
          frame.Out(slots[c])[i] = d;
          const bool isNearer = measure.IsSimilarity() ? d > best : d < best;
          if (std::isnan(d) || !(isNearer || std::isnan(best))) continue;
          best = d;
          winner = static_cast<double>(c);
        }
        frame.Out(value)[i] = winner;
      }
    });
    return result_;
  }

  const Element& model_;
  ModelPlace& place_;
  ComparisonMeasure measure_;
  std::vector<ComparisonField> fields_;
  std::vector<double> centres_;
  ModelResult result_;
};

}  // namespace

ModelResult ReadClusteringModel(const Element& model, ModelPlace& place) {
  return ClusterReader(model, place).Read();
}

}  // namespace brenvolt::pmml
