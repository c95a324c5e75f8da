#pragma once

// ruvo::application, the object that serves a process and its threads.

#include <ruvo/context.hpp>

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

  /// Registers the calling thread, takes `folder` as the application path and calls on_boot(). Fails with
  /// exc::applicationAlreadyRegistered (SystemException, code 10) when the thread has an application; after
  /// another failure the thread is not registered.
  bool boot(const file& folder, exception& err);
  /// Takes the locale name and the arguments (null for none) and collects the settings.
  bool init(const std::string& locale, const bundle* arguments = nullptr);
  /// Runs a command. Without an override it fails with exc::NotImplemented.
  virtual bool exec(const std::wstring& command, exception& err);
  /// Undoes init() and boot(): drops arguments and settings and checks out every thread of this application.
  virtual void shutdown();

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

 private:
  HINSTANCE__* instance_;
  bundle arguments_;
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
