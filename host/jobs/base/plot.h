// The pictures that a job writes.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/graphs/graph.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt {

// In the name of a file "{name}" stands for a variable or response, each of which has a file then. Without, a PDF has
// a page for each, and a PNG or SVG shows them side by side.
inline constexpr std::string_view kNamePlace = "{name}";
// What is drawn without a word for it: all there is about one variable, the main graph of each of several.
inline constexpr std::string_view kOverview = "overview";

struct Plot {
  std::filesystem::path file;        // its ending says the format; empty: nothing is drawn
  std::optional<std::string> kind;   // which graphs; without a word, kOverview
  std::optional<std::string> theme;  // "light" or "dark"; without a word, light
  std::optional<double> width;       // in pixels of 1/96 inch; without, what the graphs need
  bool band = false;                 // how far samples from a fit stray from it, in its P-P and Q-Q plots

  bool IsAsked() const { return !file.empty(); }
  std::string_view Kind() const { return kind ? std::string_view(*kind) : kOverview; }
};

// Whether the name ends as those of pictures do.
bool IsPictureName(const std::filesystem::path& file);
// All that can be refused without the data, and that nothing can be drawn here. `kinds` are the words for the graphs of
// the job.
void CheckPlot(const Plot& plot, std::span<const std::string_view> kinds, JobFaults& faults);
// The words of a list for people: "overview|histogram".
std::string Alternatives(std::span<const std::string_view> words);
// Pictures are no part of a macro. Throws WrongJob where they would have to be.
void RefuseRecordedPlot(const Plot& plot, const JobRecorder& recorder);

// What there is to draw about a variable or response.
struct PlotPage {
  std::string name;
  Graph page;             // where it stands alone
  Graph cell;             // beside others
  bool showsAll = false;  // it stands for all pages where there is one picture
};

// A page that holds the graph alone.
PlotPage SinglePage(std::string name, Graph graph);
// A page of several graphs. The first is shown beside those of others.
PlotPage CompoundPage(std::string name, std::vector<Graph> graphs);

// One graph of all pages: the one that stands for all, the only one, or the cells of a grid, of which a note says so if there
// are too many.
Graph Together(std::vector<PlotPage> pages, const std::string& title);

// Throws Error if there are no pages, and naming a file that cannot be
// written.
void WritePlot(const Plot& plot, const std::string& title, std::vector<PlotPage> pages);

}  // namespace brenvolt
