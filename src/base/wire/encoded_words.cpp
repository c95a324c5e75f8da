// SPDX-License-Identifier: BSL-1.0

// Encoded words and folded fields.

#include "base/wire/encoded_words.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/charset.hpp"
#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/tokens.hpp"

namespace ruvo::wire {

namespace {

constexpr std::string_view word_begin = "=?UTF-8?Q?", word_end = "?=";
constexpr std::size_t frame = word_begin.size() + word_end.size();
constexpr std::size_t longest_character = 12;  // encoded
/// RFC 2047, 5 (3): what stays in a phrase; a blank becomes "_".
constexpr ascii_set phrase_set = alphanumeric.with("!*+-/");

// --- writing

/// How many bytes the character has that begins well-formed UTF-8.
std::size_t utf_8_character(std::string_view text) noexcept {
  const auto rest = std::find_if(text.begin() + 1, text.end(),
                                 [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
  return static_cast<std::size_t>(rest - text.begin());
}

std::size_t q_size(std::string_view bytes) noexcept {
  const auto stay =
      std::count_if(bytes.begin(), bytes.end(), [](char c) { return c == ' ' || phrase_set.has(c); });
  return 3 * bytes.size() - 2 * static_cast<std::size_t>(stay);
}

void append_q(std::string& out, std::string_view bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ') {
      out.push_back('_');
    } else if (phrase_set.has(c)) {
      out.push_back(c);
    } else {
      out.append({'=', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]});
    }
  }
}

void append_b(std::string& out, std::string_view bytes) {
  const std::size_t before = out.size();
  out.resize(before + texto::base64_size(bytes.size()));
  texto::base64_encode_to(out.data() + before, reinterpret_cast<const unsigned char*>(bytes.data()),
                          bytes.size(), false);
}

/// Takes from the text the characters that fit into a word of so many characters.
std::string_view take_word(std::string_view& text, std::size_t room, bool q) {
  std::size_t end = 0;
  for (std::size_t size = 0; end < text.size();) {
    const std::string_view next = text.substr(end, utf_8_character(text.substr(end)));
    size = q ? size + q_size(next) : texto::base64_size(end + next.size());
    if (frame + size > room) break;
    end += next.size();
  }
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(end);
  return word;
}

// --- reading

/// The parts of an encoded word, and where it ends.
struct encoded_word {
  std::wstring_view charset, content;
  bool is_q;
  std::size_t end;
};

bool is_printable(wchar_t c) noexcept { return c >= L' ' && c <= L'~'; }

/// Finds encoded words, each character being looked at a few times at most.
class word_finder {
 public:
  explicit word_finder(std::wstring_view text) noexcept : text_(text) {}

  /// Whether a whole word begins at `at`, where "=?" stands.
  bool read(std::size_t at, encoded_word& out) noexcept {
    constexpr std::size_t longest_name = 64;
    const std::size_t name = at + 2;
    const std::size_t mark = text_.substr(0, name + longest_name).find(L'?', name);
    if (mark == text_.npos || mark + 2 >= text_.size() || text_[mark + 2] != L'?') return false;
    const wchar_t kind = texto::to_lower(text_[mark + 1]);
    if (kind != L'q' && kind != L'b') return false;
    const std::size_t begin = mark + 3;
    if (end_ < begin) end_ = std::min(text_.find(L"?=", begin), text_.size());
    if (end_ == text_.size()) return false;
    if (odd_ < begin) {
      const auto from = text_.begin() + static_cast<std::ptrdiff_t>(begin);
      odd_ = static_cast<std::size_t>(std::find_if_not(from, text_.end(), is_printable) - text_.begin());
    }
    // A language may stand behind the name (RFC 2231, 5).
    const std::wstring_view charset = text_.substr(name, mark - name);
    out = {charset.substr(0, charset.find(L'*')), text_.substr(begin, end_ - begin), kind == L'q', end_ + 2};
    return is_token(out.charset) && odd_ >= end_;
  }

 private:
  std::wstring_view text_;
  // Behind the beginning of the last word that was asked for:
  std::size_t end_ = 0;  // where "?=" stands first
  std::size_t odd_ = 0;  // and a character that no word holds
};

std::string bytes_of(const encoded_word& word) {
  std::string bytes;
  if (!word.is_q) {
    const std::string text = texto::to_utf_8(word.content);
    bytes.resize(texto::base64_room(text.size()));
    bytes.resize(static_cast<std::size_t>(texto::base64_decode_to(bytes.data(), text) - bytes.data()));
    return bytes;
  }
  const std::string text = texto::to_utf_8(word.content);
  const auto digit = [&text](std::size_t at) {
    return at < text.size() ? texto::hex_value(texto::unit_of(text[at])) : -1;
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '=' && digit(at + 1) >= 0 && digit(at + 2) >= 0) {
      bytes.push_back(static_cast<char>(digit(at + 1) << 4 | digit(at + 2)));
      at += 2;
    } else {
      bytes.push_back(text[at] == '_' ? ' ' : text[at]);
    }
  }
  return bytes;
}

