// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::binary, a buffer of bytes that knows its text forms.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// Owns its bytes; copies copy them.
class KESTA_API binary {
 public:
  using store_type = std::vector<unsigned char>;  ///< The vector inside.
  using value_type = unsigned char;
  using size_type = store_type::size_type;
  using difference_type = store_type::difference_type;
  using reference = store_type::reference;
  using const_reference = store_type::const_reference;
  using iterator = store_type::iterator;
  using const_iterator = store_type::const_iterator;
  using allocator_type = store_type::allocator_type;

  /// No bytes.
  binary() noexcept;
  binary(const binary& other);
  binary(binary&& other) noexcept;
  ~binary();
  /// That many zero bytes.
  explicit binary(unsigned long long count);
  template <std::integral T>
  explicit binary(T count) : binary(static_cast<unsigned long long>(count)) {}
  /// A copy of the bytes.
  binary(const std::vector<unsigned char>& bytes);
  binary(const std::wstring& text);           ///< The UTF-8 bytes of the text.
  binary(const wchar_t* text);                ///< The same; null gives no bytes.
  binary(const std::string& bytes);           ///< All of them, zero bytes too.
  binary(const char* bytes);                  ///< Up to the first zero byte; null gives no bytes.
  binary(const std::ostringstream& stream);   ///< What the stream has collected.
  binary(const std::wostringstream& stream);  ///< The same, as UTF-8.
  explicit binary(const memo& text);          ///< The UTF-8 bytes of the text.

  binary& operator=(const binary& other);
  binary& operator=(binary&& other) noexcept;
  /// As the constructors.
  const binary& operator=(unsigned long long count);
  template <std::integral T>
  const binary& operator=(T count) {
    return *this = static_cast<unsigned long long>(count);
  }
  const binary& operator=(const std::vector<unsigned char>& bytes);
  const binary& operator=(const std::wstring& text);
  const binary& operator=(const wchar_t* text);
  const binary& operator=(const std::string& bytes);
  const binary& operator=(const char* bytes);
  const binary& operator=(const std::ostringstream& stream);
  const binary& operator=(const std::wostringstream& stream);
  const binary& operator=(const memo& text);

  /// Appends the byte.
  binary& operator+=(const unsigned char& byte);
  /// Appends the low byte of each unit.
  /// @quirk The high byte is dropped: this serves single-byte text.
  binary& operator+=(const wchar_t& unit);
  binary& operator+=(const std::wstring& text);
  /// Any other integer or character: its low byte.
  template <std::integral T>
  binary& operator+=(T byte) {
    return *this += static_cast<unsigned char>(byte);
  }

  /// The bytes; valid until this object goes.
  const std::vector<unsigned char>& get_store() const noexcept { return store_; }
  operator const std::vector<unsigned char>&() const noexcept { return store_; }
  operator std::vector<unsigned char>&() noexcept { return store_; }

  /// As the operations of std::vector; length() is size().
  size_type size() const noexcept { return store_.size(); }
  size_type length() const noexcept { return store_.size(); }
  size_type capacity() const noexcept { return store_.capacity(); }
  size_type max_size() const noexcept { return store_.max_size(); }
  bool empty() const noexcept { return store_.empty(); }
  void shrink_to_fit() { store_.shrink_to_fit(); }
  iterator begin() noexcept { return store_.begin(); }
  iterator end() noexcept { return store_.end(); }
  const_iterator begin() const noexcept { return store_.begin(); }
  const_iterator end() const noexcept { return store_.end(); }
  const_iterator cbegin() const noexcept { return store_.cbegin(); }
  const_iterator cend() const noexcept { return store_.cend(); }
  store_type::const_reverse_iterator crbegin() const noexcept { return store_.crbegin(); }
  store_type::const_reverse_iterator crend() const noexcept { return store_.crend(); }
  allocator_type get_allocator() const noexcept { return store_.get_allocator(); }
  iterator erase(const_iterator at) { return store_.erase(at); }
  iterator erase(const_iterator first, const_iterator last) { return store_.erase(first, last); }
  iterator insert(const_iterator at, const unsigned char& byte) { return store_.insert(at, byte); }
  iterator insert(const_iterator at, size_type count, const unsigned char& byte) {
    return store_.insert(at, count, byte);
  }
  iterator insert(const_iterator at, std::initializer_list<unsigned char> bytes) {
    return store_.insert(at, bytes);
  }
  template <class InputIterator>
  requires(!std::integral<InputIterator>) iterator
      insert(const_iterator at, InputIterator first, InputIterator last) {
    const store_type made(first, last);  // the iterators may be this object's
    return store_.insert(at, made.begin(), made.end());
  }
  template <class... Args>
  iterator emplace(const_iterator at, Args&&... args) {
    return store_.emplace(at, std::forward<Args>(args)...);
  }

  /// Whether size and bytes are the same.
  bool operator==(const binary& other) const noexcept { return store_ == other.store_; }
  bool operator!=(const binary& other) const noexcept { return store_ != other.store_; }
  /// Lexicographic on the unsigned bytes.
  bool operator<(const binary& other) const noexcept { return compare(other) < 0; }
  /// Negative, 0 or positive; lexicographic on the unsigned bytes.
  int compare(const binary& other) const noexcept;

  /// The text of the bytes, one unit per byte, if they look like text; else their Base64 form. Bytes look
  /// like text when there is no control byte but TAB, LF and CR, or when they are an even number and hold no
  /// surrogate as little-endian units. No bytes, or one zero byte, give the empty text.
  /// @quirk Bytes are never decoded here, neither as UTF-8 nor as UTF-16: utf16le_to_string() does the
  /// latter.
  std::wstring to_string() const;
  /// The bytes read as little-endian units; an odd last byte is ignored.
  std::wstring utf16le_to_string() const;
  /// Whether more than four fifths of the units have a zero high byte.
  bool is_likely_utf16le() const noexcept;

  /// Two upper-case hexadecimal digits a byte.
  std::wstring getAsHex() const;
  /// RFC 4648, padded, in the standard or the URL-safe alphabet.
  std::wstring getAsB64(bool url = false) const;
  /// Replaces the bytes by those that the text holds. Blanks are skipped; Base64 may be in either alphabet
  /// and need not be padded. A malformed text leaves no bytes and copies exc::BadFormat (0xEBB8000A) to
  /// `*error`, if there is one; on success `*error` is not touched.
  binary& setAsHex(const std::wstring& text, exception* error = nullptr);
  binary& setAsHex(const std::string& text, exception* error = nullptr);
  binary& setAsB64(const std::wstring& text, exception* error = nullptr);
  binary& setAsB64(const std::string& text, exception* error = nullptr);

 private:
  /// Removes the zero bytes at the end.
  void pop_zeros() noexcept;

  std::vector<unsigned char> store_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const binary& value);

}  // namespace ruvo

#include <ruvo/names_back.hpp>
