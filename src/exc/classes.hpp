#pragma once

// Which class of ruvo::exc a failure was made as: a number that goes along with its copies.

#include <ruvo/exc.hpp>

#include <cstdint>

/// X(class, ...) for every class of errors. One of them, Incorrect, is none: nobody has its number.
#define KESTA_EXC_EVERY(X)  \
  KESTA_EXC_GENERAL(X)      \
  KESTA_EXC_GENERAL_TOLD(X) \
  KESTA_EXC_FAMILIES(X)     \
  KESTA_EXC_PLAIN(X)        \
  KESTA_EXC_FILE(X)         \
  KESTA_EXC_NAMED(X)        \
  KESTA_EXC_NUMBERED(X)     \
  KESTA_EXC_KNOT(X)         \
  KESTA_EXC_ACTION(X)       \
  KESTA_EXC_MESSAGE(X)      \
  KESTA_EXC_WINDOWS(X)      \
  X(invocaError)

namespace ruvo::detail {

enum class error_id : std::uint32_t {
  none,
  module_error,  // kesta::exception
#define KESTA_EXC_ID(name, ...) name,
  KESTA_EXC_EVERY(KESTA_EXC_ID)
#undef KESTA_EXC_ID
};

struct error_class {
  static void mark(exception& error, error_id id) noexcept { error.class_ = static_cast<std::uint32_t>(id); }
  static error_id of(const exception& error) noexcept { return static_cast<error_id>(error.class_); }
};

}  // namespace ruvo::detail

/// In the bodies of the constructors of the class.
#define KESTA_EXC_MARK(name) ::ruvo::detail::error_class::mark(*this, ::ruvo::detail::error_id::name)
