// SPDX-License-Identifier: BSL-1.0

// Standard JSON behind the interface of all serializers.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/xvar.hpp>

#include <utility>

#include "serializer/json/grammar.hpp"
#include "serializer/json/standard_read.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::cell;
using detail::kind;

standard_json::standard_json(const json_read_options& reading, const json_write_options& writing)
    : reading_(reading), writing_(writing) {}
standard_json::standard_json(const standard_json& other) = default;
standard_json& standard_json::operator=(const standard_json& other) = default;
standard_json::~standard_json() = default;

bool standard_json::serialize(std::wstring& out, const bundle& in, exception* err, int /*options*/) {
  const xvar* const whole = in.count(array_key) > 0 ? &in.at(array_key) : nullptr;
  if (whole && cell::kind_of(*whole) == kind::list)
    return write_standard_json(out, cell::as_list(*whole), err, writing_);
  return write_standard_json(out, in, err, writing_);
}

bool standard_json::deserialize(bundle& out, const std::wstring& in, exception* err, int /*options*/) {
  xvar read;
  if (read_container(read, in, err, reading_)) return true;
  if (cell::kind_of(read) == kind::list) {
    static_cast<var&>(out[array_key]) = std::move(static_cast<var&>(read));
    return false;
  }
  detail::bundle_store* const from = bundle_access::store(cell::as_bundle(read));
  if (!from) return false;
  detail::bundle_store& to = bundle_access::made_store(out, from->size());
  for (std::size_t n = 0; n < from->size(); ++n) {
    bundle::entry* const member = from->nth(n);
    const detail::key_view key(*detail::bundle_store::key_of(member));
    static_cast<var&>(to.put(key)->second) = std::move(static_cast<var&>(member->second));
  }
  return false;
}

}  // namespace ruvo::serializer
