// SPDX-License-Identifier: BSL-1.0

// The check of standard JSON: its tokens, its structure, and what departs from them.

#include <ruvo/json_check.hpp>

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/ascii.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/places.hpp"

namespace ruvo::serializer {

namespace {

using rule = json_rule;

enum class token { end, scalar, string, open_object, open_array, close_object, close_array, colon, comma };

bool is_open(token t) noexcept { return t == token::open_object || t == token::open_array; }
bool is_close(token t) noexcept { return t == token::close_object || t == token::close_array; }

/// Blanks elsewhere, not in JSON: the other ones of Unicode, and the byte order mark.
bool is_foreign_blank(wchar_t c) noexcept {
  const auto unit = static_cast<char16_t>(c);
  return unit == 0x0B || unit == 0x0C || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
         (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F ||
         unit == 0x205F || unit == 0x3000 || unit == 0xFEFF;
}

bool ends_word(wchar_t c) noexcept {
  if (texto::is_alnum(c)) return false;
  return is_json_sign(c) || c == L'/' || is_blank(c) || is_foreign_blank(c);
}

/// The part of a text that a sentence shows.
std::wstring shown(std::wstring_view text) {
  constexpr std::size_t most = 24;
  std::wstring out(text.substr(0, most));
  for (wchar_t& c : out)
    if (texto::is_control(c)) c = static_cast<wchar_t>(0xFFFD);
  if (text.size() > most) {
    if (is_high_surrogate(out.back())) out.pop_back();
    out += L"…";
  }
  return L"«" + out + L"»";
}

std::wstring code_of(wchar_t c) {
  std::wstring out = L"U+";
  for (int shift = 12; shift >= 0; shift -= 4)
    out += L"0123456789ABCDEF"[static_cast<char16_t>(c) >> shift & 15];
  return out;
}

/// What is wrong with a word that begins like a number; null when it is one.
const wchar_t* number_fault(std::wstring_view word) noexcept {
  std::size_t at = 0;
  const auto more = [&] { return at < word.size(); };
  const auto digits = [&] {
    const std::size_t from = at;
    while (more() && texto::is_digit(word[at])) ++at;
    return at - from;
  };
  if (word[0] == L'+') return L"no lleva el signo +";
  if (word[0] == L'-') ++at;
  const std::size_t first = at, whole = digits();
  if (whole == 0) return L"falta la parte entera";
  if (whole > 1 && word[first] == L'0') return L"sobran ceros a la izquierda";
  if (more() && word[at] == L'.') {
    ++at;
    if (digits() == 0) return L"falta una cifra tras el punto";
  }
  if (more() && texto::to_lower(word[at]) == L'e') {
    ++at;
    if (more() && (word[at] == L'+' || word[at] == L'-')) ++at;
    if (digits() == 0) return L"falta el exponente";
  }
  return more() ? L"sobran caracteres" : nullptr;
}

// --- findings

struct raw_finding {
  rule departure;
  std::size_t offset;
  std::wstring what;
};

class findings {
 public:
  explicit findings(std::size_t most) noexcept : most_(most) {}

  bool full() const noexcept { return errors_ >= most_; }
  void add(rule departure, std::size_t offset, std::wstring what) {
    std::size_t& count = is_note(departure) ? notes_ : errors_;
    if (full() || count >= most_) return;
    found_.push_back({departure, offset, std::move(what)});
    ++count;
  }

  /// Sorted, with lines and columns.
  std::vector<json_finding> placed(std::wstring_view text) {
    std::stable_sort(found_.begin(), found_.end(),
                     [](const raw_finding& a, const raw_finding& b) { return a.offset < b.offset; });
    std::vector<json_finding> out;
    out.reserve(found_.size());
    place_walker places(text);
    for (raw_finding& finding : found_) {
      const text_place place = places.at(finding.offset);
      out.push_back(
          {finding.departure, finding.offset + 1, place.line, place.column, std::move(finding.what)});
    }
    return out;
  }

 private:
  std::size_t most_, errors_ = 0, notes_ = 0;
  std::vector<raw_finding> found_;
};

// --- tokens

/// Splits a text into tokens and reports what is wrong inside them.
class scanner {
 public:
  scanner(std::wstring_view text, findings& out) : text_(text), out_(out) {
    if (more() && static_cast<char16_t>(text_[0]) == 0xFEFF) {
      out_.add(rule::byte_order_mark, 0, L"El texto empieza por una marca de orden de bytes.");
      ++at_;
    }
  }

  /// The next token; where it begins is start() then, and where it ends is end().
  token next() {
    skip_blanks();
    start_ = at_;
    if (!more()) return token::end;
    switch (text_[at_++]) {
      case L'{':
        return token::open_object;
      case L'}':
        return token::close_object;
      case L'[':
        return token::open_array;
      case L']':
        return token::close_array;
      case L':':
        return token::colon;
      case L',':
        return token::comma;
      case L'"':
        string();
        return token::string;
      case L'\'':
        apostrophes();
        return token::string;
      default:
        word();
        return token::scalar;
    }
  }

  std::size_t start() const noexcept { return start_; }
  std::size_t end() const noexcept { return at_; }
  /// Whether the text ended inside a string or a comment.
  bool cut() const noexcept { return cut_; }

 private:
  bool more() const noexcept { return at_ < text_.size(); }
  bool next_is(wchar_t c) const noexcept { return at_ + 1 < text_.size() && text_[at_ + 1] == c; }

  void skip_blanks() {
    for (; more(); ++at_) {
      const wchar_t c = text_[at_];
      if (is_blank(c)) continue;
      if (is_foreign_blank(c)) {
        out_.add(rule::blank, at_, code_of(c) + L" no es un blanco de JSON.");
      } else if (c == L'/' && (next_is(L'/') || next_is(L'*'))) {
        comment();
        if (!more()) return;
      } else {
        return;
      }
    }
  }

  /// Stops at the comment's last character.
  void comment() {
    out_.add(rule::comment, at_, L"JSON no tiene comentarios.");
    const bool one_line = next_is(L'/');
    const std::size_t end = one_line ? text_.find_first_of(L"\r\n", at_) : text_.find(L"*/", at_ + 2);
    cut_ = !one_line && end == std::wstring_view::npos;
    at_ = end == std::wstring_view::npos ? text_.size() : one_line ? end : end + 1;
  }

  void word() {
    while (more() && !ends_word(text_[at_])) ++at_;
    const std::wstring_view it = text_.substr(start_, at_ - start_);
    if (texto::is_digit(it[0]) || it[0] == L'-' || it[0] == L'+' || it[0] == L'.') {
      if (const wchar_t* const fault = number_fault(it))
        out_.add(rule::number, start_, L"El número " + shown(it) + L" no es correcto: " + fault + L".");
    } else if (const json_word* const word = find_word(it[0]); !word || it != word->text) {
      out_.add(rule::literal, start_, shown(it) + L" no es un valor: sólo hay true, false y null.");
    }
  }

  /// Up to the next apostrophe of the line.
  void apostrophes() {
    out_.add(rule::quotes, start_, L"Los textos van entre comillas, no entre apóstrofos.");
    for (; more() && text_[at_] != L'\n' && text_[at_] != L'\r'; ++at_) {
      if (text_[at_] == L'\\' && at_ + 1 < text_.size()) {
        ++at_;
      } else if (text_[at_] == L'\'') {
        ++at_;
        return;
      }
    }
  }

  void string() {
    while (more()) {
      const wchar_t c = text_[at_];
      if (c == L'"') {
        ++at_;
        return;
      }
      if (c == L'\\') {
        escape();
      } else if (is_surrogate(c)) {
        surrogate();
      } else {
        if (static_cast<char16_t>(c) < 0x20)
          out_.add(rule::control_character, at_, code_of(c) + L" no puede estar en un texto sin escapar.");
        ++at_;
      }
    }
    cut_ = true;
    out_.add(rule::unclosed_string, start_, L"Falta la comilla que cierra este texto.");
  }

  void surrogate() {
    const bool pair =
        is_high_surrogate(text_[at_]) && at_ + 1 < text_.size() && is_low_surrogate(text_[at_ + 1]);
    if (!pair) lone(at_, text_[at_]);
    at_ += pair ? 2 : 1;
  }

  void lone(std::size_t offset, wchar_t unit) {
    out_.add(rule::lone_surrogate, offset, code_of(unit) + L" está sin su pareja.");
  }

  void escape() {
    const std::size_t from = at_++;
    if (!more()) return;  // the string is not closed, which is reported
    const wchar_t c = text_[at_];
    if (c == L'u') return unicode_escape(from);
    if (!meaning_of_escape(c))
      out_.add(rule::escape, from, shown(text_.substr(from, 2)) + L" no es un escape.");
    if (static_cast<char16_t>(c) >= 0x20 && !is_surrogate(c)) ++at_;
  }

  /// at_ is at the u.
  void unicode_escape(std::size_t from) {
    const int unit = hex_unit(text_.substr(++at_));
    if (unit < 0) {
      for (int n = 0; n < 4 && more() && texto::hex_value(text_[at_]) >= 0; ++n) ++at_;
      out_.add(rule::escape, from, L"A \\u siguen cuatro cifras hexadecimales.");
      return;
    }
    at_ += 4;
    const auto c = static_cast<wchar_t>(unit);
    if (!is_surrogate(c)) return;
    const bool escaped = text_.substr(at_, 2) == L"\\u";
    const int second = escaped && is_high_surrogate(c) ? hex_unit(text_.substr(at_ + 2)) : -1;
    if (second >= 0 && is_low_surrogate(static_cast<wchar_t>(second))) {
      at_ += 6;
    } else {
      lone(from, c);
    }
  }

  std::wstring_view text_;
  findings& out_;
  std::size_t at_ = 0, start_ = 0;
  bool cut_ = false;
};

// --- structure

class checker {
 public:
  checker(std::wstring_view text, std::size_t most, bool duplicates)
      : text_(text), out_(most), scanner_(text, out_), duplicates_(duplicates) {}

  std::vector<json_finding> check() {
    while (!ended_ && !out_.full()) {
      const token t = scanner_.next();
      if (t == token::end) {
        finish();
      } else {
        take(t);
      }
    }
    return out_.placed(text_);
  }

 private:
  /// What comes next: a value (the first ones of an array may be its bracket, too), a name, and so on.
  enum class want { value, first_element, element, first_name, name, colon, comma, nothing };

  struct level {
    bool object;
    std::size_t offset, names;  // where it opened; where its names begin in names_
  };
  struct name {
    std::wstring text;
    std::size_t offset;
  };

  bool in_object() const noexcept { return !levels_.empty() && levels_.back().object; }
  void add(rule departure, const wchar_t* what) { out_.add(departure, scanner_.start(), what); }

  void take(token t) {
    switch (want_) {
      case want::first_name:
      case want::name:
        return on_name(t);
      case want::colon:
        return on_colon(t);
      case want::comma:
        return on_comma(t);
      case want::nothing:
        ended_ = true;
        return add(rule::trailing_text, L"Tras el valor no puede haber nada más.");
      default:
        return on_value(t);
    }
  }

  void on_value(token t) {
    if (t == token::scalar || t == token::string) {
      want_ = levels_.empty() ? want::nothing : want::comma;
    } else if (is_open(t)) {
      open(t);
    } else if (t == token::colon || levels_.empty()) {
      add(rule::unexpected, L"Este signo no va aquí.");
    } else if (t == token::comma) {
      add(rule::missing_value, L"Falta un valor antes de la coma.");
      after_comma();
    } else {
      if (want_ == want::value) add(rule::missing_value, L"Falta un valor antes del cierre.");
      if (want_ == want::element) trailing_comma();
      close(t);
    }
  }

  void on_name(token t) {
    if (is_close(t)) {
      if (want_ == want::name) trailing_comma();
      return close(t);
    }
    if (t == token::comma) {
      add(rule::missing_value, L"Falta un miembro antes de la coma.");
      return after_comma();
    }
    if (t == token::string) {
      want_ = want::colon;
      return note_name();
    }
    add(rule::bad_name, L"El nombre de un miembro es un texto entre comillas.");
    if (is_open(t)) return open(t);
    want_ = t == token::colon ? want::value : want::colon;
  }

  void on_colon(token t) {
    if (t == token::colon) {
      want_ = want::value;
      return;
    }
    add(rule::missing_colon, L"Faltan los dos puntos tras el nombre.");
    if (t == token::comma) return after_comma();
    if (is_close(t)) return close(t);
    want_ = want::value;
    on_value(t);
  }

  void on_comma(token t) {
    if (t == token::comma) return after_comma();
    if (is_close(t)) return close(t);
    if (t == token::colon) {
      want_ = want::value;
      return add(rule::unexpected, L"Estos dos puntos no van aquí.");
    }
    add(rule::missing_comma, L"Falta una coma antes de este valor.");
    if (in_object() && t == token::string) return on_name(t);
    if (is_open(t)) open(t);
  }

  void after_comma() noexcept {
    comma_at_ = scanner_.start();
    want_ = in_object() ? want::name : want::element;
  }

  void trailing_comma() { out_.add(rule::trailing_comma, comma_at_, L"Sobra la coma tras el último valor."); }

  void open(token t) {
    const bool object = t == token::open_object;
    levels_.push_back({object, scanner_.start(), names_.size()});
    want_ = object ? want::first_name : want::first_element;
  }

  /// A bracket that closes the container around the innermost one closes both.
  void close(token t) {
    const bool object = t == token::close_object;
    if (levels_.back().object != object) {
      add(rule::wrong_bracket,
          object ? L"Aquí se cierra una lista, con }." : L"Aquí se cierra un objeto, con ].");
      if (levels_.size() > 1 && levels_[levels_.size() - 2].object == object) pop();
    }
    pop();
    want_ = levels_.empty() ? want::nothing : want::comma;
  }

  void pop() {
    note_duplicates(levels_.back().names);
    levels_.pop_back();
  }

  /// A text that ends inside a string is reported already.
  void finish() {
    ended_ = true;
    if (scanner_.cut()) return;
    if (!levels_.empty()) {
      const wchar_t* const bracket = in_object() ? L"el objeto" : L"la lista";
      const text_place place = place_walker(text_).at(levels_.back().offset);
      out_.add(rule::unclosed, text_.size(),
               std::wstring(L"El texto acaba sin cerrar ") + bracket + L" de la línea " +
                   std::to_wstring(place.line) + L", columna " + std::to_wstring(place.column) + L".");
    } else if (want_ != want::nothing) {
      out_.add(rule::no_value, text_.size(), L"El texto no tiene ningún valor.");
    }
  }

  void note_name() {
    if (!duplicates_) return;
    const std::size_t from = scanner_.start(), size = scanner_.end() - from;
    names_.push_back({decoded(text_.substr(from + 1, size < 2 ? 0 : size - 2)), from});
  }

  /// Of the names from `first` on, which are forgotten.
  void note_duplicates(std::size_t first) {
    const auto begin = names_.begin() + static_cast<std::ptrdiff_t>(first);
    std::sort(begin, names_.end(), [](const name& a, const name& b) {
      return std::tie(a.text, a.offset) < std::tie(b.text, b.offset);
    });
    for (auto at = begin; at != names_.end(); ++at) {
      if (at != begin && at->text == (at - 1)->text)
        out_.add(rule::duplicate_name, at->offset, L"El nombre " + shown(at->text) + L" está repetido.");
    }
    names_.erase(begin, names_.end());
  }

  std::wstring_view text_;
  findings out_;
  scanner scanner_;
  bool duplicates_;
  want want_ = want::value;
  bool ended_ = false;
  std::size_t comma_at_ = 0;  // the comma seen last
  std::vector<level> levels_;
  std::vector<name> names_;  // of the open objects, the outermost first
};

}  // namespace

std::vector<json_finding> check_json(std::wstring_view text, std::size_t most, bool duplicates) {
  return checker(text, most, duplicates).check();
}

}  // namespace ruvo::serializer
