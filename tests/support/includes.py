#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Finds names of the standard library in headers and sources that come with another name's header by accident.

    tests/support/includes.py    # in the project's folder; prints FILE: NAME wants <HEADER>

A file has the header of each name that the table knows, itself or through one of the project's headers that it
includes. The names are those that the project uses; what several headers promise counts by any of them.
"""

import re
import sys
from pathlib import Path

HEADERS = {
    "algorithm": r"(?:ranges::)?(?:min|max|clamp|sort|stable_sort|copy|copy_n|fill|fill_n|equal|mismatch|search|count|count_if"
                 r"|find|find_if|find_if_not|any_of|all_of|none_of|for_each|transform|replace|remove_if|unique|reverse"
                 r"|rotate|lower_bound|upper_bound|equal_range|binary_search|lexicographical_compare|is_sorted"
                 r"|max_element|min_element|adjacent_find)(?=\s*[(<])",
    "array": "array|to_array",
    "atomic": r"atomic|memory_order\w*",
    "bit": "bit_cast|countr_zero|countr_one|countl_zero|rotl|rotr|bit_width|popcount|endian|has_single_bit",
    "charconv": "from_chars|to_chars|chars_format",
    "chrono": "chrono",
    "cmath": "floor|ceil|round|fabs|abs|pow|isnan|isinf|isfinite|fmod|trunc|lround|llround|sqrt|signbit",
    "compare": "strong_ordering|weak_ordering|partial_ordering",
    "concepts": "integral|same_as|convertible_to|floating_point|derived_from|constructible_from|invocable",
    "condition_variable": "condition_variable",
    "cstddef cstring cstdlib cstdio ctime cwchar": "size_t",
    "cstddef": "ptrdiff_t|byte|nullptr_t|max_align_t",
    "cstdint": r"u?int(?:8|16|32|64|ptr)_t",
    "cstring": "memcpy|memmove|memset|memcmp|strlen",
    "ctime": "tm|time_t",
    "deque": "deque",
    "exception stdexcept new": "exception|exception_ptr|current_exception|rethrow_exception|make_exception_ptr|terminate",
    "functional": "function|less|greater|ranges::(?:greater|less|greater_equal|less_equal)|hash|ref|cref",
    "initializer_list string vector map set array deque": "initializer_list",
    "iterator string string_view vector array map set deque":
        r"back_inserter|begin|end|size|next|prev|distance|make_move_iterator|reverse_iterator|\w+_iterator_tag",
    "limits": "numeric_limits",
    "map": "map|multimap",
    "memory": "unique_ptr|shared_ptr|weak_ptr|make_unique|make_shared|addressof",
    "mutex": "mutex|lock_guard|scoped_lock|once_flag|call_once|unique_lock",
    "new": "bad_alloc|nothrow",
    "optional": "optional|nullopt",
    "iosfwd sstream": r"w?[io]?stringstream",
    "stdexcept": "runtime_error|logic_error|out_of_range|invalid_argument|length_error|range_error",
    "string": "w?string|u16string|to_w?string|char_traits|basic_string",
    "string_view": "w?string_view|u16string_view|basic_string_view",
    "system_error": "system_error|errc|error_code",
    "thread": "thread|this_thread",
    "type_traits": r"(?:is|make|remove|decay|enable|conditional|underlying|common|invoke)_\w+_[vt]|decay_t|type_identity_t",
    "typeinfo": "type_info|bad_cast",
    "utility": r"move|forward|swap|exchange|as_const|pair|make_pair|cmp_\w+|in_range",
    "vector": "vector",
}
NAMES = {wanted: re.compile(rf"\bstd::(?:{names})(?![\w:])") for wanted, names in HEADERS.items()}
INCLUDE = re.compile(r'^#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
NO_CODE = re.compile(r'//[^\n]*|"(?:\\.|[^"\\\n])*"')


def included(path):
    return set(INCLUDE.findall(path.read_text(encoding="utf-8"))) if path.is_file() else set()


def main():
    found = 0
    for path in sorted([*Path("include").rglob("*.hpp"), *Path("src").rglob("*.[ch]pp"), *Path("apps").rglob("*.[ch]pp")]):
        here = included(path)
        for header in [h for h in here if h.endswith(".hpp")]:
            here |= included(Path("include") / header) | included(Path("src") / header)
        code = NO_CODE.sub("", path.read_text(encoding="utf-8"))
        for wanted, names in NAMES.items():
            name = names.search(code)
            if name and not here & set(wanted.split()):
                print(f"{path}: {name[0]} wants <{wanted.split()[0]}>")
                found += 1
    sys.exit(found > 0)


if __name__ == "__main__":
    main()
