// SPDX-License-Identifier: BSL-1.0
#pragma once

// Requests as OAuth 1.0a sees them (RFC 5849, 3.4.1).

#include <ruvo/http.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ruvo::oauth {

/// Names and values, decoded, as bytes.
using parameter_list = std::vector<std::pair<std::string, std::string>>;

/// Fails with the argument of that name.
[[noreturn]] void refuse(std::string_view name);

/// The value of the first parameter of that name, or nothing.
std::string value_in(const parameter_list& all, std::string_view name);

/// What is signed of a request with these parameters of its field "Authorization". Fails as signer does.
std::string base_string_of(const std::wstring& verb, const http::request& message, const parameter_list& own);

/// The parameters of the field, but for "realm". Fails ("Authorization") where it is missing, is no list of
/// parameters, or has one twice.
parameter_list read_authorization(const http::request& message);

/// Seconds since 1970, which are digits alone; nothing for anything else and for more than 18 of them.
std::optional<long long> read_seconds(std::string_view text);

}  // namespace ruvo::oauth
