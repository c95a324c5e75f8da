// SPDX-License-Identifier: BSL-1.0

// Fields, and application/x-www-form-urlencoded.

#include <ruvo/forms.hpp>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/wire/ascii_set.hpp"
#include "base/wire/percent.hpp"
#include "exc/detail.hpp"
#include "net/failures.hpp"
#include "net/field_bundle.hpp"

namespace ruvo::http {

// --- fields

fields::fields() noexcept = default;
fields::fields(std::initializer_list<field> all) : all_(all) {}
fields::fields(const fields& other) = default;
fields::fields(fields&& other) noexcept = default;
fields& fields::operator=(const fields& other) { return *this = fields(other); }
fields& fields::operator=(fields&& other) noexcept = default;
fields::~fields() = default;

fields& fields::add(const std::wstring& name, const std::wstring& value) {
  all_.push_back({name, value});
  return *this;
}

fields& fields::set(const std::wstring& name, const std::wstring& value) {
  field made{name, value};  // both may be of a field that goes
  const auto is_named = [&](const field& each) { return each.name == made.name; };
  const auto first = std::find_if(all_.begin(), all_.end(), is_named);
  if (first == all_.end()) {
    all_.push_back(std::move(made));
    return *this;
  }
  all_.erase(std::remove_if(first + 1, all_.end(), is_named), all_.end());
  first->value = std::move(made.value);
  return *this;
}

std::size_t fields::erase(const std::wstring& name) {
  return std::erase_if(all_, [own = name](const field& each) { return each.name == own; });
}

void fields::clear() noexcept { all_.clear(); }

const std::wstring* fields::find(const std::wstring& name) const noexcept {
  const auto found =
      std::find_if(all_.begin(), all_.end(), [&](const field& each) { return each.name == name; });
  return found == all_.end() ? nullptr : &found->value;
}

std::wstring fields::get(const std::wstring& name, const std::wstring& fallback) const {
  const std::wstring* const found = find(name);
  return found ? *found : fallback;
}

std::vector<std::wstring> fields::get_all(const std::wstring& name) const {
  std::vector<std::wstring> values;
  for (const field& each : all_)
    if (each.name == name) values.push_back(each.value);
  return values;
}

std::size_t fields::count(const std::wstring& name) const noexcept {
  return static_cast<std::size_t>(
      std::count_if(all_.begin(), all_.end(), [&](const field& each) { return each.name == name; }));
}

const field& fields::operator[](std::size_t n) const {
  if (n >= all_.size()) throw ruvo::detail::missing_index(n, all_.size());
  return all_[n];
}

bool fields::operator==(const fields& other) const noexcept { return all_ == other.all_; }

std::wstring fields::form_text() const {
  std::wstring out;
  for (const field& each : all_) {
    if (&each != all_.data()) out.push_back(L'&');
    wire::append_percent(out, std::wstring_view(each.name), wire::form_set, wire::plus_sign::blank);
    out.push_back(L'=');
    wire::append_percent(out, std::wstring_view(each.value), wire::form_set, wire::plus_sign::blank);
  }
  return out;
}

// --- reading

namespace {

template <class Unit>
std::wstring decoded_part(std::basic_string_view<Unit> text, std::size_t at, bool lenient) {
  std::wstring out;
  const wire::percent_faults faults = wire::percent_text(out, text, wire::plus_sign::blank);
  if (!lenient && !faults.good()) refuse_at(at + faults.first());
  return out;
}

template <class Unit>
fields fields_in(std::basic_string_view<Unit> text, const form_options& options) {
  if (text.size() > options.units) refuse_at(options.units);
  fields made;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find(Unit{'&'}, from), text.size());
    const std::basic_string_view<Unit> part = text.substr(from, end - from);
    const std::size_t equals = std::min(part.find(Unit{'='}), part.size());
    const std::size_t value = std::min(equals + 1, part.size());
    if (!part.empty() && made.size() == options.fields) refuse_at(from);
    if (!part.empty()) {
      made.add(decoded_part(part.substr(0, equals), from, options.lenient),
               decoded_part(part.substr(value), from + value, options.lenient));
    }
    from = end + 1;
  }
  return made;
}

}  // namespace

bool read_form(fields& out, std::wstring_view text, exception& err, const form_options& options) {
  return succeeds(err, [&] { out = fields_in(text, options); });
}
bool read_form(fields& out, std::string_view bytes, exception& err, const form_options& options) {
  return succeeds(err, [&] { out = fields_in(bytes, options); });
}

}  // namespace ruvo::http

namespace ruvo::serializer {

http_forms::http_forms() = default;
http_forms::http_forms(const http_forms& other) noexcept = default;
http_forms& http_forms::operator=(const http_forms& other) noexcept = default;
http_forms::~http_forms() = default;

bool http_forms::serialize(std::wstring& out, const bundle& in, exception* err, int) {
  return http::fails(err, [&] { out = http::fields_of(in).form_text(); });
}

bool http_forms::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return http::fails(err, [&] { http::put_fields(out, http::fields_in(std::wstring_view(in), {})); });
}

}  // namespace ruvo::serializer
