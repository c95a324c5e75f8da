// SPDX-License-Identifier: BSL-1.0

// The category of std::error_code for the library's raw codes.

#include <ruvo/error_code.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

#include "base/immortal.hpp"
#include "base/utf.hpp"

namespace ruvo {

namespace {

const detail::error_row* row_of_code(int value) noexcept {
  const auto code = static_cast<std::uint32_t>(value);
  const auto* const found = std::find_if(std::begin(detail::errors), std::end(detail::errors),
                                         [code](const detail::error_row& row) { return row.code() == code; });
  return found == std::end(detail::errors) ? nullptr : found;
}

/// The text without its arguments, and without the blanks and colons that lead to one at the end.
std::wstring without_arguments(std::wstring_view text) {
  std::wstring out;
  for (std::size_t mark; (mark = text.find(L'%')) != text.npos;
       text.remove_prefix(std::min(mark + 2, text.size())))
    out.append(text.substr(0, mark));
  out.append(text);
  out.erase(out.find_last_not_of(L" :") + 1);
  return out;
}

struct same_meaning {
  std::wstring_view name;
  std::errc as;
};

constexpr same_meaning standard[] = {
    {L"NotImplemented", std::errc::function_not_supported},
    {L"OutOfRange", std::errc::result_out_of_range},
    {L"EmptyArgument", std::errc::invalid_argument},
    {L"BadArgument", std::errc::invalid_argument},
    {L"ProcessCanceled", std::errc::operation_canceled},
    {L"fileNotFound", std::errc::no_such_file_or_directory},
    {L"fileInvalidFolder", std::errc::not_a_directory},
    {L"fileExpectedFolder", std::errc::not_a_directory},
    {L"fileExpectedFile", std::errc::is_a_directory},
    {L"fileOsStream", std::errc::io_error},
    {L"levelTooLow", std::errc::permission_denied},
    {L"noMemoryException", std::errc::not_enough_memory},
};

class category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "kesta"; }

  std::string message(int value) const override {
    const detail::error_row* const row = row_of_code(value);
    if (row && !row->text.empty()) return texto::to_utf_8(without_arguments(row->text));
    return value == 0 ? "CORRECTO" : "Error desconocido";
  }

  std::error_condition default_error_condition(int value) const noexcept override {
    const detail::error_row* const row = row_of_code(value);
    for (const same_meaning& each : standard)
      if (row && row->name == each.name) return std::make_error_condition(each.as);
    return {value, *this};
  }
};

}  // namespace

const std::error_category& error_category() noexcept { return immortal<category>(); }

std::error_code make_error_code(const exception& failure) noexcept {
  const auto raw = static_cast<std::int32_t>(static_cast<std::uint32_t>(failure.get_raw_code()));
  return {failure.OK() ? 0 : raw, error_category()};
}

}  // namespace ruvo
