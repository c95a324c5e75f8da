// SPDX-License-Identifier: BSL-1.0

// signatures FILE: signs and digests what the lines of the file say, each a list in JSON, and prints a line
// for each, with blanks between its texts; see peer.py.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace digest = ruvo::digest;
using ruvo::texto::to_utf_8;

/// The header, what was signed, and whether the same credentials take it as theirs, and no others.
std::string signed_line(const std::vector<std::wstring>& in) {
  ruvo::http::request message(in[2], in[3]);
  message[L"Content-Type"] = in[4];
  const ruvo::oauth::secret key_secret(in[6]), token_secret(in[8]);
  const auto how = static_cast<ruvo::oauth::method>(std::stoi(in[9]));
  ruvo::oauth::signer signer(in[5], key_secret, how), other(in[5], ruvo::oauth::secret(in[6] + L"x"), how);
  for (ruvo::oauth::signer* each : {&signer, &other}) each->set_token(in[7], token_secret);
  const ruvo::oauth::stamp when = {in[10], std::stoll(in[11])};
  if (!in[12].empty()) signer.set_parameter(L"oauth_callback", in[12]).set_realm(in[12]);
  message["authorization"] = signer.authorization(in[1], message, when);
  ruvo::oauth::stamp seen;
  ruvo::exception failure;
  const bool verified = signer.verify(in[1], message, seen, failure) && seen.nonce == when.nonce &&
                        seen.seconds == when.seconds && !other.verify(in[1], message, seen, failure) &&
                        failure.get_detail() == L"oauth_signature";
  return to_utf_8(signer.base_string(in[1], message, when)) + (verified ? " yes " : " no ") +
         to_utf_8(message["authorization"]);
}

/// Digests and codes of bytes, cut at the places that follow.
std::string digest_line(const std::vector<std::wstring>& in) {
  const ruvo::binary all = ruvo::binary().setAsB64(in[1]), key = ruvo::binary().setAsB64(in[2]);
  std::wstring out;
  for (const auto kind : {digest::algorithm::sha1, digest::algorithm::sha256}) {
    digest::hash plain(kind);
    digest::hmac code(kind, key);
    std::size_t at = 0;
    for (std::size_t n = 3; n <= in.size(); ++n) {
      const std::size_t end = n == in.size() ? all.size() : std::stoul(in[n]);
      const digest::bytes piece(all.get_store().data() + at, end - at);
      plain.update(piece);
      code.update(piece);
      at = end;
    }
    out += plain.hex() + L" " + code.hex() + L" ";
  }
  return to_utf_8(out);
}

std::string line_for(const std::string& json) {
  ruvo::xvar value;
  ruvo::exception failure;
  if (ruvo::serializer::read_standard_json(value, json, &failure)) failure.raise();
  std::vector<std::wstring> in;
  ruvo::list texts;
  texts = value;
  for (const ruvo::xvar& each : texts) in.push_back(each.to_string());
  return in[0] == L"digest" ? digest_line(in) : signed_line(in);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::string bytes;
  ruvo::exception failure;
  if (!ruvo::files::read(bytes, ruvo::file(argv[1]), failure)) return 2;
  std::istringstream lines(bytes);
  for (std::string line; std::getline(lines, line);) std::printf("%s\n", line_for(line).c_str());
  return 0;
}
