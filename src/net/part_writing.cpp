// SPDX-License-Identifier: BSL-1.0

// Parts of messages as bytes.

#include <ruvo/exc.hpp>

#include <algorithm>
#include <array>
#include <utility>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "base/wire/base64_lines.hpp"
#include "base/wire/encoded_words.hpp"
#include "base/wire/quoted_printable.hpp"
#include "base/wire/tokens.hpp"
#include "files/pieces.hpp"
#include "net/failures.hpp"
#include "net/part.hpp"

namespace ruvo::mime {

namespace {

constexpr std::size_t piece_size = std::size_t{1} << 16;

/// A field of several words, folded between them.
class field_line {
 public:
  field_line(std::string& out, std::string_view name) : out_(out) {
    out_.append(name).append(":");
    column_ = name.size() + 1;
  }
  field_line(const field_line&) = delete;
  field_line& operator=(const field_line&) = delete;

  void put(std::string_view word) {
    if (column_ + 1 + word.size() > wire::wanted_line) {
      out_.append("\r\n");
      column_ = 0;
    }
    out_.append(" ").append(word);
    column_ += 1 + word.size();
  }
  void end() { out_.append("\r\n"); }

 private:
  std::string& out_;
  std::size_t column_ = 0;
};

/// Parameters as they follow each other, each with ";" before the next one.
class parameter_words {
 public:
  explicit parameter_words(const std::wstring& word) : words_{texto::to_utf_8(word)} {}

  void put(std::wstring_view name, std::wstring_view value) {
    std::vector<std::wstring> made;
    if (!wire::add_parameter(made, name, value, wire::parameter_form::mail))
      throw exc::BadArgument(std::wstring(name));
    words_.back().push_back(';');
    for (std::size_t n = 0; n < made.size(); ++n) {
      words_.push_back(texto::to_utf_8(made[n]));
      if (n + 1 < made.size()) words_.back().push_back(';');
    }
  }

  /// A file's name as encoded words, which RFC 2047 does not want in parameters and some mailers look at
  /// nothing but.
  void put_encoded_name(std::wstring_view name) {
    constexpr std::string_view begin = "name=\"";
    constexpr std::size_t longest = wire::wanted_line - 3;  // beside a blank, a quotation mark and a ";"
    std::string text;
    wire::append_encoded_words(text, name, longest - begin.size(), longest);
    words_.back().push_back(';');
    text = std::string(begin) + text + '"';
    for (std::size_t from = 0; from < text.size();) {
      const std::size_t blank = std::min(text.find(' ', from), text.size());
      words_.push_back(text.substr(from, blank - from));
      from = blank + 1;
    }
  }

  void write(std::string& out, std::wstring_view name) const {
    field_line line(out, texto::to_utf_8(name));
    for (const std::string& word : words_) {
      if (word.size() >= wire::longest_line) throw exc::BadArgument(std::wstring(name));  // beside a blank
      line.put(word);
    }
    line.end();
  }

 private:
  std::vector<std::string> words_;
};

/// Sixteen random bytes as letters and digits. No line of the encodings begins with "-", so any boundary
/// would do; chance is for contents that are sent as they are.
std::string new_boundary() {
  constexpr std::size_t longest = 40;
  std::string made = "b";
  for (const wchar_t c : services::new_uuid())
    if (texto::is_alnum(c) && made.size() < longest) made.push_back(static_cast<char>(c));
  return made;
}

bool is_message(const part& made) { return made.get_type().starts_with(L"message/"); }

/// Whether a content can be sent as it is: lines of ASCII that end with CRLF.
bool can_stand(std::string_view content) noexcept {
  std::size_t column = 0;
  for (std::size_t at = 0; at < content.size(); ++at) {
    const auto byte = static_cast<unsigned char>(content[at]);
    const bool is_end = byte == '\r' && content.substr(at, 2) == "\r\n";
    if (is_end) {
      column = 0;
      ++at;
    } else if (byte == 0 || byte == '\r' || byte == '\n' || byte >= 0x80 || ++column > wire::longest_line) {
      return false;
    }
  }
  return true;
}

/// Whether quoted-printable keeps a text, whose lines end with CRLF, and is the shorter one.
bool is_for_quoted_printable(std::string_view content) noexcept {
  for (std::size_t at = content.find('\n'); at != content.npos; at = content.find('\n', at + 1))
    if (at == 0 || content[at - 1] != '\r') return false;
  return wire::quoted_printable_size(content) <= texto::base64_size(content.size()) + content.size() / 38 + 4;
}

enum class encoding : unsigned char { none, quoted_printable, base64 };

encoding encoding_for(const part& leaf) {
  if (!leaf.get_source().empty()) return encoding::base64;
  if (is_message(leaf)) {
    if (!can_stand(leaf.get_bytes())) throw exc::BadArgument(leaf.get_type());
    return encoding::none;
  }
  const bool is_text = leaf.get_type().starts_with(L"text/");
  return is_text && is_for_quoted_printable(leaf.get_bytes()) ? encoding::quoted_printable : encoding::base64;
}

constexpr std::string_view name_of(encoding how) noexcept {
  constexpr std::array<std::string_view, 3> names = {"7bit", "quoted-printable", "base64"};
  return names[static_cast<std::size_t>(how)];
}

class message_writer {
 public:
  message_writer(const piece_sink& to, const write_options& options) : to_(to), options_(options) {
    buffer_.reserve(2 * piece_size);
  }

