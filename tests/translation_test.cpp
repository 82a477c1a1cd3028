// What programs read of results does not depend on the language of the module's headings and names.
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kModuleVariable = "BRENVOLT_MODULE";
constexpr const char* kTranslatedModule = BRENVOLT_BUILD_DIR "/lib/libtest_translated_module.so";

// What Python makes of the results of a fit; the names of distributions alone are for people.
constexpr const char* kMacro = R"(
import brenvolt, sys
fitted = brenvolt.fit(sys.argv[1], discrete=["number"], bootstrap=20, distributions=["poisson", "binomial", "geometric"])
for name, variable in fitted.variables.items():
    print(name, variable.kind, variable.n, variable.missing, variable.standard_errors("poisson"), variable.best)
    print(variable.fits.drop(columns="distribution").to_csv())
)";

// Takes away what JSON has for people. The description is the same in every language.
void LeaveToPrograms(Json& json) {
  if (json.is_object()) {
    const bool isTold = json.contains("identifier");
    for (const char* name : {"best", "instead", "message"}) json.erase(name);
    if (isTold) json.erase("distribution");
  }
  if (!json.is_structured()) return;
  for (Json& part : json) LeaveToPrograms(part);
}

struct Translation : Command {
  ~Translation() override { ::unsetenv(kModuleVariable); }

  std::string RunTranslated(const std::vector<std::string>& arguments) const {
    ::setenv(kModuleVariable, kTranslatedModule, 1);
    std::string out = MustRun(arguments).out;
    ::unsetenv(kModuleVariable);
    return out;
  }
};

// What programs read of an output.
std::string ForPrograms(const std::string& out) {
  Json json = Json::parse(out, nullptr, false);
  if (json.is_discarded()) return out;
  LeaveToPrograms(json);
  return json.dump(1);
}

TEST_F(Translation, ProgramsReadTheSameResults) {
  std::ofstream(File("fits.py")) << kMacro;
  const std::string toxocara = kExamples + "toxocara.csv";
  const std::string faithful = kExamples + "faithful.csv";
  const std::string ozone = kExamples + "ozone.csv";
  const std::vector<std::string> calls[] = {
      {"fit", toxocara, "--discrete", "number", "--format", "json"},
      {"fit", faithful, "--bootstrap", "20", "--distributions", "normal,weibull", "--format", "json"},
      {"fit", faithful, "--distributions", "normal,lognormal", "--order", "waiting=Log Normal,normal",
       "--truncate", "waiting=,90", "--save", "geyser.bvw", "--format", "json"},
      {"simulate", "geyser.bvw", "--method", "iman-conover", "--seed", "7", "--format", "json"},
      {"design", "geyser.bvw", "--variable", "waiting ~ triangular(40, 100, 80)", "--format", "json"},
      {"profile", "geyser.bvw", "--formula", "y = waiting", "--seed", "7", "--samples", "1000", "--format",
       "json"},
      {"profile", ozone, "--model", kExamples + "ozone_regression.pmml", "--seed", "7", "--samples", "1000",
       "--spec", "O3=,,25", "--format", "json"},
      {"macro", "fits.py", toxocara}};
  std::vector<std::string> translated;
  for (const auto& call : calls) translated.push_back(ForPrograms(RunTranslated(call)));
  std::filesystem::remove(File("geyser.bvw"));
  for (std::size_t i = 0; i < std::size(calls); ++i) {
    EXPECT_EQ(ForPrograms(MustRun(calls[i]).out), translated[i]) << testing::PrintToString(calls[i]);
  }
}

TEST_F(Translation, ProjectOfNoOtherLanguageIsReadAndSavedAgain) {
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal,lognormal", "--save", "geyser.bvw"});
  const std::vector<std::string> call{"simulate", "geyser.bvw", "--seed", "7", "--format", "json"};
  const std::string own = ForPrograms(MustRun(call).out);
  EXPECT_EQ(ForPrograms(RunTranslated(call)), own);
  RunTranslated(
      {"fit", kExamples + "faithful.csv", "--distributions", "normal,lognormal", "--save", "geyser.bvw"});
  EXPECT_EQ(ForPrograms(RunTranslated(call)), own);
}

TEST_F(Translation, PeopleReadTheHeadingsOfTheModule) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "geyser.bvw"});
  const std::vector<std::string> call{"simulate", "geyser.bvw", "--seed", "7"};
  EXPECT_NE(MustRun(call).out.find("Valid N"), std::string::npos);
  EXPECT_NE(RunTranslated(call).find("Überschrift Valid N"), std::string::npos);
  const std::string fits = RunTranslated({"fit", kExamples + "faithful.csv", "--format", "json"});
  EXPECT_NE(fits.find("Verteilung Weibull"), std::string::npos);
}

}  // namespace
}  // namespace brenvolt::test
