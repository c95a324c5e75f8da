// SPDX-License-Identifier: BSL-1.0

// The registry, the life cycle and the default services.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <atomic>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// An application with a calendar of its own: it puts the clock one hour on.
class shifted_app : public ruvo::kesta::app {
 public:
  shifted_app() : app(nullptr) {}

  bool sistem_gmt_time(std::tm* record, long long seconds, ruvo::exception* err) const override {
    return app::sistem_gmt_time(record, seconds + 3600, err);
  }

  bool may_boot = true;
  bool throws = false;

 protected:
  bool on_boot(ruvo::exception& err) override {
    if (throws) throw 1;
    if (!may_boot) ruvo::exc::NotImplemented().copy_on(err);
    return may_boot;
  }
  void append_config(ruvo::bundle& settings) override { settings[L"color"] = L"rojo"; }
};

/// Leaves the test's thread as it was.
struct clean_thread {
  explicit clean_thread(ruvo::application& app) : app_(app) {}
  ~clean_thread() { app_.shutdown(); }
  ruvo::application& app_;
};

TEST(application, serves_the_thread_from_boot_to_shutdown) {
  ASSERT_EQ(ruvo::application::theApp(), nullptr);
  shifted_app app;
  ruvo::exception err;
  EXPECT_TRUE(app.get_folder(ruvo::folder_type::binaries).empty());
  ASSERT_TRUE(app.boot("programa/uno/", err)) << err.what();
  EXPECT_TRUE(err.OK());
  EXPECT_EQ(ruvo::application::theApp(), &app);
  EXPECT_EQ(ruvo::application::get_context(), &app);
  EXPECT_EQ(ruvo::kesta::app::kesta_app(), &app);
  EXPECT_STREQ(app.get_app_path().c_str(), L"programa\\uno");

  ruvo::bundle arguments;
  arguments[L"modo"] = 7;
  EXPECT_TRUE(app.init("es_ES", &arguments));
  EXPECT_EQ(app.get_locale(), "es_ES");
  EXPECT_EQ(app.arguments().get_long(L"modo"), 7);
  EXPECT_EQ(app.settings().get_string(L"color"), L"rojo");
  EXPECT_EQ(ruvo::date(20240229).get_month_name(), L"febrero");  // the context's locale

  EXPECT_FALSE(app.exec(L"nada", err));
  EXPECT_EQ(err.get_raw_code(), 0xEBB80003ul);
  app.shutdown();
  EXPECT_TRUE(app.arguments().empty() && app.settings().empty());
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
  std::filesystem::remove_all("programa");
}

TEST(application, folders) {
  using type = ruvo::folder_type;
  shifted_app app;
  ruvo::exception err;
  EXPECT_THROW(ruvo::application::folder(type::data), ruvo::exc::NullPointer);
  EXPECT_TRUE(app.get_folder(type::data).empty());
  {
    const clean_thread clean(app);
    ASSERT_TRUE(app.boot("programa", err)) << err.what();
    for (const type each : {type::config, type::data, type::resources, type::logs, type::temporal}) {
      const ruvo::file folder = app.get_folder(each);
      EXPECT_TRUE(folder.is_directory()) << static_cast<int>(each);
      EXPECT_EQ(folder.get_parent(), app.get_app_path());
      EXPECT_EQ(ruvo::application::file(each, L"a.txt"), ruvo::file(folder, L"a.txt"));
    }
    EXPECT_EQ(app.get_folder(type::root), ruvo::application::folder(type::root));
    EXPECT_TRUE(app.get_folder(type::binaries).is_directory());
    EXPECT_EQ(ruvo::application::traza().get_path(), app.get_folder(type::logs));
  }
  std::filesystem::remove_all("programa");

  std::ofstream("programa") << "x";  // a file stands where the folder should be
  EXPECT_FALSE(app.boot("programa", err));
  EXPECT_EQ(err.get_rango(), 1u);
  EXPECT_EQ(err.get_code(), 4u);
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
  std::filesystem::remove("programa");
}

