// SPDX-License-Identifier: BSL-1.0

// The lines of a text of settings: changes.

#include <ruvo/exc.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exc/detail.hpp"
#include "settings/document.hpp"
#include "settings/escapes.hpp"

namespace ruvo::settings {

namespace {

/// The text in lines that end with CR, LF or CRLF.
std::vector<std::wstring> lines_of(std::wstring_view text) {
  const std::wstring all = with_line_feeds(text);
  std::vector<std::wstring> out;
  for (std::size_t from = 0; from <= all.size();) {
    const std::size_t end = std::min(all.find(L'\n', from), all.size());
    out.push_back(all.substr(from, end - from));
    from = end + 1;
  }
  return out;
}

bool has_unprintable(std::wstring_view text) {
  return std::any_of(text.begin(), text.end(), [](wchar_t c) { return is_unprintable(c); });
}

void expect_writable(const std::wstring& name, std::wstring_view text, const text_encoding& bytes) {
  const std::size_t at = bytes.unwritable(text);
  if (at != text.npos) refuse(name, code_point_name(text, at) + L" no cabe en la codificación");
}

}  // namespace

void refuse(const std::wstring& name, const std::wstring& reason) {
  constexpr std::size_t most_shown = 80;
  throw detail::about(exc::BadArgument(name.substr(0, most_shown)), [&] { return reason; });
}

// --- what is to be written

bool document::is_read_as(const new_lines& made, std::wstring_view name, std::wstring_view value) const {
  document alone(grammar_);
  alone.text_ = made.line;
  for (const std::wstring& each : made.more) alone.text_ += each;
  alone.split();
  if (!alone.is(alone.first_, line_kind::entry) || alone.name_of(0) != name) return false;
  const auto belongs = [](const kept_line& each) {
    return each.kind == line_kind::more || each.kind == line_kind::blank;
  };
  if (!std::all_of(alone.lines_.begin() + 1, alone.lines_.end(), belongs)) return false;
  const kept_line& end = alone.lines_.back();
  if (end.content == end.size && is_line_end(alone.text_.back())) return false;  // would take the next line
  alone.lines_[0].end = alone.last_;
  return alone.value_of(0) == value;
}

document::new_lines document::write_value(const std::wstring& head, std::wstring tail, std::wstring_view old,
                                          const std::wstring& key, const std::wstring& value,
                                          const text_encoding& bytes) const {
  const bool is_indented = rules().dialect().continuation == ini_continuation::indented;
  const std::size_t first_end = is_indented ? std::min(value.find(L'\n'), value.size()) : value.size();
  const bool has_end = !tail.empty() && is_line_end(tail.back());
  const std::wstring end = line_end_near(last_);
  if (!tail.empty() && rules().begins_inline_comment(tail[0])) tail.insert(0, L" ");
  new_lines made;
  if (first_end < value.size()) {
    std::wstring indent = head.substr(0, head.find_first_not_of(L" \t\v\f")) + L"\t";
    if (!has_end) tail += end;
    for (std::wstring& each : lines_of(std::wstring_view(value).substr(first_end + 1))) {
      if (!each.empty()) each.insert(0, indent);
      made.more.push_back(std::move(each.append(end)));
    }
  }
  for (const std::wstring& way : rules().ways_to_write(value.substr(0, first_end), old)) {
    made.line = head;
    made.line.append(way).append(tail);
    if (!is_read_as(made, key, value)) continue;
    expect_writable(key, way, bytes);
    for (const std::wstring& each : made.more) expect_writable(key, each, bytes);
    return made;
  }
  refuse(key, L"el valor no se puede escribir en este formato");
}

document::new_lines document::new_entry(std::uint32_t section, const std::wstring& key,
                                        const std::wstring& value, const text_encoding& bytes) const {
  std::uint32_t model = section == none ? none : sections_[section].tail;
  const std::wstring indent(is(model, line_kind::entry) ? view(model).substr(0, lines_[model].indent)
                                                        : std::wstring_view());
  if (!is(model, line_kind::entry)) {
    model = first_;
    while (model != none && !is(model, line_kind::entry)) model = lines_[model].next;
  }
  const std::wstring gap =
      model == none ? rules().gap_like({}, {}) : rules().gap_like(view(model), lines_[model]);
  const std::wstring name = rules().written_name(key), end = line_end_near(last_);
  const bool is_section = rules().dialect().has_sections && key.starts_with(L'[');
  if (has_unprintable(name) || is_section || !is_read_as({indent + name + gap + end, {}}, key, {}))
    refuse(key, L"la clave no se puede escribir en este formato");
  expect_writable(key, name, bytes);
  return write_value(indent + name + gap, end, {}, key, value, bytes);
}

document::new_lines document::changed_entry(std::uint32_t n, const std::wstring& value,
                                            const text_encoding& bytes) const {
  const kept_line& old = lines_[n];
  std::wstring head(view(n).substr(0, old.value));
  if (old.is_bare) head += rules().gap_like({}, {});
  return write_value(head, std::wstring(view(n).substr(old.value + old.value_size)), written_value(n),
                     name_of(n), value, bytes);
}

std::wstring document::header_line(const std::wstring& head, const std::wstring& name,
                                   const std::wstring& tail, const text_encoding& bytes) const {
  std::wstring made = head + name + tail;
  const line_shape shape = rules().line_at(made, none);
  if (name.empty() || has_unprintable(name) || name.find_first_of(L"[]") != name.npos ||
      shape.kind != line_kind::header || shape.size != made.size() ||
      made.compare(shape.name, shape.name_size, name) != 0 || !rules().is_plain(name))
    refuse(name, L"la sección no se puede escribir en este formato");
  expect_writable(name, name, bytes);
  return made;
}

std::vector<std::wstring> document::comment_lines(std::uint32_t above, const std::wstring& text,
                                                  const text_encoding& bytes) const {
  std::vector<std::wstring> out;
  if (text.empty()) return out;
  const std::wstring start(1, rules().comment_start()), end = line_end_near(above);
  const std::wstring indent(view(above).substr(0, lines_[above].indent));
  expect_writable(name_of(above), text, bytes);
  for (const std::wstring& each : lines_of(text)) {
    std::wstring& line = out.emplace_back(indent);
    line.append(start).append(each.empty() ? L"" : L" ").append(each).append(end);
    const line_shape shape = rules().line_at(out.back(), none);
    if (has_unprintable(each) || shape.kind != line_kind::comment || shape.size != out.back().size())
      refuse(name_of(above), L"el comentario no se puede escribir en este formato");
  }
  return out;
}

std::wstring document::line_end_near(std::uint32_t n) const {
  for (const std::uint32_t each : {n, first_}) {
    if (each == none || lines_[each].content == lines_[each].size) continue;
    return std::wstring(view(each).substr(lines_[each].content));
  }
  const std::wstring& usual = rules().dialect().line_end;
  return usual == L"\n" || usual == L"\r" ? usual : L"\r\n";
}

std::uint32_t document::place_at_top() const noexcept {
  std::uint32_t place = none;
  for (std::uint32_t n = first_; !is(n, line_kind::header); n = lines_[n].next) {
    if (n == none) return last_;
    if (is(n, line_kind::blank)) place = n;
  }
  return place;
}

std::uint32_t document::place_in(std::uint32_t section) const noexcept {
  const std::uint32_t tail = sections_[section].tail;
  if (tail == none) return place_at_top();
  return is(tail, line_kind::entry) ? lines_[tail].end : tail;
}

// --- lines

void document::put(kept_line& into, const std::wstring& text, std::uint32_t entry_indent) {
  const std::size_t begin = text_.size();
  if (begin + text.size() >= none) throw std::length_error("text of settings");
  text_ += text;
  static_cast<line_shape&>(into) = rules().line_at(text, entry_indent);
  into.begin = static_cast<std::uint32_t>(begin);
  live_ += into.size;
  is_fragile_ = is_fragile_ || into.is_loose;
}

void document::rewrite(std::uint32_t n, const std::wstring& text) {
  live_ -= lines_[n].size;
  put(lines_[n], text, is(n, line_kind::more) ? 0 : none);
}

void document::end_line(std::uint32_t n) {
  // What goes on behind a "\" ends with an empty line.
  while (n != none && lines_[n].content == lines_[n].size)
    rewrite(n, std::wstring(view(n)) + line_end_near(n));
}

std::uint32_t document::insert(std::uint32_t after, const std::wstring& text, std::uint32_t entry_indent) {
  end_line(after);
  kept_line made;
  put(made, text, entry_indent);
  const auto n = static_cast<std::uint32_t>(lines_.size());
  made.previous = after;
  made.next = after == none ? first_ : lines_[after].next;
  made.last_twin = made.end = n;
  lines_.push_back(made);
  (after == none ? first_ : lines_[after].next) = n;
  (made.next == none ? last_ : lines_[made.next].previous) = n;
  return n;
}

void document::insert_more(std::uint32_t n, const new_lines& made) {
  for (const std::wstring& each : made.more) {
    const std::uint32_t further = insert(lines_[n].end, each, lines_[n].indent);
    lines_[n].end = further;
  }
}

std::uint32_t document::insert_entry(std::uint32_t after, const new_lines& made, std::uint32_t section) {
  const std::uint32_t n = insert(after, made.line);
  lines_[n].section = section;
  insert_more(n, made);
  const std::wstring name = name_of(n);
  const std::uint32_t twin = find_name(key_name(section, name));
  if (twin == none)
    add_name(n);
  else
    append_twin(twin, n);
  return n;
}

std::uint32_t document::insert_header(const std::wstring& text) {
  end_line(last_);
  if (last_ != none && !is(last_, line_kind::blank)) insert(last_, line_end_near(last_));
  const std::uint32_t n = insert(last_, text);
  lines_[n].section = static_cast<std::uint32_t>(sections_.size());
  sections_.push_back({n, n});
  add_name(n);
  return lines_[n].section;
}

void document::unlink(std::uint32_t n) noexcept {
  const kept_line& old = lines_[n];
  live_ -= old.size;
  (old.previous == none ? first_ : lines_[old.previous].next) = old.next;
  (old.next == none ? last_ : lines_[old.next].previous) = old.previous;
}

void document::unlink_more(std::uint32_t n) noexcept {
  for (std::uint32_t each = n; each != lines_[n].end;) {
    each = lines_[each].next;
    if (is(each, line_kind::more)) unlink(each);
  }
  lines_[n].end = n;
}

void document::unlink_entry(std::uint32_t n) noexcept {
  unlink_more(n);
  std::uint32_t& tail = sections_[lines_[n].section].tail;
  if (tail == n) {
    do {
      tail = lines_[tail].previous;
    } while (tail != none && !is(tail, line_kind::entry) && !is(tail, line_kind::header));
  }
  unlink(n);
}

/// The comment right above the next section stays.
void document::unlink_chunk(std::uint32_t header) noexcept {
  std::uint32_t end = lines_[header].next;
  while (end != none && !is(end, line_kind::header)) end = lines_[end].next;
  while (end != none && is(lines_[end].previous, line_kind::comment)) end = lines_[end].previous;
  for (std::uint32_t n = header; n != end; n = lines_[n].next) unlink(n);
}

// --- changes

void document::set(const std::wstring& section, const std::wstring& key,
                   const std::vector<std::wstring>& values, const text_encoding& bytes) {
  std::uint32_t id = find_section(section);
  const std::uint32_t first = id == none ? none : find_name(key_name(id, key));
  if (first != none) return change_values(first, values, bytes);
  std::vector<new_lines> made;
  made.reserve(values.size());
  for (const std::wstring& each : values) made.push_back(new_entry(id, key, each, bytes));
  if (id == none) id = add_section(section, bytes);
  for (const new_lines& each : made) sections_[id].tail = insert_entry(place_in(id), each, id);
}

void document::change_values(std::uint32_t first, const std::vector<std::wstring>& values,
                             const text_encoding& bytes) {
  const std::vector<std::uint32_t> old = counting(first);
  const std::uint32_t section = lines_[first].section;
  std::vector<new_lines> made(values.size());
  for (std::size_t n = 0; n < values.size(); ++n) {
    if (n >= old.size())
      made[n] = new_entry(section, name_of(first), values[n], bytes);
    else if (value_of(old[n]) != values[n])
      made[n] = changed_entry(old[n], values[n], bytes);
  }
  if (values.empty()) return erase_key(first);
  for (std::size_t n = 0; n < values.size() && n < old.size(); ++n) {
    if (made[n].line.empty()) continue;
    unlink_more(old[n]);
    rewrite(old[n], made[n].line);
    insert_more(old[n], made[n]);
  }
  for (std::size_t n = values.size(); n < old.size(); ++n) unlink_entry(old[n]);
  if (values.size() < old.size()) {
    lines_[old[values.size() - 1]].twin = none;
    lines_[first].last_twin = old[values.size() - 1];
  }
  for (std::size_t n = old.size(); n < values.size(); ++n) {
    const std::uint32_t last = lines_[first].last_twin;
    const std::uint32_t added = insert_entry(lines_[last].end, made[n], section);
    if (sections_[section].tail == last) sections_[section].tail = added;
  }
}

std::uint32_t document::add_section(const std::wstring& name, const text_encoding& bytes) {
  return insert_header(header_line(L"[", name, L"]" + line_end_near(last_), bytes));
}

void document::erase_key(std::uint32_t first) {
  const std::wstring name = name_of(first);
  index_.erase(key_name(lines_[first].section, name), first);
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) unlink_entry(n);
}

