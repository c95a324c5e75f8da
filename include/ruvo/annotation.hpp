// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::annotation, a note that somebody makes about something, and ruvo::annotable, what notes are made
// about.
//
//   class invoice : public ruvo::annotable { ... };
//   one.annotate(L"ana", L"Pagada en mano")[L"importe"] = 120;
//   one.write_annotations(stored);               // as bundles in a list

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/xvar.hpp>

#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// Who says what, when, and with which qualities, which are named values of any kind.
///
/// As a bundle it has "author", "date" (a datetime in UTC), "text" and, if there are any, "qualities". So it
/// goes to JSON and XML and comes back from all of the library's formats.
class KESTA_API annotation {
 public:
  /// Empty, with a null date.
  annotation();
  /// Of now, by the clock of the thread's context.
  annotation(const std::wstring& author, const std::wstring& text);
  annotation(const std::wstring& author, const std::wstring& text, const datetime& date);
  /// As the assignment, over an empty one.
  explicit annotation(const bundle& fields);
  /// From an xvar that holds such a bundle.
  template <std::derived_from<var> V>
  explicit annotation(const V& value) : annotation() {
    *this = static_cast<const xvar&>(xvar(value));
  }
  annotation(const annotation& other);
  annotation(annotation&& other) noexcept;
  annotation& operator=(const annotation& other);
  annotation& operator=(annotation&& other) noexcept;
  /// Takes what the bundle has; a missing or null entry leaves its field as it is. The date is a datetime, a
  /// number or its text, as seconds since 1970, or a text in ISO 8601 or in the canonical format of datetime,
  /// in UTC where the text does not say otherwise; an empty text is the null date. Any other date throws
  /// exc::BadArgument ("date"), and the annotation stays as it was.
  annotation& operator=(const bundle& fields);
  /// The same; an xvar that holds no bundle throws exc::BadArgument ("annotation").
  annotation& operator=(const xvar& value);
  ~annotation();

  /// Plain copies.
  annotation& set_author(const std::wstring& author);
  annotation& set_text(const std::wstring& text);
  annotation& set_date(const datetime& date);
  /// What was set; valid until the annotation is changed or destroyed.
  const std::wstring& get_author() const noexcept { return author_; }
  const std::wstring& get_text() const noexcept { return text_; }
  const datetime& get_date() const noexcept { return date_; }

  /// The quality, inserted with a null value when missing; names ignore the case of A-Z.
  var& operator[](const std::wstring& name);
  /// All qualities, for reading and for writing.
  const xvar::qualities_map& get_qualities() const noexcept { return qualities_; }
  xvar::qualities_map& hack_qualities() noexcept { return qualities_; }

  /// "22-11-2026 10:30:00 ana: Pagada en mano", without what is empty.
  std::wstring to_string() const;
  /// As above.
  operator bundle() const;
  operator xvar() const { return operator bundle(); }

  /// Whether all is the same, the instant for the date.
  bool operator==(const annotation& other) const;
  /// By date, then by author and text.
  bool operator<(const annotation& other) const noexcept;

 private:
  std::wstring author_, text_;
  datetime date_;
  xvar::qualities_map qualities_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const annotation& value);

/// What notes are made about derives from this class, which keeps them in the order in which they came.
/// Adding a note takes constant time, removing notes linear time.
class KESTA_API annotable {
 public:
  /// Adds a note, of now or as it is, and gives it; valid until the next one is added or any is removed.
  annotation& annotate(const std::wstring& author, const std::wstring& text);
  annotation& annotate(const annotation& note);
  /// All notes, valid until one is added or removed.
  const std::vector<annotation>& get_annotations() const noexcept { return notes_; }
  /// Whether there are any notes.
  bool is_annotated() const noexcept { return !notes_.empty(); }
  /// Removes the notes for which `goes` is true; gives how many.
  template <std::predicate<const annotation&> Goes>
  std::size_t remove_annotations_if(Goes goes) {
    return std::erase_if(notes_, goes);
  }
  void clear_annotations() noexcept;  ///< Removes all notes.

  /// Puts the notes under the key "annotations", as a list of bundles whose only member is "annotation",
  /// which XML shows as elements of that name; without notes, removes the key.
  void write_annotations(bundle& out) const;
  /// Takes the notes under that key in place of those that are there, as all formats give them back, also
  /// without the bundles around them; none where the key is missing or empty. What is no note throws as
  /// annotation's assignment does, and the notes stay as they were.
  void read_annotations(const bundle& in);

 protected:
  annotable() noexcept;
  annotable(const annotable& other);
  annotable(annotable&& other) noexcept;
  annotable& operator=(const annotable& other);
  annotable& operator=(annotable&& other) noexcept;
  ~annotable();

 private:
  std::vector<annotation> notes_;
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
