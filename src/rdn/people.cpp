// SPDX-License-Identifier: BSL-1.0

// People and companies.

#include <ruvo/rdn.hpp>
#include <ruvo/texto.hpp>

#include <iterator>

#include "base/ascii.hpp"
#include "base/civil.hpp"
#include "rdn/names.hpp"
#include "rdn/tables.hpp"

namespace ruvo::rdn {

namespace {

constexpr auto men = parts_of<parts_in(men_text)>(men_text);
constexpr auto women = parts_of<parts_in(women_text)>(women_text);
constexpr auto surnames = parts_of<parts_in(surname_text)>(surname_text);

// In persons, as INE counts them: within a third for the first ten of the surnames (2022) and of the men
// (2024), within two thirds for the women.
constexpr auto men_sums = sums_by_rank<men.size()>(4870000, 7);
constexpr auto women_sums = sums_by_rank<women.size()>(4870000, 7);
constexpr auto surname_sums = sums_by_rank<surnames.size()>(5800000, 3);

constexpr long long first_birth = civil::days_from_date(1940, 1, 1);
constexpr long long last_birth = civil::days_from_date(2005, 12, 31);

std::wstring_view draw_name(generator& from, sex of) {
  return of == sex::man ? men[draw_index(from, men_sums)] : women[draw_index(from, women_sums)];
}
std::wstring_view draw_surname(generator& from) { return surnames[draw_index(from, surname_sums)]; }

sex draw_sex(generator& from) { return from.below(2) == 0 ? sex::woman : sex::man; }

// RFC 2606, section 3.
constexpr const wchar_t* mail_domains[] = {L"example.com", L"example.net", L"example.org"};

struct trade_row {
  const wchar_t *title, *activity;
};
constexpr trade_row trades[] = {{L"Talleres", L"Reparación de vehículos"},
                                {L"Transportes", L"Transporte de mercancías por carretera"},
                                {L"Construcciones", L"Construcción de edificios"},
                                {L"Panadería", L"Fabricación de pan"},
                                {L"Muebles", L"Comercio de muebles"},
                                {L"Ferretería", L"Comercio de ferretería"},
                                {L"Instalaciones Eléctricas", L"Instalaciones eléctricas"},
                                {L"Carpintería", L"Instalación de carpintería"},
                                {L"Bodegas", L"Elaboración de vinos"},
                                {L"Aceites", L"Fabricación de aceite de oliva"},
                                {L"Conservas", L"Conservación de pescados"},
                                {L"Frutas", L"Comercio al por mayor de frutas"},
                                {L"Asesoría", L"Asesoría fiscal"},
                                {L"Gráficas", L"Artes gráficas"},
                                {L"Limpiezas", L"Limpieza de edificios"},
                                {L"Viveros", L"Propagación de plantas"},
                                {L"Librería", L"Comercio de libros"},
                                {L"Clínica Dental", L"Odontología"},
                                {L"Informática", L"Programación informática"},
                                {L"Hostelería", L"Restaurantes"}};

/// Legal forms, and how many of a hundred companies have them here.
struct form_row {
  wchar_t letter;
  const wchar_t* sign;
  unsigned both, official;
};
constexpr form_row forms[] = {{L'A', L"S.A.", 0, 15},    {L'B', L"S.L.", 0, 70},     {L'C', L"S.R.C.", 10, 1},
                              {L'D', L"S. Com.", 10, 1}, {L'F', L"S. Coop.", 45, 6}, {L'J', L"S.C.", 35, 7}};

const form_row& draw_form(generator& from, rule which) {
  std::uint64_t left = from.below(100);
  for (const form_row& each : forms) {
    const unsigned share = which == rule::both ? each.both : each.official;
    if (left < share) return each;
    left -= share;
  }
  return *std::prev(std::end(forms));
}

/// The letters of a name for an address: small, plain, without blanks.
void append_plain(std::wstring& out, std::wstring_view name) {
  for (const wchar_t c : name) {
    const wchar_t plain = texto::to_lower(texto::limpia_puntuacion(c, 0));
    if (texto::is_lower(plain)) out += plain;
  }
}

}  // namespace

std::wstring mail_of(generator& from, std::wstring_view first, std::wstring_view second) {
  std::wstring out;
  out.reserve(first.size() + second.size() + 16);
  append_plain(out, first);
  out += L'.';
  append_plain(out, second);
  append_digits(out, from, 3);
  return (out += L'@') += draw_row(from, mail_domains);
}

std::wstring generator::name() { return name(draw_sex(*this)); }
std::wstring generator::name(sex of) { return std::wstring(draw_name(*this, of)); }
std::wstring generator::surname() { return std::wstring(draw_surname(*this)); }

std::wstring generator::full_name() { return full_name(draw_sex(*this)); }
std::wstring generator::full_name(sex of) {
  std::wstring out = name(of);
  for (int i = 0; i < 2; ++i) (out += L' ') += draw_surname(*this);
  return out;
}

std::wstring generator::mail() {
  const std::wstring_view first = draw_name(*this, draw_sex(*this));
  return mail_of(*this, first, draw_surname(*this));
}

bundle generator::person() { return person(draw_sex(*this)); }
bundle generator::person(sex of) {
  const std::wstring_view first = draw_name(*this, of), second = draw_surname(*this);
  bundle out;
  out.reserve(9);
  out[L"nombre"] = std::wstring(first);
  out[L"apellido1"] = std::wstring(second);
  out[L"apellido2"] = surname();
  out[L"sexo"] = of == sex::woman ? L"mujer" : L"hombre";
  out[L"nacimiento"] = date_of(integer(first_birth, last_birth));
  out[L"nif"] = nif();
  out[L"telefono"] = phone();
  out[L"correo"] = mail_of(*this, first, second);
  out[L"direccion"] = xvar(address());
  return out;
}

bundle generator::company(rule which) {
  const form_row& form = draw_form(*this, which);
  const trade_row& trade = draw_row(*this, trades);
  std::wstring title = trade.title;
  const std::wstring_view owner = draw_surname(*this);
  (title += L' ') += owner;
  if (chance(30)) (title += L" y ") += draw_surname(*this);
  bundle out;
  out.reserve(6);
  out[L"razon_social"] = (title += L", ") += form.sign;
  out[L"nif"] = cif(form.letter, which);
  out[L"actividad"] = trade.activity;
  out[L"telefono"] = phone();
  out[L"correo"] = mail_of(*this, trade.title, owner);
  out[L"direccion"] = xvar(address());
  return out;
}

}  // namespace ruvo::rdn
