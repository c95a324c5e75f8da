// SPDX-License-Identifier: BSL-1.0

// The keyed record over its store: keys, paths and typed getters.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <algorithm>
#include <exception>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <typeinfo>

#include "base/ascii.hpp"
#include "base/find.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"

namespace ruvo {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::folded_key;
using detail::folded_path;
using detail::key_view;
using detail::kind;
using detail::owned_text;

namespace {

using texto::to_utf_16;
using texto::unit_of;

bundle::entry* find_folded(const bundle_store* store, std::wstring_view folded) {
  return store ? store->find(key_view(folded)) : nullptr;
}

/// The parts of a path, one after the other.
class path_parts {
 public:
  path_parts(std::wstring_view path, char separator) noexcept
      : at_(path.data()), end_(path.data() + path.size()), separator_(unit_of(separator)) {}

  std::wstring_view next() noexcept {
    const wchar_t* const from = at_;
    const wchar_t* const stop = texto::find_unit(from, end_, separator_);
    is_last_ = stop == end_;
    at_ = is_last_ ? stop : stop + 1;
    return {from, static_cast<std::size_t>(stop - from)};
  }
  /// Whether no part follows that which next() gave.
  bool is_last() const noexcept { return is_last_; }

 private:
  const wchar_t *at_, *end_;
  wchar_t separator_;
  bool is_last_ = false;
};

xvar& put_in(bundle& in, const key_view& key) { return bundle_access::made_store(in).put(key)->second; }

// What keys and paths of each type come to.

bundle::entry* seek_key(const bundle_store* in, std::wstring_view key) {
  return find_folded(in, folded_key(key).view());
}

const xvar& look_key(const bundle_store* in, std::wstring_view key) {
  const bundle::entry* const found = seek_key(in, key);
  if (!found) throw detail::missing_key(key);
  return found->second;
}

xvar& put_key(bundle& in, std::wstring_view key) { return put_in(in, key_view(folded_key(key))); }

const xvar* follow_path(const bundle_store* in, const std::wstring_view& path, char separator) {
  const folded_path folded(path);
  for (path_parts parts(folded.view(), separator);;) {
    const bundle::entry* const found = find_folded(in, parts.next());
    if (!found) return nullptr;
    if (parts.is_last()) return &found->second;
    if (cell::kind_of(found->second) != kind::bundle) return nullptr;
    in = bundle_access::store(cell::as_bundle(found->second));
  }
}

xvar& make_path(bundle& from, std::wstring_view path, char separator) {
  const folded_path folded(path, detail::units::owned);
  bundle* in = &from;
  for (path_parts parts(folded.view(), separator);;) {
    const std::wstring_view name = parts.next();
    const auto at = static_cast<std::size_t>(name.data() - folded.view().data());
    xvar& made = put_in(*in, key_view(name, folded.written().substr(at, name.size())));
    if (parts.is_last()) return made;
    in = &cell::on_bundle(made);
  }
}

}  // namespace

// --- entries

bundle::entry::entry(const entry& other) : first(other.first), second(other.second) {
  detail::retain(bundle_store::key_of(&other));
}

const std::wstring& bundle::entry::spelling() const noexcept {
  return bundle_store::key_of(this)->spelling();
}

bundle::entry::~entry() { detail::release(bundle_store::key_of(this)); }

bundle::entry* bundle::step(const bundle_store* store, const entry* at, std::size_t& rank,
                            bool forward) noexcept {
  return store ? store->step(at, rank, forward) : nullptr;
}

// --- construction and assignment

bundle::bundle() noexcept = default;
bundle::bundle(const bundle& other) : store_(other.empty() ? nullptr : detail::copy_store(*other.store_)) {}
bundle::bundle(bundle&& other) noexcept : store_(std::exchange(other.store_, nullptr)) {}

bundle::bundle(std::initializer_list<std::pair<std::wstring, xvar>> values) {
  bundle made;
  for (const auto& [key, value] : values) made[key] = value;
  std::swap(store_, made.store_);
}

bundle::~bundle() {
  if (store_) detail::drop_store(store_);
}

bundle& bundle::operator=(const bundle& other) { return this == &other ? *this : *this = bundle(other); }

bundle& bundle::operator=(bundle&& other) noexcept {
  bundle taken;  // `other` may be inside one of the entries that go now
  std::swap(taken.store_, other.store_);
  std::swap(taken.store_, store_);
  return *this;
}

bundle& bundle::operator=(const xvar& value) {
  return *this = cell::kind_of(value) == kind::bundle ? bundle(cell::as_bundle(value)) : bundle();
}

bundle::operator xvar() const& { return bundle(*this); }

bundle::operator xvar() && {
  xvar made;
  cell::set_box<bundle>(made, std::move(*this));
  return made;
}

// --- direct access

xvar& bundle::operator[](const std::wstring& key) { return put_key(*this, key); }
xvar& bundle::operator[](const std::string& key) { return (*this)[to_utf_16(key)]; }
xvar& bundle::operator[](const wchar_t* key) { return put_key(*this, texto::view_of(key)); }
xvar& bundle::operator[](const char* key) { return (*this)[std::string(key ? key : "")]; }
const xvar& bundle::operator[](const wchar_t* key) const { return look_key(store_, texto::view_of(key)); }
const xvar& bundle::operator[](const char* key) const { return at(std::string(key ? key : "")); }

const xvar& bundle::at(const std::wstring& key) const { return look_key(store_, key); }
const xvar& bundle::at(const std::string& key) const { return at(to_utf_16(key)); }

bundle::iterator bundle::nth(unsigned long long n) noexcept {
  return n < size() ? iterator(store_, store_->nth(static_cast<std::size_t>(n)), 0) : end();
}

const std::wstring& bundle::spelling(size_type n) const {
  if (n >= size()) throw std::out_of_range("invalid bundle position");
  return store_->nth(n)->spelling();
}

bundle::iterator bundle::find(const std::wstring& key) { return {store_, seek_key(store_, key), 0}; }
bundle::iterator bundle::find(const std::string& key) { return find(to_utf_16(key)); }
bundle::const_iterator bundle::find(const std::wstring& key) const {
  return const_cast<bundle*>(this)->find(key);
}
bundle::const_iterator bundle::find(const std::string& key) const { return find(to_utf_16(key)); }
bundle::size_type bundle::count(const std::wstring& key) const { return find(key) == end() ? 0 : 1; }
bundle::size_type bundle::count(const std::string& key) const { return count(to_utf_16(key)); }

bundle::size_type bundle::erase(const std::wstring& key) {
  entry* const found = seek_key(store_, key);
  if (found) store_->erase(found);
  return found ? 1 : 0;
}
bundle::size_type bundle::erase(const std::string& key) { return erase(to_utf_16(key)); }

bundle::iterator bundle::erase(const_iterator where) {
  iterator next(store_, where.at_, where.rank_);
  ++next;
  store_->erase(where.at_);
  return next;
}

void bundle::clear() noexcept {
  if (bundle_store* const store = bundle_access::detach(*this)) detail::drop_store(store);
}

bundle::size_type bundle::size() const noexcept { return store_ ? store_->size() : 0; }

void bundle::reserve(size_type count) {
  if (count > 0) bundle_access::made_store(*this, count).reserve(count);
}

bundle::iterator bundle::begin() noexcept { return {store_, store_ ? store_->first() : nullptr, 0}; }

// --- paths

const xvar* bundle::get_ptr(const std::wstring& path, char separator) const {
  return follow_path(store_, path, separator);
}

const xvar& bundle::get(const std::wstring& path, char separator) const {
  const xvar* const found = get_ptr(path, separator);
  if (!found) throw detail::no_entry(path);
  return *found;
}

bool bundle::has(const std::wstring& path, char separator) const {
  return get_ptr(path, separator) != nullptr;
}

xvar& bundle::hack(const std::wstring& path, char separator) { return make_path(*this, path, separator); }

xvar* bundle::hack_ptr(const std::wstring& path, char separator) { return &hack(path, separator); }

xvar& bundle::putOn(const std::wstring& path, const xvar& value, char separator) {
  xvar copy(value);  // `value` may be inside an entry that the way replaces
  xvar& to = hack(path, separator);
  to = std::move(copy);
  return to;
}

bundle& bundle::hack_bundle_on(const std::wstring& path, char separator) {
  return cell::on_bundle(hack(path, separator));
}
list& bundle::hack_list_on(const std::wstring& path, char separator) {
  return cell::on_list(hack(path, separator));
}
memo& bundle::hack_memo_on(const std::wstring& path, char separator) {
  return cell::on_memo(hack(path, separator));
}
std::wstring& bundle::hack_string_on(const std::wstring& path, char separator) {
  return cell::on_string(hack(path, separator));
}
binary& bundle::hack_binary_on(const std::wstring& path, char separator) {
  return cell::on_binary(hack(path, separator));
}

binary& bundle::hack_nc_binary_on(const std::wstring& path, const binary& initial, char separator) {
  binary copy(initial);
  binary& held = hack_binary_on(path, separator);
  if (held.empty()) held = std::move(copy);
  return held;
}

// --- typed getters

namespace {

/// The value converted, or the fallback where it can't be.
template <class T>
T number_or(const xvar* found, T fallback) {
  if (!found || !found->can_be_number()) return fallback;
  try {
    return static_cast<T>(*found);
  } catch (const std::bad_cast&) {
    return fallback;
  } catch (const std::out_of_range&) {
    return fallback;
  }
}

/// get_uxlong gives the unsigned reading through a signed result.
long long unsigned_or(const xvar* found, long long fallback) {
  return static_cast<long long>(number_or(found, static_cast<unsigned long long>(fallback)));
}

template <class T>
const T* object_in(const xvar* found, kind k) {
  return found && cell::kind_of(*found) == k ? cell::pointer<T>(*found) : nullptr;
}

const bundle* bundle_in(const xvar* found) {
  return found && cell::kind_of(*found) == kind::bundle ? &cell::as_bundle(*found) : nullptr;
}

const list* list_in(const xvar* found) {
  return found && cell::kind_of(*found) == kind::list ? &cell::as_list(*found) : nullptr;
}

bool truth_or(const xvar* found, bool fallback) {
  if (!found || !found->can_be_boolean()) return fallback;
  try {
    return static_cast<bool>(*found);
  } catch (const std::bad_cast&) {
    return fallback;
  }
}

std::wstring text_or(const xvar* found, const std::wstring& fallback) {
  return found && found->is_not_null() ? found->to_string() : fallback;
}

}  // namespace

// get_X and get_nc_X of a number by a path of each type.
#define KESTA_GETTERS_BY(Path, name, type, read)                               \
  type bundle::get_##name(Path path, char separator, type fallback) const {    \
    return read(get_ptr(path, separator), fallback);                           \
  }                                                                            \
  type bundle::get_nc_##name(Path path, type fallback, char separator) const { \
    const type value = get_##name(path, separator, fallback);                  \
    return value == 0 ? fallback : value;                                      \
  }
