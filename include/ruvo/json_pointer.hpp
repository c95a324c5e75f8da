// SPDX-License-Identifier: BSL-1.0
#pragma once

// JSON Pointer (RFC 6901): one value inside of others, through lists too, by the names as they are spelled.
// The paths of a bundle are another thing: they ignore case and never lead into a list.
//
//   if (const ruvo::xvar* sku = ruvo::serializer::find(order, L"/lines/0/sku")) use(*sku);
//   ruvo::exception failure;
//   if (ruvo::serializer::set(order, L"/lines/-", line, &failure)) return 1;

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ruvo::serializer {

/// The tokens that lead from a value to one inside it: names of members, and positions in lists, counted from
/// 0. Without tokens it is the value itself.
class KESTA_API json_pointer {
 public:
  json_pointer() noexcept;
  json_pointer(const json_pointer& other);
  json_pointer(json_pointer&& other) noexcept;
  json_pointer& operator=(const json_pointer& other);
  json_pointer& operator=(json_pointer&& other) noexcept;
  ~json_pointer();

  /// As read_json_pointer() reads it; throws exc::jsonBadPointer. Narrow text is UTF-8.
  json_pointer(const wchar_t* text);
  json_pointer(const std::wstring& text);
  json_pointer(const char* text);
  json_pointer(const std::string& text);
  /// Takes the tokens as they are.
  explicit json_pointer(std::vector<std::wstring> tokens) noexcept;

  /// The tokens, without escapes.
  const std::vector<std::wstring>& tokens() const noexcept { return tokens_; }
  /// Leads one step further, to a member of this name or an element.
  json_pointer& operator/=(std::wstring_view token);

  /// `/a~1b/0`: `~` and `/` of a token as `~0` and `~1`.
  std::wstring to_string() const;
  /// The same as the fragment of a URI: `#/a~1b/%C3%B1`. What fragments have no place for, and what is not
  /// ASCII, stands as the bytes of its UTF-8; lone surrogates as those of U+FFFD.
  std::wstring to_fragment() const;

  /// Whether the tokens are the same.
  bool operator==(const json_pointer& other) const noexcept { return tokens_ == other.tokens_; }

 private:
  std::vector<std::wstring> tokens_;
};

/// Reads a pointer: the empty text, or tokens with a `/` before each; or such a one as the fragment of a URI,
/// behind a `#`, in which `%C3%B1` stand for the bytes of UTF-8, and other characters, of whatever kind, for
/// themselves.
///
/// True on FAILURE; `out` is then as it was. It is exc::jsonBadPointer (6010); failure_position() gives the
/// first character that begins no token, escape or character. On success `*err` stays as it is.
KESTA_API bool read_json_pointer(json_pointer& out, std::wstring_view text, exception* err);

/// The value to which the pointer leads, or null: valid as references into the value are. Names are compared
/// with the spelling of keys (bundle::spelling), and case counts, since it does in JSON: a service that has
/// `userName` knows no `username`. So what is found in a bundle is what would be found in the text that
/// write_standard_json() makes of it. `-` and positions written with zeros before them lead nowhere.
///
/// No xvar is the bundle or list itself: without tokens these give null. Takes time linear in the tokens, and
/// logarithmic in the members.
KESTA_API const xvar* find(const bundle& in, const json_pointer& at);
KESTA_API const xvar* find(const list& in, const json_pointer& at);
KESTA_API const xvar* find(const xvar& in, const json_pointer& at);

/// Puts a copy of `value`, its qualities included, where the pointer leads; what was there goes, with its own
/// qualities. A missing member is added, spelled as the token; `-`, or the number of elements, adds an
/// element to a list. What is missing or null on the way becomes a list if the next token is `-` or `0`, else
/// a bundle.
///
/// True on FAILURE; `in` is then as it was. It is exc::jsonNoPlace (6011): where a value on the way is
/// neither null nor a container, a list has no such position, or a key has another spelling than the token (a
/// bundle has one member for `userName` and `username`, so that the one would be lost in the other). Without
/// tokens the value must be of the kind of `in`. On success `*err` stays as it is. `value` may be a part of
/// `in`.
KESTA_API bool set(bundle& in, const json_pointer& at, const xvar& value, exception* err = nullptr);
KESTA_API bool set(list& in, const json_pointer& at, const xvar& value, exception* err = nullptr);
KESTA_API bool set(xvar& in, const json_pointer& at, const xvar& value, exception* err = nullptr);

/// Removes what find() finds; the elements of a list behind it move up. True on FAILURE, exc::jsonNoPlace,
/// where it finds nothing, or without tokens. Where memory is short, std::bad_alloc leaves it, and `in` is as
/// it was.
KESTA_API bool erase(bundle& in, const json_pointer& at, exception* err = nullptr);
KESTA_API bool erase(list& in, const json_pointer& at, exception* err = nullptr);
KESTA_API bool erase(xvar& in, const json_pointer& at, exception* err = nullptr);

}  // namespace ruvo::serializer
