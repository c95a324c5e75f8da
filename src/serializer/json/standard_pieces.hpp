// SPDX-License-Identifier: BSL-1.0
#pragma once

// The reader of standard JSON for a text that comes in pieces. What a piece cuts in two is kept as far as it
// is read, so that no unit is looked at again, however small the pieces are.

#include <ruvo/exc.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/standard_json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf.hpp"
#include "serializer/json/staging.hpp"
#include "serializer/json/standard_numbers.hpp"
#include "serializer/json/standard_strings.hpp"

namespace ruvo::serializer {

/// What cannot stand where it stands: other than an exc::JSONException, no handler throws it.
struct refusal {
  exception failure;
};

template <class Unit>
class json_pieces {
 public:
  using view = std::basic_string_view<Unit>;

  json_pieces(ijson_events& events, const json_read_options& options, bool many)
      : events_(events), options_(options), many_(many) {
    reset();
  }

  void reset() noexcept {
    levels_.clear();
    want_ = want::value;
    token_ = options_.byte_order_mark ? token::mark : token::none;
    has_ended_ = false;
    offset_ = first_ = 0;
    elements_ = taken_ = carried_ = 0;
    token_at_ = 1;
    carry_at_ = 0;
    token_place_ = carry_place_ = {};
    place_ = {};
  }

  /// Throws refusal and limit_reached, and what the events throw.
  void feed(view piece) {
    begin_ = piece.data();
    const Unit *at = begin_, *const end = begin_ + piece.size();
    while (at != end) {
      const std::uint64_t room = options_.limits.units - (offset_of(at) - first_);
      const auto rest = static_cast<std::size_t>(end - at);
      if (room == 0 && ends_number(*at)) {
        end_number(held_);
        has_ended_ = false;
        first_ = offset_of(at);
        continue;
      }
      if (room == 0) {
        token_at_ = offset_of(at) + 1;
        throw limit_reached{L"tamaño"};
      }
      at = take(at, at + std::min<std::uint64_t>(room, rest));
    }
    note_places(piece);
    offset_ += piece.size();
    begin_ = nullptr;
  }

  void finish() {
    if (token_ == token::number) end_number(held_);
    const bool between =
        levels_.empty() && (want_ == want::nothing || want_ == want::gap || (many_ && want_ == want::value));
    if (token_ == token::mark && taken_ > 0) refuse(1);
    if ((token_ == token::string || token_ == token::name) && carried_ > 0 && carry_[0] != Unit('\\'))
      refuse_broken(carry_at_);
    if (!between || (token_ != token::none && token_ != token::mark)) refuse(offset_ + 1);
  }

  /// Where the reader is when it throws, and where its events come from: the beginning of a token.
  std::uint64_t position() const noexcept { return token_at_; }

  /// Of what the piece, the last one that was fed, or one before it was refused at.
  text_place place_of(std::uint64_t position, view piece) const noexcept {
    if (position <= offset_) {
      text_place place = position == carry_at_ ? carry_place_ : token_place_;
      if (position != carry_at_) place.column += position - token_at_;  // in a number
      return place;
    }
    place_counter at = place_;
    const auto before = static_cast<std::size_t>(position - 1 - offset_);
    at.take(piece.substr(0, before));
    return before < piece.size() ? at.place_of(piece[before]) : at.end();
  }

 private:
  enum class want { value, first_element, first_name, name, colon, behind, gap, nothing };
  enum class token { none, mark, string, name, number, word };

  struct level {
    bool is_object;
    std::size_t members;
  };

  /// Counts lines and columns as position_of() does.
  class place_counter {
   public:
    void take(view units) noexcept {
      for (const Unit unit : units) take(unit);
    }
    text_place place_of(Unit next) noexcept {
      take(next);
      return place_;
    }
    text_place end() noexcept {
      if (any_) go_on();
      return place_;
    }

   private:
    static bool ends_line(Unit unit) noexcept { return unit == Unit('\n') || unit == Unit('\r'); }
    void take(Unit unit) noexcept {
      if (!any_ || !continues(unit)) {
        if (any_) go_on();
        any_ = true;
      }
      last_ = unit;
    }
    void go_on() noexcept {
      place_ = ends_line(last_) ? text_place{place_.line + 1, 1} : text_place{place_.line, place_.column + 1};
    }
    bool continues(Unit unit) const noexcept {
      if (last_ == Unit('\r') && unit == Unit('\n')) return true;
      if constexpr (sizeof(Unit) == 1)
        return (static_cast<unsigned char>(unit) & 0xC0) == 0x80 && !ends_line(last_);
      return texto::is_high_surrogate(last_) && texto::is_low_surrogate(unit);
    }

    text_place place_;  // of the character that last_ ends, if any
    Unit last_ = Unit();
    bool any_ = false;
  };

