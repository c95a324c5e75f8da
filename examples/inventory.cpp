// SPDX-License-Identifier: BSL-1.0

// An inventory of a folder: every file below it with its size and a fingerprint of its content, as JSON and
// as XML. The files are read by tasks in a pool; what fails is entered with its reason. Ctrl+C ends early:
// what was done until then is written, and marked as incomplete.
//
//   inventory FOLDER [OUT.json OUT.xml] [--cancel-after=N]
//
// Without names, FOLDER.json and FOLDER.xml are written. --cancel-after does what Ctrl+C does, after N files.
// Exit codes: 0 when all is in it, 1 when something failed, 2 for wrong arguments, 3 when canceled.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

std::atomic<bool> interrupted{false};

/// A second Ctrl+C finds the system's own answer again, which ends the program at once.
void on_interrupt(int) { interrupted = true; }

// --- the folder

/// Collects the files that a listing finds.
class collector : public ruvo::fileCallback {
 public:
  std::vector<ruvo::file> files;
  std::vector<ruvo::exception> failures;  // folders that cannot be listed

  void onRead(const ruvo::file& entry) override {
    if (!entry.is_directory()) files.push_back(entry);
    if (interrupted) terminate();
  }
  void onFailure(const ruvo::exception& error) override { failures.push_back(error); }
};

/// FNV-1a of 64 bits, as hexadecimal digits.
std::wstring fingerprint(const ruvo::binary& content) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const unsigned char byte : content) hash = (hash ^ byte) * 0x100000001B3;
  std::wstring out;
  for (int shift = 60; shift >= 0; shift -= 4) out += L"0123456789abcdef"[hash >> shift & 15];
  return out;
}

// --- the inventory

class inventory {
 public:
  /// With a number, as if interrupted after that many files.
  inventory(ruvo::application& app, const ruvo::file& root, std::optional<std::size_t> cancel_after)
      : app_(app), root_(root), cancel_after_(cancel_after) {}

  void list() {
    ruvo::files::RecursiveCallBack recursive(listed_);
    ruvo::exception failure;  // known to the collector
    static_cast<void>(ruvo::files::directory_list(root_, failure, recursive));
    std::sort(listed_.files.begin(), listed_.files.end());
    for (const ruvo::file& path : listed_.files) items_.emplace_back(*this, path);
  }

