// SPDX-License-Identifier: BSL-1.0
#pragma once

// Values of classes that a var knows nothing about: colours, messages. They are held by copy, print their
// to_string(), and convert to nothing but texts and their own class.

#include <ruvo/var.hpp>

#include <string>
#include <typeinfo>

#include "memory/block_cache.hpp"
#include "values/cell.hpp"

namespace ruvo::detail {

/// What a cell of kind::object owns.
class object {
 public:
  virtual const std::type_info& type() const noexcept = 0;
  virtual std::wstring to_string() const = 0;
  virtual object* clone() const = 0;
  virtual void destroy() noexcept = 0;

 protected:
  ~object() = default;
};

template <class T>
class object_of final : public object {
 public:
  explicit object_of(const T& of) : value(of) {}

  const std::type_info& type() const noexcept override { return typeid(T); }
  std::wstring to_string() const override { return value.to_string(); }
  object* clone() const override { return make<object_of>(value); }
  void destroy() noexcept override { unmake(this); }

  const T value;
};

/// Makes a null var hold a copy of the value.
template <class T>
void set_object(var& v, const T& value) {
  cell::set_pointer<object>(v, kind::object, make<object_of<T>>(value));
}

/// The object of class T that the var holds, or null when the var is null. Throws std::bad_cast when it holds
/// anything else.
template <class T>
const T* object_in(const var& v) {
  if (v.is_null()) return nullptr;
  const object* const held = cell::kind_of(v) == kind::object ? cell::pointer<object>(v) : nullptr;
  if (!held || held->type() != typeid(T)) throw std::bad_cast();
  return &static_cast<const object_of<T>*>(held)->value;
}

}  // namespace ruvo::detail
