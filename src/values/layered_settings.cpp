// SPDX-License-Identifier: BSL-1.0

// Layers of settings, what they say together, and who is called when that changes.

#include <ruvo/bundles.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/layered_settings.hpp>
#include <ruvo/texto/words.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/ascii.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/paths.hpp"
#include "values/same_values.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;
using texto::unit_of;

struct layered_settings::watch {
  std::uint64_t number = 0;
  observer what{};
  std::wstring path{};
  bool is_stopped = false;
};

/// The layers that a value comes from, and those that are hidden by them; the highest first.
struct layered_settings::origin {
  std::vector<std::wstring> from{}, hidden{};
};

namespace {

bool has_value(const xvar* value) noexcept { return value && !value->is_null(); }

const bundle* bundle_of(const xvar* value) noexcept {
  return value && cell::kind_of(*value) == kind::bundle ? &cell::as_bundle(*value) : nullptr;
}

/// The value of a folded key, or null.
const xvar* value_with(const bundle& in, std::wstring_view folded) noexcept {
  const detail::bundle_store* const store = detail::bundle_access::store(in);
  const bundle::entry* const found = store ? store->find(detail::key_view(folded)) : nullptr;
  return found ? &found->second : nullptr;
}

/// The value at a folded path, or null; `is_blocked` when something else than a bundle stands in its way.
const xvar* value_along(const bundle& from, std::wstring_view path, wchar_t separator, bool& is_blocked) {
  for (const bundle* in = &from;;) {
    const std::size_t end = std::min(path.find(separator), path.size());
    const xvar* const value = value_with(*in, path.substr(0, end));
    if (!has_value(value)) return nullptr;
    if (end == path.size()) return value;
    in = bundle_of(value);
    is_blocked = !in;
    if (is_blocked) return nullptr;
    path.remove_prefix(end + 1);
  }
}

bool erase_at(bundle& from, const std::wstring& path, char separator) {
  if (!from.has(path, separator)) return false;
  const std::size_t last = path.rfind(unit_of(separator));
  const std::wstring key = texto::to_lowercase_(path.substr(last + 1));  // nothing before it is npos + 1, 0
  bundle& in = last == path.npos ? from : from.hack_bundle_on(path.substr(0, last), separator);
  return in.erase(key) > 0;
}

/// Collects the paths at which two bundles, or two values, differ.
class difference {
 public:
  difference(std::wstring path, wchar_t separator) : path_(std::move(path)), separator_(separator) {}

  std::vector<std::wstring> of(const bundle& before, const bundle& now) {
    open(&before, &now);
    return run();
  }
  std::vector<std::wstring> of(const xvar* before, const xvar* now) {
    meet(before, now);
    return run();
  }

 private:
  static constexpr std::size_t deepest = 64;

  struct frame {
    bundle::const_iterator before{}, before_end{}, now{}, now_end{};
    std::size_t path = 0;  // how much of the path leads into it
  };

  /// Null stands for a bundle without entries.
  void open(const bundle* before, const bundle* now) {
    frame& f = open_.emplace_back();
    if (before) {
      f.before = before->begin();
      f.before_end = before->end();
    }
    if (now) {
      f.now = now->begin();
      f.now_end = now->end();
    }
    f.path = path_.size();
  }
  std::vector<std::wstring> run() {
    while (!open_.empty()) {
      frame& f = open_.back();
      const bool no_before = f.before == f.before_end, no_now = f.now == f.now_end;
      if (no_before && no_now) {
        open_.pop_back();
        continue;
      }
      const bool is_new = no_before || (!no_now && f.now->first < f.before->first);
      const bool is_gone = no_now || (!no_before && f.before->first < f.now->first);
      path_.resize(f.path);
      path_ += is_new ? f.now->first : f.before->first;
      const xvar* const before = is_new ? nullptr : &(f.before++)->second;
      const xvar* const now = is_gone ? nullptr : &(f.now++)->second;
      meet(before, now);
    }
    return std::move(found_);
  }
  void meet(const xvar* before, const xvar* now) {
    const bundle *const left = bundle_of(before), *const right = bundle_of(now);
    if ((!left && !right) || open_.size() > deepest) {
      const bool is_same = has_value(before) && has_value(now) ? detail::are_same(*before, *now)
                                                               : has_value(before) == has_value(now);
      if (!is_same) found_.push_back(path_);
      return;
    }
    const bool differs = left && right ? !detail::have_same_qualities(*before, *now)
                                       : has_value(left ? now : before) || (left ? left : right)->empty();
    if (differs) found_.push_back(path_);
    path_ += separator_;
    open(left, right);
  }