#define KESTA_GETTERS(name, type, read)                   \
  KESTA_GETTERS_BY(const std::wstring&, name, type, read) \
  KESTA_GETTERS_BY(const std::string&, name, type, read)  \
  KESTA_GETTERS_BY(texto::either_view, name, type, read)
KESTA_GETTERS(long, long, number_or)
KESTA_GETTERS(ulong, unsigned long, number_or)
KESTA_GETTERS(short, short, number_or)
KESTA_GETTERS(xlong, long long, number_or)
KESTA_GETTERS(uxlong, long long, unsigned_or)
KESTA_GETTERS(double, double, number_or)
KESTA_GETTERS(float, float, number_or)
#undef KESTA_GETTERS
#undef KESTA_GETTERS_BY

bool bundle::get_boolean(const std::wstring& path, bool fallback, char separator) const {
  return truth_or(get_ptr(path, separator), fallback);
}

std::wstring bundle::get_string(const std::wstring& path, char separator,
                                const std::wstring& fallback) const {
  return text_or(get_ptr(path, separator), fallback);
}

std::wstring bundle::get_nc_string(const std::wstring& path, const std::wstring& fallback,
                                   char separator) const {
  return get_nc_string(std::wstring_view(path), fallback, separator);
}

const binary& bundle::get_binary(const std::wstring& path, const binary& fallback, char separator) const {
  return get_binary(std::wstring_view(path), fallback, separator);
}

