// SPDX-License-Identifier: BSL-1.0

// TLS by the system's own Schannel: the handshake, records out, records in, the server's certificate.

#include <ruvo/digest.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <string>
#include <utility>

#include "stream.hpp"

#define SECURITY_WIN32
#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>

// Those that want the one above.
#include <schannel.h>
#include <security.h>
#include <wincrypt.h>

namespace transport {

namespace {

[[noreturn]] void fail(const wchar_t* what, unsigned long code) {
  const ruvo::binary bytes(std::vector<unsigned char>{
      static_cast<unsigned char>(code >> 24), static_cast<unsigned char>(code >> 16),
      static_cast<unsigned char>(code >> 8), static_cast<unsigned char>(code)});
  throw ruvo::exc::RunTime(std::wstring(L"TLS: ") + what + L", 0x" + bytes.getAsHex());
}

unsigned char* bytes_of(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

class tls_stream : public stream {
 public:
  tls_stream(std::unique_ptr<stream> clear, const std::string& host, const std::string& pin)
      : clear_(std::move(clear)), host_(ruvo::texto::to_utf_16(host)) {
    SCHANNEL_CRED wanted = {};
    wanted.dwVersion = SCHANNEL_CRED_VERSION;
    // Which certificate is right is decided below, since a pinned one is none that the system knows.
    wanted.dwFlags = SCH_CRED_MANUAL_CRED_VALIDATION | SCH_CRED_NO_DEFAULT_CREDS | SCH_USE_STRONG_CRYPTO;
    std::wstring package = UNISP_NAME_W;
    const SECURITY_STATUS made =
        AcquireCredentialsHandleW(nullptr, package.data(), SECPKG_CRED_OUTBOUND, nullptr, &wanted, nullptr,
                                  nullptr, &credentials_, nullptr);
    if (made != SEC_E_OK) fail(L"no credentials", static_cast<unsigned long>(made));
    try {
      shake_hands();
      check_certificate(pin);
      const SECURITY_STATUS known = QueryContextAttributesW(&context_, SECPKG_ATTR_STREAM_SIZES, &sizes_);
      if (known != SEC_E_OK) fail(L"no size of records", static_cast<unsigned long>(known));
    } catch (...) {
      release();
      throw;
    }
  }
  ~tls_stream() override { release(); }

  void send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const std::size_t part = std::min<std::size_t>(bytes.size(), sizes_.cbMaximumMessage);
      std::string record(sizes_.cbHeader + part + sizes_.cbTrailer, '\0');
      std::copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(part),
                record.begin() + static_cast<std::ptrdiff_t>(sizes_.cbHeader));
      unsigned char* const at = bytes_of(record);
      SecBuffer parts[] = {{sizes_.cbHeader, SECBUFFER_STREAM_HEADER, at},
                           {static_cast<unsigned long>(part), SECBUFFER_DATA, at + sizes_.cbHeader},
                           {sizes_.cbTrailer, SECBUFFER_STREAM_TRAILER, at + sizes_.cbHeader + part},
                           {0, SECBUFFER_EMPTY, nullptr}};
      SecBufferDesc all = {SECBUFFER_VERSION, 4, parts};
      const SECURITY_STATUS done = EncryptMessage(&context_, 0, &all, 0);
      if (done != SEC_E_OK) fail(L"sending failed", static_cast<unsigned long>(done));
      clear_->send(
          std::string_view(record).substr(0, parts[0].cbBuffer + parts[1].cbBuffer + parts[2].cbBuffer));
      bytes.remove_prefix(part);
    }
  }

  std::size_t receive(char* to, std::size_t room) override {
    while (plain_.empty() && !ended_) open_record();
    const std::size_t part = std::min(room, plain_.size());
    std::copy(plain_.begin(), plain_.begin() + static_cast<std::ptrdiff_t>(part), to);
    plain_.erase(0, part);
    return part;
  }

 private:
  void release() noexcept {
    if (has_context_) DeleteSecurityContext(&context_);
    FreeCredentialsHandle(&credentials_);
  }

  /// False at the end of the stream.
  bool fill() {
    char part[1 << 14];
    const std::size_t got = clear_->receive(part, sizeof part);
    pending_.append(part, got);
    return got != 0;
  }

  /// Keeps what the last call did not use.
  void keep_extra(const SecBuffer* parts, int count) {
    std::size_t extra = 0;
    for (int at = 0; at < count; ++at)
      if (parts[at].BufferType == SECBUFFER_EXTRA) extra = parts[at].cbBuffer;
    pending_.erase(0, pending_.size() - extra);
  }

