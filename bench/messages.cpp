// SPDX-License-Identifier: BSL-1.0

// A mail with a large attached file written in pieces, against its Base64 text made in memory; and digests.

#include <ruvo/application.hpp>
#include <ruvo/digest.hpp>
#include <ruvo/files.hpp>
#include <ruvo/smtp/wire.hpp>
#include <ruvo/texto.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <boost/uuid/detail/sha1.hpp>

#include "support/harness.hpp"
#include "support/system_programs.hpp"

namespace {

namespace fs = std::filesystem;

/// Bytes without a pattern.
std::string noise(std::size_t size) {
  std::string out(size, '\0');
  std::uint32_t state = 2463534242;
  for (char& each : out) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    each = static_cast<char>(state >> 24);
  }
  return out;
}

struct sample {
  explicit sample(std::string_view bytes) : path(fs::temp_directory_path() / "kesta bench factura.pdf") {
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  sample(const sample&) = delete;
  sample& operator=(const sample&) = delete;
  ~sample() { fs::remove(path); }
  const fs::path path;
};

void write_in_pieces(const ruvo::smtp::email& mail) {
  std::size_t size = 0;
  const auto count = [&size](std::string_view piece) {
    size += piece.size();
    return true;
  };
  ruvo::exception err;
  if (!ruvo::smtp::write(ruvo::mime::piece_sink(count), mail, err)) throw std::runtime_error("not written");
  bench::use(size);
}

void compare_mails(bench::table& table) {
  constexpr std::size_t size = 20'000'000;
  const std::string bytes = noise(size);
  const sample file(bytes);
  ruvo::smtp::email mail(L"ventas@example.com", L"Factura de noviembre");
  mail[L"compras@example.com"] = ruvo::smtp::email::TO;
  mail.push(ruvo::file(file.path.wstring()));
  const bench::memory_use before = bench::own_memory();
  write_in_pieces(mail);
  const bench::memory_use after = bench::own_memory();
  table.row("mail", "20 MB attached", {static_cast<double>(size), bench::amount::characters},
            {{"kesta", [&] { write_in_pieces(mail); }},
             {"Base64 in memory",
              [&] {
                std::string out;
                ruvo::texto::base64_encode(out, bytes, false);
                bench::use(out);
              }}},
            {{"Base64 in memory", 0.5}});
  table.line({"mail, memory beside it", "20 MB attached", "MB", "1 MB", after.most - before.now, 1.0,
              after.most - before.now, bench::comparison::cost},
             {{"1 MB", 1.0}});
}

void compare_digests(bench::table& table) {
  const std::string bytes = noise(std::size_t{1} << 20);
  const auto digest = [&](ruvo::digest::algorithm kind) {
    bench::use(ruvo::digest::hash(kind).update(bytes).value());
  };
  const auto sha1_of_boost = [&] {
    boost::uuids::detail::sha1 own;
    own.process_bytes(bytes.data(), bytes.size());
    unsigned int out[5];
    own.get_digest(out);
    bench::use(out);
  };
  const bench::amount all{static_cast<double>(bytes.size()), bench::amount::characters};
  using ruvo::digest::algorithm;
  table.row("SHA-1", "1 MB", all, {{"kesta", [&] { digest(algorithm::sha1); }}, {"Boost", sha1_of_boost}},
            {{"Boost", 1.0}});
  table.row("SHA-256", "1 MB", all,
            {{"kesta", [&] { digest(algorithm::sha256); }}, {"Boost's SHA-1", sha1_of_boost}}, {});
}

}  // namespace

int main() {
  bench::table table("messages");
  compare_mails(table);
  compare_digests(table);
}
