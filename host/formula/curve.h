// A formula in the one variable x: parsed once, evaluated over arrays.
//
// The grammar and the functions are those of formula.h, but values that are not finite stay what they are. A
// sign at the beginning says how the text is used and changes no value: "=" begins a formula, "*" continues a
// product that a graph began.
#pragma once

#include <memory>
#include <span>
#include <string_view>

namespace brenvolt {

// One thread at a time may use a curve.
class Curve {
 public:
  // Throws Error that says what is wrong and where in the text ("curve, character 7" for the source name
  // "curve").
  explicit Curve(std::string_view formula, std::string_view sourceName = "curve");
  ~Curve();
  Curve(Curve&&) noexcept;
  Curve& operator=(Curve&&) noexcept;

  double At(double x);
  // `out` has the length of `x` at least, and may be `x`. A NaN gives NaN.
  void Evaluate(std::span<const double> x, std::span<double> out);

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace brenvolt
