// The sixteen distributions as Python classes: one class that carries out what brenvolt/distributions.py
// offers under the names and signatures of each.
#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "bindings/python/module.h"
#include "bindings/python/numpy_arrays.h"
#include "host/base/number_text.h"
#include "host/jobs/notation/value_words.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/johnson.h"
#include "host/numeric/random/random_stream.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

using enum DistributionFunction;

// The name of a parameter; "lambda" is a word of the language.
std::string NameOf(const ParameterFacts& parameter) {
  return std::string(parameter.name) + (parameter.name == "lambda" ? "_" : "");
}

void Require(const std::string& name, ParameterRange range, double value) {
  if (!IsInRange(value, range))
    throw py::value_error(name + " must be " + std::string(RangeText(range)) + ", not " +
                          ShortestNumber(value));
}

[[noreturn]] void RefuseType(const std::string& name, const char* wanted, const py::handle& value) {
  throw py::type_error(name + " must be " + wanted + ", not " +
                       std::string(py::str(py::type::of(value).attr("__name__"))));
}

double NumberFrom(const std::string& name, const py::handle& value) {
  const double number = PyFloat_AsDouble(value.ptr());
  if (number != -1 || !PyErr_Occurred()) return number;
  const bool tooLarge = PyErr_ExceptionMatches(PyExc_OverflowError) != 0;
  PyErr_Clear();
  if (tooLarge) throw py::value_error(name + " is too large for a number");
  RefuseType(name, "a number", value);
}

class BoundDistribution {
 public:
  // Throws ValueError or TypeError that names the parameter at fault.
  BoundDistribution(std::size_t code, const py::sequence& values, const py::object& offset)
      : code_(static_cast<DistributionCode>(code)) {
    if (code >= DistributionTable().size())
      throw py::value_error("no distribution of code " + std::to_string(code));
    for (const py::handle value : values)
      values_.push_back(NumberFrom(NameOf(ParameterAt(values_.size())), value));
    offset_ = NumberFrom("offset", offset);
    const std::size_t count = Facts().ParameterCount();
    const bool fits =
        Facts().isUserDefined ? !values_.empty() && values_.size() % count == 0 : values_.size() == count;
    if (!fits) throw py::value_error("wrong number of parameters");
    for (std::size_t i = 0; i < values_.size(); ++i)
      Require(NameOf(ParameterAt(i)), ParameterAt(i).range, values_[i]);
    Require("offset", ParameterRange::kFinite, offset_);
    if (const auto wrong = WrongTogether(code_, values_)) throw py::value_error(*wrong);
  }

  const DistributionFacts& Facts() const { return EntryOf(code_).facts; }
  AnyDistribution View() const { return {code_, values_, offset_}; }
  double Offset() const { return offset_; }
  const std::vector<double>& Values() const { return values_; }

 private:
  // Of value i; of user-defined distributions each group has the same parameters.
  const ParameterFacts& ParameterAt(std::size_t i) const {
    return Facts().parameters[i % Facts().ParameterCount()];
  }

  DistributionCode code_;
  std::vector<double> values_;
  double offset_ = 0;
};

// Values a call takes at once before it checks whether the person wants to stop: less than a second of the
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

// Numbers, real ones, that a function is asked for; NaN for those that a NumPy mask hides. Throws TypeError for anything
// else.
Numbers NumbersFrom(const char* name, const py::object& x) {
  const py::array given = py::array::ensure(x);
  constexpr std::string_view kKinds = "biufO";
  if (given && kKinds.find(given.dtype().kind()) != std::string_view::npos) {
    const bool isMasked = py::hasattr(x, "mask") && py::hasattr(x, "filled");
    constexpr double kHidden = std::numeric_limits<double>::quiet_NaN();
    const py::object plain =
        isMasked ? py::object(x.attr("astype")("float64").attr("filled")(kHidden)) : py::object(given);
    if (Numbers numbers = Numbers::ensure(plain)) return numbers;
  }
  PyErr_Clear();
  RefuseType(name, "a number or an array of numbers", x);
}

constexpr const char* ArgumentName(DistributionFunction function) {
  if (function == DistributionFunction::kQuantile) return "p";
  return function == DistributionFunction::kComplementQuantile ? "q" : "x";
}

