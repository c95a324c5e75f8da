// SPDX-License-Identifier: BSL-1.0

// What a path leads to and how the getters read it, in Spanish.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"
#include "values/kinds.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;

namespace {

const wchar_t* noun_of(const xvar& value) noexcept { return detail::traits_of(value).noun; }

/// A part of a path between quotes; of a long one the beginning.
std::wstring quoted(std::wstring_view part) {
  constexpr std::size_t most = 60;
  std::wstring out = L"«";
  out += part.substr(0, most);
  if (part.size() > most) {
    if (texto::is_high_surrogate(out.back())) out.pop_back();
    out += L"…";
  }
  return out + L"»";
}

/// Walks along a path as bundle::get_ptr does, and keeps where it stopped.
class walk {
 public:
  walk(const bundle& from, const std::wstring& path, wchar_t separator)
      : path_(path), separator_(separator), folded_(path), in_(&from) {
    while (step()) {
    }
  }

  /// The value at the end of the path, or null.
  const xvar* found() const noexcept { return last_ ? value_ : nullptr; }
  /// "«b» (parte 2 de la ruta)"
  std::wstring where() const {
    return quoted(part()) + L" (parte " + std::to_wstring(number_) + L" de la ruta)";
  }
  std::wstring failure() const {
    if (!value_) return where() + L" no existe." + hint();
    return where() + L" es " + noun_of(*value_) + L": la ruta sólo sigue por un bundle." + hint();
  }

 private:
  std::wstring_view part() const noexcept { return path_.substr(begin_, end_ - begin_); }

  /// False when the path ends here.
  bool step() {
    if (number_ > 0) begin_ = end_ + 1;
    way_.emplace_back(in_, begin_);
    ++number_;
    end_ = std::min(folded_.view().find(separator_, begin_), path_.size());
    last_ = end_ == path_.size();
    value_ = find(folded_.view().substr(begin_, end_ - begin_));
    if (last_ || !value_ || cell::kind_of(*value_) != kind::bundle) return false;
    in_ = &cell::as_bundle(*value_);
    return true;
  }

  const xvar* find(std::wstring_view folded) const {
    const detail::bundle_store* const store = detail::bundle_access::store(*in_);
    const bundle::entry* const entry = store ? store->find(detail::key_view(folded)) : nullptr;
    return entry ? &entry->second : nullptr;
  }

  /// Of the keys on the way that the path spells and does not reach, the one that goes furthest.
  std::wstring hint() const {
    const detail::folded_key folded(path_);
    std::wstring_view furthest;
    std::size_t end = 0;
    for (const auto& [in, begin] : way_) {
      for (const auto& [key, value] : *in) {
        if (begin + key.size() < end || !is_spelled(folded.view(), key, begin)) continue;
        furthest = path_.substr(begin, key.size());
        end = begin + key.size();
      }
    }
    if (furthest.empty()) return {};
    return L" Sí hay una clave " + quoted(furthest) + L", a la que sólo llega el operador [].";
  }
  /// Whether the key is what the path has from `begin` up to a separator or its end, and paths do not reach
  /// it: there is a separator inside, or a capital that paths fold and keys do not.
  bool is_spelled(std::wstring_view folded, std::wstring_view key, std::size_t begin) const noexcept {
    const std::wstring_view as_path = folded_.view().substr(begin);
    if (!folded.substr(begin).starts_with(key)) return false;
    if (as_path.size() > key.size() && as_path[key.size()] != separator_) return false;
    return !as_path.starts_with(key) || key.find(separator_) != key.npos;
  }

