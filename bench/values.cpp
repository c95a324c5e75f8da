// SPDX-License-Identifier: BSL-1.0

// Values and records against Boost.JSON's value and object, each in the text that is its own (wide here,
// narrow there), so that nothing is converted.

#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <boost/json/src.hpp>

#include "support/harness.hpp"

namespace trade {

struct linea {
  std::wstring articulo;
  long long unidades = 0;
  double precio = 0;
};
KESTA_FIELDS(linea, articulo, unidades, precio)

struct pedido {
  std::wstring numero, cliente, nif, poblacion;
  long long agente = 0;
  int plazo = 0;
  double base = 0, total = 0;
  bool urgente = false;
  std::vector<linea> lineas;
};
KESTA_FIELDS(pedido, numero, cliente, nif, poblacion, agente, plazo, base, total, urgente, lineas)

/// What a program does without the fields.
void read_by_hand(pedido& out, const ruvo::bundle& from) {
  out.numero = from.get_string(L"numero");
  out.cliente = from.get_string(L"cliente");
  out.nif = from.get_string(L"nif");
  out.poblacion = from.get_string(L"poblacion");
  out.agente = from.get_xlong(L"agente");
  out.plazo = from.get_long(L"plazo");
  out.base = from.get_double(L"base");
  out.total = from.get_double(L"total");
  out.urgente = from.get_boolean(L"urgente");
  const ruvo::list& lines = from.get_list(L"lineas");
  out.lineas.clear();
  out.lineas.reserve(lines.size());
  for (const ruvo::xvar& each : lines) {
    const ruvo::bundle* const line = ruvo::as_bundle(each);
    if (!line) continue;
    linea& made = out.lineas.emplace_back();
    made.articulo = line->get_string(L"articulo");
    made.unidades = line->get_xlong(L"unidades");
    made.precio = line->get_double(L"precio");
  }
}

ruvo::bundle write_by_hand(const pedido& from) {
  ruvo::bundle out;
  out.reserve(10);
  out[L"numero"] = from.numero;
  out[L"cliente"] = from.cliente;
  out[L"nif"] = from.nif;
  out[L"poblacion"] = from.poblacion;
  out[L"agente"] = from.agente;
  out[L"plazo"] = from.plazo;
  out[L"base"] = from.base;
  out[L"total"] = from.total;
  out[L"urgente"] = from.urgente;
  ruvo::list& lines = out.hack_list_on(L"lineas");
  for (const linea& each : from.lineas) {
    ruvo::bundle& line = lines.on_back_bundle();
    line.reserve(3);
    line[L"articulo"] = each.articulo;
    line[L"unidades"] = each.unidades;
    line[L"precio"] = each.precio;
  }
  return out;
}

}  // namespace trade

