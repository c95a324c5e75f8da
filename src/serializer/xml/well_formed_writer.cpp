// SPDX-License-Identifier: BSL-1.0

// Writing well-formed XML: names, texts of values, tags, and the walk that puts them together.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/xml_writing.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/numbers.hpp"
#include "exc/detail.hpp"
#include "serializer/iso_dates.hpp"
#include "serializer/number_text.hpp"
#include "serializer/xml/escapes.hpp"
#include "serializer/xml/names.hpp"
#include "serializer/xml/scopes.hpp"
#include "values/kinds.hpp"
#include "values/walk.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::family;
using detail::holder;
using detail::kind;
using detail::text_sink;

namespace {

// What the strict reader and this writer say about text beside elements: the key of its row.
constexpr std::wstring_view text_key = L"#text";
constexpr std::wstring_view schema_quality = L"__schema__";

// --- values without markup

/// A real number in full: without an exponent, and behind the point no more digits than reading back takes.
void put_real(text_sink& out, const var& value) {
  const double real = cell::real(value);
  if (std::isnan(real)) return out.put_literal(L"NaN");
  if (std::isinf(real)) return real < 0 ? out.put_literal(L"-INF") : out.put_literal(L"INF");
  char digits[texto::most_exact_units];
  const bool is_float = cell::kind_of(value) == kind::float_;
  const char* const end =
      is_float ? texto::print_exact(digits, static_cast<float>(real)) : texto::print_exact(digits, real);
  wchar_t* const to = out.room(static_cast<std::size_t>(end - digits));
  out.advance(std::transform(static_cast<const char*>(digits), end, to, texto::unit_of));
}

void put_binary(text_sink& out, const binary& bytes) {
  const std::size_t units = texto::base64_size(bytes.size());
  wchar_t* const to = out.room(units);
  texto::base64_encode_to(to, bytes.get_store().data(), bytes.size(), false);
  out.advance(to + units);
}

/// Calls `use` with the text of a value whose text may hold anything; false for all other values.
template <class Use>
bool with_prose(const var& value, Use use) {
  switch (cell::kind_of(value)) {
    case kind::small_text:
    case kind::text:
    case kind::string_text:
      use(cell::text(value));
      return true;
    case kind::memo:
      use(std::wstring_view(cell::pointer<memo>(value)->to_string()));
      return true;
    case kind::wide_char: {
      const auto unit = static_cast<wchar_t>(cell::integer(value));
      use(std::wstring_view(&unit, 1));
      return true;
    }
    case kind::object:
    case kind::list:
    case kind::bundle:
      use(std::wstring_view(value.to_string()));
      return true;
    default:
      return false;
  }
}

bool is_without_text(const var& value) {
  switch (cell::kind_of(value)) {
    case kind::null:
      return true;
    case kind::small_text:
    case kind::text:
    case kind::string_text:
      return cell::text(value).empty();
    case kind::memo:
      return cell::pointer<memo>(value)->empty();
    case kind::binary:
      return cell::pointer<binary>(value)->empty();
    case kind::date:
    case kind::time:
    case kind::datetime:
      return cell::integer(value) == -1;
    case kind::list:
      return cell::as_list(value).empty();
    case kind::bundle:
      return cell::as_bundle(value).empty();
    default:
      return false;
  }
}

const xvar::qualities_map* qualities_of(const xvar& value) noexcept {
  const auto* const all = cell::qualities(value);
  return all && !all->empty() ? all : nullptr;
}

/// Qualities that the library keeps for itself.
bool is_mark(std::wstring_view name) noexcept {
  return name.size() > 4 && name.starts_with(L"__") && name.ends_with(L"__");
}

/// Whether the only member of a row is text beside elements.
bool is_text_row(std::wstring_view key, const xvar& value) noexcept {
  return key == text_key && !cell::is_container(value) && !qualities_of(value);
}
bool is_blank_text(const xvar& value) {
  bool blank = true;
  const auto look = [&](std::wstring_view text) { blank = std::all_of(text.begin(), text.end(), is_blank); };
  return with_prose(value, look) ? blank : is_without_text(value);
}

/// Whether the text is written as it is: the name of a namespace has to be, as it is compared.
bool is_namespace_name(const var& value) noexcept {
  if (!cell::is_text(value)) return false;
  const std::wstring_view text = cell::text(value);
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!texto::is_surrogate(text[at])) {
      if (!is_allowed(text[at])) return false;
    } else if (!texto::is_high_surrogate(text[at]) || ++at == text.size() ||
               !texto::is_low_surrogate(text[at])) {
      return false;
    }
  }
  return true;
}

