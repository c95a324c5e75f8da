// SPDX-License-Identifier: BSL-1.0

// The logger, its day files and the ready-made callbacks, with a clock that the tests set.

#include <ruvo/exc.hpp>
#include <ruvo/fake_context.hpp>
#include <ruvo/log_targets.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "files/scratch.hpp"
#include "support/links.hpp"

namespace {

namespace fs = std::filesystem;

struct recorder : ruvo::IOnLog {
  struct entry {
    long level;
    std::wstring second, first;
    bool operator==(const entry&) const = default;
  };
  void on_log(long level, const std::wstring& second, const std::wstring& first) override {
    if (throws) throw 1;
    entries.push_back({level, second, first});
  }
  void flush() override { ++flushes; }

  std::vector<entry> entries;
  int flushes = 0;
  bool throws = false;
};

/// A folder, and a clock that stands at 2024-02-29 13:05:09.042.
class logs : public scratch {
 protected:
  logs() : scope(fake) {
    fake.clock = 1709211909;
    fake.milliseconds = 42;
    fake.next_id = 1;
  }

  static std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != text.npos; at = end + 2)
      out.push_back(text.substr(at, end - at));
    return out;
  }

  ruvo::fake_context fake;
  ruvo::thread_scope scope;
};

TEST_F(logs, levels_decide_what_is_forwarded) {
  const std::wstring names[] = {L"",      L"ASSERTION", L"FAILURE", L"WARNING", L"INFO",
                                L"DEBUG", L"SQL",       L"VERBOSE", L""};
  for (long n = 0; n < 9; ++n) EXPECT_EQ(ruvo::reg::level_name(n), names[n]);
  EXPECT_EQ(ruvo::reg::level_name(-1), L"");

  for (long level = -1; level <= 9; ++level) {
    recorder seen;
    ruvo::logger log(L"prueba", level);
    const auto make_all = [&] {
      log.assertion(L"a", L"1");
      log.failure(L"a", L"2");
      log.warning(L"a", L"3");
      log.info(L"a", L"4");
      log.debug(L"a", L"5");
      log.sql(L"a", L"6");
      log.verbose(L"a", L"7");
    };
    make_all();  // without a callback
    log.set_callback(&seen);
    make_all();
    std::vector<recorder::entry> expected;
    for (long n = 1; n <= std::min(level, 7L); ++n) expected.push_back({n, std::to_wstring(n), L"a"});
    EXPECT_EQ(seen.entries, expected) << level;
    log.log(level, L"b", L"c");
    log.log(level + 1, L"b", L"c");
    EXPECT_EQ(seen.entries.size(), expected.size() + 1) << level;
    log.set_callback(nullptr);
    make_all();
    EXPECT_EQ(seen.entries.size(), expected.size() + 1) << level;
  }
}

TEST_F(logs, exceptions_stand_for_their_messages) {
  recorder seen;
  ruvo::logger log(L"", 3);
  log.set_callback(&seen);
  log.assertion(L"x", std::runtime_error("\xC3\xB1"));
  log.failure(L"x", ruvo::exc::fileNotFound("a.txt"));
  log.warning(L"x", std::logic_error("w"));
  log.assertion(L"x", std::make_exception_ptr(std::runtime_error("p")));
  log.assertion(L"x", std::make_exception_ptr(7));
  log.assertion(L"x", std::exception_ptr());
  ruvo::exc::MissingElement missing("m");
  missing.set_detail(L"n");
  log.failure(L"x", missing);
  const std::vector<recorder::entry> expected = {{1, L"ñ", L"x"},
                                                 {2, L"Archivo o directorio no encontrado: a.txt", L"x"},
                                                 {3, L"w", L"x"},
                                                 {1, L"p", L"x"},
                                                 {1, L"Error indeterminado", L"x"},
                                                 {1, L"", L"x"},
                                                 {2, L"m (n)", L"x"}};
  EXPECT_EQ(seen.entries, expected);
}

