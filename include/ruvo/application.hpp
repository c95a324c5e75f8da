#pragma once

// ruvo::application, the object that serves a process and its threads.

#include <ruvo/console.hpp>
#include <ruvo/context.hpp>
#include <ruvo/folder_type.hpp>
#include <ruvo/logger.hpp>
#include <ruvo/memory_collector.hpp>

#include <string>

struct HINSTANCE__;  // the system's module handle, without its headers

namespace ruvo {

/// The context of the threads that are checked in, with the life cycle of the process: boot, init, exec,
/// shutdown. It must outlive its threads: a thread may be using it until it is checked out.
///
/// The registry of threads may be used from any thread; a change is seen by the next look-up. Boolean results
/// are false on failure.
class KESTA_API application : public context {
 public:
  ~application() override;

  /// The application of the calling thread; null when the thread is not checked in.
  static application* theApp() noexcept;
  static application* get_context() noexcept { return theApp(); }
  static unsigned long threadID() noexcept;
  static unsigned long processID() noexcept;

  /// Makes this the application of a thread, after making the calling thread a single-threaded apartment.
  /// False when the thread has an application already, which it keeps.
  bool check_in(unsigned long thread_id);
  /// Removes the thread; false when it was not registered.
  bool check_out(unsigned long thread_id);

  /// Registers the calling thread, takes `folder` as the application path, makes the folders in it and calls
  /// on_boot(). An empty path makes none. Fails with exc::applicationAlreadyRegistered (SystemException, code
  /// 10) when the thread has an application; after another failure the thread is not registered.
  bool boot(const ruvo::file& folder, exception& err);
  /// Takes the locale name and the arguments (null for none) and collects the settings.
  bool init(const std::string& locale, const bundle* arguments = nullptr);
  /// Runs a command. Without an override it fails with exc::NotImplemented.
  virtual bool exec(const std::wstring& command, exception& err);
  /// Undoes init() and boot(): flushes the logger, drops arguments and settings, collects what was handed in
  /// on the calling thread, and at last checks out every thread of this application.
  virtual void shutdown();

  /// Empty before boot().
  ruvo::file get_folder(folder_type type) const;
  ruvo::file get_file(folder_type type, const std::wstring& name) const;
  /// The same of the calling thread's application; throw exc::NullPointer when it has none.
  static ruvo::file folder(folder_type type);
  static ruvo::file file(folder_type type, const std::wstring& name);

  console& get_console() noexcept { return console_; }
  /// The console and the logger of the calling thread's application; threads without one share theirs. The
  /// logger's folder is that of the application's logs.
  static console& cmd();
  static logger& traza();

  /// Hooks: an object by its name, and the bytes of a resource. Without an override they fail with the code
  /// of exc::NotImplemented.
  virtual bool create_instance(const std::wstring& name, void** out, exception& err);
  virtual bool load_resource(const std::wstring& name, const std::wstring& type, binary& out, exception& err);
  /// The hooks of the calling thread's application; exc::NullPointer when it has none.
  static bool get_instance(const std::wstring& name, void** out, exception& err);
  static bool get_resource(const std::wstring& name, const std::wstring& type, binary& out, exception& err);

  /// Takes over an object made by `new` until collect().
  template <class T>
  void add_pointer(T* object) {
    pointers_.add(0, object);
  }
  /// Deletes what add_pointer() was given, and what the collector keeps for the calling thread.
  void collect() noexcept;
  memory_collector& get_memory_collector() noexcept { return collector_; }

  HINSTANCE__* get_hinstance() const noexcept { return instance_; }
  bundle& arguments() noexcept { return arguments_; }
  const bundle& arguments() const noexcept { return arguments_; }

  /// uuid_gen() and uuid_short() of the calling thread's application, or of the default services.
  static std::wstring create_uuid(const std::wstring& pattern, const std::wstring& byte_pattern);
  static std::wstring create_uuid_short(int n);

 protected:
  explicit application(HINSTANCE__* instance);

  /// The concrete application's part of boot().
  virtual bool on_boot(exception& err);
  /// Lets the concrete application add its settings, in init().
  virtual void append_config(bundle& settings);
  /// The first steps of boot(): make the folders ("config", "data", "resources", "logs" and "temporal"), and
  /// look up the folder of the binaries.
  virtual bool init_subdirectories(exception& err);
  virtual bool set_binaries_directories(exception& err);

 private:
  HINSTANCE__* instance_;
  bundle arguments_;
  ruvo::file binaries_;
  console console_;
  logger logger_;
  memory_collector pointers_, collector_;
};

/// Checks the calling thread in, and out again at the end of the scope if it was this object that did.
class KESTA_API thread_scope {
 public:
  explicit thread_scope(application& app);
  thread_scope(const thread_scope&) = delete;
  thread_scope& operator=(const thread_scope&) = delete;
  ~thread_scope();

  /// Whether the thread was free and is registered by this object.
  bool checked_in() const noexcept { return checked_in_; }

 private:
  application& app_;
  unsigned long thread_;
  bool checked_in_;
};

namespace kesta {

/// The library's own application.
class KESTA_API app : public application {
 public:
  explicit app(HINSTANCE__* instance);
  ~app() override;

  /// The application of the calling thread, whatever its type; null when it is not checked in.
  static application* kesta_app() noexcept { return theApp(); }

 protected:
  bool on_boot(ruvo::exception& err) override;  // not kesta::exception
  void append_config(bundle& settings) override;
};

}  // namespace kesta

}  // namespace ruvo