void document::erase_section(std::uint32_t section) {
  if (section == top) {
    for (const std::uint32_t key : keys(top)) erase_key(key);
    return;
  }
  for (std::uint32_t n = sections_[section].header; n != none; n = lines_[n].twin) unlink_chunk(n);
  index_all();
}

void document::rename_key(std::uint32_t first, const std::wstring& name, const text_encoding& bytes) {
  const std::uint32_t there = find_name(key_name(lines_[first].section, name));
  if (there != none && there != first) refuse(name, L"la clave ya existe");
  const std::wstring shown = rules().written_name(name);
  std::vector<std::wstring> made;
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) {
    const kept_line& old = lines_[n];
    made.push_back(std::wstring(view(n).substr(0, old.name)) + shown);
    made.back() += view(n).substr(old.name + old.name_size);
    const bool is_section = rules().dialect().has_sections && name.starts_with(L'[');
    if (has_unprintable(shown) || is_section ||
        !is_read_as({made.back(), {}}, name, rules().value_of(written_value(n))))
      refuse(name, L"la clave no se puede escribir en este formato");
  }
  expect_writable(name, shown, bytes);
  std::size_t next = 0;
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) rewrite(n, made[next++]);
  index_all();
}

void document::rename_section(std::uint32_t section, const std::wstring& name, const text_encoding& bytes) {
  const std::uint32_t there = find_section(name);
  if (there != none && there != section) refuse(name, L"la sección ya existe");
  std::vector<std::wstring> made;
  for (std::uint32_t n = sections_[section].header; n != none; n = lines_[n].twin) {
    const kept_line& old = lines_[n];
    made.push_back(header_line(std::wstring(view(n).substr(0, old.name)), name,
                               std::wstring(view(n).substr(old.name + old.name_size)), bytes));
  }
  std::size_t next = 0;
  for (std::uint32_t n = sections_[section].header; n != none; n = lines_[n].twin) rewrite(n, made[next++]);
  index_all();
}

void document::set_comment(std::uint32_t n, const std::wstring& text, const text_encoding& bytes) {
  const std::vector<std::wstring> made = comment_lines(n, text, bytes);
  while (is(lines_[n].previous, line_kind::comment)) unlink(lines_[n].previous);
  for (const std::wstring& each : made) insert(lines_[n].previous, each);
}

bool document::reads_alike() const {
  document again(grammar_);
  again.text_ = text();
  again.split();
  std::uint32_t n = first_;
  for (const kept_line& each : again.lines_) {
    if (n == none) return false;
    const kept_line& own = lines_[n];
    const bool is_same = own.kind == each.kind && own.size == each.size && own.name == each.name &&
                         own.name_size == each.name_size && own.value == each.value &&
                         own.value_size == each.value_size;
    if (!is_same) return false;
    n = own.next;
  }
  return n == none;
}

void document::tidy() {
  constexpr std::size_t allowed = 65536;
  if (text_.size() > 2 * live_ + allowed) parse(text());
}

}  // namespace ruvo::settings
