// SPDX-License-Identifier: BSL-1.0
#pragma once

// The reader of standard JSON for a text that is there as a whole.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/standard_json.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "serializer/json/staging.hpp"
#include "serializer/json/standard_numbers.hpp"
#include "serializer/json/standard_strings.hpp"

namespace ruvo::serializer {

/// What a whole text may be.
struct json_roots {
  bool object, list, others;
};

/// Reads a text once. What cannot stand where it stands is thrown as a kind of exc::JSONException; what the
/// builder throws comes through, and position() is where it did.
template <class Unit>
class whole_json {
 public:
  using view = std::basic_string_view<Unit>;

  whole_json(view text, json_builder& builder, const json_read_options& options) noexcept
      : begin_(text.data()), at_(begin_), end_(begin_ + text.size()), builder_(builder), options_(options) {}

  void read(json_roots roots) {
    const auto size = static_cast<std::size_t>(end_ - begin_);
    if (size > options_.limits.units) {
      at_ = begin_ + options_.limits.units;
      throw limit_reached{L"tamaño"};
    }
    if (options_.byte_order_mark) skip_mark();
    blanks();
    check_root(roots);
    value();
    while (builder_.depth() > 0) behind_value();
    blanks();
    if (at_ != end_) refuse(at_);
  }

  std::uint64_t position() const noexcept { return position_of(at_); }

 private:
  std::uint64_t position_of(const Unit* at) const noexcept {
    return static_cast<std::uint64_t>(at - begin_) + 1;
  }
  [[noreturn]] void refuse(const Unit* at) const { throw exc::jsonBadFormated(position_of(at)); }

  void blanks() noexcept { at_ = skip_blanks(at_, end_); }

  void skip_mark() noexcept {
    constexpr view mark = mark_of<Unit>();
    if (view(at_, static_cast<std::size_t>(end_ - at_)).starts_with(mark)) at_ += mark.size();
  }

  void check_root(json_roots roots) const {
    if (at_ == end_) refuse(at_);
    const Unit c = *at_;
    const bool allowed = c == Unit('{') ? roots.object : c == Unit('[') ? roots.list : roots.others;
    if (!allowed && begins_value(c)) throw exc::jsonWrongRoot(position());
  }

  /// A value; of a container no more than what leads to its first scalar, or all when it is empty.
  void value() {
    for (;;) {
      if (at_ == end_) refuse(at_);
      switch (*at_) {
        case Unit('"'):
          return string();
        case Unit('{'):
          builder_.open_object();
          if (closes(Unit('}'))) return;
          name();
          break;
        case Unit('['):
          builder_.open_list();
          if (closes(Unit(']'))) return;
          break;
        case Unit('t'):
          word("true");
          builder_.boolean(true);
          at_ += 4;
          return;
        case Unit('f'):
          word("false");
          builder_.boolean(false);
          at_ += 5;
          return;
        case Unit('n'):
          word("null");
          builder_.null();
          at_ += 4;
          return;
        default:
          return number();
      }
    }
  }

  /// Behind the opening bracket, where `at_` is: whether the container is empty, and is closed then.
  bool closes(Unit bracket) {
    ++at_;
    blanks();
    if (at_ == end_ || *at_ != bracket) return false;
    builder_.close();
    ++at_;
    return true;
  }

  /// What follows a value inside a container: a further one, or its end.
  void behind_value() {
    blanks();
    if (at_ == end_) refuse(at_);
    const bool in_object = builder_.in_object();
    if (*at_ == Unit(',')) {
      ++at_;
      blanks();
      if (in_object) name();
      value();
    } else if (*at_ == (in_object ? Unit('}') : Unit(']'))) {
      builder_.close();
      ++at_;
    } else {
      refuse(at_);
    }
  }

  /// A name and its colon, up to the value.
  void name() {
    if (at_ == end_ || *at_ != Unit('"')) refuse(at_);
    const Unit* const first = at_ + 1;
    const Unit* const last = builder_.take_expected_at(first, end_);
    at_ = (last ? last : unexpected_name(first)) + 1;
    blanks();
    if (at_ == end_ || *at_ != Unit(':')) refuse(at_);
    ++at_;
    blanks();
  }

  const Unit* unexpected_name(const Unit* first) {
    const Unit* last = first;
    buffer_.clear();
    read_string(last);
    builder_.take_name(first, static_cast<std::size_t>(last - first) * sizeof(Unit), buffer_.view());
    return last;
  }

  void string() {
    const Unit* const first = at_ + 1;
    const Unit* last = skip_plain(first, end_);
    if (last != end_ && *last == Unit('"')) {
      plain_text(view(first, static_cast<std::size_t>(last - first)));
    } else {
      last = first;
      buffer_.clear();
      read_string(last);
      builder_.text(buffer_.view());
    }
    at_ = last + 1;
  }

  void plain_text(view text) {
    if constexpr (sizeof(Unit) == 1) {
      builder_.text(text, static_cast<std::size_t>(end_ - text.data()));
    } else {
      builder_.text(text);
    }
  }

  /// What a string says from `at` on, which moves to its quotation mark.
  void read_string(const Unit*& at) {
    switch (take_string(at, end_, buffer_)) {
      case string_end::quote:
        return;
      case string_end::cut:
        if (at == end_ || *at == Unit('\\')) refuse(end_);
        if constexpr (sizeof(Unit) > 1) refuse(at);
        [[fallthrough]];
      case string_end::broken:
        throw exc::jsonBadEncoding(position_of(at));
      case string_end::wrong:
        refuse(at);
    }
  }

  void word(const char* letters) const {
    for (const Unit* at = at_; *letters != '\0'; ++at, ++letters) {
      if (at == end_ || *at != Unit(*letters)) refuse(at);
    }
  }

  void number() {
    if (*at_ != Unit('-') && !is_digit_unit(*at_)) refuse(at_);
    number_parts parts;
    const Unit* last = at_;
    if (!take_number(last, end_, parts)) refuse(last);
    const view written(at_, static_cast<std::size_t>(last - at_));
    const number_value value = value_of(parts, written, options_);
    switch (value.kind) {
      case number_value::form::integer:
        builder_.integer(value.integer);
        break;
      case number_value::form::natural:
        builder_.natural(value.integer);
        break;
      case number_value::form::real:
        builder_.real(value.real);
        break;
      case number_value::form::exact:
        builder_.exact(decimal(written));
        break;
      case number_value::form::written:
        plain_text(written);
        break;
      case number_value::form::refused:
        throw exc::jsonBadNumber(position());
    }
    at_ = last;
  }

  const Unit *begin_, *at_, *end_;
  json_builder& builder_;
  const json_read_options& options_;
  unit_buffer buffer_;
};

}  // namespace ruvo::serializer
