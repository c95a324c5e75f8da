#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/time.hpp>

#include <sstream>
#include <typeinfo>

#include "serializer/json_emitter.hpp"
#include "serializer/scan.hpp"
#include "texto/numbers.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::cell;
using detail::kind;

namespace {

constexpr const wchar_t* array_key = L"__json_array__";

void append_escape(std::wstring& out, wchar_t c) {
  switch (c) {
    case L'\b':
      out += L"\\b";
      break;
    case L'\t':
      out += L"\\t";
      break;
    case L'\n':
      out += L"\\n";
      break;
    case L'\f':
      out += L"\\f";
      break;
    case L'\r':
      out += L"\\r";
      break;
    case L'"':
      out += L"\\\"";
      break;
    case L'\\':
      out += L"\\\\";
      break;
    default:
      out += L' ';  // a control character without an escape of its own
  }
}

void append_escaped(std::wstring& out, std::wstring_view text) {
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  for (;;) {
    const wchar_t* const stop = find_escaped(at, end);
    out.append(at, stop);
    if (stop == end) return;
    append_escape(out, *stop);
    at = stop + 1;
  }
}

void append_quoted(std::wstring& out, std::wstring_view text, bool escaped) {
  out += L'"';
  if (escaped) {
    append_escaped(out, text);
  } else {
    out += text;
  }
  out += L'"';
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

void append_json_scalar(std::wstring& out, const xvar& value, bool escaped, bool null_as_empty) {
  switch (cell::kind_of(value)) {
    case kind::null:
      out += null_as_empty ? L"\"\"" : L"null";
      return;
    case kind::boolean:
      out += cell::integer(value) ? L"true" : L"false";
      return;
    case kind::time:
      return append_quoted(out, static_cast<ruvo::time>(value).to_string(ruvo::time::url_canonical), false);
    case kind::date:
      return texto::append_integer(out, static_cast<long>(static_cast<ruvo::date>(value)));
    case kind::datetime:
      return texto::append_fixed(out, static_cast<double>(cell::integer(value)));
    case kind::binary:
      return append_quoted(out, cell::pointer<binary>(value)->getAsB64(false), false);
    default:
      if (value.is_number()) return detail::append_text(out, value);
      if (cell::is_text(value)) return append_quoted(out, cell::text(value), escaped);
      return append_quoted(out, value.to_string(), escaped);
  }
}

// --- the writers
// --------------------------------------------------------------------------------------------

json_writer::json_writer(bool null_as_empty) : null_as_empty_(null_as_empty) {}
json_writer::~json_writer() = default;

std::wstring json_writer::raw_value(const xvar& value) {
  std::wstring text;
  append_json_scalar(text, value, true, null_as_empty_);
  return text;
}

std::wstring& json_writer::raw_key(std::wstring& key) { return key; }

bool json_writer::write(std::wstring& out, const bundle& in, exception* err, int) {
  exception result;
  const std::wstring indentation = indentation_;
  std::wstring text;
  try {
    json_emitter emitter(*this, text, result);
    if (const auto array = in.find(array_key); array != in.end()) {
      emitter.write_list(array->second);
    } else if (emitter.walks_bundles()) {
      emitter.write_members(in);
    } else {
      const lent_bundle lent(in);
      emitter.write_bundle(lent.value());
    }
  } catch (...) {
    indentation_ = indentation;
    throw;
  }
  out = std::move(text);
  if (err && result.WRONG()) *err = result;
  return result.WRONG();
}

bool json_writer::raw_list(std::wostringstream& out, const xvar& value, exception& result) {
  std::wstring text;
  json_emitter(*this, text, result).write_list(value);
  out << text;
  return result.WRONG();
}

bool json_writer::raw_xvar(std::wostringstream& out, std::wstring& key, const xvar& value,
                           exception& result) {
  std::wstring text;
  json_emitter(*this, text, result).write_member(key, value);
  out << text;
  return result.WRONG();
}

namespace {

bool write_own_bundle(json_emitter::order members, json_writer& writer, std::wostringstream& out,
                      const xvar& value, exception& result) {
  if (cell::kind_of(value) != kind::bundle) {
    exc::NullPointer().copy_on(result);
    return true;
  }
  std::wstring text;
  json_emitter(writer, text, result, members).write_members(cell::as_bundle(value));
  out << text;
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
  std::wstring text;
  append_json_scalar(text, value, false, true);
  return text;
}

// --- the walk
// -----------------------------------------------------------------------------------------------

json_emitter::json_emitter(json_writer& writer, std::wstring& out, exception& result, order members)
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
    if (open_.back().is_list) {
      next_element(open_.back());
    } else {
      next_member(open_.back());
    }
  }
}

void json_emitter::open(const list& in) {
  out_ += L'[';
  frame& f = open_.emplace_back();
  f.is_list = true;
  f.at = in.data();
  f.last = f.at + in.size();
  break_and_push();
}

void json_emitter::open(const bundle& in) {
  out_ += L'{';
  frame& f = open_.emplace_back();
  f.store = bundle_access::store(in);
  f.entry = f.store && order_ == order::by_key ? f.store->first() : nullptr;
  f.size = f.store ? f.store->size() : 0;
  break_and_push();
}

void json_emitter::break_and_push() {
  if (!writer_.tabulated_) return;
  out_ += L'\n';
  writer_.push_tab();
}

void json_emitter::separate(frame& f) {
  if (std::exchange(f.first, false)) return;
  out_ += L',';
  if (writer_.tabulated_) out_ += L'\n';
}

void json_emitter::next_element(frame& f) {
  if (f.at != f.last) {
    separate(f);
    return element(*f.at++);
  }
  writer_.pop_tab();
  out_ += writer_.indentation_;
  out_ += L']';
  if (writer_.tabulated_) out_ += L'\n';
  open_.pop_back();
}

void json_emitter::next_member(frame& f) {
  if (f.taken != f.size) {
    separate(f);
    const bundle::entry* const e = order_ == order::by_key ? f.entry : f.store->nth(f.taken);
    ++f.taken;
    if (order_ == order::by_key) f.entry = f.store->step(f.entry, f.rank, true);
    return member(e->first, e->second);
  }
  writer_.pop_tab();
  if (writer_.tabulated_) out_ += L'\n';
  out_ += writer_.indentation_;
  out_ += L'}';
  open_.pop_back();
}

void json_emitter::member(const std::wstring& key, const xvar& value) {
  out_ += writer_.indentation_;
  out_ += L'"';
  if (own_) {
    out_ += key;
  } else {
    std::wstring copy = key;
    out_ += writer_.raw_key(copy);
  }
  out_ += L"\":";
  element(value);
}

void json_emitter::element(const xvar& value) {
  if (cell::kind_of(value) == kind::list) return open(cell::as_list(value));
  if (cell::kind_of(value) == kind::bundle) {
    if (walks_bundles()) return open(cell::as_bundle(value));
    std::wostringstream nested;
    writer_.raw_bundle(nested, value, result_);
    out_ += nested.str();
    return;
  }
  if (own_) return append_json_scalar(out_, value, escaped_, writer_.null_as_empty_);
  out_ += writer_.raw_value(value);
}

}  // namespace ruvo::serializer
