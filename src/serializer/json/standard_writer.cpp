// SPDX-License-Identifier: BSL-1.0

// Writing standard JSON: the text of each kind of value, and the walk over what holds them.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/numbers.hpp"
#include "memory/text_sink.hpp"
#include "serializer/iso_dates.hpp"
#include "serializer/json/spelling.hpp"
#include "serializer/json/standard_text.hpp"
#include "values/cell.hpp"
#include "values/decimal_access.hpp"
#include "values/walk.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::holder;
using detail::kind;

namespace {

/// Why a value can't be written. It is thrown to the beginning of the walk, which knows where the value is.
struct refusal {
  const wchar_t* reason;
};

// --- scalars

/// A small text needs no block.
template <class Out>
using sink = detail::basic_text_sink<Out, 2048 / sizeof(Out)>;

template <class Out>
class scalar_writer {
 public:
  explicit scalar_writer(json_dates dates, bool separators) noexcept
      : dates_(dates), separators_(separators) {}

  void put(sink<Out>& out, const var& value) const {
    switch (cell::kind_of(value)) {
      case kind::null:
        return put_ascii(out, "null");
      case kind::boolean:
        return cell::integer(value) ? put_ascii(out, "true") : put_ascii(out, "false");
      case kind::wide_char: {
        const auto unit = static_cast<wchar_t>(cell::integer(value));
        return put_text(out, {&unit, 1});
      }
      case kind::uxlong:
        return put_integer(out, static_cast<unsigned long long>(cell::integer(value)));
      case kind::float_:
      case kind::double_:
        return put_double(out, cell::real(value));
      case kind::decimal:
        return put_decimal(out, *cell::pointer<decimal>(value));
      case kind::date:
      case kind::time:
      case kind::datetime:
        return put_lapse(out, value);
      case kind::small_text:
      case kind::text:
      case kind::string_text:
        return put_text(out, cell::text(value));
      case kind::binary:
        return put_bytes(out, *cell::pointer<binary>(value));
      case kind::memo:
        return put_text(out, cell::pointer<memo>(value)->to_string());
      case kind::object:
        return put_text(out, text_of_object(value));
      default:
        return put_integer(out, cell::integer(value));
    }
  }

  void put_text(sink<Out>& out, std::wstring_view text) const { out.advance(put_quoted(out, text)); }
  /// With what comes behind a name.
  void put_name(sink<Out>& out, std::wstring_view name, bool with_blank) const {
    Out* to = put_quoted(out, name);
    *to++ = static_cast<Out>(':');
    *to = static_cast<Out>(' ');
    out.advance(to + (with_blank ? 1 : 0));
  }

 private:
  /// Where the text ends with its quotation marks; there is room for two more.
  Out* put_quoted(sink<Out>& out, std::wstring_view text) const {
    constexpr std::size_t piece = 1024, more = 12;  // for the marks, and what is written beyond the end
    // cppcheck-suppress danglingTemporaryLifetime ; a text that is made for the call lives as long
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    Out* to = out.room(most_escaped_units * std::min(piece, text.size()) + more);
    *to++ = static_cast<Out>('"');
    while (true) {
      const wchar_t* const stop = at + std::min(piece, static_cast<std::size_t>(end - at));
      to = escaped_text<Out, wchar_t>::put(to, at, stop, end, separators_);
      if (at == end) break;
      out.advance(to);
      to = out.room(most_escaped_units * std::min(piece, static_cast<std::size_t>(end - at)) + more);
    }
    *to++ = static_cast<Out>('"');
    return to;
  }
  static void put_ascii(sink<Out>& out, std::string_view text) {
    Out* const to = out.room(text.size());
    out.advance(std::copy(text.begin(), text.end(), to));
  }

  template <class Integer>
  static void put_integer(sink<Out>& out, Integer value) {
    Out* const to = out.room(texto::most_number_units);
    if constexpr (std::same_as<Out, char>) {
      out.advance(std::to_chars(to, to + texto::most_number_units, value).ptr);
    } else if constexpr (std::is_signed_v<Integer>) {
      out.advance(texto::print_integer(to, value));
    } else {
      out.advance(texto::print_unsigned(to, value));
    }
  }

  static void put_double(sink<Out>& out, double value) {
    if (!std::isfinite(value)) throw refusal{L"el número no es finito."};
    if constexpr (std::same_as<Out, char>) {
      out.advance(texto::print_shortest(out.room(texto::most_shortest_units), value));
    } else {
      char text[texto::most_shortest_units];
      put_ascii(out, {text, texto::print_shortest(text, value)});
    }
  }

