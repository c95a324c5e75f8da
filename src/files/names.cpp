// SPDX-License-Identifier: BSL-1.0

// Names for files that do not exist yet.

#include "files/names.hpp"

#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>

#include <utility>

#include "base/numbers.hpp"
#include "system/folder.hpp"

namespace ruvo::files {

namespace {

/// "_%02d"
std::wstring counter(unsigned number) {
  std::wstring out(number < 10 ? L"_0" : L"_");
  texto::append_unsigned(out, number);
  return out;
}

/// A free one of the names made with a counter; the one before it is taken. The first few are tried one by
/// one; of many that are taken not all are asked about.
template <class Name>
file free_one(Name name) {
  constexpr unsigned one_by_one = 8;
  unsigned taken = 0, number = 1;
  while (name(counter(number)).exists()) {
    taken = number;
    number = number < one_by_one ? number + 1 : number * 2;
  }
  while (number - taken > 1) {
    const unsigned middle = taken + (number - taken) / 2;
    (name(counter(middle)).exists() ? taken : number) = middle;
  }
  return name(counter(number));
}

}  // namespace

file sibling(const file& path, const std::wstring& name) {
  const std::wstring& text = path;
  return file(text.substr(0, text.size() - path.get_name().size()) + name);
}

file append(const file& path, const std::wstring& text) {
  return file(static_cast<const std::wstring&>(path) + text);
}

file autorename(const file& path, const std::wstring& prefix, const std::wstring& suffix) {
  const std::wstring name = path.get_name();
  const std::wstring simple_name = path.get_simple_name();
  const std::wstring extension = name.substr(simple_name.size());
  file wanted = sibling(path, prefix + simple_name + suffix + extension);
  if (!wanted.exists()) return wanted;
  return free_one([&](const std::wstring& count) {
    return sibling(path, prefix + simple_name + suffix + count + extension);
  });
}

file get_temporal_file(file folder, std::wstring prefix, std::wstring name, std::wstring extension) {
  const std::wstring start = prefix + name;
  const std::wstring end = extension.empty() || extension.starts_with(L'.') ? extension : L'.' + extension;
  return free_one([&](const std::wstring& count) { return file(folder, start + count + end); });
}

file get_temporal_file(std::wstring prefix, std::wstring name, std::wstring extension) {
  const file folder(platform::temporary_folder());
  if (folder.empty()) throw exc::fileNotFound(folder);
  return get_temporal_file(folder, std::move(prefix), std::move(name), std::move(extension));
}

}  // namespace ruvo::files
