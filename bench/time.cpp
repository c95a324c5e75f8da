// SPDX-License-Identifier: BSL-1.0

// Calendar values against the C runtime, the standard library's streams and date.h.

#include <ruvo/context.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exception.hpp>

#include <cstddef>
#include <ctime>
#include <cwchar>
#include <deque>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <date/date.h>

#include "support/harness.hpp"

namespace {

constexpr std::size_t count = 256;  // operations of one run
const std::string format = "%d-%m-%Y %H:%M:%S";
const std::wstring wide_format = L"%d-%m-%Y %H:%M:%S";

/// Instants from 1970 to 2105, in no order.
std::vector<long long> some_instants() {
  std::mt19937_64 random(20240229);
  std::uniform_int_distribution<long long> any(0, 4294967295);
  std::vector<long long> out(count);
  for (long long& one : out) one = any(random);
  return out;
}

const std::vector<long long> instants = some_instants();

/// One operation for each instant.
template <class Operation>
bench::competitor each(const char* name, Operation operation) {
  return {name, [operation] {
            for (std::size_t i = 0; i < count; ++i) operation(i);
          }};
}

constexpr bench::amount one_run{count, bench::amount::operations};

std::tm record_of(long long seconds) {
  std::tm out{};
  _gmtime64_s(&out, &seconds);
  return out;
}

// --- instants to fields and back

void by_services(std::size_t i) {
  static const ruvo::context services;
  std::tm record;
  services.sistem_gmt_time(&record, instants[i], nullptr);
  bench::use(record);
  long long back;
  services.sistem_gmt_lapse(back, record, nullptr);
  bench::use(back);
}

void by_values(std::size_t i) {
  const std::tm record = ruvo::datetime(instants[i]).get_model();
  bench::use(record);
  bench::use(ruvo::datetime(record.tm_year + 1900, record.tm_mon + 1, record.tm_mday, record.tm_hour,
                            record.tm_min, record.tm_sec));
}

void by_runtime(std::size_t i) {
  std::tm record;
  _gmtime64_s(&record, &instants[i]);
  bench::use(record);
  bench::use(_mkgmtime64(&record));
}

void by_date_h(std::size_t i) {
  using std::chrono::seconds;
  const date::sys_seconds instant{seconds{instants[i]}};
  const auto day = date::floor<date::days>(instant);
  const date::year_month_day ymd{day};
  const date::hh_mm_ss<seconds> hms{instant - day};
  bench::use(ymd);
  bench::use(hms);
  bench::use(date::sys_days{ymd} + hms.hours() + hms.minutes() + hms.seconds());
}

void fields() {
  bench::table table("time");
  const bench::competitor runtime = each("C runtime", by_runtime);
  const bench::competitor peer = each("date.h", by_date_h);
  table.row("break down, build", "services", one_run, {each("kesta", by_services), runtime, peer},
            {{"C runtime", 2.0}, {"date.h", 0.8}});
  table.row("break down, build", "datetime", one_run, {each("kesta", by_values), runtime, peer},
            {{"C runtime", 2.0}, {"date.h", 0.8}});
}

// --- instants to text; the peers are given the fields

void printing() {
  std::vector<std::tm> records;
  std::vector<ruvo::datetime> values;
  for (const long long seconds : instants) {
    records.push_back(record_of(seconds));
    values.emplace_back(seconds);
  }
  std::wostringstream stream;
  const bench::competitor put_time = each("put_time", [&](std::size_t i) {
    stream.seekp(0);
    stream << std::put_time(&records[i], wide_format.c_str());
    bench::use(stream);
  });
  const bench::competitor wcsftime = each("wcsftime", [&](std::size_t i) {
    wchar_t text[32];
    bench::use(std::wcsftime(text, 32, wide_format.c_str(), &records[i]));
    bench::use(text);
  });
  const std::vector<bench::target> targets = {{"put_time", 20.0}, {"wcsftime", 3.0}};

  bench::table table("time");
  const auto wide = [&](std::size_t i) { bench::use(values[i].format(wide_format)); };
  const auto narrow = [&](std::size_t i) { bench::use(values[i].to_string()); };
  table.row("print", "format(wide)", one_run, {each("kesta", wide), put_time, wcsftime}, targets);
  table.row("print", "to_string()", one_run, {each("kesta", narrow), put_time, wcsftime}, targets);
}

// --- text to instants; the peer stops at the fields, and has its streams ready

void reading() {
  std::vector<std::wstring> texts;
  std::deque<std::wistringstream> streams;
  for (const long long seconds : instants) {
    texts.push_back(ruvo::datetime(seconds).to_string());
    streams.emplace_back(texts.back());
  }
  const bench::competitor get_time = each("get_time", [&](std::size_t i) {
    std::wistringstream& stream = streams[i];
    stream.clear();
    stream.seekg(0);
    std::tm record{};
    stream >> std::get_time(&record, wide_format.c_str());
    bench::use(record);
  });
  ruvo::datetime value;
  ruvo::exception err;
  bench::table table("time");
  const auto row = [&](const char* how, auto operation) {
    table.row("read", how, one_run, {each("kesta", operation), get_time}, {{"get_time", 10.0}});
  };
  row("parse(wide)", [&](std::size_t i) { bench::use(value.parse(texts[i], wide_format, err)); });
  row("parse(narrow)", [&](std::size_t i) { bench::use(value.parse(texts[i], format, err)); });
  row("= text", [&](std::size_t i) { bench::use(value = texts[i]); });
}

}  // namespace

int main() {
  fields();
  printing();
  reading();
}
