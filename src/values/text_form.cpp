// SPDX-License-Identifier: BSL-1.0

// The text forms of lists and bundles.

#include <string_view>

#include "values/walk.hpp"

namespace ruvo::detail {

namespace {

/// Members stand in key order. The qualities of an element of a list follow it, all others are left out.
class text_writer : public visitor {
 public:
  using frame = walk<>::frame;

  explicit text_writer(std::wstring& out) : out_(out) {}

  template <class Container>
  void write(const Container& in) {
    walk_.open(in);
    walk_.run(*this);
  }

  void enter(const frame& f) {
    out_ += f.what == holder::list ? L'[' : L'{';
    if (f.what == holder::qualities) out_ += L"\"atributos\":";
  }
  void between(const frame& f) {
    if (f.what == holder::list) out_ += L',';
    if (f.what == holder::bundle) out_ += L", ";
  }
  void leave(const frame& f) { out_ += f.what == holder::list ? L']' : L'}'; }

  void element(const frame&, const xvar& v) {
    const auto* const qualities = cell::qualities(v);
    if (qualities && !qualities->empty()) walk_.open(*qualities);  // they wait for what the value opens
    value(v);
  }
  void member(const frame&, const std::wstring& key, const var& v) {
    out_ += L'"';
    out_ += key;
    out_ += L"\":";
    if (v.is_null()) {
      out_ += L"\"\"";
    } else {
      value(v);
    }
  }
  void quality(const frame& f, const std::wstring& key, const var& v) { member(f, key, v); }

 private:
  void value(const var& v) {
    if (cell::is_container(v)) {
      walk_.open_held(v);
    } else if (cell::is_text(v)) {
      quoted(cell::text(v));
    } else {
      append_text(out_, v);
    }
  }
  void quoted(std::wstring_view text) {
    out_ += L'"';
    for (const wchar_t c : text) {
      if (c == L'"') out_ += L'\\';
      out_ += c;
    }
    out_ += L'"';
  }

  std::wstring& out_;
  walk<> walk_{order::by_key};
};

}  // namespace

void append_text(std::wstring& out, const list& l) { text_writer(out).write(l); }
void append_text(std::wstring& out, const bundle& b) { text_writer(out).write(b); }

}  // namespace ruvo::detail
