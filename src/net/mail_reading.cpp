// SPDX-License-Identifier: BSL-1.0

// Mails of messages that came in.

#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>
#include <ruvo/smtp/wire.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/wire/dates.hpp"
#include "base/wire/encoded_words.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"

namespace ruvo::smtp {

namespace {

// --- lists of addresses

/// The addresses of a field (RFC 5322, 3.4), read leniently: with comments, groups, routes, and ";" for ",".
class address_reader {
 public:
  explicit address_reader(std::wstring_view text) noexcept : text_(text) {}

  std::vector<address> read() {
    while (at_ < text_.size()) take();
    end_entry();
    return std::move(all_);
  }

 private:
  void take() {
    const wchar_t c = text_[at_];
    if (c == L'"' && take_quoted()) return;
    if (c == L'(') {
      take_comment();
    } else if (c == L'<') {
      take_mail();
    } else if (const std::size_t size = word_size()) {
      name_.append(text_.substr(at_, size));
      at_ += size;
    } else {
      ++at_;
      if (c == L',' || c == L';') return end_entry();
      if (c == L':' && mail_.empty()) return name_.clear();  // a group's name
      name_.push_back(c);
    }
  }

  /// A quotation mark that nothing closes is a character as others, and so are those behind it.
  bool take_quoted() {
    std::wstring quoted;
    std::size_t behind = at_;
    if (!is_closed_ || !(is_closed_ = wire::read_quoted(quoted, text_, behind))) return false;
    name_.append(quoted);
    at_ = behind;
    return true;
  }

  /// The size of the encoded word that begins here, or 0: what it holds divides nothing.
  std::size_t word_size() noexcept {
    if (at_ < wordless_ || !text_.substr(at_).starts_with(L"=?")) return 0;
    if (run_end_ <= at_) run_end_ = std::min(text_.find_first_of(L" \t", at_), text_.size());
    const std::wstring_view run = text_.substr(at_, run_end_ - at_);
    const std::size_t name_end = run.find(L'?', 2);
    const std::size_t end = name_end == run.npos ? run.npos : run.find(L"?=", name_end + 3);
    if (end != run.npos) return end + 2;
    wordless_ = run_end_;
    return 0;
  }

  void take_comment() {
    std::size_t depth = 0;
    const std::size_t begin = at_ + 1;
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] == L'\\') {
        ++at_;
      } else if (text_[at_] == L'(') {
        ++depth;
      } else if (text_[at_] == L')' && --depth == 0) {
        break;
      }
    }
    at_ = std::min(at_, text_.size());
    comment_ = text_.substr(begin, at_ - begin);
    at_ = std::min(at_ + 1, text_.size());
  }

  void take_mail() {
    const std::size_t end = std::min(text_.find(L'>', at_), text_.size());
    std::wstring_view mail = text_.substr(at_ + 1, end - at_ - 1);
    const std::size_t route = mail.rfind(L':');
    if (mail.starts_with(L'@') && route != mail.npos) mail.remove_prefix(route + 1);
    mail_ = wire::trimmed_value(mail);
    at_ = std::min(end + 1, text_.size());
  }

  void end_entry() {
    const std::wstring_view text = wire::trimmed_value(name_);
    const bool is_bare = mail_.empty() && text.find(L'@') != text.npos;
    if (is_bare) mail_ = text;
    const std::wstring name = wire::decode_words(is_bare ? comment_ : text);
    if (!mail_.empty()) all_.emplace_back(name, mail_);
    name_.clear();
    mail_.clear();
    comment_ = {};
  }

  const std::wstring_view text_;
  std::size_t at_ = 0;
  std::size_t run_end_ = 0;   // where blanks follow
  std::size_t wordless_ = 0;  // no encoded word begins before
  bool is_closed_ = true;     // whether every quotation mark so far was closed
  std::wstring name_, mail_;  // of the present entry
  std::wstring_view comment_;
  std::vector<address> all_;
};

address first_address(const mime::part& message, const wchar_t* field) {
  const std::vector<address> all = address_reader(message.get_field(field)).read();
  return all.empty() ? address() : all.front();
}

// --- fields

datetime date_of(const mime::part& message) {
  const auto read = wire::read_mail_date(message.get_field(L"Date"));
  return datetime(read ? read->seconds : 0LL);
}

/// The identifier without what email::get_message_id() puts around it.
std::wstring identifier_of(const mime::part& message, const std::wstring& domain) {
  std::wstring id(message.get_field(L"Message-ID"));
  if (id.size() >= 2 && id.front() == L'<' && id.back() == L'>') id = id.substr(1, id.size() - 2);
  if (!domain.empty() && id.ends_with(domain)) id.resize(id.size() - domain.size());
  return id;
}

void take_fields(email& out, const mime::part& message) {
  out.set_from(first_address(message, L"From")).set_sender(first_address(message, L"Sender"));
  out.set_subject(message.get_header(L"Subject")).set_date(date_of(message));
  out.set_uuid(identifier_of(message, out.get_from().get_domain()));
  constexpr std::pair<const wchar_t*, email::RCTP> lists[] = {
      {L"To", email::TO_}, {L"Cc", email::CC_}, {L"Bcc", email::BCC}};
  for (const auto& [field, role] : lists) {
    for (const address& each : address_reader(message.get_field(field)).read())
      if (out.count(each) == 0) out[each] = role;
  }
}

// --- content

/// Whether a part is a text that can be read here, of that kind, and not said to be attached.
bool take_body(std::wstring& out, const mime::part& leaf, const wchar_t* type) {
  if (leaf.get_type() != type || leaf.get_disposition() == L"attachment" || !leaf.get_filename().empty())
    return false;
  try {
    out = leaf.get_text();
    return true;
  } catch (const exc::BadFormat&) {  // in an encoding that is not known
    return false;
  }
}

void take_content(received& out, const mime::part& message) {
  bool has_plain = false, has_page = false;
  std::wstring page;
  std::vector<const mime::part*> left = {&message};
  while (!left.empty()) {
    const mime::part& each = *left.back();
    left.pop_back();
    const std::vector<mime::part>& children = each.get_parts();
    for (auto child = children.rbegin(); child != children.rend(); ++child) left.push_back(&*child);
    if (each.is_multipart()) continue;
    if (!has_plain && take_body(out.plain, each, L"text/plain")) {
      has_plain = true;
    } else if (!has_page && take_body(page, each, L"text/html")) {
      has_page = true;
    } else if (!each.get_bytes().empty() || !each.get_filename().empty()) {
      out.attachments.push_back(each);
    }
  }
  out.message.set_body(has_page ? page : out.plain);
}

}  // namespace

received from_mime(const mime::part& message) {
  received made;
  take_fields(made.message, message);
  take_content(made, message);
  return made;
}

bool read(received& out, std::string_view bytes, exception& err, const mime::limits& most) {
  mime::part message;
  if (!mime::read(message, bytes, err, most)) return false;
  out = from_mime(message);
  return true;
}

bool save_attachments(std::vector<file>& saved, const received& message, const file& folder, exception& err) {
  return http::succeeds(err, [&] {
    file place(folder);
    if (!place.mkdirs()) throw exc::fileUnCreateFolder(folder);
    for (const mime::part& each : message.attachments) {
      const std::wstring name = mime::safe_name(each.get_filename());
      place = file(folder, name.empty() ? L"adjunto.bin" : name);
      saved.push_back(files::write(each.get_content(), place, false));
    }
  });
}

}  // namespace ruvo::smtp
