// SPDX-License-Identifier: BSL-1.0

// The n-th allocation fails, for every n, alone or with all that follow: nothing leaks, nothing breaks, and
// what was there before is there still. This program is linked statically, so that the library's allocations
// come here too.

#include <ruvo/fake_context.hpp>
#include <ruvo/ruvo.hpp>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <functional>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

namespace {

thread_local long long countdown = -1;  // allocations until one fails; negative: none does
thread_local bool fails_once = false;   // then none of those behind it does
thread_local bool failed = false;
thread_local long long live = 0;
std::atomic<long long> live_everywhere{0};
thread_local std::string_view sought;  // in blocks that are given back
thread_local int times_found = 0;

std::size_t size_of(void* block) {
#ifdef _WIN32
  return _msize(block);
#else
  return malloc_usable_size(block);
#endif
}

}  // namespace

void* operator new(std::size_t size) {
  if (countdown == 0) {
    failed = true;
    if (fails_once) countdown = -1;
    throw std::bad_alloc();
  }
  if (countdown > 0) --countdown;
  void* const block = std::malloc(size ? size : 1);
  if (!block) throw std::bad_alloc();
  ++live;
  ++live_everywhere;
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* block) noexcept {
  if (block) --live, --live_everywhere;
  if (block && !sought.empty())
    times_found += std::string_view(static_cast<char*>(block), size_of(block)).find(sought) != sought.npos;
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }

namespace {

using ruvo::bundle;
using ruvo::list;
using ruvo::xvar;
using ruvo::serializer::json;
using ruvo::serializer::xml;

/// Runs `work` with its n-th allocation failing; false when it has less.
bool fail_at(long long n, const std::function<void()>& work) {
  failed = false;
  countdown = n;
  try {
    work();
  } catch (const std::bad_alloc&) {
  }
  countdown = -1;
  return failed;
}

/// Runs `work` with a failure at each allocation in turn, and once more with each as the first of many,
/// until none is left; returns how many it has then. `check` runs after each time.
long long fail_everywhere(
    const std::function<void()>& work, const std::function<void()>& check = [] {}) {
  long long n = 0;
  for (const bool once : {true, false}) {
    fails_once = once;
    bool more = true;
    for (n = 0; more; ++n) {
      more = fail_at(n, work);
      check();
      if (n > 100000) {
        ADD_FAILURE() << "never passes";
        return n;
      }
    }
  }
  return n - 1;
}

const std::wstring document =
    L"{\"cliente\":{\"nombre\":\"Talleres Ejemplo del "
    L"Norte\",\"activo\":true,\"saldo\":1250.75,\"etiquetas\":[\"una "
    L"etiqueta larga\",\"b\",null,[1,2,3.5]]},\"lineas\":[{\"articulo\":\"Tornillo de cabeza "
    L"hexagonal\",\"precio\":1."
    L"5},{\"articulo\":\"x\",\"precio\":2}],\"a\":1,\"b\":2,\"c\":3,\"d\":4,\"e\":5,\"f\":6,\"notas\":\"con "
    L"\\\"comillas"
    L"\\\" y m\\u00e1s\"}";

class allocation : public testing::Test {
 protected:
  void SetUp() override {
    json().deserialize(sample_, document, nullptr);
    sample_.hack_binary_on(L"cliente.firma") = ruvo::binary(L"a binary");
    sample_.hack_memo_on(L"cliente.memo") = L"a memo";
    sample_[L"a"][L"quality"] = L"a quality of some length";
    text_ = sample_.to_string();
  }
  bundle sample_;
  std::wstring text_;
};

TEST_F(allocation, copying_and_assigning_leave_the_target_as_it_was) {
  bundle target = {{L"before", 1}};
  fail_everywhere([&] { target = sample_; },
                  [&] { EXPECT_TRUE(target.to_string() == L"{\"before\":1}" || target == sample_); });
  list l{1, 2};
  fail_everywhere(
      [&] {
        l = list{xvar(sample_), xvar(sample_)};
      },
      [&] { EXPECT_TRUE(l.size() == 2 && (l[0].is_integer() || l.to_string().size() > 100)); });
  EXPECT_EQ(sample_.to_string(), text_);
}

TEST_F(allocation, inserting) {
  for (const int size : {0, 1, 4, 20, 128, 129, 600}) {
    for (const std::size_t room : {0, 200, 1000}) {
      bundle b;
      b.reserve(room);
      for (int i = 0; i < size; ++i) b[L"a rather long key " + std::to_wstring(i)] = i;
      const std::wstring before = b.to_string();
      const std::wstring key = L"another rather long key " + std::to_wstring(size);
      fail_everywhere([&] { b[key]; },
                      [&] {
                        b.erase(key);
                        EXPECT_EQ(b.to_string(), before);
                        EXPECT_EQ(b.count(key), 0u);
                      });
      fail_everywhere([&] { b.reserve(2 * room + 200); }, [&] { EXPECT_EQ(b.to_string(), before); });
    }
  }
}

TEST_F(allocation, changing_the_keys_of_what_was_read) {
  for (const int size : {1, 20, 127}) {
    std::wstring text = L"{\"k\":0";
    for (int n = 1; n < size; ++n) text += L",\"a rather long key " + std::to_wstring(n) + L"\":1";
    bundle read, b;
    ASSERT_FALSE(ruvo::serializer::read_standard_json(read, text + L"}"));
    for (const auto& change :
         {+[](bundle& in) { in.erase(in.begin()); }, +[](bundle& in) { in[L"x"]; },
          +[](bundle& in) { in.reserve(200); }, +[](bundle& in) { in[L"k"] = L"a text of some length"; }}) {
      bundle changed = read;
      change(changed);
      const long long allocations = fail_everywhere(
          [&] {
            b = bundle();
            b = read;
            const xvar* const held = &b[L"k"];
            change(b);
            EXPECT_TRUE(b.count(L"k") == 0 || held == &b[L"k"]);
          },
          [&] { EXPECT_TRUE(b.empty() || b == read || b == changed); });
      EXPECT_GT(allocations, 1);
    }
  }
}

TEST_F(allocation, a_value_that_is_moved_is_not_lost) {
  xvar from = L"a text of some length", to = 1;
  from[L"quality"] = to[L"quality"] = to[L"other"] = L"another text of some length";
  const list before{from, to};
  const long long allocations = fail_everywhere([&] {
    xvar source(from), target(to);
    try {
      target = std::move(source);
    } catch (...) {
      EXPECT_TRUE((list{source, target}) == before);
      throw;
    }
  });
  EXPECT_GT(allocations, 5);
}

TEST_F(allocation, printing_writing_and_paths) {
  std::wstring out;
  fail_everywhere([&] { out = sample_.to_string(); });
  EXPECT_EQ(out, text_);
  json tabulated(true, true, true);
  std::wstring expected;
  json(true, true, true).serialize(expected, sample_);
  fail_everywhere([&] {
    json fresh(true, true, true);
    fresh.serialize(out, sample_);
  });
  EXPECT_EQ(out, expected);
  bundle b;
  fail_everywhere([&] {
    b.hack_list_on(L"one.two.three.a key of some length").on_back_string() = L"a text of some length";
  });
  fail_everywhere([&] { sample_.get_string(L"cliente.nombre"); });
  xvar v;
  fail_everywhere([&] {
    v[L"a quality of some length"] = L"a text of some length";
    v = xvar(sample_);
  });
}

const std::wstring elements =
    L"<?xml version=\"1.0\"?><pedido numero=\"2026-000123\" fecha=\"21-11-2026\"><cliente nif=\"00000000T\">"
    L"Talleres Ejemplo &lt;del Norte&gt;</cliente><lineas><linea unidades=\"un atributo "
    L"largo\"><articulo>Tornillo"
    L" de cabeza hexagonal</articulo><precio>1.5</precio></linea><linea/><linea>otra linea "
    L"larga</linea></lineas>"
    L"<un_elemento_de_nombre_largo\n>x</un_elemento_de_nombre_largo\n></pedido>";

TEST_F(allocation, reading_and_writing_xml) {
  const long long allocations = fail_everywhere([&] {
    xml x(true, false);
    bundle b;
    x.deserialize(b, elements, nullptr);
  });
  EXPECT_GT(allocations, 20);
  bundle order;
  ASSERT_FALSE(xml(true, false).deserialize(order, elements));
  std::wstring out, expected;
  xml(true, true).serialize(expected, order);
  fail_everywhere([&] {
    xml fresh(true, true);
    fresh.serialize(out, order);
  });
  EXPECT_EQ(out, expected);
  // A writer or reader that failed works on as if it had not.
  xml used(true, true);
  fail_everywhere([&] { used.serialize(out, order); });
  used.serialize(out, order);
  xml second(true, true);
  for (int i = 0; i < 2; ++i) second.serialize(expected, order);
  EXPECT_EQ(out, expected);
  fail_everywhere([&] {
    bundle b;
    used.deserialize(b, elements, nullptr);
  });
}

TEST_F(allocation, reading_well_formed_xml) {
  ruvo::serializer::xml_read_options all;
  all.mixed_text = all.entities = all.declared_attributes = true;
  const std::string type =
      "<!DOCTYPE p [<!ENTITY firm 'Talleres &#60;b>del Norte&#60;/b>, sociedad'><!ATTLIST p lengua CDATA "
      "'la de siempre'>]>";
  for (const char* const end : {"</p>", "&nobody;"}) {
    const std::string bytes = type + "<p nif='00000000T'> <b>uno</b> <c/>y &firm; <b>dos</b>" + end;
    const bundle before = {{L"k", L"a text of some length"}};
    bundle out = before;
    ruvo::exception error;
    bool is_read = false;
    const long long allocations =
        fail_everywhere([&] { is_read = !ruvo::serializer::read_well_formed_xml(out, bytes, &error, all); },
                        [&] {
                          EXPECT_TRUE(is_read ? out.count(L"p") == 1 : out == before);
                          if (std::exchange(is_read, false)) out = before;
                        });
    EXPECT_GT(allocations, 40);
  }
}

/// Elements that repeat are put into a list: what is there already must come through.
TEST_F(allocation, reading_standard_json) {
  std::string many = "[";
  for (int n = 0; n < 200; ++n)
    many += "{\"a rather long name " + std::to_string(n) + "\":[],\"Name\":1,\"x\":\"y\"},";
  many += "{}]";
  std::string dictionary = "{";
  for (int n = 0; n < 140; ++n)
    dictionary += "\"id" + std::to_string(n) + "\":{\"a\":\"a text in a block\"},";
  dictionary += "\"ID7\":[1,2]}";
  ruvo::serializer::json_read_options options;
  options.twins = ruvo::serializer::json_twins::last;
  const std::string texts[] = {ruvo::texto::to_utf_8(document), many, dictionary,
                               std::string(100, '[') + std::string(100, ']')};
  for (const std::string& text : texts) {
    xvar out = L"before";
    fail_everywhere([&] { read_standard_json(out, text, nullptr, options); },
                    [&] { EXPECT_TRUE(out.to_string() == L"before" || out.to_string().size() > 100); });
    fail_everywhere([&] {
      ruvo::serializer::json_values values(options);
      for (std::size_t at = 0; at < text.size(); at += 100)
        values.feed(std::string_view(text).substr(at, 100), nullptr);
      values.finish(nullptr);
      xvar value;
      while (values.next(value)) EXPECT_GT(value.to_string().size(), 10u);
    });
  }
}

/// The text of a bundle, in which a container without members looks as a null value does.
std::wstring shown(const bundle& b) {
  std::wstring text = b.to_string();
  for (const wchar_t* const empty : {L"{}", L"[]"}) {
    for (std::size_t at; (at = text.find(empty)) != text.npos;) text.replace(at, 2, L"\"\"");
  }
  return text;
}

/// What was read before memory ran out is what a text that is cut there gives; a container that could not be
/// made may be null.
TEST_F(allocation, reading_json) {
  std::wstring dictionary = L"{\"a\":{\"b\":[";
  for (int n = 0; n < 130; ++n) dictionary += (n ? L",\"id" : L"{\"id") + std::to_wstring(n) + L"\":1";
  const std::wstring texts[] = {
      L"{\"a\":[1,{\"b\":{\"c\":[{},[2.5]]},\"B\":\"x\"},[{\"b\":3}]],\"\":4,\"d\":{\"\":5,\"e\":6,\"f\":[-]}"
      L"}",
      dictionary + L",\"ID7\":2},3]},\"c\":4}"};
  for (const std::wstring& text : texts) {
    std::set<std::wstring> cut;
    const auto read = [](bundle& out, const std::wstring& from) {
      try {
        json().deserialize(out, from, nullptr);
      } catch (const std::invalid_argument&) {  // of the number
      }
    };
    for (std::size_t size = 0; size <= text.size(); ++size) {
      bundle b;
      read(b, text.substr(0, size));
      cut.insert(shown(b));
    }
    bundle out;
    const long long allocations = fail_everywhere(
        [&] {
          out.clear();
          read(out, text);
        },
        [&] { EXPECT_EQ(cut.count(shown(out)), 1u) << testing::PrintToString(shown(out)); });
    EXPECT_GT(allocations, 20);
  }
}

TEST_F(allocation, becoming_a_list_loses_nothing) {
  const std::wstring first =
      L"<r><a q=\"a quality of some length\">a text of some length</a><b>another one, no shorter</b>";
  bool more = true;
  for (long long n = 0; more; ++n) {
    ruvo::serializer::xml_reader reader;
    bundle b;
    ruvo::exception error;
    reader.set_store(b);
    for (const wchar_t c : first) reader.next_character(c, error);
    fails_once = n % 2 == 0;
    more = fail_at(n / 2, [&] {
      for (const wchar_t c : {L'<', L'a', L'>'}) reader.next_character(c, error);
    });
    const std::wstring text = b.to_string();
    EXPECT_NE(text.find(L"\"a\":\"a text of some length\""), text.npos) << n;
    EXPECT_NE(text.find(L"\"b\":\"another one, no shorter\""), text.npos) << n;
    ASSERT_LT(n, 1000);
  }
}

TEST_F(allocation, layers_and_sets_stay_as_they_were) {
  ruvo::layered_settings settings;
  settings.set_layer(L"a layer of some name", sample_);
  settings.observe([](const std::wstring&) {});
  const bundle other{{L"cliente", bundle{{L"nombre", L"another text of some length"}}}};
  const std::wstring before = settings->to_string();
  long long allocations = fail_everywhere(
      [&] {
        settings.set_layer(L"another layer of some name", other);
        EXPECT_NE(settings->to_string(), before);
        settings.remove_layer(L"another layer of some name");
      },
      [&] {
        const bool is_one = settings.get_layers().size() == 1;
        EXPECT_EQ(settings->to_string() == before, is_one);
        settings.remove_layer(L"another layer of some name");
      });
  EXPECT_GT(allocations, 20);
  ruvo::bundles::keep_existing keep;
  bundle merged, whole;
  ruvo::bundles::merge(whole, sample_, &keep);
  fail_everywhere(
      [&] {
        merged = other;
        ruvo::bundles::merge(merged, sample_, &keep);
      },
      [&] { ruvo::bundles::merge(merged, sample_); });
  EXPECT_TRUE(merged == whole);

  ruvo::cap_set newest(2);
  ruvo::set all;
  for (const wchar_t* const text : {L"a text of some length", L"another text of some length"}) {
    newest.insert(text);
    all.insert(text);
  }
  const std::wstring texts = newest.to_string() + all.to_string();
  const auto check = [&] { EXPECT_EQ(newest.to_string() + all.to_string(), texts); };
  allocations = fail_everywhere(
      [&] {
        ruvo::cap_set more(newest);
        ruvo::set wider(all);
        more.insert(sample_);
        wider.insert(sample_);
        EXPECT_EQ(more.size() + wider.size(), 5U);
      },
      check);
  EXPECT_GT(allocations, 10);
}

TEST_F(allocation, settings_change_whole_or_not_at_all) {
  using ruvo::ini_file;
  const std::wstring section = L"a section of some length", key = L"Clave " + std::wstring(70, L'x');
  std::wstring text = L"[b]\n;c\n" + key + L"=a value of some length\n[" + section + L"]\n";
  for (wchar_t c = 0; c < 36; ++c) text += {static_cast<wchar_t>(0x4E00 + c), L'=', L'\n'};
  text.pop_back();  // and 40 names are as many as the first table holds
  ruvo::ini_dialect indented = ruvo::ini_dialect::python(), repeated;
  repeated.duplicates = ruvo::ini_duplicates::list;
  ruvo::exception failure;
  const std::function<bool(ini_file&)> changes[] = {
      [&](ini_file& to) { return to.set(L"b", key, L"another value of some length", failure); },
      [&](ini_file& to) { return to.set(section, key, L"1", failure); },
      [&](ini_file& to) { return to.set(L"another section of some length", key, L"1", failure); },
      [&](ini_file& to) {
        return to.set(L"b", L"many", list{L"a text of some length", 2, 3}, failure);
      },
      [&](ini_file& to) {
        return to.set(L"b", L"two", list{1, 2, 3, 4}, failure);
      },
      [&](ini_file& to) { return to.set(L"b", key, L"one\ntwo", failure); },
      [&](ini_file& to) { return to.set_comment(L"b", key, L"first\nsecond", failure); },
      [&](ini_file& to) { return to.erase(L"b", key, failure); },
      [&](ini_file& to) { return to.erase(L"b", failure); },
      [&](ini_file& to) { return to.rename(L"b", key, L"another name of some length", failure); },
      [&](ini_file& to) { return to.rename(L"b", L"another section of some length", failure); },
      [&](ini_file& to) {
        return to.set(bundle{{L"n", bundle{{L"k", 1}}}}, failure);
      },
      [&](ini_file& to) { return to.parse(std::string_view("a=1"), failure); }};
  for (const ruvo::ini_dialect& dialect : {indented, repeated}) {
    ini_file before(dialect);
    ASSERT_TRUE(before.parse(std::wstring_view(text), failure));
    before.set(L"b", L"two", list{1, 2}, failure);  // where one key may have two values
    for (const auto& change : changes) {
      ini_file done(before), now(before);
      if (!change(done)) continue;  // what this dialect has no way to write
      const auto expect_sound = [&] {
        ini_file again(dialect);
        bundle found, read;
        EXPECT_TRUE(again.parse(std::wstring_view(now.text()), failure));
        EXPECT_TRUE(now.to_bundle(found, failure) && again.to_bundle(read, failure));
        EXPECT_EQ(found.to_string(), read.to_string());
      };
      const long long allocations = fail_everywhere([&] { change(now); },
                                                    [&] {
                                                      expect_sound();
                                                      if (now.text() == before.text()) change(now);
                                                      EXPECT_EQ(now.text(), done.text());
                                                      expect_sound();
                                                      now = before;
                                                    });
      EXPECT_GT(allocations, 3);
    }
  }
}

TEST_F(allocation, settings_are_saved_whole_or_not_at_all) {
  const char* const folder = "memory_test";  // where new files stay that nobody has the memory to remove
  std::filesystem::create_directory(folder);
  const ruvo::file place(ruvo::file(folder), L"a.ini");
  ruvo::exception failure;
  ruvo::ini_file file;
  const auto content = [&] { return ruvo::files::read(place).to_string(); };
  int count = 0;
  for (const bool checks : {true, false}) {
    ruvo::files::write(L"a=a value of some length\r\n", place);
    const std::wstring before = content();
    ASSERT_TRUE(file.read(place, failure) && file.set(L"", L"b", ++count, failure));
    fail_everywhere(
        [&] {
          ruvo::ini_file read;
          return read.open(place, failure) && (checks ? file.save_if_unchanged(failure) : file.save(failure));
        },
        [&] { EXPECT_TRUE(content() == before || file.save_if_unchanged(failure)); });
    EXPECT_NE(content(), before);
  }
  std::filesystem::remove_all(folder);
}

/// What has a name is whole, and what had it before is there until then.
TEST_F(allocation, archives_and_what_comes_out_of_them_are_whole) {
  namespace zip = ruvo::zip;
  namespace fs = std::filesystem;
  const auto in = [](const wchar_t* name) { return ruvo::file(ruvo::file(L"archivos"), name); };
  fs::remove_all("archivos");
  fs::create_directories("archivos/de/sub");
  const std::wstring text(1000, L'x');
  for (const wchar_t* const name : {L"de\\uno.txt", L"de\\sub\\dos.txt"}) ruvo::files::write(text, in(name));
  const ruvo::binary before(L"lo que había");
  ruvo::files::write(before, in(L"a.zip"));
  bool is_done = false;
  const auto fail_all = [](const std::function<void()>& work, const std::function<void()>& check) {
    work();
    check();
    const long long count = live;
    EXPECT_GT(fail_everywhere(work, check), 20);
    EXPECT_EQ(live, count);
  };
  fail_all(
      [&] {
        ruvo::exception err;
        is_done = zip::compress(in(L"de"), in(L"a.zip"), err);
      },
      [&] {
        ruvo::exception err;
        const bool is_old = ruvo::files::read(in(L"a.zip")) == before;
        EXPECT_TRUE(is_old ? !is_done : zip::verify(in(L"a.zip"), err)) << err.what();
        ruvo::files::write(before, in(L"a.zip"));
        is_done = false;
      });
  ruvo::exception failure;
  ASSERT_TRUE(zip::compress(in(L"de"), in(L"a.zip"), failure));
  fail_all(
      [&] {
        zip::reader from;
        ruvo::exception err;
        ruvo::binary content(L"x");
        if (!from.open(in(L"a.zip"), err)) return;
        EXPECT_EQ(from.entries().size(), 3u);
        is_done = from.read(L"sub/dos.txt", content, err);
        EXPECT_EQ(content.size(), is_done ? text.size() : 1);
      },
      [] {});
  fail_all(
      [&] {
        ruvo::exception err;
        is_done = zip::extract(in(L"a.zip"), in(L"a"), err);
      },
      [&] {
        std::size_t count = 0;
        fs::create_directory("archivos/a");
        for (const auto& each : fs::recursive_directory_iterator("archivos/a")) {
          if (!each.is_regular_file() || each.path().extension() == ".tmp") continue;  // has no name yet
          EXPECT_EQ(each.file_size(), text.size());
          ++count;
        }
        EXPECT_TRUE(count == 2 || !is_done);
        fs::remove_all("archivos/a");
        is_done = false;
      });
  fs::remove_all("archivos");
}

TEST_F(allocation, nothing_is_left_behind) {
  const auto work = [&] {
    bundle b;
    json().deserialize(b, document, nullptr);
    const bundle copy(b);
    std::wstring out;
    json(false, true, true).serialize(out, copy);
    bundle e;
    xml x(false, true);
    x.deserialize(e, elements, nullptr);
    x.serialize(out, e);
  };
  fail_everywhere(work);
  work();
  const long long before = live;  // the thread's cache is warm
  fail_everywhere(work);
  for (int i = 0; i < 100; ++i) work();
  EXPECT_EQ(live, before);
}

// A pool keeps a job for each task, some blocks; not what the task was given, a block for each text here.
TEST(pool_allocation, parameters_go_with_their_tasks) {
  constexpr int jobs = 10, texts = 100;
  list parameter;
  for (int n = 0; n < texts; ++n) parameter.push_back(std::wstring(10000, L'x'));  // beyond what threads keep
  std::deque<ruvo::task::call> tasks;
  ruvo::jobs::pool pool(1), other(1);
  const long long before = live_everywhere;
  for (int n = 0; n < jobs; ++n)
    pool.execute_job(tasks.emplace_back([](const xvar&, ruvo::task::steps) { return xvar(); }), parameter);
  pool.join();
  for (ruvo::task::call& each : tasks) each.join();
  for (ruvo::task::call& each : tasks) other.store_job(each, parameter);
  EXPECT_GT(live_everywhere - before, jobs * texts);
  EXPECT_THROW(other.cancel(), std::system_error);  // drops them
  EXPECT_LT(live_everywhere - before, jobs * texts / 2);
}

TEST(error_allocation, no_more_than_the_detail_and_the_class_is_lost) {
  ruvo::exc::fileNotFound failure(L"un camino que no cabe dentro");
  const ruvo::exception copy = failure;
  const std::wstring another = L"another of some length";
  countdown = 0;
  failure.set_detail(another);
  try {
    copy.raise();
  } catch (const ruvo::exception& thrown) {
    countdown = -1;
    EXPECT_EQ(typeid(thrown), typeid(ruvo::exception));
    EXPECT_EQ(thrown.get_mensaje(), failure.get_mensaje());
  }
  EXPECT_EQ(failure.get_detail(), L"un camino que no cabe dentro");
}

TEST(mail_allocation, no_recipient_is_lost) {
  using ruvo::smtp::email;
  email message;
  message[L"ana.de.nombre.largo@example.es"] = email::CC_;
  const std::wstring list = L"Un nombre que no cabe dentro <ana.de.nombre.largo@example.es>";
  EXPECT_GT(fail_everywhere([&] { message.deserialize_recipients(list); },
                            [&] { ASSERT_EQ(message.count(L"ana.de.nombre.largo@example.es"), 1u); }),
            3);
  EXPECT_EQ(message.begin()->first.to_string(), list);
}

TEST(mail_allocation, responses_are_assigned_whole) {
  ruvo::smtp::response sent;
  sent.push(ruvo::smtp::address(L"Un nombre que no cabe dentro", L"ana@x.es"));
  sent.set_exception(ruvo::exception(0xE0AB0226, L"no hay buzón"));
  const ruvo::smtp::response before;
  ruvo::smtp::response target = before;
  EXPECT_GT(fail_everywhere([&] { target = sent; }, [&] { EXPECT_TRUE(target == sent || target == before); }),
            1);
  EXPECT_TRUE(target == sent);
}

/// What is given back of a secret is overwritten, whatever was done with it; of a text it is not.
TEST(secret_allocation, nothing_of_a_secret_is_given_back) {
  const std::wstring text = L"a secret that is ñ and of some length";
  const std::string bytes = ruvo::texto::to_utf_8(text);
  const auto given_back = [&bytes](const std::function<void()>& work) {
    times_found = 0;
    sought = std::string_view(bytes).substr(bytes.size() - 16);
    work();
    sought = {};
    return times_found;
  };
  EXPECT_EQ(given_back([&] { static_cast<void>(ruvo::texto::to_utf_8(text)); }), 1);
  using namespace ruvo::oauth;
  EXPECT_EQ(given_back([&] {
              secret kept{text}, other(kept);
              other = secret(L"another");
              kept = std::move(other);
              for (const method how : {method::hmac_sha1, method::hmac_sha256}) {
                signer who(L"key", secret(text), how);
                who.set_token(L"token", secret(text)).set_token(L"token", secret(text));
                ruvo::http::request message(std::wstring(L"https://example.com/"), std::wstring());
                who.sign(message, L"GET");
                stamp seen;
                ruvo::exception failure;
                EXPECT_TRUE(signer(who).verify(L"GET", message, seen, failure));
              }
            }),
            0);
}

// What is compared of values that have no operator==.
template <class Value>
const Value& compared(const Value& value) {
  return value;
}
bundle compared(const ruvo::http::cookie_jar& jar) { return jar; }
bundle compared(const ruvo::smtp::received& mail) {
  return bundle{{L"mail", bundle(mail.message)}, {L"plain", mail.plain}, {L"files", mail.attachments.size()}};
}
std::vector<ruvo::smtp::address> compared(const ruvo::smtp::envelope& envelope) {
  return envelope.recipients;
}
std::wstring compared(const ruvo::mime::part& part) { return part.get_header(L"subject"); }

/// Makes a value while memory runs out: all of it is made, or the value is as it was.
template <class Value>
void expect_whole(const Value& before, const std::function<bool(Value&, ruvo::exception&)>& make) {
  ruvo::fake_context fake;  // boundaries and stamps are the same every time
  const ruvo::thread_scope scope(fake);
  Value made = before, now = before;
  ruvo::exception failure;
  ASSERT_TRUE(make(made, failure)) << failure.what();
  const auto work = [&] {
    fake.next_id = 1;
    EXPECT_TRUE(make(now, failure));  // a lack of memory is no failure of another kind
  };
  const auto check = [&] {
    EXPECT_TRUE(compared(now) == compared(before) || compared(now) == compared(made));
    now = before;
  };
  EXPECT_GT(fail_everywhere(work, check), 0);
}

TEST(message_allocation, mails_are_written_and_read_whole) {
  using namespace ruvo;
  const file attached(std::wstring(L"un adjunto de nombre largo, ñ.txt"));
  exception failure;
  ASSERT_TRUE(files::write(binary("some bytes of a file"), attached, failure));
  smtp::email mail(smtp::address(L"José Núñez de la Cruz", L"jose@example.es"), L"Año nuevo " + document,
                   L"<html><body><p>Adjunto la lista.</p></body></html>");
  mail[smtp::address(L"García, Luis", L"luis@example.es")];
  mail.set_uuid(L"ID-1").push(attached);
  std::string bytes;
  ASSERT_TRUE(smtp::write(bytes, mail, failure));
  expect_whole<std::string>("before", [&](auto& out, auto& err) { return smtp::write(out, mail, err); });
  expect_whole<smtp::envelope>({}, [&](auto& out, auto& err) { return smtp::seal(out, mail, err); });
  expect_whole<mime::part>({}, [&](auto& out, auto& err) { return smtp::to_mime(out, mail, err); });
  expect_whole<mime::part>({}, [&](auto& out, auto& err) { return mime::read(out, bytes, err); });
  smtp::received before;
  before.message.set_date(datetime(0LL)).set_uuid(L"");
  expect_whole<smtp::received>(before, [&](auto& out, auto& err) { return smtp::read(out, bytes, err); });
  const std::wstring text = texto::to_utf_16(bytes);
  bundle form;
  expect_whole<bundle>(
      {}, [&](auto& out, auto& err) { return !serializer::mime().deserialize(out, text, &err); });
  ASSERT_FALSE(serializer::mime().deserialize(form, text, &failure));
  expect_whole<std::wstring>(
      L"before", [&](auto& out, auto& err) { return !serializer::mime().serialize(out, form, &err); });
}

TEST(message_allocation, fields_forms_and_cookies_are_whole) {
  using namespace ruvo;
  using std::wstring;
  const wstring name = L"un nombre de cierta longitud, ñ", id(30, L'n'),
                url = L"https://a.example.es/una/ruta?a=b";
  const http::fields form{{name, document}, {name, L"b"}, {L"", L""}};
  const std::vector<http::form_part> parts = {{name, "a content of some length"},
                                              {L"f", "bytes", name, L"image/png", true}};
  wstring type, boundary, field, disposition;
  std::string body;
  exception failure;
  ASSERT_TRUE(http::write_multipart(body, type, parts, failure));
  const http::header_value value{L"text/html", {{L"charset", L"utf-8"}, {L"title", name}}};
  ASSERT_TRUE(http::write_header(field, value, failure));
  ASSERT_TRUE(http::write_content_disposition(disposition, L"attachment", name, failure));
  const wstring set_cookie = id + L"=" + id + L"; Path=/una; Domain=example.es; Max-Age=100";
  http::cookie cookie;
  ASSERT_TRUE(http::read_set_cookie(cookie, set_cookie, failure));
  http::cookie_jar jar;
  ASSERT_TRUE(jar.take(url, set_cookie, datetime(0LL), failure));
  const bundle stored = jar, sent{{L"clave", list{id, id}}, {L"a", 1}, {L"b", 2}, {L"c", 3}};

  expect_whole<http::fields>(
      form, [&](auto& out, auto& err) { return http::read_form(out, form.form_text(), err); });
  expect_whole<bundle>(sent, [&](auto& out, auto& err) {
    const wstring text = L"clave=" + id + L"&otra+clave=" + id + L"&otra+clave=";
    return !serializer::http_forms().deserialize(out, text, &err);
  });
  expect_whole<std::string>(
      "", [&](auto& out, auto& err) { return http::write_multipart(out, boundary, parts, err); });
  expect_whole<std::vector<http::form_part>>(
      {}, [&](auto& out, auto& err) { return http::read_multipart(out, type, body, err); });
  expect_whole<http::header_value>({},
                                   [&](auto& out, auto& err) { return http::read_header(out, field, err); });
  expect_whole<std::vector<http::header_value>>(
      {}, [&](auto& out, auto& err) { return http::read_header_list(out, field + L", b", err); });
  expect_whole<wstring>(L"", [&](auto& out, auto& err) {
    return http::write_header_list(out, {value, value}, err);
  });
  expect_whole<wstring>(L"", [&](auto& out, auto& err) {
    wstring kind;
    return http::read_content_disposition(kind, out, disposition, err);
  });
  expect_whole<wstring>(L"", [&](auto& out, auto& err) { return http::write_set_cookie(out, cookie, err); });
  expect_whole<http::cookie>(
      {}, [&](auto& out, auto& err) { return http::read_set_cookie(out, set_cookie, err); });
  expect_whole<wstring>(L"", [&](auto& out, auto& err) {
    return !serializer::http_cookie().serialize(out, {{L"a", id}}, &err);
  });
  expect_whole<http::cookie_jar>(
      {}, [&](auto& out, auto& err) { return out.take(url, set_cookie, datetime(0LL), err); });
  expect_whole<http::cookie_jar>(
      jar, [&](auto& out, auto& err) { return out.take(url, L"b=" + id, datetime(0LL), err); });
  expect_whole<http::cookie_jar>({}, [&](auto& out, auto& err) { return out.read(stored, err); });
  expect_whole<wstring>(
      L"", [&](auto& out, auto&) { return !(out = jar.header_for(url, datetime(0LL))).empty(); });
  expect_whole<http::url>({}, [&](auto& out, auto& err) { return out.read(url + L"#ñ", err); });
  expect_whole<http::url>(http::url(url), [&](auto& out, auto&) {
    out = out.resolve(http::url(L"../otra/ruta/de/cierta/longitud")).set_query(form);
    return true;
  });
  expect_whole<http::request>(http::request(url, id), [&](auto& out, auto& err) {
    return oauth::signer(id, oauth::secret(id)).set_token(id, oauth::secret(name)).sign(out, L"GET", err);
  });
}

TEST(http_allocation, looking_up_headers_has_none) {
  ruvo::http::response answer;
  for (int i = 0; i < 1000; ++i) answer["X-Cabecera-" + std::to_string(i)] = std::to_wstring(i);
  const std::wstring wide = L"x-cabecera-777";
  const std::string narrow = "X-CABECERA-777", long_name(64, 'n');
  const ruvo::http::response& reader = answer;
  std::size_t found = 0;
  EXPECT_EQ(
      fail_everywhere([&] {
        found += answer.count(wide) + answer.count(narrow) + answer.count(long_name);
        found += reader.find(L"Content-Type") != reader.end() && answer.find("accept") != answer.end();
        found += answer[wide].size() + answer[L"X-Cabecera-778"].size() + answer["x-cabecera-779"].size();
        found += reader.at("X-Cabecera-780").size() + answer.erase(L"X-Falta") + answer.erase("X-Falta");
      }),
      0);
  EXPECT_EQ(found, 2 * (2u + 1u + 4 * 3u));  // it ran twice
}

TEST(http_allocation, messages_change_whole_or_not_at_all) {
  ruvo::http::request before(L"http://servidor.ejemplo/una/ruta", L"un cuerpo de cierta longitud"), target;
  before[L"X-Cabecera-De-Nombre-Largo"] = L"un valor de cierta longitud";
  const ruvo::http::request source(L"http://servidor.ejemplo/otra/ruta", L"otro cuerpo de cierta longitud");
  target = before;
  const long long allocations =
      fail_everywhere([&] { target = source; }, [&] { EXPECT_TRUE(target == before || target == source); });
  EXPECT_GT(allocations, 5);
  const xvar value = before;
  fail_everywhere([&] { target = value; }, [&] { EXPECT_TRUE(target == before || target == source); });
  EXPECT_TRUE(target == before);
  const std::size_t size = before.size();
  fail_everywhere([&] { before["X-Otra-Cabecera-De-Nombre-Largo"] = L"un valor de cierta longitud"; },
                  [&] {
                    static_cast<void>(before.erase(L"x-otra-cabecera-de-nombre-largo"));
                    EXPECT_EQ(before.size(), size);
                  });
  ruvo::http::response answer;
  std::wstring text = answer.to_string();
  fail_everywhere([&] { answer += "un trozo de cuerpo de cierta longitud, \xC3\xB1"; },
                  [&] { EXPECT_EQ(answer.length() % 40, 0u); });
  EXPECT_EQ(answer.length(), 80u);
  fail_everywhere([&] { text = answer.to_string(); });
}

}  // namespace