// A function of the distribution at a number, or at each of an array of any shape.
template <DistributionFunction kFunction>
py::object At(const BoundDistribution& distribution, const py::object& x) {
  const Numbers in = NumbersFrom(ArgumentName(kFunction), x);
  py::array_t<double> out(std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
  const auto count = static_cast<std::size_t>(in.size());
  const double* from = in.data();
  double* to = out.mutable_data();
  InChunks(count, [&](std::size_t begin, std::size_t size) {
    distribution.View().At(kFunction, {from + begin, size}, {to + begin, size});
    if constexpr (TakesProbability(kFunction)) MarkOutside({from + begin, size}, {to + begin, size});
  });
  if (in.ndim() == 0) return py::float_(*to);
  return out;
}

// A uniform deviate of 0 would give the end of the support, infinite for many distributions.
constexpr double kLeastProbability = 0x1p-54;

void DrawInto(const BoundDistribution& distribution, const RandomStream& stream, std::size_t begin,
              std::span<double> out) {
  stream.FillUniform(begin, out);
  for (double& u : out) u = std::max(u, kLeastProbability);
  distribution.View().Quantile(out, out);
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

py::object Draw(const BoundDistribution& distribution, const py::object& size, const py::object& seed) {
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
py::dict Parameters(const BoundDistribution& distribution) {
  const DistributionFacts& facts = distribution.Facts();
  const auto& values = distribution.Values();
  const std::size_t count = facts.ParameterCount();
  py::dict result;
  for (std::size_t p = 0; p < count; ++p) {
    const py::str name(NameOf(facts.parameters[p]));
    if (!facts.isUserDefined) {
      result[name] = values[p];
      continue;
    }
    py::list group;
    for (std::size_t i = p; i < values.size(); i += count) group.append(values[i]);
    result[name] = group;
  }
  if (facts.HasOffset()) result["offset"] = distribution.Offset();
  return result;
}

}  // namespace

void BindDistributions(py::module_& module) {
  py::class_<BoundDistribution>(module, "Distribution", "The base of the sixteen distributions.")
      .def(py::init<std::size_t, py::sequence, py::object>(), py::arg("code"), py::arg("values"),
           py::arg("offset") = 0.0)
      .def("pdf", &At<kDensity>, py::arg("x"),
           "The density at x; of a discrete distribution, the probability of x.")
      .def("logpdf", &At<kLogDensity>, py::arg("x"),
           "The logarithm of pdf(x), also where pdf(x) is too small for a number.")
      .def("cdf", &At<kCdf>, py::arg("x"), "The probability of values up to x.")
      .def("sf", &At<kComplement>, py::arg("x"),
           "The probability of values above x, 1 - cdf(x) without cancellation.")
      .def("ppf", &At<kQuantile>, py::arg("p"),
           "The quantile: the smallest x with cdf(x) >= p. NaN outside 0 to 1; 0 and 1 give the ends of the "
           "support.")
      .def("isf", &At<kComplementQuantile>, py::arg("q"),
           "The x with sf(x) = q, exact also where 1 - q is not. NaN outside 0 to 1.")
      .def(
          "mean", [](const BoundDistribution& d) { return d.View().Mean(); },
          "The mean, infinite where the integral is.")
      .def(
          "var", [](const BoundDistribution& d) { return d.View().Variance(); },
          "The variance, infinite where the integral is.")
      .def(
          "std", [](const BoundDistribution& d) { return std::sqrt(d.View().Variance()); },
          "The standard deviation.")
      .def(
          "rvs", &Draw, py::arg("size") = py::none(), py::arg("seed") = py::none(),
          "Random values by inversion: one number, or an array of the size (a number or a shape). The same "
          "seed, 0 to 2147483647, gives the same values on every machine; without one they differ each time.")
      .def_property_readonly(
          "code", [](const BoundDistribution& d) { return static_cast<int>(d.Facts().code); },
          "The code of the distribution in macros and project files.")
      .def_property_readonly(
          "is_continuous", [](const BoundDistribution& d) { return d.Facts().isContinuous; },
          "False for a discrete distribution.")
      .def_property_readonly("parameters", &Parameters, "The parameters by name.")
      .def_property_readonly("_values", &BoundDistribution::Values)
      .def_property_readonly("_offset", &BoundDistribution::Offset)
      .def_property_readonly("_has_offset", [](const BoundDistribution& d) { return d.Facts().HasOffset(); });
  py::list names;
  for (const DistributionEntry* entry : DistributionTable()) names.append(std::string(entry->facts.name));
  module.attr("_distribution_names") = py::tuple(names);
  module.attr("_johnson_families") = py::cast(kJohnsonFamilies);
}

}  // namespace brenvolt::python
