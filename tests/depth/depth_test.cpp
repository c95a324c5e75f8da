// 100,000 levels on a stack of 1 MiB: whatever walks over nested values must not recurse.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/serializer.hpp>

#include <string>
#include <utility>

#include <gtest/gtest.h>

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::json;

namespace {

constexpr int levels = 100000;

std::wstring repeated(const wchar_t* piece, int count) {
  std::wstring out;
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

struct shape {
  const char* name;
  std::wstring text;
};

class nesting : public testing::TestWithParam<int> {
 protected:
  static shape of(int which) {
    switch (which) {
      case 0:
        return {"arrays", repeated(L"[", levels) + repeated(L"]", levels)};
      case 1:
        return {"objects", repeated(L"{\"k\":", levels) + L"1" + repeated(L"}", levels)};
      default:
        return {"both", repeated(L"{\"k\":[1,", levels / 2) + L"2" + repeated(L"]}", levels / 2)};
    }
  }
};

TEST_P(nesting, costs_no_stack) {
  const shape s = of(GetParam());
  SCOPED_TRACE(s.name);
  bundle b;
  ASSERT_FALSE(json().deserialize(b, s.text));
  bundle copy(b);
  EXPECT_TRUE(copy == b);
  EXPECT_FALSE(copy < b);
  for (const bool ordered : {true, false}) {
    std::wstring text;
    ASSERT_FALSE(json(ordered, false, true).serialize(text, b));
    EXPECT_TRUE(text == s.text);
  }
  const xvar held = copy;
  xvar other;
  other = held;
  EXPECT_TRUE(other == held);
  const list moved{held, held};
  EXPECT_EQ(moved.to_string().size(), 2 * held.to_string().size() + 3);
  copy = bundle();
}

INSTANTIATE_TEST_SUITE_P(shapes, nesting, testing::Range(0, 3));

TEST(nesting_by_hand, through_qualities) {
  list outer;
  for (int i = 0; i < levels; ++i) {
    xvar v = 1;
    v[L"q"] = static_cast<ruvo::var>(xvar(std::move(outer)));
    outer = list();
    outer.push_back(std::move(v));
  }
  const list copy(outer);
  EXPECT_TRUE(copy == outer);
}

}  // namespace
