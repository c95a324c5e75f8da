// SPDX-License-Identifier: BSL-1.0

// Documents as a whole, read from JSON: destroying and copying them, against Boost.JSON with its default
// resource. One with a monotonic resource visits nothing when it is destroyed, and cannot be copied alone.
//
//   bench_trees [FILE.json...]

#include <ruvo/ruvo.hpp>

#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <boost/json/src.hpp>

#include "support/corpora.hpp"
#include "support/harness.hpp"

namespace {

using bench::corpus;

template <class Document, class Read>
bench::competitor destroying(const char* name, std::vector<Document>& kept, Read read) {
  return {name, [&kept] { kept.pop_back(); },
          [&kept, read](int runs) {
            kept.reserve(static_cast<std::size_t>(runs));
            for (int n = 0; n < runs; ++n) kept.push_back(read());
          }};
}

template <class Document>
bench::competitor copying(const char* name, const Document& original) {
  return {name, [&original] { bench::use(Document(original)); }};
}

void compare(bench::table& table, const corpus& c) {
  const std::wstring text = ruvo::texto::to_utf_16(c.text);
  const auto own = [&] {
    ruvo::bundle document;
    ruvo::serializer::json().deserialize(document, text, nullptr);
    return document;
  };
  const auto boost = [&] { return boost::json::parse(c.text); };
  const bench::amount all{static_cast<double>(text.size()), bench::amount::characters};
  std::vector<ruvo::bundle> own_kept;
  std::vector<boost::json::value> boost_kept;
  table.row("destroy", c.name, all,
            {destroying("kesta", own_kept, own), destroying("Boost", boost_kept, boost)}, {{"Boost", 1.0}});
  const ruvo::bundle original = own();
  const boost::json::value boost_original = boost();
  table.row("copy, destroy", c.name, all, {copying("kesta", original), copying("Boost", boost_original)},
            {{"Boost", 1.0}});
}

}  // namespace

int main(int argc, char** argv) {
  bench::table table("trees");
  for (const corpus& c : bench::corpora(argc, argv)) {
    try {
      compare(table, c);
    } catch (const std::exception& error) {
      std::printf("%s: left out: %s\n", c.name.c_str(), error.what());
    }
  }
}
