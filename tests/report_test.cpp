// Reports, as a user asks for them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "host/graphs/picture.h"
#include "host/tables/office/zip_content.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kStack = kExamples + "tolerance_stack.txt";

struct ReportCommand : Command {
  bool draws = WhyNoPictures().empty();

  std::string Report(std::vector<std::string> arguments, const std::string& file) const {
    arguments.insert(arguments.end(), {"--report", file});
    const Outcome outcome = MustRun(arguments);
    EXPECT_NE(outcome.out.find("\nReport written to " + file + "\n"), std::string::npos) << outcome.out;
    return BytesOf(File(file));
  }
  // Whether a program that looks at files is installed here.
  static bool Has(const std::string& program) { return std::filesystem::exists(program); }
  // What tidy finds wrong.
  std::string Faults(const std::string& file) const {
    const Outcome outcome = RunProgram("/usr/bin/tidy", {"-q", "-e", file}, folder.Path());
    return outcome.status == 0 ? "" : outcome.err;
  }
  // What chromium makes of a page, once its script has run.
  std::string Seen(const std::string& file) const {
    return RunProgram(
               "/usr/bin/chromium",
               {"--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=" + File("profile").string(),
                "--dump-dom", "file://" + File(file).string()},
               folder.Path())
        .out;
  }
};

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

void ExpectAll(const std::string& text, const std::vector<std::string>& parts) {
  for (const std::string& part : parts) EXPECT_NE(text.find(part), std::string::npos) << part;
}

TEST_F(ReportCommand, AFitReportHasItsTablesPicturesAndWhatWasAsked) {
  const std::string html =
      Report({"fit", kExamples + "portpirie_sea_level.csv", "--rank-by", "aic"}, "r.html");
  ExpectAll(html, {"<title>Distributions fitted to portpirie_sea_level.csv</title>",
                   "the Akaike information criterion", "--rank-by aic --report r.html</pre>",
                   "<td>General Extreme Value(location=3.8747, scale=0.1980", "density 0 at 2 of 65 values",
                   "too large: they compare fits", "<a href=\"#s5-1\">sealevel</a>",
                   "Brenvolt Distributions &amp; Simulation"});
  EXPECT_EQ(CountOf("<svg ", html), draws ? 6U : 0U);
  EXPECT_EQ(CountOf("There are no pictures", html), draws ? 0U : 1U);
  EXPECT_EQ(CountOf("prefers-color-scheme:dark", html), draws ? 2U : 1U);
  for (const char* foreign : {"src=", "@import", "url(", "<link"})
    EXPECT_EQ(CountOf(foreign, html), 0U) << foreign;
}

TEST_F(ReportCommand, TextOfDataIsShownAsItStands) {
  WriteBytes(File("d.csv"),
             "<script>alert(1)</script>,a|b *c* _d_,&amp;\n1,3,5\n2,4,6\n4,7,7\n3,5,8\n7,9,10\n");
  const std::string html = Report({"fit", "d.csv"}, "r.html");
  EXPECT_EQ(CountOf("<script>", html), 1U);
  ExpectAll(html, {"&lt;script&gt;alert(1)&lt;/script&gt;</h3>", "<h3>&amp;amp;</h3>"});
  const std::string markdown = Report({"fit", "d.csv"}, "r.md");
  EXPECT_EQ(CountOf("<script>", markdown), 0U);
  ExpectAll(markdown, {"### &lt;script&gt;alert(1)&lt;/script&gt;\n", "### a\\|b \\*c\\* \\_d\\_\n",
                       "### &amp;amp;\n"});
  if (!draws || !Has("/usr/bin/pdftotext")) return;
  Report({"fit", "d.csv"}, "r.pdf");
  const std::string pdf = RunProgram("/usr/bin/pdftotext", {"-layout", "r.pdf", "-"}, folder.Path()).out;
  ExpectAll(pdf, {"<script>alert(1)</script>", "a|b *c* _d_", "&amp;"});
}