namespace {

constexpr int repeats = 1000;  // operations of one run: a call of the run itself must not count

/// One operation, many times. It is given the number of the turn.
template <class Operation>
bench::competitor repeated(const char* name, Operation operation) {
  return {name, [operation] {
            for (int i = 0; i < repeats; ++i) operation(i);
          }};
}

template <class Own, class Peer>
void compare(bench::table& table, const char* subject, const char* what, Own own, Peer peer,
             int operations_each = 1) {
  table.row(subject, what, {static_cast<double>(repeats) * operations_each, bench::amount::operations},
            {repeated("kesta", own), repeated("Boost", peer)}, {{"Boost", 1.0}});
}

// --- numbers

template <class Number>
void numbers(bench::table& table, const char* kind) {
  compare(
      table, "construct", kind, [](int i) { bench::use(ruvo::var(static_cast<Number>(i))); },
      [](int i) { bench::use(boost::json::value(static_cast<Number>(i))); });

  ruvo::var own(static_cast<Number>(12345)), own_twin(own);
  boost::json::value peer(static_cast<Number>(12345)), peer_twin(peer);
  bench::use(own), bench::use(own_twin), bench::use(peer), bench::use(peer_twin);
  compare(
      table, "copy", kind, [&](int) { bench::use(ruvo::var(own)); },
      [&](int) { bench::use(boost::json::value(peer)); });
  compare(
      table, "compare", kind, [&](int) { bench::use(own == own_twin); },
      [&](int) { bench::use(peer == peer_twin); });
}

// --- records

const std::vector<std::string> keys = {"numero",   "fecha",         "cliente",    "nif",
                                       "calle",    "codigo_postal", "poblacion",  "provincia",
                                       "telefono", "correo",        "forma_pago", "moneda",
                                       "base",     "iva",           "total",      "unidades",
                                       "urgente",  "observacion",   "agente",     "referencia_interna"};

std::vector<std::wstring> wide(const std::vector<std::string>& texts) {
  std::vector<std::wstring> out;
  for (const std::string& text : texts) out.push_back(ruvo::texto::to_utf_16(text));
  return out;
}

const std::vector<std::wstring> wide_keys = wide(keys);
const std::vector<std::string> texts = {"2026-000123", "21-11-2026", "Talleres Imaginarios", "00000000T"};
const std::vector<std::wstring> wide_texts = wide(texts);

/// Twenty entries, a third of them texts.
template <class Record, class Keys, class Texts>
void fill(Record& record, const Keys& with, const Texts& words) {
  for (std::size_t i = 0; i < with.size(); ++i) {
    auto& value = record[with[i]];
    switch (i % 3) {
      case 0:
        value = words[i % words.size()];
        break;
      case 1:
        value = static_cast<long long>(i);
        break;
      default:
        value = static_cast<double>(i) + 0.5;
    }
  }
}

void records(bench::table& table) {
  compare(
      table, "build, destroy", "20 entries",
      [](int) {
        ruvo::bundle record;
        fill(record, wide_keys, wide_texts);
        bench::use(record);
      },
      [](int) {
        boost::json::object record;
        fill(record, keys, texts);
        bench::use(record);
      });

  ruvo::bundle own;
  boost::json::object peer;
  fill(own, wide_keys, wide_texts);
  fill(peer, keys, texts);
  compare(
      table, "copy, destroy", "20 entries", [&](int) { bench::use(ruvo::bundle(own)); },
      [&](int) { bench::use(boost::json::object(peer)); });

  ruvo::bundle merged(own);
  table.row("merge", "the same 20 keys", {repeats, bench::amount::operations},
            {repeated("kesta",
                      [&](int) {
                        ruvo::bundles::merge(merged, own);
                        bench::use(merged);
                      }),
             repeated("copy", [&](int) { bench::use(ruvo::bundle(own)); })},
            {{"copy", 0.9}});
}

/// "codigo_postal" as "Codigo_Postal".
std::string capitalized(std::string key) {
  bool first = true;
  for (char& c : key) {
    if (first && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    first = c == '_';
  }
  return key;
}

/// What the user of a case-sensitive library does: lower case into a buffer, then look up.
const boost::json::value* find_folded(const boost::json::object& record, std::string_view key) {
  char buffer[64];
  const std::size_t size = std::min(key.size(), sizeof buffer);
  for (std::size_t i = 0; i < size; ++i) {
    const char c = key[i];
    buffer[i] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return record.if_contains({buffer, size});
}

void look_up(bench::table& table, const char* spelling, const std::vector<std::string>& asked) {
  const std::vector<std::wstring> wide_asked = wide(asked);
  ruvo::bundle own;
  boost::json::object peer;
  fill(own, wide_keys, wide_texts);
  fill(peer, keys, texts);
  compare(
      table, "find, any case", spelling,
      [&](int) {
        for (const std::wstring& key : wide_asked) bench::use(own.find(key)->second);
      },
      [&](int) {
        for (const std::string& key : asked) bench::use(*find_folded(peer, key));
      },
      static_cast<int>(asked.size()));
}

/// Each record on the way has twenty entries besides.
void paths(bench::table& table) {
  ruvo::bundle own, own_customer, own_address;
  boost::json::object peer, peer_customer, peer_address;
  for (auto* record : {&own, &own_customer, &own_address}) fill(*record, wide_keys, wide_texts);
  for (auto* record : {&peer, &peer_customer, &peer_address}) fill(*record, keys, texts);
  own_customer[L"direccion"] = own_address;
  own[L"comprador"] = own_customer;
  peer_customer["direccion"] = peer_address;
  peer["comprador"] = peer_customer;

  const std::wstring path = L"comprador.direccion.codigo_postal";
  const std::vector<std::string> steps = {"comprador", "direccion", "codigo_postal"};
  const boost::json::value whole(peer);
  table.row("path", "depth 3", {repeats, bench::amount::operations},
            {repeated("kesta", [&](int) { bench::use(*own.get_ptr(path, '.')); }),
             repeated("Boost",
                      [&](int) {
                        const boost::json::object* at = &peer;
                        for (std::size_t i = 0; i + 1 < steps.size(); ++i)
                          at = at->if_contains(steps[i])->if_object();
                        bench::use(*at->if_contains(steps.back()));
                      }),
             repeated("at_pointer",
                      [&](int) { bench::use(whole.at_pointer("/comprador/direccion/codigo_postal")); })},
            {{"Boost", 1.0}});
}

/// A look-up in a record of 10,000 records, of another one each time.
void paths_among_many(bench::table& table) {
  constexpr unsigned members = 10000;
  ruvo::bundle own;
  boost::json::object peer;
  for (unsigned n = 0; n < members; ++n) {
    const std::string key = "cliente_" + std::to_string(n);
    ruvo::bundle record;
    record[L"calle"] = wide_texts[2];
    record[L"codigo_postal"] = static_cast<long long>(n);
    own[ruvo::texto::to_utf_16(key)] = record;
    peer[key] = boost::json::object{{"calle", texts[2]}, {"codigo_postal", n}};
  }
  const boost::json::value whole(std::move(peer));

  std::mt19937 random(20261122);
  std::vector<std::wstring> asked;
  std::vector<std::string> pointers;
  while (asked.size() < repeats) {
    const std::string key = "cliente_" + std::to_string(random() % members);
    asked.push_back(ruvo::texto::to_utf_16(key) + L".codigo_postal");
    pointers.push_back("/" + key + "/codigo_postal");
  }
  table.row("path", "10,000 members", {repeats, bench::amount::operations},
            {repeated("kesta", [&](int i) { bench::use(*own.get_ptr(asked[static_cast<std::size_t>(i)])); }),
             repeated("at_pointer",
                      [&](int i) { bench::use(whole.at_pointer(pointers[static_cast<std::size_t>(i)])); })},
            {{"at_pointer", 1.0}});
}

/// The fields of a struct against getters and keys that are written one by one.
void structs(bench::table& table) {
  trade::pedido from{
      L"2026-000123", L"Talleres Imaginarios", L"00000000T", L"Vigo", 7, 30, 100.5, 121.6, true, {}};
  for (int n = 0; n < 5; ++n) from.lineas.push_back({L"A-" + std::to_wstring(n), n, n + 0.25});
  const ruvo::bundle document = trade::write_by_hand(from);
  trade::pedido own, peer;
  ruvo::field_report report;
  table.row("struct, read", "10 fields, 5 rows", {repeats, bench::amount::operations},
            {repeated("kesta", [&](int) { bench::use(ruvo::read_fields(own, document, report)); }),
             repeated("by hand",
                      [&](int) {
                        trade::read_by_hand(peer, document);
                        bench::use(peer);
                      })},
            {{"by hand", 0.9}});
  table.row("struct, write", "10 fields, 5 rows", {repeats, bench::amount::operations},
            {repeated("kesta", [&](int) { bench::use(ruvo::to_bundle(from)); }),
             repeated("by hand", [&](int) { bench::use(trade::write_by_hand(from)); })},
            {{"by hand", 0.9}});
}

}  // namespace

int main() {
  bench::table table("values");
  numbers<long long>(table, "long long");
  numbers<double>(table, "double");
  records(table);
  look_up(table, "lower case", keys);
  std::vector<std::string> capitals;
  for (const std::string& key : keys) capitals.push_back(capitalized(key));
  look_up(table, "Capitals", capitals);
  paths(table);
  paths_among_many(table);
  structs(table);
}
