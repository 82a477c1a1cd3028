// Arbitrary bytes as the parts of an xlsx workbook, a form feed between them: a sheet, the shared texts, the formats.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/office/xlsx_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  brenvolt::XlsxParts parts{
      {"xl/workbook.xml", R"(<workbook><sheets><sheet name="S" r:id="a"/></sheets></workbook>)"},
      {"xl/_rels/workbook.xml.rels", R"(<R><Relationship Id="a" Target="worksheets/s.xml"/>)"
                                     R"(<Relationship Id="b" Type="x/sharedStrings" Target="t.xml"/>)"
                                     R"(<Relationship Id="c" Type="x/styles" Target="f.xml"/></R>)"}};
  for (const char* name : {"xl/worksheets/s.xml", "xl/t.xml", "xl/f.xml"}) {
    const std::size_t end = rest.find('\f');
    parts[name] = std::string(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  try {
    brenvolt::ReadXlsxParts(std::move(parts), "file");
  } catch (const brenvolt::Error&) {
  }
  return 0;
}
