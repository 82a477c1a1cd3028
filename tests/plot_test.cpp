// Pictures, as a user asks for them.
#include <gtest/gtest.h>

#include <fstream>

#include "host/graphs/picture.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

struct PlotCommand : Command {
  void SetUp() override {
    if (const std::string why = WhyNoPictures(); !why.empty()) GTEST_SKIP() << why;
  }
  bool Shows(const std::string& file, const std::string& text) const {
    return BytesOf(File(file)).find(">" + text + "</text>") != std::string::npos;
  }
};

TEST_F(PlotCommand, EveryKindOfGraphOfAFitIsDrawn) {
  const struct {
    const char* kind;
    const char* title;
  } kRows[] = {{"overview", "Q-Q Plot of sealevel"},
               {"fit-comparison", "Histogram of sealevel"},
               {"histogram", "Histogram of sealevel"},
               {"cumulative-histogram", "Cumulative Histogram of sealevel"},
               {"pp", "P-P Plot of sealevel"},
               {"qq", "Q-Q Plot of sealevel"},
               {"empirical-distribution", "Empirical Distribution of sealevel"},
               {"box-plot", "Box Plot of sealevel"}};
  for (const auto& row : kRows) {
    MustRun({"fit", kExamples + "portpirie_sea_level.csv", "--plot", "p.svg", "--plot-kind", row.kind});
    EXPECT_TRUE(Shows("p.svg", row.title)) << row.kind;
  }
  for (const char* kind : {"pp", "qq"}) {
    MustRun({"fit", kExamples + "portpirie_sea_level.csv", "--plot", "p.svg", "--plot-kind", kind,
             "--plot-band"});
    EXPECT_TRUE(Shows("p.svg", "95 % of samples from the fit")) << kind;
  }
  MustRun({"fit", kExamples + "portpirie_sea_level.csv", "--plot", "p.svg", "--plot-kind", "fit-comparison"});
  EXPECT_TRUE(Shows("p.svg", "Johnson")) << "the third by rank";
  EXPECT_FALSE(Shows("p.svg", "Log Normal(scale=1.3797, shape=0.0589)")) << "the fourth";
}

TEST_F(PlotCommand, VariablesShareAPictureOrHaveFilesOrPages) {
  WriteBytes(File("d.csv"), "x,<script>,c\n1,3,5\n2,4,5\n4,7,5\n3,5,5\n7,9,5\n");
  MustRun({"fit", "d.csv", "--plot", "grid.svg"});
  EXPECT_TRUE(Shows("grid.svg", "Histogram of x"));
  EXPECT_TRUE(Shows("grid.svg", "Histogram of &lt;script&gt;"));
  EXPECT_FALSE(Shows("grid.svg", "Q-Q Plot of x"));
  EXPECT_TRUE(Shows("grid.svg", "Histogram of c")) << "what could not be fitted is shown without a fit";
  EXPECT_TRUE(Shows("grid.svg", "all values equal")) << BytesOf(File("grid.svg"));
  MustRun({"fit", "d.csv", "--plot", "{name}.svg", "--plot-theme", "dark", "--plot-width", "640"});
  EXPECT_TRUE(Shows("x.svg", "Q-Q Plot of x"));
  EXPECT_TRUE(std::filesystem::exists(File("_script_.svg")));
  EXPECT_NE(BytesOf(File("x.svg")).find("viewBox=\"0 0 640"), std::string::npos);
  EXPECT_NE(BytesOf(File("x.svg")).find("#1b1e23"), std::string::npos);
  MustRun({"fit", "d.csv", "--plot", "d.pdf"});
  EXPECT_NE(BytesOf(File("d.pdf")).find("/Count 3"), std::string::npos);
}

