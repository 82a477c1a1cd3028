#include "host/reporting/html_report.h"

#include <map>
#include <string_view>

#include "host/graphs/picture.h"
#include "host/reporting/html_style.h"
#include "host/reporting/report_text.h"

namespace brenvolt {
namespace {

constexpr int kMainWidth = 760;
constexpr int kSmallWidth = 560;
constexpr std::string_view kStyleBegin = "<style>";
constexpr std::string_view kStyleEnd = "</style>";

void Replace(std::string_view from, std::string_view to, std::string& text) {
  std::string result;
  std::size_t at = 0;
  for (std::size_t found = text.find(from); found != std::string::npos; found = text.find(from, at)) {
    result.append(text, at, found - at).append(to);
    at = found + from.size();
  }
  text = result.append(text, at);
}

// Takes out of a picture the groups in which nothing is drawn, most of what the toolkit writes.
std::string WithoutEmptyGroups(const std::string& svg) {
  constexpr std::string_view kBegin = "<g ";
  constexpr std::string_view kEnd = "</g>";
  std::string result;
  std::size_t at = 0;
  for (std::size_t begin = svg.find(kBegin); begin != std::string::npos; begin = svg.find(kBegin, at)) {
    const std::size_t inner = svg.find('>', begin) + 1;
    const std::size_t content = svg.find_first_not_of(" \n", inner);
    const bool isEmpty = svg.compare(content, kEnd.size(), kEnd) == 0;
    result.append(svg, at, (isEmpty ? begin : inner) - at);
    at = isEmpty ? content + kEnd.size() : inner;
  }
  return result.append(svg, at);
}

class HtmlWriter {
 public:
  HtmlWriter(const Report& report, bool withPictures) : withPictures_(withPictures) {
    for (std::size_t i = 0; i < report.sections.size(); ++i)
      Name(report.sections[i], "s" + std::to_string(i + 1));
    std::string body =
        "<header>\n<h1>" + HtmlText(report.title) + "</h1>\n<p>" + HtmlText(report.summary) +
        "</p>\n</header>\n<nav aria-labelledby=\"contents\">\n<h2 id=\"contents\">Contents</h2>\n" +
        Contents(report.sections, "s") + "</nav>\n<main>\n";
    if (!withPictures_) body += NoteHtml({kNote, "There are no pictures: " + WhyNoPictures() + "."});
    for (std::size_t i = 0; i < report.sections.size(); ++i)
      AddSection(report.sections[i], "s" + std::to_string(i + 1), 2, body);
    text_ = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
            HtmlText(report.title) +
            "</title>\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"generator\" content=\"Brenvolt\">\n<style>" +
            std::string(kHtmlStyle) + pictureStyle_ + "</style>\n</head>\n<body>\n" + body +
            "</main>\n<script>" + std::string(kHtmlScript) + "</script>\n</body>\n</html>\n";
  }

  std::string Text() && { return std::move(text_); }

 private:
  void Name(const ReportSection& section, const std::string& place) {
    places_.emplace(section.title, place);
    for (std::size_t i = 0; i < section.sections.size(); ++i)
      Name(section.sections[i], place + "-" + std::to_string(i + 1));
  }

  // Of two levels: deeper ones are near their parent.
  std::string Contents(const std::vector<ReportSection>& sections, const std::string& prefix, int level = 1) {
    constexpr int kDeepest = 2;
    if (sections.empty() || level > kDeepest) return {};
    std::string list = "<ul>\n";
    for (std::size_t i = 0; i < sections.size(); ++i) {
      const std::string place = prefix + std::to_string(i + 1);
      list += "<li><a href=\"#" + place + "\">" + HtmlText(sections[i].title) + "</a>" +
              Contents(sections[i].sections, place + "-", level + 1) + "</li>\n";
    }
    return list + "</ul>\n";
  }

  void AddSection(const ReportSection& section, const std::string& place, int level, std::string& body) {
    const std::string heading = "h" + std::to_string(level);
    body += "<section id=\"" + place + "\">\n<" + heading + ">" + HtmlText(section.title) + "</" + heading +
            ">\n";
    for (const ReportBlock& block : section.blocks)
      body += std::visit([this](const auto& one) { return this->Html(one); }, block);
    for (std::size_t i = 0; i < section.sections.size(); ++i)
      AddSection(section.sections[i], place + "-" + std::to_string(i + 1), level + 1, body);
    body += "</section>\n";
  }

