// Copying and destroying nested values without recursion, so that depth costs no stack.

#include <ruvo/binary.hpp>
#include <ruvo/memo.hpp>

#include <cstddef>
#include <functional>
#include <vector>

#include "base/simd.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/object.hpp"

namespace ruvo::detail {

namespace {

template <class Visit>
void for_each_value(const bundle& in, Visit visit) {
  const bundle_store* const store = bundle_access::store(in);
  for (std::size_t n = 0; store && n < store->size(); ++n) visit(store->nth(n)->second);
}

/// Takes containers out of their cells and destroys them when nothing nested is left in them.
class reaper {
 public:
  void take(var& v) noexcept {
    if (cell::kind_of(v) == kind::list) {
      push(lists_, cell::pointer<boxed<list>>(v));
    } else if (cell::kind_of(v) == kind::bundle) {
      push(bundles_, cell::pointer<boxed<bundle>>(v));
    } else {
      return;
    }
    cell::forget(v);
  }

  void run() noexcept {
    while (lists_ || bundles_) {
      if (boxed<list>* const gone = pop(lists_)) {
        for (xvar& v : gone->value) take_all(v);
        unmake(gone);
      }
      if (boxed<bundle>* const gone = pop(bundles_)) {
        for_each_value(gone->value, [this](xvar& v) { take_all(v); });
        unmake(gone);
      }
    }
  }

 private:
  template <class T>
  static void push(boxed<T>*& chain, boxed<T>* item) noexcept {
    item->next = chain;
    chain = item;
  }
  template <class T>
  static boxed<T>* pop(boxed<T>*& chain) noexcept {
    boxed<T>* const item = chain;
    if (!item) return nullptr;
    chain = item->next;
    if (chain) expect_use_of(chain->value);
    return item;
  }
  static void expect_use_of(const list& next) noexcept { expect_use(next.data()); }
  static void expect_use_of(const bundle& next) noexcept {
    const auto* const store = reinterpret_cast<const char*>(bundle_access::store(next));
    constexpr std::size_t line = 64;
    for (std::size_t at = 0; store && at < 2 * line; at += line) expect_use(store + at);
  }
  void take_all(xvar& v) noexcept {
    take(v);
    if (auto* const qualities = cell::qualities(v)) {
      for (auto& [key, value] : *qualities) take(value);
    }
  }

  boxed<list>* lists_ = nullptr;
  boxed<bundle>* bundles_ = nullptr;
};

/// Copies cells; containers are made empty first and filled one after the other.
class copier {
 public:
  void copy(var& to, const var& from) {
    switch (cell::kind_of(from)) {
      case kind::text:
      case kind::string_text:
        return cell::set_text(to, cell::text(from));
      case kind::binary:
        return cell::set_pointer(to, kind::binary, make<binary>(*cell::pointer<binary>(from)));
      case kind::memo:
        return cell::set_pointer(to, kind::memo, make<memo>(*cell::pointer<memo>(from)));
      case kind::object:
        return cell::set_pointer(to, kind::object, cell::pointer<object>(from)->clone());
      case kind::list:
        cell::set_box(to, kind::list, list());
        return later(to, from);
      case kind::bundle:
        cell::set_box(to, kind::bundle, bundle());
        return later(to, from);
      default:
        to = from;  // held inside the cell
    }
  }

  void copy_all(xvar& to, const xvar& from) {
    copy(to, from);
    const auto* const qualities = cell::qualities(from);
    if (!qualities || qualities->empty()) return;
    auto& made = cell::qualities(to) = make<xvar::qualities_map>();
    for (const auto& [key, value] : *qualities) copy(made->try_emplace(made->end(), key)->second, value);
  }

  bundle_store* copy_entries(const bundle_store& from) {
    bundle_store* const made = bundle_store::like(from);
    try {
      for (std::size_t n = 0; n < from.size(); ++n) copy_all(made->nth(n)->second, from.nth(n)->second);
    } catch (...) {
      bundle_store::drop(made);
      throw;
    }
    return made;
  }

  void run() {
    while (!later_.empty()) {
      const auto [to, from] = later_.back();
      later_.pop_back();
      if (cell::kind_of(*from) == kind::list) {
        const list& source = cell::as_list(*from);
        list& target = cell::as_list(*to);
        list::vector room;  // the elements must not move any more
        room.reserve(source.size());
        target.swap(room);
        for (const xvar& v : source) copy_all(target.emplace_back(), v);
      } else if (const bundle_store* const source = bundle_access::store(cell::as_bundle(*from))) {
        bundle_access::set(cell::as_bundle(*to), copy_entries(*source));
      }
    }
  }

 private:
  void later(var& to, const var& from) { later_.emplace_back(&to, &from); }

  std::vector<std::pair<var*, const var*>> later_;
};

/// Looks for the place of a text in a bundle.
class text_search {
 public:
  explicit text_search(std::wstring_view text) noexcept
      : at_(text.data()), looks_(text.size() / units_copied_in_a_look) {}

  bool may_be_in(const bundle& whole) {
    look_into(whole);
    while (!found_ && !open_.empty()) {
      const var& container = *open_.back();
      open_.pop_back();
      if (cell::kind_of(container) == kind::bundle) {
        look_into(cell::as_bundle(container));
      } else {
        for (const xvar& v : cell::as_list(container)) {
          if (look_at_all(v)) break;
        }
      }
    }
    return found_;
  }

 private:
  static constexpr std::size_t units_copied_in_a_look = 16;

  bool is_in(std::wstring_view held) noexcept {
    const std::less_equal<> before;  // of any two addresses
    return found_ = found_ || (before(held.data(), at_) && before(at_, held.data() + held.size()));
  }

  bool look_at(const var& v) {
    if (looks_ == 0) return found_ = true;
    --looks_;
    switch (cell::kind_of(v)) {
      case kind::text:
      case kind::string_text:
        return is_in(cell::text(v));
      case kind::memo:
        return is_in(cell::pointer<memo>(v)->to_string());
      case kind::object:
        return found_ = true;  // knows best what it holds
      case kind::list:
      case kind::bundle:
        open_.push_back(&v);
        return false;
      default:
        return false;
    }
  }

  bool look_at_all(const xvar& v) {
    if (const auto* const qualities = cell::qualities(v)) {
      for (const auto& [key, value] : *qualities) {
        if (is_in(key) || look_at(value)) return true;
      }
    }
    return look_at(v);
  }

  void look_into(const bundle& in) {
    const bundle_store* const store = bundle_access::store(in);
    for (std::size_t n = 0; store && n < store->size(); ++n) {
      const bundle::entry* const each = store->nth(n);
      if (is_in(each->first) || look_at_all(each->second)) return;
    }
  }

  const wchar_t* at_;
  std::size_t looks_;
  bool found_ = false;
  std::vector<const var*> open_;
};

}  // namespace

bool may_hold(const bundle& whole, std::wstring_view text) { return text_search(text).may_be_in(whole); }

void drop_tree(var& v) noexcept {
  reaper work;
  work.take(v);
  work.run();
}

void copy_tree(var& to, const var& from) {
  var made;  // complete, or destroyed with what was copied so far
  copier work;
  work.copy(made, from);
  work.run();
  to = std::move(made);
}

bundle_store* copy_store(const bundle_store& from) {
  copier work;
  bundle made;
  bundle_access::set(made, work.copy_entries(from));
  work.run();
  return bundle_access::detach(made);
}

}  // namespace ruvo::detail
