// The fast way through ordinary JSON: whole keys and values at once.
//
// Everything here has the outcome of on_char for each character. What is unusual (a key without its closing
// quote and colon, an empty key, a value that the text's end cuts off, ...) is left to on_char, character by
// character.

#include <ruvo/list.hpp>
#include <ruvo/serializer.hpp>

#include <algorithm>
#include <cstdint>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "serializer/scan.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::folded_key;
using detail::key_view;
using detail::kind;

namespace {

constexpr std::size_t most_expected = 64;  // values for which a new container makes room at once

const wchar_t* skip_meaningless(const wchar_t* at, const wchar_t* end) noexcept {
  while (at != end && (*at < 34 || *at >= 126)) ++at;
  return at;
}

bool starts_with(const wchar_t* at, const wchar_t* end, std::wstring_view word) noexcept {
  return static_cast<std::size_t>(end - at) > word.size() && std::equal(word.begin(), word.end(), at);
}

/// The closing quote of a string whose first character is `at`, or end.
const wchar_t* find_closing_quote(const wchar_t* at, const wchar_t* end, bool& escaped) noexcept {
  while ((at = find_either(at, end, L'"', L'\\')) != end && *at == L'\\') {
    escaped = true;
    if (end - at < 2) return end;
    at += 2;
  }
  return at;
}

}  // namespace

struct json_reading {
  using state = json_reader::state;

  json_reader& reader;
  const wchar_t* at;
  const wchar_t* const end;

  /// Nothing of a key or value has been taken yet.
  bool between_tokens() const noexcept {
    return reader.key_text_.empty() && reader.value_text_.empty() && !reader.in_key_quotes_;
  }

  void run() {
    while (at != end && between_tokens()) {
      bool went_on = false;
      if (reader.state_ == state::object) {
        went_on = members();
      } else if (reader.in_list() && (reader.state_ == state::array || reader.state_ == state::value)) {
        went_on = elements();
      }
      if (!went_on) return;
    }
    // After a wrong word every character is one more error, and the last one is reported.
    const bool in_word = reader.state_ == state::boolean || reader.state_ == state::null;
    if (in_word && reader.value_text_.size() >= 5 && end - at > 1) at = end - 1;
  }

  /// Members of the innermost object; true when a container was opened or closed.
  bool members() {
    bundle& in = reader.open_nodes_.empty() ? *reader.store_ : cell::as_bundle(*reader.open_nodes_.back());
    while (at != end) {
      switch (*at) {
        case L'"': {
          const wchar_t* const token = at;
          if (!member(in)) {
            at = token;
            return false;
          }
          if (opened) return take_opened();
          break;
        }
        case L'}':
        case L']':
          close();
          return true;
        case L'{':
          return false;
        default:
          ++at;
      }
    }
    return true;
  }

  /// One member with its value; false when on_char has to see it.
  bool member(bundle& in) {
    const wchar_t* const first = at + 1;
    const wchar_t* const last = find_either(first, end, L'"', L':');
    if (last == first || last == end || *last != L'"') return false;
    const wchar_t* const colon = find_either(last + 1, end, L'"', L':');
    if (colon == end || *colon != L':') return false;
    at = skip_meaningless(colon + 1, end);
    const folded_key key(std::wstring_view(first, static_cast<std::size_t>(last - first)));
    const auto target = [&]() -> xvar& {
      return bundle_access::made_store(in, expected(4)).put(key_view(key.view()))->second;
    };
    return value(target, !reader.open_nodes_.empty());
  }

  /// Elements of the innermost list; true when a container was opened or closed.
  bool elements() {
    list& in = cell::as_list(*reader.open_nodes_.back());
    const auto target = [&in]() -> xvar& { return in.on_back(); };
    while ((at = skip_meaningless(at, end)) != end) {
      if (*at == L']' || *at == L'}') {
        close();
        return true;
      }
      if (*at == L',') {
        ++at;
        reader.state_ = state::array;
        continue;
      }
      if (!value(target, false)) return false;
      if (opened) return take_opened();
      reader.state_ = state::value;
    }
    return true;
  }

  /// One value into the place that `target` makes; false when on_char has to see it.
  template <class Target>
  bool value(Target target, bool in_object) {
    if (at == end) return false;
    switch (*at) {
      case L'"':
        return string(target);
      case L'{':
      case L'[':
        opened = &target();
        static_cast<var&>(*opened).clear();
        return true;
      case L't':
        return word(target, L"true", kind::boolean, 1);
      case L'f':
        return word(target, L"false", kind::boolean, 0);
      case L'n':
        return word(target, L"null", kind::null, 0);
      default:
        return (texto::is_digit(*at) || *at == L'-') && number(target, in_object);
    }
  }