  std::wstring_view path_;
  wchar_t separator_;
  detail::folded_path folded_;
  const bundle* in_;
  std::vector<std::pair<const bundle*, std::size_t>> way_;  // where parts were looked for, where they begin
  const xvar* value_ = nullptr;
  std::size_t begin_ = 0, end_ = 0, number_ = 0;  // of the part looked at last
  bool last_ = false;
};

/// "Se lee como entero y decimal. No se lee como valor lógico."
std::wstring readings(const bool (&reads)[3]) {
  constexpr const wchar_t* names[] = {L"entero", L"decimal", L"valor lógico"};
  std::wstring out;
  for (const bool which : {true, false}) {
    std::wstring all;
    for (int n = 0; n < 3; ++n)
      if (reads[n] == which) all += (all.empty() ? L"" : L", ") + std::wstring(names[n]);
    if (!all.empty()) out += (which ? L" Se lee como " : L" No se lee como ") + all + L".";
  }
  return out;
}

/// " No cabe en long (da 0) ni en short (da 0)."
class misfits {
 public:
  void add(const wchar_t* type, const std::wstring& given) {
    text_ += (text_.empty() ? L" No cabe en " : L" ni en ") + (type + (L" (da " + given + L")"));
  }
  std::wstring text() const { return text_.empty() ? text_ : text_ + L"."; }

 private:
  std::wstring text_;
};

/// Of a value that reads as an integer.
void add_integers(misfits& out, const bundle& in, const std::wstring& path, char separator) {
  const long long whole = in.get_xlong(path, separator);
  const double real = in.get_double(path, separator);
  if (std::abs(real) >= texto::two_to_63 && real != static_cast<double>(whole))
    out.add(L"long long", std::to_wstring(whole));
  const long narrow = in.get_long(path, separator);
  if (narrow != whole) out.add(L"long", std::to_wstring(narrow));
  const short narrowest = in.get_short(path, separator);
  if (narrowest != whole) out.add(L"short", std::to_wstring(narrowest));
}

/// Of a value that reads as a number with a point.
void add_float(misfits& out, const bundle& in, const std::wstring& path, char separator) {
  const float narrow = in.get_float(path, separator);
  if (std::isinf(narrow)) {
    out.add(L"float", narrow < 0 ? L"-infinito" : L"infinito");
  } else if (narrow == 0 && in.get_double(path, separator) != 0) {
    out.add(L"float", L"0");
  }
}

/// The getters themselves say whether they give the fallback: two that differ come back as they were.
std::wstring conversions(const bundle& in, const std::wstring& path, char separator) {
  const long long whole = in.get_xlong(path, separator, 1);
  const double real = in.get_double(path, separator, 1);
  const bool reads[] = {whole == in.get_xlong(path, separator, 2), real == in.get_double(path, separator, 2),
                        in.get_boolean(path, false, separator) == in.get_boolean(path, true, separator)};
  std::wstring out = readings(reads);
  if (reads[0] && whole == 0) out += real == 0 ? L" Vale 0." : L" Como entero vale 0.";
  misfits narrow;
  if (reads[0]) add_integers(narrow, in, path, separator);
  if (reads[1]) add_float(narrow, in, path, separator);
  return out + narrow.text();
}

bool is_empty(const xvar& value) {
  if (cell::kind_of(value) == kind::bundle) return cell::as_bundle(value).empty();
  if (cell::kind_of(value) == kind::list) return cell::as_list(value).empty();
  return value.to_string().empty();
}

std::wstring explained(const bundle& in, const std::wstring& path, char separator) {
  const walk walked(in, path, texto::unit_of(separator));
  const xvar* const value = walked.found();
  if (!value) return walked.failure();
  std::wstring out = walked.where() + L" es " + noun_of(*value) + L".";
  if (value->is_null()) return out;
  if (is_empty(*value)) out += L" Está vacío.";
  return cell::is_container(*value) ? out : out + conversions(in, path, separator);
}

}  // namespace

std::wstring bundle::explain(const std::wstring& path, char separator) const noexcept {
  try {
    return explained(*this, path, separator);
  } catch (...) {
    return {};
  }
}

std::wstring bundle::explain(const std::string& path, char separator) const noexcept {
  try {
    return explained(*this, texto::to_utf_16(std::string_view(path)), separator);
  } catch (...) {
    return {};
  }
}
std::wstring bundle::explain(texto::either_view path, char separator) const noexcept {
  try {
    return explained(*this, detail::owned_text(path), separator);
  } catch (...) {
    return {};
  }
}

}  // namespace ruvo
