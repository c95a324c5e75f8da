// SPDX-License-Identifier: BSL-1.0

// The report on the delivery of a message.

#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/smtp/address.hpp>
#include <ruvo/smtp/response.hpp>

#include <utility>

#include "values/object.hpp"

namespace ruvo::smtp {

namespace {

constexpr wchar_t accepted_list[] = L"accepted", refused_list[] = L"refused";

}  // namespace

response::response() {
  report_.hack_list_on(accepted_list);
  report_.hack_list_on(refused_list);
}
response::response(const response& other) = default;
response::~response() = default;

response& response::operator=(const response& other) {
  bundle report(other.report_);  // what may fail comes first
  net::iresponse::operator=(other);
  report_ = std::move(report);
  return *this;
}

response& response::take(const var& value) {
  if (const response* const held = ruvo::detail::object_in<response>(value)) *this = *held;
  return *this;
}

response& response::push(const address& accepted) {
  report_.hack_list_on(accepted_list).push_back(bundle(accepted));
  return *this;
}

response& response::push(const address& refused, const exception& error) {
  bundle entry;
  entry[L"address"] = bundle(refused);
  entry[L"code"] = error.get_raw_code();
  entry[L"message"] = error.get_mensaje();
  report_.hack_list_on(refused_list).push_back(std::move(entry));
  return *this;
}

bool response::operator==(const response& other) const {
  return get_exception() == other.get_exception() && report_ == other.report_;
}

std::wstring response::to_string() const { return report_.to_string(); }

response::operator xvar() const {
  xvar value;
  ruvo::detail::set_object(value, *this);
  return value;
}

}  // namespace ruvo::smtp
