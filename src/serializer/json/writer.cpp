// SPDX-License-Identifier: BSL-1.0

// Writing JSON: the text of scalars, and the walk over what holds them.

#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/time.hpp>

#include <cstddef>
#include <sstream>
#include <typeinfo>
#include <utility>

#include "serializer/json/grammar.hpp"
#include "serializer/number_text.hpp"
#include "serializer/writing.hpp"
#include "values/kinds.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::cell;
using detail::holder;
using detail::kind;
using detail::order;

namespace {

/// What stands for a character that needs an escape: two units, or a blank for a control character without
/// one.
wchar_t* print_escape(wchar_t* to, wchar_t c) noexcept {
  const wchar_t letter = letter_of_escape(c);
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

/// See json_writer::raw_value.
void put_scalar(text_sink& out, const xvar& value, bool escaped, bool null_as_empty) {
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
    case kind::decimal:  // readers of this dialect make doubles of numbers
      return put_quoted(out, value.to_string(), false);
    default:
      break;
  }
  switch (detail::family_of(value)) {
    case detail::family::integer:
    case detail::family::real:
      return put_number(out, value);
    case detail::family::text:
      return put_quoted(out, cell::text(value), escaped);
    default:
      return put_quoted(out, value.to_string(), escaped);
  }
}

/// Lends the store of a bundle to an xvar, for calls that take one.
class lent_bundle {
 public:
  explicit lent_bundle(const bundle& in) {
    bundle_access::set(cell::set_box<bundle>(value_), bundle_access::store(in));
  }
  lent_bundle(const lent_bundle&) = delete;
  lent_bundle& operator=(const lent_bundle&) = delete;
  ~lent_bundle() { bundle_access::detach(cell::as_bundle(value_)); }

  const xvar& value() const noexcept { return value_; }

 private:
  xvar value_;
};

// --- the walk

/// The library's own writers write a null value as the empty text.
struct own_json : own_hooks {
  explicit own_json(bool is_escaped) noexcept : escaped(is_escaped) {}

  void scalar(text_sink& out, const xvar& value) const { put_scalar(out, value, escaped, true); }

  bool escaped;
};

struct derived_json : derived_hooks<json_writer> {
  using derived_hooks::derived_hooks;
  using derived_hooks::writes;

  bool writes(text_sink& out, const bundle& in) {
    const lent_bundle lent(in);
    return writes(out, lent.value());
  }
};

template <class Hooks>
class json_visitor : public detail::visitor {
 public:
  using frame = detail::walk<>::frame;

  json_visitor(Hooks hooks, json_writer& writer, text_sink& out, order members)
      : hooks_(hooks), layout_(writer, out), out_(out), walk_(members) {}

  void write(const bundle& in) {
    if (!hooks_.writes(out_, in)) write_members(in);
  }
  /// A bundle that is left to the library whoever writes what it holds.
  void write_members(const bundle& in) {
    walk_.open(in);
    walk_.run(*this);
  }
  void write(const list& in) {
    walk_.open(in);
    walk_.run(*this);
  }
  void write(const std::wstring& key, const xvar& value) {
    member(key, value);
    walk_.run(*this);
  }

  void enter(const frame& f) {
    out_.put(f.what == holder::list ? L'[' : L'{');
    layout_.new_line();
    layout_.deeper();
  }
  void between(const frame&) {
    out_.put(L',');
    layout_.new_line();
  }
  void leave(const frame& f) {
    const bool is_list = f.what == holder::list;
    layout_.back();
    if (!is_list) layout_.new_line();
    layout_.indent();
    out_.put(is_list ? L']' : L'}');
    if (is_list) layout_.new_line();
  }
  void member(const frame&, const std::wstring& key, const xvar& value) { member(key, value); }
  void element(const frame&, const xvar& value) { put(value); }

