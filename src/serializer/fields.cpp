// SPDX-License-Identifier: BSL-1.0

// What the reading and writing of structs has beside their types: problems, XML, new containers.

#include <ruvo/exc.hpp>
#include <ruvo/fields.hpp>
#include <ruvo/well_formed_xml.hpp>
#include <ruvo/xml_writing.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/utf.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"
#include "values/kinds.hpp"

namespace ruvo {

namespace detail {

namespace {

constexpr std::size_t most_levels = 200;
constexpr std::wstring_view item = L"item";

/// `lineas[2].precio`
std::wstring path_of(const field_place& at) {
  std::vector<const field_place*> way;
  for (const field_place* each = &at; each->above; each = each->above) way.push_back(each);
  std::wstring out;
  for (auto each = way.rbegin(); each != way.rend(); ++each) {
    const field_place& step = **each;
    if (step.key.data()) {
      if (!out.empty()) out += L'.';
      out += step.key;
    } else {
      out += L'[';
      out += std::to_wstring(step.index);
      out += L']';
    }
  }
  return out;
}

/// "un texto «doce»"
std::wstring described(const xvar& value) {
  constexpr std::size_t most = 60;
  std::wstring out = traits_of(value).noun;
  if (value.is_null() || cell::is_container(value)) return out;
  std::wstring text = value.to_string();
  if (text.size() > most) {
    text.resize(texto::is_low_surrogate(text[most]) ? most - 1 : most);
    text += L'…';
  }
  out += L" «";
  out += text;
  return out += L'»';
}

}  // namespace

const xvar* member_at(const bundle& in, std::wstring_view key) {
  const bundle_store* const store = bundle_access::store(in);
  if (!store) return nullptr;
  const bundle::entry* const found = store->find(key_view(folded_key(key)));
  return found ? &found->second : nullptr;
}

xvar& new_member(bundle& in, std::wstring_view key) {
  return bundle_access::made_store(in).add(key_view(folded_key(key)))->second;
}
bundle& new_bundle_in(xvar& value) { return cell::on_bundle(value); }
list& new_list_in(xvar& value) { return cell::on_list(value); }

void refuse_to_write(std::wstring_view name) { throw exc::BadArgument(std::wstring(name)); }

field_reading::field_reading(field_report& report, const field_options& options) noexcept
    : report_(&report), options_(options) {}

bool field_reading::refuse(const field_place& at, const std::wstring& expected, const xvar* found) {
  return note({path_of(at), expected, found ? described(*found) : std::wstring()});
}

bool field_reading::note(field_problem problem) {
  if (report_->problems.size() >= options_.most)
    ++report_->more;
  else
    report_->problems.push_back(std::move(problem));
  return false;
}

bool field_reading::goes_deeper(const field_place& at) {
  if (at.depth < most_levels) return true;
  return note({path_of(at), L"no más de " + std::to_wstring(most_levels) + L" niveles", L"más"});
}

bool field_reading::has_only(const bundle& in, const std::wstring_view* keys, std::size_t count,
                             const field_place& at) {
  bool all = true;
  for (const bundle::entry& entry : entries_of(in)) {
    const auto is_it = [&entry](std::wstring_view key) { return is_same_key(entry.first, key); };
    if (std::any_of(keys, keys + count, is_it)) continue;
    refuse(at.inside(entry.spelling()), L"ningún valor con este nombre", &entry.second);
    all = false;
  }
  return all;
}

// --- XML

const xvar& field_reading::row_of(const xvar& value) {
  const bundle* const held = as_bundle(value);
  const xvar* const inner = held && held->size() == 1 ? member_at(*held, item) : nullptr;
  return inner ? *inner : value;
}

bool field_reading::gather(bundle& out, const list& from) {
  for (const xvar& part : from) {
    const bundle* const held = as_bundle(part);
    if (!held || held->size() != 1) return false;
    const bundle::entry& entry = *held->begin();
    cell::on_list(out[entry.spelling()]).push_back(entry.second);
  }
  for (auto& [key, value] : out) {
    list& all = cell::as_list(value);
    if (all.size() > 1) continue;
    xvar only(std::move(all.front()));
    value = std::move(only);
  }
  return true;
}

const xvar* field_reading::attribute_of(const xvar* holder, std::wstring_view key, xvar& room) {
  if (!holder || !holder->is_qualified()) return nullptr;
  const auto found = holder->find(std::wstring(key));
  if (found == holder->end()) return nullptr;
  room = found->second;
  return &room;
}

}  // namespace detail

// --- reports

std::wstring to_string(const field_report& report) {
  std::wstring out;
  if (report.failure.WRONG()) out += report.failure.get_mensaje() + L'\n';
  for (const field_problem& each : report.problems) {
    out += each.path;
    out += each.found.empty() ? L": falta; se espera " : L": se espera ";
    out += each.expected;
    if (!each.found.empty()) out.append(L" y hay ").append(each.found);
    out += L'\n';
  }
  if (report.more > 0) out.append(L"y ").append(std::to_wstring(report.more)).append(L" más\n");
  return out;
}

exception as_failure(const field_report& report) {
  if (report.ok()) return exception();
  exc::BadFormat failure;
  failure.set_detail(to_string(report));
  return failure;
}

namespace detail {

// --- whole texts

bool read_document(bundle& out, iserializer& format, const std::wstring& text, exception& err) {
  try {
    return !format.deserialize(out, text, &err);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    err = exc::RunTime(std::current_exception());
    return false;
  }
}

bool write_xml(std::wstring& out, const std::wstring& root, const bundle& from, exception& err) {
  serializer::xml_write_options options;
  options.root = root;
  options.rows = serializer::xml_rows::items;
  return !serializer::write_well_formed_xml(out, from, &err, options);
}

bool read_xml_root(xvar& root, std::wstring_view text, exception& err) {
  bundle document;
  if (serializer::read_well_formed_xml(document, text, &err)) return false;
  root = std::move(document.begin()->second);
  return true;
}

}  // namespace detail

}  // namespace ruvo
