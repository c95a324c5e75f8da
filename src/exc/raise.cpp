// A failure thrown as its own class again.

#include <ruvo/file.hpp>

#include <new>
#include <type_traits>

#include "exc/classes.hpp"

namespace ruvo {

namespace {

using detail::error_id;

/// An object of the class, whatever it says.
template <class Class>
Class blank() {
  using text = std::wstring;
  if constexpr (std::is_default_constructible_v<Class>)
    return Class();
  else if constexpr (std::is_constructible_v<Class, text>)
    return Class(text());
  else if constexpr (std::is_constructible_v<Class, const std::exception*>)
    return Class(static_cast<const std::exception*>(nullptr));
  else if constexpr (std::is_constructible_v<Class, int>)
    return Class(0);
  else if constexpr (std::is_constructible_v<Class, int, int>)
    return Class(0, 0);
  else if constexpr (std::is_constructible_v<Class, text, int>)
    return Class(text(), 0);
  else if constexpr (std::is_constructible_v<Class, int, text>)
    return Class(0, text());
  else
    return Class(0, text(), 0);
}

template <class Class>
void raise_as(const exception& failure) {
  Class own = blank<Class>();
  static_cast<exception&>(own) = failure;
  throw own;
}

namespace classes {
using namespace exc;
using Incorrect = exception;
}  // namespace classes

constexpr void (*raisers[])(const exception&) = {raise_as<exception>, raise_as<kesta::exception>,
#define KESTA_EXC_RAISER(name, ...) raise_as<classes::name>,
                                                 KESTA_EXC_EVERY(KESTA_EXC_RAISER)
#undef KESTA_EXC_RAISER
};

namespace ranges {
#define KESTA_EXC_RANGE(name, range) constexpr unsigned long name = range;
KESTA_EXC_FAMILIES(KESTA_EXC_RANGE)
#undef KESTA_EXC_RANGE
}  // namespace ranges

constexpr unsigned long general = 0xEBB80000, module = 0xEBB90000;

struct row {
  unsigned long code;
  error_id id, base;
};

// clang-format off
constexpr row rows[] = {
#define ROW(name, number, message) {general + number, error_id::name, error_id::none},
  KESTA_EXC_GENERAL(ROW)
  KESTA_EXC_GENERAL_TOLD(ROW)
#undef ROW
#define ROW(name, message) {module + ranges::name * 1000 + 1, error_id::name, error_id::name},
  KESTA_EXC_UNDETERMINED(ROW)
#undef ROW
#define ROW(name, number, message) {module + ranges::name * 1000 + number, error_id::name, error_id::name},
  KESTA_EXC_CONSOLE(ROW)
#undef ROW
#define ROW(name, family, number, ...) \
  {module + ranges::family * 1000 + number, error_id::name, error_id::family},
  KESTA_EXC_PLAIN(ROW)
  KESTA_EXC_FILE(ROW)
  KESTA_EXC_NAMED(ROW)
  KESTA_EXC_NUMBERED(ROW)
  KESTA_EXC_KNOT(ROW)
  KESTA_EXC_MESSAGE(ROW)
  KESTA_EXC_PLACES(ROW)
  KESTA_EXC_WINDOWS(ROW)
#undef ROW
#define ROW(name, range, number, message) {module + range * 1000 + number, error_id::name, error_id::module_error},
  KESTA_EXC_ACTION(ROW)
#undef ROW
};
// clang-format on

/// The family of a range.
error_id family_of(unsigned long range) {
  switch (range) {
#define KESTA_EXC_FAMILY(name, range) \
  case range:                         \
    return error_id::name;
    KESTA_EXC_FAMILIES(KESTA_EXC_FAMILY)
#undef KESTA_EXC_FAMILY
    default:
      return error_id::module_error;
  }
}

/// The class that alone has the code, else what those have in common that have it.
error_id class_of(const exception& failure) {
  const row* found = nullptr;
  error_id id = error_id::none;
  for (const row& r : rows) {
    if (failure != r.code) continue;
    const bool is_relative = found && found->base == r.base;
    id = !found ? r.id : is_relative ? r.base : error_id::module_error;
    found = &r;
  }
  if (found) return id;
  return (failure.get_raw_code() & 0xFFFF0000) == module ? family_of(failure.get_rango()) : error_id::none;
}

}  // namespace

void exception::raise() const {
  const error_id made_as = detail::error_class::of(*this);
  const error_id id = made_as == error_id::none ? class_of(*this) : made_as;
  try {
    raisers[static_cast<std::uint32_t>(id)](*this);
  } catch (const std::bad_alloc&) {  // no memory for an object of the class
  }
  throw exception(*this);
}

}  // namespace ruvo
