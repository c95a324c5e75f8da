// SPDX-License-Identifier: BSL-1.0

// Writing XML: the text of values, tags, and the walk that puts them together.

#include <ruvo/binary.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/xml.hpp>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/numbers.hpp"
#include "serializer/number_text.hpp"
#include "serializer/writing.hpp"
#include "serializer/xml/grammar.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::kind;
using detail::order;

namespace {

constexpr std::wstring_view item_name = L"item";
const std::wstring schema_key = L"__schema__";  // made once: it is looked up for each qualified element

/// How a unit that is_markup() is written.
std::wstring_view entity_of(wchar_t c) noexcept {
  const xml_entity* e = xml_entities;
  while (e->meant != c) ++e;
  return e->own;
}

/// The text without the blanks at its ends, escaped.
void put_escaped(text_sink& out, std::wstring_view text) {
  text = texto::trimmed(text);
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  while (at != end) {
    const wchar_t* const stop = find_markup(at, end);
    out.put({at, static_cast<std::size_t>(stop - at)});
    at = stop;
    if (at != end) out.put(entity_of(*at++));
  }
}

/// See xml_writer::raw_value.
void put_scalar(text_sink& out, const xvar& value) {
  if (cell::is_text(value)) return put_escaped(out, cell::text(value));
  if (value.is_number()) return put_number(out, value);
  if (value.is_null()) return;
  const std::wstring text = value.to_string();
  const bool is_prose = cell::kind_of(value) == kind::binary || cell::kind_of(value) == kind::memo;
  return is_prose ? put_escaped(out, text) : out.put(text);
}

// --- tags

/// The tags of a text, each on a line of its own where lines are broken.
class tags {
 public:
  tags(xml_writer& writer, text_sink& out) noexcept : layout_(writer, out), out_(out) {}

  layout& lines() noexcept { return layout_; }

  void open(std::wstring_view name, const xvar::qualities_map* qualities) {
    layout_.indent();
    if (!qualities) {
      wchar_t* to = out_.room(name.size() + 2);
      *to++ = L'<';
      text_sink::copy(to, name.data(), name.size());
      to += name.size();
      *to++ = L'>';
      return out_.advance(to);
    }
    out_.put(L'<');
    if (const auto schema = qualities->find(schema_key); schema != qualities->end())
      put_prefix(schema->second.to_string());
    out_.put(name);
    for (const auto& [key, value] : *qualities) {
      if (!key.starts_with(L"__")) put_attribute(key, value);
    }
    out_.put(L'>');
  }
  void close(std::wstring_view name) {
    wchar_t* to = out_.room(name.size() + 3);
    *to++ = L'<';
    *to++ = L'/';
    text_sink::copy(to, name.data(), name.size());
    to += name.size();
    *to++ = L'>';
    out_.advance(to);
    layout_.new_line();
  }

 private:
  /// A prefix may come from a document: one that is no part of a name would be markup.
  void put_prefix(const std::wstring& prefix) {
    if (!std::all_of(prefix.begin(), prefix.end(), continues_name)) return;
    out_.put(prefix);
    out_.put(L':');
  }
  void put_attribute(const std::wstring& key, const var& value) {
    out_.put(L' ');
    out_.put(key);
    out_.put_literal(L"=\"");
    put_escaped(out_, cell::is_text(value) ? cell::text(value) : std::wstring_view(value.to_string()));
    out_.put(L'"');
  }

  layout layout_;
  text_sink& out_;
};

// --- the walk

struct own_xml : own_hooks {
  using name = std::wstring_view;

  static void scalar(text_sink& out, const xvar& value) { put_scalar(out, value); }
};

struct derived_xml : derived_hooks<xml_writer> {
  using name = std::wstring;
  using derived_hooks::derived_hooks;
};

/// What comes behind a container, on the way out: nothing, an indentation, the end of an item, or an
/// indentation and the end of the element with the name.
enum class ending : unsigned char { none, indentation, item, element };

template <class Name>
struct ending_notes {
  ending end = ending::none;
  Name name{};
};

template <class Hooks>
class xml_visitor : public detail::visitor {
 public:
  using walk = detail::walk<const xvar, ending_notes<typename Hooks::name>>;
  using frame = typename walk::frame;

  xml_visitor(Hooks hooks, xml_writer& writer, text_sink& out, order members)
      : hooks_(hooks), tags_(writer, out), out_(out), walk_(members) {}

