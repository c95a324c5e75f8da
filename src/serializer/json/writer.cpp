#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/time.hpp>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <typeinfo>

#include "serializer/json/emitter.hpp"
#include "serializer/json/grammar.hpp"
#include "serializer/number_text.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::cell;
using detail::kind;

namespace {

/// What stands for a character that needs an escape: two units, or a blank for a control character without
/// one.
wchar_t* print_escape(wchar_t* to, wchar_t c) noexcept {
  const auto letter = [c]() -> wchar_t {
    switch (c) {
      case L'\b':
        return L'b';
      case L'\t':
        return L't';
      case L'\n':
        return L'n';
      case L'\f':
        return L'f';
      case L'\r':
        return L'r';
      case L'"':
      case L'\\':
        return c;
      default:
        return L'\0';
    }
  }();
  *to++ = letter ? L'\\' : L' ';
  if (letter) *to++ = letter;
  return to;
}

void put_quoted(text_sink& out, std::wstring_view text, bool escaped) {
  wchar_t* to = out.room(2 + (escaped ? 2 : 1) * text.size());
  *to++ = L'"';
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  while (at != end) {
    const wchar_t* const stop = escaped ? find_escaped(at, end) : end;
    const auto plain = static_cast<std::size_t>(stop - at);
    text_sink::copy(to, at, plain);
    to += plain;
    at = stop;
    if (at != end) to = print_escape(to, *at++);
  }
  *to++ = L'"';
  out.advance(to);
}

/// Lends the store of a bundle to an xvar, for calls that take one.
class lent_bundle {
 public:
  explicit lent_bundle(const bundle& in) {
    bundle_access::set(cell::set_box(value_, kind::bundle, bundle()), bundle_access::store(in));
  }
  lent_bundle(const lent_bundle&) = delete;
  lent_bundle& operator=(const lent_bundle&) = delete;
  ~lent_bundle() { bundle_access::detach(cell::as_bundle(value_)); }

  const xvar& value() const noexcept { return value_; }

 private:
  xvar value_;
};

}  // namespace

void put_json_scalar(text_sink& out, const xvar& value, bool escaped, bool null_as_empty) {
  switch (cell::kind_of(value)) {
    case kind::null:
      return null_as_empty ? out.put_literal(L"\"\"") : out.put_literal(L"null");
    case kind::boolean:
      return cell::integer(value) ? out.put_literal(L"true") : out.put_literal(L"false");
    case kind::time: {
      std::wstring text;
      detail::append_lapse(text, value, ruvo::time::url_canonical);
      return put_quoted(out, text, false);
    }
    case kind::date:
      return put_number(out, detail::date_number(value));
    case kind::datetime:
      return put_number(out, static_cast<double>(cell::integer(value)));
    case kind::binary:
      return put_quoted(out, cell::pointer<binary>(value)->getAsB64(false), false);
    default:
      if (value.is_number()) return put_number(out, value);
      if (cell::is_text(value)) return put_quoted(out, cell::text(value), escaped);
      return put_quoted(out, value.to_string(), escaped);
  }
}

namespace {

/// What `put` puts into a sink, as a text.
template <class Put>
std::wstring text_of(Put put) {
  text_sink sink;
  put(sink);
  return sink.text();
}

}  // namespace

// --- the writers

json_writer::json_writer(bool null_as_empty) : null_as_empty_(null_as_empty) {}
json_writer::~json_writer() = default;

std::wstring json_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_json_scalar(out, value, true, null_as_empty_); });
}

std::wstring& json_writer::raw_key(std::wstring& key) { return key; }

bool json_writer::write(std::wstring& out, const bundle& in, exception* err, int) {
  exception result;
  const std::wstring indentation = indentation_;
  const std::uint32_t withheld = withheld_;
  try {
    text_sink sink;
    json_emitter emitter(*this, sink, result);
    if (const auto array = in.find(array_key); array != in.end()) {
      emitter.write_list(array->second);
    } else if (emitter.walks_bundles()) {
      emitter.write_members(in);
    } else {
      const lent_bundle lent(in);
      emitter.write_bundle(lent.value());
    }
    sink.replace(out);
  } catch (...) {
    indentation_ = indentation;
    withheld_ = withheld;
    throw;
  }
  if (err && result.WRONG()) *err = result;
  return result.WRONG();
}

bool json_writer::raw_list(std::wostringstream& out, const xvar& value, exception& result) {
  out << text_of([&](text_sink& sink) { json_emitter(*this, sink, result).write_list(value); });
  return result.WRONG();
}

bool json_writer::raw_xvar(std::wostringstream& out, std::wstring& key, const xvar& value,
                           exception& result) {
  out << text_of([&](text_sink& sink) { json_emitter(*this, sink, result).write_member(key, value); });
  return result.WRONG();
}

namespace {

bool write_own_bundle(json_emitter::order members, json_writer& writer, std::wostringstream& out,
                      const xvar& value, exception& result) {
  if (cell::kind_of(value) != kind::bundle) {
    exc::NullPointer().copy_on(result);
    return true;
  }
  out << text_of([&](text_sink& sink) {
    json_emitter(writer, sink, result, members).write_members(cell::as_bundle(value));
  });
  return result.WRONG();
}

}  // namespace

