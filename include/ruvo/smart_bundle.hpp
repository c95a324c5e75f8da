// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smart_bundle, a handle of a bundle that it holds together with its copies, or that is somebody
// else's.
//
//   ruvo::bundle settings;
//   ruvo::smart_bundle user(&settings);               // refers to it
//   ruvo::smart_bundle own(ruvo::bundle{{L"a", 1}});  // holds it
//   user[L"b"] = own->get_long(L"a");

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/fwd.hpp>

#include <iosfwd>
#include <memory>
#include <string>
#include <utility>

namespace ruvo {

/// A bundle that it holds, together with all copies of the handle, or that it refers to and that has to live
/// as long as they are used; or nothing. What works on the bundle throws exc::NullPointer (raw 0xEBB80004)
/// when there is none.
///
/// A const handle reads and does not write, as a const bundle does; a copy of it writes. Threads may each
/// have a handle of one bundle, which itself has no lock.
class KESTA_API smart_bundle {
 public:
  using iterator = bundle::iterator;
  using const_iterator = bundle::const_iterator;
  using value_type = bundle::value_type;

  /// Without a bundle.
  smart_bundle() noexcept;
  /// Holds a copy of the bundle, or takes it over.
  explicit smart_bundle(const bundle& value);
  explicit smart_bundle(bundle&& value);
  /// Refers to the bundle, which stays whose it is; null is no bundle.
  explicit smart_bundle(bundle* target) noexcept;
  /// Holds it together with others; null is no bundle.
  explicit smart_bundle(std::shared_ptr<bundle> shared) noexcept;
  /// A handle of the same bundle.
  smart_bundle(const smart_bundle& other) noexcept;
  smart_bundle(smart_bundle&& other) noexcept;
  smart_bundle& operator=(const smart_bundle& other) noexcept;
  smart_bundle& operator=(smart_bundle&& other) noexcept;
  ~smart_bundle();

  /// A handle that holds a copy of the bundle; without a bundle when this one is.
  smart_bundle clone() const;

  /// Whether there is no bundle.
  bool is_null() const noexcept { return !target_; }
  bool operator!() const noexcept { return is_null(); }
  /// The bundle, or null.
  bundle* get() noexcept { return target_.get(); }
  const bundle* get() const noexcept { return target_.get(); }

  /// The bundle; throws exc::NullPointer when there is none.
  bundle& operator*() { return there(); }
  const bundle& operator*() const { return there(); }
  bundle* operator->() { return &there(); }
  const bundle* operator->() const { return &there(); }
  operator bundle&() { return there(); }
  operator const bundle&() const { return there(); }
  /// An xvar that holds a copy of the bundle. Explicit, so that an assignment to a bundle has one way:
  /// `value = handle` and `xvar(handle)` work.
  explicit operator xvar() const;

  /// What operator[] of the bundle gives: the value of a key, or the entry of a number.
  template <class Key>
  decltype(auto) operator[](Key&& key) {
    return there()[std::forward<Key>(key)];
  }
  template <class Key>
  decltype(auto) operator[](Key&& key) const {
    return static_cast<const bundle&>(there())[std::forward<Key>(key)];
  }

  /// The entries in the order of the folded keys.
  iterator begin() { return there().begin(); }
  iterator end() { return there().end(); }
  const_iterator begin() const { return there().cbegin(); }
  const_iterator end() const { return there().cend(); }
  const_iterator cbegin() const { return there().cbegin(); }
  const_iterator cend() const { return there().cend(); }

  /// The text of the bundle; empty when there is none.
  std::wstring to_string() const;
  /// Whether both have no bundle, or bundles that are equal.
  bool operator==(const smart_bundle& other) const;

 private:
  bundle& there() const;

  std::shared_ptr<bundle> target_;  // counts nothing where it is somebody else's
};

KESTA_API std::wostream& operator<<(std::wostream& out, const smart_bundle& value);

}  // namespace ruvo
