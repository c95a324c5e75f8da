// SPDX-License-Identifier: BSL-1.0

// ruvo::zip::reader: opening, listing, one entry.

#include <ruvo/exc.hpp>
#include <ruvo/zip.hpp>

#include <algorithm>
#include <bit>
#include <utility>

#include "system/code_page.hpp"
#include "zip/failures.hpp"
#include "zip/open_archive.hpp"

namespace ruvo::zip {

namespace {

/// Into a vector, which grows with what comes rather than with what was promised.
class memory_outlet final : public outlet {
 public:
  explicit memory_outlet(std::uint64_t size) : most_(static_cast<std::size_t>(size) + 1) {
    store_.resize(std::min(most_, first_size));
  }
  char* room(std::size_t& size) override {
    if (filled_ == store_.size()) store_.resize(std::min(most_, 2 * filled_));
    size = std::min(store_.size() - filled_, piece_size);
    return reinterpret_cast<char*>(store_.data()) + filled_;
  }
  bool take(std::size_t count) override {
    filled_ += count;
    return true;
  }
  std::vector<unsigned char> content() && {
    store_.resize(filled_);
    return std::move(store_);
  }

 private:
  static constexpr std::size_t first_size = std::size_t{1} << 26;

  std::size_t most_;  // one more than what is promised, so that what is beyond shows
  std::vector<unsigned char> store_;
  std::size_t filled_ = 0;
};

void expect_page(unsigned code_page) {
  if (platform::from_code_page("\x80", code_page).empty())
    throw exc::BadArgument(L"code_page " + std::to_wstring(code_page));
}

/// The entry of the list, if it is the one that the caller has from it.
record record_of(const open_archive& in, const entry& which) {
  if (which.index >= in.list.size() || in.name(in.list.get(which.index)) != which.name)
    throw exc::BadArgument(which.name);
  return in.list.get(which.index);
}

binary content_of(open_archive& from, const record& which, const std::wstring& name) {
  from.expect_readable(which, name);
  if (which.size > from.most.memory_bytes) throw failure_of<exc::zipLimit>(name, L"memoria");
  memory_outlet to(which.size);
  from.unpack(which, name, to);
  binary out;
  static_cast<std::vector<unsigned char>&>(out) = std::move(to).content();
  return out;
}

/// Gives the entry a bucket by its name: the first entries of each stand in `buckets`, one more than there
/// are.
void make_buckets(open_archive& of) {
  const std::size_t count = of.list.size(), mask = std::bit_ceil(count + 1) - 1;
  std::vector<std::uint32_t> keys(count), starts(mask + 2), entries(count);
  for (std::size_t n = 0; n < count; ++n) {
    keys[n] = static_cast<std::uint32_t>(exact_key_of(of.list.get(n), of.code_page) & mask);
    ++starts[keys[n] + 1];
  }
  for (std::size_t n = 1; n < starts.size(); ++n) starts[n] += starts[n - 1];
  std::vector<std::uint32_t> next(starts);
  for (std::size_t n = 0; n < count; ++n) entries[next[keys[n]]++] = static_cast<std::uint32_t>(n);
  of.buckets = std::move(starts);
  of.in_buckets = std::move(entries);
}

}  // namespace

reader::reader() noexcept = default;
reader::reader(reader&&) noexcept = default;
reader::~reader() = default;
reader& reader::operator=(reader&&) noexcept = default;

bool reader::open(const file& archive, exception& err, const limits& most, unsigned code_page) {
  state_.reset();
  return is_done(err, archive, [&] {
    expect_page(code_page);
    if (!archive.is_file()) throw no_source(archive);
    state_ = std::make_unique<open_archive>(archive, most, code_page);
  });
}

bool reader::open_bytes(binary archive, exception& err, const limits& most, unsigned code_page) {
  state_.reset();
  return is_done(err, {}, [&] {
    expect_page(code_page);
    state_ = std::make_unique<open_archive>(std::move(archive), most, code_page);
  });
}

void reader::close() noexcept { state_.reset(); }

std::size_t reader::size() const noexcept { return state_ ? state_->list.size() : 0; }

entry reader::get(std::size_t index) const {
  if (index >= size()) throw detail::missing_index(index, size());
  return state_->describe(index);
}

std::vector<entry> reader::entries() const {
  std::vector<entry> out;
  out.reserve(size());
  for (std::size_t n = 0; n < size(); ++n) out.push_back(state_->describe(n));
  return out;
}

bool reader::find(const std::wstring& name, entry& out) const {
  if (!size()) return false;
  if (state_->buckets.empty()) make_buckets(*state_);
  std::wstring wanted = name;
  use_slashes(wanted);
  const std::size_t bucket = exact_key(wanted) & (state_->buckets.size() - 2);
  for (std::size_t n = state_->buckets[bucket]; n < state_->buckets[bucket + 1]; ++n) {
    const std::size_t index = state_->in_buckets[n];
    if (state_->name(state_->list.get(index)) != wanted) continue;
    out = state_->describe(index);
    return true;
  }
  return false;
}

std::wstring reader::comment() const {
  return state_ ? decoded(state_->list.comment(), state_->code_page) : std::wstring();
}

bool reader::read(const entry& which, binary& out, exception& err) {
  return is_done(err, which.name, [&] {
    if (!state_) throw exc::BadArgument(which.name);
    out = content_of(*state_, record_of(*state_, which), which.name);
  });
}

bool reader::read(const std::wstring& name, binary& out, exception& err) {
  return is_done(err, name, [&] {
    entry found;
    if (!find(name, found)) throw no_source(name);
    out = content_of(*state_, state_->list.get(found.index), found.name);
  });
}

}  // namespace ruvo::zip
