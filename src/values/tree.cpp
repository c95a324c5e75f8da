// SPDX-License-Identifier: BSL-1.0

// Copying, searching and destroying nested values.

#include <ruvo/binary.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/memo.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "base/simd.hpp"
#include "memory/block_cache.hpp"
#include "values/object.hpp"
#include "values/walk.hpp"

namespace ruvo::detail {

namespace {

/// Takes containers out of their cells and destroys them when nothing nested is left in them. No visitor of
/// the walk, whose stack may lack memory and whose places would go with what is destroyed: here the
/// containers themselves are chained, those that come first in front, as that is how they lie in memory.
class reaper {
 public:
  void take(var& v) noexcept {
    if (cell::kind_of(v) == kind::list) {
      list* const gone = &cell::as_list(v);
      list::vector elements;
      gone->swap(elements);
      push<dying_list>(gone, is_list, std::move(elements));
    } else if (cell::kind_of(v) == kind::bundle) {
      bundle* const gone = &cell::as_bundle(v);
      push<dying_bundle>(gone, 0, bundle_access::detach(*gone));
    } else {
      return;
    }
    cell::forget(v);
  }
  template <class Elements>
  void take_elements(Elements& in) noexcept {
    for (auto at = in.end(); at != in.begin();) take_all(*--at);
  }
  /// With the store.
  void take_members(bundle_store* in) noexcept { bundle_store::drop(in, *this); }

  // As bundle_store::drop() calls it.
  void before(xvar& value) noexcept { take_all(value); }
  void release(const key_shape& shape) noexcept {
    if (shape_ != &shape) settle();
    shape_ = &shape;
    ++shares_;
  }

  void run() noexcept {
    while (chain_ != 0) {
      const std::uintptr_t first = chain_;
      if (first & is_list) {
        auto* const gone = reinterpret_cast<dying_list*>(first - is_list);
        chain_ = gone->next;
        take_elements(gone->elements);
        unmake(gone);
      } else {
        auto* const gone = reinterpret_cast<dying_bundle*>(first);
        chain_ = gone->next;
        if (gone->store) take_members(gone->store);
        unmake(gone);
      }
    }
    settle();
  }

 private:
  static constexpr std::uintptr_t is_list = 1;  // beside the address

  // What takes the place of a container that waits.
  struct dying_list {
    std::uintptr_t next;
    list::vector elements;
  };
  struct dying_bundle {
    std::uintptr_t next;
    bundle_store* store;
  };

  template <class Dying, class T, class Inside>
  void push(T* container, std::uintptr_t what, Inside inside) noexcept {
    static_assert(sizeof(Dying) == sizeof(T));
    static_assert(alignof(Dying) == alignof(T));
    container->T::~T();  // also an empty vector may have something, as those of debug libraries do
    chain_ = reinterpret_cast<std::uintptr_t>(new (container) Dying{chain_, std::move(inside)}) + what;
  }
  void take_all(xvar& v) noexcept {
    if (auto* const qualities = cell::qualities(v)) {
      for (auto& [key, value] : *qualities) take(value);
    }
    take(v);
  }

  void settle() noexcept {
    if (shape_) shape_->release(shares_);
    shape_ = nullptr;
    shares_ = 0;
  }

  std::uintptr_t chain_ = 0;
  const key_shape* shape_ = nullptr;  // of the bundles that went last; one atomic step for all of them
  std::uint64_t shares_ = 0;
};

/// Where the copies of a container's values go.
struct copied_to {
  list* copies = nullptr;
  bundle_store* copied_members = nullptr;
};

/// Copies cells. A container is made with room for all its values, which never move, and filled by the walk.
class copier : public visitor {
 public:
  using frame = walk<const xvar, copied_to>::frame;

  void copy(var& to, const var& from) {
    switch (cell::kind_of(from)) {
      case kind::text:
      case kind::string_text:
        return cell::set_text(to, cell::text(from));
      case kind::binary:
        return cell::set_pointer(to, kind::binary, make<binary>(*cell::pointer<binary>(from)));
      case kind::memo:
        return cell::set_pointer(to, kind::memo, make<memo>(*cell::pointer<memo>(from)));
      case kind::decimal:
        return cell::set_pointer(to, kind::decimal, make<ruvo::decimal>(*cell::pointer<ruvo::decimal>(from)));
      case kind::object:
        return cell::set_pointer(to, kind::object, cell::pointer<object>(from)->clone());
      case kind::list:
        return copy(cell::set_box<list>(to), cell::as_list(from));
      case kind::bundle:
        return copy(cell::set_box<bundle>(to), bundle_access::store(cell::as_bundle(from)));
      default:
        to = from;  // held inside the cell
    }
  }
  void copy(list& to, const list& from) {
    list::vector room;
    room.reserve(from.size());
    to.swap(room);
    walk_.open(from).copies = &to;
  }
  void copy(bundle& to, const bundle_store* from) {
    if (!from) return;
    bundle_store* const made = bundle_store::like(*from);
    bundle_access::set(to, made);
    walk_.open(from).copied_members = made;
  }

  void run() { walk_.run(*this); }
  void enter(const frame& f) {
    values_ += f.size;
    if (!blocks_ && values_ >= many) blocks_.emplace();
  }
  void element(const frame& f, const xvar& v) { copy_all(f.copies->emplace_back(), v); }
  void member(const frame& f, const std::wstring&, const xvar& v) {
    copy_all(f.copied_members->nth(f.taken - 1)->second, v);
  }

 private:
  void copy_all(xvar& to, const xvar& from) {
    copy(to, from);
    const auto* const qualities = cell::qualities(from);
    if (!qualities || qualities->empty()) return;
    auto& made = cell::qualities(to) = make<xvar::qualities_map>();
    for (const auto& [key, value] : *qualities) copy(made->try_emplace(made->end(), key)->second, value);
  }

  static constexpr std::size_t many = 2000;  // as many as a large document has

  walk<const xvar, copied_to> walk_;
  std::size_t values_ = 0;
  std::optional<document_blocks> blocks_;
};

/// Looks for the place of a text in a bundle.
class text_search : public visitor {
 public:
  explicit text_search(std::wstring_view text) noexcept
      : at_(text.data()), looks_(text.size() / units_copied_in_a_look) {}

  bool may_be_in(const bundle& whole) {
    walk_.open(whole);
    walk_.run(*this);
    return found_;
  }

  void element(const walk<>::frame&, const xvar& v) {
    if (look_at_all(v)) walk_.stop();
  }
  void member(const walk<>::frame&, const std::wstring& key, const xvar& v) {
    if (is_in(key) || look_at_all(v)) walk_.stop();
  }

 private:
  static constexpr std::size_t units_copied_in_a_look = 16;

  bool is_in(std::wstring_view held) noexcept {
    const std::less_equal<> before;  // of any two addresses
    return found_ = before(held.data(), at_) && before(at_, held.data() + held.size());
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
        walk_.open_held(v);
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

  const wchar_t* at_;
  std::size_t looks_;
  bool found_ = false;
  walk<> walk_;
};

}  // namespace

bool may_hold(const bundle& whole, std::wstring_view text) { return text_search(text).may_be_in(whole); }

void drop_store(bundle_store* store) noexcept {
  const release_of_many release;
  reaper work;
  work.take_members(store);
  work.run();
}

void drop_elements(list& in) noexcept {
  const release_of_many release;
  reaper work;
  work.take_elements(in);
  work.run();
  in.clear();
}

void drop_tree(var& v) noexcept {
  const release_of_many release;
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
  work.copy(made, &from);
  work.run();
  return bundle_access::detach(made);
}

}  // namespace ruvo::detail
