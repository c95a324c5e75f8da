#include <ruvo/binary.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <typeinfo>
#include <utility>

#include "base/numbers.hpp"
#include "serializer/number_text.hpp"
#include "serializer/xml/emitter.hpp"
#include "serializer/xml/strict_cursor.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::cell;
using detail::kind;

namespace {

const std::wstring item_name = L"item", schema_key = L"__schema__";

struct entity {
  wchar_t units[6];
  std::size_t length;
};
constexpr entity amp = {{L'&', L'&', L'a', L'm', L'p', L';'}, 6},
                 quot = {{L'&', L'q', L'o', L'u', L't', L';'}, 6},
                 apos = {{L'&', L'a', L'p', L'o', L's', L';'}, 6}, lt = {{L'&', L'l', L't', L';'}, 4},
                 gt = {{L'&', L'g', L't', L';'}, 4};

void put_entity(text_sink& out, wchar_t c) {
  const entity& e = c == L'&' ? amp : c == L'"' ? quot : c == L'\'' ? apos : c == L'<' ? lt : gt;
  wchar_t* const to = out.room(sizeof e.units / sizeof *e.units);
  std::memcpy(to, e.units, sizeof e.units);
  out.advance(to + e.length);
}

/// A prefix may come from a document: one that is no part of a name would be markup.
void put_prefix(text_sink& out, const std::wstring& prefix) {
  if (!std::all_of(prefix.begin(), prefix.end(), continues_name)) return;
  out.put(prefix);
  out.put(L':');
}

/// What `put` puts into a sink, as a text.
template <class Put>
std::wstring text_of(Put put) {
  text_sink sink;
  put(sink);
  return sink.text();
}

}  // namespace

void put_xml_text(text_sink& out, std::wstring_view text) {
  text = texto::trimmed(text);
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  while (at != end) {
    const wchar_t* const stop = find_markup(at, end);
    out.put({at, static_cast<std::size_t>(stop - at)});
    at = stop;
    if (at != end) put_entity(out, *at++);
  }
}

void put_xml_scalar(text_sink& out, const var& value) {
  if (cell::is_text(value)) return put_xml_text(out, cell::text(value));
  if (value.is_number()) return put_number(out, value);
  if (value.is_null()) return;
  const std::wstring text = value.to_string();
  const bool is_prose = cell::kind_of(value) == kind::binary || cell::kind_of(value) == kind::memo;
  return is_prose ? put_xml_text(out, text) : out.put(text);
}

// --- the writers

xml_writer::xml_writer() = default;
xml_writer::~xml_writer() = default;

std::wstring xml_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_xml_scalar(out, value); });
}

std::wstring& xml_writer::raw_key(std::wstring& key) { return key; }

std::wstring xml_writer::raw_attribute(std::wstring text) {
  return text_of([&](text_sink& out) { put_xml_text(out, text); });
}

bool xml_writer::write(std::wstring& out, const bundle& in, exception* err, int) {
  exception result;
  const std::wstring indentation = indentation_;
  const std::uint32_t withheld = withheld_;
  try {
    text_sink sink;
    xml_emitter(*this, sink, result).write_document(in);
    sink.replace(out);
  } catch (...) {
    indentation_ = indentation;
    withheld_ = withheld;
    throw;
  }
  if (err && result.WRONG()) *err = result;
  return result.WRONG();
}

void xml_writer::create_open_tag(std::wostringstream& out, const std::wstring& name,
                                 const xvar::qualities_map& qualities) {
  exception result;
  out << text_of([&](text_sink& sink) { xml_emitter(*this, sink, result).open_tag(name, &qualities); });
}

void xml_writer::create_close_tag(std::wostringstream& out, const std::wstring& name) {
  exception result;
  out << text_of([&](text_sink& sink) { xml_emitter(*this, sink, result).close_tag(name); });
}

bool xml_writer::raw_list(std::wostringstream& out, const list& in, exception& result) {
  out << text_of([&](text_sink& sink) { xml_emitter(*this, sink, result).write_list(in); });
  return result.WRONG();
}

namespace {

bool write_own_bundle(xml_emitter::order members, xml_writer& writer, std::wostringstream& out,
                      const bundle& in, exception& result) {
  out << text_of([&](text_sink& sink) { xml_emitter(writer, sink, result, members).write_members(in); });
  return result.WRONG();
}

}  // namespace

xml_ordered_writer::xml_ordered_writer() = default;
xml_ordered_writer::~xml_ordered_writer() = default;
bool xml_ordered_writer::raw_bundle(std::wostringstream& out, const bundle& in, exception& result) {
  return write_own_bundle(xml_emitter::order::by_key, *this, out, in, result);
}

xml_unordered_writer::xml_unordered_writer() = default;
xml_unordered_writer::~xml_unordered_writer() = default;
bool xml_unordered_writer::raw_bundle(std::wostringstream& out, const bundle& in, exception& result) {
  return write_own_bundle(xml_emitter::order::by_position, *this, out, in, result);
}

