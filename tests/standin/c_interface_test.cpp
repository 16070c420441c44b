// Runs the checks of the C source.
#include "tests/standin/c_interface.h"

#include <gtest/gtest.h>

namespace {

TEST(CInterface, ValuesMakeARoundTripInC) { EXPECT_EQ(standin_c_round_trip(), 0); }

TEST(CInterface, LoggingIsFormattedInC) { EXPECT_EQ(standin_c_logging(), 0); }

} // namespace
