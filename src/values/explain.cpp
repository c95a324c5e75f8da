#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <string>
#include <string_view>

#include "texto/utf.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;

namespace {

const wchar_t* noun_of(kind k) noexcept {
  switch (k) {
    case kind::null:
      return L"nulo";
    case kind::boolean:
      return L"un valor lógico";
    case kind::wide_char:
      return L"un carácter";
    case kind::float_:
    case kind::double_:
      return L"un número decimal";
    case kind::date:
      return L"una fecha";
    case kind::time:
      return L"una hora";
    case kind::datetime:
      return L"una fecha con hora";
    case kind::small_text:
    case kind::text:
    case kind::string_text:
      return L"un texto";
    case kind::binary:
      return L"un binario";
    case kind::memo:
      return L"un memo";
    case kind::object:
      return L"un objeto";
    case kind::list:
      return L"una lista";
    case kind::bundle:
      return L"un bundle";
    default:
      return L"un número entero";
  }
}

/// A part of a path between quotes; of a long one the beginning.
std::wstring quoted(std::wstring_view part) {
  constexpr std::size_t most = 60;
  std::wstring out = L"«";
  out += part.substr(0, most);
  if (part.size() > most) {
    if ((static_cast<char16_t>(out.back()) & 0xFC00) == 0xD800) out.pop_back();
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
    return where() + L" es " + noun_of(cell::kind_of(*value_)) + L": la ruta sólo sigue por un bundle.";
  }

 private:
  std::wstring_view part() const noexcept { return path_.substr(begin_, end_ - begin_); }

  /// False when the path ends here.
  bool step() {
    if (number_ > 0) begin_ = end_ + 1;
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

  /// A key with the separator, or with a capital that paths fold and operator[] does not.
  std::wstring hint() const {
    const std::wstring_view rest = path_.substr(begin_);
    for (const std::wstring_view key : {part(), rest})
      if (find(detail::folded_key(key).view()))
        return L" Sí hay una clave " + quoted(key) + L", a la que sólo llega el operador [].";
    return {};
  }

  std::wstring_view path_;
  wchar_t separator_;
  detail::folded_path folded_;
  const bundle* in_;
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

/// The getters themselves say whether they give the fallback: two that differ come back as they were.
std::wstring conversions(const bundle& in, const std::wstring& path, char separator) {
  const long long whole = in.get_xlong(path, separator, 1);
  const double real = in.get_double(path, separator, 1);
  const bool reads[] = {whole == in.get_xlong(path, separator, 2), real == in.get_double(path, separator, 2),
                        in.get_boolean(path, false, separator) == in.get_boolean(path, true, separator)};
  std::wstring out = readings(reads);
  if (reads[0] && whole == 0) out += real == 0 ? L" Vale 0." : L" Como entero vale 0.";
  return out;
}

bool is_empty(const xvar& value) {
  if (cell::kind_of(value) == kind::bundle) return cell::as_bundle(value).empty();
  if (cell::kind_of(value) == kind::list) return cell::as_list(value).empty();
  return value.to_string().empty();
}

std::wstring explained(const bundle& in, const std::wstring& path, char separator) {
  const walk walked(in, path, static_cast<wchar_t>(static_cast<unsigned char>(separator)));
  const xvar* const value = walked.found();
  if (!value) return walked.failure();
  std::wstring out = walked.where() + L" es " + noun_of(cell::kind_of(*value)) + L".";
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

}  // namespace ruvo
