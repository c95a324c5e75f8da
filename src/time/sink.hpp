// SPDX-License-Identifier: BSL-1.0
#pragma once

// Where a calendar text is printed to before it becomes a string, which then takes its memory at once.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::calendar {

class sink {
 public:
  explicit sink(std::wstring& out) : out_(out) {}
  sink(const sink&) = delete;
  sink& operator=(const sink&) = delete;

  void put(wchar_t unit) {
    make_room();
    *at_++ = unit;
  }
  /// Two digits, a ten of 0 as `pad`.
  void pair(int value, wchar_t pad = L'0') {
    make_room();
    at_[0] = value < 10 ? pad : static_cast<wchar_t>(L'0' + value / 10);
    at_[1] = static_cast<wchar_t>(L'0' + value % 10);
    at_ += 2;
  }
  void text(std::wstring_view units) {
    flush();
    out_ += units;
  }
  /// To be called at the end.
  void flush() {
    out_.append(buffer_, at_);
    at_ = buffer_;
  }

 private:
  static constexpr std::size_t size = 64;

  /// For two units.
  void make_room() {
    if (at_ > buffer_ + size - 2) flush();
  }

  std::wstring& out_;
  wchar_t buffer_[size];
  wchar_t* at_ = buffer_;
};

}  // namespace ruvo::calendar
