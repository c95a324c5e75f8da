// SPDX-License-Identifier: BSL-1.0
#pragma once

// What reading a text gives: the store and the error. The readers have a fast way for whole texts and the
// state machine for single characters; both must give the same.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>

#include <ostream>
#include <stdexcept>
#include <string>

struct outcome {
  std::wstring store, report;
  bool operator==(const outcome&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const outcome& o) {
    for (const wchar_t c : o.store + L" " + o.report) out << (c < 127 ? static_cast<char>(c) : '?');
    return out;
  }
};

/// With `throwing` an exception of the store is an outcome, too.
template <class Format, class Reader, bool throwing = false>
class both_ways {
 public:
  /// `shown` gives a store as text; the others make the format.
  template <class... Arguments>
  explicit both_ways(std::wstring (*shown)(const ruvo::bundle&), Arguments... arguments)
      : shown_(shown), format_(arguments...) {}

  outcome at_once(const std::wstring& text) {
    return outcome_of([&](ruvo::bundle& b, ruvo::exception& error) { format_.deserialize(b, text, &error); });
  }
  outcome by_character(const std::wstring& text) const {
    return outcome_of([&](ruvo::bundle& b, ruvo::exception& error) {
      Reader reader;
      reader.reset();
      reader.set_store(b);
      for (const wchar_t c : text) reader.next_character(c, error);
    });
  }

 private:
  template <class Read>
  outcome outcome_of(Read read) const {
    ruvo::bundle b;
    ruvo::exception error;
    outcome o;
    try {
      read(b, error);
      o.report = static_cast<std::wstring>(error);
    } catch (const std::logic_error& e) {
      if (!throwing) throw;
      o.report = {e.what(), e.what() + std::char_traits<char>::length(e.what())};
    }
    o.store = shown_(b);
    return o;
  }

  std::wstring (*shown_)(const ruvo::bundle&);
  Format format_;
};
