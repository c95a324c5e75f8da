// SPDX-License-Identifier: BSL-1.0
#pragma once

// Characters that are written as others behind a "\".

#include <string>
#include <string_view>

namespace ruvo::settings {

/// A control character other than TAB.
bool is_unprintable(wchar_t c) noexcept;

/// What goes on behind a "\" at the end of a line and the blanks of the next one, in one line.
std::wstring joined(std::wstring_view written);

/// As keys and values of `.properties` are read and written.
std::wstring unescaped(std::wstring_view written);
std::wstring escaped_name(std::wstring_view name);
std::wstring escaped_value(std::wstring_view value);

/// As what stands between double quotation marks is read and written, and whether it can be.
std::wstring unescaped_quoted(std::wstring_view written);
std::wstring escaped_quoted(std::wstring_view value);
bool can_be_quoted(std::wstring_view value);

/// Each line end as "\n".
std::wstring with_line_feeds(std::wstring_view text);

}  // namespace ruvo::settings