TEST_F(ReportCommand, AValidatorAndABrowserTakeThePage) {
  if (!Has("/usr/bin/tidy") || !Has("/usr/bin/chromium")) GTEST_SKIP() << "needs tidy and chromium";
  Report({"fit", kExamples + "faithful.csv", "--distributions", "normal,weibull"}, "r.html");
  EXPECT_EQ(Faults("r.html"), "");
  const std::string seen = Seen("r.html");
  ExpectAll(seen, {"<button type=\"button\" title=\"Sort by this column\">K-S d</button>", "</html>"});
  // A click turns the order of the index round: the script does what it says.
  std::string clicked = BytesOf(File("r.html"));
  const std::string end = "</body>";
  clicked.insert(clicked.rfind(end),
                 "<script>var b=document.querySelector('th button');b.click();b.click()</script>");
  WriteBytes(File("clicked.html"), clicked);
  const std::string sorted = Seen("clicked.html");
  EXPECT_LT(seen.find("<td><a href=\"#s5-1\">eruptions"), seen.find("<td><a href=\"#s5-2\">waiting"));
  EXPECT_GT(sorted.find("<td><a href=\"#s5-1\">eruptions"), sorted.find("<td><a href=\"#s5-2\">waiting"));
  EXPECT_NE(sorted.find("aria-sort=\"descending\""), std::string::npos);
}

TEST_F(ReportCommand, APdfHasItsFontsItsPagesAndAllTables) {
  if (!draws) GTEST_SKIP() << WhyNoPictures();
  if (!Has("/usr/bin/pdffonts")) GTEST_SKIP() << "needs poppler-utils";
  Report({"fit", kExamples + "faithful.csv"}, "r.pdf");
  const std::string fonts = RunProgram("/usr/bin/pdffonts", {"r.pdf"}, folder.Path()).out;
  EXPECT_NE(fonts.find("DejaVuSans"), std::string::npos) << fonts;
  std::istringstream lines(fonts);
  std::string line;
  for (int i = 0; std::getline(lines, line); ++i) {
    if (i > 1) {
      EXPECT_TRUE(std::regex_search(line, std::regex(" yes (yes|no ) (yes|no ) +\\d+ +\\d+$"))) << line;
    }
  }
  const std::string text = RunProgram("/usr/bin/pdftotext", {"-layout", "r.pdf", "-"}, folder.Path()).out;
  ExpectAll(text, {"Distributions fitted to faithful.csv", "Gaussian Mixture(", "1 of ", "brenvolt fit "});
  const auto last = text.rfind("How this was made");
  EXPECT_NE(text.find("Brenvolt Distributions & Simulation", last), std::string::npos);
}

TEST_F(ReportCommand, MeasuredValuesHaveReports) {
  const std::string rings = Report(
      {"capability", kExamples + "process.csv", "--spec", "size=5.49,5.64,5.79", "--subgroup", "sample"},
      "c.md");
  ExpectAll(rings, {"# Capability of size of process.csv\n", "--spec size=5.49,5.64,5.79 --subgroup sample",
                    "## Stability", "| X-bar |", "No signal by the rules of western-electric",
                    "## Capability", "| Cpk, Ppk |", "Intervals have a confidence of 95 %"});
  const std::string fans = Report({"fit", kExamples + "generator_fans.csv", "--censor", "status",
                                   "--continuous", "hours", "--quantiles", "0.1"},
                                  "f.html");
  ExpectAll(fans, {"Distributions fitted to censored values of generator_fans.csv", "--censor status",
                   "12 exact, 58 right censored", "quantile 0.1", "tests need every value"});
}

TEST_F(ReportCommand, MarkdownHasItsPicturesBesideIt) {
  const std::string markdown = Report({"fit", kExamples + "portpirie_sea_level.csv"}, "r.md");
  ExpectAll(markdown, {"# Distributions fitted to portpirie\\_sea\\_level.csv\n", "|---:|---|---:|",
                       "Triangular(min=3.5700, max=4.6900, mode3.7401); *density 0 at 2 of 65 values* |"});
  if (!draws) return;
  ExpectAll(markdown, {"![Histogram of sealevel](r_pictures/1.svg)", "(r_pictures/6.svg)"});
  EXPECT_NE(BytesOf(File("r_pictures/6.svg")).find("</svg>"), std::string::npos);
  // What cannot be written leaves no pictures behind.
  std::filesystem::create_directory(File("d.md"));
  EXPECT_EQ(Run({"fit", kExamples + "portpirie_sea_level.csv", "--report", "d.md"}).status, 1);
  EXPECT_FALSE(std::filesystem::exists(File("d_pictures")));
}

