// SPDX-License-Identifier: BSL-1.0
#pragma once

// The loop that feeds a text to a reader; the same for every format.

#include <ruvo/exception.hpp>
#include <ruvo/serializer.hpp>

#include <string>
#include <string_view>

#include "memory/block_cache.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// A text that is read into a bundle. It may be a part of what the bundle holds, and reading may replace
/// that; unless it is none for certain, it is copied.
class steady_text {
 public:
  steady_text(std::wstring_view text, const bundle& out)
      : is_part_(!out.empty() && ruvo::detail::may_hold(out, text)),
        copy_(is_part_ ? text : std::wstring_view()),
        view_(is_part_ ? copy_ : text) {}
  steady_text(const steady_text&) = delete;
  steady_text& operator=(const steady_text&) = delete;

  std::wstring_view view() const noexcept { return view_; }

 private:
  const bool is_part_;
  const std::wstring copy_;
  const std::wstring_view view_;
};

/// Leaves the reader reset and the failure, if any, with the caller, also when an exception goes through.
template <class Reader>
class reading {
 public:
  reading(Reader& reader, bundle& out, exception* err) : reader_(reader), err_(err) {
    reader_.reset();
    reader_.set_store(out);
  }
  reading(const reading&) = delete;
  reading& operator=(const reading&) = delete;
  ~reading() {
    reader_.reset();
    if (err_ && result.WRONG()) hand_over();
  }

  exception result;

 private:
  void hand_over() noexcept {
    try {
      *err_ = result;
    } catch (...) {  // no memory for the message: the caller still has the returned bool
    }
  }

  Reader& reader_;
  exception* err_;
};

/// Feeds all of `in`; a failure stops nothing, the last one is reported. True on failure. `take` may take a
/// run of characters at once: it returns the first character that is left.
template <class Reader, class Take>
bool deserialize_with(Reader& reader, bundle& out, const std::wstring& in, exception* err, Take take) {
  const steady_text text(in, out);
  reading<Reader> work(reader, out, err);
  const ruvo::detail::document_blocks blocks(in.size());
  const wchar_t* at = text.view().data();
  const wchar_t* const end = at + text.view().size();
  while ((at = take(at, end)) != end) reader.next_character(*at++, work.result);
  return work.result.WRONG();
}

}  // namespace ruvo::serializer
