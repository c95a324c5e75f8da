// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::application, the object that serves a process and its threads.

#include <ruvo/console.hpp>
#include <ruvo/context.hpp>
#include <ruvo/folder_type.hpp>
#include <ruvo/logger.hpp>
#include <ruvo/memory_collector.hpp>

#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

struct HINSTANCE__;  // the system's module handle, without its headers

namespace ruvo {

/// The context of the threads that are checked in and of the tasks that they start, with the life cycle of
/// the process: boot, init, exec, shutdown. It must outlive its threads: a thread may be using it until it is
/// checked out, a task until it is joined.
///
/// The registry of threads may be used from any thread; a change is seen by the next look-up. Boolean results
/// are false on failure.
class KESTA_API application : public context {
 public:
  /// Checks out its threads, deletes what it keeps.
  ~application() override;

  /// The application of the calling thread: the one that it is checked in to; otherwise, on the thread
  /// of a task, that of the thread that started the task; null where there is neither.
  static application* theApp() noexcept;
  static application* get_context() noexcept { return theApp(); }

  /// The system's ids of the calling thread and of the process, whatever an application says.
  static unsigned long threadID() noexcept;
  static unsigned long processID() noexcept;

  /// Makes this the application of a thread (that of threadID() for the calling one), after making the
  /// calling thread a single-threaded apartment of COM, which it stays. False when the thread is checked in
  /// already; it keeps its application. Who checks in checks out before the thread ends: the system gives its
  /// id to a later thread, which would have the application too.
  /// @quirk The calling thread becomes that apartment also where it checks in another thread, and stays one
  /// after check_out().
  bool check_in(unsigned long thread_id);
  /// Removes the thread, whatever application it has; false when it was not checked in.
  bool check_out(unsigned long thread_id);

  /// Registers the calling thread, takes `folder` as the application path, makes the folders in it and calls
  /// on_boot(). An empty path makes none. Fails with exc::applicationAlreadyRegistered (SystemException, code
  /// 10) when the thread has an application; after another failure the thread is not registered.
  bool boot(const ruvo::file& folder, exception& err);
  /// Takes the locale name, in which all threads of the application write the names of days and months, and
  /// the arguments (null for none), and calls append_config(). True. Numbers keep the user's separators until
  /// use_locale_separators() or set_separators() settle them.
  bool init(const std::string& locale, const bundle* arguments = nullptr);
  /// Runs a command, whatever that is for the program. Without an override it fails with exc::NotImplemented.
  virtual bool exec(const std::wstring& command, exception& err);
  /// Undoes init() and boot(): flushes the logger, drops arguments and settings, collects what was handed in
  /// on the calling thread, and at last checks out every thread of this application. A debugger is shown how
  /// many log entries were lost (log::get_lost).
  virtual void shutdown();

  /// One of the application's folders: in the application path, but for that of the binaries, which is the
  /// folder of the module that the constructor was given. Empty before boot().
  ruvo::file get_folder(folder_type type) const;
  /// The path of a file in one of them, whether it exists or not.
  ruvo::file get_file(folder_type type, const std::wstring& name) const;
  /// The same of the calling thread's application; throw exc::NullPointer when it has none.
  static ruvo::file folder(folder_type type);
  static ruvo::file file(folder_type type, const std::wstring& name);

  /// This application's console.
  console& get_console() noexcept { return console_; }
  /// This application's logger, for any thread.
  logger& get_logger() noexcept { return logger_; }
  /// From now on the logger's entries go to the file of the day in folder(folder_type::logs), beside the
  /// callback: logger::set_entries_to_file. Called after boot() it is true when that folder is there; without
  /// one nothing is written.
  bool log_to_files() noexcept;
  /// The console and the logger of the calling thread's application; threads without one share theirs. The
  /// logger's folder is that of the application's logs.
  static console& cmd();
  static logger& traza();

  /// A hook: makes an object by its name. Without an override it fails with the code of exc::NotImplemented.
  virtual bool create_instance(const std::wstring& name, void** out, exception& err);
  /// A hook: the bytes of a resource. Without an override it fails with the code of exc::NotImplemented.
  virtual bool load_resource(const std::wstring& name, const std::wstring& type, binary& out, exception& err);
  /// The hooks of the calling thread's application; they fail with exc::NullPointer when it has none.
  static bool get_instance(const std::wstring& name, void** out, exception& err);
  static bool get_resource(const std::wstring& name, const std::wstring& type, binary& out, exception& err);

  /// Takes over an object made by `new`, from any thread, until collect() or the end of the application. Null
  /// and an object that is kept already are ignored.
  template <class T>
  void add_pointer(T* object) {
    pointers_.add(0, object);
  }
  /// Deletes what add_pointer() was given, and what the collector keeps for the calling thread, as
  /// getThreadID() calls it.
  void collect() noexcept;
  /// What is kept for single threads, by the ids that getThreadID() gives them.
  memory_collector& get_memory_collector() noexcept { return collector_; }

  /// The module that the constructor was given.
  HINSTANCE__* get_hinstance() const noexcept { return instance_; }
  /// The arguments of init(); they carry no lock.
  bundle& arguments() noexcept { return arguments_; }
  const bundle& arguments() const noexcept { return arguments_; }

  /// uuid_gen() and uuid_short() of the calling thread's application, or of the default services.
  static std::wstring create_uuid(const std::wstring& pattern, const std::wstring& byte_pattern);
  static std::wstring create_uuid_short(int n);

 protected:
  /// The module of the program; null for the one that the process was started from.
  explicit application(HINSTANCE__* instance = nullptr);

  /// The concrete application's part of boot(), after the folders are made.
  virtual bool on_boot(exception& err);
  /// Lets the concrete application add its settings, in init().
  virtual void append_config(bundle& settings);
  /// The first step of boot(): makes the folders "config", "data", "resources", "logs" and "temporal" in the
  /// application path, if there is one.
  virtual bool init_subdirectories(exception& err);
  /// The second step of boot(): looks up the folder of the binaries. Fails with exc::systemErrorCode.
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
  /// Checks in; a thread that is checked in already keeps its application.
  explicit thread_scope(application& app);

  thread_scope(const thread_scope&) = delete;
  thread_scope& operator=(const thread_scope&) = delete;
  /// Checks out what this object checked in; on the same thread, before the application ends.
  ~thread_scope();

  /// Whether the thread was free and is registered by this object.
  bool checked_in() const noexcept { return checked_in_; }

 private:
  application& app_;
  unsigned long thread_;
  bool checked_in_;
};

namespace kesta {

/// The library's own application, for programs that need no class of their own.
class KESTA_API app : public application {
 public:
  /// The module of the program; null for the one that the process was started from.
  explicit app(HINSTANCE__* instance = nullptr);

  /// Checks out its threads.
  ~app() override;

  /// theApp(), whatever its type.
  static application* kesta_app() noexcept { return theApp(); }

 protected:
  // not kesta::exception
  bool on_boot(ruvo::exception& err) override;
  void append_config(bundle& settings) override;
};

}  // namespace kesta

}  // namespace ruvo

#include <ruvo/names_back.hpp>