json_ordered_writer::json_ordered_writer() : json_writer(true) {}
json_ordered_writer::~json_ordered_writer() = default;
bool json_ordered_writer::raw_bundle(std::wostringstream& out, const xvar& value, exception& result) {
  return write_own_bundle(json_emitter::order::by_key, *this, out, value, result);
}

json_unordered_writer::json_unordered_writer() : json_writer(true) {}
json_unordered_writer::~json_unordered_writer() = default;
bool json_unordered_writer::raw_bundle(std::wostringstream& out, const xvar& value, exception& result) {
  return write_own_bundle(json_emitter::order::by_position, *this, out, value, result);
}

oauth_writer::oauth_writer() = default;
oauth_writer::~oauth_writer() = default;
std::wstring oauth_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_json_scalar(out, value, false, true); });
}

// --- the walk

json_emitter::json_emitter(json_writer& writer, text_sink& out, exception& result, order members)
    : writer_(writer), out_(out), result_(result), order_(members) {
  const std::type_info& type = typeid(writer);
  own_ = type == typeid(json_ordered_writer) || type == typeid(json_unordered_writer) ||
         type == typeid(oauth_writer);
  escaped_ = type != typeid(oauth_writer);
  if (own_ && order_ == order::unknown)
    order_ = type == typeid(json_unordered_writer) ? order::by_position : order::by_key;
}

void json_emitter::write_members(const bundle& in) {
  open(in);
  run();
}

void json_emitter::write_bundle(const xvar& value) {
  element(value);
  run();
}

void json_emitter::write_list(const xvar& value) {
  if (cell::kind_of(value) != kind::list) {
    exc::NullPointer().copy_on(result_);
    return;
  }
  open(cell::as_list(value));
  run();
}

void json_emitter::write_member(const std::wstring& key, const xvar& value) {
  member(key, value);
  run();
}

void json_emitter::run() {
  while (!open_.empty()) {
    const std::size_t depth = open_.size();
    frame& f = open_.back();  // until an element opens a container
    while (open_.size() == depth && f.taken != f.size) {
      if (f.store) {
        next_member(f);
      } else {
        next_element(f);
      }
    }
    if (open_.size() == depth) close(f);
  }
}

void json_emitter::open(const list& in) {
  out_.put(L'[');
  frame& f = open_.emplace_back();
  f.is_list = true;
  f.elements = in.data();
  f.size = in.size();
  break_and_push();
}

void json_emitter::open(const bundle& in) {
  out_.put(L'{');
  frame& f = open_.emplace_back();
  f.store = bundle_access::store(in);
  f.entry = f.store && order_ == order::by_key ? f.store->first() : nullptr;
  f.size = f.store ? f.store->size() : 0;
  break_and_push();
}

void json_emitter::break_and_push() {
  if (!writer_.tabulated_) return;
  out_.put(L'\n');
  writer_.push_tab();
}

void json_emitter::close(const frame& f) {
  writer_.pop_tab();
  const bool breaks = writer_.tabulated_;
  if (breaks && !f.is_list) out_.put(L'\n');
  if (!writer_.indentation_.empty()) out_.put(writer_.indentation_);
  out_.put(f.is_list ? L']' : L'}');
  if (breaks && f.is_list) out_.put(L'\n');
  open_.pop_back();
}

void json_emitter::separate(const frame& f) {
  if (f.taken == 0) return;
  out_.put(L',');
  if (writer_.tabulated_) out_.put(L'\n');
}

void json_emitter::next_element(frame& f) {
  separate(f);
  element(f.elements[f.taken++]);
}

void json_emitter::next_member(frame& f) {
  separate(f);
  const bundle::entry* const e = order_ == order::by_key ? f.entry : f.store->nth(f.taken);
  ++f.taken;
  if (order_ == order::by_key) f.entry = f.store->next(f.entry, f.rank);
  member(e->first, e->second);
}

void json_emitter::member(const std::wstring& key, const xvar& value) {
  if (!writer_.indentation_.empty()) out_.put(writer_.indentation_);
  if (own_) {
    put_key(key);
  } else {
    std::wstring copy = key;
    put_key(writer_.raw_key(copy));
  }
  element(value);
}

void json_emitter::put_key(const std::wstring& key) {
  wchar_t* to = out_.room(key.size() + 3);
  *to++ = L'"';
  text_sink::copy(to, key.data(), key.size());
  to += key.size();
  *to++ = L'"';
  *to++ = L':';
  out_.advance(to);
}

void json_emitter::element(const xvar& value) {
  if (cell::kind_of(value) == kind::list) return open(cell::as_list(value));
  if (cell::kind_of(value) == kind::bundle) {
    if (walks_bundles()) return open(cell::as_bundle(value));
    std::wostringstream nested;
    writer_.raw_bundle(nested, value, result_);
    out_.put(nested.str());
    return;
  }
  if (own_) return put_json_scalar(out_, value, escaped_, writer_.null_as_empty_);
  out_.put(writer_.raw_value(value));
}

}  // namespace ruvo::serializer