  static void put_decimal(sink<Out>& out, const decimal& value) {
    char text[detail::decimal_access::most_units];
    put_ascii(out, {text, detail::decimal_access::print(text, value)});
  }

  void put_lapse(sink<Out>& out, const var& value) const {
    if (cell::integer(value) == -1) return put_ascii(out, "null");
    char text[most_iso_units];
    const std::string_view written(text, iso_end(text, value));
    out.put(static_cast<Out>('"'));
    put_ascii(out, written);
    out.put(static_cast<Out>('"'));
  }

  char* iso_end(char* to, const var& value) const {
    char* end = to;
    try {
      end = print_iso(to, value, dates_ == json_dates::utc);
    } catch (const exc::CalendarException&) {
      throw refusal{L"no tiene forma en el calendario."};
    }
    const bool has_year = cell::kind_of(value) != kind::time;
    if (has_year && (to[0] == '-' || to[4] != '-'))
      throw refusal{L"ISO 8601 solo tiene los años de 0 a 9999."};
    return end;
  }

  static void put_bytes(sink<Out>& out, const binary& value) {
    const auto& bytes = value.get_store();
    const std::size_t units = texto::base64_size(bytes.size());
    Out* const to = out.room(units + 2);
    *to = to[units + 1] = static_cast<Out>('"');
    texto::base64_encode_to(to + 1, bytes.data(), bytes.size(), false);
    out.advance(to + units + 2);
  }

  static std::wstring text_of_object(const var& value) {
    try {
      return value.to_string();
    } catch (const std::bad_alloc&) {
      throw;
    } catch (...) {
      throw refusal{L"el objeto no da su texto."};
    }
  }

  json_dates dates_;
  bool separators_;
};

// --- the walk

/// What the frame of a container keeps: whether its value has qualities, so that an object is open around it;
/// and that of qualities: whose they are.
struct surroundings {
  bool is_qualified = false, at_text = false;
  const xvar* owner = nullptr;
};

constexpr std::wstring_view text_name = L"#text";

template <class Out>
class standard_visitor : public detail::visitor {
  using walk = detail::walk<const xvar, surroundings>;

 public:
  using frame = walk::frame;

  explicit standard_visitor(const json_write_options& options)
      : options_(options),
        scalars_(options.dates, options.line_separators),
        walk_(options.sorted ? detail::order::by_key : detail::order::by_position) {}

  /// Puts the text into `out`, true on failure.
  template <class Value>
  bool write(std::basic_string<Out>& out, const Value& value, exception* err) {
    try {
      if constexpr (std::same_as<Value, xvar>) {
        put(value);
      } else {
        walk_.open(value);
      }
      walk_.run(*this);
    } catch (const refusal& refused) {
      exc::jsonUnwritable(pointer(), refused.reason).copy_on(err);
      return true;
    }
    out_.replace(out);
    return false;
  }

  void enter(const frame& f) {
    if (f.what == holder::bundle && f.is_qualified) {
      if (f.size > 0) between(f);
      return;
    }
    out_.put(static_cast<Out>(f.what == holder::list ? '[' : '{'));
    ++level_;
    if (f.size > 0) new_line();
  }
  void between(const frame&) {
    out_.put(static_cast<Out>(','));
    new_line();
  }
  void leave(frame& f) {
    if (f.what == holder::qualities) return leave_qualities(f);
    close(f.what == holder::list ? ']' : '}', f.size > 0 || (f.what == holder::bundle && f.is_qualified));
    if (f.what == holder::list && f.is_qualified) close('}', true);
  }
  void member(const frame& f, const std::wstring& key, const xvar& value) {
    put_name(options_.folded ? key : spelling_in(f, key));
    put(value);
  }
  void element(const frame&, const xvar& value) { put(value); }
  void quality(const frame&, const std::wstring& key, const var& value) {
    put_name(name_of_quality(key));
    put_bare(value);
  }

 private:
  void put(const xvar& value) {
    const auto* const qualities = cell::qualities(value);
    if (qualities && !qualities->empty() && options_.qualities != json_qualities::left_out) {
      put_qualified(value, *qualities);
    } else {
      put_bare(value);
    }
  }
  void put_bare(const var& value) {
    if (cell::is_container(value)) {
      walk_.open_held(value);
    } else {
      scalars_.put(out_, value);
    }
  }

  // Qualities and what they belong to share an object. The walk visits what was opened last first.

