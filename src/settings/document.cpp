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
constexpr std::uint32_t all_sections = none - 2;  // to which the names of sections belong

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

document::document(std::shared_ptr<const grammar> rules) : grammar_(std::move(rules)) { index_.clear(0); }

void document::parse(std::wstring text) {
  if (text.size() > most_units) refuse_at(most_units);
  document made(grammar_);
  made.text_ = std::move(text);
  made.split();
  made.index_all();
  *this = std::move(made);
}

void document::split() {
  constexpr std::size_t usual_units = 24;  // of a line
  const std::wstring_view all = text_;
  lines_.reserve(all.size() / usual_units);
  std::uint32_t entry_indent = none;
  for (std::size_t at = 0; at < all.size();) {
    kept_line& made = lines_.emplace_back();
    static_cast<line_shape&>(made) = grammar_->line_at(all.substr(at), entry_indent);
    if (made.kind == line_kind::header) entry_indent = none;
    if (made.kind == line_kind::entry) entry_indent = made.indent;
    made.begin = static_cast<std::uint32_t>(at);
    made.previous = static_cast<std::uint32_t>(lines_.size()) - 2;
    made.next = static_cast<std::uint32_t>(lines_.size());
    at += made.size;
  }
  live_ = all.size();
  if (lines_.empty()) return;
  first_ = 0;
  last_ = static_cast<std::uint32_t>(lines_.size()) - 1;
  lines_.front().previous = lines_.back().next = none;
}

// --- the index

folded_name document::key_name(std::uint32_t section, std::wstring_view key) const {
  return folded_name(section, key, rules().dialect().case_sensitive_keys);
}

folded_name document::header_name(std::wstring_view name) const {
  return folded_name(all_sections, name, rules().dialect().case_sensitive_sections);
}

bool document::is_named(std::uint32_t n, const folded_name& name) const {
  const bool is_header = lines_[n].kind == line_kind::header;
  if ((is_header ? all_sections : lines_[n].section) != name.owner()) return false;
  const ini_dialect& how = rules().dialect();
  const bool is_exact = is_header ? how.case_sensitive_sections : how.case_sensitive_keys;
  const std::wstring_view written = written_name(n);
  return rules().is_plain(written) ? is_same(name.text(), written, is_exact)
                                   : is_same(name.text(), rules().name_of(written), is_exact);
}

std::uint32_t document::find_name(const folded_name& name) const {
  return index_.find(name, [&](std::uint32_t n) { return is_named(n, name); });
}

void document::append_twin(std::uint32_t first, std::uint32_t n) noexcept {
  lines_[lines_[first].last_twin].twin = n;
  lines_[first].last_twin = n;
}

/// The section whose keys follow; none where they are not seen.
std::uint32_t document::take_header(std::uint32_t n) {
  const std::wstring name = name_of(n);
  const std::uint32_t known = find_section(name);
  const std::uint32_t id = known == none ? static_cast<std::uint32_t>(sections_.size()) : known;
  if (known == none) sections_.push_back({n, n});
  lines_[n].section = id;
  if (id == top && sections_[top].header == none) {
    sections_[top].header = n;
    return id;
  }
  if (known == none) {
    add_name(n);
    return id;
  }
  const ini_duplicates how = rules().dialect().duplicates;
  if (how == ini_duplicates::error) refuse_at(offset_of(n));
  append_twin(sections_[id].header, n);
  return how == ini_duplicates::first ? none : id;
}

void document::take_entry(std::uint32_t n, std::uint32_t section) {
  lines_[n].section = section;
  if (section == none) return;
  const std::wstring_view written = written_name(n);
  const std::wstring unescaped = rules().is_plain(written) ? std::wstring() : rules().name_of(written);
  const folded_name name = key_name(section, unescaped.empty() ? written : unescaped);
  const std::uint32_t first = find_name(name);
  if (first == none) {
    lines_[n].is_first = true;
    index_.add(name, n);
    return;
  }
  if (rules().dialect().duplicates == ini_duplicates::error) refuse_at(offset_of(n));
  append_twin(first, n);
}

