#pragma once

// A wide text under construction: room is asked for once a piece, and pieces are copied in steps of 16 bytes.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace ruvo::texto {

/// Builds `out` in place; its length is right after finish() only.
class text_sink {
 public:
  /// Appends to `out`. `expected` units are made room for at once.
  explicit text_sink(std::wstring& out, std::size_t expected = 0) : out_(out) {
    const std::size_t used = out.size();
    out_.resize(std::max(out_.capacity(), used + expected));
    place(used);
  }
  text_sink(const text_sink&) = delete;
  text_sink& operator=(const text_sink&) = delete;

  void finish() { out_.resize(size()); }
  std::size_t size() const noexcept { return static_cast<std::size_t>(at_ - out_.data()); }

  /// Where at least `units` may be written; to be followed by advance().
  wchar_t* room(std::size_t units) {
    if (static_cast<std::size_t>(end_ - at_) < units) grow(units);
    return at_;
  }
  void advance(wchar_t* written_to) noexcept { at_ = written_to; }

  void put(wchar_t c) {
    wchar_t* const to = room(1);
    *to = c;
    advance(to + 1);
  }
  void put(std::wstring_view text) {
    wchar_t* const to = room(text.size());
    copy(to, text.data(), text.size());
    advance(to + text.size());
  }
  template <std::size_t N>
  void put_literal(const wchar_t (&text)[N]) {
    wchar_t* const to = room(N - 1);
    std::memcpy(to, text, (N - 1) * sizeof(wchar_t));
    advance(to + N - 1);
  }

  static void copy(wchar_t* to, const wchar_t* from, std::size_t units) noexcept {
    constexpr std::size_t step = 16 / sizeof(wchar_t), half = step / 2;
    if (units >= step) {
      std::size_t at = 0;
      for (; at + step <= units; at += step) std::memcpy(to + at, from + at, 16);
      std::memcpy(to + units - step, from + units - step, 16);
    } else if (units >= half) {
      std::memcpy(to, from, 8);
      std::memcpy(to + units - half, from + units - half, 8);
    } else {
      for (; units > 0; --units) *to++ = *from++;
    }
  }

 private:
  void place(std::size_t used) noexcept {
    at_ = out_.data() + used;
    end_ = out_.data() + out_.size();
  }
  void grow(std::size_t units) {
    const std::size_t used = size();
    out_.resize(std::max(used + units, 2 * out_.size() + 64));
    place(used);
  }

  std::wstring& out_;
  wchar_t* at_ = nullptr;
  wchar_t* end_ = nullptr;
};

}  // namespace ruvo::texto