TEST_F(PlotCommand, SimulatedDataShowTheCorrelationsAskedForAndReached) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const std::vector<std::string> call{"simulate", "p.bvw",        "--seed", "7",
                                      "--method", "iman-conover", "--plot", "s.svg"};
  const Json pair = JsonOf(call)["correlations"][0];
  char reached[32];
  std::snprintf(reached, sizeof reached, "reached %.3f", pair["spearman"].get<double>());
  EXPECT_TRUE(Shows("s.svg", reached)) << reached;
  EXPECT_TRUE(Shows("s.svg", "eruptions"));
  MustRun({"simulate", "p.bvw", "--method", "monte-carlo", "--seed", "7", "--plot", "s.svg"});
  EXPECT_TRUE(Shows("s.svg", "Histogram of waiting"));
  MustRun({"simulate", "--variable", "h ~ normal(50, 2)", "--seed", "7", "--plot", "s.svg"});
  EXPECT_TRUE(Shows("s.svg", "normal(location=50, scale=2)"));
  const Outcome refused = Run(
      {"simulate", "p.bvw", "--method", "monte-carlo", "--plot", "s.svg", "--plot-kind", "scatter-matrix"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("only methods that induce correlation have one to show"), std::string::npos);
  MustRun({"show", "p.bvw", "--plot", "d.svg"});
  EXPECT_TRUE(Shows("d.svg", "Histogram of waiting"));
}

TEST_F(PlotCommand, MatricesAndCorrelationsOfSheetsAreDrawn) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  MustRun({"show", "p.bvw", "Correlation matrix", "--plot", "m.svg"});
  EXPECT_TRUE(Shows("m.svg", "Correlation matrix"));
  EXPECT_TRUE(Shows("m.svg", "0.90"));
  const Outcome refused =
      Run({"show", "p.bvw", "Correlation matrix", "--plot", "d.svg", "--plot-kind", "histogram"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("is a matrix, which only a heat-map shows (--plot-kind)"), std::string::npos)
      << refused.err;
  const Json pair = JsonOf({"simulate", "p.bvw", "--method", "iman-conover", "--seed", "7", "-o", "s.bvw"});
  char reached[16];
  std::snprintf(reached, sizeof reached, "%.2f", pair["correlations"][0]["spearman"].get<double>());
  MustRun({"show", "s.bvw", "--plot", "s.svg", "--plot-kind", "scatter-matrix"});
  EXPECT_TRUE(Shows("s.svg", "rank correlation"));
  MustRun({"show", "s.bvw", "--plot", "s.svg", "--plot-matrix", "p.bvw"});
  EXPECT_TRUE(Shows("s.svg", "asked 0.901"));
  MustRun({"show", "s.bvw", "--plot", "s.svg", "--plot-kind", "heat-map", "--plot-matrix", "p.bvw"});
  EXPECT_TRUE(Shows("s.svg", "Rank correlations: reached below the diagonal, asked for above it"));
  EXPECT_TRUE(Shows("s.svg", "0.90"));
  EXPECT_TRUE(Shows("s.svg", reached)) << reached;
}

// One file, "{name}" and the grid for many variables; what a disk cannot hold or a folder refuses.
TEST_F(PlotCommand, ManyVariablesAndFullDisksAreMet) {
  std::string header;
  std::string line;
  for (int i = 0; i < 10'000; ++i) {
    header += (i == 0 ? "v" : ",v") + std::to_string(i);
    line += (i == 0 ? "" : ",") + std::to_string(i % 7);
  }
  WriteBytes(File("wide.csv"), header + "\n" + line + "\n" + line + "\n");
  MustRun({"import", "wide.csv", "-o", "w.bvw"});
  MustRun({"show", "w.bvw", "--plot", "w.svg"});
  EXPECT_TRUE(Shows("w.svg",
                    "the first 100 of 10000 are shown; a PDF, or {name} in the name of the file, shows all"));
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n3\n7\n");
  std::filesystem::create_symlink("/dev/full", File("full.png"));
  const Outcome full = Run({"fit", "d.csv", "--plot", "full.png"});
  EXPECT_EQ(full.status, 1);
  EXPECT_NE(full.err.find("full"), std::string::npos) << full.err;
  WriteBytes(File("text.csv"), "x\na\nb\n");
  MustRun({"import", "text.csv", "-o", "t.bvw"});
  const Outcome none = Run({"show", "t.bvw", "--plot", "t.png"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("there is nothing to draw (t.png)"), std::string::npos) << none.err;
}

// A picture takes the data through memory; they are the same as those that are written while they are drawn.
TEST_F(PlotCommand, APictureChangesNoSample) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  for (const std::string method : {"monte-carlo", "latin-hypercube"}) {
    MustRun({"simulate", "p.bvw", "--seed", "7", "--method", method, "-o", "without.csv"});
    const Outcome with = MustRun(
        {"simulate", "p.bvw", "--seed", "7", "--method", method, "-o", "with.csv", "--plot", "s.png"});
    EXPECT_EQ(BytesOf(File("with.csv")), BytesOf(File("without.csv"))) << method;
  }
}

