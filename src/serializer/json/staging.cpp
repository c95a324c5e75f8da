// SPDX-License-Identifier: BSL-1.0

// Values of JSON: containers when they are complete, names that were met before or not.

#include "serializer/json/staging.hpp"

#include <algorithm>
#include <iterator>
#include <memory>

#include "values/folded_key.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::name_node;
using detail::shared_key;

namespace {

/// The names of an object up to a node, the first one first.
class name_way {
 public:
  explicit name_way(const name_node* last) noexcept : size_(last ? last->depth : 0) {
    for (const name_node* node = last; node; node = node->before) keys_[node->depth - 1] = node->key;
  }

  std::size_t size() const noexcept { return size_; }
  const shared_key* operator[](std::size_t n) const noexcept { return keys_[n]; }

 private:
  const std::size_t size_;
  const shared_key* keys_[detail::name_tree::most_depth] = {};
};

}  // namespace

known_names::known_names(detail::name_tree detail::thread_cache::*kept) {
#ifdef KESTA_PLAIN_HEAP  // for checkers that must see whoever uses keys too long
  static_cast<void>(kept);
  tree_ = &own_.emplace();
#else
  detail::thread_cache* const cache = detail::thread_cache::local();
  tree_ = cache ? &(cache->*kept) : &own_.emplace();
  if (tree_->is_full()) tree_->clear();
#endif
}

detail::name_branch json_builder::nothing_known;

void value_stack::grow() {
  const std::size_t wanted = 2 * capacity(), used = size();
  auto* const wider = static_cast<xvar*>(detail::take_block(wanted * sizeof(xvar)));
  std::uninitialized_move(first_, end_, wider);
  give_room();
  first_ = wider;
  end_ = wider + used;
  limit_ = wider + wanted;
}

void json_builder::clear() noexcept {
  values_.drop_to(0);
  for (; depth_ > 0; --depth_) {
    bundle_store::drop(frames_.top().store);
    frames_.pop();
  }
  places_.clear();
  next_ = &nothing_known;
  elements_ = bytes_ = 0;
}

// --- values

void json_builder::make_room() {
  if (elements_ == options_.limits.elements) throw limit_reached{L"elementos"};
  const std::size_t wanted = 2 * values_.capacity() * sizeof(xvar);
  if (wanted > options_.limits.bytes || bytes_ > options_.limits.bytes - wanted)
    throw limit_reached{L"memoria"};
  values_.grow();
}

void json_builder::long_text(xvar& to, std::string_view text) {
  account_text(text.size());
  widen(cell::set_text_room(to, text.size()), text.data(), text.size());
}

// --- containers

void json_builder::open(bool is_object) {
  if (depth_ == options_.limits.depth) throw limit_reached{L"profundidad"};
  if (elements_ == options_.limits.elements) throw limit_reached{L"elementos"};
  name_node* holder = nullptr;
  if (depth_ > 0) {
    frame& around = frames_.top();
    around.next = next_;
    holder = around.at ? around.at : around.holder;
  }
  frame& made = frames_.push();
  ++depth_;
  ++elements_;
  made.first_value = values_.size();
  made.is_object = is_object;
  made.holder = holder;
  next_ = !holder ? &names_.top : holder->inside ? holder->inside : &nothing_known;
}

void json_builder::close() {
  frame& f = frames_.top();
  if (f.first_value == values_.capacity()) values_.grow();  // for the container: what may fail comes first
  const bool all_moved = !f.store;                          // else some may be dropped
  xvar made = f.is_object ? made_object(f) : made_list(f);
  if (all_moved) {
    values_.forget_to(f.first_value);
  } else {
    values_.drop_to(f.first_value);
  }
  frames_.pop();
  --depth_;
  if (depth_ > 0) next_ = frames_.top().next;
  values_.push(std::move(made));
}

xvar json_builder::made_list(const frame& f) {
  const std::size_t size = values_.size() - f.first_value;
  account(sizeof(list) + size * sizeof(xvar));
  xvar made;
  list& inside = cell::set_box<list>(made);
  if (size > 0) {
    xvar* const first = values_.at(f.first_value);
    list::vector values(std::make_move_iterator(first), std::make_move_iterator(first + size));
    inside.swap(values);
  }
  return made;
}

xvar json_builder::made_object(frame& f) {
  const std::size_t size = values_.size() - f.first_value;
  const std::size_t each = sizeof(entry) + (f.store ? sizeof(entry*) + sizeof(std::uint32_t) + 1 : 0);
  account(sizeof(bundle) + (size > 0 ? sizeof(bundle_store) : 0) + size * each);
  xvar made;
  bundle& inside = cell::set_box<bundle>(made);
  if (size > 0) bundle_access::set(inside, store_of(f, size));
  return made;
}

bundle_store* json_builder::store_of(frame& f, std::size_t size) {
  if (f.store) {
    bundle_store* const store = filled_store(f, size);
    places_.resize(f.first_place);
    return store;
  }
  bundle_store* const store =
      bundle_store::of_shape(detail::name_tree::shape_of(*f.at), values_.at(f.first_value));
  f.at->take_share();
  return store;
}

bundle_store* json_builder::filled_store(frame& f, std::size_t size) noexcept {
  for (std::size_t n = 0; n < size; ++n) {
    if (entry* const place = places_[f.first_place + n])
      static_cast<var&>(place->second) = static_cast<var&&>(*values_.at(f.first_value + n));
  }
  bundle_store* const store = std::exchange(f.store, nullptr);
  try {
    return bundle_store::fitted(store);
  } catch (...) {  // no memory: then with the room that it has to spare
    return store;
  }
}

