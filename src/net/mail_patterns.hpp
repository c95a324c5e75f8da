// SPDX-License-Identifier: BSL-1.0
#pragma once

// The fixed forms of mail texts, each read in one pass; it has the same answer as the pattern beside it.
// Classes are ASCII.

#include <optional>
#include <string_view>

namespace ruvo::smtp::detail {

/// ^([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d+)?$
bool is_host(std::wstring_view text) noexcept;

/// What a mailbox's text is made of; parts of the text, which must outlive them.
struct mailbox_text {
  enum class scheme_of : unsigned char { none, smtp, smtps } scheme;
  std::wstring_view user, password, host, port;
};

/// ^smtps?://((([^\s]+:[^\s]+)@)?([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d{2,4})?){1}$
/// or, of a text that does not begin with smtps?://,
/// ^((([^\s]+:[^\s]+)@){1}([a-zA-Z0-9\-]+\.){2,3}[a-z]{2}(:\d{2,4})?){1}$
std::optional<mailbox_text> read_mailbox(std::wstring_view text) noexcept;

struct address_text {
  std::wstring_view name, mail;
};

/// The name and what stands in "<>" behind it at the end of the text, whether or not that is a mail address.
std::optional<address_text> split_address(std::wstring_view text) noexcept;

/// ^<MAIL>$ or ^\"*.*\"*\s<MAIL>$, where MAIL is the pattern of texto::is_email
std::optional<address_text> read_address(std::wstring_view text);

}  // namespace ruvo::smtp::detail