TEST_F(PlotCommand, SaysWhatADrawingOfDefectsLacks) {
  for (const std::string kind : {"defect-profile", "capability"}) {
    const Outcome outcome =
        Run({"profile", kExamples + "ozone.csv", "--model", kExamples + "ozone_regression.pmml", "--plot",
             "p.svg", "--plot-kind", kind});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("no response has a specification to draw " + kind + " by"), std::string::npos)
        << outcome.err;
  }
}

TEST_F(PlotCommand, ResponsesShowLimitsDriversProfilesAndDefects) {
  std::vector<std::string> call{"profile",  kExamples + "ozone.csv",
                                "--model",  kExamples + "ozone_regression.pmml",
                                "--seed",   "7",
                                "--spec",   "O3=2,10,25",
                                "--graphs", "g.json",
                                "--plot",   "p.svg"};
  MustRun(call);
  for (const char* text :
       {"Histogram of O3", "What drives O3", "LSL 2", "Target 10", "USL 25", "O3 / temp",
        "Defect Rate: O3 / temp", "Defect Rate", "Out of specification", "5 % to 95 % of the runs"}) {
    EXPECT_TRUE(Shows("p.svg", text)) << text;
  }
  const Json regions = Json::parse(BytesOf(File("g.json")))["responses"][0]["graphs"][0]["regions"];
  EXPECT_EQ(regions, Json::parse(R"([{"name": "Out of specification", "from": null, "to": 2.0},
                                     {"name": "Out of specification", "from": 25.0, "to": null}])"));
  const Json band = Json::parse(BytesOf(File("g.json")))["profiles"]["panels"][0]["bands"][0];
  const Json mean = Json::parse(BytesOf(File("g.json")))["profiles"]["panels"][0]["series"][1];
  ASSERT_EQ(band["x"], mean["x"]);
  for (std::size_t i = 0; i < band["x"].size(); ++i) {
    EXPECT_LT(band["lower"][i], mean["y"][i]);
    EXPECT_GT(band["upper"][i], mean["y"][i]);
  }
  call.insert(call.end(), {"--plot-kind", "capability"});
  MustRun(call);
  EXPECT_TRUE(Shows("p.svg", "Capability of O3"));
  EXPECT_FALSE(Shows("p.svg", "What drives O3"));
  call.back() = "histogram";
  call.insert(call.end(), {"--samples", "100001"});
  MustRun(call);
  EXPECT_TRUE(Shows("p.svg", "the first 50001 of 100001 runs are shown"));
  EXPECT_EQ(Json::parse(BytesOf(File("g.json")))["notes"],
            Json({"the first 50001 of 100001 runs are shown"}));
}

