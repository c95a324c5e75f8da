// What an error code means.
//
//   kesta-error CODE...
//
// A CODE is the raw code, in decimal (with a sign too, as an HRESULT is often shown) or as 0x and hexadecimal
// digits (without 0x, too, if they are eight and one is a letter), or RANGE.NUMBER of an error of the
// library. Prints the parts of the code, the classes that have it and their messages; of other codes, what
// the system says; an empty line between two codes. Ends with 0, with 1 if nothing is known of a code, with 2
// if an argument is none: it is named among the errors, and the others are told all the same.

#include <ruvo/ruvo.hpp>

#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace {

// Without accents: a console's code page does not matter then.
const char usage[] =
    "uso: kesta-error VALOR...\n"
    "  VALOR: decimal (3954770921, -340196375), hexadecimal (0xEBB903E9, EBB903E9) o RANGO.ORDEN (1.1)\n";

namespace ranges {
#define KESTA_EXC_RANGE(name, range) constexpr unsigned long name = range;
KESTA_EXC_FAMILIES(KESTA_EXC_RANGE)
#undef KESTA_EXC_RANGE
}  // namespace ranges

struct row {
  const wchar_t* name;
  const wchar_t* base;
  unsigned long range, number;
  const wchar_t *text, *after;
};

// clang-format off
const row rows[] = {
#define ROW(name, number, text) {L"" #name, L"ruvo::exception", 0, number, text, L""},
  KESTA_EXC_GENERAL(ROW)
  KESTA_EXC_GENERAL_TOLD(ROW)
  KESTA_EXC_HOOK(ROW)
#undef ROW
#define ROW(name, text) {L"" #name, L"kesta::exception", ranges::name, 1, text, L""},
  KESTA_EXC_UNDETERMINED(ROW)
#undef ROW
#define ROW(name, family, number, text) {L"" #name, L"" #family, ranges::family, number, text, L""},
  KESTA_EXC_PLAIN(ROW)
  KESTA_EXC_FILE(ROW)
  KESTA_EXC_NUMBERED(ROW)
#undef ROW
#define ROW(name, family, number, text, after) {L"" #name, L"" #family, ranges::family, number, text, after},
  KESTA_EXC_NAMED(ROW)
#undef ROW
#define ROW(name, family, number, text) {L"" #name, L"" #family, ranges::family, number, text, L":%1 en el nudo:%2"},
  KESTA_EXC_KNOT(ROW)
#undef ROW
#define ROW(name, range, number, text) {L"" #name, L"kesta::exception", range, number, text, L""},
  KESTA_EXC_ACTION(ROW)
#undef ROW
#define ROW(name, number, text) {L"" #name L"(" #number L")", L"kesta::exception", ranges::name, number, text, L""},
  KESTA_EXC_CONSOLE(ROW)
#undef ROW
#define ROW(name, family, number) {L"" #name, L"" #family, ranges::family, number, L"" #name L": %1", L""},
  KESTA_EXC_MESSAGE(ROW)
  KESTA_EXC_PLACES(ROW)
#undef ROW
#define ROW(name, family, number) {L"" #name, L"" #family, ranges::family, number, L"" #name L": %1 (%2: %3)", L""},
  KESTA_EXC_WINDOWS(ROW)
#undef ROW
};
// clang-format on

struct family {
  const wchar_t* name;
  unsigned long range;
};

const family families[] = {
#define ROW(name, range) {L"" #name, range},
    KESTA_EXC_FAMILIES(ROW)
#undef ROW
};

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

unsigned long made_code(unsigned long long range, unsigned long long number) {
  const unsigned long low = static_cast<unsigned long>(range * 1000 + number);
  return range ? ruvo::kesta::exception(low, L"", 0).get_raw_code()
               : ruvo::exception(L"", low, 0, 3000).get_raw_code();
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
    return made_code(*range, *in_range);
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

std::wstring in_hex(unsigned long value) {
  std::wstring digits(8, L'0');
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, value >>= 4) {
    *digit = L"0123456789ABCDEF"[value & 15];
  }
  return L"0x" + digits;
}

void line(std::wstring& out, const wchar_t* label, const std::wstring& text) {
  out.append(label).append(L": ").append(text).append(L"\r\n");
}

bool is_of_library(const ruvo::exception& code) {
  const unsigned long facility = code.get_facility();
  return code.get_severity() == 3 && code.get_customer() == 1 && (facility == 3000 || facility == 3001);
}

/// What an argument follows ends in a blank.
std::wstring message(const row& r) {
  std::wstring text = r.text;
  if (text.ends_with(L' ')) text += L"%1";
  return text + r.after;
}

/// The classes that have the code; whether there are any.
bool tell_classes(std::wstring& out, const ruvo::exception& code) {
  bool found = false;
  for (const row& r : rows) {
    if (made_code(r.range, r.number) != code.get_raw_code()) continue;
    const std::wstring_view name = r.name;
    if (name != L"Incorrect") line(out, L"CLASS", std::wstring(name) + L" : " + r.base);
    line(out, L"MESSAGE", message(r));
    found = true;
  }
  return found;
}

std::wstring range_of(const ruvo::exception& code) {
  std::wstring text = std::to_wstring(code.get_rango());
  if (code.get_facility() != 3001) return text;
  for (const family& f : families) {
    if (f.range == code.get_rango()) text += std::wstring(L" (") + f.name + L")";
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
bool tell(std::wstring& out, unsigned long raw) {
  const ruvo::exception code(raw, L"");
  const bool own = is_of_library(code);
  line(out, L"RAW", in_hex(raw) + L" (" + std::to_wstring(raw) + L")");
  if (own) {
    line(out, L"CODE", std::to_wstring(code.get_code()));
    line(out, L"RANGE", range_of(code));
  }
  line(out, L"FACILITY", std::to_wstring(code.get_facility()));
  line(out, L"CUSTOMER", std::to_wstring(code.get_customer()));
  line(out, L"SEVERITY", std::to_wstring(code.get_severity()));
  if (own) {
    if (tell_classes(out, code)) return true;
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
      known &= tell(out, *code);
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