  void write(const bundle& in) {
    if (!hooks_.writes(out_, in)) write_all(in);
  }
  /// What a container holds, whoever writes the containers in it.
  template <class Container>
  void write_all(const Container& in) {
    walk_.open(in);
    walk_.run(*this);
  }

  void enter(const frame&) { tags_.lines().deeper(); }
  void leave(const frame& f) {
    tags_.lines().back();
    if (f.end == ending::indentation || f.end == ending::element) tags_.lines().indent();
    if (f.end == ending::item) tags_.close(item_name);
    if (f.end == ending::element) tags_.close(f.name);
  }

  void member(const frame&, const std::wstring& key, const xvar& value) {
    typename Hooks::name name = hooks_.key(key);
    tags_.open(name, cell::qualities(value));
    if (!cell::is_container(value)) {
      hooks_.scalar(out_, value);
      return tags_.close(name);
    }
    tags_.lines().new_line();
    if (cell::kind_of(value) == kind::bundle && hooks_.writes(out_, cell::as_bundle(value))) {
      tags_.lines().indent();
      return tags_.close(name);
    }
    frame& f = walk_.open_held(value);
    f.end = ending::element;
    f.name = std::move(name);
  }
  void element(const frame&, const xvar& value) {
    switch (cell::kind_of(value)) {
      case kind::bundle:
        if (hooks_.writes(out_, cell::as_bundle(value))) return tags_.lines().indent();
        walk_.open_held(value).end = ending::indentation;
        return;
      case kind::list:
        tags_.open(item_name, cell::qualities(value));
        walk_.open_held(value).end = ending::item;
        return;
      default:
        tags_.open(item_name, cell::qualities(value));
        hooks_.scalar(out_, value);
        return tags_.close(item_name);
    }
  }

 private:
  Hooks hooks_;
  tags tags_;
  text_sink& out_;
  walk walk_;
};

/// Calls `act` with the visitor that writes for this writer. `members` is the order for what a derived one
/// leaves to its base.
template <class Act>
void visit_for(xml_writer& writer, text_sink& out, exception& result, order members, Act act) {
  if (const auto own = own_order<xml_ordered_writer, xml_unordered_writer>(writer)) {
    xml_visitor visitor(own_xml(), writer, out, *own);
    act(visitor);
  } else {
    xml_visitor visitor(derived_xml(writer, result), writer, out, members);
    act(visitor);
  }
}

template <class Container>
bool write_all(order members, xml_writer& writer, std::wostringstream& out, const Container& in,
               exception& result) {
  out << text_of(
      [&](text_sink& sink) { visit_for(writer, sink, result, members, [&](auto& v) { v.write_all(in); }); });
  return result.WRONG();
}

}  // namespace

// --- the writers

xml_writer::xml_writer() = default;
xml_writer::~xml_writer() = default;

std::wstring xml_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_scalar(out, value); });
}

std::wstring& xml_writer::raw_key(std::wstring& key) { return key; }

std::wstring xml_writer::raw_attribute(std::wstring text) {
  return text_of([&](text_sink& out) { put_escaped(out, text); });
}

bool xml_writer::write(std::wstring& out, const bundle& in, exception* err, int) {
  return layout::write(*this, out, err, [&](text_sink& sink, exception& result) {
    sink.put(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    layout(*this, sink).new_line();
    visit_for(*this, sink, result, order::by_key, [&](auto& v) { v.write(in); });
  });
}

void xml_writer::create_open_tag(std::wostringstream& out, const std::wstring& name,
                                 const xvar::qualities_map& qualities) {
  out << text_of([&](text_sink& sink) { tags(*this, sink).open(name, &qualities); });
}

void xml_writer::create_close_tag(std::wostringstream& out, const std::wstring& name) {
  out << text_of([&](text_sink& sink) { tags(*this, sink).close(name); });
}

bool xml_writer::raw_list(std::wostringstream& out, const list& in, exception& result) {
  return write_all(order::by_key, *this, out, in, result);
}

xml_ordered_writer::xml_ordered_writer() = default;
xml_ordered_writer::~xml_ordered_writer() = default;
bool xml_ordered_writer::raw_bundle(std::wostringstream& out, const bundle& in, exception& result) {
  return write_all(order::by_key, *this, out, in, result);
}

xml_unordered_writer::xml_unordered_writer() = default;
xml_unordered_writer::~xml_unordered_writer() = default;
bool xml_unordered_writer::raw_bundle(std::wostringstream& out, const bundle& in, exception& result) {
  return write_all(order::by_position, *this, out, in, result);
}

}  // namespace ruvo::serializer
