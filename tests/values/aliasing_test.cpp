// SPDX-License-Identifier: BSL-1.0

// Arguments that are a part of what is written. Each operation is run on two equal targets, once with a part
// of the target and once with a copy of that part: both end the same, and the checkers see no freed memory
// read.

#include <ruvo/ruvo.hpp>

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ruvo::binary;
using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
namespace serializer = ruvo::serializer;

std::wstring shown(const bundle& value) {
  std::wstring out;
  serializer::xml(true, false).serialize(out, value);  // shows the qualities
  return value.to_string() + out;
}
std::wstring shown(const list& value) { return value.to_string(); }
std::wstring shown(const xvar& value) { return list{value}.to_string(); }
std::wstring shown(const binary& value) { return value.getAsHex(); }
std::wstring shown(const std::wstring& value) { return value; }
std::wstring shown(const std::vector<std::wstring>& value) {
  std::wstring out;
  for (const std::wstring& piece : value) out += piece + L"|";
  return out;
}

/// `fill` makes an empty target ready and gives the part of it that is the argument.
template <class Target, class Fill, class Run>
void same_as_with_a_copy(const char* name, Fill fill, Run run) {
  SCOPED_TRACE(name);
  Target inside, outside;
  const auto copy = fill(outside);
  run(inside, fill(inside));
  run(outside, copy);
  EXPECT_EQ(shown(inside), shown(outside));
}

const std::wstring unit(70, L'x');  // beyond what is folded in a buffer
const std::wstring key = L"clave" + unit, path = L"nodo." + unit + L".hoja";
const std::wstring document = [] {
  std::wstring text = L"{\"nodo\":[1],";
  for (int n = 0; n < 40; ++n) text += L"\"miembro " + std::to_wstring(n) + L"\":\"un texto que no cabe\",";
  return text + L"\"otro\":{\"a\":-1.5}}";
}();
const std::wstring elements =
    L"<nodo a=\"1\"><b>un texto que no cabe</b><b>otro</b></nodo><c>" + unit + L"</c>";

/// Where a text may lie in a bundle, always in what the entry "nodo" holds.
const std::wstring& in_a_memo(bundle& b, const std::wstring& text) { return b.hack_memo_on(L"nodo") = text; }
const std::wstring& in_a_text(bundle& b, const std::wstring& text) {
  return b.hack_string_on(L"nodo") = text;
}
const std::wstring& in_a_list(bundle& b, const std::wstring& text) {
  return b.hack_list_on(L"nodo").on_back_bundle().hack_list_on(L"m").on_back_string() = text;
}
const std::wstring& in_a_key(bundle& b, const std::wstring& text) {
  bundle& inner = b.hack_bundle_on(L"nodo");
  inner[text] = 1;
  return inner[0]->first;
}
const std::wstring& in_a_quality(bundle& b, const std::wstring& text) {
  b[L"nodo"][text] = L"el valor de la cualidad";
  return b[L"nodo"].begin()->first;
}

/// Settings of one layer, which is the bundle.
struct layer_of : ruvo::layered_settings {
  explicit layer_of(bundle& b) { share_layer(L"capa", ruvo::smart_bundle(&b)); }
};