TEST_F(logs, faults_of_a_callback_stay_with_it) {
  recorder good, bad;
  bad.throws = true;
  ruvo::reg::tee both{&bad, nullptr, &good};
  ruvo::logger log;
  log.set_callback(&bad).info(L"a", L"b");
  log.set_callback(&both).info(L"a", L"b");
  EXPECT_EQ(good.entries.size(), 1u);
  log.flush();
  EXPECT_EQ(good.flushes + bad.flushes, 2);
}

TEST_F(logs, a_callback_that_logs_is_not_called_by_itself) {
  ruvo::logger one, two;
  struct : ruvo::IOnLog {
    void on_log(long, const std::wstring&, const std::wstring& first) override {
      ++entries;
      here->info(first, L"again");
      if (there) there->info(first, L"to the next");
    }
    ruvo::logger *here = nullptr, *there = nullptr;
    int entries = 0;
  } first, second;
  first.here = second.there = &one;
  first.there = second.here = &two;
  one.set_callback(&first);
  two.set_callback(&second);
  const unsigned long long before = ruvo::log::get_lost();
  one.info(L"a", L"b");
  EXPECT_EQ(first.entries, 1);
  EXPECT_EQ(second.entries, 1);
  EXPECT_EQ(ruvo::log::get_lost() - before, 3U);
}

TEST_F(logs, entries_go_to_the_file_too_where_that_is_wanted) {
  recorder seen;
  ruvo::logger log;
  const unsigned long long before = ruvo::log::get_lost();
  const auto lost = [before] { return ruvo::log::get_lost() - before; };
  log.set_entries_to_file(true).info(L"a", L"no folder");
  EXPECT_EQ(lost(), 1U);
  log.set_path("scratch");
  log.failure(L"a", ruvo::exc::fileNotFound("a.txt"));
  log.debug(L"a", L"not wanted");
  seen.throws = true;
  log.set_callback(&seen).warning(L"a", L"b\nc");
  log.set_entries_to_file(false).info(L"a", L"to the callback");
  EXPECT_EQ(lost(), 2U);  // it throws, and no file has the entry
  log.set_callback(nullptr).info(L"a", L"to nobody");
  log.set_path("scratch/missing").log(L"a line");
  ruvo::reg::day_file nowhere("scratch/missing");
  log.set_callback(&nowhere).info(L"a", L"b");
  EXPECT_EQ(lost(), 5U);
  const std::string stamp = "[2024-02-29 13:05:09.042] ";
  EXPECT_EQ(
      get("scratch/kesta_20240229.log"),
      stamp + "FAILURE: a: Archivo o directorio no encontrado: a.txt\r\n" + stamp + "WARNING: a: b c\r\n");
}

TEST_F(logs, an_application_logs_to_files_by_one_call) {
  ruvo::kesta::app app;
  ruvo::exception err;
  EXPECT_FALSE(app.log_to_files());
  fake.check_out(ruvo::application::threadID());
  ASSERT_TRUE(app.boot("scratch", err)) << err.what();
  EXPECT_TRUE(app.log_to_files());
  ruvo::log::info(L"a", L"b");
  app.get_logger().warning(L"c", L"d");
  const std::wstring text = app.get_logger().read(ruvo::dates::today());
  EXPECT_EQ(std::count(text.begin(), text.end(), L'\n'), 2) << ruvo::texto::to_utf_8(text);
  app.shutdown();
}

TEST_F(logs, console_takes_what_went_wrong_apart) {
  ruvo::reg::console_output console;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (const long level : {1L, 3L, 4L, 9L}) console.on_log(level, L"ñ\r\nb", L"a");
  std::fflush(nullptr);
  std::string out = testing::internal::GetCapturedStdout(), err = testing::internal::GetCapturedStderr();
  std::erase(out, '\r');
  std::erase(err, '\r');
  const std::string stamp = "[2024-02-29 13:05:09.042] ", text = ": a: \xC3\xB1 b\n";
  EXPECT_EQ(out, stamp + "INFO" + text + stamp + "9" + text);
  EXPECT_EQ(err, stamp + "ASSERTION" + text + stamp + "WARNING" + text);
}