void document::index_all() {
  sections_.assign(1, {});
  is_fragile_ = false;
  index_.clear(lines_.size());
  std::uint32_t section = top, entry = none;
  bool is_first_part = true;  // of the section
  for (std::uint32_t n = first_; n != none; n = lines_[n].next) {
    kept_line& each = lines_[n];
    each.section = each.twin = none;
    each.last_twin = each.end = n;
    each.is_first = false;
    is_fragile_ = is_fragile_ || each.is_loose;
    if (each.kind == line_kind::header) {
      section = take_header(n);
      is_first_part = section != none && section != top && sections_[section].header == n;
    } else if (each.kind == line_kind::entry) {
      take_entry(n, section);
      entry = n;
      if (is_first_part) sections_[section].tail = n;
    } else if (each.kind == line_kind::more) {
      lines_[entry].end = n;
    }
  }
}

/// Makes the index anew, with room for as many names again.
void document::index_names() {
  std::size_t names = 0;
  for (std::uint32_t n = first_; n != none; n = lines_[n].next) names += lines_[n].is_first ? 2 : 0;
  index_.clear(names);
  for (std::uint32_t n = first_; n != none; n = lines_[n].next) {
    if (!lines_[n].is_first) continue;
    const std::wstring name = name_of(n);
    index_.add(is(n, line_kind::header) ? header_name(name) : key_name(lines_[n].section, name), n);
  }
}

/// Of a line that is the first of its name.
void document::add_name(std::uint32_t n) {
  const std::wstring name = name_of(n);
  lines_[n].is_first = true;
  if (index_.is_full())
    index_names();
  else
    index_.add(is(n, line_kind::header) ? header_name(name) : key_name(lines_[n].section, name), n);
}

// --- questions

std::wstring document::text() const {
  std::wstring out;
  out.reserve(live_);
  for (std::uint32_t n = first_; n != none;) {
    const std::size_t begin = lines_[n].begin;
    std::size_t end = begin;
    for (; n != none && lines_[n].begin == end; n = lines_[n].next) end += lines_[n].size;
    out.append(text_, begin, end - begin);
  }
  return out;
}

std::uint32_t document::find_section(std::wstring_view name) const {
  if (name.empty()) return top;
  const std::uint32_t header = find_name(header_name(name));
  return header == none ? none : lines_[header].section;
}

std::uint32_t document::find(std::wstring_view section, std::wstring_view key) const {
  const std::uint32_t id = find_section(section);
  return id == none ? none : find_name(key_name(id, key));
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
  const auto collect = [&](std::uint32_t n) {
    for (; n != none && lines_[n].kind != line_kind::header; n = lines_[n].next)
      if (lines_[n].is_first) out.push_back(n);
  };
  if (section == top) collect(first_);
  for (std::uint32_t n = sections_[section].header; n != none; n = lines_[n].twin) collect(lines_[n].next);
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

std::wstring document::value_of(std::uint32_t n) const {
  std::wstring out = rules().value_of(written_value(n));
  const std::uint32_t end = lines_[n].end;
  for (std::size_t breaks = 1; n != end;) {
    n = lines_[n].next;
    if (is(n, line_kind::blank)) ++breaks;
    if (!is(n, line_kind::more)) continue;
    out.append(breaks, L'\n');
    out += written_value(n);
    breaks = 1;
  }
  return out;
}

std::wstring document::comment_above(std::uint32_t n) const {
  std::uint32_t from = n;
  while (is(lines_[from].previous, line_kind::comment)) from = lines_[from].previous;
  std::wstring out;
  for (; from != n; from = lines_[from].next) {
    std::wstring_view text = view(from).substr(0, lines_[from].content).substr(lines_[from].indent + 1);
    if (text.starts_with(L' ')) text.remove_prefix(1);
    out += text;
    if (lines_[from].next != n) out.push_back(L'\n');
  }
  return out;
}

std::size_t document::offset_of(std::uint32_t n) const noexcept {
  std::size_t out = lines_[n].indent;
  for (std::uint32_t each = first_; each != n; each = lines_[each].next) out += lines_[each].size;
  return out;
}

std::uint32_t document::first_other() const noexcept {
  std::uint32_t n = first_;
  while (n != none && lines_[n].kind != line_kind::other) n = lines_[n].next;
  return n;
}

}  // namespace ruvo::settings
