// SPDX-License-Identifier: BSL-1.0

// Values of standard JSON: containers when they are complete, names that were met before or not.

#include "serializer/json/standard_tree.hpp"

#include <algorithm>
#include <iterator>
#include <memory>

#include "values/folded_key.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::kind;
using detail::name_node;

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
  xvar made = f.is_object ? made_object(f) : made_list(f);
  values_.drop_to(f.first_value);
  frames_.pop();
  --depth_;
  if (depth_ > 0) next_ = frames_.top().next;
  if (values_.is_full()) values_.grow();
  values_.push(std::move(made));
}

xvar json_builder::made_list(const frame& f) {
  const std::size_t size = values_.size() - f.first_value;
  account(sizeof(detail::boxed<list>) + size * sizeof(xvar));
  xvar made;
  list& inside = cell::set_box(made, kind::list, list());
  if (size > 0) {
    xvar* const first = values_.at(f.first_value);
    list::vector values(std::make_move_iterator(first), std::make_move_iterator(first + size));
    inside.swap(values);
  }
  return made;
}

xvar json_builder::made_object(frame& f) {
  const std::size_t size = values_.size() - f.first_value;
  constexpr std::size_t each = sizeof(entry) + sizeof(entry*) + sizeof(std::uint32_t) + 1;
  account(sizeof(detail::boxed<bundle>) + (size > 0 ? sizeof(bundle_store) : 0) + size * each);
  xvar made;
  bundle& inside = cell::set_box(made, kind::bundle, bundle());
  if (size > 0) bundle_access::set(inside, store_of(f, size));
  return made;
}

bundle_store* json_builder::store_of(frame& f, std::size_t size) {
  xvar* const values = values_.at(f.first_value);
  if (!f.store) {
    name_node* node = f.at;
    return bundle_store::of_known(size, values, detail::name_tree::ranks_of(*node), [&node]() noexcept {
      name_node& last = *node;
      node = last.before;
      return last.take_key();
    });
  }
  for (std::size_t n = 0; n < size; ++n) {
    if (entry* const place = places_[f.first_place + n])
      static_cast<var&>(place->second) = static_cast<var&&>(values[n]);
  }
  places_.resize(f.first_place);
  bundle_store* const store = bundle_store::fitted(f.store);
  f.store = nullptr;
  return store;
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
  if (node) return take_node(node);
  leave_tree(f);
  return false;
}

void json_builder::leave_tree(frame& f) {
  const std::size_t size = f.at ? f.at->depth : 0;
  const name_node* way[detail::name_tree::most_depth];
  for (const name_node* node = f.at; node; node = node->before) way[node->depth - 1] = node;
  f.first_place = places_.size();
  f.store = bundle_store::make(std::max<std::size_t>(8, 2 * size));
  for (std::size_t n = 0; n < size; ++n)
    places_.push_back(f.store->add(detail::key_view(*way[n]->key), way[n]->key));
  next_ = &nothing_known;
}

void json_builder::take_into_store(frame& f, std::wstring_view name) {
  if (places_.size() - f.first_place >= options_.limits.members) throw limit_reached{L"miembros"};
  const detail::folded_key folded(name);
  const detail::key_view key(folded);
  entry* place = f.store->find(key);
  if (!place) {
    account(name.size() * sizeof(wchar_t) * (folded.written().data() == key.text.data() ? 1 : 2));
    place = f.store->add(key);
  } else if (options_.twins == json_twins::failure) {
    throw name_twice{std::wstring(name)};
  } else if (options_.twins == json_twins::first) {
    place = nullptr;
  }
  places_.push_back(place);
}

}  // namespace ruvo::serializer
