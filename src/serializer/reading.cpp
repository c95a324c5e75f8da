// SPDX-License-Identifier: BSL-1.0

// All failures of a reading, and places in a text.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/serializer.hpp>

#include <cstdint>
#include <exception>
#include <new>
#include <string>

#include "exc/classes.hpp"
#include "serializer/deserialize.hpp"
#include "serializer/places.hpp"

namespace ruvo::serializer {

namespace {

template <class Unit>
text_place place_in(std::basic_string_view<Unit> text, std::uint64_t position) noexcept {
  const std::uint64_t offset = position == 0 ? 0 : position - 1;
  return basic_place_walker<Unit>(text).at(
      static_cast<std::size_t>(std::min<std::uint64_t>(offset, text.size())));
}

}  // namespace

text_place position_of(std::wstring_view text, std::uint64_t position) noexcept {
  return place_in(text, position);
}
text_place position_of(std::string_view utf8, std::uint64_t position) noexcept {
  return place_in(utf8, position);
}

std::uint64_t failure_position(const exception& failure) { return detail::error_class::position(failure); }

namespace {

/// One reading: the reader is reset before and after.
class collector {
 public:
  collector(ireader& reader, bundle& out, std::size_t most) : reader_(reader), most_(most) {
    reader_.reset();
    reader_.set_store(out);
  }
  collector(const collector&) = delete;
  collector& operator=(const collector&) = delete;
  ~collector() { reader_.reset(); }

  std::vector<reading_failure> read(std::wstring_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      try {
        take(text[at], at);
      } catch (const std::bad_alloc&) {
        throw;
      } catch (...) {
        add(exc::RunTime(std::current_exception()), at);
        break;
      }
    }
    place_walker places(text);
    for (reading_failure& failure : failures_) {
      const text_place place = places.at(static_cast<std::size_t>(failure.position - 1));
      failure.line = place.line;
      failure.column = place.column;
    }
    return std::move(failures_);
  }

 private:
  void take(wchar_t c, std::size_t at) {
    const bool goes_on = code_before_ != 0;
    if (!reader_.next_character(c, result_)) {
      code_before_ = 0;
      return;
    }
    const unsigned long code = result_.get_raw_code();
    if (failures_.size() < most_ && !(goes_on && code == code_before_)) add(result_, at);
    code_before_ = code;
    result_ = exception();
  }

  void add(const exception& error, std::size_t at) { failures_.push_back({error, at + 1, 0, 0}); }

  ireader& reader_;
  std::size_t most_;
  exception result_;
  unsigned long code_before_ = 0;  // of the failure at the character before; 0 without one
  std::vector<reading_failure> failures_;
};

}  // namespace

std::vector<reading_failure> read_all(ireader& reader, bundle& out, std::wstring_view text,
                                      std::size_t most) {
  const steady_text steady(text, out);
  return collector(reader, out, most).read(steady.view());
}

}  // namespace ruvo::serializer