  void shake_hands() {
    constexpr unsigned long wanted = ISC_REQ_SEQUENCE_DETECT | ISC_REQ_REPLAY_DETECT |
                                     ISC_REQ_CONFIDENTIALITY | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                                     ISC_REQ_MANUAL_CRED_VALIDATION;
    for (SECURITY_STATUS state = SEC_I_CONTINUE_NEEDED; state != SEC_E_OK;) {
      if (has_context_ && (pending_.empty() || state == SEC_E_INCOMPLETE_MESSAGE) && !fill())
        fail(L"the stream ended in the handshake", 0);
      SecBuffer in[] = {{static_cast<unsigned long>(pending_.size()), SECBUFFER_TOKEN, pending_.data()},
                        {0, SECBUFFER_EMPTY, nullptr}};
      SecBuffer out[] = {{0, SECBUFFER_TOKEN, nullptr}};
      SecBufferDesc given = {SECBUFFER_VERSION, 2, in}, made = {SECBUFFER_VERSION, 1, out};
      unsigned long kinds = 0;
      state = InitializeSecurityContextW(&credentials_, has_context_ ? &context_ : nullptr, host_.data(),
                                         wanted, 0, 0, has_context_ ? &given : nullptr, 0, &context_, &made,
                                         &kinds, nullptr);
      if (state == SEC_E_INCOMPLETE_MESSAGE) continue;
      if (state != SEC_E_OK && state != SEC_I_CONTINUE_NEEDED)
        fail(L"the handshake failed", static_cast<unsigned long>(state));
      if (has_context_) keep_extra(in, 2);
      has_context_ = true;
      if (out[0].pvBuffer) {
        const std::string token(static_cast<const char*>(out[0].pvBuffer), out[0].cbBuffer);
        FreeContextBuffer(out[0].pvBuffer);
        clear_->send(token);
      }
    }
  }

  void open_record() {
    for (;;) {
      SecBuffer parts[] = {{static_cast<unsigned long>(pending_.size()), SECBUFFER_DATA, pending_.data()},
                           {0, SECBUFFER_EMPTY, nullptr},
                           {0, SECBUFFER_EMPTY, nullptr},
                           {0, SECBUFFER_EMPTY, nullptr}};
      SecBufferDesc all = {SECBUFFER_VERSION, 4, parts};
      const SECURITY_STATUS state =
          pending_.empty() ? SEC_E_INCOMPLETE_MESSAGE : DecryptMessage(&context_, &all, 0, nullptr);
      if (state == SEC_E_INCOMPLETE_MESSAGE) {
        if (!fill()) fail(L"the stream ended without a farewell", 0);  // or somebody cut it
        continue;
      }
      if (state == SEC_I_CONTEXT_EXPIRED) {
        ended_ = true;
        return;
      }
      if (state != SEC_E_OK) fail(L"receiving failed", static_cast<unsigned long>(state));
      for (const SecBuffer& each : parts)
        if (each.BufferType == SECBUFFER_DATA)
          plain_.append(static_cast<const char*>(each.pvBuffer), each.cbBuffer);
      return keep_extra(parts, 4);
    }
  }

  void check_certificate(const std::string& pin) {
    const CERT_CONTEXT* found = nullptr;
    const SECURITY_STATUS asked = QueryContextAttributesW(&context_, SECPKG_ATTR_REMOTE_CERT_CONTEXT, &found);
    if (asked != SEC_E_OK) fail(L"no certificate", static_cast<unsigned long>(asked));
    const std::unique_ptr<const CERT_CONTEXT, void (*)(const CERT_CONTEXT*)> owned(
        found, [](const CERT_CONTEXT* each) { CertFreeCertificateContext(each); });
    if (pin.empty()) return check_chain(*found);
    const ruvo::binary seen =
        ruvo::digest::sha256(ruvo::digest::bytes(found->pbCertEncoded, found->cbCertEncoded));
    if (!ruvo::digest::same(ruvo::texto::to_utf_8(ruvo::digest::hex(seen)), pin))
      fail(L"another certificate", 0);
  }

  /// As browsers do: a chain up to a root that the system trusts, for this host.
  void check_chain(const CERT_CONTEXT& certificate) {
    CERT_CHAIN_PARA wanted = {};
    wanted.cbSize = sizeof wanted;
    const CERT_CHAIN_CONTEXT* chain = nullptr;
    if (!CertGetCertificateChain(nullptr, &certificate, nullptr, certificate.hCertStore, &wanted, 0, nullptr,
                                 &chain))
      fail(L"no chain", GetLastError());
    SSL_EXTRA_CERT_CHAIN_POLICY_PARA server = {};
    server.cbSize = sizeof server;
    server.dwAuthType = AUTHTYPE_SERVER;
    server.pwszServerName = host_.data();
    CERT_CHAIN_POLICY_PARA policy = {};
    policy.cbSize = sizeof policy;
    policy.pvExtraPolicyPara = &server;
    CERT_CHAIN_POLICY_STATUS status = {};
    status.cbSize = sizeof status;
    const bool asked =
        CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, chain, &policy, &status) != FALSE;
    CertFreeCertificateChain(chain);
    if (!asked || status.dwError) fail(L"the certificate is not trusted", status.dwError);
  }

  std::unique_ptr<stream> clear_;
  std::wstring host_;
  CredHandle credentials_{};
  CtxtHandle context_{};
  bool has_context_ = false, ended_ = false;
  SecPkgContext_StreamSizes sizes_{};
  std::string pending_, plain_;  // received and not opened; opened and not handed out
};

}  // namespace

std::unique_ptr<stream> secure(std::unique_ptr<stream> clear, const std::string& host,
                               const std::string& pin) {
  return std::make_unique<tls_stream>(std::move(clear), host, pin);
}

}  // namespace transport