  static std::string Html(const ReportParagraph& paragraph) {
    return "<p>" + HtmlText(paragraph.text) + "</p>\n";
  }
  static std::string NoteHtml(const ReportNote& note) {
    const std::string kind(note.kind);
    return "<p class=\"" + kind + "\"><b>" + kind + ":</b> " + HtmlText(note.text) + "</p>\n";
  }
  static std::string Html(const ReportNote& note) { return NoteHtml(note); }
  static std::string Html(const ReportCode& code) { return "<pre>" + HtmlLines(code.text) + "</pre>\n"; }
  static std::string Html(const ReportFacts& facts) {
    std::string list = "<dl>\n";
    for (const auto& [name, value] : facts.facts)
      list += "<dt>" + HtmlText(name) + "</dt><dd>" + HtmlText(value) + "</dd>\n";
    return list + "</dl>\n";
  }

  std::string Html(const ReportTable& table) const {
    std::string html = "<div class=\"scroll\"><table>\n";
    if (!table.title.empty()) html += "<caption>" + HtmlText(table.title) + "</caption>\n";
    html += "<thead><tr>";
    for (const ReportColumn& column : table.columns)
      html += (column.isNumber ? "<th scope=\"col\" class=\"n\">" : "<th scope=\"col\">") +
              HtmlText(column.heading) + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    for (const ReportRow& row : table.rows) html += RowHtml(table, row);
    html += "</tbody>\n</table></div>\n";
    for (const std::string& note : table.notes) html += "<p>" + HtmlText(note) + "</p>\n";
    return html;
  }

  // The notes stand below the first text, so that they stay with it when rows are sorted.
  std::string RowHtml(const ReportTable& table, const ReportRow& row) const {
    const std::size_t noted = table.NotedColumn();
    std::string html = "<tr>";
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      std::string cell = c < row.cells.size() ? HtmlText(row.cells[c]) : "";
      if (c == 0 && table.isIndex) cell = Linked(row.cells[c], cell);
      for (const std::string& note : row.notes) {
        if (c == noted) cell += "<div>" + HtmlText(note) + "</div>";
      }
      html += (table.columns[c].isNumber ? "<td class=\"n\">" : "<td>") + cell + "</td>";
    }
    return html + "</tr>\n";
  }

  std::string Linked(const std::string& title, const std::string& cell) const {
    const auto place = places_.find(title);
    return place == places_.end() ? cell : "<a href=\"#" + place->second + "\">" + cell + "</a>";
  }

  std::string Html(const ReportPictures& pictures) {
    if (!withPictures_ || pictures.graphs.empty()) return {};
    std::string html = "<div class=\"pictures\">\n";
    for (std::size_t i = 0; i < pictures.graphs.size(); ++i)
      html += (i == 0 ? "<figure class=\"whole\">" : "<figure>") + Picture(pictures.graphs[i], i == 0) +
              "</figure>\n";
    return html + "</div>\n";
  }

  // As a part of the page, whose size is that of its place there; its rules for dark screens stand once, in the head.
  std::string Picture(const Graph& graph, bool isMain) {
    PictureStyle style;
    style.format = PictureFormat::kSvg;
    style.theme = PictureTheme::kReader;
    // What has panels of its own knows best what they need.
    if (graph.panels.empty()) style.width = isMain ? kMainWidth : kSmallWidth;
    std::string svg = DrawPictures({&graph, 1}, style);
    svg.erase(0, svg.find("<svg"));
    const std::size_t begin = svg.find(kStyleBegin);
    const std::size_t end = svg.find(kStyleEnd);
    if (begin != std::string::npos && end != std::string::npos) {
      pictureStyle_ = svg.substr(begin + kStyleBegin.size(), end - begin - kStyleBegin.size());
      svg.erase(begin, end + kStyleEnd.size() - begin);
    }
    svg = WithoutEmptyGroups(svg);
    for (const std::string_view usual :
         {" transform=\"matrix(1,0,0,1,0,0)\"", " fill-opacity=\"1\"", " stroke-opacity=\"1\"",
          " vector-effect=\"none\"", " font-style=\"normal\""})
      Replace(usual, "", svg);
    const std::size_t size = svg.find("width=");
    const std::size_t box = svg.find("viewBox=");
    if (size < box)
      svg.replace(size, box - size, "role=\"img\" aria-label=\"" + HtmlText(graph.title) + "\" ");
    return svg;
  }

  bool withPictures_;
  std::map<std::string, std::string, std::less<>> places_;  // of sections by their titles
  std::string pictureStyle_;
  std::string text_;
};

}  // namespace

std::string HtmlOf(const Report& report, bool withPictures) {
  return HtmlWriter(report, withPictures).Text();
}

}  // namespace brenvolt
