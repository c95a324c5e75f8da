// SPDX-License-Identifier: BSL-1.0
#pragma once

// Generated JSON documents, in parts.

#include <string>
#include <utility>
#include <vector>

#include "support/dice.hpp"

/// A part of a JSON document; what it is stands in `kind`: a bracket, a comma, a colon, or s, n, l or a
/// blank.
struct json_part {
  wchar_t kind;
  std::wstring text;
};

class json_source : public dice {
 public:
  using dice::dice;

  /// With a container around all, if wanted.
  std::vector<json_part> parts(bool contained = false) {
    parts_.clear();
    contained ? container(0, below(8) != 0) : value(0);
    return std::move(parts_);
  }

 private:
  void add(wchar_t kind, std::wstring text) {
    parts_.push_back({kind, std::move(text)});
    if (below(5) == 0) parts_.push_back({L' ', std::wstring(below(3) + 1, unit(L" \t\r\n"))});
  }
  void add(wchar_t sign) { add(sign, std::wstring(1, sign)); }

  void value(int depth) {
    switch (below(depth < 6 ? 7 : 4)) {
      case 0:
        return add(L'l', any(pieces(L"true false null")));
      case 1:
        return number();
      case 2:
      case 3:
        return string();
      default:
        return container(depth + 1, below(2) == 0);
    }
  }
  void container(int depth, bool named) {
    add(named ? L'{' : L'[');
    for (unsigned n = below(5); n > 0; --n) {
      if (named) {
        string();
        add(L':');
      }
      value(depth);
      if (n > 1) add(L',');
    }
    add(named ? L'}' : L']');
  }
  std::wstring digits() {
    std::wstring out(one_in(3) ? below(21) + 1 : below(6) + 1, L'0');
    for (wchar_t& c : out) c = unit(L"0123456789");
    return out;
  }
  void number() {
    std::wstring out = below(2) ? L"-" : L"";
    out += below(4) ? unit(L"123456789") + digits() : L"0";
    if (below(2)) out += L"." + digits();
    if (below(3) == 0) out += unit(L"eE") + std::vector<std::wstring>{L"", L"+", L"-"}[below(3)] + digits();
    add(L'n', out);
  }
  void string() {
    static const std::vector<std::wstring> parts =
        pieces(L"a Key : [, ñ \\\" \\\\ \\n \\/ \x7F \\u00E1 \xD83D\xDE00 \\ud83d\\uDE00 ' //");
    add(L's', L"\"" + joined(parts, 7) + L"\"");
  }

  std::vector<json_part> parts_;
};

inline std::wstring text_of(const std::vector<json_part>& parts) {
  std::wstring out;
  for (const json_part& p : parts) out += p.text;
  return out;
}
