// SPDX-License-Identifier: BSL-1.0

// JSON text for people to read.

#include <ruvo/serializer.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "serializer/json/grammar.hpp"

namespace ruvo {

namespace {

/// Lines that are indented by level.
class outline {
 public:
  outline(std::size_t step, std::size_t most_levels) noexcept : step_(step), most_levels_(most_levels) {}

  void open() noexcept { ++level_; }
  void close() noexcept {
    if (level_ > 0) --level_;  // an unmatched bracket stays at the margin
  }
  std::size_t level() const noexcept { return level_; }
  void new_line() {
    text += L'\n';
    text.append(step_ * std::min(level_, most_levels_), L' ');
  }

  std::wstring text;

 private:
  std::size_t step_, most_levels_, level_ = 0;
};

/// Writes the tokens of a JSON text one after the other. What goes between two tokens is known when the
/// second one comes.
class json_printer {
 public:
  explicit json_printer(std::wstring_view text) : at_(text.data()), end_(text.data() + text.size()) {
    out_.text.reserve(text.size() + text.size() / 4);
  }

  std::wstring print() {
    while (at_ != end_) token(*at_);
    return std::move(out_.text);
  }

 private:
  enum class gap { none, blank, line };

  void token(wchar_t c) {
    switch (c) {
      case L'"':
        return put(end_of_string());
      case L'{':
      case L'[':
        put(at_ + 1);
        out_.open();
        gap_ = gap::line;
        opened_ = true;
        return;
      case L'}':
      case L']':
        out_.close();
        gap_ = opened_ ? gap::none : gap::line;
        return put(at_ + 1);
      case L',':
      case L':':
        gap_ = gap::none;
        put(at_ + 1);
        gap_ = c == L',' ? gap::line : gap::blank;
        return;
      default:
        if (texto::is_space(c)) return skip_blank();
        return put(std::find_if(at_, end_, [](wchar_t other) {
          return texto::is_space(other) || serializer::is_json_sign(other);
        }));
    }
  }

  void skip_blank() {
    ++at_;
    if (gap_ == gap::none) gap_ = out_.level() == 0 ? gap::line : gap::blank;
  }

  /// Writes the gap and the token that ends at `end`.
  void put(const wchar_t* end) {
    if (gap_ == gap::blank) out_.text += L' ';
    if (gap_ == gap::line && !out_.text.empty()) out_.new_line();
    out_.text.append(serializer::between(at_, end));
    at_ = end;
    gap_ = gap::none;
    opened_ = false;
  }

  const wchar_t* end_of_string() const {
    bool escaped = false;
    const wchar_t* const last = serializer::find_closing_quote(at_ + 1, end_, escaped);
    return last == end_ ? end_ : last + 1;
  }

  const wchar_t *at_, *end_;
  outline out_{2, 20};
  gap gap_ = gap::none;  // before the next token
  bool opened_ = false;  // the last token opened a container
};

/// The same for each unit: blanks stay, and a quote ends a string unless there is a backslash before it.
std::wstring indented(std::wstring_view text, std::size_t most_levels) {
  outline out(4, most_levels);
  bool in_string = false;
  wchar_t before = L'\0';
  for (const wchar_t c : text) {
    if (c == L'"' && before != L'\\') in_string = !in_string;
    before = c;
    const bool closes = !in_string && (c == L'}' || c == L']');
    if (closes) {
      out.close();
      out.new_line();
    }
    out.text += c;
    if (in_string || closes) continue;
    if (c == L'{' || c == L'[') out.open();
    if (c == L'{' || c == L'[' || c == L',') out.new_line();
    if (c == L':') out.text += L' ';
  }
  return std::move(out.text);
}

}  // namespace

std::wstring texto::print_json(std::wstring text) { return json_printer(text).print(); }

std::wstring serializer::json::printJsonFormateado(std::wstring text) {
  return indented(text, std::numeric_limits<std::size_t>::max());
}

std::wstring serializer::json::printJsonFormateado(std::wstring text, unsigned long levels) {
  return indented(text, levels);
}

}  // namespace ruvo
