// SPDX-License-Identifier: BSL-1.0

// Standard JSON from a text that comes in pieces, to events or to one value after another.

#include "serializer/json/standard_pieces.hpp"

#include <ruvo/decimal.hpp>
#include <ruvo/xvar.hpp>

#include <deque>
#include <memory>
#include <optional>
#include <utility>

namespace ruvo::serializer {

void ijson_events::on_null() {}
void ijson_events::on_boolean(bool /*value*/) {}
void ijson_events::on_integer(long long /*value*/) {}
void ijson_events::on_unsigned(unsigned long long /*value*/) {}
void ijson_events::on_double(double /*value*/) {}
void ijson_events::on_number(std::wstring_view /*written*/) {}
void ijson_events::on_text(std::wstring_view /*value*/) {}
void ijson_events::on_name(std::wstring_view /*name*/) {}
void ijson_events::on_open_object() {}
void ijson_events::on_close_object() {}
void ijson_events::on_open_list() {}
void ijson_events::on_close_list() {}
ijson_events::~ijson_events() = default;
ijson_events::ijson_events() noexcept = default;
ijson_events::ijson_events(const ijson_events&) noexcept = default;
ijson_events& ijson_events::operator=(const ijson_events&) noexcept = default;

namespace {

/// The pieces of one text, of the one kind or the other, and the failure that ended it.
class pieces_reader {
 public:
  pieces_reader(ijson_events& events, const json_read_options& options, bool many)
      : narrow_(events, options, many), wide_(events, options, many) {}

  void reset() noexcept {
    narrow_.reset();
    wide_.reset();
    units_ = 0;
    failure_.reset();
    is_placed_ = false;
    position_ = 0;
    place_ = {};
  }

  bool feed(std::string_view piece, exception* err) { return feed_to(narrow_, piece, err); }
  bool feed(std::wstring_view piece, exception* err) { return feed_to(wide_, piece, err); }
  bool finish(exception* err) {
    const bool failed = units_ == sizeof(wchar_t)
                            ? run(wide_, std::wstring_view(), err, [this] { wide_.finish(); })
                            : run(narrow_, std::string_view(), err, [this] { narrow_.finish(); });
    if (!failed) reset();
    return failed;
  }

  std::uint64_t position() const noexcept { return position_; }
  text_place place() const noexcept { return place_; }

 private:
  template <class Unit>
  bool feed_to(json_pieces<Unit>& pieces, std::basic_string_view<Unit> piece, exception* err) {
    if (units_ != 0 && units_ != sizeof(Unit) && !failure_) {
      failure_ = exc::BadArgument(L"pieza");
      is_placed_ = true;  // nowhere in the text
    }
    if (!piece.empty()) units_ = sizeof(Unit);
    return run(pieces, piece, err, [&] { pieces.feed(piece); });
  }

  template <class Unit, class Body>
  bool run(json_pieces<Unit>& pieces, std::basic_string_view<Unit> piece, exception* err, Body body) {
    try {
      if (!failure_) body();
    } catch (const refusal& refused) {
      failure_ = refused.failure;
    } catch (const limit_reached& limit) {
      failure_ = exc::jsonBeyondLimit(pieces.position(), limit.what);
    } catch (const name_twice& twin) {
      failure_ = exc::jsonTwinName(pieces.position(), twin.name);
    } catch (...) {
      reset();
      throw;
    }
    if (!failure_) return false;
    if (!is_placed_) {
      is_placed_ = true;
      position_ = failure_position(*failure_);
      place_ = pieces.place_of(position_, piece);
    }
    if (err) *err = *failure_;
    return true;
  }

  json_pieces<char> narrow_;
  json_pieces<wchar_t> wide_;
  std::size_t units_ = 0;  // bytes of a unit of the text; 0 before the first piece
  std::optional<exception> failure_;
  bool is_placed_ = false;
  std::uint64_t position_ = 0;  // of the failure
  text_place place_;
};

/// Makes values of events.
class value_maker : public ijson_events {
 public:
  explicit value_maker(const json_read_options& options) : options_(options), builder_(names_, options_) {}