 private:
  void member(const std::wstring& key, const xvar& value) {
    layout_.indent();
    put_key(hooks_.key(key));
    put(value);
  }
  void put_key(const std::wstring& key) {
    wchar_t* to = out_.room(key.size() + 3);
    *to++ = L'"';
    text_sink::copy(to, key.data(), key.size());
    to += key.size();
    *to++ = L'"';
    *to++ = L':';
    out_.advance(to);
  }
  void put(const xvar& value) {
    switch (cell::kind_of(value)) {
      case kind::list:
        walk_.open(cell::as_list(value));
        return;
      case kind::bundle:
        if (!hooks_.writes(out_, value)) walk_.open(cell::as_bundle(value));
        return;
      default:
        return hooks_.scalar(out_, value);
    }
  }

  Hooks hooks_;
  layout layout_;
  text_sink& out_;
  detail::walk<> walk_;
};

/// Calls `act` with the visitor that writes for this writer. `members` is the order for what a derived one
/// leaves to its base.
template <class Act>
void visit_for(json_writer& writer, text_sink& out, exception& result, order members, Act act) {
  const bool is_oauth = typeid(writer) == typeid(oauth_writer);
  const auto own = own_order<json_ordered_writer, json_unordered_writer>(writer);
  if (own || is_oauth) {
    json_visitor visitor(own_json(!is_oauth), writer, out, own.value_or(order::by_key));
    act(visitor);
  } else {
    json_visitor visitor(derived_json(writer, result), writer, out, members);
    act(visitor);
  }
}

/// True, with the failure in `result`, unless the value is of the kind.
bool is_no(kind wanted, const xvar& value, exception& result) {
  if (cell::kind_of(value) == wanted) return false;
  exc::NullPointer().copy_on(result);
  return true;
}

bool write_own_bundle(order members, json_writer& writer, std::wostringstream& out, const xvar& value,
                      exception& result) {
  if (is_no(kind::bundle, value, result)) return true;
  out << text_of([&](text_sink& sink) {
    visit_for(writer, sink, result, members, [&](auto& v) { v.write_members(cell::as_bundle(value)); });
  });
  return result.WRONG();
}

}  // namespace

// --- the writers

json_writer::json_writer(bool null_as_empty) : null_as_empty_(null_as_empty) {}
json_writer::~json_writer() = default;

std::wstring json_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_scalar(out, value, true, null_as_empty_); });
}

std::wstring& json_writer::raw_key(std::wstring& key) { return key; }

bool json_writer::write(std::wstring& out, const bundle& in, exception* err, int) {
  return layout::write(*this, out, err, [&](text_sink& sink, exception& result) {
    const auto array = in.find(array_key);
    const bool is_array = array != in.end();
    if (is_array && is_no(kind::list, array->second, result)) return;
    visit_for(*this, sink, result, order::by_key,
              [&](auto& v) { return is_array ? v.write(cell::as_list(array->second)) : v.write(in); });
  });
}

bool json_writer::raw_list(std::wostringstream& out, const xvar& value, exception& result) {
  if (is_no(kind::list, value, result)) return true;
  out << text_of([&](text_sink& sink) {
    visit_for(*this, sink, result, order::by_key, [&](auto& v) { v.write(cell::as_list(value)); });
  });
  return result.WRONG();
}

bool json_writer::raw_xvar(std::wostringstream& out, std::wstring& key, const xvar& value,
                           exception& result) {
  out << text_of([&](text_sink& sink) {
    visit_for(*this, sink, result, order::by_key, [&](auto& v) { v.write(key, value); });
  });
  return result.WRONG();
}

json_ordered_writer::json_ordered_writer() : json_writer(true) {}
json_ordered_writer::~json_ordered_writer() = default;
bool json_ordered_writer::raw_bundle(std::wostringstream& out, const xvar& value, exception& result) {
  return write_own_bundle(order::by_key, *this, out, value, result);
}

json_unordered_writer::json_unordered_writer() : json_writer(true) {}
json_unordered_writer::~json_unordered_writer() = default;
bool json_unordered_writer::raw_bundle(std::wostringstream& out, const xvar& value, exception& result) {
  return write_own_bundle(order::by_position, *this, out, value, result);
}

oauth_writer::oauth_writer() = default;
oauth_writer::~oauth_writer() = default;
std::wstring oauth_writer::raw_value(const xvar& value) {
  return text_of([&](text_sink& out) { put_scalar(out, value, false, true); });
}

}  // namespace ruvo::serializer
