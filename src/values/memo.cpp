// SPDX-License-Identifier: BSL-1.0

// The long text.

#include <ruvo/binary.hpp>
#include <ruvo/memo.hpp>

#include <ostream>
#include <string_view>

#include "base/utf.hpp"

namespace ruvo {

memo::memo() noexcept = default;
memo::memo(const memo& other) = default;
memo::memo(memo&& other) noexcept = default;
memo::~memo() = default;
memo::memo(const std::wstring& text) : text_(text) {}
memo::memo(std::wstring&& text) noexcept : text_(std::move(text)) {}
memo::memo(const wchar_t* text) : text_(text ? text : L"") {}
memo::memo(const std::string& text) : text_(texto::to_utf_16(std::string_view(text))) {}
memo::memo(const char* text) : text_(texto::to_utf_16(std::string_view(text ? text : ""))) {}
memo::memo(const binary& bytes) : text_(bytes.to_string()) {}

memo& memo::operator=(const memo& other) = default;
memo& memo::operator=(memo&& other) noexcept = default;
memo& memo::operator=(const std::wstring& text) { return *this = memo(text); }
memo& memo::operator=(std::wstring&& text) noexcept { return *this = memo(std::move(text)); }
memo& memo::operator=(const wchar_t* text) { return *this = memo(text); }
memo& memo::operator=(const std::string& text) { return *this = memo(text); }
memo& memo::operator=(const char* text) { return *this = memo(text); }
memo& memo::operator=(const binary& bytes) { return *this = memo(bytes); }

memo::operator binary() const { return binary(text_); }

std::wostream& operator<<(std::wostream& out, const memo& value) { return out << value.to_string(); }

}  // namespace ruvo