TEST_F(ReportCommand, TheCommandInAReportRepeatsTheJob) {
  WriteBytes(File("d's.csv"), "x y,n,w\n1.5,1,1\n2,2,2\n3.2,0,1\n4,5,1\n7,1,1\n5,2,1\n");
  const std::vector<std::vector<std::string>> calls{
      {"fit", "d's.csv", "--continuous", "x y", "--discrete", "n", "--weights", "w", "--select",
       "'x y' > 1.6", "--offset", "x y:weibull=-1", "--rank-by", "bic", "--missing", "casewise"},
      {"fit", "d's.csv", "--continuous", "x y", "--bootstrap", "20", "--bootstrap-seed", "3",
       "--distributions", "normal,gev"},
      {"simulate", "--from", kStack, "--samples", "200", "--method", "latin-hypercube"},
      {"simulate", "--variable", "a ~ normal(0, 1)", "--variable", "b ~ weibull(2, 1)", "--correlation",
       "a,b=-0.5", "--method", "iman-conover"},
      {"profile", "--from", kStack, "--formula", "gap = housing - a - b - c - d", "--spec", "gap=0.3,,0.7",
       "--noise", "gap=0.01", "--fix", "a=2", "--samples", "200"}};
  const std::regex code("<pre>brenvolt (.*?)</pre>");
  for (const auto& call : calls) {
    const Json first = JsonOf([&] {
      auto words = call;
      words.insert(words.end(), {"--report", "r.html"});
      return words;
    }());
    const std::string html = BytesOf(File("r.html"));
    std::smatch found;
    ASSERT_TRUE(std::regex_search(html, found, code)) << html;
    std::string command = found[1];
    for (const auto& [escaped, plain] :
         {std::pair("&gt;", ">"), {"&lt;", "<"}, {"&quot;", "\""}, {"&amp;", "&"}}) {
      for (auto at = command.find(escaped); at != std::string::npos; at = command.find(escaped, at))
        command.replace(at, std::string(escaped).size(), plain);
    }
    const Outcome again = RunProgram(
        "/bin/sh", {"-c", BRENVOLT_BUILD_DIR "/bin/brenvolt " + command + " --format json"}, folder.Path());
    EXPECT_EQ(again.status, 0) << again.err << command;
    EXPECT_EQ(Json::parse(again.out, nullptr, false), first) << command;
  }
}

TEST_F(ReportCommand, SimulationsProfilesAndProjectsHaveReports) {
  const std::string simulated =
      Report({"simulate", "--variable", "a ~ normal(0, 1)", "--variable", "b ~ normal(5, 2)", "--correlation",
              "a,b=0.5", "--method", "iman-conover", "--seed", "7"},
             "s.html");
  ExpectAll(simulated, {"<h2>Correlations</h2>", "<td>normal(location=5, scale=2)</td>", "a, b", "seed 7",
                        "--seed 7 --report"});
  EXPECT_EQ(CountOf("<svg ", simulated), draws ? 5U : 0U);
  const std::string profiled =
      Report({"profile", kExamples + "ozone.csv", "--model", kExamples + "ozone_regression.pmml", "--noise",
              "O3=4.75", "--spec", "O3=,,25", "--seed", "7", "--samples", "500"},
             "p.html");
  ExpectAll(profiled, {"<title>How O3 varies</title>", "<caption>Defect Counts</caption>", "What drives it",
                       "Cpk, Ppk", "Specification: LSL -, target -, USL 25"});
  EXPECT_EQ(CountOf("<svg ", profiled), draws ? 8U : 0U);
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "g.bvw"});
  const std::string shown = Report({"show", "g.bvw"}, "w.html");
  ExpectAll(shown, {"<title>Project g.bvw</title>", "<td>Correlation matrix</td>", "eruptions ~ normal(",
                    "0.900811", "<caption>waiting</caption>"});
  EXPECT_EQ(CountOf("<svg ", shown), draws ? 4U : 0U);
  EXPECT_NE(Report({"show", "g.bvw", "faithful"}, "v.html").find("<title>Sheet faithful of g.bvw</title>"),
            std::string::npos);
  for (const char* file : {"s.html", "p.html", "w.html", "v.html"}) {
    if (Has("/usr/bin/tidy")) {
      EXPECT_EQ(Faults(file), "") << file;
    }
  }
}

