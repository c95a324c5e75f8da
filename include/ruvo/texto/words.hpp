#pragma once

// Trimming, case, word forms and the cleaning of characters.

#include <ruvo/api.hpp>

#include <string>

namespace ruvo::texto {

// Trimming and blanks

KESTA_API std::wstring& ltrim(std::wstring& text);
KESTA_API std::wstring ltrim_(const std::wstring& text);
KESTA_API std::wstring& rtrim(std::wstring& text);
KESTA_API std::wstring rtrim_(const std::wstring& text);
KESTA_API std::wstring& trim(std::wstring& text);
KESTA_API std::wstring trim_(const std::wstring& text);

/// `a` unless it is empty, else `b`. The narrow form converts from UTF-8.
KESTA_API std::wstring safe_non_empty(const std::wstring& a, const std::wstring& b);
KESTA_API std::wstring safe_non_empty(const std::string& a, const std::string& b);

// Case: A-Z and the accented capitals U+00C0 to U+00DD (without U+00D7), with their small letters

KESTA_API wchar_t to_lowercase(wchar_t c);
KESTA_API std::wstring& to_lowercase(std::wstring& text);
KESTA_API std::wstring to_lowercase_(const std::wstring& text);
KESTA_API wchar_t to_uppercase(wchar_t c);
KESTA_API std::wstring& to_uppercase(std::wstring& text);
KESTA_API std::wstring to_uppercase_(const std::wstring& text);

}  // namespace ruvo::texto
