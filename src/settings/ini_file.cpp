// SPDX-License-Identifier: BSL-1.0

// Settings in a text or a file.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>
#include <ruvo/ini.hpp>
#include <ruvo/list.hpp>
#include <ruvo/times.hpp>
#include <ruvo/xvar.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "base/numbers.hpp"
#include "exc/detail.hpp"
#include "files/pieces.hpp"
#include "serializer/iso_dates.hpp"
#include "settings/document.hpp"
#include "settings/save_turn.hpp"
#include "settings/text_encoding.hpp"
#include "system/entry.hpp"
#include "values/cell.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;
using detail::succeeds;
using settings::document;
using settings::none;
using settings::refuse;

namespace {

/// With all digits that reading back takes.
std::wstring real_text(const xvar& value) {
  const double real = cell::real(value);
  if (!std::isfinite(real)) return value.to_string();
  char digits[texto::most_exact_units];
  const char* const end = cell::kind_of(value) == kind::float_
                              ? texto::print_exact(digits, static_cast<float>(real))
                              : texto::print_exact(digits, real);
  return {static_cast<const char*>(digits), end};
}

/// A text without a zone would be read in UTC.
std::wstring instant_text(const xvar& value) {
  if (cell::mode(value) != times::LOCAL) return value.to_string();
  char text[serializer::most_iso_units];
  return {static_cast<const char*>(text),
          static_cast<const char*>(serializer::print_iso(text, value, false))};
}

std::wstring scalar_text(const std::wstring& key, const xvar& value) {
  switch (cell::kind_of(value)) {
    case kind::list:
    case kind::bundle:
      refuse(key, L"el valor no es un texto");
    case kind::float_:
    case kind::double_:
      return real_text(value);
    case kind::datetime:
      return instant_text(value);
    case kind::binary:
      return cell::pointer<const binary>(value)->getAsB64();
    default:
      return value.to_string();
  }
}

std::vector<std::wstring> texts_of(const std::wstring& key, const xvar& value, ini_duplicates how) {
  if (!value.instanceof (typeid(list)) || how != ini_duplicates::list) return {scalar_text(key, value)};
  std::vector<std::wstring> out;
  for (const xvar& each : detail::cell::as_list(value)) out.push_back(scalar_text(key, each));
  return out;
}

/// A key that bundles do not take for another one.
void put_new(bundle& into, const std::wstring& name, xvar&& value) {
  if (into.find(name) != into.end()) refuse(name, L"la clave está repetida");
  into[name] = std::move(value);
}

xvar value_in(const document& lines, std::uint32_t first) {
  if (lines.rules().dialect().duplicates == ini_duplicates::list) {
    list values;
    for (const std::uint32_t n : lines.counting(first)) values.push_back(lines.value_of(n));
    if (values.size() > 1) return values;
  }
  return lines.value_of(lines.last_counting(first));
}

bundle section_in(const document& lines, std::uint32_t section) {
  bundle out;
  for (const std::uint32_t key : lines.keys(section)) put_new(out, lines.name_of(key), value_in(lines, key));
  return out;
}

/// Puts the entries into the bundle, those of sections into the bundles that are there.
void put_all(bundle& out, bundle&& all) {
  for (std::size_t n = 0; n < all.size(); ++n) {
    bundle::entry& each = *all[n];
    const auto there = out.find(each.spelling());
    const bool is_section = each.second.instanceof (typeid(bundle));
    if (is_section && there != out.end() && there->second.instanceof (typeid(bundle))) {
      bundle& into = detail::cell::as_bundle(there->second);
      bundle& from = detail::cell::as_bundle(each.second);
      for (std::size_t k = 0; k < from.size(); ++k) {
        into.erase(from[k]->spelling());  // which would keep its own spelling
        into[from[k]->spelling()] = std::move(from[k]->second);
      }
      continue;
    }
    out.erase(each.spelling());
    out[each.spelling()] = std::move(each.second);
  }
}

}  // namespace

struct ini_file::state {
  explicit state(std::shared_ptr<const settings::grammar> rules) : lines(std::move(rules)) {}

  document lines;
  settings::text_encoding bytes{};
  file path{};
  std::string seen{};  // what the file had when it was read or saved
  bool was_there = false;
};

ini_file::ini_file() : ini_file(ini_dialect()) {}
ini_file::ini_file(const ini_dialect& dialect)
    : state_(std::make_unique<state>(std::make_shared<const settings::grammar>(dialect))) {}
ini_file::ini_file(const ini_file& other) : state_(std::make_unique<state>(*other.state_)) {}
ini_file::ini_file(ini_file&& other) noexcept = default;
ini_file& ini_file::operator=(const ini_file& other) {
  if (this != &other) state_ = std::make_unique<state>(*other.state_);
  return *this;
}
ini_file& ini_file::operator=(ini_file&& other) noexcept = default;
ini_file::~ini_file() = default;

// --- reading

