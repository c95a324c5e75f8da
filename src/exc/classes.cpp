// SPDX-License-Identifier: BSL-1.0

// The classes of errors that their rows in the catalogue say all of.

#include "exc/classes.hpp"

#include <ruvo/exc.hpp>

#include <algorithm>
#include <string>
#include <string_view>

namespace ruvo {

namespace detail {

namespace {

constexpr bool has_the_range_of_its_family(const error_row& row) {
  return std::ranges::all_of(errors, [&row](const error_row& family) {
    return family.shape != error_shape::family || family.name != row.base || family.range == row.range;
  });
}
static_assert(std::ranges::all_of(errors, has_the_range_of_its_family));
static_assert(std::ranges::is_sorted(errors, {}, &error_row::code));

/// What the constructor of the base takes: general errors have none between them and ruvo::exception.
constexpr unsigned long in_base(const error_row* row) {
  return row->is_general() ? row->code() : row->number;
}

}  // namespace

std::wstring filled(std::wstring_view text, std::initializer_list<std::wstring_view> arguments) {
  std::size_t size = text.size();
  for (const std::wstring_view argument : arguments) size += argument.size();
  std::wstring out;
  out.reserve(size);
  for (std::size_t mark; (mark = text.find(L'%')) != text.npos; text.remove_prefix(mark + 2)) {
    out.append(text.substr(0, mark)).append(arguments.begin()[text[mark + 1] - L'1']);
  }
  return out.append(text);
}

}  // namespace detail

namespace exc {

using detail::decimal;
using detail::error_class;
using detail::filled;
using detail::in_base;
using detail::text_of;

#define KESTA_EXC_MAKE(name, base, shape, parameters, then, ...)   \
  KESTA_EXC_ROW(name, shape)                                       \
  name::name parameters : base(in_base(rows::name), __VA_ARGS__) { \
    error_class::mark(*this, rows::name);                          \
    then;                                                          \
  }                                                                \
  name::~name() = default;

#define KESTA_EXC_own(name, base)
#define KESTA_EXC_family(name, base)
#define KESTA_EXC_place(name, base)
#define KESTA_EXC_plain(name, base) KESTA_EXC_MAKE(name, base, plain, (), , std::wstring(rows::name->text))
#define KESTA_EXC_path(name, base)                                                \
  KESTA_EXC_MAKE(name, base, path, (const file& path), set_detail(text_of(path)), \
                 filled(rows::name->text, {text_of(path)}))
#define KESTA_EXC_named(name, base)                                                     \
  KESTA_EXC_MAKE(name, base, named, (const std::wstring& subject), set_detail(subject), \
                 filled(rows::name->text, {subject}))
#define KESTA_EXC_knot(name, base)                                                         \
  KESTA_EXC_MAKE(name, base, knot, (unsigned long long position, unsigned long long knot), \
                 error_class::set_position(*this, position),                               \
                 filled(rows::name->text, {decimal(position), decimal(knot)}))
#define KESTA_EXC_message(name, base) \
  KESTA_EXC_MAKE(name, base, message, (const std::wstring& message), , message)
#define KESTA_EXC_windows(name, base)                                                                        \
  KESTA_EXC_MAKE(name, base, windows, (const std::wstring& message, unsigned long windows_error), , message, \
                 windows_error)

#define KESTA_ERROR(name, base, range, number, shape, text) KESTA_EXC_##shape(name, base)
#include <ruvo/exc_catalogue.hpp>

}  // namespace exc

}  // namespace ruvo