/// What the rows of a list are to be.
struct list_form {
  bool members = false;  // each of them a bundle of one member, and without qualities
  bool mixed = false;    // and some of them text beside elements
  bool loses = true;     // blanks: as there is nothing but blanks beside elements, or no element
};

list_form form_of(const list& rows) {
  list_form form;
  std::size_t elements = 0;
  for (const xvar& row : rows) {
    if (cell::kind_of(row) != kind::bundle || qualities_of(row)) return {};
    const detail::bundle_store* const store = detail::bundle_access::store(cell::as_bundle(row));
    if (!store || store->size() != 1) return {};
    const bundle::entry& only = *store->nth(0);
    if (is_text_row(only.first, only.second)) {
      form.mixed = true;
      form.loses = form.loses && is_blank_text(only.second);
    } else {
      ++elements;
    }
  }
  form.members = true;
  form.loses = form.loses || elements == 0;
  return form;
}

// --- the walk

/// What an open holder has to do with elements.
struct element_notes {
  const std::wstring* key = nullptr;  // under which it lies, unless it is a row
  xml_name name;                      // of the element that ends behind it, if one does
  xml_name row;                       // of the rows of a list, unless they are members
  std::size_t declared = 0;           // prefixes around that element
  list_form form;                     // of the list, or of the list around a row that is a member
};

class document_writer : public detail::visitor {
  using walk = detail::walk<const xvar, element_notes>;

 public:
  using frame = walk::frame;

  document_writer(text_sink& out, const xml_write_options& options)
      : options_(options),
        out_(out),
        escapes_(out, forbidden{this}),
        walk_(options.sorted ? detail::order::by_key : detail::order::by_position) {}

  void write(const bundle& in) {
    if (options_.root.empty()) {
      only_member(in);
    } else {
      const xml_name name = root_name();
      start_tag(name, nullptr);
      if (in.empty()) {
        out_.put_literal(L"/>");
      } else {
        open_element(walk_.open(in), name);
      }
    }
    finish();
  }
  void write(const xvar& in) {
    if (!options_.root.empty()) {
      element(root_name(), in);
    } else if (cell::kind_of(in) == kind::bundle && !qualities_of(in)) {
      only_member(cell::as_bundle(in));
    } else {
      throw exc::xmlNoRoot();
    }
    finish();
  }

  void declaration(std::wstring_view encoding) {
    if (!options_.declaration) return;
    out_.put_literal(L"<?xml version=\"1.0\"");
    if (!encoding.empty()) {
      out_.put_literal(L" encoding=\"");
      out_.put(encoding);
      out_.put(L'"');
    }
    out_.put_literal(L"?>");
  }

  // --- visits

  void leave(const frame& f) {
    if (f.name.text.empty()) return;
    --depth_;
    start_line();
    if (f.form.mixed) --mixed_;
    end_tag(f.name);
    scopes_.shrink(f.declared);
  }

  void member(const frame& f, const std::wstring& key, const xvar& value) {
    key_ = &(options_.folded ? key : static_cast<const detail::shared_key&>(key).spelling());
    if (f.form.mixed && is_text_row(key, value)) return text_beside(value, f.form.loses);
    const xml_name name = name_of(*key_);
    if (!has_repeated_rows(value)) return element(name, value);
    frame& rows = walk_.open_held(value);
    rows.key = key_;
    rows.row = name;
  }

  void element(const frame& f, const xvar& row) {
    key_ = nullptr;
    if (!f.row.text.empty()) return element(xml_name(f.row), row);
    const list_form form = f.form;
    walk_.open_held(row).form = form;
  }

 private:
  struct forbidden {
    document_writer* writer;
    wchar_t operator()(wchar_t c) const { return writer->replacement(c); }
  };

  // --- the document

  xml_name root_name() {
    key_ = &options_.root;
    return name_of(options_.root);
  }

  void only_member(const bundle& in) {
    if (in.size() != 1 || has_repeated_rows(in.begin()->second)) {
      throw detail::about(exc::xmlNoRoot(), [&] { return L"miembros: " + std::to_wstring(in.size()); });
    }
    walk_.open(in);
  }

  void finish() {
    walk_.run(*this);
    if (options_.indent >= 0) out_.put(L'\n');
  }

