// SPDX-License-Identifier: BSL-1.0

// Official identifiers: what is right stays right however it is written, and control characters that are made
// fit.

#include <ruvo/identifiers.hpp>
#include <ruvo/texto/identifiers.hpp>

#include "fuzz.hpp"

namespace identifiers = ruvo::identifiers;
using identifiers::kind;

namespace {

void check_right(kind of, const std::wstring& text) {
  const std::wstring normal = identifiers::normalise(of, text), usual = identifiers::format(of, text);
  FUZZ_CHECK(identifiers::check(of, normal) && identifiers::check(of, usual));
  FUZZ_CHECK(identifiers::normalise(of, normal) == normal && identifiers::normalise(of, usual) == normal);
  FUZZ_CHECK(identifiers::with_control(of, text) == normal);
  FUZZ_CHECK(identifiers::describe(of, normal) == identifiers::describe(of, text));
  if (of == kind::dni) FUZZ_CHECK(ruvo::texto::valida_dni(normal));
  if (of == kind::nie) FUZZ_CHECK(ruvo::texto::valida_nie(normal));
  if (of == kind::iban) FUZZ_CHECK(ruvo::texto::valida_iban(normal));
  if (of == kind::card) FUZZ_CHECK(ruvo::texto::valida_tarjeta_credito(normal));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  for (kind of = kind::dni; of <= kind::telephone; of = static_cast<kind>(static_cast<int>(of) + 1)) {
    const identifiers::verdict found = identifiers::check(of, text);
    FUZZ_CHECK(found.position <= text.size());
    FUZZ_CHECK(static_cast<bool>(found) == identifiers::message_of(found).empty());
    const std::wstring made = identifiers::with_control(of, text);
    FUZZ_CHECK(made.empty() || identifiers::check(of, made));
    if (found) {
      check_right(of, text);
    } else {
      FUZZ_CHECK(identifiers::format(of, text) == text && identifiers::describe(of, text).empty());
    }
  }
  return 0;
}
