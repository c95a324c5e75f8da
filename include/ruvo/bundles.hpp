// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::bundles: merging a bundle into another one, and a program's arguments as a bundle.
//
//   ruvo::bundles::merge(settings, of_user);                 // what the user says replaces
//   ruvo::bundles::keep_existing keep;
//   ruvo::bundles::merge(settings, defaults, &keep);         // what is there stays

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/fwd.hpp>

#include <string>
#include <vector>

namespace ruvo::bundles {

/// Decides what a merge takes. Ready ones stand below; a filter of one's own derives from this.
class KESTA_API imerged_filter {
 public:
  /// Called for each value of the source, before what is in it. `path` are the folded keys that lead there,
  /// with the separator of the merge between them. `target` is what the target has there, or a null value
  /// that does not belong to it yet; the filter may change it, and nothing else of the target, nor of the
  /// source.
  ///
  /// True takes the value as a merge without a filter does: it replaces `target`, but a null value replaces
  /// nothing, and a bundle is gone into, with a call for each value in it. Where `target` holds no bundle,
  /// one is made for what comes out of that, if anything does. False leaves `target` as the filter left it: a
  /// key that the target lacks is added only when its value is not null now.
  ///
  /// What it throws ends the merge.
  virtual bool on_merge(const std::wstring& path, xvar& target, const xvar& source) = 0;
  virtual ~imerged_filter();

 protected:
  imerged_filter() noexcept;
  imerged_filter(const imerged_filter&) noexcept;
  imerged_filter& operator=(const imerged_filter&) noexcept;
};

/// Merges `source` into `target`: keys that the target lacks are added, bundles that both have are merged in
/// their turn, and of other values that of the source replaces the target's; qualities are merged, as in
/// every assignment to an xvar. A null value says nothing: it replaces no value. Lists are values and are
/// replaced as a whole. Keys that are added come behind the others, in the order and the spelling of the
/// source.
///
/// The source may be the target, or a part of it, or the other way round: what counts is the source as it
/// was. From an rvalue the values are moved; then the target must not be a part of it. Takes the time of a
/// copy of the source and of a look-up for each of its values, and no stack for what is nested. When memory
/// fails or the filter throws, the target keeps what was merged before.
KESTA_API void merge(bundle& target, const bundle& source, imerged_filter* filter = nullptr,
                     char separator = '.');
KESTA_API void merge(bundle& target, bundle&& source, imerged_filter* filter = nullptr, char separator = '.');

/// What the target has stays; null counts as missing. Bundles that both have are merged.
class KESTA_API keep_existing : public imerged_filter {
 public:
  keep_existing() noexcept;
  keep_existing(const keep_existing& other) noexcept;
  keep_existing& operator=(const keep_existing& other) noexcept;
  ~keep_existing() override;
  bool on_merge(const std::wstring& path, xvar& target, const xvar& source) override;
};

/// What the source has replaces, as without a filter; to be named where a filter is asked for.
class KESTA_API replace_existing : public imerged_filter {
 public:
  replace_existing() noexcept;
  replace_existing(const replace_existing& other) noexcept;
  replace_existing& operator=(const replace_existing& other) noexcept;
  ~replace_existing() override;
  bool on_merge(const std::wstring& path, xvar& target, const xvar& source) override;
};

/// The elements of a list go behind those of the target's list; all else replaces.
class KESTA_API append_lists : public imerged_filter {
 public:
  append_lists() noexcept;
  append_lists(const append_lists& other) noexcept;
  append_lists& operator=(const append_lists& other) noexcept;
  ~append_lists() override;
  bool on_merge(const std::wstring& path, xvar& target, const xvar& source) override;
};

/// Only what these paths lead to, with all that is in it, is taken, in whatever case they and the keys are
/// written; all else of the source is passed over.
class KESTA_API only_keys : public imerged_filter {
 public:
  /// `inner`, when given, decides about what the paths let through; it has to live as long as this filter.
  /// The separator is that of the merge.
  explicit only_keys(std::vector<std::wstring> paths, imerged_filter* inner = nullptr, char separator = '.');
  only_keys(const only_keys& other);
  only_keys& operator=(const only_keys& other);
  ~only_keys() override;
  /// Compares with each of the paths, as far as both go.
  bool on_merge(const std::wstring& path, xvar& target, const xvar& source) override;

 private:
  std::vector<std::wstring> paths_;
  imerged_filter* inner_;
  char separator_;
};

/// Reads the arguments of a program, without its own name: `--server.port=8080` puts the text "8080" on the
/// path, `--verbose` puts true. Of a path that comes twice the last counts. What does not begin with "--",
/// and all behind a "--" that stands alone, goes to `rest`. Both results are replaced.
///
///   ruvo::bundles::read_arguments(values, rest, {argv + 1, argv + argc}, failure);
///
/// True is success; a failure leaves both as they were and is copied to `err`: exc::BadArgument with the path
/// of an argument in which a key is empty (`--=1`, `--a..b=1`).
KESTA_API bool read_arguments(bundle& out, std::vector<std::wstring>& rest,
                              const std::vector<std::wstring>& arguments, exception& err,
                              char separator = '.');

}  // namespace ruvo::bundles
