// SPDX-License-Identifier: BSL-1.0

// What developers read in the debugger.

#include <ruvo/datetime.hpp>
#include <ruvo/fake_context.hpp>
#include <ruvo/log_targets.hpp>

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/debug_lines.hpp"

namespace {

std::vector<std::string> said_on_a_thread(void (*work)()) {
  const debug_lines debugger;
  std::thread(work).join();
  return debugger.lines();
}

void use_values() {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ruvo::datetime(0LL).get_hour(), 0);
}

TEST(debugger, hears_once_of_a_thread_without_application) {
  if (!debug_lines::works) GTEST_SKIP() << "no debugger's lines here";
  EXPECT_TRUE(said_on_a_thread(use_values).empty());  // a program that does without an application
  ruvo::fake_context app;
  for (int n = 0; n < 2; ++n) {
    const std::vector<std::string> said = said_on_a_thread(use_values);
    ASSERT_EQ(said.size(), 1u);
    EXPECT_NE(said[0].find("check_in"), std::string::npos) << said[0];
  }
  static ruvo::application* shared;
  shared = &app;
  const auto checked_in = said_on_a_thread([] {
    const ruvo::thread_scope scope(*shared);
    use_values();
  });
  EXPECT_TRUE(checked_in.empty());
}

TEST(debugger, hears_at_the_end_of_entries_that_nobody_took) {
  if (!debug_lines::works) GTEST_SKIP() << "no debugger's lines here";
  {
    ruvo::fake_context earlier;  // reports those of other tests
  }
  ruvo::fake_context app;
  const ruvo::thread_scope scope(app);
  for (int n = 0; n < 3; ++n) ruvo::log::info(L"a", L"b");
  const debug_lines debugger;
  for (int n = 0; n < 2; ++n) app.shutdown();
  const std::vector<std::string> said = debugger.lines();
  ASSERT_EQ(said.size(), 1u);
  EXPECT_NE(said[0].find(std::to_string(ruvo::log::get_lost()) + " log entries"), std::string::npos)
      << said[0];
}

TEST(debugger, sees_entries) {
  if (!debug_lines::works) GTEST_SKIP() << "no debugger's lines here";
  ruvo::fake_context fake;
  const ruvo::thread_scope scope(fake);
  const debug_lines debugger;
  ruvo::reg::debugger_output output;
  ruvo::logger(L"", 7).set_callback(&output).sql(L"select", L"1");
  const std::vector<std::string> expected = {"[1970-01-01 00:00:00.000] SQL: select: 1\n"};
  EXPECT_EQ(debugger.lines(), expected);
}

}  // namespace