TEST_F(PlotCommand, PicturesThatCannotBeMadeAreRefusedBeforeTheWork) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n3\n7\n");
  const struct {
    std::vector<std::string> call;
    int status;
    std::string message;
  } kRows[] = {
      {{"fit", "d.csv", "--plot", "p.jpg"},
       2,
       "expected a file ending in .png, .svg or .pdf, got p.jpg (--plot)"},
      {{"fit", "d.csv", "--graphs", "g.png"}, 2, "expected a file ending in .json, got g.png (--graphs)"},
      {{"export", "p.bvw", "-o", "x.ods"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got x.ods (-o)"},
      {{"import", "d.csv", "-o", "p.csv"}, 2, "expected a file ending in .bvw, got p.csv (-o)"},
      {{"design", "p.json", "--variable", "h ~ normal(0, 1)"},
       2,
       "expected a file ending in .bvw, got p.json"},
      {{"score", "m.pmml", "d.csv", "-o", "x.png"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got x.png (-o)"},
      {{"simulate", "--variable", "h ~ normal(0, 1)", "-o", "x.png"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav, .dta or .bvw, got x.png (-o)"},
      {{"profile", "d.csv", "--formula", "y = x", "-o", "x.ods"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav, .dta or .bvw, got x.ods (-o)"},
      {{"profile", "d.csv", "--formula", "y = x", "--graphs", "g.csv"},
       2,
       "expected a file ending in .json, got g.csv (--graphs)"},
      {{"fit", "d.csv", "--save", "p.csv"}, 2, "expected a file ending in .bvw, got p.csv (--save)"},
      {{"fit", "d.csv", "--record", "m.txt"}, 2, "expected a file ending in .py, got m.txt (--record)"},
      {{"show", "p.bvw", "--plot", "p.bmp"},
       2,
       "expected a file ending in .png, .svg or .pdf, got p.bmp (--plot)"},
      {{"show", "p.bvw", "--plot-matrix", "m"},
       2,
       "this affects only a picture; give the file of the picture as well (--plot-matrix)"},
      {{"fit", "d.csv", "--plot", "p.png", "--record", "m.py"}, 2, "pictures cannot be recorded (--plot)"},
      {{"fit", "d.csv", "--plot-kind", "qq"},
       2,
       "this affects only a picture; give the file of the picture as well (--plot-kind)"},
      {{"fit", "d.csv", "--plot", "no/such/p.png"}, 2, "the folder of no/such/p.png does not exist (--plot)"},
      {{"fit", "d.csv", "--save", "s.bvw", "--graphs", "g.json", "--plot", "p.gif"},
       2,
       "got p.gif (--plot)"}};
  for (const auto& row : kRows) {
    const Outcome outcome = Run(row.call);
    EXPECT_EQ(outcome.status, row.status) << row.message;
    EXPECT_NE(outcome.err.find(row.message), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"d.csv"});
}

TEST_F(Command, ChartsKeepToTheWidthOfATerminalAndAppearInNoneElse) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n3\n7\n");
  EXPECT_EQ(MustRun({"fit", "d.csv", "--chart"}).out, MustRun({"fit", "d.csv"}).out);
  MustRun({"fit", "d.csv", "--save", "p.bvw"});
  const std::string program = BRENVOLT_BUILD_DIR "/bin/brenvolt ";
  for (const std::string call : {"fit d.csv --chart", "simulate p.bvw --seed 1 --chart"}) {
    const Outcome outcome = RunProgram(
        "/usr/bin/script", {"-qec", "stty cols 60; " + program + call, "/dev/null"}, folder.Path());
    const auto chart = outcome.out.find("Histogram of x\r\n");
    ASSERT_NE(chart, std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("█", chart), std::string::npos);
    EXPECT_NE(outcome.out.find("│ ", chart), std::string::npos) << outcome.out;
  }
}

// A copy of the programs without the library, as where its packages are not installed.
TEST_F(PlotCommand, WithoutTheLibraryEverythingElseWorksAndTheMessageNamesThePackages) {
  const std::filesystem::path build = BRENVOLT_BUILD_DIR;
  for (const char* part : {"bin", "lib"}) std::filesystem::create_directory(File(part));
  std::filesystem::copy(build / "bin/brenvolt", File("bin/brenvolt"));
  for (const auto& entry : std::filesystem::directory_iterator(build / "lib")) {
    const std::string name = entry.path().filename();
    if (name == "libbrv_sra.so" || name == "libbrenvolt.so.0")
      std::filesystem::copy(entry.path(), File("lib/" + name));
  }
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n3\n7\n");
  const std::string program = File("bin/brenvolt");
  EXPECT_EQ(RunProgram(program, {"fit", "d.csv"}, folder.Path()).status, 0);
  const Outcome refused = RunProgram(program, {"fit", "d.csv", "--plot", "p.png"}, folder.Path());
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("qt6-base-dev, qt6-svg-dev and libqcustomplot-dev"), std::string::npos)
      << refused.err;
  WriteBytes(File("lib/libbrenvolt_drawing.so"), "no library");
  const Outcome broken = RunProgram(program, {"fit", "d.csv", "--plot", "p.png"}, folder.Path());
  EXPECT_EQ(broken.status, 2);
  EXPECT_NE(broken.err.find("libqcustomplot2.1-qt6 and libqt6svg6"), std::string::npos) << broken.err;
}

}  // namespace
}  // namespace brenvolt::test
