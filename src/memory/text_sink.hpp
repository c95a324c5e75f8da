// SPDX-License-Identifier: BSL-1.0
#pragma once

// A text under construction: room is asked for once a piece, and pieces are copied in steps of 16 bytes.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "memory/block_cache.hpp"
#include "memory/near_stack.hpp"

namespace ruvo::detail {

/// Collects a text in blocks of its own, so that what is written is never moved and a large result is
/// allocated once, in its final size. The first `Near` units need none of them.
template <class Unit, std::size_t Near = 512 / sizeof(Unit)>
class basic_text_sink {
 public:
  using string = std::basic_string<Unit>;
  using view = std::basic_string_view<Unit>;

  basic_text_sink() noexcept : from_(first_), at_(first_), end_(first_ + Near) {}
  basic_text_sink(const basic_text_sink&) = delete;
  basic_text_sink& operator=(const basic_text_sink&) = delete;
  ~basic_text_sink() {
    for (const block& b : blocks_) give_block(b.units, b.size * sizeof(Unit));
  }

  string text() const {
    string out;
    replace(out);
    return out;
  }
  /// Makes `out` the text; its memory is used again where it is large enough.
  void replace(string& out) const {
    out.reserve(size());
    out.clear();
    each_piece([&](view piece) { out.append(piece); });
  }

  /// Where at least `units` may be written; to be followed by advance().
  Unit* room(std::size_t units) {
    if (static_cast<std::size_t>(end_ - at_) < units) [[unlikely]]
      begin_block(units);
    return at_;
  }
  void advance(Unit* written_to) noexcept { at_ = written_to; }

  void put(Unit c) {
    Unit* const to = room(1);
    *to = c;
    advance(to + 1);
  }
  void put(view text) {
    Unit* const to = room(text.size());
    copy(to, text.data(), text.size());
    advance(to + text.size());
  }
  template <std::size_t N>
  void put_literal(const Unit (&text)[N]) {
    Unit* const to = room(N - 1);
    std::memcpy(to, text, (N - 1) * sizeof(Unit));
    advance(to + N - 1);
  }

  /// In steps of 16 bytes, the last of which overlaps the one before it.
  static void copy(Unit* to, const Unit* from, std::size_t units) noexcept {
    constexpr std::size_t step = 16 / sizeof(Unit), half = step / 2;
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

  std::size_t size() const noexcept { return full_units_ + static_cast<std::size_t>(at_ - from_); }
  /// Calls `use` with the text, piece by piece. No piece ends inside of what was put at once.
  template <class Use>
  void each_piece(Use use) const {
    use(view(first_, first_used_));
    for (const block& b : blocks_) use(view(b.units, b.used));
    use(view(from_, static_cast<std::size_t>(at_ - from_)));
  }

 private:
  static constexpr std::size_t block_units = 16384 / sizeof(Unit);  // what a thread keeps at most

  struct block {
    Unit* units = nullptr;
    std::size_t size = 0, used = 0;
  };

  void begin_block(std::size_t units) {
    block made;
    made.size = std::max(units, block_units);
    made.units = static_cast<Unit*>(take_block(made.size * sizeof(Unit)));
    try {
      blocks_.push();
    } catch (...) {
      give_block(made.units, made.size * sizeof(Unit));
      throw;
    }
    blocks_.top() = made;
    const auto used = static_cast<std::size_t>(at_ - from_);
    (from_ == first_ ? first_used_ : blocks_.end()[-2].used) = used;
    full_units_ += used;
    from_ = at_ = made.units;
    end_ = at_ + made.size;
  }

  near_stack<block, 8> blocks_;
  std::size_t first_used_ = 0, full_units_ = 0;
  Unit *from_, *at_, *end_;  // the open block
  Unit first_[Near];
};

using text_sink = basic_text_sink<wchar_t>;

}  // namespace ruvo::detail
