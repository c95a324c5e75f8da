// SPDX-License-Identifier: BSL-1.0

// Merging bundles, and the arguments of a program.

#include <ruvo/bundles.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "memory/near_stack.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"
#include "values/paths.hpp"

namespace ruvo::bundles {

namespace {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::key_view;
using detail::kind;

bool holds_bundle(const var& value) noexcept { return cell::kind_of(value) == kind::bundle; }
bool holds_list(const var& value) noexcept { return cell::kind_of(value) == kind::list; }

/// The value of the entry's key in a bundle, or null. Records of one kind have it in the same position.
xvar* value_in(const bundle& in, const bundle::entry& item, std::size_t position) noexcept {
  const bundle_store* const store = bundle_access::store(in);
  if (!store) return nullptr;
  const detail::shared_key* const key = bundle_store::key_of(&item);
  if (position < store->size()) {
    bundle::entry* const there = store->nth(position);
    if (bundle_store::key_of(there) == key) return &there->second;
  }
  bundle::entry* const found = store->find(key_view(*key));
  return found ? &found->second : nullptr;
}

/// Whether `wanted` may be `in` or in it: where more than `most` values would have to be looked at, it may.
bool may_hold(const bundle& in, const bundle& wanted, std::size_t& most) {
  detail::near_stack<const var*, 16> open;  // containers
  const auto note = [&](const var& value) {
    if (cell::is_container(value)) open.push() = &value;
  };
  const auto note_all = [&](const xvar& value) {
    note(value);
    if (const auto* const qualities = cell::qualities(value))
      for (const auto& each : *qualities) note(each.second);
  };
  const auto note_members = [&](const bundle& held) {
    const bundle_store* const store = bundle_access::store(held);
    for (std::size_t n = 0; n < held.size(); ++n) note_all(store->nth(n)->second);
  };
  const auto takes = [&](std::size_t count) {
    const bool fits = count <= most;
    if (fits) most -= count;
    return fits;
  };
  if (&in == &wanted || !takes(in.size())) return true;
  note_members(in);
  while (!open.empty()) {
    const var& each = *open.top();
    open.pop();
    if (holds_list(each)) {
      if (!takes(1 + cell::as_list(each).size())) return true;
      for (const xvar& element : cell::as_list(each)) note_all(element);
    } else {
      const bundle& held = cell::as_bundle(each);
      if (&held == &wanted || !takes(1 + held.size())) return true;
      note_members(held);
    }
  }
  return false;
}

/// Whether neither of both can be a part of the other, as far as a look at about as many values shows as the
/// source has.
bool are_apart(const bundle& target, const bundle& source) {
  std::size_t most = (std::numeric_limits<std::size_t>::max)() / 2;
  const std::size_t before = most;
  if (may_hold(source, target, most)) return false;
  most = 2 * (before - most) + 16;
  return !may_hold(target, source, most);
}

/// A bundle of the source, and where its values go.
struct open_bundle {
  bundle* to = nullptr;
  bundle_store* from = nullptr;
  std::size_t taken = 0, size = 0;
  std::size_t path = 0;  // how much of the path leads into it
  xvar made{};           // what has `to`, when that has no place in the target yet
};

/// Copies or moves the values of one bundle into another, whose places are kept on a stack of its own.
class merger {
 public:
  merger(imerged_filter* filter, wchar_t separator, bool moves) noexcept
      : filter_(filter), separator_(separator), moves_(moves) {}

  void run(bundle& target, const bundle& source) {
    open(target, source);
    while (!open_.empty()) {
      open_bundle& f = open_.top();
      if (f.taken == f.size) {
        close();
      } else if (bundle::entry& item = *f.from->nth(f.taken++); filter_) {
        ask(f, item);
      } else {
        take(f, item);
      }
    }
  }

 private:
  open_bundle& open(bundle& to, const bundle& from) {
    open_bundle& f = open_.push();
    f.to = &to;
    f.from = bundle_access::store(from);
    f.size = from.size();
    f.path = path_.size();
    return f;
  }

  void take(open_bundle& f, bundle::entry& item) {
    if (xvar* const there = value_in(*f.to, item, f.taken - 1)) return settle(*there, item.second);
    if (moves_) return add(f, item).swap(item.second);
    xvar copy(item.second);  // first, as there may be no memory for it
    add(f, item).swap(copy);
  }
  void settle(xvar& there, xvar& value) {
    if (!value.is_null() && !(holds_bundle(there) && holds_bundle(value))) {
      if (moves_)
        there = std::move(value);
      else
        there = static_cast<const xvar&>(value);
      return;
    }
    there.add_qualities(value.get_qualities());
    if (!value.is_null()) open(cell::as_bundle(there), cell::as_bundle(value));
  }
  /// The value of the entry's key, which is missing.
  static xvar& add(const open_bundle& f, const bundle::entry& item) {
    const detail::shared_key* const key = bundle_store::key_of(&item);
    return bundle_access::made_store(*f.to, f.size).add(key_view(*key), key)->second;
  }

