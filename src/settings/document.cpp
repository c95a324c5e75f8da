// SPDX-License-Identifier: BSL-1.0

// The lines of a text of settings: splitting, the index, questions.

#include "settings/document.hpp"

#include <ruvo/exc.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exc/classes.hpp"

namespace ruvo::settings {

namespace {

constexpr std::size_t most_units = std::size_t{1} << 30;

bool is_same(std::wstring_view folded, std::wstring_view name, bool is_exact) {
  if (folded.size() != name.size()) return false;
  for (std::size_t n = 0; n < name.size(); ++n)
    if (folded[n] != name[n] && (is_exact || folded[n] != texto::to_lowercase(name[n]))) return false;
  return true;
}

}  // namespace

void refuse_at(std::size_t offset) {
  exc::BadFormat failure;
  detail::error_class::set_position(failure, offset + 1);
  throw failure;
}

void joined_value::add(line_kind kind, std::wstring_view written) {
  if (kind == line_kind::blank) ++breaks;
  if (kind != line_kind::more) return;
  text.append(breaks, L'\n');
  text += written;
  breaks = 1;
}

document::document(std::shared_ptr<const grammar> rules) { grammar_ = std::move(rules); }

void document::parse(std::wstring text) {
  if (text.size() > most_units) refuse_at(most_units);
  document made(grammar_);
  made.text_ = std::move(text);
  made.live_ = made.text_.size();
  made.read_lines();
  *this = std::move(made);
}

void document::read_lines() {
  constexpr std::size_t usual_units = 24;  // of a line
  lines_.reserve(text_.size() / usual_units);
  line_splitter lines(rules(), text_);
  reading at;
  for (line_shape made; lines.next(made);) {
    const auto n = static_cast<std::uint32_t>(lines_.size());
    kept_line& line = lines_.emplace_back();
    line.begin = static_cast<std::uint32_t>(lines.begin());
    line.size = made.size;
    line.previous = last_;
    line.kind = made.kind;
    (last_ == none ? first_ : lines_[last_].next) = n;
    last_ = n;
    take(n, made, at);
  }
}

// --- the index

folded_name document::key_name(std::wstring_view key) const {
  return folded_name(key, rules().dialect().case_sensitive_keys);
}

folded_name document::header_name(std::wstring_view name) const {
  return folded_name(name, rules().dialect().case_sensitive_sections);
}

bool document::is_named(std::uint32_t n, const folded_name& name) const {
  const bool is_header = lines_[n].kind == line_kind::header;
  const ini_dialect& how = rules().dialect();
  const bool is_exact = is_header ? how.case_sensitive_sections : how.case_sensitive_keys;
  const std::wstring_view written = written_name(n);
  return rules().is_plain(written) ? is_same(name.text(), written, is_exact)
                                   : is_same(name.text(), rules().name_of(written), is_exact);
}

std::uint32_t document::find_in(const name_index& names, const folded_name& name) const {
  return names.find(name, [&](std::uint32_t n) { return is_named(n, name); });
}

std::uint32_t document::find_key(std::uint32_t section, std::wstring_view key) const {
  return find_in(keys_of(section), key_name(key));
}

void document::append_twin(std::uint32_t first, std::uint32_t n) const noexcept {
  lines_[lines_[first].last_twin].twin = n;
  lines_[first].last_twin = n;
}

void document::keep_name(kept_line& line, const line_shape& shape) noexcept {
  const bool is_short = shape.name < kept_line::long_name && shape.name_size < kept_line::long_name;
  line.name = static_cast<std::uint8_t>(is_short ? shape.name : 0);
  line.name_size = static_cast<std::uint8_t>(is_short ? shape.name_size : kept_line::long_name);
}

void document::take(std::uint32_t n, const line_shape& shape, reading& at) {
  is_fragile_ = is_fragile_ || shape.is_loose;
  if (shape.kind != line_kind::header && shape.kind != line_kind::entry) return;
  keep_name(lines_[n], shape);
  if (shape.kind == line_kind::header) {
    at.section = take_header(n, name_in(view(n), shape));
    at.is_first_part = at.section != none && at.section != top && sections_[at.section].header == n;
  } else {
    take_entry(n, at.section);
    if (at.is_first_part) sections_[at.section].tail = n;
  }
}

/// The section whose keys follow; none where they are not seen.
std::uint32_t document::take_header(std::uint32_t n, std::wstring_view written) {
  const std::wstring name = rules().name_of(written);
  const std::uint32_t known = find_section(name);
  const std::uint32_t id = known == none ? static_cast<std::uint32_t>(sections_.size()) : known;
  if (known == none) sections_.push_back({n, n});
  lines_[n].section = id;
  lines_[n].last_twin = n;
  if (id == top && sections_[top].header == none) {
    sections_[top].header = n;
    return id;
  }
  if (known == none) {
    headers_.add(header_name(name), n);
    return id;
  }
  const ini_duplicates how = rules().dialect().duplicates;
  if (how == ini_duplicates::error) refuse_at(offset_of(n));
  append_twin(sections_[id].header, n);
  return how == ini_duplicates::first ? none : id;
}

/// Where it is an error that keys repeat, they are indexed at once.
void document::take_entry(std::uint32_t n, std::uint32_t section) {
  lines_[n].section = section;
  if (section == none) return;
  name_index* const keys = sections_[section].keys.get();
  if (keys)
    add_key(*keys, n);
  else if (rules().dialect().duplicates == ini_duplicates::error)
    keys_of(section);
}

void document::add_key(name_index& to, std::uint32_t n) const {
  const std::wstring_view written = written_name(n);
  const std::wstring unescaped = rules().is_plain(written) ? std::wstring() : rules().name_of(written);
  const folded_name name = key_name(unescaped.empty() ? written : unescaped);
  const std::uint32_t first = find_in(to, name);
  const kept_line& line = lines_[n];
  if (first == none) to.add(name, n);
  if (first != none && rules().dialect().duplicates == ini_duplicates::error) refuse_at(offset_of(n));
  line.is_first = first == none;
  line.twin = none;
  line.last_twin = n;
  if (first != none) append_twin(first, n);
}

template <class Use>
void document::each_line_of(std::uint32_t section, const Use& use) const {
  const auto use_from = [&](std::uint32_t n) {
    for (; n != none && lines_[n].kind != line_kind::header; n = lines_[n].next) use(n);
  };
  if (section == top) use_from(first_);
  for (std::uint32_t n = sections_[section].header; n != none; n = lines_[n].twin) use_from(lines_[n].next);
}

const name_index& document::keys_of(std::uint32_t section) const {
  late_index& keys = sections_[section].keys;
  if (const name_index* const made = keys.get()) return *made;
  const std::lock_guard lock(indexing_);
  if (!keys.get()) keys.put(index_keys(section));  // by no other thread meanwhile
  return *keys.get();
}

std::unique_ptr<name_index> document::index_keys(std::uint32_t section) const {
  const auto each_key = [&](const auto& use) {
    each_line_of(section, [&](std::uint32_t n) {
      if (lines_[n].kind == line_kind::entry && lines_[n].section == section) use(n);
    });
  };
  std::size_t count = 0;
  each_key([&](std::uint32_t) { ++count; });
  auto made = std::make_unique<name_index>(count);
  each_key([&](std::uint32_t n) { add_key(*made, n); });
  return made;
}

void document::index_all() {
  sections_.clear();
  sections_.resize(1);
  is_fragile_ = false;
  headers_ = {};
  for (std::uint32_t n = first_; n != none; n = lines_[n].next) {
    lines_[n].section = lines_[n].twin = none;
    lines_[n].is_first = false;
  }
  reading at;
  for (std::uint32_t n = first_; n != none; n = lines_[n].next) take(n, shape(n), at);
}

// --- questions

std::vector<std::wstring_view> document::parts() const {
  std::vector<std::wstring_view> out;
  for (std::uint32_t n = first_; n != none;) {
    const std::size_t begin = lines_[n].begin;
    std::size_t end = begin;
    for (; n != none && lines_[n].begin == end; n = lines_[n].next) end += lines_[n].size;
    out.push_back(std::wstring_view(text_).substr(begin, end - begin));
  }
  return out;
}

std::wstring document::text() const {
  std::wstring out;
  out.reserve(live_);
  for (const std::wstring_view each : parts()) out += each;
  return out;
}

std::uint32_t document::find_section(std::wstring_view name) const {
  if (name.empty()) return top;
  const std::uint32_t header = find_in(headers_, header_name(name));
  return header == none ? none : lines_[header].section;
}

std::uint32_t document::find(std::wstring_view section, std::wstring_view key) const {
  const std::uint32_t id = find_section(section);
  return id == none ? none : find_key(id, key);
}

std::uint32_t document::find_line(std::wstring_view section, std::wstring_view key) const {
  if (!key.empty()) return find(section, key);
  const std::uint32_t id = find_section(section);
  return id == none ? none : sections_[id].header;
}

std::vector<std::uint32_t> document::sections() const {
  std::vector<std::uint32_t> out;
  for (std::uint32_t id = top + 1; id < sections_.size(); ++id) out.push_back(id);
  return out;
}

std::wstring document::section_name(std::uint32_t section) const {
  return section == top ? std::wstring() : name_of(sections_[section].header);
}

std::vector<std::uint32_t> document::keys(std::uint32_t section) const {
  std::vector<std::uint32_t> out;
  keys_of(section);
  each_line_of(section, [&](std::uint32_t n) {
    if (lines_[n].is_first) out.push_back(n);
  });
  return out;
}

std::vector<std::uint32_t> document::counting(std::uint32_t first) const {
  if (rules().dialect().duplicates != ini_duplicates::list) return {last_counting(first)};
  std::vector<std::uint32_t> out;
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) out.push_back(n);
  return out;
}

