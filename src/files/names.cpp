// Names for files that do not exist yet.

#include "files/names.hpp"

#include <ruvo/files/whole.hpp>

#include <utility>

#include "files/platform.hpp"
#include "texto/numbers.hpp"

namespace ruvo::files {

namespace {

/// "_%02d"
std::wstring counter(unsigned number) {
  std::wstring out(number < 10 ? L"_0" : L"_");
  texto::append_unsigned(out, number);
  return out;
}

/// The first of the names made with a counter that is free.
template <class Name>
file first_free(Name name) {
  for (unsigned number = 1;; ++number) {
    file candidate = name(counter(number));
    if (!candidate.exists()) return candidate;
  }
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
  return first_free([&](const std::wstring& count) {
    return sibling(path, prefix + simple_name + suffix + count + extension);
  });
}

file get_temporal_file(file folder, std::wstring prefix, std::wstring name, std::wstring extension) {
  const std::wstring start = prefix + name;
  const std::wstring end = extension.empty() || extension.starts_with(L'.') ? extension : L'.' + extension;
  return first_free([&](const std::wstring& count) { return file(folder, start + count + end); });
}

file get_temporal_file(std::wstring prefix, std::wstring name, std::wstring extension) {
  return get_temporal_file(file(platform::temporary_folder()), std::move(prefix), std::move(name),
                           std::move(extension));
}

}  // namespace ruvo::files
