// The sixteen distributions as Python classes: one class that carries out what brenvolt/distributions.py
// offers under the names and signatures of each.
#include <pybind11/stl.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "bindings/python/arrays.h"
#include "bindings/python/module.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/law_functions.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/distribution_values.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

enum class Domain { kReal, kPositive, kProportion, kPositiveProportion, kTrials, kJohnsonType };

struct Parameter {
  const char* name;
  Domain domain;
};

// What the numeric library does not say of a type: the names of its values, in catalogue order, and where
// each may lie. A type of repeated groups names one group.
struct Description {
  const char* name;
  bool continuous;
  bool hasOffset;
  std::vector<Parameter> parameters;
};

using enum Domain;

// In the order of the codes.
const std::array<Description, 16>& Descriptions() {
  static const std::array<Description, 16> descriptions{{
      {"Normal", true, false, {{"location", kReal}, {"scale", kPositive}}},
      {"LogNormal", true, true, {{"scale", kReal}, {"shape", kPositive}}},
      {"FoldedNormal", true, true, {{"location", kReal}, {"scale", kPositive}}},
      {"HalfNormal", true, true, {{"scale", kPositive}}},
      {"Rayleigh", true, true, {{"scale", kPositive}}},
      {"Weibull", true, true, {{"scale", kPositive}, {"shape", kPositive}}},
      {"GaussianMixture",
       true,
       false,
       {{"proportion", kProportion}, {"mean", kReal}, {"standard deviation", kPositive}}},
      {"Johnson",
       true,
       false,
       {{"type", kJohnsonType},
        {"gamma", kReal},
        {"delta", kPositive},
        {"lambda_", kPositive},
        {"xi", kReal}}},
      {"GeneralExtremeValue", true, false, {{"location", kReal}, {"scale", kPositive}, {"shape", kReal}}},
      {"GeneralPareto", true, true, {{"scale", kPositive}, {"shape", kReal}}},
      {"Triangular", true, false, {{"min", kReal}, {"max", kReal}, {"mode", kReal}}},
      {"Binomial", false, false, {{"proportion", kProportion}, {"trials", kTrials}}},
      {"Poisson", false, false, {{"mean", kPositive}}},
      {"Geometric", false, false, {{"proportion", kPositiveProportion}}},
      {"Bernoulli", false, false, {{"proportion", kProportion}}},
      {"Histogram", false, false, {{"code", kReal}, {"proportion", kProportion}}},
  }};
  return descriptions;
}

constexpr double kMostTrials = 9007199254740992.0;  // 2^53

// What a value of the domain must be; null where it is.
const char* Requirement(Domain domain, double value) {
  const bool whole = value == std::floor(value);
  switch (domain) {
    case kReal:
      return std::isfinite(value) ? nullptr : "a finite number";
    case kPositive:
      return std::isfinite(value) && value > 0 ? nullptr : "greater than 0";
    case kProportion:
      return value >= 0 && value <= 1 ? nullptr : "between 0 and 1";
    case kPositiveProportion:
      return value > 0 && value <= 1 ? nullptr : "greater than 0 and at most 1";
    case kTrials:
      return whole && value >= 1 && value <= kMostTrials ? nullptr : "a whole number from 1 to 2**53";
    case kJohnsonType:
      return whole && value >= 1 && value <= 4 ? nullptr : "1 (SL), 2 (SU), 3 (SB) or 4 (SN)";
  }
  return nullptr;
}

void Require(const char* name, Domain domain, double value) {
  if (const char* requirement = Requirement(domain, value))
    throw py::value_error(std::string(name) + " must be " + requirement + ", not " + ShortestNumber(value));
}

[[noreturn]] void RefuseType(const std::string& name, const char* wanted, const py::handle& value) {
  throw py::type_error(name + " must be " + wanted + ", not " +
                       std::string(py::str(py::type::of(value).attr("__name__"))));
}

double NumberFrom(const char* name, const py::handle& value) {
  const double number = PyFloat_AsDouble(value.ptr());
  if (number != -1 || !PyErr_Occurred()) return number;
  const bool tooLarge = PyErr_ExceptionMatches(PyExc_OverflowError) != 0;
  PyErr_Clear();
  if (tooLarge) throw py::value_error(std::string(name) + " is too large for a number");
  RefuseType(name, "a number", value);
}

// What remains to be wrong when each value is in its domain.
const char* WrongTogether(std::size_t code, std::span<const double> values) {
  if (Descriptions()[code].name != std::string_view("Triangular")) return "proportions must add up to 1";
  return values[2] < values[0] || values[2] > values[1] ? "mode must lie between min and max"
                                                        : "min must be less than max";
}

