// Building a program: slots, the data dictionary, functions that the file defines, and which names mean which
// columns at a place of the file.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/error.h"
#include "host/models/transformations/frame.h"
#include "host/models/transformations/values.h"

namespace brenvolt::pmml {

// Beyond these a file is refused: columns that a model writes, expressions that its definitions unfold to,
// and how deeply definitions and models are nested.
inline constexpr Slot kMostSlots = 1 << 14;
inline constexpr std::size_t kMostExpressions = 1 << 20;
inline constexpr int kDeepestDefinition = 200;

// A column with what is known about its values.
struct Operand {
  Slot slot = kNoSlot;
  TypeInfo type;
  OpType opType = OpType::kContinuous;
  const Field* field = nullptr;        // where the values are those of a declared field
  std::optional<std::string> literal;  // what a constant was written as
};

// A raw column that the data must bring.
struct InputColumn {
  const Field* field;
  Slot slot;
};

// What the outermost mining schema makes of a field of the dictionary.
struct FieldUse {
  double replacement = kMissing;  // of missing values; missing if they are not replaced
  double lowest = -std::numeric_limits<double>::infinity();  // the range of valid numbers
  double highest = std::numeric_limits<double>::infinity();
  std::vector<Interval> parts;   // of the range, ascending, if it has gaps; else none
  bool predictsInvalid = false;  // values that are not valid have predictions nevertheless
};

class Scope;

class Builder {
 public:
  explicit Builder(TextPool& pool);
  ~Builder();
  Builder(const Builder&) = delete;
  Builder& operator=(const Builder&) = delete;

  TextPool& Pool() { return *pool_; }
  Slot NewSlot(const Element& at);
  // A column of one value.
  Slot Constant(double value);
  // The raw column of a field of the dictionary.
  Slot Input(const Field& field);

  Field& AddField(std::unique_ptr<Field> field) { return *fields_.emplace_back(std::move(field)); }
  // Hands over the fields, to which operands and refusals refer.
  std::vector<std::unique_ptr<Field>> TakeFields() { return std::move(fields_); }
  void Declare(const Field& field, const Element& at);
  const Field* FindDeclared(std::string_view name) const;
  // Declared fields in the order of the dictionary.
  const std::vector<const Field*>& Declared() const { return order_; }

  // Collects the raw fields that are read while it lives, those of definitions that were settled before too.
  class Reading {
   public:
    explicit Reading(Builder& builder) : builder_(builder), outer_(builder.reading_) {
      builder.reading_ = this;
    }
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    const std::set<const Field*>& Fields() const { return fields_; }

   private:
    friend class Builder;
    Builder& builder_;
    Reading* outer_;
    std::set<const Field*> fields_;
  };
  void NoteRead(const std::set<const Field*>& fields);

  FieldUse& UseOf(const Field& field) { return uses_[&field]; }
  const std::map<const Field*, FieldUse>& Uses() const { return uses_; }

  void DefineFunction(const Element& function);
  const Element* FindFunction(const std::string& name) const;

  // A scope that lives as long as the builder.
  Scope& NewScope(Scope* parent, Program& program);
  // Settles every name of every scope, so that faults in definitions that nothing uses are found, and then
  // forgets the steps and inputs that this brought.
  void CheckUnused(const Element& at);
  // The inputs so far are those that the prediction reads; later ones are read by outputs alone.
  void EndPrediction() { predicting_ = inputs_.size(); }
  std::size_t PredictionInputs() const { return predicting_; }

  // Counts an expression against the limit.
  void CountExpression(const Element& at);

  std::size_t Slots() const { return static_cast<std::size_t>(nextSlot_); }
  const std::vector<double>& Constants() const { return constants_; }
  const std::vector<Slot>& ConstantSlots() const { return constantSlots_; }
  const std::vector<InputColumn>& Inputs() const { return inputs_; }
  std::size_t FixedSlots() const { return static_cast<std::size_t>(fixed_); }

  // The number that a text means as a value of a type: its place in the pool where the type is text. Throws
  // where the text is not a value of the type.
  double ValueOf(std::string_view text, TypeInfo type, const Element& at);

  // Guards against definitions that are nested too deeply.
  class Depth {
   public:
    Depth(Builder& builder, const Element& at);
    ~Depth() { --builder_.depth_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

   private:
    Builder& builder_;
  };
  // Guards against functions that call themselves.
  class Call {
   public:
    Call(Builder& builder, const std::string& function, const Element& at);
    ~Call() { builder_.inUse_.erase(function_); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    Builder& builder_;
    std::string function_;
  };

 private:
  TextPool* pool_;
  Slot nextSlot_ = 0;
  Slot fixed_ = 0;
  std::vector<double> constants_;
  std::vector<Slot> constantSlots_;
  std::map<std::uint64_t, Slot> knownConstants_;
  std::vector<InputColumn> inputs_;
  std::size_t predicting_ = 0;
  Reading* reading_ = nullptr;
  std::vector<std::unique_ptr<Field>> fields_;
  std::vector<const Field*> order_;
  std::map<const Field*, FieldUse> uses_;
  std::map<std::string, const Field*, std::less<>> declared_;
  std::vector<std::unique_ptr<Scope>> scopes_;
  std::map<std::string, Element> functions_;
  std::set<std::string> inUse_;
  std::size_t expressions_ = 0;
  int depth_ = 0;
};

// The fields that a part of the file can name. What a name means is settled when it is first asked for, so
// that only what a model reads is computed.
class Scope {
 public:
  // Steps that compute the fields of this scope go to `program`.
  Scope(Builder& builder, Scope* parent, Program& program)
      : builder_(&builder), parent_(parent), program_(&program) {}

  Builder& Build() { return *builder_; }
  Program& Steps() { return *program_; }

  // `fields` are those that the operand is computed from.
  void Define(const std::string& name, Operand operand, std::set<const Field*> fields = {});
  // A name that stands for nothing: asking for it throws the fault.
  void DefineFault(const std::string& name, const Error& fault);
  // `make` is called once, when the name is first asked for.
  void DefineLater(const std::string& name, std::function<Operand()> make, const Element& at);
  bool Knows(const std::string& name) const;
  // Throws, naming the line of `at`, for a name that nothing has and for one defined by itself.
  Operand Resolve(const std::string& name, const Element& at);
  // Asks for every name of this scope, so that faults in definitions that nothing uses are found.
  void SettleAll(const Element& at);

 private:
  struct Entry {
    std::optional<Operand> operand;
    std::set<const Field*> fields;
    std::optional<Error> fault;
    std::function<Operand()> make;
    bool isBusy = false;
  };
  Operand Settle(Entry& entry, const std::string& name, const Element& at);

  Builder* builder_;
  Scope* parent_;
  Program* program_;
  std::map<std::string, Entry> entries_;
};

}  // namespace brenvolt::pmml
