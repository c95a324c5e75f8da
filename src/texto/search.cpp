// SPDX-License-Identifier: BSL-1.0

// Looking for literal texts, replacing them and splitting at them.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/find.hpp"
#include "base/unicode.hpp"

namespace ruvo::texto {

namespace {

bool is_quote(wchar_t c) { return c == L'"' || c == L'\''; }
bool ends_line(wchar_t c) { return c == L'\n' || c == L'\r' || c == L'\x2028' || c == L'\x2029'; }

std::size_t count(std::wstring_view text, std::wstring_view part) {
  if (part.size() == 1) return static_cast<std::size_t>(std::count(text.begin(), text.end(), part[0]));
  finder search(part);
  std::size_t count = 0;
  for (std::size_t at = 0; (at = search.find(text, at)) != finder::npos; at += part.size()) ++count;
  return count;
}

/// Copies to the left.
wchar_t* copy_down(const wchar_t* first, const wchar_t* last, wchar_t* to) {
  if (last - first >= 16) return std::copy(first, last, to);
  while (first != last) *to++ = *first++;
  return to;
}

/// Collects pieces on the stack and appends them together: most are too short for a call each.
class collector {
 public:
  static constexpr std::size_t at_once = 16;

  explicit collector(std::wstring& out) : out_(out) {}

  /// Puts `size` units; `readable` can be read.
  void put(const wchar_t* from, std::size_t size, std::size_t readable) {
    if (size > room - used_) flush();
    if (size > room) {
      out_.append(from, size);
      return;
    }
    if (size <= at_once && readable >= at_once) {
      std::copy_n(from, at_once, made_ + used_);  // a number that the compiler knows
    } else {
      std::copy_n(from, size, made_ + used_);
    }
    used_ += size;
  }

  void flush() {
    out_.append(made_, used_);
    used_ = 0;
  }

 private:
  static constexpr std::size_t room = 1024;

  std::wstring& out_;
  std::size_t used_ = 0;
  wchar_t made_[room + at_once];
};

/// For a `to` that is longer than `from`.
std::wstring replaced_by_longer(std::wstring_view text, std::wstring_view from, std::wstring_view to) {
  std::wstring out;
  out.reserve(text.size() + count(text, from) * (to.size() - from.size()));
  const std::wstring padded = std::wstring(to).append(collector::at_once, L'\0');
  collector pieces(out);
  finder search(from);
  std::size_t read = 0;
  for (std::size_t at; (at = search.find(text, read)) != finder::npos; read = at + from.size()) {
    pieces.put(text.data() + read, at - read, text.size() - read);
    pieces.put(padded.data(), to.size(), padded.size());
  }
  pieces.put(text.data() + read, text.size() - read, text.size() - read);
  pieces.flush();
  return out;
}

/// For a `to` that is not longer: in one pass, in which the written end never overtakes the read one.
void replace_by_shorter(std::wstring& text, std::wstring_view from, std::wstring_view to) {
  finder search(from);
  wchar_t* const units = text.data();
  wchar_t* written = units;
  std::size_t read = 0;
  for (std::size_t at; (at = search.find(text, read)) != finder::npos; read = at + from.size()) {
    written = written == units + read ? units + at : copy_down(units + read, units + at, written);
    written = copy_down(to.data(), to.data() + to.size(), written);
  }
  text.erase(static_cast<std::size_t>(written - units), static_cast<std::size_t>(units + read - written));
}

bool means_something_in_patterns(wchar_t c) {
  return std::wstring_view(L"-[]{}()*+?.,^$|#").find(c) != std::wstring_view::npos || is_word_blank(c);
}

}  // namespace

bool starts_with(wide_view text, wide_view part) { return text.starts_with(part); }
bool starts_with(const std::wstring& text, const std::wstring& part) {
  return starts_with(std::wstring_view(text), std::wstring_view(part));
}
bool ends_with(wide_view text, wide_view part) { return text.ends_with(part); }
bool ends_with(const std::wstring& text, const std::wstring& part) {
  return ends_with(std::wstring_view(text), std::wstring_view(part));
}
bool contains(wide_view text, wide_view part) {
  return part.empty() || finder(part).find(text, 0) != finder::npos;
}
bool contains(const std::wstring& text, const std::wstring& part) {
  return contains(std::wstring_view(text), std::wstring_view(part));
}

std::wstring content(std::wstring text, bool* found) {
  if (found) *found = true;
  auto open = text.end();
  for (auto at = text.begin(); at != text.end(); ++at) {
    if (is_quote(*at)) {
      if (open != text.end()) return std::wstring(open + 1, at);
      open = at;
    } else if (ends_line(*at)) {
      open = text.end();
    }
  }
  if (found) *found = false;
  return text;
}

std::wstring& replace(std::wstring& text, wchar_t from, wchar_t to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

std::wstring& safe_replace(std::wstring& text, std::wstring from, std::wstring to) {
  return std_replace(text, std::move(from), std::move(to), true);
}

std::wstring& safe_replace(std::wstring& text, wchar_t from, wchar_t to) { return replace(text, from, to); }

std::wstring& std_replace(std::wstring& text, std::wstring from, std::wstring to, bool all) {
  if (from.empty()) return text;
  const std::size_t found = finder(from).find(text, 0);
  if (found == finder::npos) return text;
  if (!all) return text.replace(found, from.size(), to);
  if (to.size() > from.size()) {
    text = replaced_by_longer(text, from, to);
  } else {
    replace_by_shorter(text, from, to);
  }
  return text;
}

std::wstring escape_regex_pattern(wide_view text) {
  std::wstring escaped;
  escaped.reserve(text.size() + text.size() / 8);
  for (const wchar_t c : text) {
    if (means_something_in_patterns(c)) escaped += L'\\';
    escaped += c;
  }
  return escaped;
}
std::wstring escape_regex_pattern(const std::wstring& text) {
  return escape_regex_pattern(std::wstring_view(text));
}

std::vector<std::wstring> split(wide_view text, wide_view separator) {
  std::vector<std::wstring> pieces;
  std::size_t from = 0;
  if (!separator.empty()) {
    pieces.reserve(count(text, separator) + 1);
    finder search(separator);
    for (std::size_t found; (found = search.find(text, from)) != finder::npos;
         from = found + separator.size())
      pieces.emplace_back(text.substr(from, found - from));
  }
  if (from < text.size() || pieces.empty()) pieces.emplace_back(text.substr(from));
  return pieces;
}
std::vector<std::wstring> split(const std::wstring& text, const std::wstring& separator) {
  return split(std::wstring_view(text), std::wstring_view(separator));
}

void split_on(std::vector<std::wstring>& out, wide_view text, wide_view separator) {
  std::vector<std::wstring> pieces = split(text, separator);  // before `out` moves: `text` may be in it
  out.insert(out.end(), std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
}
void split_on(std::vector<std::wstring>& out, const std::wstring& text, const std::wstring& separator) {
  split_on(out, std::wstring_view(text), std::wstring_view(separator));
}

}  // namespace ruvo::texto
