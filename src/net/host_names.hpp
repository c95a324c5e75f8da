// SPDX-License-Identifier: BSL-1.0
#pragma once

// Hosts of addresses (RFC 3986, 3.2.2).

#include <cstddef>
#include <string_view>

namespace ruvo::http {

/// The first unit of a host that cannot stand there, or npos: a name or an address, with "[]" around one of
/// IPv6; it may be empty.
std::size_t wrong_in_host(std::wstring_view host) noexcept;

}  // namespace ruvo::http