TEST(aliasing, texts_inside_of_a_bundle) {
  const struct {
    const char* name;
    const std::wstring& text;
    void (*run)(bundle& b, const std::wstring& text);
  } rows[] = {
      {"[]", key, [](bundle& b, const std::wstring& t) { b[t] = 1; }},
      {"[] of units", key, [](bundle& b, const std::wstring& t) { b[t.c_str()] = 1; }},
      {"= to its entry", key, [](bundle& b, const std::wstring& t) { b[L"nodo"] = t; }},
      {"= of units", key, [](bundle& b, const std::wstring& t) { b[L"nodo"] = t.c_str(); }},
      {"erase", key, [](bundle& b, const std::wstring& t) { b.hack_bundle_on(L"otro").erase(t); }},
      {"quality", key, [](bundle& b, const std::wstring& t) { b[L"nodo"][t] = t; }},
      {"quality erased", key, [](bundle& b, const std::wstring& t) { b[L"nodo"].erase(t); }},
      {"quality_remove", key, [](bundle& b, const std::wstring& t) { b[L"nodo"].quality_remove(t); }},
      {"hack", path, [](bundle& b, const std::wstring& t) { b.hack(t) = 1; }},
      {"hack_ptr", path, [](bundle& b, const std::wstring& t) { *b.hack_ptr(t) = 1; }},
      {"hack_bundle_on", path, [](bundle& b, const std::wstring& t) { b.hack_bundle_on(t); }},
      {"hack_list_on", path, [](bundle& b, const std::wstring& t) { b.hack_list_on(t); }},
      {"hack_memo_on", path, [](bundle& b, const std::wstring& t) { b.hack_memo_on(t) = L"x"; }},
      {"hack_string_on", path, [](bundle& b, const std::wstring& t) { b.hack_string_on(t) = L"x"; }},
      {"hack_binary_on", path, [](bundle& b, const std::wstring& t) { b.hack_binary_on(t); }},
      {"hack_nc_binary_on", path, [](bundle& b, const std::wstring& t) { b.hack_nc_binary_on(t, L"ab"); }},
      {"putOn path", path, [](bundle& b, const std::wstring& t) { b.putOn(t, 1); }},
      {"putOn value", path, [](bundle& b, const std::wstring& t) { b.putOn(L"nodo.a.b", t); }},
      {"layer put", path, [](bundle& b, const std::wstring& t) { layer_of(b).put(L"capa", t, t); }},
      {"layer erased", path, [](bundle& b, const std::wstring& t) { layer_of(b).erase(L"capa", t); }},
      {"JSON", document,
       [](bundle& b, const std::wstring& t) { serializer::json().deserialize(b, t, nullptr); }},
      {"XML", elements,
       [](bundle& b, const std::wstring& t) { serializer::xml(true, false).deserialize(b, t, nullptr); }},
      {"all of JSON", document,
       [](bundle& b, const std::wstring& t) {
         serializer::json_reader reader;
         serializer::read_all(reader, b, t);
       }},
      {"all of XML", elements,
       [](bundle& b, const std::wstring& t) {
         serializer::xml_reader reader;
         serializer::read_all(reader, b, t);
       }},
      {"well-formed XML", elements,
       [](bundle& b, const std::wstring& t) { serializer::read_well_formed_xml(b, t, nullptr); }},
      {"memo decoded", document,
       [](bundle& b, const std::wstring& t) { ruvo::texto::decodifica_memo(b, t); }},
  };
  for (const auto& row : rows) {
    for (const auto place : {in_a_memo, in_a_text, in_a_list, in_a_key, in_a_quality}) {
      same_as_with_a_copy<bundle>(
          row.name, [&](bundle& b) -> const std::wstring& { return place(b, row.text); }, row.run);
    }
  }
  bundle b;
  b[key][key] = 1;
  EXPECT_EQ(b[key].erase(b[key].begin()->first), 1U);
  EXPECT_EQ(b.erase(b.begin()->first), 1U);
  in_a_text(b, L"un texto");
  serializer::json().serialize(b.hack_string_on(L"nodo"), b);
  EXPECT_EQ(b.get_string(L"nodo"), L"{\"nodo\":\"un texto\"}");
}

/// The first element of the list that is made, or a part of it; with and without qualities.
const xvar& first_of(list& l) {
  xvar first = list{bundle{{L"uno", L"un texto que no cabe"}}, 2};
  first[L"a"] = L"de la primera, y no cabe";
  l = {first, L"otro texto que no cabe"};
  return l.front();
}
const xvar& first_with_room(list& l) {
  l.reserve(100);
  list made;
  first_of(made);
  l.insert(l.end(), made.begin(), made.end());
  return l.front();
}
const xvar& inside_of_first(list& l) {
  list inner{L"un texto que no cabe", 2};
  inner[0][L"a"] = L"de dentro, y no cabe";
  const xvar& part = inner[0];  // stays where it is when the list moves
  l.push_back(std::move(inner));
  l[0][L"a"] = L"de fuera, y no cabe";
  return part;
}

TEST(aliasing, elements_of_a_list) {
  const struct {
    const char* name;
    void (*run)(list& l, const xvar& element);
  } rows[] = {
      {"push_back", [](list& l, const xvar& v) { l.push_back(v); }},
      {"+=", [](list& l, const xvar& v) { l += v; }},
      {"emplace_back", [](list& l, const xvar& v) { l.emplace_back(v); }},
      {"emplace", [](list& l, const xvar& v) { l.emplace(l.begin(), v); }},
      {"insert", [](list& l, const xvar& v) { l.insert(l.begin(), v); }},
      {"insert a range", [](list& l, const xvar& v) { l.insert(l.begin(), &v, &v + 1); }},
      {"insert itself", [](list& l, const xvar&) { l.insert(l.begin() + 1, l.begin(), l.end()); }},
      {"resize", [](list& l, const xvar& v) { l.resize(50, v); }},
      {"assign", [](list& l, const xvar& v) { l.assign(3, v); }},
      {"assign many", [](list& l, const xvar& v) { l.assign(50, v); }},
      {"assign a range", [](list& l, const xvar& v) { l.assign(&v, &v + 1); }},
      {"assign itself", [](list& l, const xvar&) { l.assign(l.begin(), l.end()); }},
      {"= its value", [](list& l, const xvar& v) { l = v; }},
      {"= its vector", [](list& l, const xvar&) { l = l.get_soul(); }},
      {"first =", [](list& l, const xvar& v) { l[0] = v; }},
      {"last =", [](list& l, const xvar& v) { l.back() = v; }},
      {"quality =", [](list& l, const xvar& v) { l[0][L"a"] = v; }},
      {"its qualities", [](list& l, const xvar& v) { l[0].add_qualities(v.get_qualities()); }},
  };
  for (const auto& row : rows) {
    for (const auto fill : {first_of, first_with_room, inside_of_first})
      same_as_with_a_copy<list>(row.name, fill, row.run);
  }
}

