// SPDX-License-Identifier: BSL-1.0
#pragma once

// Sets of values: ruvo::set keeps each value once, ruvo::cap_set the newest ones, ruvo::smart_string_set
// texts without regard to case and accents.
//
//   ruvo::set tags{L"urgente", L"web"};
//   tags.insert(L"web");                          // is there already
//   order[L"etiquetas"] = tags;                   // as a list; so it goes to JSON and XML
//   ruvo::set again(order[L"etiquetas"]);
//
// All three are stored as a list in an xvar, and read from one as all formats give it back. XML shows the
// elements as rows `item`, and a list of one as that row alone: a bundle whose only member is `item` stands
// for that member's value (a value of that form is stored in a row of its own), what is no list for a list of
// it, and null and the empty text for an empty list.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xvar.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <list>
#include <set>
#include <string>
#include <utility>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

/// Orders values by their texts; where these are the same, what is no text comes before a text.
struct KESTA_API value_order {
  bool operator()(const xvar& a, const xvar& b) const;
};

/// Orders texts as smart_string_set does.
struct KESTA_API smart_order {
  bool operator()(const std::wstring& a, const std::wstring& b) const noexcept;
};

}  // namespace detail

/// Values, each once, in the order of their texts: 10 comes before 9. Two values are the same when a list
/// shows them alike: 5 and 5L are, 5 and "5" are not, of float and double six decimals count, and of
/// ruvo::decimal all that are written, so that 1.5 and 1.50 are two. Of an instant counts the text in UTC, so
/// that one is found whatever its mode and the zone of the thread's context; local dates and times of day,
/// and what lists and bundles hold, count as they show now: after a change of the zone make a set of them
/// anew. The first of the same values stays, with its qualities, which take no part in comparisons.
///
/// Look-up, insertion and removal take logarithmic time and keep iterators to other values. Values are copied
/// deeply, and compared by their texts, lists and bundles, too.
class KESTA_API set {
  using values = std::set<xvar, detail::value_order, detail::room_allocator<xvar>>;

 public:
  using value_type = xvar;
  using size_type = std::size_t;
  using const_iterator = values::const_iterator;
  using iterator = const_iterator;  ///< Values in their place are not changed.

  set() noexcept;
  /// The values, of which those that repeat count once.
  set(std::initializer_list<xvar> all);
  explicit set(const list& all);
  /// As the assignment.
  template <std::derived_from<var> V>
  explicit set(const V& value) : set() {
    *this = static_cast<const xvar&>(xvar(value));
  }
  set(const set& other);
  set(set&& other) noexcept;
  set& operator=(const set& other);
  set& operator=(set&& other) noexcept;
  set& operator=(std::initializer_list<xvar> all);
  set& operator=(const list& all);
  /// Takes what is stored, as above.
  set& operator=(const xvar& value);
  ~set();

  /// Where the value is, and whether it was not there before.
  std::pair<const_iterator, bool> insert(const xvar& value);
  std::pair<const_iterator, bool> insert(xvar&& value);
  /// The number of values removed, 0 or 1.
  size_type erase(const xvar& value);
  /// The iterator behind the removed value.
  const_iterator erase(const_iterator where);
  void clear() noexcept;  ///< Removes all.
  /// Adds all values of the other set, leaves those alone that it has too, removes those that it has.
  set& operator|=(const set& other);
  set& operator&=(const set& other);
  set& operator-=(const set& other);

  /// Whether the value is there, how often (0 or 1), and where: end() if it is not.
  bool contains(const xvar& value) const { return find(value) != end(); }
  size_type count(const xvar& value) const { return contains(value) ? 1 : 0; }
  const_iterator find(const xvar& value) const;
  size_type size() const noexcept { return values_.size(); }             ///< How many values there are.
  [[nodiscard]] bool empty() const noexcept { return values_.empty(); }  ///< Whether there are no values.
  /// The values in the order of their texts.
  const_iterator begin() const noexcept { return values_.begin(); }
  const_iterator end() const noexcept { return values_.end(); }

  /// In Spanish, whether the value is there, and whether it is as a text or not as a text where that is what
  /// keeps it from being found. For people to read; empty when memory fails.
  std::wstring explain(const xvar& value) const noexcept;

  /// The values as a list in their order, and an xvar that holds it, to be stored.
  explicit operator list() const;
  operator xvar() const;
  /// As that of the list: `["a",1]`.
  std::wstring to_string() const;
  /// Whether both have the same values; an order by their texts.
  bool operator==(const set& other) const;
  bool operator<(const set& other) const;

 private:
  values values_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const set& value);

/// The values that were added last, each once, the newest first: files opened lately, terms searched for.
/// What is added beyond the capacity takes the place of the oldest value; what is there already becomes the
/// newest, as it is written now.
///
/// Values are the same as in a set, or also when only the case of letters tells them apart
/// (texto::to_lowercase), as names of files. Look-up, insertion and removal take logarithmic time.
class KESTA_API cap_set {
  using values = std::list<xvar, detail::room_allocator<xvar>>;

 public:
  /// Whether the case of letters counts.
  enum class letters : std::int32_t { exact, any_case };

  using value_type = xvar;
  using size_type = std::size_t;
  using const_iterator = values::const_iterator;
  using iterator = const_iterator;                 ///< Values in their place are not changed.
  static constexpr size_type usual_capacity = 10;  ///< Where none is said.

  /// Empty. With a capacity of 0 nothing stays.
  explicit cap_set(size_type capacity = usual_capacity, letters kind = letters::exact);
  /// Copies and moves take the capacity along.
  cap_set(const cap_set& other);
  cap_set(cap_set&& other) noexcept;
  cap_set& operator=(const cap_set& other);
  cap_set& operator=(cap_set&& other) noexcept;
  /// Takes the first elements of a list, the newest first, as many as the capacity says, or what is stored.
  /// The capacity stays.
  cap_set& operator=(const list& all);
  cap_set& operator=(const xvar& value);
  ~cap_set();