  void ask(open_bundle& f, bundle::entry& item) {
    path_.resize(f.path);
    path_ += item.first;
    xvar* const there = value_in(*f.to, item, f.taken - 1);
    xvar made;
    xvar& target = there ? *there : made;
    const bool takes = filter_->on_merge(path_, target, item.second);
    if (takes && holds_bundle(item.second)) {
      if (!there || !holds_bundle(*there)) return enter_new(std::move(made), item.second);
      path_ += separator_;
      return settle(*there, item.second);
    }
    if (takes) settle(target, item.second);
    if (!there && (takes || !made.is_null())) add(f, item).swap(made);
  }
  /// Goes on in a bundle that gets its place when it is found to have something.
  void enter_new(xvar made, const xvar& value) {
    bundle& to = cell::on_bundle(made);
    made.add_qualities(value.get_qualities());
    path_ += separator_;
    open(to, cell::as_bundle(value)).made.swap(made);
  }
  void close() {
    open_bundle& f = open_.top();
    if (!f.made.is_null() && (f.size == 0 || !f.to->empty())) {
      const open_bundle& outer = open_.end()[-2];
      const bundle::entry& item = *outer.from->nth(outer.taken - 1);
      xvar* const there = value_in(*outer.to, item, outer.taken - 1);
      (there ? *there : add(outer, item)) = std::move(f.made);
    }
    open_.pop();
  }

  imerged_filter* filter_;
  wchar_t separator_;
  bool moves_;         // or copies
  std::wstring path_;  // kept where there is a filter
  detail::near_stack<open_bundle, 4> open_;
};

}  // namespace

void merge(bundle& target, const bundle& source, imerged_filter* filter, char separator) {
  if (target.empty() || !are_apart(target, source)) return merge(target, bundle(source), filter, separator);
  merger(filter, texto::unit_of(separator), false).run(target, source);
}

void merge(bundle& target, bundle&& source, imerged_filter* filter, char separator) {
  bundle from(std::move(source));  // `source` may be inside of what is replaced
  if (filter || !target.empty()) return merger(filter, texto::unit_of(separator), true).run(target, from);
  target = std::move(from);
}

// --- filters

imerged_filter::imerged_filter() noexcept = default;
imerged_filter::imerged_filter(const imerged_filter&) noexcept = default;
imerged_filter& imerged_filter::operator=(const imerged_filter&) noexcept = default;
imerged_filter::~imerged_filter() = default;

keep_existing::keep_existing() noexcept = default;
keep_existing::keep_existing(const keep_existing&) noexcept = default;
keep_existing& keep_existing::operator=(const keep_existing&) noexcept = default;
keep_existing::~keep_existing() = default;
bool keep_existing::on_merge(const std::wstring&, xvar& target, const xvar& source) {
  return target.is_null() || (holds_bundle(target) && holds_bundle(source));
}

replace_existing::replace_existing() noexcept = default;
replace_existing::replace_existing(const replace_existing&) noexcept = default;
replace_existing& replace_existing::operator=(const replace_existing&) noexcept = default;
replace_existing::~replace_existing() = default;
bool replace_existing::on_merge(const std::wstring&, xvar&, const xvar&) { return true; }

append_lists::append_lists() noexcept = default;
append_lists::append_lists(const append_lists&) noexcept = default;
append_lists& append_lists::operator=(const append_lists&) noexcept = default;
append_lists::~append_lists() = default;
bool append_lists::on_merge(const std::wstring&, xvar& target, const xvar& source) {
  if (!holds_list(target) || !holds_list(source)) return true;
  list& to = cell::as_list(target);
  const list& from = cell::as_list(source);
  to.insert(to.cend(), from.begin(), from.end());
  return false;
}

only_keys::only_keys(std::vector<std::wstring> paths, imerged_filter* inner, char separator)
    : paths_(std::move(paths)), inner_(inner), separator_(separator) {}
only_keys::only_keys(const only_keys& other) = default;
only_keys& only_keys::operator=(const only_keys& other) = default;
only_keys::~only_keys() = default;
bool only_keys::on_merge(const std::wstring& path, xvar& target, const xvar& source) {
  const wchar_t separator = texto::unit_of(separator_);
  const bool passes = std::any_of(paths_.begin(), paths_.end(), [&](const std::wstring& one) {
    return detail::leads_through(path, one, separator) ||
           (holds_bundle(source) && detail::leads_through(one, path, separator));
  });
  return passes && (!inner_ || inner_->on_merge(path, target, source));
}

// --- arguments

namespace {

bool has_empty_key(std::wstring_view path, wchar_t separator) noexcept {
  const wchar_t twice[] = {separator, separator};
  return path.empty() || path.front() == separator || path.back() == separator ||
         path.find(std::wstring_view(twice, 2)) != path.npos;
}

}  // namespace

bool read_arguments(bundle& out, std::vector<std::wstring>& rest, const std::vector<std::wstring>& arguments,
                    exception& err, char separator) {
  bundle read;
  std::vector<std::wstring> others;
  auto at = arguments.begin();
  for (; at != arguments.end() && *at != L"--"; ++at) {
    if (!at->starts_with(L"--")) {
      others.push_back(*at);
      continue;
    }
    const std::size_t equals = std::min(at->find(L'='), at->size());
    const std::wstring path = at->substr(2, equals - 2);
    if (has_empty_key(path, texto::unit_of(separator))) {
      err = exc::BadArgument(path);
      return false;
    }
    const xvar value = equals == at->size() ? xvar(true) : xvar(at->substr(equals + 1));
    read.putOn(path, value, separator);
  }
  if (at != arguments.end()) others.insert(others.end(), at + 1, arguments.end());
  out = std::move(read);
  rest = std::move(others);
  return true;
}

}  // namespace ruvo::bundles