  void write(const part& message) {
    boundary_ = free_boundary(message);
    begin(message, true);
    while (!open_.empty()) {
      open& last = open_.back();
      const std::vector<part>& children = last.of->get_parts();
      buffer_.append("\r\n--").append(last.boundary);
      if (last.next == children.size()) {
        buffer_.append("--");
        open_.pop_back();
      } else {
        buffer_.append("\r\n");
        begin(children[last.next++], false);
      }
    }
    end_last_line(message);
    pass_on(0);
  }

 private:
  struct open {
    const part* of;
    std::string boundary;
    std::size_t next;
  };

  /// Writes a leaf, or the beginning of a multipart, which stays open.
  void begin(const part& each, bool is_whole) {
    put_fields(each);
    if (is_whole) buffer_.append("MIME-Version: 1.0\r\n");
    if (!each.is_multipart()) return put_leaf(each);
    if (each.get_parts().empty()) throw exc::EmptyArgument(each.get_type());
    open_.push_back({&each, next_boundary(), 0});
    put_type(each, open_.back().boundary);
    put_disposition(each);
    pass_on(piece_size);
  }

  void put_fields(const part& each) {
    for (const part_data::field& field : part_access::of(each).fields) {
      const bool can_be = options_.utf8 || wire::is_ascii_text(field.value);
      if (!can_be || !wire::append_folded(buffer_, texto::to_utf_8(field.name), texto::to_utf_8(field.value)))
        throw exc::BadArgument(field.name);
    }
  }

  /// A file's name stands here once more, for mailers that look nowhere else.
  void put_type(const part& each, const std::string& boundary) {
    const part_data& made = part_access::of(each);
    const wire::parameter* file_name = wire::find_parameter(made.disposition_parameters, L"filename");
    if (file_name && file_name->value.empty()) file_name = nullptr;
    parameter_words words(each.get_type());
    for (const wire::parameter& parameter : made.type_parameters) {
      const bool is_name = file_name && wire::is_same_name(parameter.name, L"name");
      if (!is_name && !wire::is_same_name(parameter.name, L"boundary"))
        words.put(parameter.name, parameter.value);
    }
    if (!boundary.empty()) words.put(L"boundary", texto::to_utf_16(boundary));
    constexpr std::size_t longest_plain = 60;
    if (file_name && wire::is_plain_text(file_name->value) && file_name->value.size() <= longest_plain) {
      words.put(L"name", file_name->value);
    } else if (file_name) {
      words.put_encoded_name(file_name->value);
    }
    words.write(buffer_, type_field);
  }

  void put_disposition(const part& each) {
    const part_data& made = part_access::of(each);
    if (made.disposition.empty()) return;
    parameter_words words(made.disposition);
    for (const wire::parameter& parameter : made.disposition_parameters)
      words.put(parameter.name, parameter.value);
    words.write(buffer_, disposition_field);
  }

  void put_leaf(const part& leaf) {
    const encoding how = encoding_for(leaf);
    put_type(leaf, {});
    field_line line(buffer_, texto::to_utf_8(encoding_field));
    line.put(name_of(how));
    line.end();
    put_disposition(leaf);
    buffer_.append("\r\n");
    if (!leaf.get_source().empty()) return put_file(leaf.get_source());
    if (how == encoding::none) buffer_.append(leaf.get_bytes());
    if (how == encoding::base64) put_base64(leaf.get_bytes());
    if (how == encoding::quoted_printable) put_quoted_printable(leaf.get_bytes());
    pass_on(piece_size);
  }

