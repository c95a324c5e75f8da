// SPDX-License-Identifier: BSL-1.0

// A message as a value: its fields, its recipients and its bundle form.

#include <ruvo/exception.hpp>
#include <ruvo/list.hpp>
#include <ruvo/smtp/email.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "base/services.hpp"
#include "exc/detail.hpp"
#include "values/object.hpp"

namespace ruvo::smtp {

namespace {

constexpr struct {
  email::RCTP role;
  const wchar_t* name;
  const wchar_t* list;  // the key of its recipients in the bundle form
} roles[] = {{email::FROM, L"FROM", L"to_from"},
             {email::SENDER, L"SENDER", L"to_sender"},
             {email::TO, L"TO", L"to"},
             {email::CC, L"CC", L"cc"},
             {email::BCC, L"BCC", L"cco"}};

address by_mail(const std::wstring& mail) { return address({}, mail); }

template <class Map>
auto& role_in(Map& recipients, const address& recipient) {
  const auto found = recipients.find(recipient);
  if (found == recipients.end()) throw ruvo::detail::missing_key(recipient.get_mail());
  return found->second;
}

void check_index(const std::vector<file>& files, std::size_t index) {
  if (index >= files.size()) throw ruvo::detail::missing_index(index, files.size());
}

/// The list under the key, or null.
const list* list_under(const bundle& values, const wchar_t* key) {
  const xvar* const value = values.get_ptr(key);
  return value && value->instanceof (typeid(list)) ? &values.get_list(key) : nullptr;
}

void take_date(datetime& date, const bundle& values) {
  const xvar* const value = values.get_ptr(L"date");
  if (!value || value->is_null()) return;
  try {
    datetime read = date;
    if (value->is_decimal()) {  // as JSON has it
      const double seconds = *value;
      if (!std::isfinite(seconds)) return;
      read = seconds;
    } else {
      read = *value;
    }
    static_cast<void>(read.format(email::date_pattern, "C"));  // throws when it has no calendar form
    date = read;
  } catch (const std::bad_cast&) {
  } catch (const std::out_of_range&) {
  } catch (const exception&) {
  }
}

bool is_text(const xvar& value) { return value.instanceof (typeid(std::wstring)); }

/// Takes the address that a value of the bundle form holds: a bundle, an address or a text. True when it
/// has a mail, even an empty one.
bool read_who(address& who, const xvar* value) {
  if (value && value->instanceof (typeid(bundle))) {
    bundle fields;
    fields = *value;
    who = fields;
    const xvar* const mail = fields.get_ptr(L"email");
    return mail && mail->is_not_null();
  }
  if (value && value->instanceof (typeid(address))) {
    who = *value;
    return true;
  }
  if (!value || !is_text(*value)) return false;
  const std::wstring text = texto::trim_(value->to_string());
  if (who.deserialize(text)) return true;
  if (!texto::is_email(text)) return false;
  who = by_mail(text);
  return true;
}

}  // namespace

const email::RCTP email::TO_, email::CC_, email::CCO_;
const std::string email::date_pattern = "%a, %d %b %Y %H:%M:%S %z";

email::email(const address& from, const std::wstring& subject, const std::wstring& body,
             const std::wstring& signature)
    : uuid_(services::new_uuid()), from_(from), subject_(subject), body_(body), signature_(signature) {}
email::email(const std::wstring& from, const std::wstring& subject, const std::wstring& body,
             const std::wstring& signature)
    : email(by_mail(from), subject, body, signature) {}
email::email(const bundle& values) : email() { *this = values; }
email::email(const email& other) = default;
email::email(email&& other) = default;
email::~email() = default;

email& email::operator=(const email& other) { return *this = email(other); }

email& email::operator=(email&& other) {
  date_ = other.date_;  // what may fail comes first
  uuid_ = std::move(other.uuid_);
  from_ = std::move(other.from_);
  sender_ = std::move(other.sender_);
  recipients_ = std::move(other.recipients_);
  subject_ = std::move(other.subject_);
  body_ = std::move(other.body_);
  signature_ = std::move(other.signature_);
  attach_ = std::move(other.attach_);
  return *this;
}

// --- values

email& email::operator=(const bundle& values) {
  email made(*this);
  take_date(made.date_, values);
  made.uuid_ = values.get_string(L"Message-ID", '.', uuid_);
  made.subject_ = values.get_string(L"subject", '.', subject_);
  made.body_ = values.get_string(L"body", '.', body_);
  made.signature_ = values.get_string(L"signature", '.', signature_);
  read_who(made.from_, values.get_ptr(L"from"));
  read_who(made.sender_, values.get_ptr(L"sender"));
  const auto is_given = [&values](const auto& row) { return list_under(values, row.list) != nullptr; };
  if (std::any_of(std::begin(roles), std::end(roles), is_given)) made.recipients_.clear();
  for (const auto& row : roles) made.put_bundles(list_under(values, row.list), row.role);
  if (const list* const files = list_under(values, L"attach")) {
    made.attach_.clear();
    for (const xvar& path : *files)
      if (is_text(path)) made.attach_.emplace_back(path.to_string());
  }
  return *this = std::move(made);
}

void email::put_bundles(const list* recipients, RCTP role) {
  if (!recipients) return;
  for (const xvar& recipient : *recipients) {
    address who;
    if (read_who(who, &recipient)) put(who, role);
  }
}

email::operator bundle() const {
  bundle values;
  values[L"date"] = date_;
  values[L"Message-ID"] = uuid_;
  values[L"from"] = bundle(from_);
  values[L"sender"] = bundle(sender_);
  for (const auto& row : roles)
    if (row.role >= TO) values.hack_list_on(row.list);
  for (const auto& [recipient, role] : recipients_) {
    for (const auto& row : roles)
      if (row.role == role) values.hack_list_on(row.list).push_back(bundle(recipient));
  }
  values[L"subject"] = subject_;
  values[L"body"] = body_;
  values[L"signature"] = signature_;
  list& files = values.hack_list_on(L"attach");
  for (const file& attachment : attach_) files.push_back(static_cast<const std::wstring&>(attachment));
  return values;
}

email& email::take(const var& value) {
  if (const email* const held = ruvo::detail::object_in<email>(value)) *this = *held;
  return *this;
}

email::operator xvar() const {
  xvar value;
  ruvo::detail::set_object(value, *this);
  return value;
}

// --- fields

email& email::set_uuid(const std::wstring& uuid) {
  uuid_ = uuid;
  return *this;
}

email& email::set_subject(const std::wstring& subject) {
  subject_ = subject;
  return *this;
}

email& email::set_body(const std::wstring& body) {
  body_ = body;
  return *this;
}

email& email::set_signature(const std::wstring& signature) {
  signature_ = signature;
  return *this;
}

email& email::set_date(const datetime& date) {
  date_ = date;
  return *this;
}

email& email::set_from(const address& from) {
  from_ = from;
  return *this;
}

email& email::set_sender(const address& sender) {
  sender_ = sender;
  return *this;
}

email& email::set_from(const std::wstring& mail) { return set_from(by_mail(mail)); }
email& email::set_sender(const std::wstring& mail) { return set_sender(by_mail(mail)); }

email& email::push(const file& attachment) {
  attach_.push_back(attachment);
  return *this;
}

const file& email::attached(std::size_t index) const {
  check_index(attach_, index);
  return attach_[index];
}

void email::discharge(std::size_t index) {
  check_index(attach_, index);
  attach_.erase(attach_.begin() + static_cast<std::ptrdiff_t>(index));
}

void email::discharge() noexcept { attach_.clear(); }

// --- recipients

email::RCTP& email::operator[](const address& recipient) {
  return recipients_.try_emplace(recipient, TO_).first->second;
}
email::RCTP& email::operator[](const std::wstring& mail) { return (*this)[by_mail(mail)]; }
email::RCTP& email::operator[](const bundle& recipient) { return (*this)[address(recipient)]; }

address email::address_in(const var& value) {
  if (value.instanceof (typeid(address))) return address(value);
  if (!value.instanceof (typeid(bundle))) return by_mail(static_cast<std::wstring>(value));
  bundle fields;
  fields = xvar(value);
  return address(fields);
}

email::RCTP& email::at(const address& recipient) { return role_in(recipients_, recipient); }
email::RCTP& email::at(const std::wstring& mail) { return at(by_mail(mail)); }
const email::RCTP& email::at(const address& recipient) const { return role_in(recipients_, recipient); }
const email::RCTP& email::at(const std::wstring& mail) const { return at(by_mail(mail)); }
email::iterator email::find(const std::wstring& mail) { return find(by_mail(mail)); }
email::const_iterator email::find(const std::wstring& mail) const { return find(by_mail(mail)); }
email::size_type email::count(const std::wstring& mail) const { return count(by_mail(mail)); }
email::size_type email::erase(const address& recipient) { return recipients_.erase(recipient); }
email::size_type email::erase(const std::wstring& mail) { return erase(by_mail(mail)); }

/// Unlike operator[], it takes the name too where the recipient is there already.
void email::put(const address& recipient, RCTP role) {
  const auto [where, fresh] = recipients_.try_emplace(recipient, role);
  if (fresh) return;
  address key(recipient);  // what may fail comes first
  auto node = recipients_.extract(where);
  node.key() = std::move(key);
  node.mapped() = role;
  recipients_.insert(std::move(node));
}

void email::drop(RCTP role) {
  std::erase_if(recipients_, [role](const value_type& recipient) { return recipient.second == role; });
}

std::wstring email::to_string(RCTP role) {
  for (const auto& row : roles)
    if (row.role == role) return row.name;
  return {};
}

email::RCTP email::stor(const std::wstring& text) {
  return texto::to_uppercase_(texto::trim_(text)) == L"TO" ? CC : TO;
}

}  // namespace ruvo::smtp
