// SPDX-License-Identifier: BSL-1.0
#pragma once

// The tokens of the lenient reader, taken whole where they are ordinary.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "serializer/json/digits.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/json/staging.hpp"
#include "serializer/json/standard_strings.hpp"
#include "serializer/scan.hpp"

namespace ruvo::serializer {

/// Takes tokens with the outcome that the state machine has for each of their characters, and stops at what
/// only that one knows: a name without its closing quote and colon, an empty one, a wrong word, a value that
/// the text's end cuts off, ...
class json_tokens {
 public:
  /// Between two tokens of the container that is open in the builder; `on_top`: outside of all containers of
  /// the text, where members are those of the caller's bundle.
  json_tokens(json_builder& builder, bool on_top, const wchar_t* at, const wchar_t* end) noexcept
      : builder_(builder), on_top_(on_top), at_(at), end_(end) {}

  /// The first character that is not taken. What a number or the builder throws comes through.
  const wchar_t* take() {
    while (at_ != end_ && (builder_.in_object() ? member() : value())) {
    }
    return at_;
  }

 private:
  /// Up to the end of a member or of the object; false when something is left.
  bool member() {
    for (; (at_ = skip_meaningless(at_, end_)) != end_; ++at_) {
      switch (*at_) {
        case L'"': {
          const wchar_t* const token = at_;
          if (name() && value()) return true;
          at_ = token;
          return false;
        }
        case L'}':
        case L']':
          return close();
        case L'{':
          return false;
        default:
          break;
      }
    }
    return true;
  }

  /// Whichever bracket it is, it closes the innermost container.
  bool close() {
    if (builder_.depth() > 1) {
      builder_.close();
    } else if (!on_top_) {
      return false;
    }
    ++at_;
    return true;
  }

  /// A name up to its colon.
  bool name() {
    const wchar_t* const first = at_ + 1;
    const wchar_t* const expected = builder_.take_expected_at(first, end_);
    const wchar_t* const last = expected ? expected : find_either(first, end_, L'"', L':');
    if (last == first || last == end_ || *last != L'"') return false;
    at_ = last + 1;
    if (at_ != end_ && *at_ != L':') at_ = find_either(at_, end_, L'"', L':');
    if (at_ == end_ || *at_ != L':') return false;
    ++at_;
    if (!expected) {
      const std::wstring_view text = between(first, last);
      builder_.take_name(first, text.size() * sizeof(wchar_t), text);
    }
    return true;
  }

  /// A value, or the opening bracket of one, or what closes a list. What stands before and means nothing, in
  /// lists a comma, too, is passed over.
  bool value() {
    for (; (at_ = skip_meaningless(at_, end_)) != end_; ++at_) {
      switch (*at_) {
        case L'"':
          return string();
        case L'{':
          builder_.open_object();
          ++at_;
          return true;
        case L'[':
          builder_.open_list();
          ++at_;
          return true;
        case L'}':
        case L']':
          return !builder_.in_object() && close();
        case L't':
        case L'T':
          return word(json_true);
        case L'f':
        case L'F':
          return word(json_false);
        case L'n':
          return word(json_null);
        default:
          if (texto::is_digit(*at_) || *at_ == L'-') return number();
      }
    }
    return false;
  }

  bool string() {
    const wchar_t* const first = at_ + 1;
    bool escaped = false;
    const wchar_t* const last = find_closing_quote(first, end_, escaped);
    if (last == end_) return false;
    std::wstring_view text = between(first, last);
    if (escaped) {
      wchar_t* const plain = scratch_.room(text.size());
      text = between(plain, unescape(plain, text));
    }
    builder_.text(text);
    at_ = last + 1;
    return true;
  }

  bool word(const json_word& word) {
    const auto same = [](wchar_t a, wchar_t b) { return texto::to_lower(a) == b; };
    const std::wstring_view text = word.text, rest = between(at_, end_).substr(0, text.size());
    if (!std::equal(rest.begin(), rest.end(), text.begin(), text.end(), same)) return false;
    if (word.kind == detail::kind::null) {
      builder_.null();
    } else {
      builder_.boolean(word.value);
    }
    at_ += text.size();
    return true;
  }

  bool number() {
    const bool negative = *at_ == L'-';
    const wchar_t* const whole = at_ + (negative ? 1 : 0);
    std::uint64_t digits = 0;
    const wchar_t *last = take_digits(whole, end_, digits), *point = nullptr;
    if (last != end_ && *last == L'.') {
      point = last;
      last = take_digits(last + 1, end_, digits);
    }
    if (last == end_) return false;
    const std::ptrdiff_t taken = last - whole - (point ? 1 : 0);
    const std::ptrdiff_t most = point ? texto::most_quotient_digits : 18;  // which long long holds
    if (*last == L'-' || *last == L'.' || taken == 0 || taken > most) {
      last = std::find_if_not(last, end_, is_number_part);
      if (last == end_) return false;
      uncommon_number(between(at_, last));
    } else if (point) {
      const double magnitude = texto::quotient(digits, static_cast<int>(last - point - 1));
      builder_.real(negative ? -magnitude : magnitude);
    } else {
      const auto magnitude = static_cast<long long>(digits);
      builder_.integer(negative ? -magnitude : magnitude);
    }
    // The character that ends a number counts inside a container and is dropped on top.
    at_ = is_on_top() ? last + 1 : last;
    return true;
  }

  void uncommon_number(std::wstring_view text) {
    if (is_double(text, builder_.in_object() && !is_on_top())) {
      builder_.real(texto::read_double(text));
    } else {
      builder_.integer(texto::read_integer(text));
    }
  }

  bool is_on_top() const noexcept { return on_top_ && builder_.depth() == 1; }

  json_builder& builder_;
  const bool on_top_;
  const wchar_t *at_, *end_;
  unit_buffer scratch_;  // nothing stays in it
};

}  // namespace ruvo::serializer
