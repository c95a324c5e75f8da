// SPDX-License-Identifier: BSL-1.0

// Parameters of fields: writing them, and one pass over those of a field, whose pieces are then put together.

#include "base/wire/parameters.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/charset.hpp"
#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"
#include "base/wire/tokens.hpp"

namespace ruvo::wire {

namespace {

constexpr std::size_t longest_piece = 76;
constexpr std::wstring_view utf_8_value = L"UTF-8''";
constexpr std::wstring_view unnamed_charset = L"utf-8";

// --- writing

bool is_ascii(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return static_cast<char16_t>(c) < 128; });
}

bool is_attribute(std::wstring_view name) noexcept {
  return !name.empty() &&
         std::all_of(name.begin(), name.end(), [](wchar_t c) { return attribute_set.has(c); });
}

/// A piece for each beginning of the value that fits, of at least one character.
void add_segments(std::vector<std::wstring>& pieces, std::wstring_view name, std::wstring_view value) {
  std::wstring piece;
  std::size_t count = 0;
  const auto begin = [&] {
    piece.assign(name).append(L"*").append(std::to_wstring(count)).append(L"*=");
    if (count++ == 0) piece += utf_8_value;
  };
  begin();
  std::size_t bare = piece.size();
  for (std::wstring encoded; !value.empty(); encoded.clear()) {
    const bool pair =
        value.size() > 1 && texto::is_high_surrogate(value[0]) && texto::is_low_surrogate(value[1]);
    append_percent(encoded, value.substr(0, pair ? 2 : 1), attribute_set);
    value.remove_prefix(pair ? 2 : 1);
    if (piece.size() > bare && piece.size() + encoded.size() > longest_piece) {
      pieces.push_back(piece);
      begin();
      bare = piece.size();
    }
    piece += encoded;
  }
  pieces.push_back(std::move(piece));
}

// --- reading

/// What stands between two ";".
struct piece {
  static constexpr int whole = -1;

  std::wstring name;  // as it is spelled, without what follows its "*"
  std::wstring folded;
  int segment = whole;
  bool is_extended = false;
  std::wstring raw;    // without quotes
  std::size_t at = 0;  // where it stands
};

/// Takes "*", "*1" or "*1*" off the end of the name. False for a number that is none.
bool split_name(piece& made, std::wstring_view name) {
  const std::size_t star = name.find(L'*');
  made.name = name.substr(0, star);
  made.folded = made.name;
  std::transform(made.folded.begin(), made.folded.end(), made.folded.begin(), texto::to_lower);
  if (star == name.npos) return true;
  std::wstring_view mark = name.substr(star + 1);
  made.is_extended = mark.empty() || mark.back() == L'*';
  if (mark.empty()) return true;
  if (made.is_extended) mark.remove_suffix(1);
  constexpr std::size_t most_digits = 6;
  if (mark.empty() || mark.size() > most_digits || (mark.size() > 1 && mark.front() == L'0')) return false;
  if (!std::all_of(mark.begin(), mark.end(), texto::is_digit)) return false;
  made.segment = 0;
  for (const wchar_t digit : mark) made.segment = made.segment * 10 + (digit - L'0');
  return true;
}

enum class quality : unsigned char { good, doubtful, bad };

/// Appends what the bytes say. Doubtful is what has U+FFFD in it.
quality append_decoded(std::wstring& out, std::string_view bytes, std::wstring_view charset) {
  std::wstring text;
  const texto::charset_result result = texto::decode_charset(text, bytes, charset);
  out += text;
  if (result == texto::charset_result::unknown) return quality::bad;
  return result == texto::charset_result::good ? quality::good : quality::doubtful;
}

/// Takes the encoding off the beginning of an extended value, and the language. One that is not named, as RFC
/// 2231 has it, is doubtful.
quality take_charset(std::wstring_view& text, std::wstring_view& charset) {
  const std::size_t first = text.find(L'\'');
  const std::size_t second = first == text.npos ? first : text.find(L'\'', first + 1);
  if (second == text.npos) return quality::bad;
  if (first > 0) charset = text.substr(0, first);
  text.remove_prefix(second + 1);
  return first > 0 ? quality::good : quality::doubtful;
}

quality decode_extended(std::wstring& out, std::wstring_view text) {
  out.clear();
  std::wstring_view charset = unnamed_charset;
  const quality named = take_charset(text, charset);
  if (named == quality::bad) return named;
  std::string bytes;
  const bool whole = percent_bytes(bytes, text).good();
  return std::max({append_decoded(out, bytes, charset), named, whole ? quality::good : quality::doubtful});
}

/// Puts segments together that come in their order. A character may be divided between extended ones.
class segment_joiner {
 public:
  quality add(const piece& segment) {
    if (!segment.is_extended) {
      flush();
      text_ += segment.raw;
      return worst_;
    }
    std::wstring_view raw = segment.raw;
    if (segment.segment == 0) named_ = take_charset(raw, charset_);
    const bool good = percent_bytes(bytes_, raw).good() && named_ == quality::good;
    if (!good) worst_ = std::max(worst_, quality::doubtful);
    return worst_;
  }
  quality end(std::wstring& out) {
    flush();
    out = std::move(text_);
    return worst_;
  }

