#include "host/jobs/fit_job.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace brenvolt {
namespace {

using Change = std::function<void(FitJob&)>;

std::vector<std::string> Texts(const JobFaults& faults) {
  std::vector<std::string> texts;
  for (const JobFault& fault : faults) texts.push_back(fault.field + ": " + fault.message);
  return texts;
}

TEST(FitJob, WhatMakesSenseHasNoFault) {
  const Change changes[] = {[](FitJob&) {},
                            [](FitJob& job) { job.rankBy = "anderson-darling"; },
                            [](FitJob& job) {
                              job.variables.discrete = {"n"};
                              job.discreteRankBy = "chi-square";
                              job.trials = {{"n", 9}};
                            },
                            [](FitJob& job) {
                              job.distributions = {"Log-Normal", "GEV"};
                              job.offsets = {{"x", "lognormal", 0.5}};
                            },
                            [](FitJob& job) {
                              job.bootstrap = 9;
                              job.bootstrapSeed = 0;
                            },
                            [](FitJob& job) {
                              job.save = "p.BVW";
                              job.truncate = {{"x", 1, std::nullopt}, {"y", std::nullopt, std::nullopt}};
                              job.order = {{"x", {"normal", "gev"}}};
                            }};
  for (const Change& change : changes) {
    FitJob job;
    change(job);
    EXPECT_EQ(Texts(job.Check()), std::vector<std::string>());
  }
}

TEST(FitJob, EachFaultIsReportedWithItsField) {
  const struct {
    Change change;
    const char* fault;
  } cases[] = {
      {[](FitJob& job) { job.rankBy = "caic"; },
       "rankBy: expected one of aic, anderson-darling, bic, chi-square, ks; got 'caic'; did you mean aic?"},
      {[](FitJob& job) { job.missing = ""; }, "missing: expected one of casewise, pairwise; got ''"},
      {[](FitJob& job) { job.discreteRankBy = "ks"; }, "discreteRankBy: no discrete variable is fitted"},
      {[](FitJob& job) {
         job.variables.continuous = {"x", "y", "x"};
       },
       "continuous: 'x' is given twice"},
      {[](FitJob& job) {
         job.variables.continuous = {"x"};
         job.variables.discrete = {"x"};
       },
       "discrete: 'x' is given both as continuous and as discrete"},
      {[](FitJob& job) {
         job.variables.discrete = {"n"};
         job.distributions = {"gev"};
       },
       "distributions: none of these is for discrete variables"},
      {[](FitJob& job) {
         job.offsets = {{"x", "normal", 1}};
       },
       "offsets: the normal distribution has no offset"},
      {[](FitJob& job) {
         job.offsets = {{"x", "weibull", 1}, {"x", "Weibull", 2}};
       },
       "offsets: 'x:weibull' is given twice"},
      {[](FitJob& job) {
         job.offsets = {{"x", "weibull", -444}};
       },
       "offsets: -444 means that no offset is set and cannot be an offset"},
      {[](FitJob& job) {
         job.offsets = {{"x", "weibull", std::numeric_limits<double>::quiet_NaN()}};
       },
       "offsets: 'x:weibull': expected a finite number, got nan"},
      {[](FitJob& job) {
         job.mixtures = {{"x", 2.5}};
       },
       "mixtures: 'x': expected a whole number from 2 to 20, got 2.5"},
      {[](FitJob& job) {
         job.trials = {{"x", 3}};
       },
       "trials: no discrete variable is fitted"},
      {[](FitJob& job) {
         job.distributions = {"normal"};
         job.johnsonPercentiles = true;
       },
       "johnsonPercentiles: the johnson distribution is not tried"},
      {[](FitJob& job) {
         job.distributions = {"normal", "poisson"};
       },
       "distributions: the poisson distribution is for discrete variables; a variable is fitted as discrete "
       "only if it "
       "is given as discrete"},
      {[](FitJob& job) {
         job.variables.discrete = {"x"};
         job.distributions = {"normal", "poisson"};
       },
       "distributions: the normal distribution is for continuous variables, but no continuous variable is "
       "fitted"},
      {[](FitJob& job) { job.bootstrap = 1e23; },
       "bootstrap: expected a whole number from 1 to 1000000, got 100000000000000000000000"},
      {[](FitJob& job) { job.bootstrap = 1.5e300; },
       "bootstrap: expected a whole number from 1 to 1000000, got 1.5e+300"},
      {[](FitJob& job) { job.bootstrap = 0; }, "bootstrap: expected a whole number from 1 to 1000000, got 0"},
      {[](FitJob& job) { job.bootstrapSeed = 1; }, "bootstrapSeed: a seed has no effect without a bootstrap"},
      {[](FitJob& job) { job.save = "p.csv"; }, "save: expected a file ending in .bvw, got p.csv"},
      {[](FitJob& job) {
         job.order = {{"x", {"normal"}}};
       },
       "order: the fits are not saved, so their order has no effect"},
      {[](FitJob& job) {
         job.save = "p.bvw";
         job.truncate = {{"x", 2, 2}};
       },
       "truncate: 'x': the lower bound must be less than the upper one"},
      {[](FitJob& job) {
         job.save = "p.bvw";
         job.order = {{"x", {"gev", "generalextremevalue"}}};
       },
       "order: 'generalextremevalue' is given twice"},
      {[](FitJob& job) {
         job.save = "p.bvw";
         job.order = {{"x", {"poisson"}}};
       },
       "order: 'x': the poisson distribution is for discrete variables"},
      {[](FitJob& job) {
         job.save = "p.bvw";
         job.variables.discrete = {"x"};
         job.order = {{"x", {"poisson", "gev"}}};
       },
       "order: 'x': the generalextremevalue distribution is for continuous variables"},
  };
  for (const auto& c : cases) {
    FitJob job;
    c.change(job);
    EXPECT_EQ(Texts(job.Check()), std::vector<std::string>{c.fault});
  }
}

TEST(FitJob, AllFaultsAreInOneList) {
  FitJob job;
  job.rankBy = "best";
  job.bootstrap = 0.5;
  job.save = "p";
  EXPECT_EQ(job.Check().size(), 3U);
}

}  // namespace
}  // namespace brenvolt