  template <class Target>
  bool string(Target target) {
    bool escaped = false;
    const wchar_t* const first = at + 1;
    const wchar_t* const last = find_closing_quote(first, end, escaped);
    if (last == end) return false;
    std::wstring_view text(first, static_cast<std::size_t>(last - first));
    if (escaped) {
      json_reader::unescape(reader.scratch_, text);
      text = reader.scratch_;
    }
    var& to = target();
    to.clear();
    cell::set_text(to, text);
    at = last + 1;
    return true;
  }

  template <class Target>
  bool word(Target target, std::wstring_view text, kind meant, long long value) {
    if (!starts_with(at, end, text)) return false;
    var& to = target();
    to.clear();
    cell::set_integer(to, meant, value);
    at += text.size();
    return true;
  }

  template <class Target>
  bool number(Target target, bool in_object) {
    const bool negative = *at == L'-';
    std::uint64_t digits = 0;
    const wchar_t* last = at + (negative ? 1 : 0);
    const wchar_t* const whole = last;
    last = take_digits(last, digits);
    const wchar_t* point = nullptr;
    if (last != end && *last == L'.') {
      point = last;
      last = take_digits(last + 1, digits);
    }
    if (last == end) return false;
    const std::ptrdiff_t taken = last - whole - (point ? 1 : 0);
    const std::ptrdiff_t decimals = point ? last - point - 1 : 0;
    if (*last == L'-' || *last == L'.' || taken == 0 || taken > 18) {
      while (last != end && (texto::is_digit(*last) || *last == L'-' || *last == L'.')) ++last;
      if (last == end) return false;
      var read = any_number({at, static_cast<std::size_t>(last - at)}, in_object);
      static_cast<var&>(target()) = std::move(read);
    } else {
      var& to = target();
      to.clear();
      if (point) {
        const double magnitude = texto::quotient(digits, static_cast<int>(decimals));
        cell::set_real(to, negative ? -magnitude : magnitude);
      } else {
        cell::set_integer(to, kind::xlong,
                          negative ? -static_cast<long long>(digits) : static_cast<long long>(digits));
      }
    }
    // The character that ends a number counts inside a container and is dropped on top.
    at = reader.open_nodes_.empty() ? last + 1 : last;
    return true;
  }

  const wchar_t* take_digits(const wchar_t* from, std::uint64_t& digits) const noexcept {
    for (; from != end && texto::is_digit(*from); ++from)
      digits = digits * 10 + static_cast<std::uint64_t>(*from - L'0');
    return from;
  }

  var any_number(std::wstring_view text, bool in_object) const {
    const bool as_double =
        in_object ? text.find(L'.') != std::wstring_view::npos : !texto::is_plain_integer(text);
    if (as_double) return texto::read_double(text);
    return texto::read_integer(text);
  }

  bool take_opened() {
    reader.open_nodes_.push_back(opened);
    if (*at == L'{') {
      cell::on_bundle(*opened);
      reader.state_ = state::object;
    } else {
      list& made = cell::on_list(*opened);
      if (const std::size_t count = expected(0)) made.reserve(static_cast<unsigned long>(count));
      reader.state_ = state::array;
    }
    opened = nullptr;
    ++at;
    return true;
  }

  void close() {
    if (!reader.open_nodes_.empty()) note_size(*reader.open_nodes_.back());
    reader.close_node();
    ++at;
  }

  /// Remembers the size of a container that is complete, and gives back the room that it doesn't need.
  void note_size(const xvar& complete) {
    const std::size_t depth = reader.open_nodes_.size();
    if (reader.sizes_.size() < depth) reader.sizes_.resize(depth);
    std::size_t size = 0;
    if (cell::kind_of(complete) == kind::list) {
      size = cell::as_list(complete).size();
    } else {
      bundle& record = cell::as_bundle(complete);
      size = record.size();
      if (size > 0) bundle_access::set(record, bundle_store::fitted(bundle_access::store(record)));
    }
    reader.sizes_[depth - 1] = static_cast<std::uint32_t>(std::min(size, most_expected));
  }

  /// How many values the container that is open now may get: as many as the last one at its depth.
  std::size_t expected(std::size_t least) const noexcept {
    const std::size_t depth = reader.open_nodes_.size();
    return depth > 0 && depth <= reader.sizes_.size() ? std::max<std::size_t>(reader.sizes_[depth - 1], least)
                                                      : least;
  }

  xvar* opened = nullptr;  // the value that a bracket at `at` opens
};

const wchar_t* json_reader::take_tokens(const wchar_t* at, const wchar_t* end) {
  json_reading work{*this, at, end};
  work.run();
  position_ += static_cast<std::uint64_t>(work.at - at);
  return work.at;
}

}  // namespace ruvo::serializer
