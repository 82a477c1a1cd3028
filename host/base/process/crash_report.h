// Reports of fatal errors, by an optional library "CrashRpt" that a site may install. Without the library
// nothing is written, and an error takes its ordinary course.
//
// The library may have either entry or both, with C linkage:
//   void StackTrace(std::int32_t depth)
//   std::int32_t GenerateSilentErrorReport(const char* folder, const void* record, const char* context)
//     writes a report into the folder; `record` is what the operating system says of the error (siginfo_t);
//     returns non-zero when it did
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

namespace brenvolt {

class DynamicLibrary;

// Makes the missing folders on a path, one by one. False when one cannot be made; those before it stay.
bool MakeFolders(const std::filesystem::path& folder);

// The folder for error reports, made if it is missing: "Brenvolt/Errors" under the machine's common
// application-data folder. That is BRENVOLT_DATA if it is set, otherwise /var/lib; if the user may not
// write there, the user's own: XDG_DATA_HOME or ~/.local/share. Nothing if no such folder can be made.
std::optional<std::filesystem::path> ErrorFolder();

class CrashReporter {
 public:
  // The library by its name in the folder of this one, or by an absolute path. It is looked for nowhere else.
  explicit CrashReporter(const std::filesystem::path& library = "libCrashRpt.so");
  ~CrashReporter();
  CrashReporter(const CrashReporter&) = delete;
  CrashReporter& operator=(const CrashReporter&) = delete;

  // False without the library: nothing is reported then.
  bool IsAvailable() const { return library_ != nullptr; }
  // Lets the library write a stack trace, then a report into the error folder, each if it has the entry.
  // True when there is a report; the log says so.
  bool Report(const void* record, const char* context) const;

 private:
  std::unique_ptr<DynamicLibrary> library_;
};

// From now on fatal signals of the process are reported, and then take their previous course. Without the
// library nothing changes, and the result is false.
bool InstallCrashReports(const std::filesystem::path& library = "libCrashRpt.so");

}  // namespace brenvolt
