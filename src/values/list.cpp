#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <ostream>

#include "exc/detail.hpp"
#include "texto/numbers.hpp"
#include "values/cell.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;

list::list() noexcept = default;
list::list(const list& other) = default;
list::list(list&& other) noexcept = default;
list::list(std::initializer_list<xvar> values) : soul_(values) {}
list::~list() = default;

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
  cell::set_box(made, kind::list, std::move(*this));
  return made;
}

const xvar& list::at(unsigned long index) const {
  if (index >= soul_.size()) throw detail::missing_index(index, soul_.size());
  return soul_[index];
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
