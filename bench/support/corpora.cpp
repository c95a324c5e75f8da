// SPDX-License-Identifier: BSL-1.0
#include "support/corpora.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>

namespace bench {

namespace {

class maker {
 public:
  explicit maker(unsigned seed) : random_(seed) {}

  /// Messages of about sixty values each, with nested objects and text in several scripts.
  std::string feed(int messages) {
    const std::string all = array(messages, [this](int i) { return message(i); });
    return object({{"statuses", all}, {"search_metadata", object({{"count", number(messages)}})}});
  }

  /// Rings of pairs with up to fifteen digits after the point.
  std::string coordinates(int rings) {
    const auto pair = [this](int) { return "[" + decimal(180) + "," + decimal(90) + "]"; };
    const auto ring = [&](int) { return array(200, pair); };
    return object({{"type", text("Polygon")}, {"coordinates", array(rings, ring)}});
  }

  std::string catalogue(int articles) {
    return object({{"articulos", array(articles, [this](int i) { return article(i); })}});
  }

  std::string article(int i) {
    return object({{"id", number(i)},
                   {"nombre", text(words(3))},
                   {"precio", price()},
                   {"activo", truth()},
                   {"etiquetas", array(2, [this](int) { return text(words(1)); })}});
  }

  /// Answers of a service: nested records whose names are in camel case throughout.
  std::string answers(int count) {
    const auto part = [this](int) {
      return object({{"partNumber", text("PN-" + number(below(100000)))},
                     {"unitPrice", price()},
                     {"inStock", truth()},
                     {"lastChecked", text("2026-11-21T10:15:30Z")}});
    };
    const auto answer = [&](int i) {
      return object({{"requestId", number(700000 + i)},
                     {"userName", text(words(1))},
                     {"displayName", text(words(3))},
                     {"isActive", truth()},
                     {"retryAfterMs", "null"},
                     {"shipTo", object({{"streetLine", text(words(3))},
                                        {"postalCode", text("28001")},
                                        {"countryCode", text("ES")}})},
                     {"lineItems", array(1 + below(3), part)}});
    };
    return object({{"totalCount", number(count)}, {"pageItems", array(count, answer)}});
  }

  std::string body() {
    const auto line = [this](int) {
      return object({{"articulo", text(words(2))},
                     {"unidades", number(below(100))},
                     {"precio", price()},
                     {"descuento", "null"}});
    };
    const std::string address = object({{"calle", text(words(4))}, {"cp", text("28001")}});
    const std::string customer =
        object({{"nombre", text(words(4))}, {"nif", text("00000000T")}, {"direccion", address}});
    return object({{"numero", text("2026-000123")},
                   {"fecha", text("21-11-2026")},
                   {"urgente", text("si")},
                   {"cliente", customer},
                   {"lineas", array(6, line)},
                   {"total", price()},
                   {"iva", number(21)},
                   {"notas", text(words(16))}});
  }

 private:
  using members = std::vector<std::pair<std::string, std::string>>;

  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  static std::string object(const members& all) {
    std::string out;
    for (const auto& [key, value] : all) out += (out.empty() ? "{\"" : ",\"") + key + "\":" + value;
    return out + "}";
  }
  template <class Element>
  static std::string array(int count, Element element) {
    std::string out = "[";
    for (int i = 0; i < count; ++i) {
      if (i > 0) out += ",";
      out += element(i);
    }
    return out + "]";
  }
  static std::string text(const std::string& inside) { return "\"" + inside + "\""; }
  static std::string number(long long value) { return std::to_string(value); }

  std::string truth() { return below(2) == 1 ? "true" : "false"; }
  std::string price() { return number(below(1000)) + "." + number(10 + below(90)); }
  std::string decimal(int limit) {
    const std::string digits = std::to_string(100000000000000 + random_() % 899999999999999);
    return (below(2) == 1 ? "-" : "") + number(below(limit)) + "." + digits.substr(0, 13 + random_() % 3);
  }
  std::string words(int count) {
    static const std::vector<std::string> all = {
        "camión", "tornillo", "acero", "año",        "niño",    "rápido", "日本語", "東京",
        "😀",      "simple",   "de",    "referencia", "factura", "señal",  "Москва", "entrega"};
    std::string out;
    for (int i = 0; i < count; ++i) out += (i > 0 ? " " : "") + all[random_() % all.size()];
    return out;
  }

