#include "host/jobs/base/plot.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/base/number_text.h"
#include "host/graphs/picture.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt {
namespace {

constexpr std::array<std::pair<std::string_view, PictureFormat>, 3> kEndings{
    {{".png", PictureFormat::kPng}, {".svg", PictureFormat::kSvg}, {".pdf", PictureFormat::kPdf}}};
constexpr std::string_view kThemes[] = {"light", "dark"};
// A picture with more of them would be too large to open.
constexpr std::size_t kMostCells = 100;
// File systems take some 255 bytes.
constexpr std::size_t kLongestName = 120;

std::optional<PictureFormat> FormatOf(const std::filesystem::path& file) {
  for (const auto& [ending, format] : kEndings) {
    if (HasEnding(file, ending)) return format;
  }
  return std::nullopt;
}

bool HasNamePlace(const std::filesystem::path& file) {
  return file.string().find(kNamePlace) != std::string::npos;
}

// A word in braces that stands for nothing; empty if there is none.
std::string UnknownPlace(const std::filesystem::path& file) {
  const std::string name = file.string();
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  for (auto begin = name.find('{'); begin != std::string::npos; begin = name.find('{', begin + 1)) {
    std::size_t end = begin + 1;
    while (end < name.size() && isLetter(name[end])) ++end;
    if (end == begin + 1 || end == name.size() || name[end] != '}') continue;
    std::string place = name.substr(begin, end - begin + 1);
    if (place != kNamePlace) return place;
  }
  return {};
}

// A name as a part of file names on every system.
std::string FileNameOf(const std::string& name) {
  std::string text;
  for (const char c : name) {
    const bool isPlain = static_cast<unsigned char>(c) >= ' ' &&
                         std::string_view("/\\:*?\"<>|").find(c) == std::string_view::npos;
    text += isPlain ? c : '_';
  }
  if (text.size() > kLongestName) {
    std::size_t end = kLongestName;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text.resize(end);
  }
  if (text.empty() || text.front() == '.') text.insert(0, "_");
  return text;
}

// Names that differ; two variables may become one as files.
std::vector<std::filesystem::path> FilesFor(const std::filesystem::path& file,
                                            const std::vector<PlotPage>& pages) {
  std::set<std::string> taken;
  std::vector<std::filesystem::path> files;
  for (const PlotPage& page : pages) {
    const std::string name = FileNameOf(page.name);
    std::string own = name;
    for (int number = 2; !taken.insert(own).second; ++number) own = name + "-" + std::to_string(number);
    std::string path = file.string();
    for (auto at = path.find(kNamePlace); at != std::string::npos;
         at = path.find(kNamePlace, at + own.size()))
      path.replace(at, kNamePlace.size(), own);
    files.emplace_back(path);
  }
  return files;
}

void Save(const std::filesystem::path& path, const std::string& bytes) {
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

}  // namespace

bool IsPictureName(const std::filesystem::path& file) {
  return FormatOf(file).has_value();
}

std::string Alternatives(std::span<const std::string_view> words) {
  std::string text;
  for (const std::string_view word : words) text.append(text.empty() ? "" : "|").append(word);
  return text;
}

void CheckPlot(const Plot& plot, std::span<const std::string_view> kinds, JobFaults& faults) {
  const auto checkWord = [&](const char* field, const std::optional<std::string>& word,
                             std::span<const std::string_view> words) {
    if (!word) return;
    if (!plot.IsAsked())
      faults.push_back({field, "this affects only a picture; give the file of the picture as well"});
    Choices choices;
    for (const std::string_view one : words) choices.emplace(one, one);
    CheckWord(field, *word, choices, faults);
  };
  checkWord("plotKind", plot.kind, kinds);
  checkWord("plotTheme", plot.theme, kThemes);
  if (plot.width) {
    if (!plot.IsAsked())
      faults.push_back({"plotWidth", "this affects only a picture; give the file of the picture as well"});
    CheckWholeNumber("plotWidth", *plot.width, kLeastPictureWidth, kGreatestPictureWidth, faults);
  }
  if (plot.band && !plot.IsAsked())
    faults.push_back({"plotBand", "this affects only a picture; give the file of the picture as well"});
  if (!plot.IsAsked()) return;
  if (!FormatOf(plot.file)) {
    faults.push_back({"plot", "expected a file ending in .png, .svg or .pdf, got " + plot.file.string()});
    return;
  }
  if (const std::string unknown = UnknownPlace(plot.file); !unknown.empty())
    faults.push_back({"plot", unknown + " has no meaning in the name of a picture; expected " +
                                  std::string(kNamePlace) + ", the variable or response"});
  if (!HasNamePlace(plot.file.parent_path())) CheckFolder("plot", plot.file, faults);
  if (const std::string why = WhyNoPictures(); !why.empty()) faults.push_back({"plot", why});
}

void RefuseRecordedPlot(const Plot& plot, const JobRecorder& recorder) {
  if (plot.IsAsked() && recorder.IsRecording()) throw WrongJob("plot", "pictures cannot be recorded");
}

PlotPage SinglePage(std::string name, Graph graph) {
  return {std::move(name), graph, graph};
}

PlotPage CompoundPage(std::string name, std::vector<Graph> graphs) {
  if (graphs.size() == 1) return SinglePage(std::move(name), std::move(graphs.front()));
  PlotPage page;
  page.name = std::move(name);
  page.cell = graphs.front();
  page.page.kind = GraphKind::kSummary;
  page.page.title = page.name;
  page.page.panels = std::move(graphs);
  page.page.panelColumns = 2;
  return page;
}

Graph Together(std::vector<PlotPage> pages, const std::string& title) {
  const auto whole = std::ranges::find(pages, true, &PlotPage::showsAll);
  if (whole != pages.end()) return std::move(whole->page);
  if (pages.size() == 1) return std::move(pages.front().page);
  Graph grid;
  grid.kind = GraphKind::kSummary;
  grid.title = title;
  if (pages.size() > kMostCells) {
    grid.notes.push_back("the first " + std::to_string(kMostCells) + " of " + std::to_string(pages.size()) +
                         " are shown; a PDF, or " + std::string(kNamePlace) +
                         " in the name of the file, shows all");
    pages.resize(kMostCells);
  }
  for (PlotPage& page : pages) grid.panels.push_back(std::move(page.cell));
  return grid;
}

namespace {

// The cells of a matrix share the width of a picture.
void RequireWidth(const Plot& plot, std::span<const Graph> graphs) {
  for (const Graph& graph : graphs) {
    const int least = LeastWidthOf(graph);
    if (plot.width && *plot.width < least)
      throw WrongJob("plotWidth", "the " + std::to_string(graph.panelColumns) +
                                      " columns of the matrix need a width of at least " +
                                      std::to_string(least) + ", got " + ShortestNumber(*plot.width));
  }
}

}  // namespace

void WritePlot(const Plot& plot, const std::string& title, std::vector<PlotPage> pages) {
  if (pages.empty()) throw Error("there is nothing to draw", plot.file.string());
  PictureStyle style;
  style.format = FormatOf(plot.file).value_or(PictureFormat::kPng);
  style.theme = plot.theme == kThemes[1] ? PictureTheme::kDark : PictureTheme::kLight;
  style.width = static_cast<int>(plot.width.value_or(0));
  if (HasNamePlace(plot.file)) {
    const std::vector<std::filesystem::path> files = FilesFor(plot.file, pages);
    for (std::size_t i = 0; i < pages.size(); ++i) Save(files[i], DrawPictures({&pages[i].page, 1}, style));
    return;
  }
  std::vector<Graph> graphs;
  if (style.format == PictureFormat::kPdf) {
    for (PlotPage& page : pages) graphs.push_back(std::move(page.page));
  } else {
    graphs.push_back(Together(std::move(pages), title));
  }
  RequireWidth(plot, graphs);
  Save(plot.file, DrawPictures(graphs, style));
}

}  // namespace brenvolt