const memo& bundle::get_memo(const std::wstring& path, const memo& fallback, char separator) const {
  return get_memo(std::wstring_view(path), fallback, separator);
}

const bundle& bundle::get_bundle(const std::wstring& path, char separator) const {
  return get_bundle(std::wstring_view(path), separator);
}

const list& bundle::get_list(const std::wstring& path, char separator) const {
  return get_list(std::wstring_view(path), separator);
}

const bundle& bundle::get_nc_bundle(const std::wstring& path, const bundle& fallback, char separator) const {
  return get_nc_bundle(std::wstring_view(path), fallback, separator);
}

const list& bundle::get_nc_list(const std::wstring& path, const list& fallback, char separator) const {
  return get_nc_list(std::wstring_view(path), fallback, separator);
}

// --- keys and paths that are views

xvar& bundle::operator[](texto::either_view key) {
  return key.is_narrow() ? put_key(*this, to_utf_16(key.narrow())) : put_key(*this, key.wide());
}
const xvar& bundle::at(texto::either_view key) const {
  return key.is_narrow() ? look_key(store_, to_utf_16(key.narrow())) : look_key(store_, key.wide());
}
bundle::iterator bundle::find(texto::either_view key) {
  return {store_, key.is_narrow() ? seek_key(store_, to_utf_16(key.narrow())) : seek_key(store_, key.wide()),
          0};
}
bundle::size_type bundle::erase(texto::either_view key) {
  const iterator found = find(key);
  if (found == end()) return 0;
  erase(const_iterator(found));
  return 1;
}
const xvar* bundle::get_ptr(texto::either_view path, char separator) const {
  return path.is_narrow() ? follow_path(store_, to_utf_16(path.narrow()), separator)
                          : follow_path(store_, path.wide(), separator);
}
const xvar& bundle::get(texto::either_view path, char separator) const {
  const xvar* const found = get_ptr(path, separator);
  if (!found) throw detail::no_entry(owned_text(path));
  return *found;
}
xvar& bundle::hack(texto::either_view path, char separator) {
  return path.is_narrow() ? make_path(*this, to_utf_16(path.narrow()), separator)
                          : make_path(*this, path.wide(), separator);
}
xvar& bundle::putOn(texto::either_view path, const xvar& value, char separator) {
  return putOn(owned_text(path), value, separator);
}
bundle& bundle::hack_bundle_on(texto::either_view path, char separator) {
  return cell::on_bundle(hack(path, separator));
}
list& bundle::hack_list_on(texto::either_view path, char separator) {
  return cell::on_list(hack(path, separator));
}
memo& bundle::hack_memo_on(texto::either_view path, char separator) {
  return cell::on_memo(hack(path, separator));
}
std::wstring& bundle::hack_string_on(texto::either_view path, char separator) {
  return cell::on_string(hack(path, separator));
}
binary& bundle::hack_binary_on(texto::either_view path, char separator) {
  return cell::on_binary(hack(path, separator));
}
binary& bundle::hack_nc_binary_on(texto::either_view path, const binary& initial, char separator) {
  return hack_nc_binary_on(owned_text(path), initial, separator);
}

