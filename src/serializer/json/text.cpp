// SPDX-License-Identifier: BSL-1.0

// Texts of JSON inside values: escaped line breaks, and what a memo holds.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/serializer.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "serializer/json/grammar.hpp"
#include "values/walk.hpp"

namespace ruvo::texto {

using detail::cell;
using detail::kind;

namespace {

/// Of what JSON escapes, tabs and the ends of lines only.
bool has_escape(wchar_t c) { return c == L'\t' || c == L'\r' || c == L'\n'; }

std::wstring escaped(std::wstring_view text, std::size_t escapes) {
  std::wstring made;
  made.reserve(text.size() + escapes);
  for (const wchar_t c : text) {
    if (has_escape(c)) made += L'\\';
    made += has_escape(c) ? serializer::letter_of_escape(c) : c;
  }
  return made;
}

std::size_t count_escapes(std::wstring_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), has_escape));
}

/// Escapes the texts of a bundle and, with `nested`, of the containers inside it.
class text_escaper : public detail::visitor {
 public:
  using walk = detail::walk<xvar>;

  explicit text_escaper(bool nested) : nested_(nested) {}

  void run(bundle& values) {
    walk_.open(values);
    walk_.run(*this);
  }

  void member(const walk::frame&, const std::wstring&, xvar& v) { value(v); }
  void element(const walk::frame&, xvar& v) { value(v); }

 private:
  void value(var& v) {
    if (cell::is_container(v)) {
      if (nested_) walk_.open_held(v);
    } else if (cell::is_text(v) || cell::kind_of(v) == kind::memo) {
      escape(v);
    }
  }
  static void escape(var& v) {
    if (cell::kind_of(v) == kind::memo) {
      memo& held = *cell::pointer<memo>(v);
      if (const std::size_t escapes = count_escapes(held.to_string()))
        held = escaped(held.to_string(), escapes);
    } else if (cell::kind_of(v) == kind::string_text) {
      escaped_to_json(cell::on_string(v));  // callers may hold a reference to it
    } else if (const std::size_t escapes = count_escapes(cell::text(v))) {
      v = escaped(cell::text(v), escapes);
    }
  }

  bool nested_;
  walk walk_;
};

bool begins_document(std::wstring_view text) {
  const auto first = std::find_if_not(text.begin(), text.end(), is_space);
  return first != text.end() && (*first == L'{' || *first == L'[');
}

void remove_byte_order_mark(std::wstring& text) {
  if (!text.empty() && static_cast<char16_t>(text[0]) == 0xFEFF) text.erase(0, 1);
}

}  // namespace

std::wstring& escaped_to_json(std::wstring& text) {
  if (const std::size_t escapes = count_escapes(text)) text = escaped(text, escapes);
  return text;
}

void escaped_to_json(bundle& values, bool nested) { text_escaper(nested).run(values); }

void decodifica_memo(binary& out, std::wstring memo) { out.setAsB64(memo); }

void decodifica_memo(bundle& out, std::wstring memo) {
  remove_byte_order_mark(memo);
  if (!begins_document(memo)) {
    binary bytes;
    const std::vector<unsigned char>& store = bytes.setAsB64(memo).get_store();
    memo = to_utf_16(std::string(store.begin(), store.end()));
    remove_byte_order_mark(memo);
  }
  bundle read;
  exception failure;
  bool wrong = !begins_document(memo);
  try {
    wrong = wrong || serializer::json().deserialize(read, memo, &failure);
  } catch (const std::logic_error&) {  // a number that can't be converted
    wrong = true;
  }
  if (wrong) read = bundle();
  out = std::move(read);
}

}  // namespace ruvo::texto
