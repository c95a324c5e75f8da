// SPDX-License-Identifier: BSL-1.0

// Messages as bundles.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>

#include <cstddef>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "base/utf.hpp"
#include "net/failures.hpp"
#include "net/field_bundle.hpp"
#include "net/part.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

namespace {

using http::refuse;
using ruvo::mime::part;

// The multiparts nest 100 deep at most, so these call themselves.

void put_headers(bundle& out, const part& from) {
  bundle& headers = out.hack_bundle_on(L"headers");
  for (const auto& [name, text] : from.get_headers()) {
    xvar& entry = headers[name];
    if (entry.is_null()) {
      entry = text;
    } else if (entry.instanceof (typeid(list))) {
      ruvo::detail::cell::on_list(entry).push_back(text);
    } else {
      entry = list{entry, text};
    }
  }
}

bool put_text(bundle& out, const part& from) {
  if (!from.get_type().starts_with(L"text/")) return false;
  try {
    out[L"body"] = from.get_text();
    return true;
  } catch (const exc::BadFormat&) {
    return false;
  }
}

bundle bundle_of(const part& from) {
  bundle made;
  put_headers(made, from);
  made[L"type"] = from.get_header(std::wstring(ruvo::mime::type_field));
  if (!from.get_disposition().empty()) made[L"disposition"] = from.get_disposition();
  if (!from.get_filename().empty()) made[L"filename"] = from.get_filename();
  if (from.is_multipart()) {
    list& parts = made.hack_list_on(L"parts");
    for (const part& child : from.get_parts()) parts.push_back(bundle_of(child));
  } else if (!put_text(made, from)) {
    made[L"body"] = from.get_content();
  }
  return made;
}

// --- from bundles

/// The text of an entry that is to be a scalar; empty where there is none.
std::wstring text_of(const std::wstring& key, const xvar* value) {
  if (!value || value->is_null()) return {};
  if (value->instanceof (typeid(list)) || value->instanceof (typeid(bundle))) refuse(key);
  return value->to_string();
}

template <class Kind>
const Kind* object_of(const bundle& in, const wchar_t* key) {
  const xvar* const value = in.get_ptr(key);
  if (!value || value->is_null()) return nullptr;
  if (!value->instanceof (typeid(Kind))) refuse(key);
  if constexpr (std::is_same_v<Kind, list>)
    return &in.get_list(key);
  else
    return &in.get_bundle(key);
}

void take_headers(part& out, const bundle& headers) {
  for (std::size_t n = 0; n < headers.size(); ++n) {
    const bundle::entry& each = *headers[n];
    const std::wstring& name = each.spelling();
    if (!each.second.instanceof (typeid(list))) {
      out.set_header(name, text_of(name, &each.second));
      continue;
    }
    list texts;
    texts = each.second;
    out.erase_header(name);
    for (const xvar& text : texts) out.add_header(name, text_of(name, &text));
  }
}

part leaf_of(const bundle& in, const std::wstring& type) {
  const xvar* const body = in.get_ptr(L"body");
  if (body && body->instanceof (typeid(binary)))
    return part::bytes(*body, type.empty() ? L"application/octet-stream" : type);
  const std::wstring text = text_of(L"body", body);
  part made = part::text(text);
  if (!type.empty()) made.set_header(std::wstring(ruvo::mime::type_field), type);
  if (!made.get_type().starts_with(L"text/")) return part::bytes(binary(text), type);
  return made.set_parameter(L"charset", L"utf-8");
}

part part_of(const bundle& in, std::size_t level) {
  if (level > ruvo::mime::most_levels) refuse(L"parts");
  const std::wstring type = text_of(L"type", in.get_ptr(L"type"));
  part made;
  if (const list* const parts = object_of<list>(in, L"parts")) {
    made = part::multipart();
    if (!type.empty()) made.set_header(std::wstring(ruvo::mime::type_field), type);
    for (const xvar& each : *parts) {
      bundle child;
      if (!each.instanceof (typeid(bundle))) refuse(L"parts");
      child = each;
      made.add(part_of(child, level + 1));
    }
  } else {
    made = leaf_of(in, type);
  }
  const std::wstring disposition = text_of(L"disposition", in.get_ptr(L"disposition")),
                     name = text_of(L"filename", in.get_ptr(L"filename"));
  if (!disposition.empty()) made.set_disposition(disposition);
  if (!name.empty()) made.set_filename(name);
  if (const bundle* const headers = object_of<bundle>(in, L"headers")) take_headers(made, *headers);
  return made;
}

}  // namespace

mime::mime() = default;
mime::~mime() = default;

bool mime::serialize(std::wstring& out, const bundle& in, exception* err, int) {
  return http::fails(err, [&] { out = texto::to_utf_16(ruvo::mime::to_bytes(part_of(in, 0))); });
}

bool mime::deserialize(bundle& out, const std::wstring& in, exception* err, int) {
  return http::fails(err, [&] { http::put_entries(out, bundle_of(ruvo::mime::read(texto::to_utf_8(in)))); });
}

}  // namespace ruvo::serializer