bool bundle::get_boolean(texto::either_view path, bool fallback, char separator) const {
  return truth_or(get_ptr(path, separator), fallback);
}
std::wstring bundle::get_string(texto::either_view path, char separator, const std::wstring& fallback) const {
  return text_or(get_ptr(path, separator), fallback);
}
std::wstring bundle::get_nc_string(texto::either_view path, const std::wstring& fallback,
                                   char separator) const {
  std::wstring text = get_string(path, separator);
  return text.empty() ? fallback : text;
}
const binary& bundle::get_binary(texto::either_view path, const binary& fallback, char separator) const {
  const auto* const held = object_in<binary>(get_ptr(path, separator), kind::binary);
  return held ? *held : fallback;
}
const memo& bundle::get_memo(texto::either_view path, const memo& fallback, char separator) const {
  const auto* const held = object_in<memo>(get_ptr(path, separator), kind::memo);
  return held ? *held : fallback;
}
const bundle& bundle::get_bundle(texto::either_view path, char separator) const {
  const bundle* const held = bundle_in(get_ptr(path, separator));
  return held ? *held : cell::as_bundle(xvar_dummies::of(typeid(bundle)));
}
const list& bundle::get_list(texto::either_view path, char separator) const {
  const list* const held = list_in(get_ptr(path, separator));
  return held ? *held : cell::as_list(xvar_dummies::of(typeid(list)));
}
const bundle& bundle::get_nc_bundle(texto::either_view path, const bundle& fallback, char separator) const {
  const bundle* const held = bundle_in(get_ptr(path, separator));
  return held && !held->empty() ? *held : fallback;
}
const list& bundle::get_nc_list(texto::either_view path, const list& fallback, char separator) const {
  const list* const held = list_in(get_ptr(path, separator));
  return held && !held->empty() ? *held : fallback;
}

