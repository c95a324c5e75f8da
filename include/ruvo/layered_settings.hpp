// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::layered_settings, settings from several places, of which one counts more than the other: those of the
// program, of the machine, of the user, of the command line.
//
//   ruvo::layered_settings settings;
//   settings.set_layer(L"programa", {{L"iva", 21}, {L"tema", L"claro"}});
//   settings.share_layer(L"usuario", ruvo::smart_bundle(&stored));
//   settings.put(L"usuario", L"tema", L"oscuro");           // in `stored`, too
//   settings->get_string(L"tema");                          // oscuro
//   settings.layer_of(L"tema");                             // usuario

#include <ruvo/api.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/smart_bundle.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ruvo {

/// Layers with names, the first one below all others, and one bundle of what they say together: they are
/// merged from below, as bundles::merge() does, so the highest layer that has a value counts, and a null
/// value says nothing. What is not found in any layer is a matter of the getters' fallbacks.
///
/// Names of layers are exact. A name that there is not throws exc::BadArgument (raw 0xEBB8000F) with the
/// name. Neither copied nor moved, since observers may keep its address. No lock: one thread at a time.
class KESTA_API layered_settings {
 public:
  /// Called with a path whose value changed: the folded keys with the separator between them.
  using observer = std::function<void(const std::wstring& path)>;

  /// Without layers. The separator is that of all paths.
  explicit layered_settings(char separator = '.');
  layered_settings(const layered_settings&) = delete;
  layered_settings& operator=(const layered_settings&) = delete;
  ~layered_settings();

  // --- layers

  /// Gives the layer these values; where there is no such layer, makes it, above all others.
  void set_layer(const std::wstring& name, bundle values);
  /// The same with a bundle that others have, too: what is put into the layer is put into it. After other
  /// changes of it call refresh(). Throws exc::NullPointer for a handle without a bundle.
  void share_layer(const std::wstring& name, const smart_bundle& values);
  /// False when there is no such layer.
  bool remove_layer(const std::wstring& name);
  /// The names, the lowest layer first.
  std::vector<std::wstring> get_layers() const;
  /// What the layer itself says, to be stored; valid until the layer is set anew or removed.
  const bundle& get_layer(const std::wstring& name) const;

  /// Puts a value on a path of a layer, as bundle::putOn(). Takes the time of a look-up in each layer, and of
  /// a merge of the value. Of put() and erase() that fail for lack of memory the layer may have what all
  /// together do not have until refresh().
  void put(const std::wstring& name, const std::wstring& path, const xvar& value);
  /// Removes what the layer has at the path, so that the layers below count again. False when that is
  /// nothing.
  bool erase(const std::wstring& name, const std::wstring& path);
  /// Merges all layers anew.
  void refresh();

  // --- reading

  /// What all layers say together; valid until a layer changes.
  const bundle* operator->() const noexcept { return &merged_; }
  const bundle& operator*() const noexcept { return merged_; }
  operator const bundle&() const noexcept { return merged_; }

  /// The layer that the value at the path comes from; of a bundle, the highest one that has a part of it.
  /// Empty when no layer has a value there.
  std::wstring layer_of(const std::wstring& path) const;
  /// The same in Spanish, with the layers that are hidden by it, and what bundle::explain() says of the
  /// value. For people to read; empty when memory fails.
  std::wstring explain(const std::wstring& path) const noexcept;

  // --- observers

  /// Calls `what` for every change at this path, in what is there, or in a bundle that leads there; from now
  /// on until stop_observing(). Gives the number for that, which is never 0.
  ///
  /// Changes are those of what all layers say together, with exact values: what a higher layer hides changes
  /// nothing, and 5L in place of 5 neither. Calls come when the change is complete, a call for each path;
  /// of what lies below 64 levels, for the bundle there. An observer may change the settings, and start and
  /// stop observing: what it changes is notified when the calls for the change before are done. Two observers
  /// that undo each other's changes go on for ever. What an observer throws does not keep the others from
  /// being called; the first of it leaves the operation that made the change. An observer must not destroy
  /// the settings. Throws exc::NullPointer for an empty function.
  std::uint64_t observe(observer what, const std::wstring& path = {});
  /// False when nobody observes with this number.
  bool stop_observing(std::uint64_t number) noexcept;

 private:
  struct layer {
    std::wstring name;
    smart_bundle values;
  };
  struct origin;
  struct watch;

  const layer& layer_named(const std::wstring& name) const;
  void set_layers(std::vector<layer> layers);
  std::size_t changing_part(std::wstring_view path) const;
  void renew(const std::wstring& path);
  origin origin_of(const std::wstring& path) const;
  void notify(std::vector<std::wstring> changed);
  void call_observers(const std::wstring& path, std::exception_ptr& failure) const;

  char separator_;
  bool is_notifying_ = false;
  std::uint64_t last_number_ = 0;
  std::vector<layer> layers_;  // the lowest first
  bundle merged_;
  std::vector<std::shared_ptr<watch>> watches_;
  std::deque<std::wstring> changes_;  // paths that observers are still to be called for
};

}  // namespace ruvo
