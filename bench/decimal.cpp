// SPDX-License-Identifier: BSL-1.0

// Exact decimals against Boost.Multiprecision's cpp_dec_float with as many digits, which rounds where kesta
// reports, and against cents in 64 bits, which know neither decimals nor overflow: what an invoice does.

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_dec_float.hpp>

#include "support/harness.hpp"

namespace {

using ruvo::decimal;
using peer_number =
    boost::multiprecision::number<boost::multiprecision::cpp_dec_float<38>, boost::multiprecision::et_off>;

constexpr std::size_t lines = 1000;

struct amounts {
  std::vector<decimal> own;
  std::vector<peer_number> peer;
  std::vector<std::int64_t> cents;
  std::vector<std::wstring> wide;
  std::vector<std::string> narrow;
};

/// Prices, all with two decimals, in an order that repeats after the last one.
amounts prices() {
  amounts out;
  for (std::size_t n = 0; n < lines; ++n) {
    const auto cents = static_cast<std::int64_t>(n * 7919 % 250'000 + 5);
    const decimal price(cents, 2);
    out.own.push_back(price);
    out.wide.push_back(price.to_string());
    out.narrow.push_back(ruvo::texto::to_utf_8(price.to_string()));
    out.peer.emplace_back(out.narrow.back());
    out.cents.push_back(cents);
  }
  return out;
}

/// To cents, a half away from zero.
peer_number to_cents(const peer_number& value) { return floor(value * 100 + peer_number("0.5")) / 100; }

template <class Own, class Peer>
void compare(bench::table& table, const char* row, Own own, Peer peer, double least = 1.0) {
  table.row(row, "1,000 prices", {static_cast<double>(lines), bench::amount::operations},
            {{"kesta", own}, {"cpp_dec_float", peer}}, {{"cpp_dec_float", least}});
}

}  // namespace

int main() {
  const amounts all = prices();
  bench::table table("decimal");
  compare(
      table, "sum",
      [&] {
        decimal sum;
        for (const decimal& price : all.own) sum += price;
        bench::use(sum);
      },
      [&] {
        peer_number sum;
        for (const peer_number& price : all.peer) sum += price;
        bench::use(sum);
      });
  table.row("sum, cents", "1,000 prices", {static_cast<double>(lines), bench::amount::operations},
            {{"kesta",
              [&] {
                decimal sum;
                for (const decimal& price : all.own) sum += price;
                bench::use(sum);
              }},
             {"long long",
              [&] {
                std::int64_t sum = 0;
                for (const std::int64_t price : all.cents) {
                  sum += price;
                  bench::use(sum);
                }
              }}},
            {{"long long", 0.02}});
  const decimal rate(L"0.21");
  const peer_number peer_rate("0.21");
  compare(
      table, "quota, rounded",
      [&] {
        for (const decimal& price : all.own) bench::use(price.multiplied(rate, 2));
      },
      [&] {
        for (const peer_number& price : all.peer) bench::use(to_cents(price * peer_rate));
      });
  compare(
      table, "quotient, rounded",
      [&] {
        for (const decimal& price : all.own) bench::use(price.divided(7, 2));
      },
      [&] {
        for (const peer_number& price : all.peer) bench::use(to_cents(price / 7));
      });
  compare(
      table, "compare",
      [&] {
        for (std::size_t n = 1; n < lines; ++n) bench::use(all.own[n - 1] < all.own[n]);
      },
      [&] {
        for (std::size_t n = 1; n < lines; ++n) bench::use(all.peer[n - 1] < all.peer[n]);
      });
  compare(
      table, "from text",
      [&] {
        for (const std::wstring& text : all.wide) bench::use(decimal(text));
      },
      [&] {
        for (const std::string& text : all.narrow) bench::use(peer_number(text));
      });
  compare(
      table, "to text",
      [&] {
        for (const decimal& price : all.own) bench::use(price.to_string());
      },
      [&] {
        for (const peer_number& price : all.peer) bench::use(price.str(2, std::ios_base::fixed));
      });
}
