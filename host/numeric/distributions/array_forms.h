// The array forms of the functions of a distribution type: declared for all types, and defined for those that
// have no faster way than the scalar form of each value.
#pragma once

#include <cassert>
#include <cstddef>
#include <span>

// NOLINTBEGIN(cppcoreguidelines-macro-usage,bugprone-macro-parentheses): types differ in their parameter
// lists

// Declares the array forms, given the type's parameters. Each gives the bits of the scalar form of its name;
// `out` is at least as long as the input and may be the input itself.
#define BRENVOLT_ARRAY_FORMS(...)                                                 \
  void Density(std::span<const double> x, __VA_ARGS__, std::span<double> out);    \
  void LogDensity(std::span<const double> x, __VA_ARGS__, std::span<double> out); \
  void Cdf(std::span<const double> x, __VA_ARGS__, std::span<double> out);        \
  void Complement(std::span<const double> x, __VA_ARGS__, std::span<double> out); \
  void Quantile(std::span<const double> p, __VA_ARGS__, std::span<double> out);   \
  void ComplementQuantile(std::span<const double> q, __VA_ARGS__, std::span<double> out)

#define BRENVOLT_UNPACK(...) __VA_ARGS__

// Defines the array form of `function` by its scalar form, given the declarations of the type's parameters in
// parentheses and then their names.
#define BRENVOLT_ARRAY_BY_SCALAR(function, declarations, ...)                                     \
  void function(std::span<const double> x, BRENVOLT_UNPACK declarations, std::span<double> out) { \
    assert(out.size() >= x.size());                                                               \
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = function(x[i], __VA_ARGS__);              \
  }                                                                                               \
  static_assert(true)

// The four that have a vector form for few types.
#define BRENVOLT_ARRAYS_BY_SCALARS(declarations, ...)              \
  BRENVOLT_ARRAY_BY_SCALAR(Density, declarations, __VA_ARGS__);    \
  BRENVOLT_ARRAY_BY_SCALAR(LogDensity, declarations, __VA_ARGS__); \
  BRENVOLT_ARRAY_BY_SCALAR(Complement, declarations, __VA_ARGS__); \
  BRENVOLT_ARRAY_BY_SCALAR(ComplementQuantile, declarations, __VA_ARGS__)

// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-macro-parentheses)
