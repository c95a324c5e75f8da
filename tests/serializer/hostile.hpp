#pragma once

// Documents that are cut and changed, and soups of tokens: reading at once and character by character must
// agree in everything.

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

/// The document with one to four changes; one of them takes away what stands before the next `end`.
inline std::wstring damaged(dice& random, std::wstring text, std::wstring_view alphabet, wchar_t end) {
  for (unsigned n = random.below(4) + 1; n > 0 && !text.empty(); --n) {
    const std::size_t at = random.below(text.size());
    switch (random.below(6)) {
      case 0:
        text[at] = random.unit(alphabet);
        break;
      case 1:
        text.erase(at, random.below(3) + 1);
        break;
      case 2:
        text.insert(at, 1, random.unit(alphabet));
        break;
      case 3:
        text.insert(at, text.substr(random.below(text.size()), random.below(30)));
        break;
      case 4:
        text.erase(at, text.find(end, at) - at);
        break;
      default:
        text.resize(at);
    }
  }
  return text;
}

/// `Ways` reads in both ways; `Source` makes documents and mutations of them.
template <class Ways, class Source>
class hostile : public generated_inputs {
 protected:
  void both_ways_agree(const std::wstring& text) {
    ++inputs;
    const auto fast = ways_.at_once(text), slow = ways_.by_character(text);
    ASSERT_EQ(fast.store, slow.store) << testing::PrintToString(text);
    ASSERT_EQ(fast.report, slow.report) << testing::PrintToString(text);
  }

  void documents_and_mutations(int documents) {
    for (unsigned round = 0; round < rounds(); ++round) {
      Source g(20261121 + round);
      for (int i = 0; i < documents && !HasFatalFailure(); ++i) {
        const std::wstring text = g.document();
        both_ways_agree(text);
        for (int m = 0; m < 8; ++m) both_ways_agree(g.mutated(text));
      }
    }
  }
  void soups(unsigned count, const std::vector<std::wstring>& begins,
             const std::vector<std::wstring>& tokens) {
    dice random(5);
    for (unsigned i = 0; i < count * rounds() && !HasFatalFailure(); ++i)
      both_ways_agree(random.any(begins) + random.joined(tokens, 25));
  }
  void every_prefix(int documents) {
    Source g(3);
    for (int i = 0; i < documents && !HasFatalFailure(); ++i) {
      const std::wstring text = g.document();
      for (std::size_t n = 0; n <= text.size(); ++n) both_ways_agree(text.substr(0, n));
    }
  }

 private:
  Ways ways_;
};
