// SPDX-License-Identifier: BSL-1.0

// The status of an answer.

#include <ruvo/net.hpp>

namespace ruvo::net {

iresponse::iresponse() = default;
iresponse::iresponse(const iresponse& other) noexcept = default;
iresponse& iresponse::operator=(const iresponse& other) noexcept = default;
iresponse::~iresponse() = default;

void iresponse::set_exception(const exception& error) noexcept { status_ = error; }

}  // namespace ruvo::net
