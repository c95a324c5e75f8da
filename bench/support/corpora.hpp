#pragma once

// The documents that are measured on: made with fixed seeds, or read from files named by the caller.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace bench {

enum class flavour { objects, doubles, small };

struct corpus {
  std::string name;
  std::string text;  // UTF-8
  flavour kind;
};

class corpus_maker {
 public:
  explicit corpus_maker(unsigned seed) : random_(seed) {}

  /// A social feed: nested objects of about forty members, repeated keys, texts in several scripts.
  std::string feed(int posts) {
    std::string out = "{\"statuses\":[";
    for (int i = 0; i < posts; ++i) out += (i ? "," : "") + post(i);
    return out + "],\"search_metadata\":{\"count\":" + std::to_string(posts) + ",\"query\":\"kesta\"}}";
  }

  /// Rings of coordinates with fifteen digits.
  std::string doubles(int rings) {
    std::string out = "{\"type\":\"FeatureCollection\",\"coordinates\":[";
    for (int r = 0; r < rings; ++r) {
      out += r ? ",[" : "[";
      for (int i = 0; i < 200; ++i) out += (i ? ",[" : "[") + number(180) + "," + number(90) + "]";
      out += "]";
    }
    return out + "]}";
  }

  /// Many small objects.
  std::string catalogue(int articles) {
    std::string out = "{\"articulos\":[";
    for (int i = 0; i < articles; ++i) {
      out += (i ? "," : "") + std::string("{\"id\":") + std::to_string(i) + ",\"nombre\":\"" + words(3) +
             "\",\"precio\":" + std::to_string(below(100000)) + "." + std::to_string(below(90) + 10) +
             ",\"activo\":" + (below(2) ? "true" : "false") + ",\"etiquetas\":[\"" + words(1) + "\",\"" + words(1) + "\"]}";
    }
    return out + "]}";
  }

  /// The body of a request, about 1 KB.
  std::string body() {
    return "{\"pedido\":{\"numero\":\"2026-000123\",\"fecha\":\"21-11-2026\",\"urgente\":\"si\",\"cliente\":{\"nombre\":\"" +
           words(4) + "\",\"nif\":\"00000000T\",\"direccion\":{\"calle\":\"" + words(4) +
           "\",\"cp\":\"28001\"}},\"lineas\":[" + line() + "," + line() + "," + line() + "," + line() +
           "],\"total\":1234.56,\"iva\":21,\"notas\":\"" + words(12) + "\"}}";
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  std::string words(int count) {
    static const char* const all[] = {"camión", "tornillo", "acero",    "año",     "niño",  "rápido", "日本語", "東京",
                                      "emoji😀", "simple",   "direccion", "factura", "señal", "mayor",  "entrega", "libre"};
    std::string out;
    for (int i = 0; i < count; ++i) out += (i ? " " : "") + std::string(all[below(16)]);
    return out;
  }
  std::string number(int limit) {
    return (below(2) ? "-" : "") + std::to_string(below(static_cast<unsigned>(limit))) + "." +
           std::to_string(100000000000000ULL + random_() % 899999999999999ULL).substr(0, 13 + below(3));
  }
  std::string line() {
    return "{\"articulo\":\"" + words(2) + "\",\"unidades\":" + std::to_string(below(100)) + ",\"precio\":" +
           std::to_string(below(1000)) + ".5,\"descuento\":null}";
  }
  std::string user() {
    std::string out = "{\"id\":" + std::to_string(random_() >> 8) + ",\"name\":\"" + words(2) + "\",\"screen_name\":\"" + words(1) +
                      "\",\"description\":\"" + words(9) + "\",\"location\":\"" + words(1) + "\",\"lang\":\"es\",\"utc_offset\":null";
    static const char* const counts[] = {"followers_count", "friends_count", "listed_count", "favourites_count", "statuses_count"};
    static const char* const flags[] = {"protected",      "geo_enabled",   "verified",      "contributors_enabled",
                                        "is_translator",  "default_profile", "following", "notifications"};
    static const char* const links[] = {"profile_image_url", "profile_image_url_https", "profile_banner_url", "profile_background_image_url"};
    for (const char* key : counts) out += ",\"" + std::string(key) + "\":" + std::to_string(below(100000));
    for (const char* key : flags) out += ",\"" + std::string(key) + "\":" + (below(2) ? "true" : "false");
    for (const char* key : links) out += ",\"" + std::string(key) + "\":\"http:\\/\\/example.com\\/images\\/" + std::to_string(random_()) + ".png\"";
    return out + ",\"profile_link_color\":\"0084B4\",\"profile_text_color\":\"333333\"}";
  }
  std::string post(int i) {
    return "{\"metadata\":{\"result_type\":\"recent\",\"iso_language_code\":\"es\"},\"created_at\":\"Sun Aug 31 00:29:15 +0000 2014\",\"id\":" +
           std::to_string(505874924095815681LL + i) + ",\"id_str\":\"505874924095815681\",\"text\":\"" + words(14) +
           "\\n\\\"" + words(2) + "\\\"\",\"truncated\":false,\"in_reply_to_status_id\":null,\"user\":" + user() +
           ",\"geo\":null,\"coordinates\":null,\"retweet_count\":" + std::to_string(below(50)) +
           ",\"entities\":{\"hashtags\":[],\"symbols\":[],\"urls\":[],\"user_mentions\":[{\"screen_name\":\"" + words(1) +
           "\",\"id\":" + std::to_string(below(1000000)) + ",\"indices\":[3,19]}]},\"favorited\":false,\"lang\":\"es\"}";
  }

  std::mt19937_64 random_;
};

inline std::vector<corpus> corpora(int argc, char** argv) {
  corpus_maker make(20261121);
  std::vector<corpus> all = {{"feed", make.feed(300), flavour::objects},
                             {"doubles", make.doubles(150), flavour::doubles},
                             {"catalogue", make.catalogue(4000), flavour::small},
                             {"1 KB body", make.body(), flavour::small}};
  for (int i = 1; i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (text.empty()) {
      std::fprintf(stderr, "cannot read %s\n", argv[i]);
      continue;
    }
    const std::string path = argv[i];
    const bool numbers = std::count(text.begin(), text.end(), '"') < static_cast<std::ptrdiff_t>(text.size() / 50);
    all.push_back({path.substr(path.find_last_of("/\\") + 1), std::move(text), numbers ? flavour::doubles : flavour::objects});
  }
  return all;
}

}  // namespace bench