/// Collects the text. The bytes of words wait until it is known that no more of their encoding follow.
class word_decoder {
 public:
  void put_text(std::wstring_view text) {
    const std::wstring_view blanks = L" \t\r\n";
    if (has_word_ && text.find_first_not_of(blanks) == text.npos) {
      between_ = text;
      return;
    }
    release();
    out_.append(text);
  }
  /// False if the encoding is unknown; nothing is taken then.
  bool put(const encoded_word& word) {
    std::wstring unused;
    if (texto::decode_charset(unused, {}, word.charset) == texto::charset_result::unknown) return false;
    between_ = {};
    if (!is_same_name(charset_, word.charset)) release();
    charset_ = word.charset;
    bytes_ += bytes_of(word);
    has_word_ = true;
    return true;
  }
  std::wstring finish() {
    release();
    return std::move(out_);
  }

 private:
  void release() {
    std::wstring text;
    if (!bytes_.empty()) texto::decode_charset(text, bytes_, charset_);
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return !is_field_unit(c); }, L' ');
    out_.append(text).append(between_);
    bytes_.clear();
    between_ = charset_ = {};
    has_word_ = false;
  }

  std::wstring out_;
  std::string bytes_;          // of the words so far, in one encoding
  std::wstring_view charset_;  // its name
  std::wstring_view between_;  // blanks behind the last word, which another word drops
  bool has_word_ = false;
};

}  // namespace

bool is_ascii_text(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return static_cast<char16_t>(c) < 0x80; });
}

bool is_plain_text(std::wstring_view text) noexcept {
  constexpr std::size_t longest_run = 900;
  if (text.empty()) return true;
  if (text.front() == L' ' || text.back() == L' ' || text.find(L"=?") != text.npos) return false;
  std::size_t run = 0;
  for (const wchar_t c : text) {
    if (c < L' ' || c > L'~') return false;
    run = c == L' ' ? 0 : run + 1;
    if (run > longest_run) return false;
  }
  return true;
}

void append_encoded_words(std::string& out, std::wstring_view text, std::size_t first, std::size_t most) {
  const std::string bytes = texto::to_utf_8(text);
  const bool q = q_size(bytes) <= texto::base64_size(bytes.size());
  std::size_t room = first < frame + longest_character ? most : std::min(first, most);
  for (std::string_view rest = bytes; !rest.empty(); room = most) {
    if (rest.size() < bytes.size()) out.push_back(' ');
    const std::string_view word = take_word(rest, room, q);
    out.append(q ? word_begin : std::string_view("=?UTF-8?B?"));
    q ? append_q(out, word) : append_b(out, word);
    out.append(word_end);
  }
}

std::wstring decode_words(std::wstring_view text) {
  word_finder words(text);
  word_decoder out;
  encoded_word word{};
  std::size_t from = 0;  // what is behind has not been passed on
  for (std::size_t at = text.find(L"=?"); at != text.npos; at = text.find(L"=?", at)) {
    if (!words.read(at, word)) {
      at += 2;
      continue;
    }
    out.put_text(text.substr(from, at - from));
    if (!out.put(word)) out.put_text(text.substr(at, word.end - at));
    from = at = word.end;
  }
  out.put_text(text.substr(from));
  return out.finish();
}

bool append_folded(std::string& out, std::string_view name, std::string_view value) {
  constexpr std::size_t longest_name = 50;  // with a first word beside it
  const std::size_t begin = out.size();
  out.append(name).append(":");
  std::size_t column = name.size() + 1;
  bool good = column <= longest_line;
  for (std::size_t at = 0; at < value.size();) {
    // Blanks, and the word behind them.
    const std::size_t word = std::min(value.find_first_not_of(" \t", at), value.size());
    const std::size_t end = std::min(value.find_first_of(" \t", word), value.size());
    const bool is_first = at == 0;
    const std::size_t size = end - at + (is_first ? 1 : 0);
    if ((!is_first || column > longest_name) && column + size > wanted_line && word < value.size()) {
      out.append("\r\n");
      column = 0;
    }
    if (is_first) out.push_back(' ');
    out.append(value.substr(at, end - at));
    column += size;
    good = good && column <= longest_line;
    at = end;
  }
  out.append("\r\n");
  if (!good) out.resize(begin);
  return good;
}

}  // namespace ruvo::wire