/// What is moved or whose qualities are taken may be inside one of the qualities that are replaced.
TEST(aliasing, parts_of_a_quality) {
  for (const bool moved : {true, false}) {
    xvar value = 1;
    list inner{L"un texto que no cabe"};
    inner[0][L"a"] = L"de dentro, y no cabe";
    inner[0][L"b"] = list{1, 2};
    xvar& part = inner[0];
    value[L"A"] = std::move(inner);
    value[L"c"] = 3;
    if (moved)
      value = std::move(part);
    else
      value.add_qualities(part.get_qualities());
    EXPECT_EQ(shown(value), (moved ? L"[\"un texto que no cabe\"" : L"[1") +
                                std::wstring(L"{\"atributos\":\"A\":\"de dentro, y no cabe\""
                                             L"\"b\":[1,2]\"c\":3}]"));
  }
}

TEST(aliasing, containers_inside_of_a_container) {
  const auto fill = [](bundle& b) -> const bundle& {
    b[L"antes"] = L"un texto que no cabe";
    bundle& inner = b.hack_bundle_on(L"nodo.uno");
    inner[L"dos"] = list{1, L"otro texto que no cabe"};
    return inner;
  };
  same_as_with_a_copy<bundle>("=", fill, [](bundle& b, const bundle& part) { b = part; });
  same_as_with_a_copy<bundle>("= by value", fill, [](bundle& b, const bundle& part) { b = xvar(part); });
  same_as_with_a_copy<bundle>("[] =", fill, [](bundle& b, const bundle& part) { b[L"nodo"] = part; });
  same_as_with_a_copy<bundle>("putOn", fill, [](bundle& b, const bundle& part) { b.putOn(L"nodo", part); });
  same_as_with_a_copy<bundle>("putOn below", fill,
                              [](bundle& b, const bundle& part) { b.putOn(L"nodo.uno.dos.tres", part); });
  same_as_with_a_copy<bundle>("merge", fill,
                              [](bundle& b, const bundle& part) { ruvo::bundles::merge(b, part); });
  same_as_with_a_copy<bundle>("nested =", fill,
                              [](bundle& b, const bundle&) { b.hack_bundle_on(L"nodo.uno") = b; });
  const auto bytes = [](bundle& b) -> const binary& { return b.hack_binary_on(L"nodo") = L"unos bytes"; };
  same_as_with_a_copy<bundle>("hack_nc_binary_on", bytes,
                              [](bundle& b, const binary& part) { b.hack_nc_binary_on(L"nodo.uno", part); });
}

TEST(aliasing, bytes_and_texts) {
  const auto bytes = [](binary& b) -> const std::vector<unsigned char>& {
    return (b = L"unos bytes").get_store();
  };
  using store = std::vector<unsigned char>;
  same_as_with_a_copy<binary>("=", bytes, [](binary& b, const store& own) { b = own; });
  same_as_with_a_copy<binary>("+=", bytes, [](binary& b, const store& own) { b += own[3]; });
  const auto with_room = [](binary& b) -> const store& {
    static_cast<store&>(b).reserve(100);
    return (b += L"unos bytes").get_store();
  };
  const auto insert = [](binary& b, const store& own) { b.insert(b.begin() + 2, own.begin(), own.end()); };
  const auto repeat = [](binary& b, const store& own) { b.insert(b.begin() + 1, 30, own[3]); };
  same_as_with_a_copy<binary>("insert", bytes, insert);
  same_as_with_a_copy<binary>("insert with room", with_room, insert);
  same_as_with_a_copy<binary>("insert many", bytes, repeat);
  same_as_with_a_copy<binary>("insert many with room", with_room, repeat);
  namespace texto = ruvo::texto;
  const auto text = [](std::wstring& t) -> const std::wstring& { return t = L"a\u00F1a"; };
  same_as_with_a_copy<std::wstring>("base64", text, [](std::wstring& out, const std::wstring& in) {
    texto::base64_encode(out, in, false);
  });
  same_as_with_a_copy<std::wstring>("replace", text, [](std::wstring& out, const std::wstring& in) {
    texto::replace(out, in, in + L"/" + in);
  });
  same_as_with_a_copy<std::vector<std::wstring>>(
      "split_on",
      [](std::vector<std::wstring>& v) -> const std::wstring& {
        return v.emplace_back(L"uno;dos;tres;cuatro");
      },
      [](std::vector<std::wstring>& out, const std::wstring& in) { texto::split_on(out, in, L";"); });
}

}  // namespace
