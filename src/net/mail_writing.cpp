// SPDX-License-Identifier: BSL-1.0

// Mails as messages of parts.

#include <ruvo/exc.hpp>
#include <ruvo/smtp/wire.hpp>
#include <ruvo/texto/markup.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/utf.hpp"
#include "base/wire/ascii_set.hpp"
#include "base/wire/encoded_words.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"

namespace ruvo::smtp {

namespace {

// --- addresses

/// Whether a mail has the form of one, in any characters.
bool has_mail_form(std::wstring_view mail) {
  constexpr std::wstring_view marks = L" \t<>()[],;:\\\"";
  const std::size_t at = mail.find(L'@');
  return at != mail.npos && at != 0 && at + 1 != mail.size() && mail.find_first_of(marks) == mail.npos &&
         mail.find(L'@', at + 1) == mail.npos;
}

[[noreturn]] void refuse_mail(const wchar_t* field, const std::wstring& mail) {
  throw exc::BadArgument(field + (L": " + mail));
}

/// What may stand in a field and in a command of the transport.
void expect_mail(const wchar_t* field, const std::wstring& mail, const mime::write_options& options) {
  if (!wire::is_field_value(mail)) throw exc::BadArgument(field);
  if (!has_mail_form(mail) || !(options.utf8 || wire::is_ascii_text(mail))) refuse_mail(field, mail);
}

/// Whether a recipient has a mail. Fails for one that this transport cannot have.
bool is_recipient(const wchar_t* field, const address& recipient, const mime::write_options& options) {
  const std::wstring& mail = recipient.get_mail();
  if (!wire::is_field_value(mail)) throw exc::BadArgument(field);
  if (recipient.check()) return true;
  if (wire::is_ascii_text(mail) || !has_mail_form(mail)) return false;
  expect_mail(field, mail, options);
  return true;
}

/// What may stand for a name without more: words of RFC 5322's atoms.
bool is_bare_name(std::wstring_view name) {
  constexpr wire::ascii_set stays = wire::alphanumeric.with(" !#$%&'*+-/=?^_`{|}~");
  return wire::is_plain_text(name) &&
         std::all_of(name.begin(), name.end(), [&](wchar_t c) { return stays.has(c); });
}

/// "name <mail>" for a field, with so many characters before it.
std::wstring mailbox_text(const wchar_t* field, const address& who, std::size_t column) {
  const std::wstring& name = who.get_name();
  if (!wire::is_field_value(name)) throw exc::BadArgument(field);
  if (name.empty()) return who.get_mail();
  constexpr std::size_t longest_quoted = 60;
  std::wstring text;
  if (is_bare_name(name)) {
    text = name;
  } else if (wire::is_plain_text(name) && name.size() <= longest_quoted) {
    wire::append_quoted(text, name);
  } else {
    std::string words;
    wire::append_encoded_words(words, name, wire::wanted_line - std::min(column, wire::wanted_line));
    text = texto::to_utf_16(words);
  }
  return text.append(L" <").append(who.get_mail()).append(L">");
}

// --- fields

void put_sender(mime::part& out, const wchar_t* field, const address& who,
                const mime::write_options& options) {
  expect_mail(field, who.get_mail(), options);
  const std::size_t column = std::wstring_view(field).size() + 2;
  out.set_field(field, mailbox_text(field, who, column));
}

void put_list(mime::part& out, const wchar_t* field, const email& message, email::RCTP role,
              const mime::write_options& options) {
  std::wstring all;
  for (const auto& [recipient, its_role] : message) {
    if (its_role != role || !is_recipient(field, recipient, options)) continue;
    const std::size_t column = all.empty() ? std::wstring_view(field).size() + 2 : 1;
    if (!all.empty()) all.append(L", ");
    all.append(mailbox_text(field, recipient, column));
  }
  if (!all.empty()) out.set_field(field, all);
}

void put_fields(mime::part& out, const email& message, const mime::write_options& options) {
  out.set_field(L"Date", message.get_date().format(email::date_pattern, "C"));
  put_sender(out, L"From", message.get_from(), options);
  if (!message.get_sender().empty()) put_sender(out, L"Sender", message.get_sender(), options);
  put_list(out, L"To", message, email::TO_, options);
  put_list(out, L"Cc", message, email::CC_, options);
  if (!message.get_subject().empty()) out.set_header(L"Subject", message.get_subject());
  if (!message.get_uuid().empty()) out.set_field(L"Message-ID", message.get_message_id());
}

// --- content

/// Whether the page shows the file of this name, by "cid:" and the name.
bool is_shown(std::wstring_view page, std::wstring_view name) {
  constexpr wire::ascii_set plain = wire::alphanumeric.with("._-");
  const auto is_plain = [&](wchar_t c) { return plain.has(c); };
  if (name.empty() || !std::all_of(name.begin(), name.end(), is_plain)) return false;
  const std::wstring wanted = L"cid:" + std::wstring(name);
  for (std::size_t at = page.find(wanted); at != page.npos; at = page.find(wanted, at + 1)) {
    const std::size_t behind = at + wanted.size();
    if (behind == page.size() || !is_plain(page[behind])) return true;
  }
  return false;
}

mime::part content_of(const email& message) {
  const std::wstring body = texto::is_html(message.get_body()) ? message.get_body() : std::wstring();
  mime::part page = mime::part::text(message.get_hmtl_post(), L"html");
  mime::part shown = mime::part::multipart(L"related"), all = mime::part::multipart(L"mixed");
  std::vector<mime::part> attached;
  shown.add(page);
  for (const file& each : message.get_attach()) {
    mime::part made = mime::part::attachment(each);
    const std::wstring name = each.get_name();
    if (is_shown(body, name)) {
      shown.add(made.set_disposition(L"inline").set_content_id(name));
    } else {
      attached.push_back(std::move(made));
    }
  }
  mime::part texts = mime::part::multipart(L"alternative");
  texts.add(mime::part::text(message.get_plain_post()));
  texts.add(shown.get_parts().size() > 1 ? std::move(shown) : std::move(page));
  if (attached.empty()) return texts;
  all.add(std::move(texts));
  for (mime::part& each : attached) all.add(std::move(each));
  return all;
}

template <class Out>
bool write_mail(Out& out, const email& message, exception& err, const mime::write_options& options) {
  mime::part made;
  return to_mime(made, message, err, options) && mime::write(out, made, err, options);
}

const wchar_t* field_of(email::RCTP role) noexcept {
  if (role == email::TO_) return L"To";
  return role == email::CC_ ? L"Cc" : L"Bcc";
}

}  // namespace

bool seal(envelope& out, const email& message, exception& err, const mime::write_options& options) {
  return http::succeeds(err, [&] {
    envelope made;
    const bool has_sender = !message.get_sender().empty();
    made.sender = has_sender ? message.get_sender() : message.get_from();
    if (made.sender.empty()) throw exc::EmptyArgument(L"From");
    expect_mail(has_sender ? L"Sender" : L"From", made.sender.get_mail(), options);
    for (const auto& [recipient, role] : message) {
      if (role < email::TO_) continue;
      (is_recipient(field_of(role), recipient, options) ? made.recipients : made.left_out)
          .push_back(recipient);
    }
    out = std::move(made);
  });
}

bool to_mime(mime::part& out, const email& message, exception& err, const mime::write_options& options) {
  return http::succeeds(err, [&] {
    if (message.get_from().empty()) throw exc::EmptyArgument(L"From");
    mime::part made = content_of(message);
    put_fields(made, message, options);
    out = std::move(made);
  });
}

bool write(std::string& out, const email& message, exception& err, const mime::write_options& options) {
  return write_mail(out, message, err, options);
}
bool write(const file& to, const email& message, exception& err, const mime::write_options& options) {
  return write_mail(to, message, err, options);
}
bool write(const mime::piece_sink& to, const email& message, exception& err,
           const mime::write_options& options) {
  return write_mail(to, message, err, options);
}

}  // namespace ruvo::smtp
