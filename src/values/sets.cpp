// SPDX-License-Identifier: BSL-1.0

// Sets of values and of texts: their orders, and what they are as lists.

#include <ruvo/bundle.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/set.hpp>
#include <ruvo/texto/words.hpp>
#include <ruvo/times.hpp>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "values/cell.hpp"
#include "values/kinds.hpp"
#include "values/rows.hpp"

namespace ruvo {

using detail::cell;
using detail::family;
using detail::kind;

namespace {

// --- orders

/// The text of a value, made without memory where the value is a text or an integer.
class shown_text {
 public:
  explicit shown_text(const var& v) {
    if (cell::is_text(v)) {
      text_ = cell::text(v);
    } else if (detail::family_of(v) == family::integer) {
      const long long number = cell::integer(v);
      const wchar_t* const end = cell::kind_of(v) == kind::uxlong
                                     ? texto::print_unsigned(digits_, static_cast<unsigned long long>(number))
                                     : texto::print_integer(digits_, number);
      text_ = {digits_, static_cast<std::size_t>(end - digits_)};
    } else if (cell::kind_of(v) == kind::datetime) {
      text_ = made_ = var(datetime(cell::integer(v), times::GMT)).to_string();  // whatever the zone is now
    } else {
      text_ = made_ = v.to_string();
    }
  }
  shown_text(const shown_text&) = delete;
  shown_text& operator=(const shown_text&) = delete;

  std::wstring_view view() const noexcept { return text_; }

 private:
  std::wstring_view text_;
  std::wstring made_;
  wchar_t digits_[texto::most_number_units];
};

/// Below, above or equal to 0, as std::wstring_view::compare().
int compare_in_any_case(std::wstring_view a, std::wstring_view b) noexcept {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t n = 0; n < common; ++n) {
    const int x = static_cast<char16_t>(texto::to_lowercase(a[n]));
    const int y = static_cast<char16_t>(texto::to_lowercase(b[n]));
    if (x != y) return x - y;
  }
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool comes_before(const var& a, const var& b, bool any_case) {
  const shown_text x(a), y(b);
  const int order = any_case ? compare_in_any_case(x.view(), y.view()) : x.view().compare(y.view());
  return order != 0 ? order < 0 : !cell::is_text(a) && cell::is_text(b);
}

bool same_values(const xvar& a, const xvar& b) {
  const detail::value_order before;
  return !before(a, b) && !before(b, a);
}

/// The letters of a text one after the other, without case and accents.
class plain_letters {
 public:
  explicit plain_letters(std::wstring_view text) noexcept : rest_(text) {}

  /// A number that puts the letter in its place in the alphabet; -1 at the end.
  int next() noexcept {
    if (rest_.empty()) return -1;
    wchar_t c = take();
    while (!rest_.empty() && is_combining(rest_.front()))
      if (take() == tilde && (c == L'n' || c == L'N')) c = enye;
    return place_of(c);
  }

 private:
  static constexpr wchar_t tilde = 0x303, enye = 0xF1, capital_enye = 0xD1;

