#include "host/automation/interface_text.h"

#include <array>
#include <cstdio>

namespace brenvolt {
namespace {

// A string literal of the description.
std::string Literal(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

// A GUID without its braces.
std::string_view Bare(std::string_view identifier) {
  return identifier.size() > 2 ? identifier.substr(1, identifier.size() - 2) : identifier;
}

std::string Number(DispatchId id) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%x", static_cast<unsigned>(id));
  return text.data();
}

// The index arguments, each followed by a comma.
std::string Indexes(const MemberDescription& member) {
  std::string text;
  for (const ArgumentDescription& index : member.indexes) {
    text += "[in] " + std::string(InterfaceTypeName(index.type)) + " " + std::string(index.name) + ", ";
  }
  return text;
}

// One line for a call: `kind` is "", ", propget" or ", propput".
std::string CallText(const MemberDescription& member, std::string_view kind, const std::string& arguments) {
  return "    [id(" + Number(member.id) + ")" + std::string(kind) + ", helpstring(" + Literal(member.help) +
         ")]\n    HRESULT " + std::string(member.name) + "(" + arguments + ");\n";
}

std::string MemberText(const MemberDescription& member) {
  const std::string_view get = InterfaceTypeName(member.get, member.enumeration);
  const std::string_view put = InterfaceTypeName(member.put, member.enumeration);
  const std::string result = get.empty() ? std::string() : "[out, retval] " + std::string(get) + " *value";
  if (member.kind == MemberKind::kMethod) return CallText(member, "", result);
  std::string text;
  if (!get.empty()) text += CallText(member, ", propget", Indexes(member) + result);
  if (!put.empty()) {
    text += CallText(member, ", propput", Indexes(member) + "[in] " + std::string(put) + " value");
  }
  return text;
}

std::string EnumerationText(const EnumerationDescription& enumeration) {
  const std::string name(enumeration.name);
  std::string text = "  typedef [helpstring(" + Literal(enumeration.help) + ")]\n  enum " +
                     (enumeration.unnamed ? std::string() : name + " ") + "{\n";
  for (std::size_t i = 0; i < enumeration.constants.size(); ++i) {
    const char* separator = i + 1 < enumeration.constants.size() ? ",\n" : "\n";
    text += "    " + std::string(enumeration.constants[i]) + " = " + std::to_string(i) + separator;
  }
  return text + "  } " + name + ";\n";
}

std::string InterfaceBlock(const InterfaceDescription& interface, std::string_view base) {
  std::string text = "  [object, uuid(" + std::string(Bare(interface.identifier)) +
                     "), dual, oleautomation, helpstring(" + Literal(interface.help) + ")]\n  interface " +
                     std::string(interface.name) + " : " + std::string(base) + " {\n";
  for (const MemberDescription& member : interface.members) text += MemberText(member);
  return text + "  };\n";
}

}  // namespace

std::string_view InterfaceTypeName(AutomationType type, std::string_view enumeration) {
  switch (type) {
    case AutomationType::kNone:
      return "";
    case AutomationType::kBoolean:
      return "VARIANT_BOOL";
    case AutomationType::kInteger:
      return "long";
    case AutomationType::kReal:
      return "double";
    case AutomationType::kText:
      return "BSTR";
    case AutomationType::kVariant:
      return "VARIANT";
    case AutomationType::kObject:
      return "IDispatch *";
    case AutomationType::kEnumeration:
      break;
  }
  return enumeration;
}

std::string InterfaceText(const TypeLibrary& library) {
  std::string text = "import \"oaidl.idl\";\n\n[uuid(" + std::string(Bare(library.identifier)) +
                     "), version(" + std::to_string(library.version.major) + "." +
                     std::to_string(library.version.minor) + "), helpstring(" + Literal(library.help) +
                     ")]\nlibrary " + std::string(library.name) + " {\n  importlib(\"stdole2.tlb\");\n";
  for (const EnumerationDescription& enumeration : library.enumerations) {
    text += "\n" + EnumerationText(enumeration);
  }
  std::string_view base = "IDispatch";
  for (const InterfaceDescription& interface : library.interfaces) {
    text += "\n" + InterfaceBlock(interface, base);
    base = library.interfaces.front().name;
  }
  return text + "};\n";
}

}  // namespace brenvolt
