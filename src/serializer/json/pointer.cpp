// SPDX-License-Identifier: BSL-1.0

// JSON Pointer: its texts, and what it leads to.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/json_pointer.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "serializer/json/spelling.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::kind;

using tokens_view = std::span<const std::wstring>;

// --- the text

namespace {

/// Thrown for a text that is no pointer.
struct misplaced {
  std::size_t offset;
};

/// The units of a fragment without its percent signs, and where each of them stood.
struct fragment {
  std::wstring units;
  std::vector<std::size_t> offsets;

  explicit fragment(std::wstring_view text) {
    for (std::size_t at = 1; at < text.size();) {
      if (text[at] == L'%') {
        take_bytes(text, at);
      } else {
        take(text.substr(at, 1), at);
        ++at;
      }
    }
  }

 private:
  void take(std::wstring_view more, std::size_t offset) {
    units += more;
    offsets.resize(units.size(), offset);
  }
  void take_bytes(std::wstring_view text, std::size_t& at) {
    const std::size_t first = at;
    std::string bytes;
    for (; at < text.size() && text[at] == L'%'; at += 3) {
      const int high = at + 2 < text.size() ? texto::hex_value(text[at + 1]) : -1;
      const int low = high < 0 ? -1 : texto::hex_value(text[at + 2]);
      if (low < 0) throw misplaced{at};
      bytes += static_cast<char>(high * 16 + low);
    }
    const std::wstring decoded = texto::to_utf_16(bytes);
    if (texto::to_utf_8(decoded) != bytes) throw misplaced{first};
    take(decoded, first);
  }
};

/// Throws misplaced with the offset in this text.
std::vector<std::wstring> tokens_of(std::wstring_view text) {
  std::vector<std::wstring> tokens;
  if (!text.empty() && text[0] != L'/') throw misplaced{0};
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == L'/') {
      tokens.emplace_back();
    } else if (text[at] != L'~') {
      tokens.back() += text[at];
    } else {
      const wchar_t next = at + 1 < text.size() ? text[at + 1] : L'\0';
      if (next != L'0' && next != L'1') throw misplaced{at};
      tokens.back() += next == L'0' ? L'~' : L'/';
      ++at;
    }
  }
  return tokens;
}

std::vector<std::wstring> tokens_of_any(std::wstring_view text) {
  if (text.empty() || text[0] != L'#') return tokens_of(text);
  const fragment decoded(text);
  try {
    return tokens_of(decoded.units);
  } catch (const misplaced& where) {
    throw misplaced{decoded.offsets[where.offset]};
  }
}

std::vector<std::wstring> tokens_or_throw(std::wstring_view text) {
  try {
    return tokens_of_any(text);
  } catch (const misplaced& where) {
    throw exc::jsonBadPointer(where.offset + 1);
  }
}

/// Whether the byte may stand in the fragment of a URI as it is.
bool is_in_fragment(unsigned char byte) {
  return texto::is_alnum(byte) ||
         std::string_view("-._~!$&'()*+,;=:@/?").find(static_cast<char>(byte)) != std::string_view::npos;
}

}  // namespace

json_pointer::json_pointer() noexcept = default;
json_pointer::json_pointer(const json_pointer& other) = default;
json_pointer::json_pointer(json_pointer&& other) noexcept = default;
json_pointer& json_pointer::operator=(const json_pointer& other) = default;
json_pointer& json_pointer::operator=(json_pointer&& other) noexcept = default;
json_pointer::~json_pointer() = default;

json_pointer::json_pointer(const wchar_t* text) : tokens_(tokens_or_throw(texto::view_of(text))) {}
json_pointer::json_pointer(const std::wstring& text) : tokens_(tokens_or_throw(text)) {}
json_pointer::json_pointer(const char* text) : json_pointer(std::string(text ? text : "")) {}
json_pointer::json_pointer(const std::string& text) : json_pointer(texto::to_utf_16(text)) {}
json_pointer::json_pointer(std::vector<std::wstring> tokens) noexcept : tokens_(std::move(tokens)) {}

json_pointer& json_pointer::operator/=(std::wstring_view token) {
  tokens_.emplace_back(token);
  return *this;
}

