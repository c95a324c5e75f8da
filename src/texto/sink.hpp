#pragma once

// A wide text under construction: room is asked for once a piece, and pieces are copied in steps of 16 bytes.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo::texto {

/// Collects a text in blocks of its own, so that what is written is never moved and a large result is
/// allocated once, in its final size.
class text_sink {
 public:
  text_sink() noexcept : from_(first_), at_(first_), end_(first_ + sizeof first_ / sizeof *first_) {}
  text_sink(const text_sink&) = delete;
  text_sink& operator=(const text_sink&) = delete;

  std::wstring text() const {
    std::wstring out;
    replace(out);
    return out;
  }
  /// Makes `out` the text; its memory is used again where it is large enough.
  void replace(std::wstring& out) const {
    const auto open = static_cast<std::size_t>(at_ - from_);
    out.reserve(full_units_ + open);
    out.clear();
    for (const block& b : full_) out.append(b.units, b.size);
    out.append(from_, open);
  }

  /// Where at least `units` may be written; to be followed by advance().
  wchar_t* room(std::size_t units) {
    if (static_cast<std::size_t>(end_ - at_) < units) begin_block(units);
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
  static constexpr std::size_t block_units = std::size_t{1} << 16;

  struct block {
    const wchar_t* units;
    std::size_t size;
  };

  void begin_block(std::size_t units) {
    const std::size_t wanted = std::max(units, full_.empty() ? block_units / 16 : block_units);
    std::unique_ptr<wchar_t[]> made(new wchar_t[wanted]);
    full_.reserve(full_.size() + 1);
    owned_.push_back(std::move(made));
    const auto size = static_cast<std::size_t>(at_ - from_);
    full_.push_back({from_, size});
    full_units_ += size;
    from_ = at_ = owned_.back().get();
    end_ = at_ + wanted;
  }

  std::vector<block> full_;
  std::vector<std::unique_ptr<wchar_t[]>> owned_;
  std::size_t full_units_ = 0;
  wchar_t *from_, *at_, *end_;  // the open block
  wchar_t first_[256];
};

}  // namespace ruvo::texto
