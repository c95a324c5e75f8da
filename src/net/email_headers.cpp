// SPDX-License-Identifier: BSL-1.0

// The recipients and the header of a message as text, and back.

#include <ruvo/exc.hpp>
#include <ruvo/smtp/email.hpp>
#include <ruvo/texto/numbers.hpp>

#include <algorithm>
#include <istream>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/wire/dates.hpp"
#include "base/wire/tokens.hpp"
#include "net/mail_patterns.hpp"

namespace ruvo::smtp {

namespace {

constexpr char english[] = "C";

template <class String>
void append(String& out, const String& entry) {
  if (!out.empty()) out.push_back(';');
  out.append(entry);
}

// --- lists of recipients

bool is_mail(std::wstring_view text) { return texto::is_email(std::wstring(text)); }

/// The trimmed text up to the next separator, which `from` is moved behind (beyond the end at the last).
std::wstring_view next_part(std::wstring_view list, std::size_t& from) {
  const std::size_t end = std::min(list.find_first_of(L";,", from), list.size());
  const std::wstring_view part = texto::trimmed(list.substr(from, end - from));
  from = end + 1;
  return part;
}

/// Passes each entry of a list to `take`.
template <class Take>
void split_list(std::wstring_view list, Take take) {
  std::wstring_view entry;  // the parts that belong together
  for (std::size_t from = 0; from <= list.size();) {
    const std::wstring_view part = next_part(list, from);
    const bool mail = is_mail(part);
    if (entry.empty() || mail || entry.back() == L'>') {
      take(entry);
      entry = part;
    } else {
      entry = {entry.data(), static_cast<std::size_t>(part.data() + part.size() - entry.data())};
    }
    if (mail) take(std::exchange(entry, {}));
  }
  take(entry);
}

// --- header lines

/// The next line without its end; `from` is moved behind it.
std::wstring_view next_line(std::wstring_view block, std::size_t& from) {
  const std::size_t end = std::min(block.find(L'\n', from), block.size());
  std::wstring_view line = block.substr(from, end - from);
  if (!line.empty() && line.back() == L'\r') line.remove_suffix(1);
  from = std::min(end + 1, block.size());
  return line;
}

bool is_folded(std::wstring_view block, std::size_t from) {
  return from < block.size() && (block[from] == L' ' || block[from] == L'\t');
}

/// The next field, unfolded; empty at the end of the header.
std::wstring next_field(std::wstring_view block, std::size_t& from) {
  std::wstring field(next_line(block, from));
  while (!field.empty() && is_folded(block, from)) field += next_line(block, from);
  return field;
}

/// The text of a field. A control character, which has no place there, becomes a blank: written again, a lone
/// CR would end the line for some readers, and what follows it would be a field of its own.
std::wstring field_text(std::wstring_view field) {
  std::wstring value(field);
  std::replace_if(
      value.begin(), value.end(), [](wchar_t c) { return !wire::is_field_unit(c); }, L' ');
  return std::wstring(texto::trimmed(value));
}

[[noreturn]] void refuse_field(const std::wstring& field) {
  constexpr std::size_t most_shown = 80;
  throw exc::BadArgument(field.substr(0, most_shown));
}

/// Reads the address of a field; an empty text gives an empty address.
bool read_address(address& out, const std::wstring& text) {
  if (!text.empty() && !is_mail(text)) return out.deserialize(text);
  out = address({}, text);
  return true;
}

/// The same for the sender, who keeps a mail in "<>" that is not valid.
bool read_sender(address& out, const std::wstring& text) {
  if (read_address(out, text)) return true;
  const auto read = detail::split_address(text);
  if (read) out = address(std::wstring(read->name), std::wstring(read->mail));
  return read.has_value();
}

/// Reads the date of RFC 5322 and its obsolete forms; not one whose zone is a name that says nothing.
bool read_header_date(datetime& out, std::wstring_view text) {
  const std::optional<wire::zoned_instant> read = wire::read_mail_date(text);
  if (!read || read->zone == wire::zone_of_writer::foreign) return false;
  out = datetime(read->seconds, out.get_huso_horario());
  return true;
}

/// The identifier in "<uuid@domain>"; whole when the domain is another one.
std::wstring uuid_of(std::wstring_view id, const std::wstring& domain) {
  if (id.size() >= 2 && id.front() == L'<' && id.back() == L'>') id = id.substr(1, id.size() - 2);
  if (!domain.empty() && id.ends_with(domain)) id.remove_suffix(domain.size());
  return std::wstring(id);
}

}  // namespace

/// What reading a header keeps until its end.
struct email::headers_read {
  bool list[BCC + 1] = {};  // whether a list of the role was there
  std::wstring message_id;
};

void email::serialize_recipients(std::wstring& to, std::wstring& cc, std::wstring& cco) const {
  for (const auto& [recipient, role] : recipients_) {
    if (std::wstring* const out = role == TO_ ? &to : role == CC_ ? &cc : role == CCO_ ? &cco : nullptr)
      if (recipient.check()) append(*out, recipient.to_string());
  }
}

void email::serialize_recipients(std::wstring& to, std::wstring& cc) const {
  std::wstring unused;
  serialize_recipients(to, cc, unused);
}

void email::serialize_recipients(std::wstring& to) const {
  std::wstring unused;
  serialize_recipients(to, unused, unused);
}

void email::q_serialize_recipients(std::string& to, std::string& cc, std::string& cco) const {
  for (const auto& [recipient, role] : recipients_) {
    if (std::string* const out = role == TO_ ? &to : role == CC_ ? &cc : role == CCO_ ? &cco : nullptr)
      if (recipient.check()) append(*out, recipient.q_encoded());
  }
}

void email::q_serialize_recipients(std::string& to, std::string& cc) const {
  std::string unused;
  q_serialize_recipients(to, cc, unused);
}

void email::q_serialize_recipients(std::string& to) const {
  std::string unused;
  q_serialize_recipients(to, unused, unused);
}

bool email::put_list(const std::wstring& text, RCTP role) {
  bool all = true;
  const std::wstring own(text.begin(), text.end());  // the text may be a recipient's, which is replaced
  split_list(own, [&](std::wstring_view entry) {
    address recipient;
    if (entry.empty()) return;
    if (read_address(recipient, std::wstring(entry)))
      put(recipient, role);
    else
      all = false;
  });
  return all;
}

bool email::deserialize_recipients(const std::wstring& to, const std::wstring& cc, const std::wstring& cco) {
  const bool all_to = put_list(to, TO_), all_cc = put_list(cc, CC_), all_cco = put_list(cco, CCO_);
  return all_to && all_cc && all_cco;
}

std::wstring email::get_message_id() const {
  if (uuid_.empty()) return {};
  const bool whole = uuid_.find(L'@') != uuid_.npos;
  return L"<" + uuid_ + (whole ? std::wstring() : from_.get_domain()) + L">";
}

std::wstring email::header_block() const {
  std::wstring to, cc, cco;
  serialize_recipients(to, cc, cco);
  std::wstring block = L"Date: " + date_.format(date_pattern, english);
  block.append(L"\r\nTo: ").append(to);
  block.append(L"\r\nFrom: ").append(from_.to_string());
  block.append(L"\r\nSender: ").append(sender_.to_string());
  block.append(L"\r\nCc: ").append(cc);
  block.append(L"\r\nCco: ").append(cco);
  return block.append(L"\r\nMessage-ID: ").append(get_message_id()).append(L"\r\n");
}

void email::serialize_headers(std::wostringstream& out) const { out << header_block(); }

std::wstring email::to_string() const { return header_block() + L"Subject: " + subject_; }

/// Whether the value could be read; a field of another name always can.
bool email::take_field(std::wstring_view name, const std::wstring& value, headers_read& read) {
  constexpr struct {
    std::wstring_view name;
    RCTP role;
  } lists[] = {{L"To", TO_}, {L"Cc", CC_}, {L"Cco", CCO_}, {L"Bcc", CCO_}};
  for (const auto& row : lists) {
    if (wire::is_same_name(name, row.name)) {
      if (!std::exchange(read.list[row.role], true)) drop(row.role);
      put_list(value, row.role);
      return true;
    }
  }
  if (wire::is_same_name(name, L"Date")) return value.empty() || read_header_date(date_, value);
  if (wire::is_same_name(name, L"From")) return read_sender(from_, value);
  if (wire::is_same_name(name, L"Sender")) return read_sender(sender_, value);
  if (wire::is_same_name(name, L"Subject")) subject_ = value;
  if (wire::is_same_name(name, L"Message-ID")) read.message_id = value;
  return true;
}

void email::deserialize_headers(const std::wstring& block) {
  email made(*this);
  headers_read read;
  std::size_t from = 0;
  for (std::wstring field = next_field(block, from); !field.empty(); field = next_field(block, from)) {
    const std::size_t colon = field.find(L':');
    const std::wstring_view name = texto::trimmed(std::wstring_view(field).substr(0, colon));
    if (colon == field.npos || name.empty() || texto::is_space(field.front())) refuse_field(field);
    if (!made.take_field(name, field_text(std::wstring_view(field).substr(colon + 1)), read))
      refuse_field(field);
  }
  if (!read.message_id.empty()) made.uuid_ = uuid_of(read.message_id, made.from_.get_domain());
  *this = std::move(made);
}

void email::deserialize_headers(std::wistream& in) {
  std::wstring block, line;
  while (std::getline(in, line) && !line.empty() && line != L"\r") block.append(line).push_back(L'\n');
  deserialize_headers(block);
}

std::wostream& operator<<(std::wostream& out, const email& value) { return out << value.to_string(); }

}  // namespace ruvo::smtp