TEST(application, hooks_without_an_override_fail) {
  ruvo::exception err;
  ruvo::binary bytes;
  void* made = nullptr;
  EXPECT_FALSE(ruvo::application::get_instance(L"x", &made, err));
  EXPECT_EQ(err.get_code(), 4u);  // no application
  shifted_app app;
  const ruvo::thread_scope scope(app);
  EXPECT_FALSE(ruvo::application::get_instance(L"x", &made, err));
  EXPECT_EQ(err.get_mensaje(), L"El método debe sobrecargarse a nivel de apllicación: create_instance");
  EXPECT_FALSE(ruvo::application::get_resource(L"x", L"y", bytes, err));
  EXPECT_EQ(err.get_mensaje(), L"El método debe sobrecargarse a nivel de apllicación: load_resource");
  EXPECT_EQ(made, nullptr);
}

/// Counts its living objects; one may hand in another when it goes.
struct counted {
  explicit counted(ruvo::memory_collector* follow = nullptr) : follow_(follow) { ++alive; }
  ~counted() {
    --alive;
    if (follow_) follow_->add(7, new counted);
  }
  ruvo::memory_collector* follow_;
  static inline std::atomic<int> alive{0};
};

TEST(application, collects_under_the_id_that_it_gives_the_thread) {
  ruvo::fake_context app;
  app.get_memory_collector().add(app.getThreadID(), new counted);
  app.collect();
  EXPECT_EQ(counted::alive, 0);
}

TEST(application, collects_what_was_handed_in) {
  {
    shifted_app app;
    app.add_pointer(new counted);
    app.add_pointer(new std::wstring(L"de otro tipo"));
    app.get_memory_collector().add(ruvo::application::threadID(), new counted);
    app.get_memory_collector().add(ruvo::application::threadID() + 1, new counted);
    EXPECT_EQ(counted::alive, 3);
    app.collect();
    EXPECT_EQ(counted::alive, 1);
  }
  EXPECT_EQ(counted::alive, 0);
}

TEST(memory_collector, keeps_objects_by_thread) {
  {
    ruvo::memory_collector kept;
    EXPECT_EQ(kept.size(7), 0u);
    kept.add(9, new counted);
    kept.add(7, new counted(&kept));
    kept.add(7, static_cast<counted*>(nullptr));
    EXPECT_EQ(std::wstring(kept), L"7: 1\r\n9: 1\r\n");
    EXPECT_EQ(kept.collect(7), 1u);
    EXPECT_EQ(kept.size(7), 1u);  // what the first one brought
    EXPECT_EQ(kept.collect(8), 0u);
    EXPECT_EQ(counted::alive, 2);
    auto* const once = new counted;  // an object that is handed in again stays with the first thread
    for (const unsigned long thread : {1ul, 1ul, 2ul}) kept.add(thread, once);
    EXPECT_EQ(kept.size(1) * 10 + kept.size(2), 10u);
    EXPECT_EQ(kept.collect(2), 0u);
    EXPECT_EQ(counted::alive, 3);
    EXPECT_EQ(kept.collect(1), 1u);
    EXPECT_EQ(counted::alive, 2);
    kept.add(9, new counted(&kept));  // brings another while the collector goes
  }
  EXPECT_EQ(counted::alive, 0);
}