TEST_F(logs, stopwatch) {
  recorder seen;
  ruvo::logger log;
  log.set_callback(&seen);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const double before = log.time(L"carga");
  EXPECT_GE(before, 19);
  log.reset_time();
  EXPECT_LT(log.time(L"carga"), before);
  ASSERT_EQ(seen.entries.size(), 2u);
  EXPECT_EQ(seen.entries[0].level, ruvo::reg::INFO);
  EXPECT_EQ(seen.entries[0].first, L"carga");
  EXPECT_NEAR(std::stod(seen.entries[0].second), before, 0.001);
  EXPECT_TRUE(seen.entries[0].second.ends_with(L" ms"));
}

TEST_F(logs, file_of_the_day) {
  EXPECT_EQ(ruvo::reg::format_name(20240229), L"kesta_20240229.log");
  EXPECT_EQ(ruvo::reg::time_stamp(), L"[2024-02-29 13:05:09.042]");
  ruvo::logger log(L"", 0);  // no level counts here
  log.set_path("scratch");
  EXPECT_EQ(log.file(20240229), ruvo::file("scratch/kesta_20240229.log"));
  EXPECT_EQ(log.read(20240229), L"");
  log.log(L"uno\r\ndos\ttres\x01 ñ\xD83D\xDE00\x7F\x85\x9F\x2028\x2029.");
  fake.zone_offset = 11 * 3600;  // past midnight there
  log.log(L"");
  log.flush();
  EXPECT_EQ(log.read(20240229), L"[2024-02-29 13:05:09.042] uno dos tres  ñ\xD83D\xDE00     .\r\n");
  EXPECT_EQ(get("scratch/kesta_20240301.log"), "[2024-03-01 00:05:09.042] \r\n");
  log.log(L"otra");
  EXPECT_TRUE(log.erase(20240301));
  EXPECT_FALSE(log.erase(20240301));
  log.log(L"de nuevo");
  EXPECT_EQ(log.read(20240301), L"[2024-03-01 00:05:09.042] de nuevo\r\n");
}

TEST_F(logs, folder_may_be_missing_and_come_later) {
  ruvo::logger log;
  log.log(L"sin carpeta");
  log.set_path("scratch/no");
  log.log(L"perdida");
  EXPECT_EQ(log.read(20240229), L"");
  EXPECT_FALSE(log.erase(20240229));
  EXPECT_EQ(log.clean_week(), 0u);
  log.flush();
  EXPECT_FALSE(fs::exists("scratch/no"));
  fs::create_directory("scratch/no");
  log.log(L"llega");
  EXPECT_EQ(log.read(20240229), L"[2024-02-29 13:05:09.042] llega\r\n");
  log.set_path("scratch/kesta_20240229.log");  // a file is no folder
  std::ofstream("scratch/kesta_20240229.log") << "x";
  log.log(L"perdida");
  EXPECT_EQ(get("scratch/kesta_20240229.log"), "x");
}

TEST_F(logs, without_a_folder_no_file_is_touched) {
  std::ofstream("kesta_20200101.log") << "x";
  ruvo::logger log;
  EXPECT_EQ(log.read(20200101), L"");
  EXPECT_FALSE(log.erase(20200101));
  EXPECT_EQ(get("kesta_20200101.log"), "x");
  fs::remove("kesta_20200101.log");
}

TEST_F(logs, full_disk_is_survived) {
  const std::string name = "scratch/kesta_20240229.log";
  if (!links::make("/dev/full", name)) GTEST_SKIP() << "no links here";
  ruvo::logger log;
  log.set_path("scratch").log(L"no cabe");
  log.flush();
  links::drop(name);
  log.log(L"cabe");
  EXPECT_EQ(log.read(20240229), L"[2024-02-29 13:05:09.042] cabe\r\n");
}