  static bool is_combining(wchar_t c) noexcept { return c >= 0x300 && c <= 0x36F; }
  static int place_of(wchar_t c) noexcept {
    if (static_cast<char16_t>(c) < 0x80) return 2 * texto::to_lower(c);
    if (c == enye || c == capital_enye) return 2 * L'n' + 1;
    return 2 * static_cast<char16_t>(texto::to_lowercase(texto::limpia_puntuacion(c, 0)));
  }
  wchar_t take() noexcept {
    const wchar_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  std::wstring_view rest_;
};

bool same_letters(const std::wstring& a, const std::wstring& b) noexcept {
  const detail::smart_order before;
  return !before(a, b) && !before(b, a);
}

// --- lists

template <class Values>
list list_of(const Values& values) {
  list out;
  list::vector room;
  room.reserve(values.size());
  out.swap(room);
  for (const auto& each : values) out.emplace_back(each);
  return out;
}

/// As it is stored: what would be taken for a row of XML is put into one.
template <class Values>
xvar stored_form(const Values& values) {
  list out = list_of(values);
  for (xvar& each : out)
    if (detail::is_row(each, detail::item_row)) each = xvar(bundle{{detail::item_row, each}});
  return out;
}

/// Takes what stored_form() gives, also as it comes out of XML.
template <class Set>
void take_stored(Set& to, const xvar& value) {
  if (cell::kind_of(value) != kind::list) {
    to = value.var::empty() ? list() : list{detail::row_value(value, detail::item_row)};
    return;
  }
  list taken;
  for (const xvar& each : cell::as_list(value)) taken.push_back(detail::row_value(each, detail::item_row));
  to = taken;
}

}  // namespace

bool detail::value_order::operator()(const xvar& a, const xvar& b) const { return comes_before(a, b, false); }

bool detail::smart_order::operator()(const std::wstring& a, const std::wstring& b) const noexcept {
  plain_letters left(a), right(b);
  for (;;) {
    const int x = left.next(), y = right.next();
    if (x != y) return x < y;
    if (x < 0) return false;
  }
}

// --- set

set::set() noexcept = default;
set::set(std::initializer_list<xvar> all) : values_(all) {}
set::set(const list& all) {
  for (const xvar& each : all) values_.insert(values_.end(), each);  // at once where they are in order
}
set::set(const set& other) = default;
set::set(set&& other) noexcept = default;
set& set::operator=(const set& other) { return *this = set(other); }
set& set::operator=(set&& other) noexcept = default;
set& set::operator=(std::initializer_list<xvar> all) { return *this = set(all); }
set& set::operator=(const list& all) { return *this = set(all); }
set& set::operator=(const xvar& value) {
  take_stored(*this, value);
  return *this;
}
set::~set() = default;

std::pair<set::const_iterator, bool> set::insert(const xvar& value) { return values_.insert(value); }
std::pair<set::const_iterator, bool> set::insert(xvar&& value) { return values_.insert(std::move(value)); }

set::size_type set::erase(const xvar& value) {
  const auto found = find(value);
  if (found == end()) return 0;
  values_.erase(found);
  return 1;
}
set::const_iterator set::erase(const_iterator where) { return values_.erase(where); }
void set::clear() noexcept { values_.clear(); }

set& set::operator|=(const set& other) {
  for (const xvar& each : other) insert(each);
  return *this;
}
set& set::operator&=(const set& other) {
  for (auto at = begin(); at != end();) at = other.contains(*at) ? std::next(at) : erase(at);
  return *this;
}
set& set::operator-=(const set& other) {
  if (this == &other) clear();
  for (const xvar& each : other) erase(each);
  return *this;
}

set::const_iterator set::find(const xvar& value) const { return values_.find(value); }

std::wstring set::explain(const xvar& value) const noexcept {
  try {
    const std::wstring as = L" como ";
    const auto found = find(value);
    if (found != end()) return L"Está" + as + detail::traits_of(*found).noun + L".";
    const std::wstring text = value.to_string();
    const auto twin = find(cell::is_text(value) ? xvar(memo(text)) : xvar(text));
    if (twin == end()) return L"No está.";
    return L"No está" + as + detail::traits_of(value).noun + L"; sí" + as + detail::traits_of(*twin).noun +
           L".";
  } catch (...) {
    return {};
  }
}

set::operator list() const { return list_of(values_); }
set::operator xvar() const { return stored_form(values_); }
std::wstring set::to_string() const { return operator list().to_string(); }
bool set::operator==(const set& other) const {
  return size() == other.size() && std::equal(begin(), end(), other.begin(), same_values);
}
bool set::operator<(const set& other) const {
  return std::lexicographical_compare(begin(), end(), other.begin(), other.end(), detail::value_order());
}

std::wostream& operator<<(std::wostream& out, const set& value) { return out << value.to_string(); }

// --- cap_set

bool cap_set::order::before(const xvar& a, const xvar& b) const {
  return comes_before(a, b, kind == letters::any_case);
}

cap_set::cap_set(size_type capacity, letters kind) : capacity_(capacity), places_(order{kind}) {}
cap_set::cap_set(const cap_set& other)
    : capacity_(other.capacity_), values_(other.values_), places_(other.places_.key_comp()) {
  for (auto at = values_.cbegin(); at != values_.cend(); ++at) places_.insert(at);
}
cap_set::cap_set(cap_set&& other) noexcept
    : capacity_(other.capacity_), values_(std::move(other.values_)), places_(std::move(other.places_)) {
  other.clear();
}
cap_set& cap_set::operator=(const cap_set& other) { return *this = cap_set(other); }
cap_set& cap_set::operator=(cap_set&& other) noexcept {
  if (this == &other) return *this;
  capacity_ = other.capacity_;
  values_ = std::move(other.values_);
  places_ = std::move(other.places_);
  other.clear();
  return *this;
}
cap_set& cap_set::operator=(const list& all) {
  cap_set made(capacity_, places_.key_comp().kind);
  for (auto at = all.begin(); at != all.end() && made.size() < capacity_; ++at) {
    if (made.contains(*at)) continue;
    made.values_.push_back(*at);
    made.places_.insert(std::prev(made.values_.cend()));
  }
  return *this = std::move(made);
}
cap_set& cap_set::operator=(const xvar& value) {
  take_stored(*this, value);
  return *this;
}
cap_set::~cap_set() = default;

bool cap_set::insert(const xvar& value) {
  values made;
  made.push_back(value);
  const auto found = places_.find(value);
  if (found != places_.end()) {
    // cppcheck-suppress sameIteratorExpression ; an empty range
    const auto there = values_.erase(*found, *found);  // as an iterator that writes; nothing is erased
    there->swap(made.front());
    values_.splice(values_.begin(), values_, there);
    return false;
  }
  values_.splice(values_.begin(), made);
  try {
    places_.insert(values_.cbegin());
  } catch (...) {
    values_.pop_front();
    throw;
  }
  set_capacity(capacity_);
  return true;
}

cap_set::size_type cap_set::erase(const xvar& value) {
  const auto found = places_.find(value);
  if (found == places_.end()) return 0;
  const const_iterator there = *found;
  places_.erase(found);
  values_.erase(there);
  return 1;
}

void cap_set::clear() noexcept {
  places_.clear();
  values_.clear();
}

void cap_set::set_capacity(size_type capacity) {
  capacity_ = capacity;
  while (values_.size() > capacity_) {
    const const_iterator oldest = std::prev(values_.cend());
    auto place = places_.find(oldest);
    // Where a local date's text has changed with the context's zone, values stand out of order.
    if (place == places_.end() || *place != oldest) place = std::find(places_.begin(), places_.end(), oldest);
    places_.erase(place);
    values_.erase(oldest);
  }
}

cap_set::const_iterator cap_set::find(const xvar& value) const {
  const auto found = places_.find(value);
  return found == places_.end() ? end() : *found;
}

std::wstring cap_set::explain(const xvar& value) const noexcept {
  try {
    const auto found = find(value);
    if (found == end()) return L"No está.";
    return L"Está en el lugar " + std::to_wstring(std::distance(begin(), found) + 1) + L" de " +
           std::to_wstring(size()) + L".";
  } catch (...) {
    return {};
  }
}

cap_set::operator list() const { return list_of(values_); }
cap_set::operator xvar() const { return stored_form(values_); }
std::wstring cap_set::to_string() const { return operator list().to_string(); }
bool cap_set::operator==(const cap_set& other) const {
  return size() == other.size() && std::equal(begin(), end(), other.begin(), same_values);
}
bool cap_set::operator<(const cap_set& other) const {
  return std::lexicographical_compare(begin(), end(), other.begin(), other.end(), detail::value_order());
}

std::wostream& operator<<(std::wostream& out, const cap_set& value) { return out << value.to_string(); }

// --- smart_string_set

smart_string_set::smart_string_set() noexcept = default;
smart_string_set::smart_string_set(std::initializer_list<std::wstring> all) : texts_(all) {}
smart_string_set::smart_string_set(const list& all) {
  for (const xvar& each : all) texts_.insert(texts_.end(), each.to_string());
}
smart_string_set::smart_string_set(const smart_string_set& other) = default;
smart_string_set::smart_string_set(smart_string_set&& other) noexcept = default;
smart_string_set& smart_string_set::operator=(const smart_string_set& other) {
  return *this = smart_string_set(other);
}
smart_string_set& smart_string_set::operator=(smart_string_set&& other) noexcept = default;
smart_string_set& smart_string_set::operator=(std::initializer_list<std::wstring> all) {
  return *this = smart_string_set(all);
}
smart_string_set& smart_string_set::operator=(const list& all) { return *this = smart_string_set(all); }
smart_string_set& smart_string_set::operator=(const xvar& value) {
  take_stored(*this, value);
  return *this;
}
smart_string_set::~smart_string_set() = default;

std::pair<smart_string_set::const_iterator, bool> smart_string_set::insert(const std::wstring& text) {
  return texts_.insert(text);
}
smart_string_set::size_type smart_string_set::erase(const std::wstring& text) {
  const auto found = find(text);
  if (found == end()) return 0;
  texts_.erase(found);
  return 1;
}
smart_string_set::const_iterator smart_string_set::erase(const_iterator where) { return texts_.erase(where); }
void smart_string_set::clear() noexcept { texts_.clear(); }

smart_string_set::const_iterator smart_string_set::find(const std::wstring& text) const {
  return texts_.find(text);
}

std::wstring smart_string_set::explain(const std::wstring& text) const noexcept {
  try {
    const auto found = find(text);
    return found == end() ? L"No está." : L"Está, escrito «" + *found + L"».";
  } catch (...) {
    return {};
  }
}

smart_string_set::operator list() const { return list_of(texts_); }
smart_string_set::operator xvar() const { return operator list(); }
std::wstring smart_string_set::to_string() const { return operator list().to_string(); }
bool smart_string_set::operator==(const smart_string_set& other) const {
  return size() == other.size() && std::equal(begin(), end(), other.begin(), same_letters);
}
bool smart_string_set::operator<(const smart_string_set& other) const {
  return std::lexicographical_compare(begin(), end(), other.begin(), other.end(), detail::smart_order());
}

std::wostream& operator<<(std::wostream& out, const smart_string_set& value) {
  return out << value.to_string();
}

}  // namespace ruvo