// --- text and comparison

std::wstring bundle::to_string() const {
  std::wstring text;
  detail::append_text(text, *this);
  return text;
}

bool bundle::operator==(const bundle& other) const { return to_string() == other.to_string(); }
bool bundle::operator<(const bundle& other) const { return to_string() < other.to_string(); }

std::wostream& operator<<(std::wostream& out, const bundle& value) { return out << value.to_string(); }

// --- narrow paths: what the wide forms above do

const xvar* bundle::get_ptr(const std::string& path, char separator) const {
  return get_ptr(to_utf_16(path), separator);
}
const xvar& bundle::get(const std::string& path, char separator) const {
  return get(to_utf_16(path), separator);
}
bool bundle::has(const std::string& path, char separator) const { return has(to_utf_16(path), separator); }
xvar& bundle::hack(const std::string& path, char separator) { return hack(to_utf_16(path), separator); }
xvar* bundle::hack_ptr(const std::string& path, char separator) {
  return hack_ptr(to_utf_16(path), separator);
}
xvar& bundle::putOn(const std::string& path, const xvar& value, char separator) {
  return putOn(to_utf_16(path), value, separator);
}
bundle& bundle::hack_bundle_on(const std::string& path, char separator) {
  return hack_bundle_on(to_utf_16(path), separator);
}
list& bundle::hack_list_on(const std::string& path, char separator) {
  return hack_list_on(to_utf_16(path), separator);
}
memo& bundle::hack_memo_on(const std::string& path, char separator) {
  return hack_memo_on(to_utf_16(path), separator);
}
std::wstring& bundle::hack_string_on(const std::string& path, char separator) {
  return hack_string_on(to_utf_16(path), separator);
}
binary& bundle::hack_binary_on(const std::string& path, char separator) {
  return hack_binary_on(to_utf_16(path), separator);
}
binary& bundle::hack_nc_binary_on(const std::string& path, const binary& initial, char separator) {
  return hack_nc_binary_on(to_utf_16(path), initial, separator);
}
bool bundle::get_boolean(const std::string& path, bool fallback, char separator) const {
  return get_boolean(to_utf_16(path), fallback, separator);
}
std::wstring bundle::get_string(const std::string& path, char separator, const std::wstring& fallback) const {
  return get_string(to_utf_16(path), separator, fallback);
}
std::wstring bundle::get_nc_string(const std::string& path, const std::wstring& fallback,
                                   char separator) const {
  return get_nc_string(to_utf_16(path), fallback, separator);
}
const binary& bundle::get_binary(const std::string& path, const binary& fallback, char separator) const {
  return get_binary(to_utf_16(path), fallback, separator);
}
const memo& bundle::get_memo(const std::string& path, const memo& fallback, char separator) const {
  return get_memo(to_utf_16(path), fallback, separator);
}
const bundle& bundle::get_bundle(const std::string& path, char separator) const {
  return get_bundle(to_utf_16(path), separator);
}
const list& bundle::get_list(const std::string& path, char separator) const {
  return get_list(to_utf_16(path), separator);
}
const bundle& bundle::get_nc_bundle(const std::string& path, const bundle& fallback, char separator) const {
  return get_nc_bundle(to_utf_16(path), fallback, separator);
}
const list& bundle::get_nc_list(const std::string& path, const list& fallback, char separator) const {
  return get_nc_list(to_utf_16(path), fallback, separator);
}

const xvar& xvar_dummies::of(const std::type_info& type) {
  static const xvar none, all[] = {bundle(), list(), binary(), memo(), L""};
  const auto found =
      std::find_if(std::begin(all), std::end(all), [&](const xvar& v) { return v.instanceof (type); });
  return found == std::end(all) ? none : *found;
}

}  // namespace ruvo