 private:
  void flush() {
    if (!bytes_.empty()) worst_ = std::max(worst_, append_decoded(text_, bytes_, charset_));
    bytes_.clear();
  }

  std::wstring text_;
  std::string bytes_;
  std::wstring_view charset_ = unnamed_charset;
  quality named_ = quality::bad;
  quality worst_ = quality::good;
};

class parameter_reader {
 public:
  parameter_reader(std::wstring_view text, std::size_t at, bool strict) noexcept
      : text_(text), at_(at), strict_(strict) {}

  bool read(parameters& out) { return scan() && put_together(out); }
  std::size_t at() const noexcept { return at_; }

 private:
  bool fault(std::size_t at) noexcept {
    at_ = at;
    return false;
  }

  // --- the pieces

  void skip_blanks() noexcept {
    while (at_ < text_.size() && (text_[at_] == L' ' || text_[at_] == L'\t')) ++at_;
  }
  bool at_end() const noexcept { return at_ >= text_.size(); }

  bool scan() {
    for (;;) {
      skip_blanks();
      if (at_end() || (strict_ && text_[at_] != L';')) return true;
      if (text_[at_] == L';') ++at_;
      skip_blanks();
      if (at_end() || text_[at_] == L';') continue;
      if (strict_ ? !is_parameter() : !is_any_parameter()) return false;
    }
  }

  bool is_parameter() {
    const std::size_t begin = at_;
    while (!at_end() && token_set.has(text_[at_])) ++at_;
    if (at_end() || text_[at_] != L'=') return at_ == begin ? true : fault(at_);  // an empty one before a ","
    piece made;
    made.at = begin;
    if (!split_name(made, text_.substr(begin, at_ - begin)) || made.name.empty()) return fault(begin);
    ++at_;
    if (!at_end() && text_[at_] == L'"') {
      if (!read_quoted(made.raw, text_, at_)) return false;
      if (made.is_extended) return fault(begin);
    } else {
      const std::size_t value = at_;
      while (!at_end() && token_set.has(text_[at_])) ++at_;
      if (at_ == value) return false;
      made.raw = text_.substr(value, at_ - value);
    }
    pieces_.push_back(std::move(made));
    return true;
  }

  /// As mail has them; always true.
  bool is_any_parameter() {
    const std::size_t begin = at_;
    const std::size_t stop = std::min(text_.find(L';', at_), text_.size());
    const std::size_t equals = text_.substr(0, stop).find(L'=', at_);
    at_ = stop;
    if (equals == text_.npos) return true;
    piece made;
    made.at = begin;
    const std::wstring_view name = trimmed_value(text_.substr(begin, equals - begin));
    at_ = equals + 1;
    skip_blanks();
    if (!at_end() && text_[at_] == L'"') {
      read_quoted(made.raw, text_, at_);
      at_ = std::min(text_.find(L';', at_), text_.size());
    } else {
      const std::size_t value = std::min(at_, stop);
      at_ = stop;
      made.raw = without_comment(trimmed_value(text_.substr(value, stop - value)));
    }
    if (is_token(name) && split_name(made, name) && !made.name.empty()) pieces_.push_back(std::move(made));
    return true;
  }

  /// A comment stands behind a token.
  static std::wstring_view without_comment(std::wstring_view value) noexcept {
    const std::size_t blank = value.find_first_of(L" \t(");
    if (blank == value.npos || value.back() != L')') return value;
    const std::wstring_view behind = trimmed_value(value.substr(blank));
    return behind.starts_with(L'(') && is_token(value.substr(0, blank)) ? value.substr(0, blank) : value;
  }

  // --- and what they are together

  bool put_together(parameters& out) {
    std::stable_sort(pieces_.begin(), pieces_.end(), [](const piece& a, const piece& b) {
      return std::pair(std::wstring_view(a.folded), a.segment) <
             std::pair(std::wstring_view(b.folded), b.segment);
    });
    std::vector<std::pair<std::size_t, parameter>> found;  // with the place that orders them
    for (auto from = pieces_.begin(); from != pieces_.end();) {
      const auto to =
          std::find_if(from, pieces_.end(), [&](const piece& p) { return p.folded != from->folded; });
      const auto first =
          std::min_element(from, to, [](const piece& a, const piece& b) { return a.at < b.at; });
      std::optional<std::wstring> value;
      if (!value_of(value, {&*from, static_cast<std::size_t>(to - from)})) return false;
      if (value) found.emplace_back(first->at, parameter{first->name, *std::move(value)});
      from = to;
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [at, made] : found) out.push_back(std::move(made));
    return true;
  }

