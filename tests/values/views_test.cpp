// SPDX-License-Identifier: BSL-1.0

// Views of what values hold, exact readings, keys that are views, natural order, records in braces.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ranges>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::list;
using ruvo::var;
using ruvo::xvar;

namespace {

// --- what is inside

TEST(views, show_what_is_inside_without_a_copy) {
  xvar text = L"texto de más de siete", inner = bundle{{L"a", 1}}, many = list{1, 2};
  const xvar prose = ruvo::memo(L"memo"), bytes = ruvo::binary(std::string("ab")), none;
  EXPECT_EQ(ruvo::as_text(text).value(), L"texto de más de siete");
  EXPECT_EQ(ruvo::as_text(prose).value(), L"memo");
  EXPECT_EQ(ruvo::as_memo(prose)->size(), 4U);
  EXPECT_EQ(ruvo::as_binary(bytes)->size(), 2U);
  ruvo::as_bundle(inner)->putOn(L"b", 2);
  ruvo::as_list(many)->push_back(3);
  EXPECT_EQ(inner.to_string(), L"{\"a\":1, \"b\":2}");
  EXPECT_EQ(many.to_string(), L"[1,2,3]");
  const xvar& fixed = inner;
  EXPECT_EQ(ruvo::as_bundle(fixed), ruvo::as_bundle(inner));
  EXPECT_TRUE(ruvo::is_bundle(inner) && ruvo::is_list(many) && !ruvo::is_list(inner) &&
              !ruvo::is_bundle(none));
  for (const xvar* value : {&text, &many, const_cast<xvar*>(&none)})
    EXPECT_EQ(ruvo::as_bundle(*value), nullptr);
  EXPECT_FALSE(ruvo::as_text(bytes) || ruvo::as_text(none) || ruvo::as_list(none) || ruvo::as_memo(text));
}

// --- exact readings

template <class Type>
std::wstring shown_form(const Type& value) {
  if constexpr (std::same_as<Type, std::wstring>)
    return value;
  else if constexpr (std::same_as<Type, double>)
    return xvar(value).to_string();
  else if constexpr (std::same_as<Type, ruvo::datetime>)
    return std::to_wstring(value.get_lapso());
  else if constexpr (std::derived_from<Type, ruvo::lapse>)
    return std::to_wstring(static_cast<long>(value));
  else
    return std::to_wstring(value);
}

template <class... Types>
std::wstring readings(const var& value) {
  std::wstring out;
  ((out += (ruvo::value_as<Types>(value) ? shown_form(*ruvo::value_as<Types>(value)) : L"-") + L"|"), ...);
  return out;
}

TEST(value_as, gives_what_the_value_is_exactly) {
  const struct {
    xvar value;
    const wchar_t* expected;  // bool|int8|uint64|double|text|date|time|datetime|
  } rows[] = {
      {xvar(), L"-|-|-|-|-|-|-|-|"},
      {true, L"1|-|-|-|-|-|-|-|"},
      {0, L"0|0|0|0.000000|0|-|0|0|"},
      {-1, L"-|-1|-|-1.000000|-1|-|-|-1|"},
      {128, L"-|-|128|128.000000|128|-|128|128|"},
      {-128, L"-|-128|-|-128.000000|-128|-|-|-128|"},
      {127.0, L"-|127|127|127.000000|-|-|127|127|"},
      {4.5, L"-|-|-|4.500000|-|-|-|-|"},
      {18446744073709551615ULL,
       L"-|-|18446744073709551615|18446744073709551616.000000|18446744073709551615|-|-|-|"},
      {18446744073709551616.0, L"-|-|-|18446744073709551616.000000|-|-|-|-|"},
      {-9223372036854775808.0, L"-|-|-|-9223372036854775808.000000|-|-|-|-9223372036854775808|"},
      {std::numeric_limits<double>::quiet_NaN(), L"-|-|-|nan|-|-|-|-|"},
      {ruvo::decimal("4.00"), L"-|4|4|4.000000|-|-|4|4|"},
      {ruvo::decimal("-4.01"), L"-|-|-|-4.010000|-|-|-|-|"},
      {ruvo::decimal("18446744073709551616"), L"-|-|-|18446744073709551616.000000|-|-|-|-|"},
      {L" 42 ", L"-|42|42|42.000000| 42 |-|42|42|"},
      {L"4.00", L"-|4|4|4.000000|4.00|-|4|4|"},
      {L"4.01", L"-|-|-|4.010000|4.01|-|-|-|"},
      {L"-129", L"-|-|-|-129.000000|-129|-|-|-129|"},
      {L"18446744073709551616", L"-|-|-|18446744073709551616.000000|18446744073709551616|-|-|-|"},
      {L"1e3", L"-|-|-|-|1e3|-|-|-|"},
      {L"", L"-|-|-|-||-|-|-|"},
      {L"Si", L"1|-|-|-|Si|-|-|-|"},
      {L'7', L"-|-|-|-|7|-|-|-|"},
      {ruvo::memo(L"42"), L"-|42|42|42.000000|42|-|42|42|"},
      {list{1}, L"-|-|-|-|-|-|-|-|"},
      {ruvo::date(2024, 2, 29, ruvo::times::GMT), L"-|-|-|-|-|20240229|-|-|"},
      {ruvo::time(93005, ruvo::times::GMT), L"-|-|-|-|-|-|93005|-|"},
      {ruvo::datetime(1709199005LL), L"-|-|-|-|-|-|-|1709199005|"},
      {20240229, L"-|-|20240229|20240229.000000|20240229|20240229|-|20240229|"},
      {20240230, L"-|-|20240230|20240230.000000|20240230|-|-|20240230|"},
      {L"29-02-2024", L"-|-|-|-|29-02-2024|20240229|-|-|"},
      {L"2024-02-29", L"-|-|-|-|2024-02-29|20240229|-|-|"},
      {L"2023-02-29", L"-|-|-|-|2023-02-29|-|-|-|"},
      {L"2024-2-29", L"-|-|-|-|2024-2-29|-|-|-|"},
      {L"2024-02-29x", L"-|-|-|-|2024-02-29x|-|-|-|"},
      {L"09:30:05", L"-|-|-|-|09:30:05|-|93005|-|"},
      {L"09:30:05Z", L"-|-|-|-|09:30:05Z|-|93005|-|"},
      {L"24:00:00", L"-|-|-|-|24:00:00|-|-|-|"},
      {L"29-02-2024 09:30:05", L"-|-|-|-|29-02-2024 09:30:05|-|-|1709199005|"},
      {L"2024-02-29T09:30:05Z", L"-|-|-|-|2024-02-29T09:30:05Z|-|-|1709199005|"},
      {L"2024-02-29T09:30:05.999+01:00", L"-|-|-|-|2024-02-29T09:30:05.999+01:00|-|-|1709195405|"},
      {L"2024-02-29T09:30:05-0130", L"-|-|-|-|2024-02-29T09:30:05-0130|-|-|1709204405|"},
      {L"2024-02-29T09:30:05+1", L"-|-|-|-|2024-02-29T09:30:05+1|-|-|-|"},
      {L"2024-02-29T09:30", L"-|-|-|-|2024-02-29T09:30|-|-|-|"},
  };
  for (const auto& [value, expected] : rows) {
    EXPECT_EQ((readings<bool, std::int8_t, std::uint64_t, double, std::wstring, ruvo::date, ruvo::time,
                        ruvo::datetime>(value)),
              expected)
        << ruvo::texto::to_utf_8(value.to_string());
  }
}

TEST(value_as, keeps_to_the_other_types_too) {
  EXPECT_FALSE(ruvo::value_as<float>(1e39));
  EXPECT_EQ(ruvo::value_as<float>(0.5), 0.5F);
  EXPECT_EQ(ruvo::value_as<float>(std::numeric_limits<double>::infinity()),
            std::numeric_limits<float>::infinity());
  const std::pair<ruvo::var, const wchar_t*> exact[] = {{7, L"7"},
                                                        {L" 01.50 ", L"1.50"},
                                                        {-2.675, L"-2.675"},
                                                        {1e22, L"10000000000000000000000"},
                                                        {0.1F, L"0.1"},
                                                        {0.1 + 0.2, L""},
                                                        {true, L""},
                                                        {L"1e3", L""},
                                                        {L"1,5", L""},
                                                        {~0ULL, L"18446744073709551615"},
                                                        {std::wstring(39, L'9'), L""},
                                                        {ruvo::var(), L""}};
  for (const auto& [value, digits] : exact) {
    const auto read = ruvo::value_as<ruvo::decimal>(value);
    EXPECT_EQ(read ? read->to_string() : L"", digits) << value.to_string();
  }
  EXPECT_EQ(ruvo::value_as<std::string>(L"ñ"), "\xC3\xB1");
  EXPECT_EQ(ruvo::value_as<ruvo::binary>(L"AP8=")->getAsHex(), L"00FF");
  EXPECT_FALSE(ruvo::value_as<ruvo::binary>(L"A*"));
  EXPECT_EQ(ruvo::value_as<wchar_t>(L"x"), L'x');
  EXPECT_FALSE(ruvo::value_as<wchar_t>(L"xy"));
  EXPECT_EQ(ruvo::value_as<list>(list{1, 2})->size(), 2U);
  EXPECT_FALSE(ruvo::value_as<bundle>(list{}));
  EXPECT_EQ(ruvo::value_as<ruvo::lapse>(L"-5")->get_lapso(), -5);
  const bundle order = ruvo::bundle_of({{"id", 7}, {"client", {{"age", L"300"}}}});
  EXPECT_EQ(ruvo::find_as<int>(order, std::wstring_view(L"client.age")), 300);
  EXPECT_EQ(ruvo::find_as<int>(order, "client/age", '/'), 300);
  EXPECT_FALSE(ruvo::find_as<std::uint8_t>(order, L"client.age"));
  EXPECT_FALSE(ruvo::find_as<int>(order, L"client.name"));
}

// --- keys, paths and texts that are views

template <class View>
void views_do_what_texts_do(View all) {
  const View key = all.substr(0, 3), path = all.substr(0, 5), missing = all.substr(1, 2);
  bundle b;
  b[key] = View(all.substr(5, 1));
  EXPECT_EQ(b[L"añb"], L"7");
  EXPECT_EQ(b.at(key), L"7");
  EXPECT_EQ(b.find(key)->second, L"7");
  EXPECT_EQ(b.count(key) + b.count(missing), 1U);
  EXPECT_THROW(static_cast<void>(b.at(missing)), std::out_of_range);
  EXPECT_EQ(b.get_long(key), 7);
  EXPECT_EQ(b.get_ulong(key), 7U);
  EXPECT_EQ(b.get_xlong(missing, '.', 9), 9);
  EXPECT_EQ(b.get_double(key, '/', 1), 7.0);
  EXPECT_EQ(b.get_short(key) + b.get_uxlong(missing, '.', -2), 5);
  EXPECT_EQ(b.get_float(key), 7.0F);
  EXPECT_EQ(b.get_nc_long(key, 1) + b.get_nc_short(missing, 2, '/'), 9);
  EXPECT_EQ(b.get_nc_ulong(missing, 1), 1U);
  EXPECT_EQ(b.get_nc_xlong(key) + b.get_nc_uxlong(missing, 3), 10);
  EXPECT_EQ(b.get_nc_double(missing, 0.5) + b.get_nc_float(missing, 0.5F), 1.0);
  EXPECT_TRUE(b.get_boolean(key, true));
  EXPECT_EQ(b.get_string(key), L"7");
  EXPECT_EQ(b.get_nc_string(missing, L"x"), L"x");
  b.putOn(path, View(all));
  EXPECT_EQ(b.get(path).to_string(), L"añb.c7");
  EXPECT_TRUE(b.has(path) && !b.has(missing));
  EXPECT_EQ(&b.hack(path), b.get_ptr(path));
  EXPECT_EQ(b.get_bundle(key).size(), 1U);
  b.hack_list_on(missing).push_back(1);
  EXPECT_EQ(b.get_list(missing).size() + b.get_nc_list(missing, {}).size(), 2U);
  b.hack_memo_on(missing) = L"m";
  EXPECT_EQ(b.get_memo(missing, '.', {}).to_string(), L"m");
  b.hack_string_on(missing) = L"s";
  EXPECT_EQ(b.get_string(missing), L"s");
  EXPECT_EQ(b.hack_nc_binary_on(missing, '.', ruvo::binary("xy")).size(), 2U);
  EXPECT_EQ(b.get_binary(missing, '/', {}).size() + b.hack_binary_on(missing).size(), 4U);
  EXPECT_EQ(b.get_nc_bundle(missing, b).size(), b.size());
  EXPECT_EQ(b.explain(missing), b.explain(std::wstring(var(missing).to_string())));
  EXPECT_EQ(b.hack_ptr(path), b.get_ptr(path));
  try {
    static_cast<void>(b.get(all.substr(2)));
    FAIL();
  } catch (const ruvo::exc::NullValue& none) {
    EXPECT_EQ(none.get_detail(), L"ruta \"b.c7\"");
  }
  EXPECT_EQ(b.erase(key) + b.erase(key), 1U);
  EXPECT_EQ(var(all), L"añb.c7");

  xvar v = 5;
  v[key] = 1;
  v[key] = 2;
  EXPECT_EQ(v.at(key), 2);
  EXPECT_EQ(v.get_quality(key), 2);
  EXPECT_EQ(v.find(key)->first, L"añb");
  EXPECT_TRUE(v.has_quality(key) && v.count(key) == 1 && v.find(missing) == v.end());
  EXPECT_THROW(static_cast<void>(v.at(missing)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(v.get_quality(missing)), ruvo::exc::OutOfRange);
  v.quality_remove(missing);
  EXPECT_EQ(v.erase(key) + v.erase(key), 1U);
}

TEST(views, are_keys_paths_and_texts) {
  views_do_what_texts_do(std::wstring_view(L"añb.c7"));
  bundle b;
  const std::string_view narrow = "clave.dentro";
  b[narrow.substr(0, 5)] = narrow.substr(6);
  b.putOn(std::u8string_view(u8"otra"), std::u8string_view(u8"ñ"));
  EXPECT_EQ(b.get_string(std::string_view("CLAVE")), L"dentro");
  EXPECT_EQ(b.get_string(std::u8string_view(u8"otra")), L"ñ");
  EXPECT_EQ(b.get_long("clave", '.'), 0) << "a character is still the separator";
  var own = L"un texto largo en su bloque";
  own = ruvo::as_text(own)->substr(3);
  EXPECT_EQ(own, L"texto largo en su bloque");
}

// --- bundles as ranges, and in braces

TEST(views, go_over_keys_in_the_order_of_insertion) {
  const bundle b{{L"Z", 1}, {L"a", 2}, {L"M", 3}};
  std::wstring all;
  for (const std::wstring& key : ruvo::keys_of(b)) all += key;
  for (const std::wstring& key : ruvo::spellings_of(b)) all += key;
  for (const xvar& value : ruvo::values_of(b)) all += value.to_string();
  for (const auto& [key, value] : ruvo::entries_of(b)) all += key + value.to_string();
  EXPECT_EQ(all, L"zamZaM123z1a2m3");
  const auto keys = ruvo::keys_of(b);
  EXPECT_EQ(*std::ranges::max_element(keys), L"z");
  EXPECT_EQ(*std::ranges::prev(keys.end()), L"m");
  static_assert(std::ranges::bidirectional_range<decltype(keys)> &&
                std::ranges::view<decltype(ruvo::keys_of(b))>);
  static_assert(std::ranges::bidirectional_range<bundle> && std::ranges::contiguous_range<list>);
}

TEST(bundle_of, nests_braces_with_narrow_keys) {
  const bundle made = ruvo::bundle_of({{"Id", 1207},
                                       {L"client", {{"name", L"Ana"}, {"tags", list{"a", L"b"}}}},
                                       {std::string("empty"), bundle()},
                                       {"id", 8}});
  EXPECT_EQ(made.to_string(),
            L"{\"client\":{\"name\":\"Ana\", \"tags\":[\"a\",\"b\"]}, \"empty\":{}, \"id\":8}");
  EXPECT_EQ(made.spelling(0), L"Id");
}

// --- order

TEST(natural_order, is_that_of_people) {
  const double infinite = std::numeric_limits<double>::infinity();
  const std::vector<std::vector<xvar>> rising = {
      {xvar()},
      {false},
      {true},
      {-infinite},
      {-9223372036854775808.0, (std::numeric_limits<long long>::min)()},
      {-1.5, ruvo::decimal("-1.50")},
      {-1, -1.0, short{-1}, ruvo::decimal(-1)},
      {-0.1},
      {ruvo::decimal("-0.1")},
      {0, 0.0, -0.0, 0ULL, ruvo::decimal("0.00")},
      {ruvo::decimal("1e-38")},
      {ruvo::decimal("0.1")},
      {0.1},
      {9, 9LL, ruvo::decimal(9)},
      {10, 10.0F, ruvo::decimal("10.00")},
      {9007199254740992LL, 9007199254740992.0},
      {ruvo::decimal("9007199254740992.5")},
      {9007199254740993LL, ruvo::decimal(9007199254740993LL)},
      {9223372036854775807LL},
      {9223372036854775808ULL, 9223372036854775808.0},
      {18446744073709551615ULL, ruvo::decimal(18446744073709551615ULL)},
      {18446744073709551616.0},
      {ruvo::decimal("18446744073709551616.0000000000001")},
      {1e37},  // as a double that lies below
      {ruvo::decimal("1e37")},
      {1e300},
      {infinite},
      {std::numeric_limits<double>::quiet_NaN()},
      {ruvo::date(2023, 12, 31, ruvo::times::GMT)},
      {ruvo::date(2024, 1, 1, ruvo::times::GMT)},
      {ruvo::time(90000, ruvo::times::GMT)},
      {ruvo::time(100000, ruvo::times::GMT)},
      {ruvo::datetime(5LL)},
      {ruvo::datetime(10LL)},
      {L"10", ruvo::memo(L"10")},
      {L"9"},
      {L"a"},
      {list{1}},
  };
  for (std::size_t a = 0; a < rising.size(); ++a) {
    for (std::size_t b = 0; b < rising.size(); ++b) {
      for (const xvar& one : rising[a])
        for (const xvar& other : rising[b])
          EXPECT_EQ(ruvo::natural_order(one, other), a <=> b) << a << ' ' << b;
    }
  }
}

TEST(by_member, sorts_rows_and_keeps_what_is_equal) {
  list rows;
  for (const int price : {10, 9, 100, 9}) {
    bundle& row = rows.on_back_bundle();
    row.putOn(L"item.price", price);
    row["n"] = static_cast<long>(rows.size());
  }
  rows.push_back(L"no bundle");
  const auto numbers = [&rows] {
    std::wstring out;
    for (const xvar& row : rows) out += ruvo::as_bundle(row) ? ruvo::as_bundle(row)->get_string("n") : L"-";
    return out;
  };
  rows.sort(ruvo::by_member("item.price"));
  EXPECT_EQ(numbers(), L"-2413");
  rows.sort(ruvo::by_member(L"item.price", true));
  EXPECT_EQ(numbers(), L"3124-");
}

}  // namespace