// --- the walk

xml_emitter::xml_emitter(xml_writer& writer, text_sink& out, exception& result, order members)
    : writer_(writer), out_(out), result_(result), order_(members) {
  const std::type_info& type = typeid(writer);
  own_ = type == typeid(xml_ordered_writer) || type == typeid(xml_unordered_writer);
  if (own_ && order_ == order::unknown)
    order_ = type == typeid(xml_unordered_writer) ? order::by_position : order::by_key;
}

void xml_emitter::write_document(const bundle& in) {
  out_.put(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  new_line();
  nested_bundle(in);
  run();
}

void xml_emitter::write_members(const bundle& in) {
  open(in);
  run();
}

void xml_emitter::write_list(const list& in) {
  open(in);
  run();
}

void xml_emitter::run() {
  while (!open_.empty()) {
    const std::size_t depth = open_.size();
    frame& f = open_.back();  // until a value opens a container
    while (open_.size() == depth && f.taken != f.size) {
      if (f.store) {
        next_member(f);
      } else {
        next_item(f);
      }
    }
    if (open_.size() == depth) close(f);
  }
}

xml_emitter::frame& xml_emitter::open(const list& in) {
  writer_.push_tab();
  frame& f = open_.emplace_back();
  f.elements = in.data();
  f.size = in.size();
  return f;
}

xml_emitter::frame& xml_emitter::open(const bundle& in) {
  writer_.push_tab();
  frame& f = open_.emplace_back();
  f.store = bundle_access::store(in);
  f.entry = f.store && order_ == order::by_key ? f.store->first() : nullptr;
  f.size = f.store ? f.store->size() : 0;
  return f;
}

void xml_emitter::close(const frame& f) {
  writer_.pop_tab();
  if (f.indents) indent();
  if (f.name && (own_ || f.name == &item_name)) {
    close_tag(*f.name);
  } else if (f.name) {
    close_tag(names_.back());
    names_.pop_back();
  }
  open_.pop_back();
}

void xml_emitter::next_member(frame& f) {
  const bundle::entry* const e = order_ == order::by_key ? f.entry : f.store->nth(f.taken);
  ++f.taken;
  if (order_ == order::by_key) f.entry = f.store->next(f.entry, f.rank);
  member(e->first, e->second);
}

void xml_emitter::member(const std::wstring& key, const xvar& value) {
  std::wstring changed;
  if (!own_) {
    std::wstring copy = key;
    changed = writer_.raw_key(copy);
  }
  const std::wstring& name = own_ ? key : changed;
  open_tag(name, cell::qualities(value));
  const kind k = cell::kind_of(value);
  if (k != kind::list && k != kind::bundle) {
    scalar(value);
    return close_tag(name);
  }
  new_line();
  if (k == kind::bundle && !own_) {
    nested_bundle(cell::as_bundle(value));
    indent();
    return close_tag(name);
  }
  if (!own_) names_.push_back(std::move(changed));
  frame& f = k == kind::list ? open(cell::as_list(value)) : open(cell::as_bundle(value));
  f.name = &key;
  f.indents = true;
}

void xml_emitter::next_item(frame& in) {
  const xvar& value = in.elements[in.taken++];
  if (cell::kind_of(value) == kind::bundle) {
    if (own_) {
      open(cell::as_bundle(value)).indents = true;
    } else {
      nested_bundle(cell::as_bundle(value));
      indent();
    }
    return;
  }
  open_tag(item_name, cell::qualities(value));
  if (cell::kind_of(value) == kind::list) {
    open(cell::as_list(value)).name = &item_name;
  } else {
    scalar(value);
    close_tag(item_name);
  }
}

void xml_emitter::nested_bundle(const bundle& in) {
  if (own_) {
    open(in);
    return;
  }
  std::wostringstream nested;
  writer_.raw_bundle(nested, in, result_);
  out_.put(nested.str());
}

void xml_emitter::scalar(const xvar& value) {
  if (own_) return put_xml_scalar(out_, value);
  out_.put(writer_.raw_value(value));
}

void xml_emitter::open_tag(std::wstring_view name, const xvar::qualities_map* qualities) {
  indent();
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
    put_prefix(out_, schema->second.to_string());
  out_.put(name);
  for (const auto& [key, value] : *qualities) {
    if (key.starts_with(L"__")) continue;
    out_.put(L' ');
    out_.put(key);
    out_.put_literal(L"=\"");
    put_xml_text(out_, cell::is_text(value) ? cell::text(value) : std::wstring_view(value.to_string()));
    out_.put(L'"');
  }
  out_.put(L'>');
}

void xml_emitter::close_tag(std::wstring_view name) {
  wchar_t* to = out_.room(name.size() + 3);
  *to++ = L'<';
  *to++ = L'/';
  text_sink::copy(to, name.data(), name.size());
  to += name.size();
  *to++ = L'>';
  out_.advance(to);
  new_line();
}

}  // namespace ruvo::serializer
