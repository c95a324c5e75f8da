// SPDX-License-Identifier: BSL-1.0

// Dummy text, and texts by a form.

#include <ruvo/rdn.hpp>

#include "base/ascii.hpp"
#include "rdn/tables.hpp"

namespace ruvo::rdn {

namespace {

// Words of Cicero's De finibus bonorum et malorum, 1.10.32 and 33, whole and mutilated, as printers have
// them.
constexpr std::wstring_view lorem_text =
    L"lorem,ipsum,dolor,sit,amet,consectetur,adipiscing,elit,sed,do,eiusmod,tempor,incididunt,ut,labore,et,"
    L"dolore,magna,aliqua,enim,ad,minim,veniam,quis,nostrud,exercitation,ullamco,laboris,nisi,aliquip,ex,ea,"
    L"commodo,consequat,duis,aute,irure,in,reprehenderit,voluptate,velit,esse,cillum,eu,fugiat,nulla,"
    L"pariatur,"
    L"excepteur,sint,occaecat,cupidatat,non,proident,sunt,culpa,qui,officia,deserunt,mollit,anim,id,est,"
    L"laborum,"
    L"perspiciatis,unde,omnis,iste,natus,error,voluptatem,accusantium,doloremque,laudantium,totam,rem,"
    L"aperiam,"
    L"eaque,ipsa,quae,ab,illo,inventore,veritatis,quasi,architecto,beatae,vitae,dicta,explicabo,nemo,ipsam,"
    L"quia,"
    L"voluptas,aspernatur,aut,odit,fugit,consequuntur,magni,dolores,eos,ratione,sequi,nesciunt,neque,porro,"
    L"quisquam,dolorem,numquam,eius,modi,tempora,incidunt,magnam,aliquam,quaerat";
constexpr auto lorem_words = parts_of<parts_in(lorem_text)>(lorem_text);

}  // namespace

std::wstring generator::word() { return std::wstring(draw_row(*this, lorem_words)); }

std::wstring generator::words(std::size_t count) {
  std::wstring out;
  for (; count > 0; --count) {
    if (!out.empty()) out += L' ';
    out += draw_row(*this, lorem_words);
  }
  return out;
}

std::wstring generator::sentence() {
  const std::size_t count = static_cast<std::size_t>(4 + below(11));
  const std::size_t comma = count > 6 && chance(50) ? static_cast<std::size_t>(2 + below(count - 4)) : 0;
  std::wstring out = words(comma);
  if (comma > 0) out += L", ";
  out += words(count - comma);
  out[0] = texto::to_upper(out[0]);
  return out += L'.';
}

std::wstring generator::paragraph() {
  std::wstring out = sentence();
  for (std::uint64_t more = 2 + below(5); more > 0; --more) (out += L' ') += sentence();
  return out;
}

std::wstring generator::lorem(std::size_t paragraphs) {
  if (paragraphs == 0) return {};
  std::wstring out = paragraph();
  out[0] = texto::to_lower(out[0]);
  out.insert(0, L"Lorem ipsum dolor sit amet, ");
  while (--paragraphs > 0) (out += L'\n') += paragraph();
  return out;
}

std::wstring generator::pattern(std::wstring_view form) {
  std::wstring out(form);
  for (wchar_t& c : out) {
    if (c == L'#') {
      c = draw_digit(*this);
    } else if (c == L'@') {
      c = static_cast<wchar_t>(L'A' + below(26));
    }
  }
  return out;
}

}  // namespace ruvo::rdn