  /// The pieces of one name, whole ones before the segments.
  struct group {
    const piece* first;
    std::size_t size;
    const piece* begin() const noexcept { return first; }
    const piece* end() const noexcept { return first + size; }
  };

  /// The first value of each quality.
  struct choice {
    bool add(quality how, const std::wstring& text) {
      std::optional<std::wstring>& place = how == quality::good ? good : doubtful;
      if (how != quality::bad && !place) place = text;
      return how == quality::good;
    }

    std::optional<std::wstring> good, doubtful;
  };

  /// Lenient reading may find none.
  bool value_of(std::optional<std::wstring>& out, group all) {
    const piece *plain = nullptr, *extended = nullptr;
    const piece* segments = all.begin();
    for (; segments != all.end() && segments->segment == piece::whole; ++segments) {
      const piece*& place = segments->is_extended ? extended : plain;
      if (!place)
        place = segments;
      else if (strict_)
        return fault(segments->at);
    }
    choice found;
    std::wstring text;
    if (extended && !found.add(decode_extended(text, extended->raw), text) && strict_)
      return fault(extended->at);
    const piece* wrong = segments;
    if (segments != all.end() && !found.add(join(text, segments, all.end(), wrong), text) && strict_)
      return fault(wrong->at);
    if (found.good)
      out = std::move(found.good);
    else if (plain)
      out = plain->raw;
    else if (found.doubtful)
      out = std::move(found.doubtful);
    else if (extended)
      out = extended->raw;
    return !out || is_value(*out, *all.begin());
  }

  /// Joins the segments up to one that is missing. `wrong` is the first that is not as it should be.
  quality join(std::wstring& out, const piece* from, const piece* to, const piece*& wrong) const {
    segment_joiner joiner;
    int next = 0;
    for (; from != to; ++from) {
      if (from->segment == next - 1 && !strict_) continue;  // a second of its number
      wrong = from;
      if (from->segment != next) break;
      if (joiner.add(*from) != quality::good && strict_) return quality::doubtful;
      ++next;
    }
    if (next == 0 || (strict_ && from != to)) return quality::bad;
    return joiner.end(out);
  }

  bool is_value(std::wstring& value, const piece& of) {
    if (is_field_value(value)) return true;
    if (strict_) return fault(of.at);
    std::replace_if(
        value.begin(), value.end(), [](wchar_t c) { return !is_field_unit(c); }, L' ');
    return true;
  }

  std::wstring_view text_;
  std::size_t at_;
  bool strict_;
  std::vector<piece> pieces_;
};

}  // namespace

const parameter* find_parameter(const parameters& all, std::wstring_view name) noexcept {
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const parameter& p) { return is_same_name(p.name, name); });
  return found == all.end() ? nullptr : &*found;
}

bool add_parameter(std::vector<std::wstring>& pieces, std::wstring_view name, std::wstring_view value,
                   parameter_form form) {
  if (!is_attribute(name) || !is_field_value(value)) return false;
  const auto fits = [&](const std::wstring& made) {
    return form == parameter_form::http || made.size() <= longest_piece;
  };
  // Readers of mail decode what looks like an encoded word, and take a "'", "*" or "%" outside of quotation
  // marks for parts of an extended value.
  const bool is_mail = form == parameter_form::mail, is_word = is_mail && value.find(L"=?") != value.npos;
  std::wstring made;
  if (is_ascii(value) && !is_word) {
    made.assign(name).append(L"=");
    const bool is_odd = is_mail && value.find_first_of(L"'*%") != value.npos;
    is_odd ? append_quoted(made, value) : append_word(made, value);
  }
  if (made.empty() || !fits(made)) {
    made.assign(name).append(L"*=").append(utf_8_value);
    append_percent(made, value, attribute_set);
  }
  if (fits(made))
    pieces.push_back(std::move(made));
  else
    add_segments(pieces, name, value);
  return true;
}

bool append_parameter(std::wstring& out, std::wstring_view name, std::wstring_view value,
                      parameter_form form) {
  std::vector<std::wstring> pieces;
  if (!add_parameter(pieces, name, value, form)) return false;
  for (const std::wstring& piece : pieces) out.append(L"; ").append(piece);
  return true;
}

bool read_parameters(parameters& out, std::wstring_view text, std::size_t& at, parameter_reading reading) {
  const bool strict = reading == parameter_reading::strict;
  std::wstring clean;
  if (!strict && !is_field_value(text)) {
    clean = text;
    std::replace_if(
        clean.begin(), clean.end(), [](wchar_t c) { return !is_field_unit(c); }, L' ');
    text = clean;
  }
  parameter_reader reader(text, at, strict);
  parameters made;
  const bool good = reader.read(made);
  at = reader.at();
  if (good) std::move(made.begin(), made.end(), std::back_inserter(out));
  return good;
}

bool read_extended_value(std::wstring& out, std::wstring_view text) {
  std::wstring made;
  if (decode_extended(made, text) != quality::good || !is_field_value(made)) return false;
  out = std::move(made);
  return true;
}

}  // namespace ruvo::wire
