#include "host/automation/macro_recorder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/utf8.h"

namespace brenvolt {
namespace {

constexpr const char* kNothing = "Nothing";
constexpr std::string_view kDialog = "dialog";
constexpr std::string_view kResult = "document";
constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7f;

std::string Escaped(const char* format, unsigned code) {
  std::array<char, 16> buffer{};
  std::snprintf(buffer.data(), buffer.size(), format, code);
  return buffer.data();
}

bool IsWhole(const std::string& text) {
  return text.find_first_not_of("-0123456789") == std::string::npos;
}

struct ValueWriter {
  MacroRecorder& recorder;
  bool inArray;

  std::string operator()(std::monostate) const { return kNothing; }
  std::string operator()(bool value) const { return value ? "True" : "False"; }
  std::string operator()(std::int32_t value) const { return Integer(value); }
  std::string operator()(std::int64_t value) const { return Integer(value); }
  std::string operator()(double value) const {
    return inArray && IsNotSet(value) ? kNothing : PythonReal(value);
  }
  std::string operator()(const std::string& value) const { return PythonText(value); }
  std::string operator()(const Variant::Object& value) const {
    return value == nullptr ? kNothing : recorder.NameOf(value.get());
  }
  std::string operator()(const Variant::Array& value) const {
    std::string text;
    for (const Variant& element : value)
      text += (text.empty() ? "" : ", ") + element.Visit(ValueWriter{recorder, true});
    return "Array(" + text + ")";
  }

 private:
  std::string Integer(std::int64_t value) const {
    return inArray && value == kNotSetCount ? kNothing : std::to_string(value);
  }
};

std::string ConstantName(std::string_view enumeration, const Variant& value) {
  const EnumerationDescription* found = FindEnumeration(enumeration);
  const auto place = static_cast<std::size_t>(value.ToInteger());
  if (found == nullptr || place >= found->constants.size()) return std::to_string(value.ToInteger());
  return std::string(found->constants[place]);
}

}  // namespace

std::string PythonText(std::string_view text) {
  // Bytes that are not text represent themselves, as surrogates, in the names of files.
  const bool isText = IsText(text);
  std::string literal = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      literal += '\\';
      literal += c;
    } else if (byte < kFirstPrintable || byte == kDelete) {
      literal += Escaped("\\x%02x", byte);
    } else if (!isText && byte > kDelete) {
      literal += Escaped("\\udc%02x", byte);
    } else {
      literal += c;
    }
  }
  return literal + "\"";
}

std::string PythonPath(const std::filesystem::path& path) {
  return PythonText(path.string());
}

std::string PythonReal(double x) {
  if (!std::isfinite(x)) return "float(\"" + ShortestNumber(x) + "\")";
  const std::string text = ShortestNumber(x);
  return IsWhole(text) ? text + ".0" : text;
}

void MacroRecorder::Line(std::string line) {
  lines_.push_back({{}, std::move(line)});
}

std::string MacroRecorder::FreeName(std::string_view base) {
  std::string name(base);
  for (int number = 2; std::ranges::find(names_, name) != names_.end(); ++number)
    name = std::string(base) + std::to_string(number);
  names_.push_back(name);
  return name;
}

std::string MacroRecorder::Assign(std::string_view name, const std::string& expression, const void* object) {
  std::string taken = FreeName(name);
  lines_.push_back({taken, expression});
  Know(object, taken);
  return taken;
}

void MacroRecorder::Know(const void* object, std::string expression) {
  known_.push_back({object, std::move(expression), 0, {}});
}

const MacroRecorder::Known* MacroRecorder::Find(const void* object) const {
  const auto found = std::ranges::find(known_.rbegin(), known_.rend(), object, &Known::object);
  return found != known_.rend() ? &*found : nullptr;
}

bool MacroRecorder::Knows(const void* object) const {
  return Find(object) != nullptr;
}

std::string MacroRecorder::NameOf(const void* object) {
  const Known* known = Find(object);
  if (known == nullptr)
    throw Error("a macro cannot be recorded: nothing in it leads to an object that is used");
  if (!known->expression.empty()) return known->expression;
  std::string& name = lines_[known->line].name;
  if (name.empty()) name = FreeName(known->base);
  return name;
}

std::string MacroRecorder::AnalysisName(const void* analysis) {
  return Knows(analysis) ? NameOf(analysis) : "analysis";
}

std::string MacroRecorder::PutText(const MemberDescription& member, const Variant& value) {
  if (member.put == AutomationType::kEnumeration) return ConstantName(member.enumeration, value);
  const bool isNumber = member.put == AutomationType::kInteger || member.put == AutomationType::kReal;
  return value.Visit(ValueWriter{*this, isNumber});
}

void MacroRecorder::Call(const void* analysis, std::uint64_t dialog, const MacroCall& call) {
  std::string text = std::string(kDialog) + "." + std::string(call.member->name);
  std::string indexes;
  for (const Variant& index : call.indexes)
    indexes += (indexes.empty() ? "" : ", ") + index.Visit(ValueWriter{*this, false});
  if (!indexes.empty()) text += "[" + indexes + "]";
  if (call.kind == CallKind::kMethod) text += "()";
  if (call.kind == CallKind::kPut)
    text += " = " + (call.text.empty() ? PutText(*call.member, call.value) : call.text);
  if (analysis != analysis_ || dialog != dialog_) {
    if (!lines_.empty()) Line({});
    Line(std::string(kDialog) + " = " + AnalysisName(analysis) + ".Dialog");
    analysis_ = analysis;
    dialog_ = dialog;
  }
  lines_.push_back({{}, std::move(text)});
  const Variant::Object result = call.result.ToObject();
  if (result == nullptr) return;
  kept_.push_back(result);
  known_.push_back({result.get(), {}, lines_.size() - 1, kResult});
}

std::string MacroRecorder::Text(std::string_view origin) const {
  std::string text = "# ";
  for (const char c : origin) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      text += "\n# ";
    } else {
      text += byte < kFirstPrintable || byte == kDelete ? '?' : c;
    }
  }
  if (!IsText(text))
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) > kDelete; }, '?');
  text += "\nfrom brenvolt import *\n\n";
  for (const MacroLine& line : lines_) {
    if (!line.name.empty()) text += line.name + " = ";
    text += line.text + "\n";
  }
  return text;
}

}  // namespace brenvolt
