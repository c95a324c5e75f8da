// SPDX-License-Identifier: BSL-1.0

// The handle of a bundle.

#include <ruvo/exc.hpp>
#include <ruvo/smart_bundle.hpp>

#include <ostream>

namespace ruvo {

smart_bundle::smart_bundle() noexcept = default;
smart_bundle::smart_bundle(const bundle& value) : target_(std::make_shared<bundle>(value)) {}
smart_bundle::smart_bundle(bundle&& value) : target_(std::make_shared<bundle>(std::move(value))) {}
smart_bundle::smart_bundle(bundle* target) noexcept : target_(std::shared_ptr<void>(), target) {}
smart_bundle::smart_bundle(std::shared_ptr<bundle> shared) noexcept : target_(std::move(shared)) {}
smart_bundle::smart_bundle(const smart_bundle& other) noexcept = default;
smart_bundle::smart_bundle(smart_bundle&& other) noexcept = default;
smart_bundle& smart_bundle::operator=(const smart_bundle& other) noexcept {
  return *this = smart_bundle(other);  // `other` may lie in what this handle alone held
}
smart_bundle& smart_bundle::operator=(smart_bundle&& other) noexcept {
  std::shared_ptr<bundle> taken = std::move(other.target_);
  target_.swap(taken);
  return *this;
}
smart_bundle::~smart_bundle() = default;

smart_bundle smart_bundle::clone() const { return target_ ? smart_bundle(*target_) : smart_bundle(); }

bundle& smart_bundle::there() const {
  if (!target_) throw exc::NullPointer();
  return *target_;
}

smart_bundle::operator xvar() const { return there(); }

std::wstring smart_bundle::to_string() const { return target_ ? target_->to_string() : std::wstring(); }

bool smart_bundle::operator==(const smart_bundle& other) const {
  if (target_ == other.target_) return true;
  return target_ && other.target_ && *target_ == *other.target_;
}

std::wostream& operator<<(std::wostream& out, const smart_bundle& value) { return out << value.to_string(); }

}  // namespace ruvo
