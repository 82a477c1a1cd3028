// Writes what is done with analyses as a macro: a Python program over the package brenvolt that does the same
// when it runs. Dialogs write their own lines while a recorder is attached to their analysis; who opens data
// and saves results writes those.
//
// Objects are identified by their addresses. Whoever names one says how long that holds: the recorder must not be
// asked for an address that has since become another object's.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/automation/type_library.h"
#include "host/automation/variant.h"

namespace brenvolt {

// Values as Python writes them. Numbers read back exactly; bytes of a text that are not UTF-8 become what
// Python takes them for in the names of files.
std::string PythonText(std::string_view text);
std::string PythonPath(const std::filesystem::path& path);
std::string PythonReal(double x);

// One call of a member as a line of a macro, without the dialog in front: "IsWeibullDistribution[1] = True".
struct MacroCall {
  const MemberDescription* member = nullptr;
  CallKind kind = CallKind::kGet;
  std::vector<Variant> indexes;
  Variant value;     // of a put
  std::string text;  // of a put whose value a macro writes in another way than PutText does; else empty
  Variant result;    // of a get and a method
};

class MacroRecorder {
 public:
  // Appends a line.
  void Line(std::string line);
  // Appends "name = expression" for an object, with a number after the name if it is taken, and returns
  // the name. The object is known by it from then on.
  std::string Assign(std::string_view name, const std::string& expression, const void* object);
  // An object that a macro reaches by an expression.
  void Know(const void* object, std::string expression);
  // How a macro reaches an object. Throws Error for one that is not known.
  std::string NameOf(const void* object);
  bool Knows(const void* object) const;

  // Appends a call of a dialog's member. `analysis` is known, or is called "analysis"; `dialog` is the number
  // of the open dialog, which no other dialog of the process has.
  void Call(const void* analysis, std::uint64_t dialog, const MacroCall& call);
  // How an analysis is called.
  std::string AnalysisName(const void* analysis);

  // The value of a put as a macro writes it. Throws Error for an object that is not known.
  std::string PutText(const MemberDescription& member, const Variant& value);

  bool IsEmpty() const { return lines_.empty(); }
  // The whole macro. `origin` says in a comment where it came from; it may have several lines.
  std::string Text(std::string_view origin) const;

 private:
  struct MacroLine {
    std::string name;  // of the variable that takes the line's value; empty for none
    std::string text;
  };
  // Either an expression, or the line whose value the object is, which gets a name when it is asked for.
  struct Known {
    const void* object;
    std::string expression;
    std::size_t line;
    std::string_view base;
  };
  const Known* Find(const void* object) const;
  std::string FreeName(std::string_view base);

  std::vector<MacroLine> lines_;
  std::vector<Known> known_;
  std::vector<std::string> names_;
  const void* analysis_ = nullptr;  // of the dialog that the macro's variable `dialog` is
  std::uint64_t dialog_ = 0;
  std::vector<Variant::Object> kept_;  // results, whose addresses must not become another object's
};

}  // namespace brenvolt