  void put_qualified(const xvar& value, const xvar::qualities_map& qualities) {
    if (options_.qualities == json_qualities::failure) throw refusal{L"tiene cualidades."};
    if (cell::kind_of(value) == kind::bundle) refuse_twins(cell::as_bundle(value), qualities);
    if (cell::is_container(value)) walk_.open_held(value).is_qualified = true;
    walk_.open(qualities).owner = &value;
  }
  void leave_qualities(frame& f) {
    const kind of = cell::kind_of(*f.owner);
    if (of == kind::bundle) return;
    f.at_text = true;
    between(f);
    put_name(text_name);
    if (of == kind::list) return;
    scalars_.put(out_, *f.owner);
    close('}', true);
  }
  std::wstring name_of_quality(const std::wstring& key) const {
    std::wstring name = L"@" + key;
    if (options_.folded) std::ranges::transform(name, name.begin(), texto::to_lower);
    return name;
  }
  void refuse_twins(const bundle& in, const xvar::qualities_map& qualities) const {
    const auto* const store = detail::bundle_access::store(in);
    for (const auto& [key, value] : qualities) {
      const std::wstring name = name_of_quality(key);
      if (options_.folded ? entry_of<detail::folded_key>(store, name) : find_spelled(store, name))
        throw refusal{L"una cualidad y un miembro darían el mismo nombre."};
    }
  }

  // --- names

  /// Keys that were folded in accented letters by a path, and one that was not, may be spelled alike.
  const std::wstring& spelling_in(const frame& f, const std::wstring& key) const {
    const detail::shared_key& own = shared(key);
    if (!own.is_spelled) return key;
    const std::wstring& name = own.spelling();
    if (!std::ranges::all_of(name, [](wchar_t c) { return static_cast<char16_t>(c) < 0x80; })) {
      const bundle::entry* const other = entry_of<detail::folded_key>(f.store, name);
      if (other && &other->first != &key && other->spelling() == name)
        throw refusal{L"hay dos miembros que se escriben igual."};
    }
    return name;
  }
  void put_name(std::wstring_view name) { scalars_.put_name(out_, name, options_.indent >= 0); }

  // --- layout

  void new_line() {
    if (options_.indent < 0) return;
    const std::size_t blanks = level_ * static_cast<std::size_t>(options_.indent);
    Out* const to = out_.room(blanks + 1);
    *to = static_cast<Out>('\n');
    out_.advance(std::fill_n(to + 1, blanks, static_cast<Out>(' ')));
  }
  void close(char sign, bool has_values) {
    --level_;
    if (has_values) new_line();
    out_.put(static_cast<Out>(sign));
  }

  // --- failures

  /// Where the walk is.
  std::wstring pointer() const {
    std::wstring out;
    for (const frame& f : walk_.open_frames()) {
      if (!f.entered) continue;
      if (f.what == holder::list) {
        if (f.is_qualified) append_token(out, text_name);
        append_token(out, std::to_wstring(f.taken - 1));
      } else if (f.what == holder::bundle) {
        const bundle::entry& at = walk_.member_of(f);
        append_token(out, options_.folded ? at.first : at.spelling());
      } else {
        append_token(out, f.at_text ? std::wstring(text_name) : name_of_quality(std::prev(f.quality)->first));
      }
    }
    return out;
  }

  const json_write_options& options_;
  scalar_writer<Out> scalars_;
  sink<Out> out_;
  walk walk_;
  std::size_t level_ = 0;
};

/// What is too long for any text is too much for memory.
template <class Out, class Value>
bool write(std::basic_string<Out>& out, const Value& value, exception* err,
           const json_write_options& options) {
  try {
    return standard_visitor<Out>(options).write(out, value, err);
  } catch (const std::length_error&) {
    throw std::bad_alloc();
  }
}

template <class Value>
bool write(std::u8string& out, const Value& value, exception* err, const json_write_options& options) {
  std::string made;
  if (write(made, value, err, options)) return true;
  out.assign(reinterpret_cast<const char8_t*>(made.data()), made.size());
  return false;
}

}  // namespace

#define KESTA_WRITE(Text, Value)                                          \
  bool write_standard_json(Text& out, const Value& value, exception* err, \
                           const json_write_options& options) {           \
    return write(out, value, err, options);                               \
  }
KESTA_WRITE(std::wstring, bundle)
KESTA_WRITE(std::wstring, list)
KESTA_WRITE(std::wstring, xvar)
KESTA_WRITE(std::string, bundle)
KESTA_WRITE(std::string, list)
KESTA_WRITE(std::string, xvar)
KESTA_WRITE(std::u8string, bundle)
KESTA_WRITE(std::u8string, list)
KESTA_WRITE(std::u8string, xvar)
#undef KESTA_WRITE

}  // namespace ruvo::serializer
