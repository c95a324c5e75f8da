// SPDX-License-Identifier: BSL-1.0

// The lenient reader of JSON.

#include <ruvo/exc.hpp>
#include <ruvo/serializer.hpp>
#include <ruvo/standard_json.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "memory/block_cache.hpp"
#include "memory/thread_cache.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/json/staging.hpp"
#include "serializer/json/tokens.hpp"
#include "serializer/json/tree.hpp"
#include "serializer/scan.hpp"
#include "values/folded_key.hpp"

namespace ruvo::serializer {

using detail::cell;

namespace {

/// Nothing is too much, and the last value of a name stays.
constexpr json_read_options lenient_options = [] {
  constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  json_read_options options;
  options.limits = {all, all, all, all, all};
  options.twins = json_twins::last;
  return options;
}();

}  // namespace

/// Takes JSON in two ways: the state machine character after character into the containers that are open, and
/// whole tokens, whose values are staged (staging.hpp) and become containers with the first character that is
/// left to the state machine, or with the end of the text.
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
  const wchar_t* take_tokens(const wchar_t* const at, const wchar_t* const end) {
    const wchar_t* left = at;
    if (is_between_tokens()) {
      if (state_ == state::key) left = find_either(at, end, L'"', L':');
      if (left != end && !(state_ == state::key && *left == L':')) left = take_staged(left, end);
    }
    // After a wrong word every character is one more error, and the last one is reported.
    if (state_ == state::word && value_text_.size() >= 5 && end - left > 1) left = end - 1;
    owner_.position_ += static_cast<std::uint64_t>(left - at);
    return left;
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
      return &json_tree::member(*in, detail::key_view(detail::folded_key(key)));
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
    tree_.open(*value, as_list);
    go_on_in_innermost();
    clear_buffers();
  }

  void close() noexcept {
    tree_.close();
    clear_buffers();
    go_on_in_innermost();
  }

  void go_on_in_innermost() noexcept { state_ = tree_.in_list() ? state::array : state::object; }

  static var meant_by(const json_word& word) noexcept {
    var value;
    cell::set_integer(value, word.kind, word.value);
    return value;
  }

  // --- whole tokens

  /// Nothing of a name or value has been taken yet.
  bool is_between_tokens() const noexcept {
    if (!key_text_.empty() || !value_text_.empty() || in_key_quotes_) return false;
    if (tree_.in_list()) return state_ == state::array || state_ == state::value;
    return state_ == state::object || state_ == state::key;
  }

  const wchar_t* take_staged(const wchar_t* at, const wchar_t* end) {
    known_names names(&detail::thread_cache::plain_names);
    json_builder builder(names.tree(), lenient_options);
    if (tree_.in_list()) {
      builder.open_list();
    } else {
      builder.open_object();
    }
    try {
      at = json_tokens(builder, tree_.depth() == 0, at, end).take();
    } catch (...) {
      builder.settle(tree_, *owner_.store_);
      throw;
    }
    builder.settle(tree_, *owner_.store_);
    go_on_in_innermost();
    return at;
  }

  json_reader& owner_;
  state state_ = state::start;
  json_tree tree_;
  std::wstring key_text_, value_text_;  // as far as they are read
  bool escape_pending_ = false, in_key_quotes_ = false;
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
  std::wstring plain(text.size(), L'\0');
  plain.resize(static_cast<std::size_t>(unescape(plain.data(), text) - plain.data()));
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
