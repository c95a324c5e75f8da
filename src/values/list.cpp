// SPDX-License-Identifier: BSL-1.0

// The sequence of values: copies that keep qualities apart, sorting, text.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <ostream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "base/numbers.hpp"
#include "exc/detail.hpp"
#include "values/cell.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;

list::list() noexcept = default;
list::list(const list& other) = default;
list::list(list&& other) noexcept = default;
list::list(std::initializer_list<xvar> values) : soul_(values) {}
list::~list() {
  if (!soul_.empty()) detail::drop_elements(*this);
}

const list& list::operator=(const list& other) { return *this = list(other); }

const list& list::operator=(list&& other) noexcept {
  vector taken = std::move(other.soul_);  // `other` may be inside one of the elements that go now
  soul_.swap(taken);
  return *this;
}

const list& list::operator=(const vector& values) {
  soul_ = vector(values);
  return *this;
}

const list& list::operator=(std::initializer_list<xvar> values) { return *this = vector(values); }

const list& list::operator=(const xvar& value) {
  return *this = cell::kind_of(value) == kind::list ? list(cell::as_list(value)) : list();
}

list::operator xvar() const& { return list(*this); }

list::operator xvar() && {
  xvar made;
  cell::set_box<list>(made, std::move(*this));
  return made;
}

const xvar& list::at(unsigned long index) const { return checked(index); }

const xvar& list::checked(unsigned long long index) const {
  if (index >= soul_.size()) throw detail::missing_index(index, soul_.size());
  return soul_[static_cast<size_type>(index)];
}

const list& list::operator+=(const xvar& value) {
  soul_.push_back(value);
  return *this;
}

list& list::operator++() {
  soul_.emplace_back();
  return *this;
}

list& list::operator--() {
  if (!soul_.empty()) soul_.pop_back();
  return *this;
}

xvar& list::on_back() { return soul_.emplace_back(); }

namespace {

/// Appends an element made by `on`; takes it away again when that fails.
template <class T>
T& appended(std::vector<xvar>& soul, T& (*on)(var&)) {
  soul.emplace_back();
  try {
    return on(soul.back());
  } catch (...) {
    soul.pop_back();
    throw;
  }
}

}  // namespace

list& list::on_back_list() { return appended(soul_, cell::on_list); }
bundle& list::on_back_bundle() { return appended(soul_, cell::on_bundle); }
binary& list::on_back_binary() { return appended(soul_, cell::on_binary); }
memo& list::on_back_memo() { return appended(soul_, cell::on_memo); }
std::wstring& list::on_back_string() { return appended(soul_, cell::on_string); }

list::iterator list::remove(unsigned long long index) {
  return soul_.erase(soul_.begin() + static_cast<std::ptrdiff_t>(index));
}

void list::sort() {
  sort([](const var& a, const var& b) { return a < b; });
}

list::size_type list::unique() {
  return unique([](const var& a, const var& b) { return a == b; });
}

void list::sort_by(bool (*before)(void* given, const xvar& a, const xvar& b), void* given) {
  const std::size_t count = soul_.size();
  std::vector<std::size_t> sources(count), merged(count);  // at each place the index of the element for it
  std::iota(sources.begin(), sources.end(), std::size_t{0});
  const auto comes_before = [&](std::size_t a, std::size_t b) { return before(given, soul_[a], soul_[b]); };
  // Merges runs of 1, 2, 4... elements: whatever the order says, nothing beyond them is looked at. Not by
  // std::merge, which may take for granted that the runs are in order.
  for (std::size_t run = 1; run < count; run *= 2) {
    for (std::size_t begin = 0; begin < count; begin += 2 * run) {
      const std::size_t middle = std::min(begin + run, count), end = std::min(begin + 2 * run, count);
      std::size_t left = begin, right = middle;
      for (std::size_t to = begin; to < end; ++to) {
        const bool takes_right =
            left == middle || (right < end && comes_before(sources[right], sources[left]));
        merged[to] = sources[takes_right ? right++ : left++];
      }
    }
    sources.swap(merged);
  }
  for (std::size_t begin = 0; begin < count; ++begin) {
    std::size_t place = begin;
    while (sources[place] != begin) {  // round the circle, each swap settling one place
      const std::size_t source = std::exchange(sources[place], place);
      soul_[place].swap(soul_[source]);
      place = source;
    }
    sources[place] = place;
  }
}

list::size_type list::remove_those(bool (*goes)(void* given, const xvar& element), void* given) {
  std::vector<bool> gone(soul_.size());
  for (std::size_t i = 0; i < soul_.size(); ++i) gone[i] = goes(given, soul_[i]);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < soul_.size(); ++i) {
    if (gone[i]) continue;
    if (i != kept) soul_[kept].swap(soul_[i]);
    ++kept;
  }
  const size_type count = soul_.size() - kept;
  soul_.resize(kept);
  return count;
}

list::iterator list::rotate(const_iterator first) noexcept {
  const auto middle = soul_.begin() + (first - soul_.cbegin());
  const auto reverse = [](iterator from, iterator to) {
    while (from < to && from < --to) from++->swap(*to);
  };
  reverse(soul_.begin(), middle);
  reverse(middle, soul_.end());
  reverse(soul_.begin(), soul_.end());
  return soul_.begin() + (soul_.cend() - first);
}

std::wstring list::to_string() const {
  std::wstring text;
  detail::append_text(text, *this);
  return text;
}

std::wstring list::to_texto_sql() const {
  std::wstring out;
  for (const xvar& v : soul_) {
    if (!out.empty()) out += L',';
    const std::wstring text = v.to_string();
    out += L'\'';
    out += texto::trimmed(text);
    out += L'\'';
  }
  return out;
}

std::wstring list::to_numeric_sql() const {
  std::wstring out;
  for (const xvar& v : soul_) {
    if (!out.empty()) out += L',';
    if (!v.is_number() && !v.can_be_number()) continue;
    const std::wstring text = v.to_string();
    out += texto::trimmed(text);
  }
  return out;
}

bool list::operator==(const list& other) const { return to_string() == other.to_string(); }
bool list::operator<(const list& other) const { return to_string() < other.to_string(); }

std::wostream& operator<<(std::wostream& out, const list& value) { return out << value.to_string(); }

}  // namespace ruvo
