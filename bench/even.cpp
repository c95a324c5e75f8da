// SPDX-License-Identifier: BSL-1.0

// Whether a character costs the same in small and in large documents of one kind, at the first reading and at
// later ones, and how much memory a large one takes and leaves behind. Each reading starts in a program of
// its own: this one again, which is given a reader and a size and prints its figures.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <boost/json/src.hpp>

#include "support/corpora.hpp"
#include "support/harness.hpp"
#include "support/system_programs.hpp"

namespace {

using reader = std::function<void(const std::wstring&)>;  // makes a document, and destroys it

const std::map<std::string, reader> readers = {
    {"read",
     [](const std::wstring& text) {
       ruvo::bundle document;
       ruvo::serializer::json().deserialize(document, text, nullptr);
       bench::use(document);
     }},
    {"standard",
     [](const std::wstring& text) {
       ruvo::bundle document;
       if (!ruvo::serializer::read_standard_json(document, text)) bench::use(document);
     }},
    {"Boost", [](const std::wstring& text) { bench::use(boost::json::parse(ruvo::texto::to_utf_8(text))); }},
    {"monotonic", [](const std::wstring& text) {
       boost::json::monotonic_resource memory;
       bench::use(boost::json::parse(ruvo::texto::to_utf_8(text), &memory));
     }}};

/// A peak that cannot be seen, as making the text took more.
constexpr double unknown = -1;

/// Nanoseconds a character; megabytes that came on top of the text.
struct figures {
  double first, again, peak, rest, later_rest;
};

constexpr std::size_t kinds_of_figures = 5;
constexpr std::array<double figures::*, kinds_of_figures> all_figures = {
    &figures::first, &figures::again, &figures::peak, &figures::rest, &figures::later_rest};

// --- in a program of its own

double time_of(const reader& read, const std::wstring& text) {
  using clock = std::chrono::steady_clock;
  const auto start = clock::now();
  read(text);
  return std::chrono::duration<double, std::nano>(clock::now() - start).count() /
         static_cast<double>(text.size());
}

/// The median of a third of a second, or of three readings.
double time_again(const reader& read, const std::wstring& text) {
  std::vector<double> times;
  double left = 0.3e9 / static_cast<double>(text.size());
  for (; left > 0 || times.size() < 3; left -= times.back()) times.push_back(time_of(read, text));
  return bench::median(std::move(times));
}

int measure(const reader& read, std::size_t characters) {
  const std::wstring text = ruvo::texto::to_utf_16(bench::catalogue(characters));
  const std::wstring body = ruvo::texto::to_utf_16(bench::catalogue(1000));
  read(L"{\"a\":[1]}");  // what a library sets up once
  const bench::memory_use before = bench::own_memory();
  figures out{};
  out.first = time_of(read, text);
  const bench::memory_use after = bench::own_memory();
  for (int n = 0; n < 10; ++n) read(body);
  out.rest = after.now - before.now;
  out.later_rest = bench::own_memory().now - before.now;
  out.peak = after.most > before.most ? after.most - before.now : unknown;
  out.again = time_again(read, text);
  for (const auto figure : all_figures) std::printf("%.6f\n", out.*figure);
  return 0;
}

// --- in the program that starts it

struct size {
  const char* name;
  std::size_t characters;
  int programs;
};

constexpr size sizes[] = {
    {"1 KB", 1000, 7}, {"100 KB", 100000, 7}, {"10 MB", 10000000, 3}, {"100 MB", 100000000, 1}};

/// The medians of several programs.
figures figures_of(const std::string& name, const size& wanted) {
  std::array<std::vector<double>, kinds_of_figures> all;
  for (int n = 0; n < wanted.programs; ++n) {
    std::istringstream lines(bench::output_of("", name + " " + std::to_string(wanted.characters)));
    for (std::vector<double>& one : all) {
      one.emplace_back();
      if (!(lines >> one.back())) throw std::runtime_error("no figures");
    }
  }
  figures out{};
  for (std::size_t n = 0; n < kinds_of_figures; ++n) out.*all_figures[n] = bench::median(all[n]);
  return out;
}

/// Kesta's reader beside Boost.JSON's, by size.
using by_size = std::vector<figures>;

void compare_times(bench::table& table, const std::string& row, double figures::*when, const by_size& own,
                   const std::map<std::string, by_size>& peers) {
  for (std::size_t n = 0; n < std::size(sizes); ++n) {
    for (const auto& [peer, its] : peers) {
      table.line(
          {row, sizes[n].name, "ns/char", peer, own[n].*when, its[n].*when, its[n].*when / (own[n].*when)},
          {});
    }
  }
  const auto [least, most] = std::minmax_element(
      own.begin(), own.end(), [=](const figures& a, const figures& b) { return a.*when < b.*when; });
  table.line({row, "dearest size", "ns/char", "cheapest size", (*most).*when, (*least).*when,
              (*most).*when / ((*least).*when), bench::comparison::cost},
             {{"cheapest size", 1.5}});
}

/// What a document took at most, and what is left of it afterwards: of the large ones, beside which the
/// program itself does not count.
void compare_memory(bench::table& table, const std::string& row, const by_size& own,
                    const std::map<std::string, by_size>& peers) {
  for (std::size_t n = 2; n < std::size(sizes); ++n) {
    const auto line = [&](const char* what, double mine, const std::string& peer, double its) {
      if (its == unknown || mine == unknown) throw std::runtime_error("no peak to be seen");
      table.line({row + what, sizes[n].name, "MB", peer, mine, its, mine / its, bench::comparison::cost}, {});
    };
    for (const auto& [peer, its] : peers) line(", peak", own[n].peak, peer, its[n].peak);
    line(", kept", own[n].rest, "peak", own[n].peak);
    line(", kept later", own[n].later_rest, "peak", own[n].peak);
  }
}

void compare(bench::table& table) {
  std::map<std::string, by_size> all;
  for (const auto& [name, ignored] : readers) {
    for (const size& wanted : sizes) all[name].push_back(figures_of(name, wanted));
  }
  const std::map<std::string, by_size> peers = {{"Boost", all["Boost"]},
                                                {"Boost monotonic", all["monotonic"]}};
  for (const char* const name : {"read", "standard"}) {
    const std::string row = name;
    compare_times(table, row + ", first", &figures::first, all[name], peers);
    compare_times(table, row + ", again", &figures::again, all[name], peers);
    compare_memory(table, row, all[name], peers);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && readers.contains(argv[1]))
    return measure(readers.at(argv[1]), std::strtoull(argv[2], nullptr, 10));
  bench::table table("even");
  compare(table);
}