  void clear() noexcept {
    builder_.clear();
    if (names_.is_full()) names_.clear();
  }
  bool take_next(xvar& out) noexcept {
    if (ready_.empty()) return false;
    out.swap(ready_.front());
    ready_.pop_front();
    return true;
  }
  void forget_ready() noexcept { ready_.clear(); }

  void on_null() override {
    value([this] { builder_.null(); });
  }
  void on_boolean(bool value_read) override {
    value([&] { builder_.boolean(value_read); });
  }
  void on_integer(long long value_read) override {
    value([&] { builder_.integer(value_read); });
  }
  void on_unsigned(unsigned long long value_read) override {
    value([&] { builder_.natural(static_cast<long long>(value_read)); });
  }
  void on_double(double value_read) override {
    value([&] { builder_.real(value_read); });
  }
  void on_number(std::wstring_view written) override {
    decimal exact;
    exception failure;
    if (!options_.decimals || !exact.read(written, failure)) return on_text(written);
    value([&] { builder_.exact(exact); });
  }
  void on_text(std::wstring_view text) override {
    value([&] { builder_.text(text); });
  }
  void on_name(std::wstring_view name) override {
    limited([&] {
      const std::size_t bytes = name.size() * sizeof(wchar_t);
      if (!builder_.take_expected(name.data(), bytes)) builder_.take_name(name.data(), bytes, name);
    });
  }
  void on_open_object() override {
    limited([this] { builder_.open_object(); });
  }
  void on_close_object() override {
    value([this] { builder_.close(); });
  }
  void on_open_list() override {
    limited([this] { builder_.open_list(); });
  }
  void on_close_list() override { on_close_object(); }

 private:
  template <class Body>
  static void limited(Body body) {
    try {
      body();
    } catch (const std::length_error&) {  // a size that the library itself does not take
      throw limit_reached{L"memoria"};
    }
  }
  template <class Body>
  void value(Body body) {
    limited(body);
    if (builder_.depth() > 0) return;
    ready_.push_back(builder_.take());
    clear();
  }

  const json_read_options options_;
  detail::name_tree names_;
  json_builder builder_;
  std::deque<xvar> ready_;
};

}  // namespace

class standard_json_reader::machine : public pieces_reader {
 public:
  using pieces_reader::pieces_reader;
};

standard_json_reader::standard_json_reader(ijson_events& events, const json_read_options& options, bool many)
    : machine_(std::make_unique<machine>(events, options, many)) {}
standard_json_reader::~standard_json_reader() = default;
bool standard_json_reader::feed(std::string_view bytes, exception* err) { return machine_->feed(bytes, err); }
bool standard_json_reader::feed(std::wstring_view text, exception* err) { return machine_->feed(text, err); }
bool standard_json_reader::finish(exception* err) { return machine_->finish(err); }
void standard_json_reader::reset() noexcept { machine_->reset(); }
std::uint64_t standard_json_reader::position() const noexcept { return machine_->position(); }
text_place standard_json_reader::place() const noexcept { return machine_->place(); }

class json_values::machine {
 public:
  explicit machine(const json_read_options& options) : maker(options), reader(maker, options, true) {}

  /// What `body` says, which feeds; the values that are not complete go with a failure.
  template <class Body>
  bool run(Body body) {
    try {
      const bool failed = body();
      if (failed) maker.clear();
      return failed;
    } catch (...) {
      maker.clear();
      throw;
    }
  }

  value_maker maker;
  pieces_reader reader;
};

json_values::json_values(const json_read_options& options) : machine_(std::make_unique<machine>(options)) {}
json_values::~json_values() = default;
bool json_values::feed(std::string_view bytes, exception* err) {
  return machine_->run([&] { return machine_->reader.feed(bytes, err); });
}
bool json_values::feed(std::wstring_view text, exception* err) {
  return machine_->run([&] { return machine_->reader.feed(text, err); });
}
bool json_values::finish(exception* err) {
  return machine_->run([&] { return machine_->reader.finish(err); });
}
void json_values::reset() noexcept {
  machine_->reader.reset();
  machine_->maker.clear();
  machine_->maker.forget_ready();
}
std::uint64_t json_values::position() const noexcept { return machine_->reader.position(); }
text_place json_values::place() const noexcept { return machine_->reader.place(); }
bool json_values::next(xvar& out) noexcept { return machine_->maker.take_next(out); }

}  // namespace ruvo::serializer
