// SPDX-License-Identifier: BSL-1.0

// What readers and writers of every format share: positions and indentation.

#include <ruvo/serializer.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace ruvo {

iserializer::iserializer() noexcept = default;
iserializer::iserializer(const iserializer&) noexcept {}
iserializer& iserializer::operator=(const iserializer&) noexcept { return *this; }
iserializer::~iserializer() = default;

namespace serializer {

namespace {

constexpr std::uint16_t unlimited = std::numeric_limits<std::uint16_t>::max();

}  // namespace

ireader::ireader() noexcept = default;
ireader::~ireader() = default;

bool ireader::next_character(wchar_t c, exception& result) {
  ++position_;
  return on_char(c, result);
}

iwriter::iwriter() noexcept : tab_unit_(1, L'\t') {}
iwriter::~iwriter() = default;

void iwriter::set_tabulated(bool tabulated) { tabulated_ = tabulated; }

void iwriter::limit_indentation(unsigned long levels) noexcept {
  most_levels_ = static_cast<std::uint16_t>(std::min<unsigned long>(levels, unlimited));
}

void iwriter::push_tab() {
  if (!tabulated_) return;
  if (std::exchange(first_push_, false)) return;
  if (most_levels_ != unlimited && indentation_.size() >= most_levels_ * tab_unit_.size())
    ++withheld_;
  else
    indentation_ += tab_unit_;
}

void iwriter::pop_tab() noexcept {
  if (!tabulated_) return;
  if (withheld_ > 0)
    --withheld_;
  else if (indentation_.size() >= tab_unit_.size())
    indentation_.resize(indentation_.size() - tab_unit_.size());
}

}  // namespace serializer
}  // namespace ruvo
