// The registry, the life cycle and the default services.

#include <ruvo/application.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>

#include <atomic>
#include <ctime>
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
  ASSERT_TRUE(app.boot("C:/kesta/", err));
  EXPECT_TRUE(err.OK());
  EXPECT_EQ(ruvo::application::theApp(), &app);
  EXPECT_EQ(ruvo::application::get_context(), &app);
  EXPECT_EQ(ruvo::kesta::app::kesta_app(), &app);
  EXPECT_STREQ(app.get_app_path().c_str(), L"C:\\kesta");

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
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
}

TEST(application, second_one_on_a_thread_is_refused) {
  shifted_app first;
  const clean_thread clean(first);
  shifted_app second;
  ruvo::exception err;
  ASSERT_TRUE(first.boot("C:\\", err));
  EXPECT_FALSE(second.boot("C:\\", err));
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
  EXPECT_FALSE(app.boot("C:\\", err));
  EXPECT_EQ(err.get_code(), 3u);
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
  app.throws = true;
  EXPECT_FALSE(app.boot("C:\\", err));
  EXPECT_EQ(err.get_raw_code(), 0xEBB80001ul);
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
}

TEST(application, destroyed_one_is_forgotten) {
  {
    shifted_app app;
    app.check_in(ruvo::application::threadID());
    EXPECT_EQ(ruvo::application::theApp(), &app);
  }
  EXPECT_EQ(ruvo::application::theApp(), nullptr);
}

TEST(application, overridden_services_reach_the_values) {
  EXPECT_EQ(ruvo::datetime(0LL).get_hour(), 0);
  shifted_app app;
  {
    const ruvo::thread_scope scope(app);
    ASSERT_TRUE(scope.checked_in());
    EXPECT_EQ(ruvo::datetime(0LL).get_hour(), 1);
    std::thread([] { EXPECT_EQ(ruvo::datetime(0LL).get_hour(), 0); }).join();
    const ruvo::thread_scope inner(app);
    EXPECT_FALSE(inner.checked_in());
  }
  EXPECT_EQ(ruvo::datetime(0LL).get_hour(), 0);
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
          if (!scope.checked_in() || ruvo::application::theApp() != &mine) ++wrong;
          if (ruvo::datetime(i * 3600LL).get_hour() != (i + 1) % 24) ++wrong;
        }
        if (ruvo::datetime(i * 3600LL).get_hour() != i % 24) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
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

TEST(context, named_values) {
  ruvo::context services;
  EXPECT_TRUE(services.empty());
  services[L"Clave"] = 5;
  services["ñ"] = L"x";
  EXPECT_EQ(services.size(), 2u);
  EXPECT_EQ(static_cast<int>(services.at("Clave")), 5);
  EXPECT_EQ(services.count(L"clave"), 0u);  // the case counts here
  EXPECT_NE(services.find(L"ñ"), services.end());
  EXPECT_THROW(services.at(L"no"), std::out_of_range);
  EXPECT_EQ(services.erase("Clave"), 1u);
  EXPECT_EQ(services.begin()->first, L"ñ");
}

}  // namespace