TEST(memory_collector, serves_threads_at_once) {
  ruvo::memory_collector kept;
  std::atomic<std::size_t> collected{0};
  std::vector<std::thread> threads;
  for (unsigned long t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (unsigned long i = 0; i < 500; ++i) {
        kept.add((t + i) % 3, new counted);
        if (i % 16 == 0) collected += kept.collect(i % 3);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (unsigned long n = 0; n < 3; ++n) collected += kept.collect(n);
  EXPECT_EQ(collected, 2000u);
  EXPECT_EQ(counted::alive, 0);
}

TEST(application, second_one_on_a_thread_is_refused) {
  shifted_app first;
  const clean_thread clean(first);
  shifted_app second;
  ruvo::exception err;
  ASSERT_TRUE(first.boot("", err));
  EXPECT_FALSE(second.boot("", err));
  EXPECT_EQ(err.get_code(), 10u);
  EXPECT_EQ(err.get_rango(), 2u);
  EXPECT_EQ(err.get_mensaje().find(L"Ya se ha registrado una aplicación en este hilo: "), 0u);
  EXPECT_EQ(ruvo::application::theApp(), &first);
  EXPECT_FALSE(first.check_in(ruvo::application::threadID()));
  EXPECT_TRUE(first.check_out(ruvo::application::threadID()));
  EXPECT_FALSE(first.check_out(ruvo::application::threadID()));
}

TEST(application, failed_boot_leaves_the_thread_free) {
  shifted_app app;
  ruvo::exception err;
  app.may_boot = false;
  EXPECT_FALSE(app.boot("", err));
  EXPECT_EQ(err.get_code(), 3u);
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
  app.throws = true;
  EXPECT_FALSE(app.boot("", err));
  EXPECT_EQ(err.get_raw_code(), 0xEBB80001ul);
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
}

TEST(application, one_thread_may_register_another) {
  shifted_app app;
  std::atomic<unsigned long> id{0};
  std::atomic<int> step{0};
  const auto wait_for = [&](int n) {
    while (step < n) std::this_thread::yield();
  };
  std::thread worker([&] {
    EXPECT_EQ(ruvo::application::theApp(), nullptr);
    id = ruvo::application::threadID();
    step = 1;
    wait_for(2);
    EXPECT_EQ(ruvo::application::theApp(), &app);
    step = 3;
    wait_for(4);
    EXPECT_EQ(ruvo::application::theApp(), nullptr);
  });
  wait_for(1);
  EXPECT_TRUE(app.check_in(id));
  step = 2;
  wait_for(3);
  EXPECT_TRUE(app.check_out(id));
  step = 4;
  worker.join();
}

// Each meets the services of its own application, here a clock that is an hour on, and of none after it.
TEST(application, threads_come_and_go_at_once) {
  shifted_app apps[2];
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      shifted_app& mine = apps[t % 2];
      for (int i = 0; i < 2000; ++i) {
        if (ruvo::application::theApp()) ++wrong;
        {
          const ruvo::thread_scope scope(mine);
          if (ruvo::thread_scope inner(mine); !scope.checked_in() || inner.checked_in()) ++wrong;
          if (ruvo::application::theApp() != &mine) ++wrong;
          if (ruvo::datetime(i * 3600LL).get_hour() != (i + 1) % 24) ++wrong;
        }
        if (ruvo::datetime(i * 3600LL).get_hour() != i % 24) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// Far more threads than the registry has quick places for, all but a few of them only names.
TEST(application, registry_has_room_for_thousands) {
  shifted_app app, other;
  constexpr unsigned long first = 0x40000000, last = first + 20000;
  for (unsigned long id = first; id < last; ++id) ASSERT_TRUE(app.check_in(id));
  EXPECT_FALSE(other.check_in(first));
  {
    const ruvo::thread_scope scope(other);
    EXPECT_EQ(ruvo::application::theApp(), &other);
    for (unsigned long id = first; id < last; id += 2) ASSERT_TRUE(app.check_out(id));
    EXPECT_EQ(ruvo::application::theApp(), &other);
  }
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
  for (unsigned long id = first; id < last; ++id) ASSERT_EQ(app.check_out(id), id % 2 == 1);
  EXPECT_TRUE(app.check_in(0));  // no thread's
  EXPECT_TRUE(app.check_out(0));
  const ruvo::thread_scope scope(app);
  EXPECT_EQ(ruvo::application::theApp(), &app);
}

// A thread sees its own application or none while its registration and its neighbours' come and go.
TEST(application, changes_beside_a_look_up_do_not_mislead_it) {
  shifted_app mine, others;
  std::atomic<unsigned long> toggled{0};
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0}, seen{0};
  std::thread reader([&] {
    toggled = ruvo::application::threadID();
    while (!done) {
      const ruvo::application* const found = ruvo::application::theApp();
      if (found) ++seen;
      if (found && found != &mine) ++wrong;
    }
  });
  std::thread steady([&] {
    const ruvo::thread_scope scope(mine);
    while (!done) wrong += ruvo::application::theApp() != &mine;
  });
  while (!toggled) std::this_thread::yield();
  constexpr unsigned long first = 0x50000000, count = 2000;  // enough to touch every bucket
  for (int round = 0; round < 20; ++round) {
    mine.check_in(toggled);
    for (unsigned long id = first; id < first + count; ++id) others.check_in(id);
    mine.check_out(toggled);
    for (unsigned long id = first; id < first + count; ++id) {
      if (id % 100 == 0) mine.check_in(toggled), mine.check_out(toggled);
      others.check_out(id);
    }
  }
  mine.check_in(toggled);
  while (seen == 0) std::this_thread::yield();
  done = true;
  reader.join();
  steady.join();
  EXPECT_EQ(wrong, 0);
}

TEST(context, account_and_system) {
  const ruvo::context services;
  std::wstring user, domain, sid;
  ruvo::exception err;
  ASSERT_TRUE(services.get_current_user_and_domain(user, domain, sid, err)) << err.what();
  EXPECT_FALSE(user.empty());
  EXPECT_EQ(user.find(L'\0'), user.npos);
  EXPECT_EQ(sid.find(L"S-1-"), 0u);
  EXPECT_EQ(services.get_current_user(), user);
  EXPECT_EQ(services.get_current_domain(), domain);
  EXPECT_EQ(services.get_current_user_and_domain(), domain + L"\\" + user);

  ruvo::bundle info = services.get_os_info();
  EXPECT_EQ(info.size(), 8u);
  EXPECT_EQ(info.get_string(L"windows").find(L"Windows "), 0u);
  EXPECT_GE(info.get_long(L"numero_compilacion"), 7600);
  EXPECT_NE(info.get_string(L"huella").find(info.get_string(L"windows") + L' ' + info.get_string(L"version")),
            std::wstring::npos);
  EXPECT_EQ(info.get_string(L"subsistema"), L"consola");
  EXPECT_TRUE(static_cast<bool>(info[L"soporte"]));
  for (const wchar_t* key : {L"service_pack", L"desktop"}) EXPECT_EQ(info.count(key), 1u);
}

TEST(fake_context, answers_from_its_tables) {
  ruvo::fake_context fake;
  const ruvo::thread_scope scope(fake);
  fake.clock = -1709211909;
  fake.zone_offset = -3 * 3600;
  EXPECT_EQ(fake.get_system_ticks(), -17092119090000000);
  EXPECT_EQ(ruvo::reg::time_stamp(), L"[1915-11-03 07:54:51.000]");
  EXPECT_EQ(ruvo::datetime(1915, 11, 3, 7, 54, 51, ruvo::times::LOCAL).get_lapso(), fake.clock);
  EXPECT_EQ(ruvo::application::create_uuid_short(10), L"0000000100");
  EXPECT_EQ(ruvo::application::create_uuid_short(8), L"00000002");
  fake.decimal_separator = L'\'';
  EXPECT_EQ(static_cast<const ruvo::context&>(fake).get_decimal_separator(), L'\'');

  ruvo::exception err;
  std::wstring value, user;
  fake.environment[L"PATH"] = L"x";
  EXPECT_EQ(fake.get_enviroment_var(L"PATH"), L"x");
  EXPECT_FALSE(fake.get_enviroment_var(value, err, L"HOME"));
  EXPECT_EQ(fake.get_current_user_and_domain(), L"EQUIPO\\usuario");
  fake.user.clear();
  EXPECT_FALSE(fake.get_current_user_and_domain(user, value, value, err));
  EXPECT_EQ(err.get_mensaje(), L"Error al determinar usuario y dominio");
  EXPECT_THROW(fake.get_current_user(), ruvo::exc::systemUserDomain);
  EXPECT_EQ(fake.get_os_info().size(), 8u);
}

TEST(fake_context, lists_folders_that_do_not_exist) {
  struct : ruvo::fileFilter {
    bool accept(const ruvo::file& entry) override { return entry.get_extension() == L"txt"; }
  } only_text;
  struct : ruvo::fileCallback {
    void onRead(const ruvo::file& entry) override {
      noted += entry.get_name() + L' ';
      if (entry.get_name() == L"b.txt") terminate();
    }
    void onFailure(const ruvo::exception& error) override { noted += error.get_mensaje() + L' '; }
    void onFinish() override { noted += L'.'; }
    std::wstring noted;
  } listener;
  ruvo::fake_context fake;
  const ruvo::thread_scope scope(fake);
  fake.folders["C:/a"] = {L"a.txt", L"a.doc", L"b.txt", L"c.txt"};
  ruvo::exception err;
  std::vector<ruvo::file> found;
  EXPECT_TRUE(ruvo::files::directory_list("C:\\a", err, nullptr, nullptr, &found));
  EXPECT_EQ(found, (std::vector<ruvo::file>{"C:/a/a.txt", "C:/a/a.doc", "C:/a/b.txt", "C:/a/c.txt"}));
  EXPECT_FALSE(ruvo::files::directory_list("C:/b", err, nullptr, &listener, nullptr));
  EXPECT_EQ(err.get_mensaje(), L"Archivo o directorio no encontrado: C:\\b");
  EXPECT_TRUE(ruvo::files::directory_list("C:/a", err, only_text, listener));
  EXPECT_EQ(listener.noted, L"Archivo o directorio no encontrado: C:\\b .a.txt b.txt .");
  found.clear();
  EXPECT_TRUE(ruvo::files::directory_list("C:/a", err, only_text, found));
  EXPECT_EQ(found, (std::vector<ruvo::file>{"C:/a/a.txt", "C:/a/b.txt", "C:/a/c.txt"}));
  EXPECT_FALSE(ruvo::files::directory_list(std::filesystem::current_path().wstring(), err, found));

  fake.folders["C:/a"] = {L"sub", L"z"};
  fake.folders["C:/a/sub"] = {L"x"};
  found.clear();
  ruvo::files::RecursiveCallBack recursive(found);
  EXPECT_TRUE(ruvo::files::directory_list("C:/a", err, recursive));
  EXPECT_EQ(found, (std::vector<ruvo::file>{"C:/a/sub", "C:/a/z", "C:/a/sub/x"}));
}

TEST(context, identifiers) {
  std::set<std::wstring> seen;
  for (int i = 0; i < 200; ++i) {
    const std::wstring id = ruvo::application::create_uuid_short(32);
    ASSERT_EQ(id.size(), 32u);
    ASSERT_EQ(id.find_first_not_of(L"0123456789ABCDEF"), id.npos) << id.c_str();
    seen.insert(id);
  }
  EXPECT_EQ(seen.size(), 200u);
  EXPECT_EQ(ruvo::application::create_uuid_short(8).size(), 8u);
  EXPECT_EQ(ruvo::application::create_uuid_short(99).size(), 32u);
  EXPECT_EQ(ruvo::application::create_uuid_short(0), L"");
  EXPECT_EQ(ruvo::application::create_uuid_short(-1), L"");
  const std::wstring braced = ruvo::application::create_uuid(L"{%08lx-%04hx-%04X}%%", L"<%5u>");
  EXPECT_EQ(braced.size(), 21u + 8 * 7);
  EXPECT_EQ(braced.substr(19, 3), L"}%<");
  EXPECT_EQ(ruvo::application::create_uuid(L"%s|", L"."), L"%s|........");
}

TEST(context, patterns_of_identifiers) {
  struct row {
    const wchar_t* pattern;
    unsigned long first;
    const wchar_t* expected;
  };
  const row rows[] = {
      {L"%.8X-%.4X-%.4X", 0xABC, L"00000ABC-0000-0000"},
      {L"%8.4X|", 0xABC, L"    0ABC|"},
      {L"%-8.4x|", 0xABC, L"0abc    |"},
      {L"%08.4X|", 0xABC, L"    0ABC|"},
      {L"%#.4x", 0xABC, L"0x0abc"},
      {L"%.X|%.0d|%.1u", 0, L"||0"},
      {L"%#o", 8, L"010"},
      {L"%d %u", 0xFFFFFFFF, L"-1 0"},
      {L"%i", 0x80000000, L"-2147483648"},
      {L"%06d", 0xFFFFFFFF, L"-00001"},
      {L"%+d%+d", 7, L"+7+0"},
      {L"% d|%+ d", 7, L" 7|+0"},
      {L"%+u% x", 7, L"70"},
      {L"%.3s", 7, L"%.3s"},
  };
  ruvo::fake_context fake;
  for (const row& r : rows) {
    fake.next_id = r.first;
    EXPECT_EQ(fake.uuid_gen(r.pattern, L""), r.expected) << r.pattern;
  }
  fake.next_id = 1;
  EXPECT_EQ(fake.uuid_gen(L"", L"%.2X"), L"0000000000000000");
}

TEST(context, environment) {
  ruvo::context services;
  ruvo::exception err;
  std::wstring value;
  EXPECT_FALSE(services.get_enviroment_var(L"PATH").empty());
  EXPECT_TRUE(services.get_enviroment_var(value, err, L"PATH"));
  EXPECT_EQ(value, services.get_enviroment_var(L"PATH"));
  EXPECT_FALSE(services.get_enviroment_var(value, err, L"KESTA NO HAY"));
  EXPECT_EQ(err.get_rango(), 2u);
  EXPECT_EQ(err.get_code(), 1u);
  EXPECT_EQ(err.get_mensaje(), L"Variable de entorno no encontrada: KESTA NO HAY");
  EXPECT_THROW(services.get_enviroment_var(L"KESTA NO HAY"), ruvo::exc::systemEnviromentVarNotFound);
  EXPECT_THROW(services.get_enviroment_var(std::wstring(L"PATH\0X", 6)),
               ruvo::exc::systemEnviromentVarNotFound);
}

TEST(context, code_pages) {
  const ruvo::context services;
  constexpr unsigned int utf8 = 65001;
  constexpr unsigned int western = 1252;
  EXPECT_EQ(services.to_16_bits("\xC3\xB1\xE2\x82\xAC", utf8), L"ñ€");
  EXPECT_EQ(services.to_8_bits(L"ñ€", utf8), "\xC3\xB1\xE2\x82\xAC");
  EXPECT_EQ(services.to_16_bits("\xF1\x80", western), L"ñ€");
  EXPECT_EQ(services.to_8_bits(L"ñ€", western), "\xF1\x80");
  EXPECT_EQ(services.to_16_bits("", utf8), L"");
  EXPECT_EQ(services.to_16_bits("a", 12345), L"");
  EXPECT_EQ(services.UTF8_to_ANSI("abc"), "abc");
}

TEST(context, settles_its_separators) {
  ruvo::context services;
  const auto marks = [&services] {
    return std::wstring{services.get_decimal_separator(), services.get_thousands_separator()};
  };
  const std::wstring of_the_user = marks();
  const struct {
    const char* locale;
    bool known;
    std::wstring marks;
  } all[] = {{"C", false, of_the_user}, {"es_ES", true, L",."},  {"en-US", true, L".,"},
             {"", false, L".,"},        {"xx_YY", false, L".,"}, {"es-ES", true, L",."}};
  for (const auto& each : all) {
    services.set_locale(each.locale);
    EXPECT_EQ(services.use_locale_separators(), each.known) << each.locale;
    EXPECT_EQ(marks(), each.marks) << each.locale;
  }
  services.set_separators(L'*', 0);
  EXPECT_EQ(marks(), std::wstring({L'*', of_the_user[1]}));
}

TEST(application, writes_numbers_alike_on_all_its_threads) {
  ruvo::kesta::app app;
  app.init("es_ES");
  ASSERT_TRUE(app.use_locale_separators());
  const ruvo::thread_scope scope(app);
  std::wstring written = ruvo::texto::format(1349.54, 2);
  ruvo::task::call task(
      [](const ruvo::xvar&, ruvo::task::steps) -> ruvo::xvar { return ruvo::texto::format(1349.54, 2); },
      {.finish = [&written](const ruvo::xvar& text) { written += L' ' + text.to_string(); }});
  task.start(0);
  task.join();
  EXPECT_EQ(written, L"1.349,54 1.349,54");
}

}  // namespace
