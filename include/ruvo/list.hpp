// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::list, the ordered sequence of values.

#include <ruvo/wider.hpp>
#include <ruvo/xvar.hpp>

#include <concepts>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// A contiguous sequence of xvar with the operations of std::vector, and their complexity and rules for
/// iterators; growth moves the elements. Deep copies; nesting is limited by memory only.
class KESTA_API list {
 public:
  using vector = std::vector<xvar>;  ///< The vector inside.
  using value_type = xvar;
  using size_type = vector::size_type;
  using iterator = vector::iterator;
  using const_iterator = vector::const_iterator;
  using const_reverse_iterator = vector::const_reverse_iterator;
  using allocator_type = vector::allocator_type;

  /// Empty.
  list() noexcept;
  list(const list& other);
  list(list&& other) noexcept;
  /// Holds the values in their order. For a copy write `list(other)`: what `list{other}` makes, a copy or a
  /// list that holds `other`, differs between compilers.
  list(std::initializer_list<xvar> values);
  virtual ~list();

  /// Replaces all elements. `other` may be inside one of them.
  const list& operator=(const list& other);
  const list& operator=(list&& other) noexcept;
  /// Replaces all elements by copies of the values.
  const list& operator=(const vector& values);
  const list& operator=(std::initializer_list<xvar> values);
  /// Takes the list that `value` holds; any other kind leaves this list empty.
  const list& operator=(const xvar& value);

  /// An xvar that holds a copy of this list (or takes it over).
  operator xvar() const&;
  operator xvar() &&;

  /// The vector inside, for reading: its elements live as long as this list's do.
  const vector& get_soul() const noexcept { return soul_; }
  operator const vector&() const noexcept { return soul_; }

  /// As the operations of std::vector.
  size_type size() const noexcept { return soul_.size(); }
  size_type max_size() const noexcept { return soul_.max_size(); }
  size_type capacity() const noexcept { return soul_.capacity(); }
  [[nodiscard]] bool empty() const noexcept { return soul_.empty(); }
  void reserve(unsigned long count) { soul_.reserve(count); }
  /// Throws std::length_error beyond what an unsigned long holds.
  template <detail::wider_than_ulong N>
  void reserve(N count) {
    reserve(detail::checked_ulong(count));
  }
  void resize(unsigned long long count, const xvar& value = xvar()) { soul_.resize(count, value); }
  void shrink_to_fit() { soul_.shrink_to_fit(); }
  void clear() noexcept { soul_.clear(); }
  /// `other` must not be inside one of the elements: nothing would hold them any more.
  void swap(vector& other) noexcept { soul_.swap(other); }
  void swap(list& other) noexcept { soul_.swap(other.soul_); }
  /// Replaces all elements. What they are made of may be inside of them.
  void assign(size_type count, const xvar& value) {
    vector made(count, value);
    soul_.swap(made);
  }
  template <std::input_iterator I>
  void assign(I first, I last) {
    vector made(first, last);
    soul_.swap(made);
  }
  void push_back(const xvar& value) { soul_.push_back(value); }
  void push_back(xvar&& value) { soul_.push_back(std::move(value)); }
  template <class... Args>
  xvar& emplace_back(Args&&... args) {
    return soul_.emplace_back(std::forward<Args>(args)...);
  }
  void pop_back() { soul_.pop_back(); }
  /// Where the new element is.
  /// @quirk Where there is room, the elements behind move up by assignment, so what is inserted before the
  /// end, and what moves, has qualities of the element whose place it takes (see xvar).
  iterator insert(const_iterator where, const xvar& value) { return soul_.insert(where, value); }
  /// The iterators may be this list's.
  template <std::input_iterator I>
  iterator insert(const_iterator where, I first, I last) {
    vector made(first, last);
    return soul_.insert(where, std::make_move_iterator(made.begin()), std::make_move_iterator(made.end()));
  }
  template <class... Args>
  iterator emplace(const_iterator where, Args&&... args) {
    return soul_.emplace(where, std::forward<Args>(args)...);
  }
  /// The element behind the removed ones, or end(). The elements behind move down by assignment, which merges
  /// qualities (see xvar).
  iterator erase(const_iterator where) { return soul_.erase(where); }
  iterator erase(const_iterator first, const_iterator last) { return soul_.erase(first, last); }

  /// As the operations of std::vector; front() and back() ask for a list that is not empty.
  xvar& front() { return soul_.front(); }
  const xvar& front() const { return soul_.front(); }
  xvar& back() { return soul_.back(); }
  const xvar& back() const { return soul_.back(); }
  xvar* data() noexcept { return soul_.data(); }
  const xvar* data() const noexcept { return soul_.data(); }
  iterator begin() noexcept { return soul_.begin(); }
  iterator end() noexcept { return soul_.end(); }
  const_iterator begin() const noexcept { return soul_.begin(); }
  const_iterator end() const noexcept { return soul_.end(); }
  const_iterator cbegin() const noexcept { return soul_.cbegin(); }
  const_iterator cend() const noexcept { return soul_.cend(); }
  const_reverse_iterator crbegin() const noexcept { return soul_.crbegin(); }
  const_reverse_iterator crend() const noexcept { return soul_.crend(); }
  allocator_type get_allocator() const noexcept { return soul_.get_allocator(); }

