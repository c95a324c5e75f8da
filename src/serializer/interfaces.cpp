#include <ruvo/serializer.hpp>

namespace ruvo {

iserializer::iserializer() noexcept = default;
iserializer::iserializer(const iserializer&) noexcept {}
iserializer& iserializer::operator=(const iserializer&) noexcept { return *this; }
iserializer::~iserializer() = default;

namespace serializer {

ireader::ireader() noexcept = default;
ireader::~ireader() = default;

bool ireader::next_character(wchar_t c, exception& result) {
  ++position_;
  return on_char(c, result);
}

iwriter::iwriter() noexcept : tab_unit_(1, L'\t') {}
iwriter::~iwriter() = default;

void iwriter::set_tabulated(bool tabulated) { tabulated_ = tabulated; }

void iwriter::push_tab() {
  if (!tabulated_) return;
  if (!first_push_) indentation_ += tab_unit_;
  first_push_ = false;
}

void iwriter::pop_tab() noexcept {
  if (tabulated_ && indentation_.size() >= tab_unit_.size())
    indentation_.resize(indentation_.size() - tab_unit_.size());
}

}  // namespace serializer
}  // namespace ruvo