  void put_file(const file& source) {
    files::file_reader in(source);
    std::vector<char> room(std::min(piece_size, in.left()));
    wire::base64_line_writer lines;
    while (in.left() != 0) {
      const std::size_t count = std::min(room.size(), in.left());
      in.read(room.data(), count);
      lines.put(buffer_, {room.data(), count});
      pass_on(piece_size);
    }
    lines.finish(buffer_);
  }

  void put_base64(std::string_view content) {
    wire::base64_line_writer lines;
    for (; !content.empty(); content.remove_prefix(std::min(piece_size, content.size()))) {
      lines.put(buffer_, content.substr(0, piece_size));
      pass_on(piece_size);
    }
    lines.finish(buffer_);
  }

  void put_quoted_printable(std::string_view content) {
    wire::quoted_printable_writer lines;
    for (; !content.empty(); content.remove_prefix(std::min(piece_size, content.size()))) {
      lines.put(buffer_, content.substr(0, piece_size));
      pass_on(piece_size);
    }
    lines.finish(buffer_);
  }

  /// A message ends with the end of a line; of quoted-printable with a soft one, which is no part of the
  /// text.
  void end_last_line(const part& message) {
    if (message.is_multipart()) {
      buffer_.append("\r\n");
      return;
    }
    const encoding how = encoding_for(message);
    const std::string& content = message.get_bytes();
    if (how != encoding::base64 && (content.empty() || content.ends_with('\n'))) return;
    if (how == encoding::none)
      throw exc::BadArgument(message.get_type());  // it would end otherwise than it does
    buffer_.append(how == encoding::quoted_printable ? "=\r\n" : "\r\n");
  }

  /// Gives the sink what is there, if it is so much.
  void pass_on(std::size_t least) {
    if (buffer_.size() < least || buffer_.empty()) return;
    if (!to_(buffer_)) throw exc::ProcessCanceled();
    buffer_.clear();
  }

  std::string next_boundary() {
    std::string number = std::to_string(++boundaries_);
    constexpr std::size_t digits = 8;
    return boundary_ + "n" + std::string(digits - std::min(digits, number.size()), '0') + number;
  }

  /// A boundary that no content has that is sent as it is.
  static std::string free_boundary(const part& message) {
    std::string made = new_boundary();
    std::vector<const part*> left = {&message};
    while (!left.empty()) {
      const part& each = *left.back();
      left.pop_back();
      for (const part& child : each.get_parts()) left.push_back(&child);
      while (is_message(each) && each.get_bytes().find(made) != std::string::npos) made.push_back('x');
    }
    return made;
  }

  const piece_sink& to_;
  const write_options& options_;
  std::string buffer_;
  std::string boundary_;  // what all boundaries begin with
  std::size_t boundaries_ = 0;
  std::vector<open> open_;
};

void write_pieces(const piece_sink& to, const part& message, const write_options& options) {
  message_writer(to, options).write(message);
}

/// About how many bytes the message takes, so that room for it is taken once.
std::size_t expected_size(const part& message) {
  std::size_t size = 0;
  std::vector<const part*> left = {&message};
  while (!left.empty()) {
    const part& each = *left.back();
    left.pop_back();
    for (const part& child : each.get_parts()) left.push_back(&child);
    const std::size_t bytes = each.get_source().empty() ? each.get_bytes().size()
                                                        : static_cast<std::size_t>(each.get_source().size());
    constexpr std::size_t fields = 500;
    size += bytes / 57 * 78 + fields;
  }
  return size;
}

}  // namespace

std::string to_bytes(const part& message, const write_options& options) {
  std::string made;
  made.reserve(expected_size(message));
  const piece_sink sink = [&made](std::string_view piece) {
    made.append(piece);
    return true;
  };
  write_pieces(sink, message, options);
  return made;
}

bool write(std::string& out, const part& message, exception& err, const write_options& options) {
  return http::succeeds(err, [&] { out = to_bytes(message, options); });
}

bool write(const file& to, const part& message, exception& err, const write_options& options) {
  return http::succeeds(err, [&] {
    files::write_pieces(to, [&](const files::put_piece& put) {
      const piece_sink sink = [&put](std::string_view piece) {
        put(piece);
        return true;
      };
      write_pieces(sink, message, options);
    });
  });
}

bool write(const piece_sink& to, const part& message, exception& err, const write_options& options) {
  return http::succeeds(err, [&] { write_pieces(to, message, options); });
}

std::string to_quoted_printable(std::string_view text) {
  std::string made;
  wire::quoted_printable_writer lines;
  lines.put(made, text);
  lines.finish(made);
  return made;
}

std::string from_quoted_printable(std::string_view text) {
  std::string made;
  wire::read_quoted_printable(made, text);
  return made;
}

}  // namespace ruvo::mime
