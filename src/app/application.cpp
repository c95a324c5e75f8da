// SPDX-License-Identifier: BSL-1.0

// The life cycle of an application, its folders, hooks and services.

#include <ruvo/application.hpp>
#include <ruvo/binary.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/exc_table.hpp>

#include <atomic>
#include <utility>

#include "app/lost_entries.hpp"
#include "app/registry.hpp"
#include "base/immortal.hpp"
#include "base/numbers.hpp"
#include "base/quietly.hpp"
#include "base/services.hpp"
#include "exc/classes.hpp"
#include "exc/detail.hpp"
#include "system/errors.hpp"
#include "system/process.hpp"

namespace ruvo {

namespace {

/// Shows the developer a thread that was not checked out, once for each.
void warn_of_thread() noexcept {
  constinit thread_local bool warned = false;
  if (std::exchange(warned, true)) return;
  try {
    std::wstring line = L"kesta: thread ";
    texto::append_unsigned(line, platform::thread_id());
    line += L" has no application and gets the default services. Call application::check_in first.\n";
    platform::debug_line(line);
  } catch (...) {  // no memory for a remark
  }
}

exception hook_missing(const wchar_t* name) {
  constexpr const detail::error_row* row = detail::row_of(L"NotImplemented", detail::error_shape::place);
  return detail::about(exception(row->code(), detail::filled(row->text, {name})),
                       [name] { return std::wstring(name); });
}

const wchar_t* folder_name(folder_type type) noexcept {
  switch (type) {
    case folder_type::config:
      return L"config";
    case folder_type::data:
      return L"data";
    case folder_type::resources:
      return L"resources";
    case folder_type::logs:
      return L"logs";
    case folder_type::temporal:
      return L"temporal";
    default:
      return L"";
  }
}

constexpr folder_type made_by_boot[] = {folder_type::config, folder_type::data, folder_type::resources,
                                        folder_type::logs, folder_type::temporal};

}  // namespace

constinit std::atomic<int> services::applications{0};

context& current_context() noexcept {
  if (!services::are_default()) {
    if (application* const app = registry::find()) return *app;
    warn_of_thread();
  }
  return immortal<context>();
}

application::application(HINSTANCE__* instance) : instance_(instance) {
  registry::enroll(*this);
  ++services::applications;
}

application::~application() {
  registry::strike(*this);
  --services::applications;
  reg::show_lost_entries();
}

application* application::theApp() noexcept { return registry::find(); }
unsigned long application::threadID() noexcept { return platform::thread_id(); }
unsigned long application::processID() noexcept { return platform::process_id(); }

bool application::check_in(unsigned long thread_id) {
  platform::init_com();
  return registry::add(thread_id, *this);
}

bool application::check_out(unsigned long thread_id) { return registry::remove(thread_id); }

bool application::boot(const ruvo::file& folder, exception& err) {
  const unsigned long thread = threadID();
  if (!check_in(thread)) {
    exc::applicationAlreadyRegistered(thread).copy_on(err);
    return false;
  }
  bool booted = false;
  try {
    set_app_path(folder);
    const bool prepared = init_subdirectories(err) && set_binaries_directories(err);
    if (prepared) logger_.set_path(get_folder(folder_type::logs));
    booted = prepared && on_boot(err);
  } catch (const exception& error) {
    error.copy_on(err);
  } catch (...) {
    err = detail::about(exception::incorrect(), detail::in_flight);
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
  logger_.flush();
  arguments_.clear();
  settings().clear();
  collect();
  registry::remove_all(*this);
  reg::show_lost_entries();
}

ruvo::file application::get_folder(folder_type type) const {
  if (type == folder_type::binaries) return binaries_;
  const ruvo::file& root = get_app_path();
  const wchar_t* const name = folder_name(type);
  return root.empty() || !*name ? root : ruvo::file(root, name);
}

ruvo::file application::get_file(folder_type type, const std::wstring& name) const {
  return {get_folder(type), name};
}

ruvo::file application::folder(folder_type type) {
  const application* const app = theApp();
  if (!app) throw exc::NullPointer();
  return app->get_folder(type);
}

ruvo::file application::file(folder_type type, const std::wstring& name) { return {folder(type), name}; }

console& application::cmd() {
  application* const app = theApp();
  return app ? app->console_ : immortal<console>();
}

logger& application::traza() {
  application* const app = theApp();
  return app ? app->logger_ : immortal<logger>();
}

bool application::create_instance(const std::wstring&, void**, exception& err) {
  hook_missing(L"create_instance").copy_on(err);
  return false;
}

bool application::load_resource(const std::wstring&, const std::wstring&, binary&, exception& err) {
  hook_missing(L"load_resource").copy_on(err);
  return false;
}

bool application::get_instance(const std::wstring& name, void** out, exception& err) {
  application* const app = theApp();
  if (app) return app->create_instance(name, out, err);
  exc::NullPointer().copy_on(err);
  return false;
}

bool application::get_resource(const std::wstring& name, const std::wstring& type, binary& out,
                               exception& err) {
  application* const app = theApp();
  if (app) return app->load_resource(name, type, out, err);
  exc::NullPointer().copy_on(err);
  return false;
}

void application::collect() noexcept {
  pointers_.collect(0);
  unsigned long thread = threadID();
  quietly([&] { thread = getThreadID(); });
  collector_.collect(thread);
}

bool application::log_to_files() noexcept {
  logger_.set_entries_to_file(true);
  bool there = false;
  quietly([&] {
    const ruvo::file folder = logger_.get_path();
    there = !folder.empty() && folder.is_directory();
  });
  return there;
}

std::wstring application::create_uuid(const std::wstring& pattern, const std::wstring& byte_pattern) {
  return current_context().uuid_gen(pattern, byte_pattern);
}

std::wstring application::create_uuid_short(int n) { return current_context().uuid_short(n); }

bool application::on_boot(exception&) { return true; }
void application::append_config(bundle&) {}

bool application::init_subdirectories(exception& err) {
  if (get_app_path().empty()) return true;
  for (const folder_type type : made_by_boot)
    if (!get_folder(type).mkdirs(&err)) return false;
  return true;
}

bool application::set_binaries_directories(exception& err) {
  const std::wstring path = platform::module_path(instance_);
  if (path.empty()) {
    exc::systemErrorCode(platform::last_error()).copy_on(err);
    return false;
  }
  binaries_ = ruvo::file(path).get_parent();
  return true;
}

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