  void read_all() {
    if (cancel_after_ == 0U) std::raise(SIGINT);
    ruvo::jobs::pool pool;
    for (item& one : items_) pool.store_job(one.task, ruvo::xvar());
    pool.start();
    const bool on_terminal = app_.get_console().is_terminal();
    while (!pool.empty() && !interrupted) {
      if (on_terminal) show_progress();
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    if (interrupted) pool.cancel();
    pool.join();
    if (!on_terminal) return;
    show_progress();
    app_.get_console().write_line(L"");
  }

  /// Whether it was not interrupted before all was done.
  bool is_complete() const { return done_ == items_.size() && !listed_.can_stop(); }
  std::size_t files() const { return done_; }
  std::size_t failures() const { return failed_ + listed_.failures.size(); }

  /// Each bundle of the list has one member, which XML shows as an element of its own.
  ruvo::bundle document() const {
    ruvo::bundle out;
    ruvo::bundle& whole = out.hack_bundle_on(L"inventario");
    whole[L"carpeta"] = root_.unix_path();
    whole[L"completo"] = is_complete();
    whole[L"ficheros"] = files();
    whole[L"fallos"] = failures();
    ruvo::set types;
    for (const ruvo::file& path : listed_.files) types.insert(path.get_mimetype());
    whole[L"tipos"] = types;
    ruvo::list& entries = whole.hack_list_on(L"entradas");
    for (const ruvo::exception& error : listed_.failures)
      entries.on_back_bundle().hack(L"carpeta.fallo") = error.get_mensaje();
    for (const item& one : items_)
      if (!one.entry.empty()) entries.on_back_bundle()[L"fichero"] = one.entry;
    return out;
  }

 private:
  /// A file with the task that reads it. The entry is empty until the task is done.
  struct item {
    item(inventory& of, const ruvo::file& path)
        : task([path, &of](const ruvo::xvar&, ruvo::task::steps progress) { return of.read(path, progress); },
               {.finish = [this, &of](const ruvo::xvar& read) { of.enter(*this, read, true); },
                .failure =
                    [this, path, &of](const ruvo::exception& error) {
                      if (error == ruvo::exc::ProcessCanceled()) return;
                      of.enter(*this, of.bundle_of(path, L"fallo", error.get_mensaje()), false);
                    }}) {}

    ruvo::bundle entry;
    ruvo::task::call task;
  };

  // These are called on the threads of the tasks.

  ruvo::xvar read(const ruvo::file& path, ruvo::task::steps progress) const {
    const ruvo::thread_scope scope(app_);
    if (interrupted) throw ruvo::exc::ProcessCanceled();
    const ruvo::binary content = ruvo::files::read(path);
    progress.advance(content.size());  // throws when the pool is being canceled
    ruvo::bundle out = bundle_of(path, L"bytes", content.size());
    out[L"fnv1a"] = fingerprint(content);
    return out;
  }
  ruvo::bundle bundle_of(const ruvo::file& path, const wchar_t* key, const ruvo::xvar& value) const {
    return {{L"ruta", path.crop(root_).unix_path()}, {key, value}};
  }
  void enter(item& one, const ruvo::xvar& entry, bool good) {
    one.entry = entry;
    if (!good) ++failed_;
    if (++done_ == cancel_after_) std::raise(SIGINT);
  }

  void show_progress() const {
    constexpr std::size_t width = 40;
    const std::size_t done = done_, filled = done * width / std::max<std::size_t>(1, items_.size());
    app_.get_console().write(L"\r[" + std::wstring(filled, L'#') + std::wstring(width - filled, L'.') +
                             L"] " + std::to_wstring(done) + L" de " + std::to_wstring(items_.size()) +
                             L" ficheros");
  }

  ruvo::application& app_;
  const ruvo::file root_;
  const std::optional<std::size_t> cancel_after_;
  collector listed_;
  std::atomic<std::size_t> done_{0}, failed_{0};
  std::deque<item> items_;  // tasks stay where they are made
};

// --- the program

bool write(ruvo::iserializer& as, const ruvo::bundle& document, const ruvo::file& path,
           ruvo::console& console) {
  std::wstring text;
  ruvo::exception failure;
  if (as.serialize(text, document, &failure) || !ruvo::files::write(text, path, failure)) {
    console.write_line(path.get_name() + L": " + failure.get_mensaje());
    return false;
  }
  return true;
}

struct options {
  ruvo::file folder, json, xml;
  std::optional<std::size_t> cancel_after;
};

std::optional<options> options_of(const std::vector<std::wstring>& arguments) {
  options out;
  ruvo::bundle named;
  std::vector<std::wstring> given;
  ruvo::exception failure;
  if (!ruvo::bundles::read_arguments(named, given, arguments, failure)) return std::nullopt;
  if (named.size() != named.count(L"cancel-after")) return std::nullopt;  // some other one
  if (const ruvo::xvar* const after = named.get_ptr(L"cancel-after")) {
    if (!after->is_charsquence() || !ruvo::texto::is_integer_positive(after->to_string()))
      return std::nullopt;
    out.cancel_after = static_cast<unsigned long>(*after);
  }
  if (given.size() != 1 && given.size() != 3) return std::nullopt;
  std::error_code no_path;
  out.folder = std::filesystem::absolute(given[0], no_path).wstring();
  if (no_path) return std::nullopt;
  out.json = given.size() == 3 ? ruvo::file(given[1]) : ruvo::files::append(out.folder, L".json");
  out.xml = given.size() == 3 ? ruvo::file(given[2]) : ruvo::files::append(out.folder, L".xml");
  return out;
}

int run(ruvo::application& app, const options& wanted) {
  inventory made(app, wanted.folder, wanted.cancel_after);
  made.list();
  try {
    made.read_all();
  } catch (const std::system_error& error) {  // there is no thread to be had
    app.get_console().write_line(ruvo::exc::UnCatch(&error).get_mensaje());
    return 1;
  }
  const ruvo::bundle document = made.document();
  ruvo::serializer::json json(false, true, true);
  ruvo::serializer::xml xml(false, true);
  ruvo::console& console = app.get_console();
  const bool json_written = write(json, document, wanted.json, console);
  const bool xml_written = write(xml, document, wanted.xml, console);
  console.write_line(std::wstring(L"inventario ") + (made.is_complete() ? L"completo" : L"incompleto") +
                     L"; ficheros: " + std::to_wstring(made.files()) + L"; fallos: " +
                     std::to_wstring(made.failures()));
  if (!made.is_complete()) return 3;
  return json_written && xml_written && made.failures() == 0 ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  std::signal(SIGINT, on_interrupt);
  ruvo::kesta::app app(nullptr);
  const std::optional<options> wanted = options_of({argv + 1, argv + argc});
  if (!wanted) {
    app.get_console().write_line(L"uso: inventory CARPETA [SALIDA.json SALIDA.xml] [--cancel-after=N]");
    return 2;
  }
  ruvo::exception failure;
  if (!app.boot(ruvo::file(), failure)) {
    app.get_console().write_line(failure.get_mensaje());
    return 1;
  }
  const int code = run(app, *wanted);
  app.shutdown();
  return code;
}
