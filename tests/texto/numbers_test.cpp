// SPDX-License-Identifier: BSL-1.0

// Numbers as text: formats, sizes, numerals, amounts in words, and texts that are numbers.

#include <ruvo/ruvo.hpp>

#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <regex>
#include <sstream>
#include <thread>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"

namespace texto = ruvo::texto;

namespace {

class marked_app : public ruvo::kesta::app {
 public:
  marked_app(wchar_t decimal, wchar_t thousands) : app(nullptr), decimal_(decimal), thousands_(thousands) {}
  wchar_t get_decimal_separator() const override { return decimal_; }
  wchar_t get_thousands_separator() const override { return thousands_; }

 private:
  wchar_t decimal_, thousands_;
};

/// What a wide stream prints with separators of its own.
class marked_stream {
 public:
  marked_stream(wchar_t decimal, wchar_t thousands) {
    stream_.imbue(std::locale(std::locale::classic(), new marks(decimal, thousands)));
    stream_ << std::fixed;
  }
  std::wstring operator()(double value, int decimals) {
    stream_.str({});
    stream_.precision(decimals);
    stream_ << value;
    return stream_.str();
  }
  std::wstring operator()(long value) {
    stream_.str({});
    stream_ << value;
    return stream_.str();
  }

 private:
  struct marks : std::numpunct<wchar_t> {
    marks(wchar_t d, wchar_t t) : decimal(d), thousands(t) {}
    wchar_t do_decimal_point() const override { return decimal; }
    wchar_t do_thousands_sep() const override { return thousands; }
    std::string do_grouping() const override { return "\3"; }
    wchar_t decimal, thousands;
  };
  std::wostringstream stream_;
};

/// Doubles of every magnitude, amounts of money, and numbers half-way between two decimals.
double any_double(std::mt19937_64& random) {
  const std::uint64_t bits = random();
  switch (bits % 4) {
    case 0:
      return std::bit_cast<double>(random());
    case 1:
      return static_cast<double>(static_cast<std::int64_t>(random()) >> bits % 60) / 100;
    case 2:
      return std::ldexp(static_cast<double>(static_cast<std::int32_t>(random())),
                        -static_cast<int>(bits >> 58));
    default:
      return std::ldexp(static_cast<double>(random() % 3000), -static_cast<int>(bits >> 32) % 16);
  }
}

}  // namespace

TEST(format, as_a_wide_stream_prints) {
  const struct {
    wchar_t decimal, thousands;
  } rows[] = {{L',', L'.'}, {L'.', L','}, {L'\x066B', L'\x202F'}, {L'\0', L'7'}, {L'\xD83D', L'\xFFFF'}};
  constexpr double infinity = std::numeric_limits<double>::infinity();
  // Zeros, halves that go either way, carries, the limits of whole numbers and of doubles.
  std::vector<double> specials = {0.0,   0.001,      0.5, 1.5,  2.5,  0.125,  0.375,
                                  999.5, 999999.995, 1e3, 1e15, 1e22, 5e-324, infinity};
  for (const double large : {9007199254740991.5, 9007199254740993.0, 1.7976931348623157e308})
    specials.push_back(large);
  std::mt19937_64 random(20240229);
  for (const auto& row : rows) {
    marked_app app(row.decimal, row.thousands);
    const ruvo::thread_scope scope(app);
    marked_stream expected(row.decimal, row.thousands);
    for (short decimals = 0; decimals <= 20; ++decimals) {
      for (const double special : specials) {
        for (const double value : {special, -special})
          ASSERT_EQ(texto::format(value, decimals), expected(value, decimals)) << value << ' ' << decimals;
      }
      for (int i = 0; i < 400; ++i) {
        const double value = any_double(random);
        if (std::isnan(value)) continue;  // streams differ in its sign
        ASSERT_EQ(texto::format(value, decimals), expected(value, decimals)) << value << ' ' << decimals;
      }
    }
    for (const long value : {0L, 7L, -12L, 999L, 1000L, -1000L, 123456L, 1234567L, LONG_MAX, LONG_MIN})
      EXPECT_EQ(texto::format(value), expected(value));
  }
}

