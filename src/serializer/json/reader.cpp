// SPDX-License-Identifier: BSL-1.0

// The lenient reader of JSON.

#include <ruvo/exc.hpp>
#include <ruvo/serializer.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "memory/block_cache.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/json/tree.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::kind;

/// Takes JSON in two ways. The state machine takes character after character. The fast way takes whole keys
/// and values where the JSON is ordinary, with the outcome of the state machine for each of their characters.
/// What is unusual (a key without its closing quote and colon, an empty key, a value that the text's end cuts
/// off, ...) it leaves to the state machine.
class json_reader::machine {
 public:
  explicit machine(json_reader& owner) noexcept : owner_(owner) {}

  // Readers may be short-lived: the thread keeps the block for the next one.
  static void* operator new(std::size_t size) { return detail::take_block(size); }
  static void operator delete(void* block, std::size_t size) noexcept { detail::give_block(block, size); }

  void reset() noexcept {
    state_ = state::start;
    tree_.clear();
    clear_buffers();
  }

  // --- character by character

  void take(wchar_t c, exception& result) {
    switch (state_) {
      case state::start:
        return on_start(c, result);
      case state::key:
        return on_key(c);
      case state::value:
        return on_value(c, result);
      case state::string:
        return on_string(c, result);
      case state::number:
        return on_number(c, result);
      case state::word:
        return on_word(c, result);
      case state::object:
        return on_object(c, result);
      case state::array:
        return on_array(c, result);
    }
  }

  // --- whole tokens

  /// Takes what it can at once, and returns the first character that it leaves to take().
  const wchar_t* take_tokens(const wchar_t* at, const wchar_t* end) {
    at_ = at;
    end_ = end;
    while (at_ != end_ && between_tokens()) {
      if (!(tree_.in_list() ? elements() : members())) break;
    }
    // After a wrong word every character is one more error, and the last one is reported.
    if (state_ == state::word && value_text_.size() >= 5 && end_ - at_ > 1) at_ = end_ - 1;
    owner_.position_ += static_cast<std::uint64_t>(at_ - at);
    return at_;
  }

 private:
  enum class state { start, key, value, string, number, word, object, array };

  void on_start(wchar_t c, exception& result) {
    if (c == L'{') {
      state_ = state::key;
    } else if (c == L'[') {
      key_text_ = array_key;
      state_ = state::array;
      on_array(c, result);
    }
  }

  void on_key(wchar_t c) {
    if (c == L'"') {
      in_key_quotes_ = !in_key_quotes_;
    } else if (c == L':') {
      state_ = state::value;
    } else if (in_key_quotes_) {
      key_text_ += c;
    }
  }

  void on_value(wchar_t c, exception& result) {
    if (is_meaningless(c)) return;
    if (c == L'-' || texto::is_digit(c)) {
      state_ = state::number;
      return on_number(c, result);
    }
    switch (c) {
      case L'"':
        state_ = state::string;
        return;
      case L'f':
      case L't':
      case L'n':
      case L'F':
      case L'T':
        state_ = state::word;
        return on_word(c, result);
      case L'[':
      case L']':
        state_ = state::array;
        return on_array(c, result);
      case L'{':
      case L'}':
        state_ = state::object;
        return on_object(c, result);
      case L',':
        if (!tree_.in_list()) return;
        state_ = state::array;
        return on_array(c, result);
      default:
        return;
    }
  }

  void on_string(wchar_t c, exception& result) {
    if (escape_pending_ || c != L'"') {
      value_text_ += c;
      escape_pending_ = !escape_pending_ && c == L'\\';
      return;
    }
    store(owner_.raw_value(value_text_), result);
    on_value_end(L'\t', result);
  }

  void on_number(wchar_t c, exception& result) {
    if (is_number_part(c)) {
      value_text_ += c;
      return;
    }
    store(number_of_json(value_text_, tree_.in_object()), result);
    on_value_end(c, result);
  }

  /// A word that went wrong stays wrong: every further character reports it again.
  void on_word(wchar_t c, exception& result) {
    const json_word& word = *find_word(value_text_.empty() ? texto::to_lower(c) : value_text_.front());
    if (value_text_.size() <= word.text.size()) value_text_ += texto::to_lower(c);
    if (value_text_ == word.text) {
      store(meant_by(word), result);
      on_value_end(c, result);
    } else if (!word.text.starts_with(value_text_)) {
      exc::jsonUnKnowValue(owner_.position_, tree_.depth()).copy_on(result);
    }
  }

