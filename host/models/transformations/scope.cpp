#include "host/models/transformations/scope.h"

#include <bit>

namespace brenvolt::pmml {

Builder::Builder(TextPool& pool) : pool_(&pool) {}
Builder::~Builder() = default;

Scope& Builder::NewScope(Scope* parent, Program& program) {
  return *scopes_.emplace_back(std::make_unique<Scope>(*this, parent, program));
}

void Builder::CheckUnused(const Element& at) {
  std::vector<std::size_t> used;
  for (const auto& scope : scopes_) used.push_back(scope->Steps().size());
  const std::size_t inputs = inputs_.size();
  for (std::size_t i = 0; i < used.size(); ++i) scopes_[i]->SettleAll(at);
  for (std::size_t i = 0; i < used.size(); ++i) {
    Program& program = scopes_[i]->Steps();
    if (program.size() > used[i]) program.resize(used[i]);
  }
  inputs_.resize(inputs);
}

Slot Builder::NewSlot(const Element& at) {
  if (nextSlot_ >= kMostSlots) at.Fail("the model computes too many columns");
  return nextSlot_++;
}

Slot Builder::Constant(double value) {
  const auto [at, isNew] = knownConstants_.try_emplace(std::bit_cast<std::uint64_t>(value), kNoSlot);
  if (isNew) {
    at->second = ~fixed_++;
    constants_.push_back(value);
    constantSlots_.push_back(at->second);
  }
  return at->second;
}

Builder::Reading::~Reading() {
  builder_.reading_ = outer_;
  builder_.NoteRead(fields_);
}

void Builder::NoteRead(const std::set<const Field*>& fields) {
  if (reading_ != nullptr) reading_->fields_.insert(fields.begin(), fields.end());
}

Slot Builder::Input(const Field& field) {
  NoteRead({&field});
  for (const InputColumn& input : inputs_) {
    if (input.field == &field) return input.slot;
  }
  inputs_.push_back({&field, ~fixed_++});
  return inputs_.back().slot;
}

void Builder::Declare(const Field& field, const Element& at) {
  if (!declared_.emplace(field.name, &field).second)
    at.Fail("the field " + field.name + " is declared twice");
  order_.push_back(&field);
}

const Field* Builder::FindDeclared(std::string_view name) const {
  const auto found = declared_.find(name);
  return found == declared_.end() ? nullptr : found->second;
}

void Builder::DefineFunction(const Element& function) {
  const std::string name = function.Text("name");
  if (!functions_.emplace(name, function).second) function.Fail("the function " + name + " is defined twice");
}

const Element* Builder::FindFunction(const std::string& name) const {
  const auto found = functions_.find(name);
  return found == functions_.end() ? nullptr : &found->second;
}

void Builder::CountExpression(const Element& at) {
  if (++expressions_ > kMostExpressions) at.Fail("the model's definitions expand to too many expressions");
}

double Builder::ValueOf(std::string_view text, TypeInfo type, const Element& at) {
  if (type.IsText()) return pool_->Number(text);
  const auto value = ParseValue(type, text);
  if (!value) at.Fail("\"" + std::string(text) + "\" is not a value of the field's type");
  return *value;
}

Builder::Depth::Depth(Builder& builder, const Element& at) : builder_(builder) {
  if (builder_.depth_ >= kDeepestDefinition) at.Fail("definitions are nested too deeply");
  ++builder_.depth_;
}

Builder::Call::Call(Builder& builder, const std::string& function, const Element& at)
    : builder_(builder), function_(function) {
  if (!builder_.inUse_.insert(function).second) at.Fail("the function " + function + " calls itself");
}

void Scope::Define(const std::string& name, Operand operand, std::set<const Field*> fields) {
  entries_[name].operand = std::move(operand);
  entries_[name].fields = std::move(fields);
}

void Scope::DefineFault(const std::string& name, const Error& fault) {
  entries_[name].fault = fault;
}

void Scope::DefineLater(const std::string& name, std::function<Operand()> make, const Element& at) {
  Entry entry;
  entry.make = std::move(make);
  if (!entries_.emplace(name, std::move(entry)).second) at.Fail("the field " + name + " is defined twice");
}

bool Scope::Knows(const std::string& name) const {
  return entries_.contains(name) || (parent_ != nullptr && parent_->Knows(name));
}

Operand Scope::Settle(Entry& entry, const std::string& name, const Element& at) {
  if (entry.operand) {
    builder_->NoteRead(entry.fields);
    return *entry.operand;
  }
  if (entry.fault) throw Error(*entry.fault);
  if (entry.isBusy) at.Fail("the field " + name + " is defined by itself");
  const Builder::Depth depth(*builder_, at);
  entry.isBusy = true;
  try {
    const Builder::Reading reading(*builder_);
    entry.operand = entry.make();
    entry.fields = reading.Fields();
  } catch (const Error&) {
    entry.isBusy = false;
    throw;
  }
  entry.isBusy = false;
  return *entry.operand;
}

Operand Scope::Resolve(const std::string& name, const Element& at) {
  const auto found = entries_.find(name);
  if (found != entries_.end()) return Settle(found->second, name, at);
  if (parent_ == nullptr) at.Fail("unknown field " + name);
  return parent_->Resolve(name, at);
}

void Scope::SettleAll(const Element& at) {
  for (auto& [name, entry] : entries_) {
    if (!entry.fault) Settle(entry, name, at);
  }
}

}  // namespace brenvolt::pmml