TEST(format, numbers_out_of_the_ordinary) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(texto::format(nan, 2), L"nan");
  EXPECT_EQ(texto::format(-nan, 0), L"nan");
  EXPECT_EQ(texto::format(1234.5, -1), L"1.234");
  EXPECT_EQ(texto::format(-7.9, SHRT_MIN), L"-8");
  marked_stream expected(L',', L'.');
  for (const short decimals : {short{200}, short{201}, short{202}, short{1074}, short{SHRT_MAX}}) {
    for (const double value : {-1.7976931348623157e308, 5e-324, 0.1, 12345.0})
      EXPECT_EQ(texto::format(value, decimals), expected(value, decimals)) << value << ' ' << decimals;
  }
}

TEST(format, each_thread_has_its_separators) {
  marked_app app(L'.', L' ');
  const ruvo::thread_scope scope(app);
  std::thread([] {
    EXPECT_EQ(texto::format(-1234567.891, 2), L"-1.234.567,89");
    EXPECT_EQ(texto::format(1234567L), L"1.234.567");
  }).join();
  EXPECT_EQ(texto::format(-1234567.891, 2), L"-1 234 567.89");
}

TEST(number_text, fields_sizes_and_numerals) {
  for (int length = 1, value = 1; length <= 10; ++length, value = length <= 10 ? value * 10 : value) {
    EXPECT_EQ(texto::calculate_length_number(value), length);
    EXPECT_EQ(texto::calculate_length_number(-value), length);
    if (value > 1) {
      EXPECT_EQ(texto::calculate_length_number(value - 1), length - 1);
    }
  }
  EXPECT_EQ(texto::calculate_length_number(0), 1);
  EXPECT_EQ(texto::calculate_length_number(INT_MIN), 10);

  const struct {
    int width, number;
    std::wstring text;
  } fields[] = {{5, 42, L"00042"}, {1, 12345, L"12345"},   {3, -5, L"0-5"},
                {1, -5, L"-5"},    {-9, 0, L"0"},          {0, INT_MIN, L"-2147483648"},
                {2, 10, L"10"},    {INT_MIN, -10, L"-10"}, {12, INT_MIN, L"0-2147483648"}};
  for (const auto& row : fields) EXPECT_EQ(texto::fill_number(row.width, row.number, L'0'), row.text);

  const struct {
    unsigned long long size;
    const wchar_t* text;
  } sizes[] = {{0, L"0.000 b"},           {100, L"100.000 b"},
               {1023, L"1023.000 b"},     {1024, L"1.000 kb"},
               {1536, L"1.500 kb"},       {(1 << 20) - 1, L"1023.999 kb"},
               {1 << 20, L"1.000 Mb"},    {(1ULL << 30) - 1, L"1024.000 Mb"},
               {1ULL << 30, L"1.000 Gb"}, {1ULL << 40, L"1.000 Tb"},
               {1ULL << 50, L"1.000 Pb"}, {(1ULL << 60) - 1, L"1024.000 Pb"},
               {1ULL << 60, L"1.000 Eb"}, {ULLONG_MAX, L"16.000 Eb"}};
  marked_app app(L'#', L'#');  // not asked
  const ruvo::thread_scope scope(app);
  for (const auto& row : sizes) EXPECT_EQ(texto::format_file_size(row.size), row.text);
}

TEST(number_text, roman_numerals_add_up) {
  for (const unsigned int beyond : {1000000u, UINT_MAX})
    EXPECT_EQ(texto::to_roman(beyond), L"Número no soportado");
  EXPECT_EQ(texto::to_roman(4999), L"MMMMDCCCCLXXXXVIIII");
  // Digit by digit: a five from 5 on, and ones.
  const std::wstring ones = L"CXMCXI", fives = L"DLVDLV";
  for (unsigned int number = 0; number < 1000000; number += 7) {
    std::wstring expected;
    for (unsigned int power = 100000, at = 0; power > 0; power /= 10, ++at) {
      const unsigned int digit = number / power % 10;
      expected.append(digit / 5, fives[at]).append(digit % 5, ones[at]);
    }
    ASSERT_EQ(texto::to_roman(number), expected);
  }
}

namespace {

/// On random rows of the parts both answer alike, and at least `share` in a thousand of them are of the kind.
void expect_same(bool (*is)(const std::wstring&), const std::wstring& pattern,
                 const std::vector<std::wstring>& parts, int share) {
  const std::wregex standard(pattern);
  dice random(7);
  int found = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::wstring text = random.joined(parts, 8);
    ASSERT_EQ(is(text), std::regex_match(text, standard)) << text;
    found += is(text);
  }
  EXPECT_GT(found, 20 * share);
}

}  // namespace

