// The text forms of lists and bundles, walked with an explicit stack.

#include <vector>

#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::detail {

namespace {

class text_writer {
 public:
  explicit text_writer(std::wstring& out) : out_(out) {}

  void write(const list& l) {
    open(l);
    run();
  }
  void write(const bundle& b) {
    open(b);
    run();
  }

 private:
  using qualities_map = xvar::qualities_map;

  /// A container that is being written: what comes next in it.
  struct frame {
    enum { in_list, in_bundle, in_qualities } what;
    const xvar *at = nullptr, *last = nullptr;                // of a list
    bundle::const_iterator entry{}, last_entry{};             // of a bundle
    qualities_map::const_iterator quality{}, last_quality{};  // of an element's qualities
    bool first = true;
    const xvar* written = nullptr;  // the element whose qualities are still to come
  };

  void run() {
    while (!open_.empty()) {
      switch (open_.back().what) {
        case frame::in_list:
          next_element(open_.back());
          break;
        case frame::in_bundle:
          next_entry(open_.back());
          break;
        default:
          next_quality(open_.back());
      }
    }
  }

  void open(const list& l) {
    out_ += L'[';
    frame& f = open_.emplace_back(frame{frame::in_list});
    f.at = l.data();
    f.last = f.at + l.size();
  }
  void open(const bundle& b) {
    out_ += L'{';
    frame& f = open_.emplace_back(frame{frame::in_bundle});
    f.entry = b.begin();
    f.last_entry = b.end();
  }
  void open(const qualities_map& q) {
    out_ += L"{\"atributos\":";
    frame& f = open_.emplace_back(frame{frame::in_qualities});
    f.quality = q.begin();
    f.last_quality = q.end();
  }
  void close(wchar_t bracket) {
    out_ += bracket;
    open_.pop_back();
  }

  void next_element(frame& f) {
    if (const xvar* const qualified = std::exchange(f.written, nullptr))
      return open(*cell::qualities(*qualified));
    if (f.at == f.last) return close(L']');
    if (!std::exchange(f.first, false)) out_ += L',';
    const xvar& v = *f.at++;
    if (v.is_qualified()) f.written = &v;
    value(v);
  }
  void next_entry(frame& f) {
    if (f.entry == f.last_entry) return close(L'}');
    if (!std::exchange(f.first, false)) out_ += L", ";
    const bundle::entry& e = *f.entry;
    ++f.entry;
    key(e.first);
    value_or_empty(e.second);
  }
  void next_quality(frame& f) {
    if (f.quality == f.last_quality) return close(L'}');
    const auto& [name, v] = *f.quality++;
    key(name);
    value_or_empty(v);
  }

  void key(const std::wstring& name) {
    out_ += L'"';
    out_ += name;
    out_ += L"\":";
  }
  void value_or_empty(const var& v) {
    if (v.is_null()) {
      out_ += L"\"\"";
    } else {
      value(v);
    }
  }
  void value(const var& v) {
    if (cell::kind_of(v) == kind::list) return open(cell::as_list(v));
    if (cell::kind_of(v) == kind::bundle) return open(cell::as_bundle(v));
    if (!cell::is_text(v)) return append_text(out_, v);
    out_ += L'"';
    for (const wchar_t c : cell::text(v)) {
      if (c == L'"') out_ += L'\\';
      out_ += c;
    }
    out_ += L'"';
  }

  std::wstring& out_;
  std::vector<frame> open_;
};

}  // namespace

void append_text(std::wstring& out, const list& l) { text_writer(out).write(l); }
void append_text(std::wstring& out, const bundle& b) { text_writer(out).write(b); }

}  // namespace ruvo::detail
