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
  std::wstring all = made.line;
  for (const std::wstring& each : made.more) all += each;
  line_splitter lines(rules(), all);
  line_shape shape;
  if (!lines.next(shape) || shape.kind != line_kind::entry || rules().name_of(name_in(all, shape)) != name)
    return false;
  joined_value read(rules().value_of(value_in(all, shape)));
  line_shape last = shape;
  for (; lines.next(shape); last = shape) {
    if (shape.kind != line_kind::more && shape.kind != line_kind::blank) return false;
    read.add(shape.kind, value_in(std::wstring_view(all).substr(lines.begin()), shape));
  }
  const bool takes_next = last.content == last.size && is_line_end(all.back());
  return !takes_next && read.text == value;
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
  const std::wstring indent(is(model, line_kind::entry) ? view(model).substr(0, shape(model).indent)
                                                        : std::wstring_view());
  if (!is(model, line_kind::entry)) {
    model = first_;
    while (model != none && !is(model, line_kind::entry)) model = lines_[model].next;
  }
  const std::wstring gap =
      model == none ? rules().gap_like({}, {}) : rules().gap_like(view(model), shape(model));
  const std::wstring name = rules().written_name(key), end = line_end_near(last_);
  const bool is_section = rules().dialect().has_sections && key.starts_with(L'[');
  if (has_unprintable(name) || is_section || !is_read_as({indent + name + gap + end, {}}, key, {}))
    refuse(key, L"la clave no se puede escribir en este formato");
  expect_writable(key, name, bytes);
  return write_value(indent + name + gap, end, {}, key, value, bytes);
}

