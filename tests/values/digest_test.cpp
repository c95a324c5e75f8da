// SPDX-License-Identifier: BSL-1.0

// Digests: published vectors, pieces of any size, and codes with a key.

#include <ruvo/digest.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/dice.hpp"
#include "support/rounds.hpp"

namespace {

namespace digest = ruvo::digest;
using digest::algorithm;

TEST(digest, published_vectors) {
  const std::string two_blocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
  const struct {
    std::string text;
    const wchar_t *sha1, *sha256;
  } rows[] = {{"", L"da39a3ee5e6b4b0d3255bfef95601890afd80709",
               L"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
              {"abc", L"a9993e364706816aba3e25717850c26c9cd0d89d",
               L"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
              {two_blocks, L"84983e441c3bd26ebaae4aa1f95129e5e54670f1",
               L"248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
              {std::string(55, 'a'), L"c1c8bbdc22796e28c0e15163d20899b65621d65a",
               L"9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
              {std::string(1000000, 'a'), L"34aa973cd4c4daa4f61eeb2bdbad27316534016f",
               L"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}};
  for (const auto& row : rows) {
    EXPECT_EQ(digest::hex(digest::sha1(row.text)), row.sha1) << row.text.size();
    EXPECT_EQ(digest::hash().update(row.text).hex(), row.sha256) << row.text.size();
  }
}

/// RFC 2202 and RFC 4231: the same texts under keys of 20 bytes and 80, or 131; and a key of one block.
TEST(digest, published_codes) {
  const std::string longer = "Test Using Larger Than Block-Size Key - Hash Key First";
  const struct {
    algorithm kind;
    std::string key, text;
    const wchar_t* code;
  } rows[] = {
      {algorithm::sha1, std::string(20, '\x0b'), "Hi There", L"b617318655057264e28bc0b6fb378c8ef146be00"},
      {algorithm::sha1, "Jefe", "what do ya want for nothing?", L"effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
      {algorithm::sha1, std::string(20, '\xaa'), std::string(50, '\xdd'),
       L"125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
      {algorithm::sha1, std::string(80, '\xaa'), longer, L"aa4ae5e15272d00e95705637ce8a3b55ed402112"},
      {algorithm::sha256, std::string(20, '\x0b'), "Hi There",
       L"b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7"},
      {algorithm::sha256, "Jefe", "what do ya want for nothing?",
       L"5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
      {algorithm::sha256, std::string(20, '\xaa'), std::string(50, '\xdd'),
       L"773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
      {algorithm::sha256, std::string(64, '\xaa'), "Hi There",
       L"ebef34e13d0a0fe04593d043bc7a865106db0604211d404c18206d862e5d7852"},
      {algorithm::sha256, std::string(131, '\xaa'), longer,
       L"60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"}};
  for (const auto& row : rows) {
    digest::hmac code(row.kind, row.key);
    EXPECT_EQ(code.update("another").update(row.text).hex().size(), 2 * digest::size_of(row.kind));
    code.clear();
    EXPECT_EQ(code.update(row.text).hex(), row.code) << row.text;
    const bool first = row.kind == algorithm::sha1;
    EXPECT_EQ((first ? digest::hmac_sha1 : digest::hmac_sha256)(row.key, row.text), code.value());
  }
}

class digests : public generated_inputs {};

/// Whatever the pieces are, and wherever a copy is made: the digest is that of the whole, which looking at it
/// on the way does not change.
TEST_F(digests, do_not_depend_on_the_pieces) {
  dice any(20240229);
  for (unsigned n = 0; n < 400 * rounds(); ++n, ++inputs) {
    std::string all(any.below(any.one_in(4) ? 2000 : 200), ' ');
    for (char& c : all) c = static_cast<char>(any.below(256));
    const auto kind = any.one_in(2) ? algorithm::sha1 : algorithm::sha256;
    const std::string key = all.substr(0, any.below(150));
    digest::hash pieces(kind);
    digest::hmac code(kind, key);
    for (std::size_t at = 0, size = 0; at < all.size(); at += size) {
      size = std::min<std::size_t>(1 + any.below(130), all.size() - at);
      const digest::hash copy(pieces);
      pieces.update(all.substr(0, any.below(100)));
      static_cast<void>(pieces.value());
      pieces = copy;
      pieces.update(digest::bytes(all.data() + at, size));
      code.update(std::string_view(all).substr(at, size));
    }
    const bool first = kind == algorithm::sha1;
    EXPECT_EQ(pieces.value(), (first ? digest::sha1 : digest::sha256)(all)) << all.size();
    EXPECT_EQ(code.value(), (first ? digest::hmac_sha1 : digest::hmac_sha256)(key, all)) << all.size();
  }
}

TEST(digest, codes_are_compared) {
  const ruvo::binary code = digest::sha1("abc");
  ruvo::binary other(code);
  EXPECT_TRUE(digest::same(code, other) && digest::same("", ruvo::binary()));
  EXPECT_FALSE(digest::same(code, digest::bytes(code.get_store().data(), 19)));
  for (const std::size_t at : {0, 10, 19}) {
    *(other.begin() + static_cast<std::ptrdiff_t>(at)) ^= 0x80;
    EXPECT_FALSE(digest::same(code, other)) << at;
    other = code;
  }
}

}  // namespace