class Distribution {
 public:
  // Throws ValueError or TypeError that names the parameter at fault.
  Distribution(std::size_t code, const py::sequence& values, const py::object& offset) : code_(code) {
    if (code_ >= Descriptions().size())
      throw py::value_error("no distribution of code " + std::to_string(code_));
    const auto& parameters = Descriptions()[code_].parameters;
    for (const py::handle value : values)
      values_.push_back(NumberFrom(parameters[values_.size() % parameters.size()].name, value));
    offset_ = NumberFrom("offset", offset);
    const bool fits = Functions().valueCount == 0
                          ? !values_.empty() && values_.size() % parameters.size() == 0
                          : values_.size() == parameters.size();
    if (!fits) throw py::value_error("wrong number of parameters");
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const Parameter& parameter = parameters[i % parameters.size()];
      Require(parameter.name, parameter.domain, values_[i]);
    }
    Require("offset", kReal, offset_);
    if (!Functions().isValid(values_)) throw py::value_error(WrongTogether(code_, values_));
  }

  std::size_t Code() const { return code_; }
  bool IsContinuous() const { return Descriptions()[code_].continuous; }
  bool HasOffset() const { return Descriptions()[code_].hasOffset; }
  double Offset() const { return offset_; }
  const std::vector<double>& Values() const { return values_; }
  const LawFunctions& Functions() const { return AllLawFunctions()[code_]; }

  double Mean() const { return Functions().mean(values_, offset_); }
  double Variance() const { return Functions().variance(values_, offset_); }

  using ArrayForm = void (*LawFunctions::*)(LawFunctions::In, LawFunctions::In, double, LawFunctions::Out);
  void Apply(ArrayForm form, std::span<const double> in, std::span<double> out) const {
    (Functions().*form)(in, values_, offset_, out);
  }

 private:
  std::size_t code_;
  std::vector<double> values_;
  double offset_ = 0;
};

// Values a call takes at once before it looks whether the person wants to stop: less than a second of the
// slowest function.
constexpr std::size_t kChunk = std::size_t{1} << 16;

template <class Work>
void InChunks(std::size_t count, const Work& work) {
  for (std::size_t begin = 0; begin < count; begin += kChunk) {
    if (begin > 0 && PyErr_CheckSignals() != 0) throw py::error_already_set();
    const py::gil_scoped_release release;
    work(begin, std::min(kChunk, count - begin));
  }
}

void MarkOutside(std::span<const double> p, std::span<double> out) {
  for (std::size_t i = 0; i < p.size(); ++i) {
    if (!(p[i] >= 0 && p[i] <= 1)) out[i] = std::numeric_limits<double>::quiet_NaN();
  }
}

// Numbers, real ones, that a function is asked for. Throws TypeError for anything else.
Numbers NumbersFrom(const char* name, const py::object& x) {
  const py::array given = py::array::ensure(x);
  constexpr std::string_view kKinds = "biufO";
  if (given && kKinds.find(given.dtype().kind()) != std::string_view::npos) {
    if (Numbers numbers = Numbers::ensure(given)) return numbers;
  }
  PyErr_Clear();
  RefuseType(name, "a number or an array of numbers", x);
}

template <Distribution::ArrayForm kForm>
constexpr const char* ArgumentName() {
  if (kForm == &LawFunctions::quantiles) return "p";
  return kForm == &LawFunctions::complementQuantiles ? "q" : "x";
}

