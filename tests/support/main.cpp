// SPDX-License-Identifier: BSL-1.0

// The main function of every test program.

#include <cstdio>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  const testing::UnitTest& all = *testing::UnitTest::GetInstance();
  // The last line. Where it is missing, the program did not live to its end.
  std::printf("%s: %d passed, %d failed\n", argv[0], all.successful_test_count(), all.failed_test_count());
  return result;
}