std::uint32_t document::last_counting(std::uint32_t first) const noexcept {
  return rules().dialect().duplicates == ini_duplicates::first ? first : lines_[first].last_twin;
}

std::uint32_t document::end_of(std::uint32_t n) const noexcept {
  std::uint32_t end = n;
  if (rules().dialect().continuation != ini_continuation::indented) return end;
  for (n = lines_[n].next; n != none && !is(n, line_kind::entry) && !is(n, line_kind::header);
       n = lines_[n].next)
    if (is(n, line_kind::more)) end = n;
  return end;
}

std::wstring document::value_of(std::uint32_t n) const {
  joined_value value(rules().value_of(written_value(n)));
  for (const std::uint32_t end = end_of(n); n != end;) {
    n = lines_[n].next;
    value.add(lines_[n].kind, is(n, line_kind::more) ? written_value(n) : std::wstring_view());
  }
  return value.text;
}

std::wstring document::comment_above(std::uint32_t n) const {
  std::uint32_t from = n;
  while (is(lines_[from].previous, line_kind::comment)) from = lines_[from].previous;
  std::wstring out;
  for (; from != n; from = lines_[from].next) {
    const line_shape parts = shape(from);
    std::wstring_view text = view(from).substr(0, parts.content).substr(parts.indent + 1);
    if (text.starts_with(L' ')) text.remove_prefix(1);
    out += text;
    if (lines_[from].next != n) out.push_back(L'\n');
  }
  return out;
}

std::size_t document::offset_of(std::uint32_t n) const {
  std::size_t out = shape(n).indent;
  for (std::uint32_t each = first_; each != n; each = lines_[each].next) out += lines_[each].size;
  return out;
}

std::uint32_t document::first_other() const noexcept {
  std::uint32_t n = first_;
  while (n != none && lines_[n].kind != line_kind::other) n = lines_[n].next;
  return n;
}

}  // namespace ruvo::settings
