// What programs read of results does not depend on the language of the module's headings.
#include <cstdlib>
#include <fstream>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

constexpr const char* kModuleVariable = "BRENVOLT_MODULE";
constexpr const char* kTranslatedModule = BRENVOLT_BUILD_DIR "/lib/libtest_translated_module.so";

// What Python makes of the results of a fit.
constexpr const char* kMacro = R"(
import brenvolt, sys
fitted = brenvolt.fit(sys.argv[1], discrete=["number"], bootstrap=20, distributions=["poisson", "binomial", "geometric"])
for name, variable in fitted.variables.items():
    print(name, variable.kind, variable.n, variable.missing, variable.standard_errors("poisson"))
    print(variable.fits.to_csv())
)";

struct Translation : Command {
  ~Translation() override { ::unsetenv(kModuleVariable); }

  // The output of a call with the module as it is, then with its headings translated.
  std::pair<std::string, std::string> Both(const std::vector<std::string>& arguments) const {
    ::unsetenv(kModuleVariable);
    const std::string own = MustRun(arguments).out;
    ::setenv(kModuleVariable, kTranslatedModule, 1);
    return {own, MustRun(arguments).out};
  }
};

TEST_F(Translation, ProgramsReadTheSameResults) {
  std::ofstream(File("fits.py")) << kMacro;
  const std::string toxocara = kExamples + "toxocara.csv";
  const std::string ozone = kExamples + "ozone.csv";
  const std::vector<std::string> calls[] = {
      {"fit", toxocara, "--discrete", "number", "--format", "json"},
      {"fit", kExamples + "faithful.csv", "--bootstrap", "20", "--distributions", "normal,weibull",
       "--format", "json"},
      {"fit", kExamples + "faithful.csv", "--save", "geyser.bvw"},
      {"simulate", "geyser.bvw", "--method", "iman-conover", "--seed", "7", "--format", "json"},
      {"profile", ozone, "--model", kExamples + "ozone_regression.pmml", "--seed", "7", "--samples", "1000",
       "--spec", "O3=,,25", "--format", "json"},
      {"macro", "fits.py", toxocara}};
  for (const auto& call : calls) {
    const auto [own, translated] = Both(call);
    EXPECT_EQ(own, translated) << call.front();
  }
}

TEST_F(Translation, PeopleReadTheHeadingsOfTheModule) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "geyser.bvw"});
  const auto [own, translated] = Both({"simulate", "geyser.bvw", "--seed", "7"});
  EXPECT_NE(own.find("Valid N"), std::string::npos);
  EXPECT_NE(translated.find("Überschrift Valid N"), std::string::npos);
}

}  // namespace
}  // namespace brenvolt::test