  std::uint64_t offset_of(const Unit* at) const noexcept {
    return offset_ + static_cast<std::uint64_t>(at - begin_);
  }
  std::uint64_t position_of(const Unit* at) const noexcept { return offset_of(at) + 1; }
  [[noreturn]] static void refuse(std::uint64_t position) { throw refusal{exc::jsonBadFormated(position)}; }
  [[noreturn]] static void refuse_broken(std::uint64_t position) {
    if constexpr (sizeof(Unit) > 1) refuse(position);
    throw refusal{exc::jsonBadEncoding(position)};
  }

  /// For what may be refused when the next piece is there.
  void note_places(view piece) {
    const std::uint64_t end = offset_ + piece.size();
    const auto note = [&](std::uint64_t position, text_place& place) {
      if (position > offset_ && position <= end) place = place_of(position, piece);
    };
    if (token_ != token::none) note(token_at_, token_place_);
    if (carried_ > 0) note(carry_at_, carry_place_);
    place_.take(piece);
  }

  // --- between tokens

  /// Takes all, or less where one of many values ends.
  const Unit* take(const Unit* at, const Unit* end) {
    while (at != end) {
      if (token_ != token::none) {
        at = go_on(at, end);
      } else if (is_blank(static_cast<wchar_t>(*at))) {
        at = skip_blanks(at, end);
        if (want_ == want::gap) want_ = want::value;
      } else {
        at = sign(at);
      }
      if (has_ended_ && many_) {
        has_ended_ = false;
        first_ = offset_of(at);
        return at;
      }
    }
    return at;
  }

  const Unit* sign(const Unit* at) {
    const Unit c = *at;
    token_at_ = position_of(at);
    switch (want_) {
      case want::first_element:
        if (c == Unit(']')) return close(at);
        [[fallthrough]];
      case want::value:
        return begin_value(at);
      case want::first_name:
        if (c == Unit('}')) return close(at);
        [[fallthrough]];
      case want::name:
        if (c != Unit('"')) refuse(token_at_);
        begin_string(token::name);
        return at + 1;
      case want::colon:
        if (c != Unit(':')) refuse(token_at_);
        want_ = want::value;
        return at + 1;
      case want::behind:
        if (c == (levels_.back().is_object ? Unit('}') : Unit(']'))) return close(at);
        if (c != Unit(',')) refuse(token_at_);
        want_ = levels_.back().is_object ? want::name : want::value;
        return at + 1;
      case want::gap:
      case want::nothing:
        break;
    }
    refuse(token_at_);
  }

  const Unit* begin_value(const Unit* at) {
    switch (*at) {
      case Unit('"'):
        begin_string(token::string);
        return at + 1;
      case Unit('{'):
        return open(at, true);
      case Unit('['):
        return open(at, false);
      case Unit('t'):
        return begin_word(at, "true");
      case Unit('f'):
        return begin_word(at, "false");
      case Unit('n'):
        return begin_word(at, "null");
      default:
        if (*at != Unit('-') && !is_digit_unit(*at)) refuse(token_at_);
        token_ = token::number;
        held_.clear();
        return at;
    }
  }

  const Unit* open(const Unit* at, bool is_object) {
    if (levels_.size() == options_.limits.depth) throw limit_reached{L"profundidad"};
    count_element();
    levels_.push_back({is_object, 0});
    want_ = is_object ? want::first_name : want::first_element;
    is_object ? events_.on_open_object() : events_.on_open_list();
    return at + 1;
  }

  const Unit* close(const Unit* at) {
    const bool was_object = levels_.back().is_object;
    levels_.pop_back();
    was_object ? events_.on_close_object() : events_.on_close_list();
    end_value();
    return at + 1;
  }

  void count_element() {
    if (elements_ == options_.limits.elements) throw limit_reached{L"elementos"};
    ++elements_;
  }

  void end_value() noexcept {
    want_ = !levels_.empty() ? want::behind : many_ ? want::gap : want::nothing;
    if (!levels_.empty()) return;
    elements_ = 0;
    has_ended_ = true;
  }

  // --- tokens

  const Unit* go_on(const Unit* at, const Unit* end) {
    switch (token_) {
      case token::mark:
        return mark(at);
      case token::string:
      case token::name:
        return string(at, end);
      case token::number:
        return number(at, end);
      case token::word:
        return word(at);
      case token::none:
        break;
    }
    return at;
  }

  const Unit* mark(const Unit* at) {
    constexpr view wanted = mark_of<Unit>();
    if (*at != wanted[taken_]) {
      if (taken_ > 0) refuse(1);
      token_ = token::none;
      return at;
    }
    if (++taken_ == wanted.size()) token_ = token::none;
    return at + 1;
  }

  const Unit* begin_word(const Unit* at, const char* letters) {
    token_ = token::word;
    letters_ = letters;
    taken_ = 0;
    return at;
  }
  const Unit* word(const Unit* at) {
    if (*at != Unit(letters_[taken_])) refuse(position_of(at));
    if (letters_[++taken_] != '\0') return at + 1;
    token_ = token::none;
    count_element();
    if (letters_[0] == 'n') {
      events_.on_null();
    } else {
      events_.on_boolean(letters_[0] == 't');
    }
    end_value();
    return at + 1;
  }

