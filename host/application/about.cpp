#include "host/application/about.h"

#include <archive.h>
#include <hwy/highway.h>
#include <oneapi/tbb/version.h>
#include <sqlite3.h>
#include <xlsxwriter.h>

#include <boost/version.hpp>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

namespace brenvolt {
namespace {

std::string Dotted(int major, int minor, int patch) {
  return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

std::string Compiler() {
#ifdef __clang__
  return "Clang " __clang_version__;
#else
  return "GCC " __VERSION__;
#endif
}

// Of RE2, ReadStat and uchardet, which tell no version, the build knows the file that it links (host/CMakeLists.txt). Others
// write it as one number, in each its own way.
std::string BoostVersion() {
  return Dotted(BOOST_VERSION / 100000, BOOST_VERSION / 100 % 1000, BOOST_VERSION % 100);
}
std::string PugixmlVersion() {
  return Dotted(PUGIXML_VERSION / 1000, PUGIXML_VERSION / 10 % 100, PUGIXML_VERSION % 10);
}

// The best of those that the machine has and the code is compiled for comes first.
std::string InstructionSet() {
  const std::string name = hwy::TargetName(hwy::SupportedAndGeneratedTargets().front());
  return name.starts_with("AVX3") ? "AVX-512" : name;
}

}  // namespace

About AboutHost() {
  return {BRENVOLT_VERSION,
          Compiler(),
          InstructionSet(),
          {{"Boost", BoostVersion()},
           {"oneTBB", TBB_runtime_version()},
           {"Highway", Dotted(HWY_MAJOR, HWY_MINOR, HWY_PATCH)},
           {"SQLite", sqlite3_libversion()},
           {"libarchive", std::string(archive_version_details()).substr(sizeof("libarchive ") - 1)},
           {"libxlsxwriter", lxw_version()},
           {"pugixml", PugixmlVersion()},
           {"RE2", BRENVOLT_RE2_FILE},
           {"ReadStat", BRENVOLT_READSTAT_FILE},
           {"uchardet", BRENVOLT_UCHARDET_FILE},
           {"nlohmann-json",
            Dotted(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH)}}};
}

}  // namespace brenvolt