  /// Where lines are broken: between tags only, so that no text gets blanks.
  void start_line() {
    if (options_.indent >= 0 && mixed_ == 0) break_line();
  }
  void break_line() {
    constexpr std::size_t deepest = 100;
    const std::size_t blanks = std::min(depth_, deepest) * static_cast<std::size_t>(options_.indent);
    wchar_t* to = out_.room(blanks + 1);
    if (out_.size() > 0) *to++ = L'\n';
    out_.advance(std::fill_n(to, blanks, L' '));
  }

  // --- elements

  void element(const xml_name& given, const xvar& value) {
    const std::size_t declared = scopes_.size();
    const auto* const qualities = qualities_of(value);
    const xml_name name = qualities ? with_schema(given, *qualities) : given;
    start_tag(name, qualities);
    if (is_without_text(value)) {
      out_.put_literal(L"/>");
    } else if (cell::is_container(value)) {
      return open_content(name, value, declared);
    } else {
      out_.put(L'>');
      scalar(value);
      end_tag(name);
    }
    scopes_.shrink(declared);
  }

  /// Of a list or bundle that is not empty.
  void open_content(const xml_name& name, const xvar& value, std::size_t declared) {
    list_form form;
    xml_name row;
    if (cell::kind_of(value) == kind::list) {
      if (options_.rows == xml_rows::members) form = form_of(cell::as_list(value));
      if (!form.members) row = name_of(options_.item);
    }
    frame& f = walk_.open_held(value);
    f.key = key_ == &options_.root ? nullptr : key_;  // a path begins in the value
    f.row = row;
    f.form = form;
    f.declared = declared;
    open_element(f, name);
    if (form.mixed) ++mixed_;
  }
  void open_element(frame& f, const xml_name& name) {
    out_.put(L'>');
    f.name = name;
    ++depth_;
  }

  void start_tag(const xml_name& name, const xvar::qualities_map* qualities) {
    start_line();
    wchar_t* const to = out_.room(name.text.size() + 1);
    *to = L'<';
    text_sink::copy(to + 1, name.text.data(), name.text.size());
    out_.advance(to + 1 + name.text.size());
    if (qualities) attributes(*qualities);
    if (name.prefix != 0) check_prefix(name);
  }
  void end_tag(const xml_name& name) {
    const std::size_t size = name.text.size();
    wchar_t* const to = out_.room(size + 3);
    to[0] = L'<';
    to[1] = L'/';
    text_sink::copy(to + 2, name.text.data(), size);
    to[size + 2] = L'>';
    out_.advance(to + size + 3);
  }

  /// Whether the rows of a list are to be elements with its name.
  bool has_repeated_rows(const xvar& value) const noexcept {
    return options_.rows == xml_rows::repeated && cell::kind_of(value) == kind::list && !qualities_of(value);
  }

  // --- attributes

  void attributes(const xvar::qualities_map& qualities) {
    prefixed_.clear();
    for (const auto& [key, value] : qualities) {
      if (is_mark(key)) continue;
      quality_ = &key;
      const xml_name name = name_of_quality(key);
      out_.put(L' ');
      out_.put(name.text);
      out_.put_literal(L"=\"");
      if (!with_prose(value, [&](std::wstring_view text) { escapes_.attribute(text); })) put_plain(value);
      out_.put(L'"');
      if (options_.namespaces) declare(name, value);
      if (name.prefix != 0) prefixed_.push_back({name, &key});
    }
    check_prefixes();
    quality_ = nullptr;
  }

  xml_name name_of_quality(const std::wstring& key) {
    if (!options_.folded) return made_name(key);
    std::wstring folded = key;
    std::transform(folded.begin(), folded.end(), folded.begin(), texto::to_lower);
    return made_name(*made_.insert(std::move(folded)).first);
  }

  void declare(const xml_name& name, const var& value) {
    if (!xml_scopes::declares(name)) return;
    if (!is_namespace_name(value) || !scopes_.declare(name, value.to_string()))
      refuse<exc::xmlBadPrefix>(name.text);
  }
  void check_prefixes() {
    std::set<std::pair<std::wstring_view, std::wstring_view>> meanings;
    for (const auto& [name, key] : prefixed_) {
      if (xml_scopes::declares(name)) continue;
      quality_ = key;
      const std::wstring& uri = check_prefix(name);
      if (prefixed_.size() > 1 && !meanings.emplace(uri, name.text.substr(name.prefix)).second)
        refuse<exc::xmlBadPrefix>(name.text);
    }
  }
  /// What the prefix stands for.
  const std::wstring& check_prefix(const xml_name& name) {
    const std::wstring* const uri = scopes_.uri_of(name.prefix_text());
    if (uri) return *uri;
    refuse<exc::xmlBadPrefix>(name.text);
  }

