// SPDX-License-Identifier: BSL-1.0

// The whole way of a document: an application boots, a worker thread checks in, reads JSON files into
// bundles, takes typed values out of them by path, builds an answer and writes it as standard JSON, in the
// library's dialect, for what it stores, and as XML. What is no standard JSON is read by the dialect.
// The answer to an order is an HTTP response, and an e-mail confirms it. Where servers are named, both are
// sent to them by the transport beside this file, the mail with the answer in a zip archive, and a form that
// somebody filled in is fetched and read. Log entries show what happens when.
//
//   demo [--ajustes=FILE.ini] [--SECTION.KEY=VALUE...] FILE.json...
//
// Settings are in demo.ini beside the program, or in the file of --ajustes: the first run writes it, with a
// comment on each of them. What the file says counts more than what the program has of its own, and less than
// the arguments, such as --envio.http=http://localhost:8080. The number of the last order is stored in it,
// and all else stays there as somebody wrote it.
//
// An order (see data/pedido.json) is answered; of any other document a summary is shown. What is shown is
// UTF-8 text: a Windows console wants `chcp 65001` first.

#include <ruvo/forms.hpp>
#include <ruvo/header_fields.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include "transport/http_client.hpp"
#include "transport/smtp_client.hpp"

namespace {

// --- what the user sees

void say(const std::wstring& line) {
  const std::string out = ruvo::texto::to_utf_8(line) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
}

/// At most `limit` characters of the text, on one line.
std::wstring shortened(std::wstring text, std::size_t limit) {
  std::replace(text.begin(), text.end(), L'\n', L' ');
  if (text.size() <= limit) return text;
  if ((text[limit - 1] & 0xFC00) == 0xD800) --limit;  // the first half of a character
  text.resize(limit);
  return text + L"…";
}

std::wstring first_lines(const std::wstring& text, int count) {
  std::size_t end = 0;
  while (count-- > 0 && end < text.size()) end = std::min(text.find(L'\n', end), text.size() - 1) + 1;
  return end < text.size() ? text.substr(0, end) + L"…" : text;
}

void show(const std::wstring& name, const std::wstring& value) {
  say(ruvo::texto::rtrim_(L"  " + (name + std::wstring(14, L' ')).substr(0, 14) + value));
}

void show(const std::wstring& name, const ruvo::exception& failure) {
  show(name, L"código " + std::to_wstring(failure.get_code()) + L", rango " +
                 std::to_wstring(failure.get_rango()) + L": " + failure.get_mensaje());
}

/// Entries of the log between the other lines.
class log_on_screen : public ruvo::IOnLog {
 public:
  void on_log(long level, const std::wstring& second, const std::wstring& first) override {
    say(ruvo::reg::time_stamp() + L" " + ruvo::reg::level_name(level) + L" " + first + L": " + second);
  }
};

// --- reading

std::string read_file(const ruvo::file& path) {
  std::string bytes;
  ruvo::exception failure;
  if (!ruvo::files::read(bytes, path, failure)) throw ruvo::exception(failure);
  return bytes;
}

/// json::deserialize reads on after a failure and reports the last one. A reader that is fed by hand can stop
/// at the first.
ruvo::exception first_failure(const std::wstring& text) {
  ruvo::exception failure;
  ruvo::bundle discarded;
  ruvo::serializer::json_reader reader;
  reader.set_store(discarded);
  for (const wchar_t c : text) {
    if (reader.next_character(c, failure)) break;
  }
  return failure;
}

/// Any standard JSON; a list becomes the member `__json_array__`, as the dialect has it. True on failure.
bool read_standard(ruvo::bundle& document, const std::string& bytes, ruvo::exception& failure) {
  ruvo::xvar whole;
  if (ruvo::serializer::read_standard_json(whole, bytes, &failure)) return true;
  document = whole;
  if (whole.instanceof (typeid(ruvo::list))) document[L"__json_array__"] = whole;
  return false;
}

/// What the dialect makes of a text, as far as it can read it. True on failure.
bool read_stored(ruvo::bundle& document, const std::wstring& text, ruvo::exception& failure) {
  ruvo::serializer::json json;
  if (!json.deserialize(document, text, &failure)) return false;
  show(L"primer fallo", first_failure(text));
  show(L"último fallo", failure);
  return true;
}

/// Dates have no getter of their own: the value found converts itself, and throws when it is no date. Today
/// when there is no value, nothing when it is no date.
std::optional<ruvo::date> get_date(const ruvo::bundle& from, const std::wstring& path) {
  const ruvo::xvar* const value = from.get_ptr(path);
  if (!value || value->is_null()) return ruvo::date();
  try {
    return static_cast<ruvo::date>(*value);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

// --- settings

/// One that there is: what it is where nobody says otherwise, and the comment above it in the file.
struct setting {
  std::wstring section;
  std::wstring key;
  ruvo::xvar value;
  std::wstring comment;

  std::wstring path() const { return section + L'.' + key; }
};

std::vector<setting> own_settings() {
  return {{L"envio", L"http", L"", L"Servidor de pedidos, http://SERVIDOR:PUERTO. Vacío: no se envían"},
          {L"envio", L"correo", L"", L"Servidor de correo, SERVIDOR:PUERTO. Vacío: no se envía"},
          {L"remitente", L"nombre", L"Almacén Central", L"Quien firma los correos"},
          {L"remitente", L"direccion", L"almacen@example.org", L"Adonde llegan las respuestas a ellos"},
          {L"pedidos", L"plazo_dias", 30, L"Días hasta la entrega, si el pedido no los dice"},
          {L"pedidos", L"iva", 21, L"Tipo en %, si la línea no lo dice"},
          {L"ultimo", L"pedido", L"", L"Lo escribe el programa: el último pedido que atendió"},
          {L"ultimo", L"fecha", L"", L"Y cuándo"}};
}

/// Reads the file; one that is missing is written before.
bool open_settings(ruvo::ini_file& file, const ruvo::file& path, ruvo::exception& failure) {
  if (!file.open(path, failure)) return false;
  if (path.exists()) {
    if (file.check(failure)) return true;
    const auto place =
        ruvo::serializer::position_of(file.text(), ruvo::serializer::failure_position(failure));
    show(L"no se entiende", L" línea " + std::to_wstring(place.line) + L" de " + path.get_name());
    return false;
  }
  for (const setting& each : own_settings()) {
    if (!file.set(each.section, each.key, each.value, failure) ||
        !file.set_comment(each.section, each.key, each.comment, failure))
      return false;
  }
  return file.save_if_unchanged(failure);
}

/// From below: what the program has, what the file says, what the arguments say.
bool read_settings(ruvo::layered_settings& settings, const ruvo::file& path, const ruvo::bundle& arguments,
                   ruvo::exception& failure) {
  ruvo::ini_file file;
  ruvo::bundle stored;
  if (!open_settings(file, path, failure) || !file.to_bundle(stored, failure)) return false;
  ruvo::bundle own;
  for (const setting& each : own_settings()) own.putOn(each.path(), each.value);
  settings.set_layer(L"programa", own);
  settings.set_layer(L"fichero", stored);
  settings.set_layer(L"argumentos", arguments);
  return true;
}

/// Finds what the program does not have by merging all settings into its own.
class unknown_settings : public ruvo::bundles::imerged_filter {
 public:
  bool on_merge(const std::wstring& path, ruvo::xvar& own, const ruvo::xvar& given) override {
    const std::type_info& section = typeid(ruvo::bundle);
    const bool is_known = !own.is_null() && own.instanceof (section) == given.instanceof (section);
    if (!is_known) paths.push_back(path);
    return is_known;
  }
  std::vector<std::wstring> paths;
};

/// Shows each setting with the layer that it comes from. False when one is of no use, which is explained.
bool show_settings(const ruvo::layered_settings& settings) {
  for (const setting& each : own_settings())
    say(L"  " + each.path() + L" = " + settings->get_string(each.path()) + L" («" +
        settings.layer_of(each.path()) + L"»)");

  ruvo::bundle own = settings.get_layer(L"programa");
  unknown_settings unknown;
  ruvo::bundles::merge(own, *settings, &unknown);
  for (const std::wstring& path : unknown.paths) show(L"no se conoce", path + L". " + settings.explain(path));

  bool is_usable = unknown.paths.empty();
  for (const std::wstring path : {L"pedidos.plazo_dias", L"pedidos.iva"}) {
    const double value = settings->get_double(path, '.', -1);
    const bool is_whole = value == settings->get_long(path, '.', -1);
    if (value >= 0 && (is_whole || path == L"pedidos.iva")) continue;
    show(L"no sirve", path + L". " + settings.explain(path));
    is_usable = false;
  }
  return is_usable;
}

/// Stores it in the file as it is now: somebody may have changed it since it was read.
void remember(const ruvo::file& path, const std::wstring& order) {
  ruvo::ini_file file;
  ruvo::exception failure;
  if (!file.open(path, failure) || !file.set(L"ultimo", L"pedido", order, failure) ||
      !file.set(L"ultimo", L"fecha", ruvo::date(), failure) || !file.save_if_unchanged(failure))
    show(L"ajustes", failure);
}

// --- orders

bool is_order(const ruvo::bundle& document) { return document.has(L"pedido.lineas"); }

double cents(double amount) { return std::round(amount * 100) / 100; }

long days_of(const ruvo::bundle& order, const ruvo::bundle& settings) {
  return order.get_long(L"plazo_dias", '.', settings.get_long(L"pedidos.plazo_dias"));
}

void show_order(const ruvo::bundle& document, const ruvo::bundle& settings) {
  const ruvo::bundle& order = document.get_bundle(L"pedido");
  show(L"número", order.get_string(L"numero", '.', L"(sin número)"));
  const std::optional<ruvo::date> date = get_date(order, L"fecha");
  show(L"fecha", date ? date->to_string("%d de %B de %Y") : L"(fecha no válida)");
  show(L"urgente", order.get_boolean(L"urgente", false) ? L"sí" : L"no");
  show(L"cliente", order.get_string(L"cliente.nombre") + L", NIF " + order.get_string(L"cliente.nif"));
  show(L"teléfono", order.get_string(L"cliente.telefono", '.', L"(no consta)"));
  show(L"entrega",
       order.get_string(L"cliente.entrega.calle") + L", " + order.get_string(L"cliente.entrega.poblacion"));
  show(L"plazo", std::to_wstring(days_of(order, settings)) + L" días");
  show(L"notas", shortened(order.get_nc_string(L"notas", L"(ninguna)"), 80));
}

/// An order that was read with a failure, or whose date is none, is refused.
ruvo::bundle answer_to(const ruvo::bundle& document, const ruvo::exception& failure,
                       const ruvo::bundle& settings) {
  const ruvo::bundle& order = document.get_bundle(L"pedido");
  std::optional<ruvo::date> delivery = get_date(order, L"fecha");

  ruvo::bundle answer;
  answer[L"pedido"] = order.get_string(L"numero");
  answer[L"aceptado"] = failure.OK() && delivery;
  if (failure.WRONG()) {
    answer[L"motivo"] = failure.get_mensaje();
  } else if (!delivery) {
    answer[L"motivo"] = L"Fecha no válida: " + order.get_string(L"fecha");
  }
  if (delivery) answer[L"entrega"] = *delivery += days_of(order, settings);
  answer.hack(L"cliente.nif") = order.get_string(L"cliente.nif");
  answer.hack(L"cliente.avisar") = order.get_nc_string(L"cliente.correo", L"por carta");

  double base = 0, tax = 0;
  ruvo::list& lines = answer.hack_list_on(L"lineas");
  for (const ruvo::xvar& item : order.get_list(L"lineas")) {
    ruvo::bundle line;
    line = item;
    const double price = line.get_double(L"precio") * (1 - line.get_double(L"descuento") / 100);
    const double amount = cents(price * line.get_long(L"unidades", '.', 1));
    base += amount;
    tax += amount * line.get_double(L"iva", '.', settings.get_double(L"pedidos.iva")) / 100;

    ruvo::bundle& answered = lines.on_back_bundle();
    answered[L"articulo"] = line.get_string(L"articulo");
    answered[L"importe"] = amount;
  }
  answer.hack(L"totales.base") = cents(base);
  answer.hack(L"totales.iva") = cents(tax);
  answer.hack(L"totales.a_pagar") = cents(base + tax);
  return answer;
}

// --- other documents

std::wstring kind_of(const ruvo::xvar& value) {
  if (value.is_null()) return L"nulo";
  if (value.instanceof (typeid(ruvo::bundle))) return L"objeto";
  if (value.instanceof (typeid(ruvo::list))) return L"lista";
  if (value.instanceof (typeid(bool))) return L"lógico";
  return value.is_number() ? L"número" : L"texto";
}

void show_summary(const ruvo::bundle& document) {
  constexpr std::size_t shown = 6;
  if (document.count(L"__json_array__") > 0) {
    show(L"elementos", std::to_wstring(document.get_list(L"__json_array__").size()));
    return;
  }
  show(L"miembros", std::to_wstring(document.size()));
  for (std::size_t n = 0; n < document.size() && n < shown; ++n) {
    const auto member = document[n];  // by position
    show(L"", shortened(member->first, 40) + L": " + kind_of(member->second));
  }
}

// --- writing

void write(const ruvo::bundle& document, const std::wstring& name, bool sorted, int indent) {
  ruvo::serializer::json_write_options options;
  options.sorted = sorted;
  options.indent = indent;
  std::wstring out;
  ruvo::exception failure;
  if (ruvo::serializer::write_standard_json(out, document, &failure, options)) {
    show(name, failure);
  } else if (indent >= 0) {
    show(name, L"");
    say(first_lines(out, 12));
  } else {
    show(name, shortened(out, 200));
  }
}

/// As the library stores it: dates as numbers, six digits behind the point.
void write_stored(const ruvo::bundle& document) {
  std::wstring out;
  ruvo::exception failure;
  if (ruvo::serializer::json(false, false, true).serialize(out, document, &failure))
    show(L"dialecto", failure);
  show(L"dialecto", shortened(out, 200));
}

/// As XML, in an element of its own whose attributes are the qualities of the value, and read again.
void write_xml(const ruvo::bundle& document) {
  ruvo::bundle whole = {{L"documento", document}};
  whole[L"documento"][L"lengua"] = L"es";
  whole[L"documento"][L"miembros"] = document.size();

  ruvo::serializer::xml xml(true, false);
  ruvo::bundle again;
  ruvo::exception failure;
  std::wstring out;
  if (xml.serialize(out, whole, &failure) || xml.deserialize(again, out, &failure)) show(L"XML", failure);
  show(L"XML", shortened(out, 300));
  show(L"de vuelta", shortened(again.to_string(), 200));
  for (const auto& [name, value] : again[L"documento"]) show(L"atributo", name + L" = " + value.to_string());
}

// --- messages

/// The answer as the body of a response, whose status is what was wrong with the order.
ruvo::http::response response_with(const ruvo::bundle& answer, const ruvo::exception& failure) {
  std::wstring text;
  if (ruvo::serializer::write_standard_json(text, answer)) text = L"null";
  ruvo::http::response response;
  response[L"Content-Type"] = L"application/json;charset=UTF-8";
  response.set_body(text);
  if (failure.WRONG()) response.set_exception(failure);
  return response;
}

/// To the customer; nothing when the order names no address that mail can go to.
std::optional<ruvo::smtp::email> confirmation_of(const ruvo::bundle& document, const ruvo::bundle& answer,
                                                 const ruvo::bundle& settings) {
  const ruvo::bundle& customer = document.get_bundle(L"pedido.cliente");
  const ruvo::smtp::address to(customer.get_string(L"nombre"), customer.get_string(L"correo"));
  if (!to.check()) return std::nullopt;

  const std::wstring number = answer.get_string(L"pedido");
  std::wstring body = L"Su pedido " + number;
  if (answer.get_boolean(L"aceptado")) {
    body += L" queda aceptado. Importe: " + ruvo::texto::format(answer.get_double(L"totales.a_pagar"), 2) +
            L" €.";
  } else {
    body += L" no se puede servir: " + answer.get_string(L"motivo");
  }
  const std::wstring name = settings.get_string(L"remitente.nombre");
  ruvo::smtp::email mail(ruvo::smtp::address(name, settings.get_string(L"remitente.direccion")),
                         L"Pedido " + number, body, L"<b>" + name + L"</b>");
  mail[to] = ruvo::smtp::email::TO_;
  return mail;
}

void show_messages(const ruvo::bundle& document, const ruvo::bundle& answer, const ruvo::exception& failure,
                   const ruvo::bundle& settings) {
  const ruvo::http::response response = response_with(answer, failure);
  show(L"respuesta", response.OK() ? L"correcta" : L"con error");
  say(shortened(response.to_string(), 160));
  const std::optional<ruvo::smtp::email> mail = confirmation_of(document, answer, settings);
  if (!mail) return show(L"correo", L"(sin dirección)");
  show(L"correo", L"");
  say(mail->to_string() + L"\n\n" + mail->get_plain_post());
}

// --- the network

std::wstring text_of(const transport::http_answer& answer) {
  std::wstring text;
  ruvo::exception failure;
  return ruvo::http::body_text(text, answer.message, failure) ? text : failure.get_mensaje();
}

void post_answer(const std::wstring& url, const ruvo::bundle& answer) {
  std::wstring text;
  if (ruvo::serializer::write_standard_json(text, answer)) text = L"null";
  ruvo::http::request request(url + L"/pedidos", text);
  request["Content-Type"] = L"application/json;charset=UTF-8";
  const transport::http_answer reply = transport::fetch("POST", request);
  if (reply.message.WRONG()) return show(L"HTTP", reply.message.get_exception());
  show(L"HTTP", L"entregado, responde " + shortened(text_of(reply), 80));
}

/// The answer in an archive, which goes along with the mail and is the caller's to erase.
ruvo::file packed(const ruvo::bundle& answer) {
  ruvo::file path = ruvo::files::get_temporal_file(L"pedido", L"", L"zip");
  std::string text;
  ruvo::exception failure;
  ruvo::zip::writer out;
  if (ruvo::serializer::write_standard_json(text, answer, &failure) || !out.open(path, failure) ||
      !out.add_bytes(L"respuesta.json", text, failure) || !out.close(failure))
    throw ruvo::exception(failure);
  return path;
}

void send_mail(const std::wstring& host, const ruvo::smtp::email& message) {
  ruvo::smtp::mailbox to;
  to.set_host(host);
  transport::mail_session session(to);
  const ruvo::smtp::response reply = session.send(message);
  if (reply.WRONG()) return show(L"SMTP", reply.get_exception());
  session.close();
  show(L"SMTP", L"entregado a " + std::to_wstring(reply.get_report().get_list(L"accepted").size()) +
                    L", rechazado por " + std::to_wstring(reply.get_report().get_list(L"refused").size()));
}

/// What a client of another maker posted to the server, as it came.
void read_posted_form(const std::wstring& url) {
  const transport::http_answer reply =
      transport::fetch("GET", ruvo::http::request(url + L"/formulario", L""));
  ruvo::http::fields form;
  ruvo::exception failure;
  if (reply.message.WRONG()) return show(L"formulario", reply.message.get_exception());
  if (!ruvo::http::read_form(form, text_of(reply), failure)) return show(L"formulario", failure);
  for (const ruvo::http::field& each : form) show(L"formulario", each.name + L" = " + each.value);
}

void send(const ruvo::bundle& document, const ruvo::bundle& answer, const ruvo::bundle& settings) {
  const std::wstring web = settings.get_string(L"envio.http");
  const std::wstring post = settings.get_string(L"envio.correo");
  if (!web.empty()) post_answer(web, answer);
  std::optional<ruvo::smtp::email> mail = confirmation_of(document, answer, settings);
  if (post.empty() || !mail) return;
  const ruvo::file archive = packed(answer);
  send_mail(post, mail->push(archive));
  archive.erase();
}

// --- the work

/// The number of the order; empty for another document.
std::wstring process(const std::wstring& name, const ruvo::bundle& settings) {
  const ruvo::file path(name);
  const std::string bytes = read_file(path);
  ruvo::datetime modified = path.last_modified();
  modified.set_huso_horario(ruvo::times::LOCAL);
  ruvo::log::info(path.get_name(), ruvo::texto::format_file_size(path.size()) + L" (" + path.get_mimetype() +
                                       L"), guardado el " + modified.to_string("%A %d de %B de %Y, %H:%M"));
  show(L"leídos", std::to_wstring(bytes.size()) + L" bytes");

  ruvo::bundle document;
  ruvo::exception failure;
  if (read_standard(document, bytes, failure)) {
    const auto place = ruvo::serializer::position_of(bytes, ruvo::serializer::failure_position(failure));
    show(L"no es estándar",
         L"línea " + std::to_wstring(place.line) + L", columna " + std::to_wstring(place.column));
    show(L"", failure);
    failure.clear();
    if (!read_stored(document, ruvo::texto::to_utf_16(bytes), failure)) show(L"dialecto", L"leído entero");
  }
  std::wstring order;
  if (is_order(document)) {
    show_order(document, settings);
    const ruvo::bundle answer = answer_to(document, failure, settings);
    show_messages(document, answer, failure, settings);
    send(document, answer, settings);
    order = answer.get_string(L"pedido");
    document = answer;
  } else {
    show_summary(document);
  }
  write(document, L"por claves", true, -1);
  write(document, L"por llegada", false, -1);
  write(document, L"con sangría", true, 2);
  write_stored(document);
  write_xml(document);
  return order;
}

void work(ruvo::application& app, const std::vector<std::wstring>& files, const ruvo::bundle& settings,
          std::wstring& last_order) {
  const ruvo::thread_scope scope(app);  // checks the thread in, and out at the end
  ruvo::log::info(L"hilo de trabajo", L"dado de alta");
  const std::wstring web = settings.get_string(L"envio.http");
  if (!web.empty()) read_posted_form(web);
  for (const std::wstring& name : files) {
    say(L"\n" + ruvo::file(name).get_name());
    try {
      const std::wstring order = process(name, settings);
      if (!order.empty()) last_order = order;
    } catch (const ruvo::exception& error) {
      ruvo::log::failure(name, error);
    } catch (...) {  // such as std::out_of_range, for a number that does not fit
      ruvo::log::failure(name, ruvo::exc::RunTime(std::current_exception()));
    }
  }
}

/// The exit code: 2 when the arguments or the settings are of no use.
int run(ruvo::application& app, const std::vector<std::wstring>& words) {
  ruvo::bundle arguments;
  std::vector<std::wstring> files;
  ruvo::exception failure;
  if (!ruvo::bundles::read_arguments(arguments, files, words, failure)) {
    show(L"argumentos", failure);
    return 2;
  }
  const ruvo::file beside = app.get_file(ruvo::folder_type::binaries, L"demo.ini");
  const ruvo::file path = arguments.get_nc_string(L"ajustes", beside);
  arguments.erase(L"ajustes");
  ruvo::log::info(L"ajustes", path);
  ruvo::layered_settings settings;
  if (!read_settings(settings, path, arguments, failure)) {
    show(L"ajustes", failure);
    return 2;
  }
  if (!show_settings(settings)) return 2;

  std::wstring last_order;
  std::thread worker(work, std::ref(app), std::cref(files), std::cref(*settings), std::ref(last_order));
  worker.join();
  say(L"");
  ruvo::log::time(L"hilo de trabajo terminado en");
  if (!last_order.empty()) remember(path, last_order);
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    say(L"uso: demo [--ajustes=FICHERO.ini] [--SECCIÓN.CLAVE=VALOR...] FICHERO.json...");
    return 2;
  }
  ruvo::exception failure;
  ruvo::kesta::app app(nullptr);
  if (!app.boot(ruvo::file(argv[0]).get_parent(), failure)) {
    show(L"arranque", failure);
    return 1;
  }
  app.init("es-ES");
  log_on_screen screen;
  ruvo::log::set_callback(&screen);
  ruvo::log::info(L"aplicación", L"en marcha");

  const int code = run(app, {argv + 1, argv + argc});
  app.shutdown();
  say(L"aplicación detenida");
  return code;
}