  void on_object(wchar_t c, exception& result) {
    switch (c) {
      case L'"':
        in_key_quotes_ = true;
        state_ = state::key;
        return;
      case L',':
        return clear_buffers();
      case L'}':
      case L']':
        return close();
      case L'{':
        return open(place(result), false);
      default:
        return;
    }
  }

  void on_array(wchar_t c, exception& result) {
    switch (c) {
      case L',':
        return clear_buffers();
      case L'[':
        return open(place(result), true);
      case L']':
      case L'}':
        return close();
      default:
        state_ = state::value;
        return on_value(c, result);
    }
  }

  void on_value_end(wchar_t c, exception& result) {
    clear_buffers();
    state_ = tree_.in_list() ? state::array : state::object;
    if (tree_.in_list()) return on_array(c, result);
    if (tree_.in_object()) on_object(c, result);
  }

  void clear_buffers() noexcept {
    value_text_.clear();
    key_text_.clear();
    escape_pending_ = in_key_quotes_ = false;
  }

  // --- values

  /// Where the value that was read belongs, or null with a failure in `result`.
  xvar* place(exception& result) {
    if (tree_.in_list()) return &tree_.innermost_list().on_back();
    const std::wstring& key = owner_.raw_key(key_text_);
    if (tree_.in_object() && key.empty()) {
      exc::jsonEmptyKey(owner_.position_, tree_.depth()).copy_on(result);
    } else if (bundle* const in = tree_.innermost_object(owner_.store_)) {
      return &tree_.member(*in, key);
    } else {
      exc::NullPointer().copy_on(result);
    }
    return nullptr;
  }

  void store(const var& value, exception& result) {
    if (xvar* const to = place(result)) *to = value;
  }

  void open(xvar* value, bool as_list) {
    if (!value) return;
    enter(*value, as_list);
    clear_buffers();
  }

  void close() noexcept {
    tree_.close();
    clear_buffers();
    go_on_outside();
  }

  void enter(xvar& value, bool as_list) {
    tree_.open(value, as_list);
    state_ = as_list ? state::array : state::object;
  }

  void leave() {
    tree_.close_fitted();
    go_on_outside();
  }

  void go_on_outside() noexcept { state_ = tree_.in_list() ? state::array : state::object; }

  static var meant_by(const json_word& word) noexcept {
    var value;
    cell::set_integer(value, word.kind, word.value);
    return value;
  }

  // --- the fast way

  enum class step { left, taken, moved };  // moved: a container was opened

  /// Nothing of a key or value has been taken yet.
  bool between_tokens() const noexcept { return key_text_.empty() && value_text_.empty() && !in_key_quotes_; }

  /// Members of the innermost object; true when a container was opened or closed.
  bool members() {
    if (state_ != state::object) return false;
    bundle& in = *tree_.innermost_object(owner_.store_);
    while (at_ != end_) {
      switch (*at_) {
        case L'"': {
          const wchar_t* const token = at_;
          const step outcome = member(in);
          if (outcome == step::left) at_ = token;
          if (outcome != step::taken) return outcome == step::moved;
          break;
        }
        case L'}':
        case L']':
          ++at_;
          leave();
          return true;
        case L'{':
          return false;
        default:
          ++at_;
      }
    }
    return true;
  }

  /// One member with its value.
  step member(bundle& in) {
    const wchar_t* const first = at_ + 1;
    const wchar_t* const last = find_either(first, end_, L'"', L':');
    if (last == first || last == end_ || *last != L'"') return step::left;
    const wchar_t* const colon = find_either(last + 1, end_, L'"', L':');
    if (colon == end_ || *colon != L':') return step::left;
    at_ = skip_meaningless(colon + 1, end_);
    return value([&]() -> xvar& { return tree_.member(in, between(first, last)); });
  }