TEST(number_tests, numbers_as_their_patterns) {
  const std::wstring grouped = LR"(\d{1,3}(?:\.\d{3})*(?:,\d+)?|\d{1,3}(?:,\d{3})*(?:\.\d+)?)",
                     plain = LR"(-?\d+|-?\d+[.\d]*|-?\d+[,\d]*)";
  expect_same(texto::is_number, grouped + L"|" + plain,
              {L"1", L"23", L"456", L"7890", L".", L",", L".123", L",123", L"-", L" "}, 50);
  for (const wchar_t* const number : {L"1.234,5", L"-1.2.3", L"1..2", L"1,234,567.89", L"1.234.", L"1.2345"})
    EXPECT_TRUE(texto::is_number(number)) << number;
  for (const wchar_t* const other :
       {L"", L"-", L"-1.234,5", L"1234,567.8", L"1,234.", L"1\n", L"+1", L"1.234.56,7", L"1.234,", L"٣"})
    EXPECT_FALSE(texto::is_number(other)) << other;
  EXPECT_FALSE(texto::is_number(std::wstring(L"1\0", 2)));
}

TEST(number_tests, mail_addresses_as_their_pattern) {
  expect_same(texto::is_email,
              LR"(^[_A-Za-z0-9\-+]+(\.[_A-Za-z0-9\-]+)*@[A-Za-z0-9\-]+(\.[A-Za-z0-9]+)*(\.[A-Za-z]{2,})$)",
              pieces(L"a Z9 - _ + . @b @ @b.es a+b@c .com .com .x .c0 ñ"), 10);
  for (const wchar_t* const address : {L"a@b.es", L"a+b@c-d.e1.com", L"a@-.es"})
    EXPECT_TRUE(texto::is_email(address)) << address;
  for (const wchar_t* const other :
       {L"", L"a@b", L"a.b+c@d.es", L"a@b.c-d.es", L".a@b.es", L"a.@b.es", L"a..b@c.es", L"a@b..es",
        L"a@b@c.es", L"a@b.c", L"a@b.e5", L"a@b.es\n", L"a@.es", L"@b.es", L"a@b.es.", L"a@"})
    EXPECT_FALSE(texto::is_email(other)) << other;
}

TEST(number_tests, long_texts_have_an_answer) {
  constexpr std::size_t many = 10'000'000;
  const std::wstring digits(many, L'1'), points(many, L'.'), letters(many, L'a');
  EXPECT_TRUE(texto::is_number(digits));
  EXPECT_TRUE(texto::is_number(L"-1" + points));
  EXPECT_FALSE(texto::is_number(L"1" + points + L","));
  EXPECT_TRUE(texto::is_email(letters + L"@b.es"));
  EXPECT_TRUE(texto::is_email(L"a@b." + letters));
  EXPECT_FALSE(texto::is_email(L"a@b." + letters + L"1"));
  EXPECT_FALSE(texto::is_email(L"a@b" + points));
}

namespace {

/// A whole number put together from the words of its parts.
std::wstring in_words(long long n) {
  static const std::vector<std::wstring>
      small = pieces(
          L"Cero Uno Dos Tres Cuatro Cinco Seis Siete Ocho Nueve Diez Once Doce Trece Catorce Quince "
          L"Dieciséis Diecisiete Dieciocho Diecinueve Veinte Veintiuno Veintidós Veintitrés Veinticuatro "
          L"Veinticinco Veintiséis Veintisiete Veintiocho Veintinueve"),
      tens = pieces(L"Treinta Cuarenta Cincuenta Sesenta Setenta Ochenta Noventa"),
      hundreds = pieces(
          L"Ciento Doscientos Trescientos Cuatrocientos Quinientos Seiscientos Setecientos Ochocientos "
          L"Novecientos");
  if (n < 30) return small[static_cast<std::size_t>(n)];
  if (n == 100) return L"Cien";
  const auto with_rest = [n](const std::wstring& words, long long unit, const wchar_t* link = L" ") {
    return n % unit == 0 ? words : words + link + in_words(n % unit);
  };
  if (n < 100) return with_rest(tens[static_cast<std::size_t>(n / 10 - 3)], 10, L" y ");
  if (n < 1000) return with_rest(hundreds[static_cast<std::size_t>(n / 100 - 1)], 100);
  const auto counted = [n](long long unit) {
    std::wstring words = in_words(n / unit);
    if (words.ends_with(L"Veintiuno")) return words.replace(words.size() - 3, 3, L"ún");
    return words.ends_with(L"Uno") ? words.substr(0, words.size() - 1) : words;
  };
  if (n < 1000000) return with_rest(n < 2000 ? L"Mil" : counted(1000) + L" Mil", 1000);
  for (const auto& [unit, one, many] : {std::tuple(1000000LL, L" Millón", L" Millones"),
                                        std::tuple(1000000000000LL, L" Billón", L" Billones")})
    if (n / unit < 1000000) return with_rest(counted(unit) + (n / unit == 1 ? one : many), unit);
  return {};
}

}  // namespace

