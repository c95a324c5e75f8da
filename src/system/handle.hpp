// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the system holds open for us.

namespace ruvo::platform {

/// Owns a file or a folder that is open, and closes it.
class handle {
 public:
  handle() = default;
  /// Owns nothing if the system gave none.
  explicit handle(void* given) noexcept;
  handle(handle&& other) noexcept : held_(other.release()) {}
  handle& operator=(handle&& other) noexcept {
    close();
    held_ = other.release();
    return *this;
  }
  ~handle() { close(); }

  explicit operator bool() const noexcept { return held_ != nullptr; }
  void* get() const noexcept { return held_; }
  /// False when the system reports a failure; what was held is given back all the same.
  bool close() noexcept;

 private:
  void* release() noexcept {
    void* const out = held_;
    held_ = nullptr;
    return out;
  }

  void* held_ = nullptr;
};

}  // namespace ruvo::platform
