// SPDX-License-Identifier: BSL-1.0
#pragma once

// Hosts of addresses (RFC 3986, 3.2.2).

#include <cstddef>
#include <string_view>

namespace ruvo::http {

/// Four decimal numbers up to 255, without leading zeros.
bool is_ipv4(std::wstring_view text) noexcept;
/// Without "[]" and without a zone.
bool is_ipv6(std::wstring_view text) noexcept;

/// The first unit of a host that cannot stand there, or npos: a name or an address, with "[]" around one of
/// IPv6; it may be empty.
std::size_t wrong_in_host(std::wstring_view host) noexcept;

}  // namespace ruvo::http