// A function of the distribution at a number, or at each of an array of any shape.
template <Distribution::ArrayForm kForm, bool kOfProbability>
py::object At(const Distribution& distribution, const py::object& x) {
  const Numbers in = NumbersFrom(ArgumentName<kForm>(), x);
  py::array_t<double> out(std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
  const auto count = static_cast<std::size_t>(in.size());
  const double* from = in.data();
  double* to = out.mutable_data();
  InChunks(count, [&](std::size_t begin, std::size_t size) {
    distribution.Apply(kForm, {from + begin, size}, {to + begin, size});
    if constexpr (kOfProbability) MarkOutside({from + begin, size}, {to + begin, size});
  });
  if (in.ndim() == 0) return py::float_(*to);
  return out;
}

// A uniform deviate of 0 would give the end of the support, infinite for many types.
constexpr double kLeastProbability = 0x1p-54;

void DrawInto(const Distribution& distribution, const RandomStream& stream, std::size_t begin,
              std::span<double> out) {
  stream.FillUniform(begin, out);
  for (double& u : out) u = std::max(u, kLeastProbability);
  distribution.Apply(&LawFunctions::quantiles, out, out);
}

// The seed asked for, or one that nobody knows.
std::int32_t SeedFrom(const py::object& seed) {
  if (seed.is_none()) return static_cast<std::int32_t>(std::random_device()() & 0x7fffffffU);
  if (!PyIndex_Check(seed.ptr())) RefuseType("seed", "a whole number", seed);
  const py::int_ whole(seed);
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(whole.ptr(), &overflow);
  if (overflow != 0 || number < 0 || number > std::numeric_limits<std::int32_t>::max())
    throw py::value_error("seed must be from 0 to 2147483647");
  return static_cast<std::int32_t>(number);
}

py::ssize_t ExtentFrom(const py::handle& size) {
  if (!PyIndex_Check(size.ptr())) RefuseType("size", "a whole number or a sequence of these", size);
  const py::ssize_t extent = PyNumber_AsSsize_t(size.ptr(), PyExc_ValueError);
  if (extent == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (extent < 0) throw py::value_error("size must not be negative");
  return extent;
}

std::vector<py::ssize_t> ShapeFrom(const py::object& size) {
  std::vector<py::ssize_t> shape;
  if (size.is_none()) return shape;
  if (!py::isinstance<py::sequence>(size)) return {ExtentFrom(size)};
  for (const py::handle extent : size) shape.push_back(ExtentFrom(extent));
  return shape;
}

py::object Draw(const Distribution& distribution, const py::object& size, const py::object& seed) {
  const RandomStream stream(SeedFrom(seed));
  const std::vector<py::ssize_t> shape = ShapeFrom(size);
  py::array_t<double> out(shape);
  double* to = out.mutable_data();
  InChunks(static_cast<std::size_t>(out.size()), [&](std::size_t begin, std::size_t count) {
    DrawInto(distribution, stream, begin, {to + begin, count});
  });
  if (size.is_none()) return py::float_(*to);
  return out;
}

// The values by name; of groups, one list for each name.
py::dict Parameters(const Distribution& distribution) {
  const auto& parameters = Descriptions()[distribution.Code()].parameters;
  const auto& values = distribution.Values();
  py::dict result;
  for (std::size_t p = 0; p < parameters.size(); ++p) {
    if (distribution.Functions().valueCount != 0) {
      result[parameters[p].name] = values[p];
      continue;
    }
    py::list group;
    for (std::size_t i = p; i < values.size(); i += parameters.size()) group.append(values[i]);
    result[parameters[p].name] = group;
  }
  if (distribution.HasOffset()) result["offset"] = distribution.Offset();
  return result;
}

}  // namespace

void BindDistributions(py::module_& module) {
  py::class_<Distribution>(module, "Distribution", "The base of the sixteen distributions.")
      .def(py::init<std::size_t, py::sequence, py::object>(), py::arg("code"), py::arg("values"),
           py::arg("offset") = 0.0)
      .def("pdf", &At<&LawFunctions::densities, false>, py::arg("x"),
           "The density at x; of a discrete distribution, the probability of x.")
      .def("logpdf", &At<&LawFunctions::logDensities, false>, py::arg("x"),
           "The logarithm of pdf(x), also where pdf(x) is too small for a number.")
      .def("cdf", &At<&LawFunctions::cdfs, false>, py::arg("x"), "The probability of values up to x.")
      .def("sf", &At<&LawFunctions::complements, false>, py::arg("x"),
           "The probability of values above x, 1 - cdf(x) without cancellation.")
      .def("ppf", &At<&LawFunctions::quantiles, true>, py::arg("p"),
           "The quantile: the smallest x with cdf(x) >= p. NaN outside 0 to 1; 0 and 1 give the ends of the "
           "support.")
      .def("isf", &At<&LawFunctions::complementQuantiles, true>, py::arg("q"),
           "The x with sf(x) = q, exact also where 1 - q is not. NaN outside 0 to 1.")
      .def("mean", &Distribution::Mean, "The mean, infinite where the integral is.")
      .def("var", &Distribution::Variance, "The variance, infinite where the integral is.")
      .def(
          "std", [](const Distribution& d) { return std::sqrt(d.Variance()); }, "The standard deviation.")
      .def(
          "rvs", &Draw, py::arg("size") = py::none(), py::arg("seed") = py::none(),
          "Random values by inversion: one number, or an array of the size (a number or a shape). The same "
          "seed, 0 to 2147483647, gives the same values on every machine; without one they differ each time.")
      .def_property_readonly("code", &Distribution::Code, "The code of the type in macros and project files.")
      .def_property_readonly("is_continuous", &Distribution::IsContinuous, "False for a discrete type.")
      .def_property_readonly("parameters", &Parameters, "The parameters by name.")
      .def_property_readonly("_values", &Distribution::Values)
      .def_property_readonly("_offset", &Distribution::Offset)
      .def_property_readonly("_has_offset", &Distribution::HasOffset);
  py::list names;
  for (const Description& description : Descriptions()) names.append(description.name);
  module.attr("_distribution_names") = py::tuple(names);
}

}  // namespace brenvolt::python
