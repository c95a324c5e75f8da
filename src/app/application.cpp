#include <ruvo/application.hpp>
#include <ruvo/exc.hpp>

#include "app/current.hpp"
#include "app/immortal.hpp"
#include "app/platform.hpp"
#include "app/registry.hpp"

namespace ruvo {

context& current_context() noexcept {
  application* const app = registry::find();
  return app ? *app : immortal<context>();
}

application::application(HINSTANCE__* instance) : instance_(instance) {}
application::~application() { registry::remove_all(*this); }

application* application::theApp() noexcept { return registry::find(); }
unsigned long application::threadID() noexcept { return platform::thread_id(); }
unsigned long application::processID() noexcept { return platform::process_id(); }

bool application::check_in(unsigned long thread_id) {
  platform::init_com();
  return registry::add(thread_id, *this);
}

bool application::check_out(unsigned long thread_id) { return registry::remove(thread_id); }

bool application::boot(const file& folder, exception& err) {
  const unsigned long thread = threadID();
  if (!check_in(thread)) {
    exc::applicationAlreadyRegistered(thread).copy_on(err);
    return false;
  }
  bool booted = false;
  try {
    set_app_path(folder);
    booted = on_boot(err);
  } catch (const exception& error) {
    error.copy_on(err);
  } catch (...) {
    exception::incorrect().copy_on(err);
  }
  if (!booted) check_out(thread);
  return booted;
}

bool application::init(const std::string& locale, const bundle* arguments) {
  set_locale(locale);
  arguments_ = arguments ? *arguments : bundle();
  append_config(settings());
  return true;
}

bool application::exec(const std::wstring&, exception& err) {
  exc::NotImplemented().copy_on(err);
  return false;
}

void application::shutdown() {
  registry::remove_all(*this);
  arguments_.clear();
  settings().clear();
}

std::wstring application::create_uuid(const std::wstring& pattern, const std::wstring& byte_pattern) {
  return current_context().uuid_gen(pattern, byte_pattern);
}

std::wstring application::create_uuid_short(int n) { return current_context().uuid_short(n); }

bool application::on_boot(exception&) { return true; }
void application::append_config(bundle&) {}

thread_scope::thread_scope(application& app)
    : app_(app), thread_(application::threadID()), checked_in_(app.check_in(thread_)) {}

thread_scope::~thread_scope() {
  if (checked_in_) app_.check_out(thread_);
}

namespace kesta {

app::app(HINSTANCE__* instance) : application(instance) {}
app::~app() = default;

bool app::on_boot(ruvo::exception& err) { return application::on_boot(err); }
void app::append_config(bundle& settings) { application::append_config(settings); }

}  // namespace kesta

}  // namespace ruvo
