// SPDX-License-Identifier: BSL-1.0

// One value of each shape that a debugger shows, for look.py to look at. With an argument the program waits
// for a debugger that comes to it, for half a minute.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/color.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/velda.hpp>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

int looks = 0;

/// Room for what is no value.
unsigned long long anything[64];

/// Where the debugger stops; `first` keeps the compiler from leaving out the values.
void look(const void* first) {
  if (first) ++looks;
}

ruvo::bundle large_bundle() {
  ruvo::bundle made;
  for (int n = 0; n < 200; ++n) made[std::wstring(L"k") + std::to_wstring((n * 7) % 200)] = n;
  return made;
}

}  // namespace

int main(int count, char**) {
  const ruvo::var null;
  const ruvo::var yes = true, letter = L'ñ';
  const ruvo::var negative = -7, small = static_cast<unsigned short>(65535);
  const ruvo::var biggest = ~0ULL, least = -9223372036854775807LL - 1;
  const ruvo::var real = 2.5, single = 0.25f;
  const ruvo::var day = ruvo::date(20240229), leap = ruvo::date(18991231), hour = ruvo::time(123456);
  const ruvo::var moment = ruvo::datetime(-1000000000LL),
                  local = ruvo::datetime(951782400LL, ruvo::times::LOCAL);
  const ruvo::var nothing = ruvo::datetime(-1LL);
  const ruvo::var empty_text = L"", short_text = L"añ\"o", long_text = L"una línea más larga que la celda";
  const ruvo::var bytes = ruvo::binary(std::string("\x01\xFF z", 4)), note = ruvo::memo(L"nota");
  const ruvo::var amount = ruvo::decimal(L"-12.50"), many = ruvo::decimal(L"18446744073709551617.5");
  const ruvo::xvar tint = ruvo::color(L"#102030");

  const ruvo::list none, numbers = {3, L"x", ruvo::xvar()};
  ruvo::bundle order;
  order[L"Zeta"] = 1;
  order[L"alfa"] = numbers;
  order.hack_string_on(L"texto") = L"cadena";
  order[L"alfa"];
  ruvo::bundle read;
  [[maybe_unused]] const bool failed = ruvo::serializer::read_standard_json(read, L"{\"b\":1,\"a\":2}");
  const ruvo::bundle nobody, hundreds = large_bundle();
  [[maybe_unused]] const ruvo::bundle::const_iterator behind = order.end(), first = order.begin();
  const ruvo::xvar boxed = order;
  ruvo::xvar marked = 5;
  for (const wchar_t* key : {L"m", L"c", L"x", L"a", L"p"}) marked[key] = key;

  const ruvo::lapse instant = ruvo::datetime(0LL);
  const ruvo::date date(2000, 3, 1);
  const ruvo::time time(235959);
  const ruvo::datetime datetime(4102444799LL), unread(951782400LL, ruvo::times::LOCAL), void_time(-1LL);
  const ruvo::velda::date velda(20240229);
  const ruvo::exception error(L"Algo falló con \"esto\"", 7, 12, 3001);
  const ruvo::exc::BadArgument bad(L"año");
  const ruvo::file path(L"C:\\datos\\año.txt");
  const ruvo::color color(16, 32, 48);
  const ruvo::memo face(L"😀x");

  // Around the years 0, 1 and 10000 and far from them, and what the library prints.
  ruvo::datetime moments[9];
  std::wstring printed[9];
  long long seconds[] = {-1000000000000, -62167219201, -62167219200, -62135596801, -62135596800,
                         -60000000000,   253402300799, 253402300800, 4000000000000};
  for (int n = 0; n < 9; ++n) {
    moments[n].set_lapso(seconds[n]);
    printed[n] = moments[n].print();
  }
  anything[1] = 204;  // the kind of a var

  if (count > 1) {
    std::puts("waiting");
    std::fflush(stdout);
  }
  do {
    look(&null);
    if (count > 1) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  } while (count > 1 && looks < 600);
  return looks > 0 ? 0 : 1;
}