TEST_F(ReportCommand, OfManyVariablesThoseAreShownThatFitsMissMost) {
  std::string names = "bad";
  for (int i = 1; i <= 59; ++i) names += ",v" + std::to_string(i);
  std::string csv = names + "\n";
  for (int i = 0; i < 40; ++i) {
    csv += i < 20 ? "0.5" : i == 20 ? "1.5" : "100.5";
    for (int v = 1; v <= 59; ++v) csv += "," + std::to_string(std::pow((i + 0.5) / 40, 1 + 0.01 * v));
    csv += "\n";
  }
  WriteBytes(File("d.csv"), csv);
  const std::string html = Report({"fit", "d.csv", "--distributions", "normal"}, "r.html");
  ExpectAll(html, {"Of 60 variables the 50 that their fits miss most", "<h3>bad</h3>", "<td>v1</td>"});
  EXPECT_EQ(CountOf("<h3>", html), 50U);
  EXPECT_LT(html.find("<h3>bad</h3>"), html.find("<h3>v59</h3>")) << "the worst first";
}

// A few cells of a sheet of a workbook, by the columns, as import shows them.
class WorkbookOfResults : public ReportCommand {
 protected:
  std::map<std::string, Json> Cells(const std::string& file, const std::string& sheet) const {
    const Json shown = Json::parse(
        MustRun({"import", file, "--sheet", sheet, "--preview", "--format", "json"}).out)["sheets"][0];
    std::map<std::string, Json> columns;
    for (const Json& variable : shown["variables"]) columns[variable["name"]] = variable["first"];
    return columns;
  }
  std::vector<std::string> Charts(const std::string& file) const {
    std::vector<std::string> charts;
    for (ZipPart& part : UnpackedParts(BytesOf(File(file)), file)) {
      if (part.name.starts_with("xl/charts/chart")) charts.push_back(std::move(part.content));
    }
    return charts;
  }
};
double NumberIn(const Json& cell) {
  return std::stod(cell.get<std::string>());
}

// The numbers of the table are rounded for people, those of the workbook are not.
TEST_F(WorkbookOfResults, AWorkbookHasTheDataTheFitsAndChartsAsNumbers) {
  Report({"fit", kExamples + "faithful.csv"}, "r.xlsx");
  const Json fits = Json::parse(MustRun({"fit", kExamples + "faithful.csv", "--format", "json"}).out);
  for (const std::string sheet : {"faithful", "Ranked fits", "Correlations", "Summaries"})
    MustRun({"import", "r.xlsx", "--sheet", sheet, "--preview"});
  const auto ranked = Cells("r.xlsx", "Ranked fits");
  const Json& best = fits["variables"][0]["fits"][0];
  EXPECT_EQ(ranked.at("distribution")[0], best["identifier"]);
  const double aic = best["aic"];
  EXPECT_NEAR(NumberIn(ranked.at("aic")[0]), aic, 1e-14 * std::abs(aic));
  const double mean = fits["variables"][1]["mean"];
  EXPECT_NEAR(NumberIn(Cells("r.xlsx", "Summaries").at("mean")[1]), mean, 1e-14 * mean);
  // As R's cor() prints it for its data set.
  EXPECT_NEAR(NumberIn(Cells("r.xlsx", "Correlations").at("with waiting")[0]), 0.9008112, 5e-8);
  const std::vector<std::string> charts = Charts("r.xlsx");
  ASSERT_EQ(charts.size(), 2U);
  EXPECT_NE(charts.front().find("<c:scatterChart>"), std::string::npos);
  EXPECT_EQ(CountOf("<c:ser>", charts.front()), 4U) << "the data and three fits";
}

