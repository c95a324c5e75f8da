// SPDX-License-Identifier: BSL-1.0
#pragma once

// Mails as the bytes that travel: smtp::email to a whole message, and back.
//
//   std::string message;
//   ruvo::smtp::envelope envelope;
//   if (ruvo::smtp::seal(envelope, mail, failure) && ruvo::smtp::write(message, mail, failure))
//     transport.send(envelope, message);

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/mime.hpp>
#include <ruvo/smtp/address.hpp>
#include <ruvo/smtp/email.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ruvo::smtp {

// --- writing

/// Whom a message is handed to: what a transport says in MAIL FROM and RCPT TO, which the message itself need
/// not say.
struct envelope {
  address sender;                   ///< get_sender(), or get_from() where there is none.
  std::vector<address> recipients;  ///< Those of the roles TO, CC and BCC, in the order of their mails.
  /// The recipients of these roles whose mail is none (address::check()): they are in no field either.
  std::vector<address> left_out;
};

/// Makes the envelope of a message. True is success; a failure leaves `out` as it was and is copied to `err`:
/// exc::EmptyArgument ("From") without a sender, exc::BadArgument with the field and the mail for one that
/// holds control characters or blanks, or goes beyond ASCII without `options.utf8`.
KESTA_API bool seal(envelope& out, const email& message, exception& err,
                    const mime::write_options& options = {});

/// The message as parts: the fields with all recipients but the blind ones; get_plain_post() and
/// get_hmtl_post() as alternatives, in UTF-8; and the attached files, which are opened when the parts are
/// written. A file whose name, of letters, digits and `._-`, the body names as "cid:NAME" is shown in the
/// page rather than attached.
///
/// True is success; a failure leaves `out` as it was and is copied to `err`: those of seal(),
/// exc::BadArgument with the name of the field ("Subject", "From", "To", "Cc", "Sender", "Message-ID") that
/// holds CR, LF, NUL or another control character but TAB, and exc::CalendarException for a date without a
/// calendar form.
KESTA_API bool to_mime(mime::part& out, const email& message, exception& err,
                       const mime::write_options& options = {});

/// The same as bytes, in memory, into a file or piece by piece; the failures are those of to_mime() and
/// mime::write().
KESTA_API bool write(std::string& out, const email& message, exception& err,
                     const mime::write_options& options = {});
KESTA_API bool write(const file& to, const email& message, exception& err,
                     const mime::write_options& options = {});
KESTA_API bool write(const mime::piece_sink& to, const email& message, exception& err,
                     const mime::write_options& options = {});

// --- reading

/// A message that came in.
struct received {
  /// The fields, and as its body the page if there is one, else the plain text. It has no attached files,
  /// which are paths, and no blind recipients unless a "Bcc" names them. A message without a date that can be
  /// read has that of 1970-01-01, and one without an identifier an empty one.
  email message{L""};
  std::wstring plain;                   ///< The plain text, if there is one.
  std::vector<mime::part> attachments;  ///< All other parts with a content, those that the page shows too.
};

/// Reads a message: any that mime::read() reads. Of several texts of a kind the first is the body, unless it
/// is said to be attached or is in an encoding that is not known; the others are attachments. True is
/// success; a failure leaves `out` as it was and is copied to `err`: those of mime::read().
KESTA_API bool read(received& out, std::string_view bytes, exception& err, const mime::limits& most = {});
/// The same of a message whose parts are known.
KESTA_API received from_mime(const mime::part& message);

/// Saves the attachments into a folder, which is made where it is missing, under mime::safe_name() of their
/// names; as "adjunto.bin" where nothing is left of a name. Nothing is replaced: a name that is taken gets a
/// number, as files::autorename() has it. Appends the files written to `saved`. True is success; at the first
/// failure, of files, it is copied to `err`, and what was written before stays.
KESTA_API bool save_attachments(std::vector<file>& saved, const received& message, const file& folder,
                                exception& err);

}  // namespace ruvo::smtp