TEST(amounts, are_put_together_from_their_parts) {
  const auto check = [](double amount, long long whole, long long cents = 0) {
    std::wstring expected = (amount < 0 ? L"Menos " : L"") + in_words(whole);
    if (cents > 0) {
      const std::wstring counted = in_words(cents * 1000);  // as before a noun
      expected +=
          L" con " + (cents == 1 ? L"Un Céntimo" : counted.substr(0, counted.size() - 4) + L" Céntimos");
    }
    ASSERT_EQ(texto::cifras_letras(amount), expected) << whole;
  };
  for (long long whole = 0; whole <= 100000; ++whole) {
    const long long cents = whole * 100 + whole % 101 % 100;
    check(static_cast<double>(cents) / 100, whole, cents % 100);
  }
  std::mt19937_64 random(15);
  for (int i = 0; i < 50000; ++i) {
    // Of any length; below 10^13 with any cents, above with quarters, which a double holds.
    const long long whole = static_cast<long long>(random() % 1000000000000000) >> random() % 50;
    const long long cents = static_cast<long long>(random() % (whole < 10000000000000 ? 100 : 4));
    const int parts = whole < 10000000000000 ? 100 : 4;
    if (whole + cents == 0) continue;
    check(-(static_cast<double>(whole) + static_cast<double>(cents) / parts), whole, cents * (100 / parts));
  }
  for (long long power = 1; power <= 100000000000000; power *= 10) {
    for (const long long whole : {power, power + 1, power - 1, 2 * power, 101 * (power / 1000) * 10})
      check(static_cast<double>(whole), whole);
  }
}

TEST(numbers, of_any_size_stand_in_documents_as_their_text) {
  using limits = std::numeric_limits<double>;
  for (const double value : {9.2e18, 9.3e18, -1e19, 1.8446744073709552e19, 1e40, limits::max(),
                             -limits::max(), limits::infinity(), -limits::infinity(), limits::quiet_NaN()}) {
    ruvo::list list;
    for (int i = 0; i < 40; ++i) list.push_back(value);
    const std::wstring each = ruvo::var(value).to_string();
    std::wstring expected = L"{\"n\":[" + each, made;
    for (int i = 1; i < 40; ++i) expected += L"," + each;
    ruvo::bundle document;
    document[L"n"] = list;
    ruvo::serializer::json().serialize(made, document);
    EXPECT_EQ(made, expected + L"]}");
  }
}

TEST(amounts, well_known_phrases) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const wchar_t unsupported[] = L"Número no soportado";
  const struct {
    double amount;
    const wchar_t* text;
  } rows[] = {
      {0, L"Cero"},
      {-0.0, L"Cero"},
      {-0.004, L"Cero"},
      {0.01, L"Cero con Un Céntimo"},
      {0.999, L"Uno"},
      {-0.5, L"Menos Cero con Cincuenta Céntimos"},
      {31.31, L"Treinta y Uno con Treinta y Un Céntimos"},
      {1.005, L"Uno"},  // the double lies below
      {99.996, L"Cien"},
      {101101, L"Ciento Un Mil Ciento Uno"},
      {999999.999, L"Un Millón"},
      {1234000000, L"Mil Doscientos Treinta y Cuatro Millones"},
      {2002000000, L"Dos Mil Dos Millones"},
      {1001001001001, L"Un Billón Mil Un Millones Mil Uno"},
      {-999999999999999,
       L"Menos Novecientos Noventa y Nueve Billones Novecientos Noventa y Nueve Mil Novecientos Noventa "
       L"y Nueve Millones Novecientos Noventa y Nueve Mil Novecientos Noventa y Nueve"},
      {1e15, unsupported},
      {-1e300, unsupported},
      {-infinity, unsupported},
      {std::numeric_limits<double>::quiet_NaN(), unsupported}};
  for (const auto& row : rows) EXPECT_EQ(texto::cifras_letras(row.amount), row.text);
}
