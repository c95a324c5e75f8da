// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::memo, a long text: a wide string of a kind of its own, so that it is distinguished from ordinary
// text.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <initializer_list>
#include <iosfwd>
#include <string>
#include <utility>

namespace ruvo {

/// Owns a std::wstring and has its operations. A var holds it as a kind of its own; it is written to JSON and
/// XML as a text.
class KESTA_API memo {
 public:
  using value_type = wchar_t;
  using size_type = std::wstring::size_type;
  using iterator = std::wstring::iterator;
  using const_iterator = std::wstring::const_iterator;
  using allocator_type = std::wstring::allocator_type;

  /// The empty text.
  memo() noexcept;
  memo(const memo& other);
  memo(memo&& other) noexcept;
  ~memo();
  /// Holds the text.
  memo(const std::wstring& text);
  memo(std::wstring&& text) noexcept;
  memo(const wchar_t* text);      ///< Null gives the empty text.
  memo(const std::string& text);  ///< From UTF-8.
  memo(const char* text);         ///< From UTF-8; null gives the empty text.
  memo(const binary& bytes);      ///< Its to_string().

  memo& operator=(const memo& other);
  memo& operator=(memo&& other) noexcept;
  /// As the constructors.
  memo& operator=(const std::wstring& text);
  memo& operator=(std::wstring&& text) noexcept;
  memo& operator=(const wchar_t* text);
  memo& operator=(const std::string& text);
  memo& operator=(const char* text);
  memo& operator=(const binary& bytes);

  /// The UTF-8 bytes of the text.
  operator binary() const;
  /// The text inside, valid until this object changes or goes.
  operator const std::wstring&() const noexcept { return text_; }
  const std::wstring& to_string() const noexcept { return text_; }
  const wchar_t* c_str() const noexcept { return text_.c_str(); }

  /// By code unit, as std::wstring compares.
  bool operator==(const memo& other) const noexcept { return text_ == other.text_; }
  bool operator<(const memo& other) const noexcept { return text_ < other.text_; }

  /// As the operations of std::wstring.
  size_type size() const noexcept { return text_.size(); }
  size_type length() const noexcept { return text_.size(); }
  size_type capacity() const noexcept { return text_.capacity(); }
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
  iterator begin() noexcept { return text_.begin(); }
  iterator end() noexcept { return text_.end(); }
  const_iterator begin() const noexcept { return text_.begin(); }
  const_iterator end() const noexcept { return text_.end(); }
  const_iterator cbegin() const noexcept { return text_.cbegin(); }
  const_iterator cend() const noexcept { return text_.cend(); }
  std::wstring::const_reverse_iterator crbegin() const noexcept { return text_.crbegin(); }
  std::wstring::const_reverse_iterator crend() const noexcept { return text_.crend(); }
  allocator_type get_allocator() const noexcept { return text_.get_allocator(); }

  /// Every overload of the std::wstring operation, with its result.
  template <class... Args>
  decltype(auto) insert(Args&&... args) {
    return text_.insert(std::forward<Args>(args)...);
  }
  iterator insert(const_iterator where, std::initializer_list<wchar_t> units) {
    return text_.insert(where, units);
  }
  memo& insert(size_type index, std::initializer_list<wchar_t> units) {
    text_.insert(index, std::wstring(units));
    return *this;
  }
  template <class... Args>
  decltype(auto) erase(Args&&... args) {
    return text_.erase(std::forward<Args>(args)...);
  }
  template <class... Args>
  size_type find(Args&&... args) const {
    return text_.find(std::forward<Args>(args)...);
  }
  template <class... Args>
  size_type find_first_of(Args&&... args) const {
    return text_.find_first_of(std::forward<Args>(args)...);
  }
  template <class... Args>
  size_type find_first_not_of(Args&&... args) const {
    return text_.find_first_not_of(std::forward<Args>(args)...);
  }
  template <class... Args>
  size_type copy(Args&&... args) const {
    return text_.copy(std::forward<Args>(args)...);
  }
  template <class... Args>
  int compare(Args&&... args) const {
    return text_.compare(std::forward<Args>(args)...);
  }

 private:
  std::wstring text_;
};

/// Writes the text.
KESTA_API std::wostream& operator<<(std::wostream& out, const memo& value);

}  // namespace ruvo