document::new_lines document::changed_entry(std::uint32_t n, const std::wstring& value,
                                            const text_encoding& bytes) const {
  const line_shape old = shape(n);
  std::wstring head(view(n).substr(0, old.value));
  if (old.is_bare) head += rules().gap_like({}, {});
  return write_value(head, std::wstring(view(n).substr(old.value + old.value_size)), value_in(view(n), old),
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
  const std::wstring indent(view(above).substr(0, shape(above).indent));
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
    if (each == none) continue;
    const std::wstring_view end = view(each).substr(shape(each).content);
    if (!end.empty()) return std::wstring(end);
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
  return is(tail, line_kind::entry) ? end_of(tail) : tail;
}

// --- lines

kept_line& document::edit_line(std::uint32_t n) {
  if (n < before_.lines) before_.old_lines.emplace_back(n, lines_[n]);
  return lines_[n];
}

kept_section& document::edit_section(std::uint32_t id) {
  if (id < before_.sections) before_.old_sections.push_back({id, sections_[id].header, sections_[id].tail});
  return sections_[id];
}

// What changed several times gets back at last what it had first. The keys are indexed anew.
void document::roll_back() noexcept {
  const state_before old = std::exchange(before_, {});
  for (auto each = old.old_lines.rbegin(); each != old.old_lines.rend(); ++each)
    lines_[each->first] = each->second;
  for (auto each = old.old_sections.rbegin(); each != old.old_sections.rend(); ++each) {
    sections_[each->id].header = each->header;
    sections_[each->id].tail = each->tail;
  }
  if (lines_.size() > old.lines) headers_.erase_from(static_cast<std::uint32_t>(old.lines));
  for (kept_section& each : sections_) each.keys = {};
  lines_.resize(old.lines);
  sections_.resize(old.sections);
  text_.resize(old.units);
  first_ = old.first;
  last_ = old.last;
  live_ = old.live;
  is_fragile_ = old.is_fragile;
}

void document::put(kept_line& into, const std::wstring& text, std::uint32_t entry_indent) {
  const std::size_t begin = text_.size();
  if (begin + text.size() >= none) throw std::length_error("text of settings");
  text_ += text;
  const line_shape shape = rules().line_at(text, entry_indent);
  into.begin = static_cast<std::uint32_t>(begin);
  into.size = shape.size;
  into.kind = shape.kind;
  keep_name(into, shape);
  live_ += shape.size;
  is_fragile_ = is_fragile_ || shape.is_loose;
}

void document::rewrite(std::uint32_t n, const std::wstring& text) {
  live_ -= lines_[n].size;
  put(edit_line(n), text, indent_before(lines_[n].kind));
}

// What goes on behind a "\" ends with an empty line, if that leaves what it says.
void document::end_line(std::uint32_t n) {
  if (n == none || shape(n).content < lines_[n].size) return;
  const bool is_entry = is(n, line_kind::entry);
  const std::wstring name = is_entry ? name_of(n) : L"", value = is_entry ? value_of(n) : L"";
  while (shape(n).content == lines_[n].size) rewrite(n, std::wstring(view(n)) + line_end_near(n));
  if (is_entry && (name_of(n) != name || value_of(n) != value))
    refuse(name, L"la última línea se leería de otro modo");
}

std::uint32_t document::insert(std::uint32_t after, const std::wstring& text, std::uint32_t entry_indent) {
  end_line(after);
  kept_line made;
  put(made, text, entry_indent);
  const auto n = static_cast<std::uint32_t>(lines_.size());
  made.previous = after;
  made.next = after == none ? first_ : lines_[after].next;
  made.last_twin = n;
  lines_.push_back(made);
  (after == none ? first_ : edit_line(after).next) = n;
  (made.next == none ? last_ : edit_line(made.next).previous) = n;
  return n;
}

void document::insert_more(std::uint32_t n, const new_lines& made) {
  const std::uint32_t indent = shape(n).indent;
  for (const std::wstring& each : made.more) n = insert(n, each, indent);
}

std::uint32_t document::insert_entry(std::uint32_t after, const new_lines& made, std::uint32_t section) {
  const std::uint32_t n = insert(after, made.line);
  insert_more(n, made);
  take_entry(n, section);
  return n;
}

std::uint32_t document::insert_header(const std::wstring& text) {
  end_line(last_);
  if (last_ != none && !is(last_, line_kind::blank)) insert(last_, line_end_near(last_));
  const std::uint32_t n = insert(last_, text);
  return take_header(n, written_name(n));
}

void document::unlink(std::uint32_t n) {
  const kept_line& old = lines_[n];
  live_ -= old.size;
  (old.previous == none ? first_ : edit_line(old.previous).next) = old.next;
  (old.next == none ? last_ : edit_line(old.next).previous) = old.previous;
}

void document::unlink_more(std::uint32_t n) {
  for (const std::uint32_t end = end_of(n); n != end;) {
    n = lines_[n].next;
    if (is(n, line_kind::more)) unlink(n);
  }
}

void document::unlink_entry(std::uint32_t n) {
  unlink_more(n);
  if (sections_[lines_[n].section].tail == n) {
    std::uint32_t& tail = edit_section(lines_[n].section).tail;
    do {
      tail = lines_[tail].previous;
    } while (tail != none && !is(tail, line_kind::entry) && !is(tail, line_kind::header));
  }
  unlink(n);
}

/// The comment right above the next section stays.
void document::unlink_chunk(std::uint32_t header) {
  std::uint32_t end = lines_[header].next;
  while (end != none && !is(end, line_kind::header)) end = lines_[end].next;
  while (end != none && is(lines_[end].previous, line_kind::comment)) end = lines_[end].previous;
  for (std::uint32_t n = header; n != end; n = lines_[n].next) unlink(n);
}

// --- changes

void document::set(const std::wstring& section, const std::wstring& key,
                   const std::vector<std::wstring>& values, const text_encoding& bytes) {
  std::uint32_t id = find_section(section);
  const std::uint32_t first = id == none ? none : find_key(id, key);
  if (first != none) return change_values(first, values, bytes);
  std::vector<new_lines> made;
  made.reserve(values.size());
  for (const std::wstring& each : values) made.push_back(new_entry(id, key, each, bytes));
  if (id == none) id = add_section(section, bytes);
  for (const new_lines& each : made) {
    const std::uint32_t added = insert_entry(place_in(id), each, id);
    edit_section(id).tail = added;
  }
}

void document::change_values(std::uint32_t first, const std::vector<std::wstring>& values,
                             const text_encoding& bytes) {
  const std::vector<std::uint32_t> old = counting(first);
  const std::uint32_t id = lines_[first].section;
  std::vector<new_lines> made(values.size());
  for (std::size_t n = 0; n < values.size(); ++n) {
    if (n >= old.size())
      made[n] = new_entry(id, name_of(first), values[n], bytes);
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
    edit_line(old[values.size() - 1]).twin = none;
    edit_line(first).last_twin = old[values.size() - 1];
  }
  for (std::size_t n = old.size(); n < values.size(); ++n) {
    const std::uint32_t last = lines_[first].last_twin;
    const std::uint32_t added = insert_entry(end_of(last), made[n], id);
    if (sections_[id].tail == last) edit_section(id).tail = added;
  }
}

std::uint32_t document::add_section(const std::wstring& name, const text_encoding& bytes) {
  return insert_header(header_line(L"[", name, L"]" + line_end_near(last_), bytes));
}

void document::erase_key(std::uint32_t first) {
  const std::wstring name = name_of(first);
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) unlink_entry(n);
  sections_[lines_[first].section].keys.get()->erase(key_name(name), first);
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
  const std::uint32_t there = find_key(lines_[first].section, name);
  if (there != none && there != first) refuse(name, L"la clave ya existe");
  const std::wstring shown = rules().written_name(name);
  std::vector<std::wstring> made;
  for (std::uint32_t n = first; n != none; n = lines_[n].twin) {
    const line_shape old = shape(n);
    made.push_back(std::wstring(view(n).substr(0, old.name)) + shown);
    made.back() += view(n).substr(old.name + old.name_size);
    const bool is_section = rules().dialect().has_sections && name.starts_with(L'[');
    if (has_unprintable(shown) || is_section ||
        !is_read_as({made.back(), {}}, name, rules().value_of(value_in(view(n), old))))
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
    const line_shape old = shape(n);
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
  const std::wstring all = text();
  line_splitter again(rules(), all);
  std::uint32_t n = first_;
  for (line_shape each; again.next(each); n = lines_[n].next) {
    if (n == none) return false;
    const line_shape own = shape(n);
    const bool is_same = own.kind == each.kind && own.size == each.size && own.name == each.name &&
                         own.name_size == each.name_size && own.value == each.value &&
                         own.value_size == each.value_size;
    if (!is_same) return false;
  }
  return n == none;
}

void document::tidy() {
  constexpr std::size_t allowed = 65536;
  if (text_.size() > 2 * live_ + allowed) parse(text());
}

}  // namespace ruvo::settings