  // --- names

  xml_name name_of(const std::wstring& text) {
    known_name& known =
        known_[reinterpret_cast<std::uintptr_t>(&text) / sizeof(std::wstring) % std::size(known_)];
    if (known.of != &text) known = {&text, made_name(text)};
    return known.name;
  }

  /// The text, which must last as long as the writer, as a name.
  xml_name made_name(const std::wstring& text) {
    xml_name name;
    const bool escapes = options_.names == xml_names::escaped;
    const bool is_name = read_name(escapes ? escaped(text) : text, options_.namespaces, name);
    if (!is_name) refuse<exc::xmlBadName>(text);
    return name;
  }
  const std::wstring& escaped(const std::wstring& text) {
    std::wstring made = escaped_xml_name(text, options_.namespaces);
    return made == text ? text : *made_.insert(std::move(made)).first;
  }

  /// The name with the prefix that the quality __schema__ gives it.
  xml_name with_schema(const xml_name& name, const xvar::qualities_map& qualities) {
    static const std::wstring key(schema_quality);
    const auto schema = qualities.find(key);
    if (schema == qualities.end()) return name;
    std::wstring given = schema->second.to_string();
    if (given.empty()) return name;
    if (options_.folded) std::transform(given.begin(), given.end(), given.begin(), texto::to_lower);
    const std::wstring& prefix = *made_.insert(std::move(given)).first;
    const std::wstring whole = std::wstring(made_name(prefix).text) + L':' + std::wstring(name.text);
    xml_name made;
    if (!read_name(*made_.insert(whole).first, options_.namespaces, made)) refuse<exc::xmlBadName>(whole);
    return made;
  }

  // --- texts

  void scalar(const xvar& value) {
    const bool is_prose = with_prose(value, [&](std::wstring_view text) {
      const bool has_markup = options_.cdata && text.find_first_of(L"<>&") != text.npos;
      has_markup ? escapes_.cdata(text) : escapes_.element(text);
    });
    if (!is_prose) put_plain(value);
  }

  /// Text between elements, where blanks at its ends would be lost or not.
  void text_beside(const xvar& value, bool loses_blanks) {
    const bool is_prose = with_prose(value, [&](std::wstring_view text) {
      loses_blanks ? escapes_.element(text) : escapes_.inside(text);
    });
    if (!is_prose) put_plain(value);
  }

  /// A value whose text holds nothing to be escaped.
  void put_plain(const var& value) {
    switch (detail::family_of(value)) {
      case family::truth:
        return cell::integer(value) ? out_.put_literal(L"true") : out_.put_literal(L"false");
      case family::integer:
      case family::exact:
        return put_number(out_, value);
      case family::real:
        return put_real(out_, value);
      case family::date:
      case family::time:
      case family::datetime:
        return put_iso(value);
      case family::prose:
        return put_binary(out_, *cell::pointer<binary>(value));
      default:
        return;
    }
  }

  void put_iso(const var& value) {
    char text[most_iso_units];
    const char* const end = print_iso(text, value, options_.dates == xml_dates::utc);
    wchar_t* const to = out_.room(most_iso_units);
    out_.advance(std::transform(static_cast<const char*>(text), end, to, texto::unit_of));
  }

  wchar_t replacement(wchar_t c) {
    if (options_.characters == xml_characters::replaced) return static_cast<wchar_t>(0xFFFD);
    std::wstring code = L"U+";
    for (const int shift : {12, 8, 4, 0}) code += L"0123456789ABCDEF"[static_cast<char16_t>(c) >> shift & 15];
    throw detail::about(exc::xmlBadCharacter(path()), [&] { return code; });
  }

  // --- failures

  template <class Failure>
  [[noreturn]] void refuse(std::wstring_view what) {
    throw detail::about(Failure(path()), [&] { return detail::quoted(what); });
  }