  std::wstring path_;
  wchar_t separator_;
  std::vector<frame> open_;
  std::vector<std::wstring> found_;
};

/// «a», «b»
std::wstring names_between(const std::vector<std::wstring>& names) {
  std::wstring out;
  for (const std::wstring& each : names) {
    if (!out.empty()) out.append(L", ");
    out.append(L"«").append(each).append(L"»");
  }
  return out;
}

}  // namespace

layered_settings::layered_settings(char separator) : separator_(separator) {}
layered_settings::~layered_settings() = default;

// --- layers

void layered_settings::set_layer(const std::wstring& name, bundle values) {
  share_layer(name, smart_bundle(std::move(values)));
}

void layered_settings::share_layer(const std::wstring& name, const smart_bundle& values) {
  if (!values) throw exc::NullPointer();
  std::vector<layer> layers = layers_;
  const auto found =
      std::find_if(layers.begin(), layers.end(), [&](const layer& l) { return l.name == name; });
  if (found == layers.end()) {
    layers.push_back({name, values});
  } else {
    found->values = values;
  }
  set_layers(std::move(layers));
}

bool layered_settings::remove_layer(const std::wstring& name) {
  std::vector<layer> layers = layers_;
  if (std::erase_if(layers, [&](const layer& each) { return each.name == name; }) == 0) return false;
  set_layers(std::move(layers));
  return true;
}

std::vector<std::wstring> layered_settings::get_layers() const {
  std::vector<std::wstring> names;
  for (const layer& each : layers_) names.push_back(each.name);
  return names;
}

const bundle& layered_settings::get_layer(const std::wstring& name) const {
  return *layer_named(name).values;
}

const layered_settings::layer& layered_settings::layer_named(const std::wstring& name) const {
  const auto found =
      std::find_if(layers_.begin(), layers_.end(), [&](const layer& each) { return each.name == name; });
  if (found == layers_.end()) throw exc::BadArgument(name);
  return *found;
}

/// What may fail comes first.
void layered_settings::set_layers(std::vector<layer> layers) {
  bundle now;
  for (const layer& each : layers) bundles::merge(now, *each.values, nullptr, separator_);
  std::vector<std::wstring> changed;
  if (!watches_.empty()) changed = difference({}, unit_of(separator_)).of(merged_, now);
  layers_.swap(layers);
  merged_ = std::move(now);
  notify(std::move(changed));
}

void layered_settings::refresh() { set_layers(layers_); }

void layered_settings::put(const std::wstring& name, const std::wstring& path, const xvar& value) {
  smart_bundle values = layer_named(name).values;
  const std::wstring part = path.substr(0, changing_part(texto::to_lowercase_(path)));
  values->putOn(path, value, separator_);
  renew(part);
}

bool layered_settings::erase(const std::wstring& name, const std::wstring& path) {
  smart_bundle values = layer_named(name).values;
  const std::wstring part = path.substr(0, changing_part(texto::to_lowercase_(path)));
  if (!erase_at(*values, path, separator_)) return false;
  renew(part);
  return true;
}

/// How much of a folded path leads to all that a change at its end may change: up to the first part that is
/// no bundle, where something is hidden or comes to light. Before it there are bundles alone, in each layer
/// that has anything.
std::size_t layered_settings::changing_part(std::wstring_view path) const {
  std::vector<const bundle*> ins;  // where the path leads in the layers; null where there is nothing
  for (const layer& each : layers_) ins.push_back(each.values.get());
  const bundle* in = &merged_;
  for (std::size_t begin = 0;;) {
    const std::size_t end = path.find(unit_of(separator_), begin);
    if (end == path.npos) return path.size();
    const std::wstring_view key = path.substr(begin, end - begin);
    in = bundle_of(value_with(*in, key));
    if (!in) return end;
    for (const bundle*& each : ins) {
      const xvar* const value = each ? value_with(*each, key) : nullptr;
      each = bundle_of(value);
      if (!each && has_value(value)) return end;
    }
    begin = end + 1;
  }
}