// The numbers are those that the command prints as JSON.
TEST_F(WorkbookOfResults, AWorkbookOfSamplesHasTheirSummariesCorrelationsAndCharts) {
  const Json told =
      Json::parse(MustRun({"simulate", "--variable", "h ~ normal(50, 2)", "--variable", "n ~ poisson(3)",
                           "--correlation", "h,n=0.5", "--seed", "7", "-o", "s.xlsx", "--format", "json"})
                      .out);
  EXPECT_EQ(Cells("s.xlsx", "Distributions").at("drawn_from")[1], "poisson(3)");
  const double mean = told["variables"][0]["mean"];
  EXPECT_NEAR(NumberIn(Cells("s.xlsx", "Summaries").at("mean")[0]), mean, 1e-14 * mean);
  const auto pairs = Cells("s.xlsx", "Correlations");
  EXPECT_EQ(pairs.at("asked")[0], "0.5");
  EXPECT_NEAR(NumberIn(pairs.at("spearman")[0]), told["correlations"][0]["spearman"], 1e-14);
  EXPECT_EQ(Charts("s.xlsx").size(), 2U);
  // The data come first, so that they are what a program takes from the file.
  const Json sheets =
      Json::parse(MustRun({"import", "s.xlsx", "--preview", "--format", "json"}).out)["sheets"];
  EXPECT_EQ(sheets[0]["name"], "Iman Conover method");
  EXPECT_EQ(sheets[0]["cases"], 1000);
}

TEST_F(WorkbookOfResults, AWorkbookOfRunsHasLimitsRatesAndCharts) {
  const Json told =
      Json::parse(MustRun({"profile", "--variable", "A ~ normal(5, 1)", "--variable", "B ~ weibull(2, 1.5)",
                           "--formula", "Y=A*B", "--spec", "Y=2,5,10", "--seed", "3", "--samples", "400",
                           "-o", "p.xlsx", "--format", "json"})
                      .out);
  EXPECT_EQ(Cells("p.xlsx", "Predictors").at("predictor")[1], "B");
  const auto rates = Cells("p.xlsx", "Defect rates");
  EXPECT_EQ(NumberIn(rates.at("defects")[0]), told["defects"][0]["defects"]);
  const auto limits = Cells("p.xlsx", "Limits");
  EXPECT_EQ(limits.at("figure")[2], "usl");
  EXPECT_EQ(NumberIn(limits.at("value")[2]), 10);
  EXPECT_EQ(Cells("p.xlsx", "Correlations").at("predictor")[0],
            told["responses"][0]["sensitivity"][0]["predictor"]);
  EXPECT_EQ(Charts("p.xlsx").size(), 3U) << "the response, and how it follows each predictor";
}

TEST_F(ReportCommand, WhatCannotBeWrittenIsRefusedBeforeTheWork) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n");
  WriteBytes(File("t.csv"), "x\na\nb\n");
  MustRun({"fit", "d.csv", "--save", "p.bvw"});
  const struct {
    std::vector<std::string> call;
    const char* message;
    int status = 2;
  } kRows[] = {
      {{"fit", "d.csv", "--report", "r.txt"},
       "expected a file ending in .html, .md, .pdf or .xlsx, got r.txt (--report)"},
      {{"simulate", "p.bvw", "--report", "r"},
       "expected a file ending in .html, .md or .pdf, got r (--report)"},
      {{"show", "p.bvw", "--report", "r.svg"},
       "expected a file ending in .html, .md or .pdf, got r.svg (--report)"},
      {{"profile", "d.csv", "--formula", "y=x", "--report", "no/r.pdf"},
       "the folder of no/r.pdf does not exist (--report)"},
      {{"fit", "d.csv", "--report", "r.html", "--record", "m.py"}, "reports cannot be recorded (--report)"},
      {{"fit", "t.csv", "--report", "r.html"}, "the sheet has no numeric variable", 1}};
  for (const auto& row : kRows) {
    const Outcome outcome = Run(row.call);
    EXPECT_EQ(outcome.status, row.status) << row.message;
    EXPECT_NE(outcome.err.find(row.message), std::string::npos) << outcome.err;
  }
  EXPECT_FALSE(std::filesystem::exists(File("r.html")));
  if (geteuid() == 0) return;  // who may write anywhere
  std::filesystem::create_directory(File("locked"));
  std::filesystem::permissions(File("locked"),
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  const Outcome outcome = Run({"fit", "t.csv", "--report", "locked/r.html"});
  EXPECT_EQ(outcome.status, 2) << "and does not read the data";
  EXPECT_NE(outcome.err.find("no file can be written in the folder of locked/r.html (--report)"),
            std::string::npos);
}

}  // namespace
}  // namespace brenvolt::test