  /// Elements of the innermost list; true when a container was opened or closed.
  bool elements() {
    if (state_ != state::array && state_ != state::value) return false;
    list& in = tree_.innermost_list();
    while ((at_ = skip_meaningless(at_, end_)) != end_) {
      if (*at_ == L']' || *at_ == L'}') {
        ++at_;
        leave();
        return true;
      }
      if (*at_ == L',') {
        ++at_;
        continue;
      }
      const step outcome = value([&in]() -> xvar& { return in.on_back(); });
      if (outcome != step::taken) return outcome == step::moved;
    }
    return true;
  }

  /// One value into the place that `target` makes.
  template <class Target>
  step value(Target target) {
    if (at_ == end_) return step::left;
    switch (*at_) {
      case L'"':
        return string(target);
      case L'{':
      case L'[':
        enter(target(), *at_ == L'[');
        ++at_;
        return step::moved;
      case L't':
        return word(target, json_true);
      case L'f':
        return word(target, json_false);
      case L'n':
        return word(target, json_null);
      default:
        return texto::is_digit(*at_) || *at_ == L'-' ? number(target) : step::left;
    }
  }

  template <class Target>
  step string(Target target) {
    bool escaped = false;
    const wchar_t* const first = at_ + 1;
    const wchar_t* const last = find_closing_quote(first, end_, escaped);
    if (last == end_) return step::left;
    std::wstring_view text = between(first, last);
    if (escaped) {
      unescape(scratch_, text);
      text = scratch_;
    }
    var& to = target();
    to.clear();
    cell::set_text(to, text);
    at_ = last + 1;
    return step::taken;
  }

  template <class Target>
  step word(Target target, const json_word& word) {
    const std::wstring_view rest = between(at_, end_);
    if (rest.size() == word.text.size() || !rest.starts_with(word.text)) return step::left;
    var& to = target();
    to.clear();
    cell::set_integer(to, word.kind, word.value);
    at_ += word.text.size();
    return step::taken;
  }

  template <class Target>
  step number(Target target) {
    const bool negative = *at_ == L'-';
    std::uint64_t digits = 0;
    const wchar_t* last = at_ + (negative ? 1 : 0);
    const wchar_t* const whole = last;
    last = take_digits(last, digits);
    const wchar_t* point = nullptr;
    if (last != end_ && *last == L'.') {
      point = last;
      last = take_digits(last + 1, digits);
    }
    if (last == end_) return step::left;
    const std::ptrdiff_t taken = last - whole - (point ? 1 : 0);
    const std::ptrdiff_t decimals = point ? last - point - 1 : 0;
    if (*last == L'-' || *last == L'.' || taken == 0 || taken > 18) {
      last = std::find_if_not(last, end_, is_number_part);
      if (last == end_) return step::left;
      var read = number_of_json(between(at_, last), tree_.in_object());
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
    at_ = tree_.depth() == 0 ? last + 1 : last;
    return step::taken;
  }

  const wchar_t* take_digits(const wchar_t* from, std::uint64_t& digits) const noexcept {
    for (; from != end_ && texto::is_digit(*from); ++from)
      digits = digits * 10 + static_cast<std::uint64_t>(*from - L'0');
    return from;
  }

  json_reader& owner_;
  state state_ = state::start;
  json_tree tree_;
  std::wstring key_text_, value_text_;  // as far as they are read
  bool escape_pending_ = false, in_key_quotes_ = false;
  const wchar_t *at_ = nullptr, *end_ = nullptr;  // what the fast way has still to take
  std::wstring scratch_;
};

json_reader::json_reader() : machine_(std::make_unique<machine>(*this)) {}
json_reader::~json_reader() = default;

bool json_reader::on_char(wchar_t c, exception& result) {
  machine_->take(c, result);
  return result.WRONG();
}

std::wstring json_reader::raw_value(const xvar& value) {
  std::wstring text = value.to_string();
  if (!cell::is_text(value) || text.find(L'\\') == std::wstring::npos) return text;
  std::wstring plain;
  unescape(plain, text);
  return plain;
}

std::wstring& json_reader::raw_key(std::wstring& key) { return key; }

void json_reader::reset() {
  store_ = nullptr;
  position_ = 0;
  machine_->reset();
}

const wchar_t* json_reader::take_tokens(const wchar_t* at, const wchar_t* end) {
  return machine_->take_tokens(at, end);
}

}  // namespace ruvo::serializer