  void begin_string(token as) noexcept {
    token_ = as;
    buffer_.clear();
    carried_ = 0;
  }
  const Unit* string(const Unit* at, const Unit* end) {
    while (carried_ > 0) {
      if (at == end) return at;
      carry_[carried_++] = *at++;
      carried();
    }
    const string_end outcome = collected(at, end);
    if (outcome == string_end::quote) {
      end_string();
      return at + 1;
    }
    if (outcome == string_end::wrong) refuse(position_of(at));
    if (outcome == string_end::broken) refuse_broken(position_of(at));
    carry_at_ = position_of(at);
    carried_ = static_cast<std::size_t>(end - at);
    std::copy(at, end, carry_);
    if (buffer_.size() * sizeof(wchar_t) > options_.limits.bytes) throw limit_reached{L"memoria"};
    return end;
  }
  string_end collected(const Unit*& at, const Unit* end) {
    try {
      return take_string(at, end, buffer_);
    } catch (const std::length_error&) {
      throw limit_reached{L"memoria"};
    }
  }
  /// A character or an escape that the last unit may have completed.
  void carried() {
    const Unit *from = carry_, *const end = carry_ + carried_;
    const string_end outcome =
        *from == Unit('\\') ? take_escape(from, end, buffer_) : take_character(from, end, buffer_);
    if (outcome == string_end::wrong) refuse(carry_at_ + static_cast<std::uint64_t>(from - carry_));
    if (outcome == string_end::broken) refuse_broken(carry_at_);
    if (outcome == string_end::quote) carried_ = 0;
  }
  void end_string() {
    const bool is_name = token_ == token::name;
    token_ = token::none;
    if (!is_name) {
      count_element();
      events_.on_text(buffer_.view());
      return end_value();
    }
    if (levels_.back().members == options_.limits.members) throw limit_reached{L"miembros"};
    ++levels_.back().members;
    want_ = want::colon;
    events_.on_name(buffer_.view());
  }

  /// Whether the unit shows that a value of many, a number, is complete.
  bool ends_number(Unit next) const noexcept {
    return many_ && levels_.empty() && token_ == token::number && !is_number_unit(next);
  }
  static bool is_number_unit(Unit c) noexcept {
    return is_digit_unit(c) || c == Unit('.') || c == Unit('-') || c == Unit('+') || c == Unit('e') ||
           c == Unit('E');
  }
  const Unit* number(const Unit* at, const Unit* end) {
    const Unit* const last = std::find_if_not(at, end, is_number_unit);
    const view part(at, static_cast<std::size_t>(last - at));
    if (last != end && held_.empty()) {
      end_number(part);
    } else {
      held_ += part;
      if (held_.size() * sizeof(wchar_t) > options_.limits.bytes) throw limit_reached{L"memoria"};
      if (last != end) end_number(held_);
    }
    return last;
  }
  void end_number(view written) {
    number_parts parts;
    const Unit *last = written.data(), *const end = last + written.size();
    const bool complete = take_number(last, end, parts) != nullptr;
    const auto size = static_cast<std::size_t>(last - written.data());
    if (!complete) refuse(token_at_ + size);
    token_ = token::none;
    number(parts, written.substr(0, size));
    if (last != end) refuse(token_at_ + size);
  }
  void number(const number_parts& parts, view written) {
    const number_value value = value_of(parts, written, options_);
    if (value.kind == number_value::form::refused) throw refusal{exc::jsonBadNumber(token_at_)};
    count_element();
    switch (value.kind) {
      case number_value::form::integer:
        events_.on_integer(value.integer);
        break;
      case number_value::form::natural:
        events_.on_unsigned(static_cast<unsigned long long>(value.integer));
        break;
      case number_value::form::real:
        events_.on_double(value.real);
        break;
      default:
        events_.on_number(std::wstring(written.begin(), written.end()));
    }
    end_value();
  }

  ijson_events& events_;
  const json_read_options options_;
  const bool many_;

  want want_ = want::value;
  token token_ = token::none;
  std::vector<level> levels_;
  std::size_t elements_ = 0;  // of the value that is being read
  bool has_ended_ = false;    // a whole value did

  const Unit* begin_ = nullptr;  // of the piece
  std::uint64_t offset_ = 0;     // of the piece
  std::uint64_t first_ = 0;      // offset of the value that is being read, with the blanks before it
  std::uint64_t token_at_ = 0, carry_at_ = 0;  // positions
  text_place token_place_, carry_place_;       // of those in former pieces
  place_counter place_;                        // of all former pieces

  unit_buffer buffer_;             // what the open string says
  std::basic_string<Unit> held_;   // the open number
  const char* letters_ = nullptr;  // the open word
  std::size_t taken_ = 0, carried_ = 0;
  Unit carry_[8] = {};  // the open escape or character
};

}  // namespace ruvo::serializer
