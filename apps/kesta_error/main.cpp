// SPDX-License-Identifier: BSL-1.0

// What an error code means.
//
//   kesta-error CODE...
//
// A CODE is the raw code, in decimal (with a sign too, as an HRESULT is often shown) or as 0x and hexadecimal
// digits (without 0x, too, if they are eight and one is a letter), or RANGE.NUMBER of an error of the
// library. Prints the parts of the code, the classes that have it and their messages; of other codes, what
// the system says; an empty line between two codes. Ends with 0, with 1 if nothing is known of a code, with 2
// if an argument is none: it is named among the errors, and the others are printed all the same.

#include <ruvo/exc_table.hpp>
#include <ruvo/ruvo.hpp>

#include <charconv>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace {

// Without accents: a console's code page does not matter then.
const char usage[] =
    "uso: kesta-error VALOR...\n"
    "  VALOR: decimal (3954770921, -340196375), hexadecimal (0xEBB903E9, EBB903E9) o RANGO.ORDEN (1.1)\n";

namespace detail = ruvo::detail;
using detail::error_row;
using detail::error_shape;

struct system_texts : ruvo::exception {
  using ruvo::exception::winerror_message;
};

std::optional<unsigned long long> number(std::string_view digits, int base = 10) {
  unsigned long long value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
  if (error != std::errc() || stop != end) return {};
  return value;
}

/// Nothing if it is no code.
std::optional<unsigned long> code_of(std::string_view text) {
  constexpr unsigned long long most = 0xFFFFFFFF;
  std::optional<unsigned long long> code;
  if (const auto dot = text.find('.'); dot != text.npos) {
    const auto range = number(text.substr(0, dot));
    const auto in_range = number(text.substr(dot + 1));
    if (!range || !in_range || *range > 65 || *in_range > 999 || *range * 1000 + *in_range > 0xFFFF)
      return {};
    const unsigned long facility = *range ? detail::module_facility : detail::general_facility;
    return detail::raw_code(facility, static_cast<unsigned long>(*range),
                            static_cast<unsigned long>(*in_range));
  }
  if (text.starts_with("0x") || text.starts_with("0X")) {
    code = number(text.substr(2), 16);
  } else if (text.starts_with('-')) {
    code = number(text.substr(1));
    if (!code || *code > 0x80000000) return {};
    code = (most + 1 - *code) & most;
  } else {
    code = number(text);
    if (!code && text.size() == 8) code = number(text, 16);
  }
  if (!code || *code > most) return {};
  return static_cast<unsigned long>(*code);
}

void line(std::wstring& out, const wchar_t* label, const std::wstring& text) {
  out.append(label).append(L": ").append(text).append(L"\r\n");
}

bool is_of_library(const ruvo::exception& code) {
  const unsigned long facility = code.get_facility();
  return code.get_severity() == 3 && code.get_customer() == 1 &&
         (facility == detail::general_facility || facility == detail::module_facility);
}

/// A family's own code is shown as what makes it. Empty for what has no class.
std::wstring shown_class(const error_row& row) {
  std::wstring name(row.name);
  if (row.shape != error_shape::place) return name;
  if (name == L"Incorrect") return {};
  return row.is_general() ? name : name + L"(" + std::to_wstring(row.number) + L")";
}

/// The classes that have the code; whether there are any.
bool add_classes(std::wstring& out, const ruvo::exception& code) {
  bool found = false;
  for (const error_row& row : detail::errors) {
    if (row.text.empty() || code != row.code()) continue;
    const std::wstring name = shown_class(row);
    if (!name.empty()) line(out, L"CLASS", name + L" : " + std::wstring(row.base));
    line(out, L"MESSAGE", std::wstring(row.text));
    found = true;
  }
  return found;
}

std::wstring range_of(const ruvo::exception& code) {
  std::wstring text = std::to_wstring(code.get_rango());
  if (code.get_facility() != detail::module_facility) return text;
  for (const error_row& row : detail::errors) {
    const bool is_its_family = row.shape == error_shape::family && row.range == code.get_rango();
    if (is_its_family) text.append(L" (").append(row.name).push_back(L')');
  }
  return text;
}

/// What the system says; an HRESULT that carries a Windows error number is known by that number too.
std::wstring system_text(unsigned long raw) {
  constexpr unsigned long from_windows = 0x80070000;
  std::wstring text = system_texts::winerror_message(raw);
  if (text.empty() && (raw & 0xFFFF0000) == from_windows) text = system_texts::winerror_message(raw & 0xFFFF);
  return text;
}

/// Whether something is known of the code.
bool describe(std::wstring& out, unsigned long raw) {
  const ruvo::exception code(raw, L"");
  const bool own = is_of_library(code);
  wchar_t shown[32];
  std::swprintf(shown, std::size(shown), L"0x%08lX (%lu)", raw, raw);
  line(out, L"RAW", shown);
  if (own) {
    line(out, L"CODE", std::to_wstring(code.get_code()));
    line(out, L"RANGE", range_of(code));
  }
  line(out, L"FACILITY", std::to_wstring(code.get_facility()));
  line(out, L"CUSTOMER", std::to_wstring(code.get_customer()));
  line(out, L"SEVERITY", std::to_wstring(code.get_severity()));
  if (own) {
    if (add_classes(out, code)) return true;
    line(out, L"MESSAGE", code.OK() ? L"correcto: el número es 0" : L"ninguna clase tiene este código");
    return code.OK();
  }
  const std::wstring text = system_text(raw);
  line(out, L"SYSTEM", text.empty() ? L"el sistema no conoce este código" : text);
  return !text.empty();
}

int run(int argc, wchar_t** argv) {
  std::wstring out;
  bool good = argc > 1, known = true;
  for (int n = 1; n < argc; ++n) {
    const std::string text = ruvo::texto::to_utf_8(argv[n]);
    if (const auto code = code_of(text)) {
      if (!out.empty()) out += L"\r\n";
      known &= describe(out, *code);
    } else {
      std::fprintf(stderr, "kesta-error: '%s' no es un VALOR\n", text.c_str());
      good = false;
    }
  }
  if (!good) std::fputs(usage, stderr);
  ruvo::console().write(out);
  return !good ? 2 : known ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception&) {
    return 1;  // nobody reads what it writes
  }
}
