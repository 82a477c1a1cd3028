#include "host/reporting/markdown_report.h"

#include <string_view>
#include <variant>

#include "host/graphs/picture.h"
#include "host/reporting/report_text.h"

namespace brenvolt {
namespace {

// The target of a link, in which blanks and brackets end it.
std::string LinkTarget(std::string_view path) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  constexpr unsigned kHalf = 4;
  constexpr unsigned kLow = 15;
  std::string target;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = byte > ' ' && std::string_view("()<>%\\").find(c) == std::string_view::npos;
    target += isPlain ? std::string(1, c) : std::string{'%', kHex[byte >> kHalf], kHex[byte & kLow]};
  }
  return target;
}

class MarkdownWriter {
 public:
  MarkdownWriter(const Report& report, std::string folder, bool withPictures)
      : folder_(LinkTarget(folder)), withPictures_(withPictures) {
    made_.text = "# " + MarkdownText(report.title) + "\n\n" + MarkdownText(report.summary) + "\n\n";
    if (!withPictures) Add(ReportNote{kNote, "There are no pictures: " + WhyNoPictures() + "."});
    for (const ReportSection& section : report.sections) AddSection(section, "##");
  }

  MarkdownReport Made() && { return std::move(made_); }

 private:
  void AddSection(const ReportSection& section, const std::string& marks) {
    made_.text += marks + " " + MarkdownText(section.title) + "\n\n";
    for (const ReportBlock& block : section.blocks) std::visit([this](const auto& one) { Add(one); }, block);
    for (const ReportSection& one : section.sections) AddSection(one, marks + "#");
  }

  void Add(const ReportParagraph& paragraph) { made_.text += MarkdownText(paragraph.text) + "\n\n"; }
  void Add(const ReportNote& note) {
    made_.text += "> **" + std::string(note.kind) + ":** " + MarkdownText(note.text) + "\n\n";
  }
  void Add(const ReportCode& code) { made_.text += MarkdownCode(code.text) + "\n"; }
  void Add(const ReportFacts& facts) {
    for (const auto& [name, value] : facts.facts)
      made_.text += "- " + MarkdownText(name) + ": " + MarkdownText(value) + "\n";
    made_.text += "\n";
  }

  void Add(const ReportTable& table) {
    std::string& text = made_.text;
    if (!table.title.empty()) text += "**" + MarkdownText(table.title) + "**\n\n";
    text += "|";
    for (const ReportColumn& column : table.columns) text += " " + MarkdownText(column.heading) + " |";
    text += "\n|";
    for (const ReportColumn& column : table.columns) text += column.isNumber ? "---:|" : "---|";
    text += "\n";
    for (const ReportRow& row : table.rows) AddRow(table, row);
    text += "\n";
    for (const std::string& note : table.notes) Add(ReportParagraph{note});
  }

  // The notes stand with the first text, a cell being one line.
  void AddRow(const ReportTable& table, const ReportRow& row) {
    const std::size_t noted = table.NotedColumn();
    made_.text += "|";
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      made_.text += " " + (c < row.cells.size() ? MarkdownText(row.cells[c]) : "");
      for (const std::string& note : row.notes) {
        if (c == noted) made_.text += "; *" + MarkdownText(note) + "*";
      }
      made_.text += " |";
    }
    made_.text += "\n";
  }

  void Add(const ReportPictures& pictures) {
    if (!withPictures_) return;
    for (const Graph& graph : pictures.graphs) {
      const std::string name = std::to_string(made_.pictures.size() + 1) + ".svg";
      PictureStyle style;
      style.format = PictureFormat::kSvg;
      made_.pictures.emplace_back(name, DrawPictures({&graph, 1}, style));
      made_.text += "![" + MarkdownText(graph.title) + "](" + folder_ + "/" + name + ")\n\n";
    }
  }

  std::string folder_;
  bool withPictures_;
  MarkdownReport made_;
};

}  // namespace

MarkdownReport MarkdownOf(const Report& report, const std::string& pictureFolder, bool withPictures) {
  return MarkdownWriter(report, pictureFolder, withPictures).Made();
}

}  // namespace brenvolt
