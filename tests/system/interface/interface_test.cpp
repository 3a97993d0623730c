#include <gtest/gtest.h>

extern "C" int deskewInC(void);
int streamLengthInCpp();

namespace {

TEST(Interface, WorksFromC) { EXPECT_EQ(deskewInC(), 0); }

TEST(Interface, WorksFromCpp) { EXPECT_GT(streamLengthInCpp(), 100); }

}    // namespace