bool ini_file::parse(std::wstring_view text, exception& err) {
  return succeeds(err, [&] {
    auto made = std::make_unique<state>(state_->lines.shared_rules());
    made->bytes.has_mark = !text.empty() && static_cast<char16_t>(text[0]) == 0xFEFF;
    made->lines.parse(std::wstring(text.substr(made->bytes.has_mark ? 1 : 0)));
    state_ = std::move(made);
  });
}

bool ini_file::parse(std::string_view bytes, exception& err) {
  return succeeds(err, [&] {
    auto made = std::make_unique<state>(state_->lines.shared_rules());
    made->lines.parse(settings::text_encoding::decode(bytes, made->bytes));
    state_ = std::move(made);
  });
}

bool ini_file::read(const file& path, exception& err) {
  return succeeds(err, [&] {
    auto made = std::make_unique<state>(state_->lines.shared_rules());
    exception failure;
    if (!files::read(made->seen, path, failure)) failure.raise();
    made->lines.parse(settings::text_encoding::decode(made->seen, made->bytes));
    made->path = path;
    made->was_there = true;
    state_ = std::move(made);
  });
}

// What may be there but cannot be looked at is read, which says why it cannot.
bool ini_file::open(const file& path, exception& err) {
  if (!platform::is_missing(path)) return read(path, err);
  auto made = std::make_unique<state>(state_->lines.shared_rules());
  made->path = path;
  state_ = std::move(made);
  return true;
}

// --- saving

std::wstring ini_file::text() const {
  constexpr wchar_t mark = 0xFEFF;
  std::wstring out = state_->lines.text();
  if (out.starts_with(mark)) out.insert(out.begin(), mark);  // which parse() takes away
  return out;
}

bool ini_file::bytes(std::string& out, exception& err) const {
  return succeeds(err, [&] {
    std::string made;
    if (!state_->bytes.encode(made, state_->lines.parts())) throw exc::BadFormat();
    out = std::move(made);
  });
}

bool ini_file::save_to(const file& path, bool if_unchanged, exception& err) {
  return succeeds(err, [&] {
    if (path.empty()) throw exc::EmptyArgument(L"ruta");
    std::string made;
    exception failure;
    if (!bytes(made, failure)) failure.raise();
    const settings::save_turn turn(path);
    if (if_unchanged) {
      if (!turn) throw exc::fileOsStream(path);
      std::string now;
      const bool is_there = !platform::is_missing(path);
      if (is_there && !files::read(now, path, failure)) failure.raise();
      if (is_there != state_->was_there || now != state_->seen) throw exc::fileChanged(path);
    }
    file written = files::write_pieces(path, [&](const files::put_piece& put) { put(made); });
    state_->path = std::move(written);
    state_->seen = std::move(made);
    state_->was_there = true;
  });
}

bool ini_file::save(exception& err) { return save_to(path(), false, err); }
bool ini_file::save_as(const file& path, exception& err) { return save_to(path, false, err); }
bool ini_file::save_if_unchanged(exception& err) { return save_to(path(), true, err); }

const file& ini_file::path() const noexcept { return state_->path; }
ini_encoding ini_file::encoding() const noexcept { return state_->bytes.kind; }
bool ini_file::has_mark() const noexcept { return state_->bytes.has_mark; }

bool ini_file::set_encoding(ini_encoding encoding, bool has_mark, exception& err) {
  return succeeds(err, [&] {
    settings::text_encoding made;
    made.kind = encoding;
    made.has_mark = encoding == ini_encoding::utf_8 ? has_mark : encoding != ini_encoding::ansi;
    const std::wstring text = state_->lines.text();
    const std::size_t at = made.unwritable(text);
    const std::wstring wrong = at == text.npos ? L"" : settings::code_point_name(text, at);
    if (!wrong.empty()) refuse(wrong, wrong + L" no cabe en la codificación");
    if (!state_->bytes.is_whole()) refuse(L"texto", L"el texto acaba en medio de un carácter");
    state_->bytes = std::move(made);
  });
}

// --- questions

bool ini_file::has(const std::wstring& section) const { return state_->lines.find_section(section) != none; }

bool ini_file::has(const std::wstring& section, const std::wstring& key) const {
  return state_->lines.find(section, key) != none;
}

std::wstring ini_file::get(const std::wstring& section, const std::wstring& key,
                           const std::wstring& fallback) const {
  const document& lines = state_->lines;
  const std::uint32_t first = lines.find(section, key);
  return first == none ? fallback : lines.value_of(lines.last_counting(first));
}

std::vector<std::wstring> ini_file::get_all(const std::wstring& section, const std::wstring& key) const {
  const document& lines = state_->lines;
  const std::uint32_t first = lines.find(section, key);
  std::vector<std::wstring> out;
  if (first == none) return out;
  for (const std::uint32_t n : lines.counting(first)) out.push_back(lines.value_of(n));
  return out;
}

std::vector<std::wstring> ini_file::sections() const {
  std::vector<std::wstring> out;
  for (const std::uint32_t id : state_->lines.sections()) out.push_back(state_->lines.section_name(id));
  return out;
}