  /// Where the present value lies; of a long path the end.
  std::wstring path() const {
    constexpr std::size_t longest = 300;
    std::wstring out;
    for (const frame& f : walk_.open_frames()) {
      if (f.key) add_key(out, *f.key);
      if (f.what == holder::list && f.taken > 0) out += L'[' + std::to_wstring(f.taken - 1) + L']';
    }
    if (key_) add_key(out, *key_);
    if (quality_) out += L'@' + *quality_;
    if (out.size() > longest) out.replace(0, out.size() - longest, L"\x2026");
    return out;
  }
  static void add_key(std::wstring& path, const std::wstring& key) {
    if (!path.empty()) path += L'.';
    path += key;
  }

  struct known_name {
    const std::wstring* of = nullptr;
    xml_name name;
  };
  struct prefixed_name {
    xml_name name;
    const std::wstring* key;
  };

  const xml_write_options& options_;
  text_sink& out_;
  xml_escapes<forbidden> escapes_;
  walk walk_;
  xml_scopes scopes_;
  std::vector<prefixed_name> prefixed_;  // attributes of the present element
  std::set<std::wstring> made_;          // names that are not spelled so
  known_name known_[64];                 // those seen last, by the address of their text
  std::size_t depth_ = 0, mixed_ = 0;    // open elements, and those of them with text beside elements
  const std::wstring *key_ = nullptr, *quality_ = nullptr;  // of the present value, unless it is a row
};

// --- targets

/// Writes the document into the sink; true on failure.
template <class Value>
bool write_units(text_sink& out, const Value& value, exception* err, const xml_write_options& options,
                 std::wstring_view encoding) {
  try {
    document_writer writer(out, options);
    writer.declaration(encoding);
    writer.write(value);
    return false;
  } catch (const exception& refusal) {
    refusal.copy_on(err);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::length_error&) {  // too long for any text, and so too much for memory
    throw std::bad_alloc();
  } catch (...) {  // out of an object that gives its text
    exc::RunTime(std::current_exception()).copy_on(err);
  }
  return true;
}

/// Makes `bytes` the text; their memory is used again where it is large enough.
void replace_by_utf_8(std::string& bytes, const text_sink& written) {
  std::size_t size = 0;
  written.each_piece([&](std::wstring_view piece) { size += texto::utf_8_size(piece); });
  if (bytes.capacity() < size) {
    std::string fresh;
    fresh.reserve(size);
    bytes.swap(fresh);
  }
  bytes.clear();
  written.each_piece([&](std::wstring_view piece) { texto::append_utf_8(bytes, piece); });
}

std::string utf_16_of(const text_sink& written, bool big_endian) {
  std::string bytes;
  bytes.reserve(2 * written.size() + 2);
  const auto put = [&](wchar_t c) {
    const auto low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8 & 0xFF);
    bytes += big_endian ? high : low;
    bytes += big_endian ? low : high;
  };
  put(static_cast<wchar_t>(0xFEFF));
  written.each_piece([&](std::wstring_view piece) { std::for_each(piece.begin(), piece.end(), put); });
  return bytes;
}

template <class Value>
bool write_text(std::wstring& text, const Value& value, exception* err, const xml_write_options& options) {
  text_sink written;
  if (write_units(written, value, err, options, {})) return true;
  written.replace(text);
  return false;
}
template <class Value>
bool write_text(std::string& bytes, const Value& value, exception* err, const xml_write_options& options) {
  text_sink written;
  const bool in_utf_8 = options.bytes == xml_bytes::utf_8;
  if (write_units(written, value, err, options, in_utf_8 ? L"UTF-8" : L"UTF-16")) return true;
  if (in_utf_8) {
    replace_by_utf_8(bytes, written);
  } else {
    bytes = utf_16_of(written, options.bytes == xml_bytes::utf_16_be);
  }
  return false;
}
template <class Value>
bool write_text(std::u8string& text, const Value& value, exception* err, const xml_write_options& options) {
  text_sink written;
  if (write_units(written, value, err, options, L"UTF-8")) return true;
  std::string bytes;
  replace_by_utf_8(bytes, written);
  text.assign(reinterpret_cast<const char8_t*>(bytes.data()), bytes.size());
  return false;
}

}  // namespace

bool write_well_formed_xml(std::wstring& text, const bundle& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}
bool write_well_formed_xml(std::wstring& text, const xvar& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}
bool write_well_formed_xml(std::string& text, const bundle& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}
bool write_well_formed_xml(std::string& text, const xvar& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}
bool write_well_formed_xml(std::u8string& text, const bundle& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}
bool write_well_formed_xml(std::u8string& text, const xvar& value, exception* err,
                           const xml_write_options& options) {
  return write_text(text, value, err, options);
}

}  // namespace ruvo::serializer