TEST_F(logs, a_full_disk_cuts_no_line) {
  fs::create_directory("scratch/disco");
  if (!links::ask("disk scratch/disco")) GTEST_SKIP() << "no small disk here";
  {
    ruvo::logger log;
    log.set_path("scratch/disco");
    put(path(L"disco\\relleno"), std::string(40'000, 'x'));
    for (int i = 0; i < 500; ++i) log.log(L"línea número " + std::to_wstring(i) + std::wstring(60, L'x'));
    path(L"disco\\relleno").erase();
    log.log(L"cabe");
    const std::wstring text = log.read(20240229);
    EXPECT_TRUE(text.ends_with(L"cabe\r\n"));
    EXPECT_GT(text.size(), 10'000u);
    for (std::size_t at = 0; at < text.size(); at = text.find(L"\r\n", at) + 2) {
      const std::size_t end = text.find(L"\r\n", at);
      EXPECT_EQ(text.substr(at, end - at).rfind(L"[2024"), 0u) << at;
    }
  }
  EXPECT_TRUE(links::ask("eject scratch/disco"));
}

TEST_F(logs, week_is_kept) {
  const char* const kept[] = {"kesta_20240223.log", "kesta_20240229.log",  "kesta_20240301.log",
                              "kesta_2024022.log",  "kesta_202402221.log", "otro_20240101.log",
                              "kesta_20240101.txt", "kesta_2024o101.log",  "xkesta_20240101.log",
                              "kesta_00010101.log", "kesta_20240100.log",  "kesta_20231301.log",
                              "kesta_20230229.log", "kesta_20230001.log",  "kesta_00000000.log"};
  const char* const old[] = {"kesta_20240222.log", "kesta_20240131.log", "kesta_19991231.log"};
  std::vector<std::wstring> listing;
  for (const std::string name : kept) listing.emplace_back(name.begin(), name.end());
  for (const std::string name : old) listing.emplace_back(name.begin(), name.end());
  for (const std::wstring& name : listing) std::ofstream(fs::path("scratch") / fs::path(name)) << "x";
  fs::create_directory("scratch/kesta_20200101.log");
  listing.push_back(L"kesta_20200101.log");
  fake.folders["scratch"] = listing;

  ruvo::logger log;
  EXPECT_EQ(log.set_path("scratch").clean_week(), std::size(old));
  std::set<std::string> expected(std::begin(kept), std::end(kept));
  expected.insert("kesta_20200101.log");
  EXPECT_EQ(names(), expected);
}

TEST_F(logs, lines_of_many_threads_arrive_whole) {
  constexpr int threads = 8, each = 500;
  ruvo::reg::day_file one("scratch"), other("scratch");  // as two processes would
  ruvo::logger first(L"", 7), second(L"", 7);
  first.set_callback(&one).set_path("scratch");
  second.set_callback(&other);
  std::vector<std::thread> all;
  for (int t = 0; t < threads; ++t) {
    all.emplace_back([&, t] {
      const ruvo::thread_scope inner(fake);
      for (int i = 0; i < each; ++i) {
        const std::wstring number = std::to_wstring(t * each + i);
        const std::wstring filling(static_cast<std::size_t>(i % 50), L'ñ');
        if (t % 2)
          first.info(number, filling);
        else if (i % 2)
          second.info(number, filling);
        else
          first.log(number + filling);
        if (i % 100 == 99) first.flush(), one.flush();
      }
    });
  }
  for (std::thread& thread : all) thread.join();

  const std::string text = get("scratch/kesta_20240229.log");
  const std::vector<std::string> got = lines(text);
  EXPECT_EQ(text.size(), text.rfind("\r\n") + 2);
  ASSERT_EQ(got.size(), static_cast<std::size_t>(threads * each));
  std::set<int> numbers;
  for (const std::string& line : got) {
    const std::string stamp = "[2024-02-29 13:05:09.042] ";
    ASSERT_TRUE(line.starts_with(stamp)) << line;
    const bool entry = line.compare(stamp.size(), 6, "INFO: ") == 0;
    const int number = std::stoi(line.substr(stamp.size() + (entry ? 6 : 0)));
    numbers.insert(number);
    const std::wstring filling(static_cast<std::size_t>(number % each % 50), L'ñ');
    ASSERT_EQ(line, stamp + (entry ? "INFO: " : "") + std::to_string(number) +
                        (entry && !filling.empty() ? ": " : "") + ruvo::texto::to_utf_8(filling));
  }
  EXPECT_EQ(numbers.size(), got.size());
}

TEST_F(logs, ring_keeps_the_last) {
  ruvo::reg::ring_buffer ring(3);
  EXPECT_TRUE(ring.snapshot().empty());
  ring.on_log(4, L"b", L"a");
  EXPECT_EQ(ring.snapshot(), std::vector<std::wstring>{L"[2024-02-29 13:05:09.042] INFO: a: b"});
  for (int n = 0; n < 5; ++n) ring.on_log(2, L"", std::to_wstring(n));
  const std::wstring line = L"[2024-02-29 13:05:09.042] FAILURE: ";
  EXPECT_EQ(ring.snapshot(), (std::vector<std::wstring>{line + L"2", line + L"3", line + L"4"}));

  // A cut never leaves half a character.
  const std::wstring long_text = std::wstring(ruvo::reg::ring_buffer::longest_text - 1, L'x');
  ring.on_log(2, L"", long_text + L"\xD83D\xDE00");
  EXPECT_EQ(ring.snapshot().back(), line + long_text);
  EXPECT_EQ(ruvo::reg::ring_buffer(0).capacity(), 1u);
}

TEST_F(logs, ring_serves_threads_while_it_is_read) {
  ruvo::reg::ring_buffer ring(16);
  ruvo::logger log(L"", 7);
  log.set_callback(&ring);
  std::atomic<bool> done{false};
  std::vector<std::thread> all;
  for (int t = 0; t < 4; ++t) {
    all.emplace_back([&, t] {
      const std::wstring text(static_cast<std::size_t>(20 * (t + 1)), static_cast<wchar_t>(L'a' + t));
      while (!done) log.debug(text, text);
    });
  }
  std::size_t seen = 0;
  for (int round = 0; round < 200 || seen == 0; ++round) {
    for (const std::wstring& line : ring.snapshot()) {
      ++seen;
      const std::wstring text = line.substr(line.rfind(L' ') + 1);
      const auto size = static_cast<std::size_t>(20 * (text[0] - L'a' + 1));
      ASSERT_EQ(text, std::wstring(size, text[0]));
      ASSERT_TRUE(line.ends_with(L"DEBUG: " + text + L": " + text));
    }
  }
  done = true;
  for (std::thread& thread : all) thread.join();
  EXPECT_EQ(ring.snapshot().size(), ring.capacity());
}

TEST_F(logs, facade_reaches_the_application) {
  recorder seen;
  ruvo::log::set_callback(&seen);
  ruvo::log::set_level(ruvo::reg::WARNING);
  EXPECT_EQ(ruvo::application::traza().get_level(), 3);
  ruvo::log::info(L"a", L"b");
  ruvo::log::warning(L"a", L"b");
  ruvo::log::flush();
  const std::vector<recorder::entry> expected = {{3, L"b", L"a"}};
  EXPECT_EQ(seen.entries, expected);
  EXPECT_EQ(seen.flushes, 1);
  std::thread([] { ruvo::log::assertion(L"nadie", L"escucha"); }).join();  // no application there
  EXPECT_EQ(seen.entries, expected);
}

}  // namespace