std::vector<std::wstring> ini_file::keys(const std::wstring& section) const {
  const document& lines = state_->lines;
  const std::uint32_t id = lines.find_section(section);
  std::vector<std::wstring> out;
  if (id == none) return out;
  for (const std::uint32_t key : lines.keys(id)) out.push_back(lines.name_of(key));
  return out;
}

std::wstring ini_file::comment(const std::wstring& section) const { return comment(section, {}); }

std::wstring ini_file::comment(const std::wstring& section, const std::wstring& key) const {
  const std::uint32_t line = state_->lines.find_line(section, key);
  return line == none ? std::wstring() : state_->lines.comment_above(line);
}

bool ini_file::check(exception& err) const {
  return succeeds(err, [&] {
    const std::uint32_t wrong = state_->lines.first_other();
    if (wrong != none) settings::refuse_at(state_->lines.offset_of(wrong));
  });
}

// --- changes

/// Tried on a copy is what changes the text as a whole, and what could give other lines another meaning.
template <class Body>
bool ini_file::change(const std::wstring& name, exception& err, const Body& body, bool is_local) {
  return succeeds(err, [&] {
    document& lines = state_->lines;
    if (is_local && !lines.is_fragile()) {
      lines.tidy();
      return lines.try_to([&] { body(lines); });
    }
    document made(lines);
    made.tidy();
    body(made);
    if (lines.is_fragile() && !made.reads_alike()) refuse(name, L"otras líneas se leerían de otro modo");
    lines = std::move(made);
  });
}

bool ini_file::set(const std::wstring& section, const std::wstring& key, const xvar& value, exception& err) {
  return change(key, err, [&](document& lines) {
    const ini_duplicates how = lines.rules().dialect().duplicates;
    lines.set(section, key, texts_of(key, value, how), state_->bytes);
  });
}

bool ini_file::set(const bundle& all, exception& err) {
  return succeeds(err, [&] {
    ini_file made(*this);
    const auto set_one = [&](const std::wstring& section, const bundle::entry& each) {
      exception failure;
      if (!made.set(section, each.spelling(), each.second, failure)) failure.raise();
    };
    for (std::size_t n = 0; n < all.size(); ++n)
      if (!all[n]->second.instanceof (typeid(bundle))) set_one({}, *all[n]);
    for (std::size_t n = 0; n < all.size(); ++n) {
      const bundle::entry& section = *all[n];
      if (!section.second.instanceof (typeid(bundle))) continue;
      const std::wstring& name = section.spelling();
      const auto add = [&](document& to) { to.add_section(name, state_->bytes); };
      exception failure;
      const bool is_there = !name.empty() && made.has(name);
      if (!is_there && !made.change(name, failure, add)) failure.raise();
      const bundle& keys = detail::cell::as_bundle(section.second);
      for (std::size_t k = 0; k < keys.size(); ++k) set_one(name, *keys[k]);
    }
    *this = std::move(made);
  });
}

bool ini_file::erase(const std::wstring& section, const std::wstring& key, exception& err) {
  return change(key, err, [&](document& lines) {
    const std::uint32_t first = lines.find(section, key);
    if (first != none) lines.erase_key(first);
  });
}

bool ini_file::erase(const std::wstring& section, exception& err) {
  const auto erase = [&](document& lines) { lines.erase_section(lines.find_section(section)); };
  return !has(section) || change(section, err, erase, false);
}

bool ini_file::rename(const std::wstring& section, const std::wstring& key, const std::wstring& name,
                      exception& err) {
  const auto rename = [&](document& lines) {
    const std::uint32_t first = lines.find(section, key);
    if (first == none) refuse(key, L"la clave no existe");
    lines.rename_key(first, name, state_->bytes);
  };
  return change(key, err, rename, false);
}

bool ini_file::rename(const std::wstring& section, const std::wstring& name, exception& err) {
  const auto rename = [&](document& lines) {
    const std::uint32_t id = lines.find_section(section);
    if (id == none || id == document::top) refuse(section, L"la sección no existe");
    lines.rename_section(id, name, state_->bytes);
  };
  return change(section, err, rename, false);
}

bool ini_file::set_comment(const std::wstring& section, const std::wstring& key, const std::wstring& text,
                           exception& err) {
  return change(key.empty() ? section : key, err, [&](document& lines) {
    const std::uint32_t line = lines.find_line(section, key);
    if (line == none) refuse(key.empty() ? section : key, L"no existe");
    lines.set_comment(line, text, state_->bytes);
  });
}

bool ini_file::to_bundle(bundle& out, exception& err) const {
  return succeeds(err, [&] {
    const document& lines = state_->lines;
    bundle made = section_in(lines, document::top);
    for (const std::uint32_t id : lines.sections())
      put_new(made, lines.section_name(id), section_in(lines, id));
    put_all(out, std::move(made));
  });
}

}  // namespace ruvo