// --- containers that stay open

void json_builder::settle(json_tree& tree, bundle& outermost) {
  for (frame* f = frames_.begin(); f != frames_.end(); ++f) {
    const bool is_last = f + 1 == frames_.end();
    const std::size_t count = (is_last ? values_.size() : f[1].first_value) - f->first_value;
    if (f->is_object) {
      bundle& to = *tree.innermost_object(&outermost);
      const shared_key* const name = is_last ? nullptr : name_behind(*f, count);
      settle(*f, count, to, !is_last);
      if (name) tree.open(json_tree::member(to, detail::key_view(*name)), !f[1].is_object);
    } else {
      list& to = tree.innermost_list();
      settle(*f, count, to);
      if (!is_last) tree.open(to.on_back(), !f[1].is_object);
    }
  }
  clear();
}

void json_builder::settle(const frame& f, std::size_t count, list& into) {
  const auto first = std::make_move_iterator(values_.at(f.first_value));
  const auto last = first + static_cast<std::ptrdiff_t>(count);
  if (into.empty()) {
    list::vector values(first, last);
    into.swap(values);
  } else {
    into.insert(into.cend(), first, last);
  }
}

/// `named`: whether the name behind the values, if there is one, becomes a member next.
void json_builder::settle(frame& f, std::size_t count, bundle& into, bool named) {
  if (count == 0) return;
  const bool complete = !f.store || named || places_.size() - f.first_place == count;
  if (complete && !bundle_access::store(into)) {
    while (!f.store && f.at->depth > count) f.at = f.at->before;
    return bundle_access::set(into, f.store ? filled_store(f, count) : store_of(f, count));
  }
  const name_way way(f.store ? nullptr : f.at);
  for (std::size_t n = 0; n < count; ++n) {
    const shared_key* const name = f.store ? bundle_store::key_of(places_[f.first_place + n]) : way[n];
    static_cast<var&>(json_tree::member(into, detail::key_view(*name))) =
        static_cast<var&&>(*values_.at(f.first_value + n));
  }
}

/// That of the container inside, behind the values.
const shared_key* json_builder::name_behind(const frame& f, std::size_t count) const noexcept {
  return f.store ? bundle_store::key_of(places_[f.first_place + count]) : f.at->key;
}

// --- names

void json_builder::take_name(const void* written, std::size_t bytes, std::wstring_view name) {
  frame& f = frames_.top();
  if (!f.store && take_into_tree(f, written, bytes, name)) return;
  take_into_store(f, name);
}

namespace {

/// Keeps a share of a key until it is handed on.
class key_share {
 public:
  explicit key_share(const detail::key_view& key)
      : key_(detail::key_with(key.text, key.hash, key.spelling)) {}
  key_share(const key_share&) = delete;
  key_share& operator=(const key_share&) = delete;
  ~key_share() {
    if (key_) release(key_);
  }

  const detail::shared_key* get() const noexcept { return key_; }
  void hand_on() noexcept { key_ = nullptr; }

 private:
  const detail::shared_key* key_;
};

bool is_on_way(const name_node* node, const detail::key_view& key) noexcept {
  while (node && !(node->key->hash == key.hash && *node->key == key.text)) node = node->before;
  return node != nullptr;
}

}  // namespace

/// False where the object has to be given its store now.
bool json_builder::take_into_tree(frame& f, const void* written, std::size_t bytes, std::wstring_view name) {
  if ((f.at ? f.at->depth : 0) >= options_.limits.members) throw limit_reached{L"miembros"};
  detail::name_branch& in = f.at       ? f.at->after
                            : f.holder ? names_.inside_of(*f.holder, written, bytes)
                                       : names_.top;
  name_node* node = detail::name_tree::find(in, written, bytes);
  if (!node) {
    const detail::folded_key folded(name);
    const detail::key_view key(folded);
    if (!is_on_way(f.at, key)) {
      key_share share(key);
      node = names_.add(in, f.at, written, bytes, share.get());
      if (node) share.hand_on();
    }
  }
  if (node && take_node(node)) return true;
  leave_tree(f);
  return false;
}

void json_builder::leave_tree(frame& f) {
  const name_way way(f.at);
  const std::size_t first = places_.size();
  bundle_store* const store = bundle_store::make(std::max<std::size_t>(8, 2 * way.size()));
  try {
    places_.resize(first + way.size());
    for (std::size_t n = 0; n < way.size(); ++n)
      places_[first + n] = store->add(detail::key_view(*way[n]), way[n]);
  } catch (...) {
    bundle_store::drop(store);
    throw;
  }
  f.store = store;
  f.first_place = first;
  next_ = &nothing_known;
}

void json_builder::take_into_store(frame& f, std::wstring_view name) {
  if (places_.size() - f.first_place >= options_.limits.members) throw limit_reached{L"miembros"};
  const detail::folded_key folded(name);
  const detail::key_view key(folded);
  places_.push_back(nullptr);  // first, so that each name in the store has a place
  entry* place = f.store->find(key);
  if (!place) {
    account(name.size() * sizeof(wchar_t) * (folded.written().data() == key.text.data() ? 1 : 2));
    place = f.store->add(key);
  } else if (options_.twins == json_twins::failure) {
    throw name_twice{std::wstring(name)};
  } else if (options_.twins == json_twins::first) {
    place = nullptr;
  }
  places_.back() = place;
}

}  // namespace ruvo::serializer