  /// Makes the value the newest. True if it was not there before.
  bool insert(const xvar& value);
  /// The number of values removed, 0 or 1.
  size_type erase(const xvar& value);
  void clear() noexcept;                                     ///< Removes all.
  size_type capacity() const noexcept { return capacity_; }  ///< How many values stay at the most.
  /// Removes the oldest values where there are more.
  void set_capacity(size_type capacity);

  /// Whether the value is there, how often (0 or 1), and where: end() if it is not.
  bool contains(const xvar& value) const { return find(value) != end(); }
  size_type count(const xvar& value) const { return contains(value) ? 1 : 0; }
  const_iterator find(const xvar& value) const;
  size_type size() const noexcept { return values_.size(); }             ///< How many values there are.
  [[nodiscard]] bool empty() const noexcept { return values_.empty(); }  ///< Whether there are no values.
  /// The values, the newest first.
  const_iterator begin() const noexcept { return values_.begin(); }
  const_iterator end() const noexcept { return values_.end(); }

  /// In Spanish, whether the value is there, and in which place of how many. For people to read; empty when
  /// memory fails. Takes linear time.
  std::wstring explain(const xvar& value) const noexcept;

  /// The values as a list, the newest first, and an xvar that holds it, to be stored.
  explicit operator list() const;
  operator xvar() const;
  /// As that of the list: `["a",1]`.
  std::wstring to_string() const;
  /// Whether both have the same values in the same order, whatever their capacities; an order by their texts.
  bool operator==(const cap_set& other) const;
  bool operator<(const cap_set& other) const;

 private:
  struct KESTA_API order {
    using is_transparent = void;
    bool before(const xvar& a, const xvar& b) const;
    bool operator()(const_iterator a, const_iterator b) const { return before(*a, *b); }
    bool operator()(const xvar& a, const_iterator b) const { return before(a, *b); }
    bool operator()(const_iterator a, const xvar& b) const { return before(*a, b); }

    letters kind = letters::exact;
  };
  using places = std::set<const_iterator, order, detail::room_allocator<const_iterator>>;

  size_type capacity_;
  values values_;
  places places_;  // of all values
};

KESTA_API std::wostream& operator<<(std::wostream& out, const cap_set& value);

/// Texts, each once, whatever the case and the accents of its letters: "José", "JOSE" and "jose" are the
/// same, and the first one stays as it is written. ñ is a letter of its own, between n and o, not an n with
/// an accent. Accented are the letters of texto::limpia_puntuacion(), and those with combining accents behind
/// them (U+0300 to U+036F).
///
/// In alphabetical order, in which case and accents do not count. Look-up, insertion and removal take
/// logarithmic time and keep iterators to other texts.
class KESTA_API smart_string_set {
  using texts = std::set<std::wstring, detail::smart_order, detail::room_allocator<std::wstring>>;

 public:
  using value_type = std::wstring;
  using size_type = std::size_t;
  using const_iterator = texts::const_iterator;
  using iterator = const_iterator;  ///< Texts in their place are not changed.

  smart_string_set() noexcept;
  /// The texts, of which those that repeat count once.
  smart_string_set(std::initializer_list<std::wstring> all);
  explicit smart_string_set(const list& all);
  /// As the assignment.
  template <std::derived_from<var> V>
  explicit smart_string_set(const V& value) : smart_string_set() {
    *this = static_cast<const xvar&>(xvar(value));
  }
  smart_string_set(const smart_string_set& other);
  smart_string_set(smart_string_set&& other) noexcept;
  smart_string_set& operator=(const smart_string_set& other);
  smart_string_set& operator=(smart_string_set&& other) noexcept;
  smart_string_set& operator=(std::initializer_list<std::wstring> all);
  /// The texts of the elements of a list, or of what is stored.
  smart_string_set& operator=(const list& all);
  smart_string_set& operator=(const xvar& value);
  ~smart_string_set();

  /// Where the text is, and whether it was not there before.
  std::pair<const_iterator, bool> insert(const std::wstring& text);
  /// The number of texts removed, 0 or 1.
  size_type erase(const std::wstring& text);
  /// The iterator behind the removed text.
  const_iterator erase(const_iterator where);
  void clear() noexcept;  ///< Removes all.

  /// Whether the text is there, how often (0 or 1), and where: end() if it is not.
  bool contains(const std::wstring& text) const { return find(text) != end(); }
  size_type count(const std::wstring& text) const { return contains(text) ? 1 : 0; }
  const_iterator find(const std::wstring& text) const;
  size_type size() const noexcept { return texts_.size(); }             ///< How many texts there are.
  [[nodiscard]] bool empty() const noexcept { return texts_.empty(); }  ///< Whether there are no texts.
  /// The texts in alphabetical order, in their first spelling.
  const_iterator begin() const noexcept { return texts_.begin(); }
  const_iterator end() const noexcept { return texts_.end(); }

  /// In Spanish, whether the text is there, and how it is written. For people to read; empty when memory
  /// fails.
  std::wstring explain(const std::wstring& text) const noexcept;

  /// The texts as a list in their order, and an xvar that holds it, to be stored.
  explicit operator list() const;
  operator xvar() const;
  /// As that of the list: `["a","b"]`.
  std::wstring to_string() const;
  /// Whether both have the same texts, without regard to case and accents; an order by the same.
  bool operator==(const smart_string_set& other) const;
  bool operator<(const smart_string_set& other) const;

 private:
  texts texts_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const smart_string_set& value);

}  // namespace ruvo

#include <ruvo/names_back.hpp>
