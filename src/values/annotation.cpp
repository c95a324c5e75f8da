// SPDX-License-Identifier: BSL-1.0

// Notes, and what they are as bundles.

#include <ruvo/annotation.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>
#include <ruvo/times.hpp>

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "values/cell.hpp"
#include "values/kinds.hpp"
#include "values/rows.hpp"

namespace ruvo {

using detail::cell;
using detail::family;
using detail::kind;

namespace {

constexpr long long no_date = -1;
constexpr wchar_t note_row[] = L"annotation";

datetime instant_of(const std::wstring& text) {
  datetime read(no_date, times::GMT);
  exception failure;
  for (const wchar_t* const format :
       {L"%Y-%m-%dT%H:%M:%S%z", L"%Y-%m-%dT%H:%M:%S", L"%d-%m-%Y %H:%M:%S", L"%Y-%m-%d", L"%d-%m-%Y"})
    if (read.parse(text, std::wstring(format), failure)) return read;
  throw exc::BadArgument(L"date");
}

/// Of a text that is a number.
double number_in(const xvar& value) {
  try {
    return static_cast<double>(value);
  } catch (const std::out_of_range&) {
    throw exc::BadArgument(L"date");
  }
}

/// The instant that a stored date means.
datetime instant_of(const xvar& value) {
  datetime read(no_date, times::GMT);
  switch (detail::family_of(value)) {
    case family::date:
    case family::datetime:
      read.set_lapso(cell::integer(value));
      return read;
    case family::integer:
      read.set_lapso(static_cast<long long>(value));
      return read;
    case family::real:
      read.set_lapso(static_cast<double>(value));
      return read;
    case family::text:
      if (value.var::empty()) return read;
      if (!value.can_be_number()) return instant_of(value.to_string());
      read.set_lapso(number_in(value));
      return read;
    default:
      throw exc::BadArgument(L"date");
  }
}

void take_text(std::wstring& to, const bundle& from, const wchar_t* key) {
  to = from.get_string(key, '.', to);
}

}  // namespace

annotation::annotation() : date_(no_date, times::GMT) {}
annotation::annotation(const std::wstring& author, const std::wstring& text)
    : author_(author), text_(text), date_(times::GMT) {}
annotation::annotation(const std::wstring& author, const std::wstring& text, const datetime& date)
    : author_(author), text_(text), date_(date) {}
annotation::annotation(const bundle& fields) : annotation() { *this = fields; }
annotation::annotation(const annotation& other) = default;
annotation::annotation(annotation&& other) noexcept = default;
annotation& annotation::operator=(const annotation& other) { return *this = annotation(other); }
annotation& annotation::operator=(annotation&& other) noexcept = default;

annotation& annotation::operator=(const bundle& fields) {
  annotation read(*this);
  take_text(read.author_, fields, L"author");
  take_text(read.text_, fields, L"text");
  const xvar* const date = fields.get_ptr(L"date");
  if (date && !date->is_null()) read.date_ = instant_of(*date);
  const xvar* const qualities = fields.get_ptr(L"qualities");
  if (qualities && cell::kind_of(*qualities) == kind::bundle) {
    read.qualities_.clear();
    for (const bundle::entry& each : cell::as_bundle(*qualities))
      read.qualities_[each.spelling()] = each.second;
  }
  return *this = std::move(read);
}

annotation& annotation::operator=(const xvar& value) {
  if (cell::kind_of(value) != kind::bundle) throw exc::BadArgument(L"annotation");
  return *this = cell::as_bundle(value);
}
annotation::~annotation() = default;

annotation& annotation::set_author(const std::wstring& author) {
  author_ = author;
  return *this;
}
annotation& annotation::set_text(const std::wstring& text) {
  text_ = text;
  return *this;
}
annotation& annotation::set_date(const datetime& date) {
  date_ = date;
  return *this;
}

var& annotation::operator[](const std::wstring& name) { return qualities_[name]; }

std::wstring annotation::to_string() const {
  std::wstring out;
  if (!date_.is_null()) detail::append_text(out, var(date_));
  if (!out.empty() && !author_.empty()) out.append(L" ");
  out.append(author_);
  if (!out.empty() && !text_.empty()) out.append(L": ");
  return out.append(text_);
}

annotation::operator bundle() const {
  bundle out;
  out[L"author"] = author_;
  out[L"date"] = datetime(date_.get_lapso(), times::GMT);
  out[L"text"] = text_;
  if (qualities_.empty()) return out;
  bundle& all = out.hack_bundle_on(L"qualities");
  for (const auto& [name, value] : qualities_) all[name] = value;
  return out;
}

bool annotation::operator==(const annotation& other) const {
  const auto same_quality = [before = keylowercase()](const auto& a, const auto& b) {
    return !before(a.first, b.first) && !before(b.first, a.first) && a.second == b.second;
  };
  return date_.get_lapso() == other.date_.get_lapso() && author_ == other.author_ && text_ == other.text_ &&
         std::equal(qualities_.begin(), qualities_.end(), other.qualities_.begin(), other.qualities_.end(),
                    same_quality);
}
bool annotation::operator<(const annotation& other) const noexcept {
  const long long mine = date_.get_lapso(), others = other.date_.get_lapso();
  return std::tie(mine, author_, text_) < std::tie(others, other.author_, other.text_);
}

std::wostream& operator<<(std::wostream& out, const annotation& value) { return out << value.to_string(); }

// --- annotable

annotable::annotable() noexcept = default;
annotable::annotable(const annotable& other) = default;
annotable::annotable(annotable&& other) noexcept = default;
annotable& annotable::operator=(const annotable& other) {
  notes_ = std::vector(other.notes_);
  return *this;
}
annotable& annotable::operator=(annotable&& other) noexcept = default;
annotable::~annotable() = default;

annotation& annotable::annotate(const std::wstring& author, const std::wstring& text) {
  return notes_.emplace_back(author, text);
}
annotation& annotable::annotate(const annotation& note) {
  notes_.push_back(note);
  return notes_.back();
}
void annotable::clear_annotations() noexcept { notes_.clear(); }

void annotable::write_annotations(bundle& out) const {
  static const std::wstring key = L"annotations";
  if (notes_.empty()) {
    out.erase(key);
    return;
  }
  list all;
  for (const annotation& each : notes_) all.on_back_bundle()[note_row] = each;
  out[key] = std::move(all);
}

void annotable::read_annotations(const bundle& in) {
  std::vector<annotation> read;
  const auto take = [&read](const xvar& row) {
    read.emplace_back(detail::row_value(detail::row_value(row, detail::item_row), note_row));
  };
  const xvar* const all = in.get_ptr(L"annotations");
  if (all && cell::kind_of(*all) == kind::list) {
    for (const xvar& each : cell::as_list(*all)) take(each);
  } else if (all && !all->var::empty()) {
    take(*all);
  }
  notes_.swap(read);
}

}  // namespace ruvo
