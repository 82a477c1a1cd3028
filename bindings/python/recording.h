// The macro that a Python program's calls are recorded as, one at a time per process.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "bindings/python/analysis.h"
#include "bindings/python/sheets.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt::python {

// What records the process's calls; it does nothing while no macro is recorded. Called in the host's turn.
JobRecorder& TheJob();

// Keeps an object alive while a macro is recorded.
void Keep(const std::shared_ptr<void>& object);
// Names for what Python holds. While a macro is recorded, what it names stays alive, so that no address
// becomes another object's.
void RecordOpened(const std::shared_ptr<WorkbookRef>& workbook, const std::filesystem::path& path,
                  JobRecorder::Arguments reading = {});
void RecordMade(const std::shared_ptr<WorkbookRef>& workbook);
// A sheet of a workbook by the name that was asked for, "" for the first data sheet; nothing if the macro
// has it already.
std::shared_ptr<SheetRef> Recorded(const std::shared_ptr<SheetRef>& sheet, const std::string& name);
void RecordGiven(std::string_view name, const void* object, std::string_view function,
                 const JobRecorder::Arguments& arguments, const std::shared_ptr<SheetRef>& sheet);
// How the macro reaches a sheet or what a call gave; "" while nothing is recorded. Throws Error if nothing
// leads to it.
std::string RecordedName(const std::shared_ptr<SheetRef>& sheet);
// A line "SHEET.function(arguments)" or "SHEET.attribute = text".
void RecordCall(const std::shared_ptr<SheetRef>& sheet, std::string_view function,
                const JobRecorder::Arguments& arguments);
void RecordAttribute(const std::shared_ptr<SheetRef>& sheet, std::string_view attribute,
                     const std::optional<std::string>& text);
// For changes of data, which a macro has no line for: throws Error while a macro has the sheet.
void RefuseRecordedChange(const std::shared_ptr<SheetRef>& sheet);
void RecordStarted(AnalysisRef& analysis);
// A document that an analysis showed after `place` others.
void RecordShown(AnalysisRef& analysis, std::size_t place, const Variant::Object& document);
// A sheet that a job works on; it may be null. Throws Error if it is the table of a document that the macro cannot name.
void RecordAsInput(const std::shared_ptr<SheetRef>& sheet);
// A document that is made of a sheet to be passed to a call.
void RecordPassed(const std::shared_ptr<SheetRef>& sheet, const Variant::Object& document);
// The analysis no longer exists.
void ForgetAnalysis(AnalysisRef& analysis);

}  // namespace brenvolt::python