std::wstring json_pointer::to_string() const {
  std::wstring out;
  for (const std::wstring& token : tokens_) append_token(out, token);
  return out;
}

std::wstring json_pointer::to_fragment() const {
  std::wstring out = L"#";
  for (const char c : texto::to_utf_8(to_string())) {
    const auto byte = static_cast<unsigned char>(c);
    if (is_in_fragment(byte)) {
      out += static_cast<wchar_t>(byte);
    } else {
      out += {L'%', L"0123456789ABCDEF"[byte >> 4], L"0123456789ABCDEF"[byte & 15]};
    }
  }
  return out;
}

bool read_json_pointer(json_pointer& out, std::wstring_view text, exception* err) {
  try {
    out = json_pointer(tokens_of_any(text));
    return false;
  } catch (const misplaced& where) {
    exc::jsonBadPointer(where.offset + 1).copy_on(err);
    return true;
  }
}

// --- what it leads to

namespace {

/// The position that a token names in a list of so many elements, or of one more with `-`; nothing for what
/// is no position up to that.
std::optional<std::size_t> position_in(std::size_t size, std::wstring_view token) {
  if (token == L"-") return size;
  if (token.empty() || token.size() > 19 || (token[0] == L'0' && token.size() > 1)) return std::nullopt;
  std::size_t position = 0;
  for (const wchar_t c : token) {
    if (!texto::is_digit(c)) return std::nullopt;
    position = position * 10 + static_cast<std::size_t>(c - L'0');
  }
  if (position > size) return std::nullopt;
  return position;
}

xvar* find_in(const bundle& in, std::wstring_view token) {
  bundle::entry* const found = find_spelled(detail::bundle_access::store(in), token);
  return found ? &found->second : nullptr;
}
xvar* find_in(const list& in, std::wstring_view token) {
  const auto position = position_in(in.size(), token);
  return position && *position < in.size() ? const_cast<xvar*>(in.data() + *position) : nullptr;
}
/// Of a cell that is no container, null.
xvar* find_in(const xvar& in, std::wstring_view token) {
  if (!cell::is_container(in)) return nullptr;
  return cell::kind_of(in) == kind::list ? find_in(cell::as_list(in), token)
                                         : find_in(cell::as_bundle(in), token);
}

/// The value to which the first tokens lead, as many as lead anywhere; they are taken off. Null if the first
/// does not.
template <class Container>
xvar* descend(const Container& in, tokens_view& tokens) {
  xvar* at = nullptr;
  while (!tokens.empty()) {
    xvar* const next = at ? find_in(*at, tokens.front()) : find_in(in, tokens.front());
    if (!next) break;
    at = next;
    tokens = tokens.subspan(1);
  }
  return at;
}

template <class Container>
const xvar* find_at(const Container& in, const json_pointer& at) {
  tokens_view tokens = at.tokens();
  const xvar* const found = descend(in, tokens);
  return tokens.empty() ? found : nullptr;
}

// --- writing

/// Thrown where a pointer can't be followed.
struct no_place {
  std::wstring reason;
};

/// A value inside containers that are made for the tokens.
xvar wrapped(xvar value, tokens_view tokens) {
  for (; !tokens.empty(); tokens = tokens.first(tokens.size() - 1)) {
    const std::wstring& token = tokens.back();
    if (token == L"-" || token == L"0") {
      list around;
      around.push_back(std::move(value));
      value = xvar(std::move(around));
    } else {
      bundle around;
      around[token].swap(value);
      value = xvar(std::move(around));
    }
  }
  return value;
}

void add_to(list& in, const std::wstring& token, xvar value) {
  if (!position_in(in.size(), token)) throw no_place{L"la lista no tiene la posición «" + token + L"»."};
  in.push_back(std::move(value));
}
void add_to(bundle& in, const std::wstring& token, xvar value) {
  const auto* const store = detail::bundle_access::store(in);
  const bundle::entry* const other = entry_of<detail::folded_key>(store, token);
  if (other) throw no_place{L"«" + token + L"» se escribe «" + other->spelling() + L"»."};
  in[token].swap(value);
}
void add_to(xvar& in, const std::wstring& token, xvar value) {
  if (in.is_null()) {
    value = wrapped(std::move(value), {&token, 1});
    static_cast<var&>(in) = static_cast<var&&>(value);
  } else if (!cell::is_container(in)) {
    throw no_place{L"delante de «" + token + L"» no hay un objeto ni una lista."};
  } else if (cell::kind_of(in) == kind::list) {
    add_to(cell::as_list(in), token, std::move(value));
  } else {
    add_to(cell::as_bundle(in), token, std::move(value));
  }
}

/// The whole value in place of `in`.
void replace(xvar& in, xvar value) { in.swap(value); }
void replace(bundle& in, const xvar& value) {
  if (cell::kind_of(value) != kind::bundle) throw no_place{L"el valor no es un objeto."};
  in = std::move(cell::as_bundle(value));
}
void replace(list& in, const xvar& value) {
  if (cell::kind_of(value) != kind::list) throw no_place{L"el valor no es una lista."};
  in = std::move(cell::as_list(value));
}

template <class Container>
void put_at(Container& in, tokens_view tokens, const xvar& value) {
  xvar made(value);  // it may lie in what it takes the place of
  xvar* const at = descend(in, tokens);
  if (tokens.empty()) {
    if (at) return replace(*at, std::move(made));
    return replace(in, std::move(made));
  }
  made = wrapped(std::move(made), tokens.subspan(1));
  if (at) return add_to(*at, tokens.front(), std::move(made));
  add_to(in, tokens.front(), std::move(made));
}

void erase_from(list& in, const std::wstring& token) {
  in.erase(in.begin() + static_cast<std::ptrdiff_t>(*position_in(in.size(), token)));
}
void erase_from(bundle& in, const std::wstring& token) {
  auto* const store = detail::bundle_access::store(in);
  store->erase(find_spelled(store, token));
}
void erase_from(xvar& in, const std::wstring& token) {
  if (cell::kind_of(in) == kind::list) return erase_from(cell::as_list(in), token);
  erase_from(cell::as_bundle(in), token);
}

template <class Container>
void erase_at(Container& in, const json_pointer& where) {
  tokens_view tokens = where.tokens();
  if (tokens.empty()) throw no_place{L"es el valor entero."};
  if (!find_at(in, where)) throw no_place{L"no hay nada."};
  const std::wstring& last = tokens.back();
  tokens = tokens.first(tokens.size() - 1);
  xvar* const holder = descend(in, tokens);
  if (holder) return erase_from(*holder, last);
  erase_from(in, last);
}

/// True on failure.
template <class Act>
bool report(const json_pointer& at, exception* err, Act act) {
  try {
    act();
    return false;
  } catch (const no_place& failure) {
    exc::jsonNoPlace(at.to_string(), failure.reason).copy_on(err);
    return true;
  }
}

}  // namespace

const xvar* find(const bundle& in, const json_pointer& at) { return find_at(in, at); }
const xvar* find(const list& in, const json_pointer& at) { return find_at(in, at); }
const xvar* find(const xvar& in, const json_pointer& at) {
  return at.tokens().empty() ? &in : find_at(in, at);
}

bool set(bundle& in, const json_pointer& at, const xvar& value, exception* err) {
  return report(at, err, [&] { put_at(in, at.tokens(), value); });
}
bool set(list& in, const json_pointer& at, const xvar& value, exception* err) {
  return report(at, err, [&] { put_at(in, at.tokens(), value); });
}
bool set(xvar& in, const json_pointer& at, const xvar& value, exception* err) {
  return report(at, err, [&] { put_at(in, at.tokens(), value); });
}
bool erase(bundle& in, const json_pointer& at, exception* err) {
  return report(at, err, [&] { erase_at(in, at); });
}
bool erase(list& in, const json_pointer& at, exception* err) {
  return report(at, err, [&] { erase_at(in, at); });
}
bool erase(xvar& in, const json_pointer& at, exception* err) {
  return report(at, err, [&] { erase_at(in, at); });
}

}  // namespace ruvo::serializer
