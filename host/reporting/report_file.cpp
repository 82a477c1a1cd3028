#include "host/reporting/report_file.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/base/lower_case.h"
#include "host/graphs/picture.h"
#include "host/reporting/html_report.h"
#include "host/reporting/markdown_report.h"
#include "host/reporting/pdf_report.h"

namespace brenvolt {
namespace {

constexpr std::string_view kPdf = ".pdf";
constexpr std::array<std::string_view, 3> kEndings{".html", ".md", kPdf};

void Save(const std::filesystem::path& path, const std::string& bytes) {
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

std::string EndingOf(const std::filesystem::path& file) {
  return LowerCase(file.extension().string());
}

// A folder that is made, and taken away with what is in it unless it is to stay.
class NewFolder {
 public:
  explicit NewFolder(std::filesystem::path path) : path_(std::move(path)) {
    std::error_code code;
    isNew_ = std::filesystem::create_directories(path_, code);
    if (code) throw Error("the folder of the pictures cannot be made: " + code.message(), path_.string());
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;
  ~NewFolder() {
    std::error_code ignored;
    if (isNew_) std::filesystem::remove_all(path_, ignored);
  }
  void Keep() { isNew_ = false; }

 private:
  std::filesystem::path path_;
  bool isNew_ = false;
};

// The pictures are there before what shows them, and go again where that cannot be written.
void WriteMarkdown(const Report& report, const std::filesystem::path& file) {
  const std::filesystem::path folder = PictureFolder(file);
  const MarkdownReport made = MarkdownOf(report, folder.filename().string(), WhyNoPictures().empty());
  if (made.pictures.empty()) return Save(file, made.text);
  NewFolder pictures(folder);
  for (const auto& [name, bytes] : made.pictures) Save(folder / name, bytes);
  Save(file, made.text);
  pictures.Keep();
}

}  // namespace

bool IsReportName(const std::filesystem::path& file) {
  return std::ranges::find(kEndings, EndingOf(file)) != kEndings.end();
}

std::string WhyNoReport(const std::filesystem::path& file) {
  return EndingOf(file) == kPdf ? WhyNoPictures() : std::string();
}

void WriteReport(const Report& report, const std::filesystem::path& file) {
  const std::string ending = EndingOf(file);
  if (ending == ".md") return WriteMarkdown(report, file);
  Save(file, ending == kPdf ? PdfOf(report) : HtmlOf(report, WhyNoPictures().empty()));
}

std::filesystem::path PictureFolder(const std::filesystem::path& file) {
  return file.parent_path() / (file.stem().string() + "_pictures");
}

}  // namespace brenvolt
