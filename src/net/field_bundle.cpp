// SPDX-License-Identifier: BSL-1.0

// Fields as bundles.

#include "net/field_bundle.hpp"

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xvar.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
#include <utility>

#include "net/failures.hpp"
#include "values/cell.hpp"

namespace ruvo::http {

std::wstring text_of_scalar(const std::wstring& key, const xvar& value) {
  if (value.is_null()) return {};
  for (const std::type_info* wrong : {&typeid(list), &typeid(bundle), &typeid(binary)})
    if (value.instanceof (*wrong)) refuse(key);
  return value.to_string();
}

fields fields_of(const bundle& in) {
  fields made;
  for (std::size_t n = 0; n < in.size(); ++n) {
    const bundle::entry& each = *in[n];
    const std::wstring& name = each.spelling();
    if (!each.second.instanceof (typeid(list))) {
      made.add(name, text_of_scalar(name, each.second));
      continue;
    }
    for (const xvar& value : ruvo::detail::cell::as_list(each.second))
      made.add(name, text_of_scalar(name, value));
  }
  return made;
}

void put_fields(bundle& out, const fields& all) {
  bundle made;
  for (const field& each : all) {
    const auto found = made.find(each.name);
    if (found == made.end()) {
      made[each.name] = each.value;
      continue;
    }
    if (found->spelling() != each.name) refuse(each.name);
    xvar& entry = found->second;
    if (!entry.instanceof (typeid(list))) entry = list{xvar(entry)};
    ruvo::detail::cell::on_list(entry).push_back(each.value);
  }
  put_entries(out, std::move(made));
}

void put_entries(bundle& out, bundle made) {
  if (!out.empty()) {
    bundle all = out;  // stays as it is until all is there
    for (std::size_t n = 0; n < made.size(); ++n) {
      bundle::entry& each = *made[n];
      all.erase(each.spelling());  // which would keep its own spelling
      all[each.spelling()] = std::move(each.second);
    }
    made = std::move(all);
  }
  out = std::move(made);
}

}  // namespace ruvo::http
