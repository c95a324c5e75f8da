// SPDX-License-Identifier: BSL-1.0

// The message table of kesta.dll against the classes themselves: what FormatMessage prints of a code is what
// the exception says.

#include "support/message_table.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exc/catalogue.hpp"

namespace {

/// A message apart into those of the classes that share the code, in order.
std::vector<std::wstring> parts(const std::wstring& message) {
  std::vector<std::wstring> out;
  std::size_t from = 0;
  for (std::size_t at; (at = message.find(L" / ", from)) != std::wstring::npos; from = at + 3) {
    out.push_back(message.substr(from, at - from));
  }
  out.push_back(message.substr(from));
  std::ranges::sort(out);
  return out;
}

}  // namespace

TEST(message_table, says_what_the_exceptions_say) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  const std::wstring system_text = system_texts::winerror_message(5);
  const wchar_t* const inserts[] = {L"31", L"5", system_text.c_str()};
  const auto expected = catalogue_messages();
  ASSERT_GT(expected.size(), 70u);
  for (const auto& [code, messages] : expected) {
    for (const unsigned long language :
         {0ul, 0x0400ul, 0x0C0Aul, 0x0409ul}) {  // any, the user's, es-ES, en-US
      EXPECT_EQ(parts(table_message(code, inserts, language)), messages) << std::hex << code;
    }
  }
}

TEST(message_table, has_the_codes_of_the_catalogue_and_no_other) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  const auto expected = catalogue_messages();
  for (unsigned long high : {0xEBB70000ul, 0xEBB80000ul, 0xEBB90000ul, 0xEBBA0000ul, 0xCBB90000ul, 0x0ul}) {
    for (unsigned long code = high; code < high + 20000; ++code) {
      ASSERT_EQ(!table_message(code, nullptr).empty(), expected.contains(code)) << std::hex << code;
    }
  }
}

TEST(message_table, leaves_places_that_nobody_fills) {
  if (!has_message_table()) GTEST_SKIP() << "the library is no file of its own here";
  EXPECT_EQ(table_message(0xEBB92AF9, nullptr), L"Módulo %1 desconocido");
  EXPECT_EQ(table_message(0xEBB91B5A, nullptr), L"Lectura incorrecta cerca del caracter:%1 en el nudo:%2");
  EXPECT_EQ(table_message(0xEBB90FA6, nullptr), L"winregRead: %1 (%2: %3)");
}