  /// The index is not checked.
  xvar& operator[](const unsigned long long& index) { return soul_[index]; }
  const xvar& operator[](const unsigned long long& index) const { return soul_[index]; }
  /// Throws std::out_of_range ("invalid vector subscript"; the detail of exc::MissingElement is the index)
  /// when `index` is not below size().
  const xvar& at(unsigned long index) const;
  template <detail::wider_than_ulong N>
  const xvar& at(N index) const {
    return checked(static_cast<unsigned long long>(index));
  }

  /// Appends a copy of the value.
  const list& operator+=(const xvar& value);

  /// Appends a null element.
  list& operator++();
  /// Removes the last element; nothing happens on an empty list.
  list& operator--();

  /// Appends an element that holds an empty value of the kind (on_back(): a null one) and gives what is
  /// inside it, for writing. The reference is valid until the list reallocates.
  xvar& on_back();
  list& on_back_list();
  bundle& on_back_bundle();
  binary& on_back_binary();
  memo& on_back_memo();
  std::wstring& on_back_string();

  /// The last element; the list must not be empty.
  xvar& hack_back() { return soul_.back(); }
  xvar* hack_back_ptr() { return &soul_.back(); }

  /// Removes the element; the index is not checked. Gives the one behind it, or end(). Elements move down by
  /// assignment, so an element keeps the qualities of the one it replaces that it lacks itself.
  iterator remove(unsigned long long index);

  /// What std::stable_sort, std::remove_if, std::unique and std::rotate do, for whole elements: each keeps
  /// its own value and qualities, and gets no others. Iterators and references stay valid, but for those of
  /// places that go away at the end. The rules are called on const elements before the first one moves: when
  /// one throws, or memory fails, the list is as it was.
  /// @quirk The algorithms of the standard library assign elements to each other, which merges qualities (see
  /// xvar): what std::sort and its like leave has qualities of other elements.
  ///
  /// Stable, by `<` of the values (the order of texts: 10 comes before 9) or by `less`. An order that
  /// contradicts itself gives some order. n log n comparisons, memory for two indexes an element.
  void sort();
  template <std::predicate<const xvar&, const xvar&> Less>
  void sort(Less less) {
    sort_by([](void* given, const xvar& a,
               const xvar& b) { return static_cast<bool>(std::invoke(*static_cast<Less*>(given), a, b)); },
            std::addressof(less));
  }
  /// Removes the elements for which `goes` is true; it is asked once for each, in their order. Those that
  /// stay keep their order. Gives how many went.
  template <std::predicate<const xvar&> Goes>
  size_type remove_if(Goes goes) {
    return remove_those(
        [](void* given, const xvar& element) {
          return static_cast<bool>(std::invoke(*static_cast<Goes*>(given), element));
        },
        std::addressof(goes));
  }
  /// Of elements in a row that are equal leaves the first; gives how many went. Equal are those with the same
  /// kind and value, whatever their qualities, or those that `equal` says.
  size_type unique();
  template <std::predicate<const xvar&, const xvar&> Equal>
  size_type unique(Equal equal) {
    const xvar* kept = nullptr;
    return remove_if([&](const xvar& element) {
      if (kept && std::invoke(equal, *kept, element)) return true;
      kept = &element;
      return false;
    });
  }
  /// Makes `first` the first element: those before it go behind the last one. Gives where the element is that
  /// was the first; end() when `first` was it already, begin() for end().
  iterator rotate(const_iterator first) noexcept;

  /// "[" elements joined by "," "]": texts quoted with quotes escaped, null as nothing, qualities after their
  /// element.
  /// @quirk Nothing separates two qualities: `[1{"atributos":"q":"a""r":2}]`.
  std::wstring to_string() const;
  /// 'a','b': the trimmed texts in single quotes.
  /// @quirk Quotes inside are neither escaped nor doubled: the values must be safe.
  std::wstring to_texto_sql() const;
  /// 1,2: the trimmed texts of the elements that are or can be numbers.
  /// @quirk The comma is written before the question is asked: "1,,2" for 1, "x", 2.
  std::wstring to_numeric_sql() const;

  /// Compares by to_string().
  /// @quirk As texts 1 and 1u are equal, and 10 comes before 9.
  bool operator==(const list& other) const;
  bool operator!=(const list& other) const { return !(*this == other); }
  bool operator<(const list& other) const;

 private:
  const xvar& checked(unsigned long long index) const;
  void sort_by(bool (*before)(void* given, const xvar& a, const xvar& b), void* given);
  size_type remove_those(bool (*goes)(void* given, const xvar& element), void* given);

  vector soul_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const list& value);

}  // namespace ruvo

#include <ruvo/names_back.hpp>