  std::string user() {
    members all = {{"id", number(100000000 + below(2000000000))},
                   {"name", text(words(2))},
                   {"screen_name", text(words(1))},
                   {"location", text(words(1))},
                   {"description", text(words(9))},
                   {"lang", text("es")},
                   {"utc_offset", "null"},
                   {"profile_link_color", text("0084B4")}};
    for (const char* key : {"followers_count", "friends_count", "listed_count", "favourites_count"})
      all.emplace_back(key, number(below(100000)));
    for (const char* key : {"protected", "geo_enabled", "verified", "is_translator", "default_profile",
                            "following", "notifications", "contributors_enabled"})
      all.emplace_back(key, truth());
    for (const char* key : {"profile_image_url", "profile_image_url_https", "profile_banner_url"})
      all.emplace_back(key, text("http:\\/\\/example.com\\/images\\/" + std::to_string(random_()) + ".png"));
    return object(all);
  }

  std::string message(int i) {
    const auto mention = [this](int) {
      return object({{"screen_name", text(words(1))}, {"id", number(below(1000000))}, {"indices", "[3,19]"}});
    };
    const std::string entities = object(
        {{"hashtags", "[]"}, {"symbols", "[]"}, {"urls", "[]"}, {"user_mentions", array(below(3), mention)}});
    const std::string id = number(505874924095815681 + i);
    return object({{"metadata", object({{"result_type", text("recent")}, {"iso_language_code", text("es")}})},
                   {"created_at", text("Sun Aug 31 00:29:15 +0000 2014")},
                   {"id", id},
                   {"id_str", text(id)},
                   {"text", text(words(14) + "\\n\\\"" + words(2) + "\\\"")},
                   {"truncated", "false"},
                   {"in_reply_to_status_id", "null"},
                   {"user", user()},
                   {"geo", "null"},
                   {"coordinates", "null"},
                   {"retweet_count", number(below(50))},
                   {"entities", entities},
                   {"favorited", truth()},
                   {"lang", text("es")}});
  }

  std::mt19937_64 random_;
};

/// A document with next to no texts holds numbers.
corpus::flavour flavour_of(const std::string& text) {
  const auto quotes = static_cast<std::size_t>(std::count(text.begin(), text.end(), '"'));
  return quotes * 50 < text.size() ? corpus::doubles : corpus::records;
}

}  // namespace

std::vector<corpus> corpora(int argc, char** argv) {
  maker make(20261121);
  std::vector<corpus> all = {{"feed", make.feed(300), corpus::records},
                             {"coordinates", make.coordinates(150), corpus::doubles},
                             {"catalogue", make.catalogue(4000), corpus::small_objects},
                             {"camel case", make.answers(1500), corpus::small_objects},
                             {"1 KB body", make.body(), corpus::small_objects}};
  for (int i = 1; i < argc; ++i) {
    const std::string path = argv[i];
    std::ifstream in(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (text.empty()) {
      std::fprintf(stderr, "cannot read %s\n", argv[i]);
      continue;
    }
    const corpus::flavour kind = flavour_of(text);
    all.push_back({path.substr(path.find_last_of("/\\") + 1), std::move(text), kind});
  }
  return all;
}

std::string catalogue(std::size_t bytes) {
  maker make(20261121);
  std::vector<std::string> articles;
  std::string out = "{\"articulos\":[" + make.article(0);
  for (std::size_t n = 0; out.size() < bytes; ++n) {
    if (out.size() < 200000) articles.push_back("," + make.article(static_cast<int>(n)));
    out += articles[n % articles.size()];
  }
  return out + "]}";
}

}  // namespace bench
