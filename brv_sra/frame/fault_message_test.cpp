#include "brv_sra/frame/fault_message.h"

#include <gtest/gtest.h>

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

TEST(FaultMessage, TextAndPlaceTakeWhatTheFaultIsAbout) {
  const struct {
    Fault fault;
    std::string_view text, where;
  } rows[] = {
      {{kNotAMatrixFile}, "", ""},
      {{kMatrixLacksMean}, "Mean error", ""},
      {{kMatrixReadingCancelled}, "User cancelled the progress while reading mean.", ""},
      {{kMatrixDeviationsDeselected},
       "Case selection condition disabled variables' standard deviation information",
       ""},
      {{kTruncationNotSampled, "c", "Normal(1, -1)"},
       "Simulation failed.  Please review best fitting distributions for appropriate parameters.",
       "variable c, Normal(1, -1) with its truncation"},
      {{kCorrelationMissing, "b", "{about}"},
       "Simulation failed. Please check the correlation matrix.",
       "the correlation of b and {about} is missing"},
  };
  for (const auto& row : rows) {
    const FaultMessage message = MessageOf(row.fault);
    EXPECT_EQ(message.text, row.text);
    EXPECT_EQ(message.where, row.where) << row.text;
  }
}

TEST(FaultMessage, AutomationGetsTheMessageAsAnException) {
  try {
    ValueOrThrow(Result<int>(Fault{kMatrixLacksValidCases}));
    FAIL();
  } catch (const CDispatchException& error) {
    EXPECT_STREQ(error.what(), "Valid cases error");
  }
  EXPECT_EQ(ValueOrThrow(Result<int>(7)), 7);
}

}  // namespace
}  // namespace brenvolt::sra
