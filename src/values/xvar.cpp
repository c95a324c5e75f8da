// SPDX-License-Identifier: BSL-1.0

// The qualities of a value.

#include <ruvo/exc.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"

namespace ruvo {

namespace {

using texto::to_utf_16;

/// Assigns the qualities to `own`, as whose they end unless their keys are there already.
void merge(xvar::qualities_map& own, xvar::qualities_map& qualities) noexcept {
  own.merge(qualities);
  for (auto& [key, value] : qualities) own.find(key)->second = std::move(value);
}

/// Stands for the map of every xvar that has none; always empty.
xvar::qualities_map& no_qualities() noexcept {
  static xvar::qualities_map none;
  return none;
}

}  // namespace

void* detail::take_room(std::size_t bytes) { return take_block(std::max<std::size_t>(bytes, 1)); }
void detail::give_room(void* room, std::size_t bytes) noexcept {
  give_block(room, std::max<std::size_t>(bytes, 1));
}

bool keylowercase::operator()(const std::wstring& a, const std::wstring& b) const noexcept {
  return texto::before_in_lower_case(a, b);
}
bool keylowercase::operator()(const std::wstring& a, texto::wide_view b) const noexcept {
  return texto::before_in_lower_case(a, b);
}
bool keylowercase::operator()(texto::wide_view a, const std::wstring& b) const noexcept {
  return texto::before_in_lower_case(a, b);
}

void xvar::copy_qualities(const xvar& other) {
  if (other.is_qualified()) qualities_ = detail::make<qualities_map>(*other.qualities_);
}

void xvar::drop_qualities() noexcept {
  if (qualities_) detail::unmake(std::exchange(qualities_, nullptr));
}

xvar& xvar::operator=(const xvar& other) {
  if (!other.qualities_) return *this = static_cast<const var&>(other);
  if (this != &other) *this = xvar(other);  // a copy first: `other` may be inside this value
  return *this;
}

xvar& xvar::operator=(xvar&& other) {
  if (this == &other) return *this;
  if (!other.is_qualified()) return *this = static_cast<var&&>(other);
  // Both parts are taken first: `other` may be inside this value or one of these qualities. Of the steps,
  // only the first two may fail.
  qualities_map qualities = other.get_qualities();
  qualities_map& own = hack_qualities();
  var value(std::move(other));
  merge(own, qualities);
  return *this = std::move(value);
}

xvar& xvar::operator=(const var& value) {
  var::operator=(value);
  return *this;
}

xvar& xvar::operator=(var&& value) noexcept {
  var::operator=(std::move(value));
  return *this;
}

void xvar::swap(xvar& other) noexcept {
  var value(static_cast<var&&>(*this));
  var::operator=(static_cast<var&&>(other));
  static_cast<var&>(other) = std::move(value);
  std::swap(qualities_, other.qualities_);
}

var& xvar::operator[](const std::wstring& key) { return hack_qualities()[key]; }
var& xvar::operator[](const std::string& key) { return hack_qualities()[to_utf_16(key)]; }
var& xvar::operator[](const wchar_t* key) { return hack_qualities()[key]; }
var& xvar::operator[](const char* key) { return hack_qualities()[to_utf_16(key)]; }

const var& xvar::at(const std::wstring& key) const {
  const auto found = find(key);
  if (found == end()) throw detail::missing_key(key);
  return found->second;
}
const var& xvar::at(const std::string& key) const { return at(to_utf_16(key)); }

const var& xvar::get_quality(const std::wstring& key) const {
  const auto found = find(key);
  if (found == end()) throw detail::about(exc::OutOfRange(), [&key] { return key; });
  return found->second;
}
const var& xvar::get_quality(const std::string& key) const { return get_quality(to_utf_16(key)); }

bool xvar::has_quality(const std::wstring& key) const { return count(key) != 0; }
bool xvar::has_quality(const std::string& key) const { return has_quality(to_utf_16(key)); }
xvar::size_type xvar::count(const std::wstring& key) const { return get_qualities().count(key); }
xvar::size_type xvar::count(const std::string& key) const { return count(to_utf_16(key)); }
xvar::iterator xvar::find(const std::wstring& key) { return qualities_ ? qualities_->find(key) : end(); }
xvar::iterator xvar::find(const std::string& key) { return find(to_utf_16(key)); }
xvar::const_iterator xvar::find(const std::wstring& key) const { return get_qualities().find(key); }
xvar::const_iterator xvar::find(const std::string& key) const { return find(to_utf_16(key)); }
xvar::size_type xvar::erase(const std::wstring& key) { return qualities_ ? qualities_->erase(key) : 0; }
xvar::size_type xvar::erase(const std::string& key) { return erase(to_utf_16(key)); }
void xvar::quality_remove(const std::wstring& key) { erase(key); }
void xvar::quality_remove(const std::string& key) { erase(key); }

var& xvar::operator[](texto::either_view key) {
  const iterator found = find(key);
  return found == end() ? hack_qualities()[detail::owned_text(key)] : found->second;
}
const var& xvar::at(texto::either_view key) const {
  const auto found = find(key);
  return found == end() ? at(detail::owned_text(key)) : found->second;
}
const var& xvar::get_quality(texto::either_view key) const {
  const auto found = find(key);
  return found == end() ? get_quality(detail::owned_text(key)) : found->second;
}
xvar::iterator xvar::find(texto::either_view key) {
  if (!qualities_) return end();
  return key.is_narrow() ? qualities_->find(to_utf_16(key.narrow())) : qualities_->find(key.wide());
}
xvar::size_type xvar::erase(texto::either_view key) {
  const iterator found = find(key);
  if (found == end()) return 0;
  qualities_->erase(found);
  return 1;
}

void xvar::add_qualities(const qualities_map& qualities) {
  if (qualities.empty()) return;
  qualities_map taken(qualities);  // they may be inside one of those that are replaced
  merge(hack_qualities(), taken);
}

const xvar::qualities_map& xvar::get_qualities() const noexcept {
  return qualities_ ? *qualities_ : no_qualities();
}

xvar::qualities_map& xvar::hack_qualities() {
  if (!qualities_) qualities_ = detail::make<qualities_map>();
  return *qualities_;
}

xvar::iterator xvar::begin() noexcept { return qualities_ ? qualities_->begin() : no_qualities().begin(); }
xvar::iterator xvar::end() noexcept { return qualities_ ? qualities_->end() : no_qualities().end(); }

void xvar::clear() noexcept { drop_qualities(); }

}  // namespace ruvo