/// Merges what the layers have at a path, before which there are bundles alone.
void layered_settings::renew(const std::wstring& path) {
  bundle made;  // of one entry
  for (const layer& each : layers_) {
    const xvar* const value = each.values->get_ptr(path, separator_);
    if (!value) continue;
    bundle part;
    part[L"v"] = *value;
    bundles::merge(made, std::move(part));
  }
  const auto now = made.begin();
  xvar* const place = made.empty() ? nullptr : merged_.hack_ptr(path, separator_);
  std::vector<std::wstring> changed;
  if (!watches_.empty())
    changed = difference(texto::to_lowercase_(path), unit_of(separator_))
                  .of(merged_.get_ptr(path, separator_), place ? &now->second : nullptr);
  if (place) {
    place->swap(now->second);
  } else {
    erase_at(merged_, path, separator_);
  }
  notify(std::move(changed));
}

// --- where values come from

layered_settings::origin layered_settings::origin_of(const std::wstring& path) const {
  const std::wstring folded = texto::to_lowercase_(path);
  origin out;
  bool is_hidden = false;
  for (auto each = layers_.rbegin(); each != layers_.rend(); ++each) {
    bool is_blocked = false;
    const xvar* const value = value_along(*each->values, folded, unit_of(separator_), is_blocked);
    if (value) {
      const bool counts = !is_hidden && (out.from.empty() || bundle_of(value));
      (counts ? out.from : out.hidden).push_back(each->name);
    }
    is_hidden = is_hidden || is_blocked || (value && !bundle_of(value));
  }
  return out;
}

std::wstring layered_settings::layer_of(const std::wstring& path) const {
  const origin found = origin_of(path);
  return found.from.empty() ? std::wstring() : found.from.front();
}

std::wstring layered_settings::explain(const std::wstring& path) const noexcept {
  try {
    const origin found = origin_of(path);
    std::wstring out = found.from.empty()       ? L"Ninguna capa lo da."
                       : found.from.size() == 1 ? L"Lo da la capa "
                                                : L"Lo dan las capas ";
    if (!found.from.empty()) out.append(names_between(found.from)).append(L".");
    if (!found.hidden.empty())
      out.append(L" Queda oculto lo de ").append(names_between(found.hidden)).append(L".");
    return out.append(L" ").append(merged_.explain(path, separator_));
  } catch (...) {
    return {};
  }
}

// --- observers

std::uint64_t layered_settings::observe(observer what, const std::wstring& path) {
  if (!what) throw exc::NullPointer();
  watches_.push_back(std::make_shared<watch>(watch{last_number_ + 1, std::move(what), path, false}));
  return ++last_number_;
}

bool layered_settings::stop_observing(std::uint64_t number) noexcept {
  const auto found = std::find_if(watches_.begin(), watches_.end(),
                                  [number](const auto& each) { return each->number == number; });
  if (found == watches_.end()) return false;
  const std::shared_ptr<watch> gone = *found;  // what it holds may come back here when it goes
  gone->is_stopped = true;
  watches_.erase(found);
  return true;
}

void layered_settings::notify(std::vector<std::wstring> changed) {
  std::move(changed.begin(), changed.end(), std::back_inserter(changes_));
  if (is_notifying_) return;  // who calls the observers goes on with these
  is_notifying_ = true;
  std::exception_ptr failure;
  while (!changes_.empty()) {
    const std::wstring path = std::move(changes_.front());
    changes_.pop_front();
    try {
      call_observers(path, failure);
    } catch (...) {  // no memory
      failure = std::current_exception();
    }
  }
  is_notifying_ = false;
  if (failure) std::rethrow_exception(failure);
}

void layered_settings::call_observers(const std::wstring& path, std::exception_ptr& failure) const {
  const auto watches = watches_;  // observers may start and stop others
  for (const auto& each : watches) {
    const wchar_t separator = unit_of(separator_);
    const bool concerned = detail::leads_through(path, each->path, separator) ||
                           detail::leads_through(each->path, path, separator);
    if (!concerned || each->is_stopped) continue;
    try {
      each->what(path);
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }
}

}  // namespace ruvo
