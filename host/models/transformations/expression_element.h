// Expressions of transformations, compiled to steps.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/models/transformations/scope.h"

namespace brenvolt::pmml {

// Where an expression stands: what its names mean and where its steps go.
struct Place {
  Scope& scope;
  Program& program;

  Builder& Build() const { return scope.Build(); }
};

bool IsExpression(const Element& element);

// Compiles an expression element; a constant or table without a type of its own takes `expected` where given.
Operand CompileExpression(const Element& element, const Place& place,
                          std::optional<TypeInfo> expected = std::nullopt);

// The expression inside a DerivedField, cast to the field's type. Passes over the child elements `Value`.
Operand CompileDerivedField(const Element& element, const Place& place);

// Adds the DerivedField children of a TransformationDictionary or LocalTransformations to its scope; those of
// other names are refused, but DefineFunction, which goes to the builder.
void DeclareTransformations(const Element& element, Scope& scope);

// The operand as values of another type.
Operand Cast(const Operand& operand, TypeInfo type, const Place& place, const Element& at);

// The slot of an operand's numbers; throws if it has texts.
Slot NumberSlot(const Operand& operand, const Place& place, const Element& at);
// The slot of an operand's texts; numbers are written as texts.
Slot TextSlot(const Operand& operand, const Place& place, const Element& at);

// A call of a built-in function. Nothing if there is no function of that name.
std::optional<Operand> CompileBuiltIn(const std::string& name, std::span<const Operand> arguments,
                                      const Place& place, const Element& at);
// The part of the built-in functions that is about texts, patterns and dates.
std::optional<Operand> CompileTextFunction(const std::string& name, std::span<const Operand> arguments,
                                           const Place& place, const Element& at);

// How often a term occurs in a text.
Operand CompileTextIndex(const Element& element, const Place& place);

}  // namespace brenvolt::pmml
