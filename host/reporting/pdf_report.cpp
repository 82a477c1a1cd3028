#include "host/reporting/pdf_report.h"

#include "host/base/process/dynamic_library.h"
#include "host/graphs/picture.h"

namespace brenvolt {

std::string PdfOf(const Report& report) {
  static ReportFunction* const layOut = DrawingLibrary().Symbol<ReportFunction*()>(kReportSymbol)();
  return layOut(report);
}

}  // namespace brenvolt
