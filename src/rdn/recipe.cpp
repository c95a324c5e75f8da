// SPDX-License-Identifier: BSL-1.0

// Recipes: bundles that say how bundles are drawn. They are read once into steps.

#include <ruvo/exc.hpp>
#include <ruvo/identifiers.hpp>
#include <ruvo/rdn.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/ascii.hpp"
#include "rdn/tables.hpp"
#include "values/cell.hpp"

namespace ruvo::rdn {

namespace detail {

/// How one value is drawn. Which members count depends on what it is.
struct recipe_step {
  enum class kind { made, part, fixed, record, sequence };
  using maker = xvar (*)(generator&, const recipe_step&);

  kind what = kind::fixed;
  std::wstring key = {};                   ///< In the bundle around it.
  maker make = nullptr;                    ///< Of what is made; of a part, what makes the whole.
  long long low = 0, high = 0;             ///< Limits; of a sequence, of how many.
  int scale = 0;                           ///< The decimals of decimals, whose limits are without the point.
  std::wstring text = {};                  ///< A country, a letter, a form; of a part, its path.
  std::vector<std::wstring> choices = {};  ///< Of pick.
  std::vector<unsigned> weights = {};      ///< As many.
  xvar value = {};                         ///< Of what is fixed.
  std::vector<recipe_step> inside = {};    ///< The entries of a record; of a sequence, the one of each.
};

}  // namespace detail

namespace {

using detail::recipe_step;
using cell = ::ruvo::detail::cell;

constexpr std::size_t most_levels = 100;
constexpr long long most_elements = 1000000;  // of one list
constexpr std::size_t most_digits = 18;       // of a number

// --- what can be made

/// What stands between the brackets.
enum class takes {
  nothing,
  integers,
  cents,
  decimals,
  days,
  count,
  percent,
  country,
  letter,
  brand,
  sex,
  form,
  choices
};

struct maker_row {
  std::wstring_view name;
  takes what;
  bool can_lack;  // the brackets
  recipe_step::maker make;
};

/// A drawing operation without arguments.
template <auto Operation>
xvar plain(generator& from, const recipe_step&) {
  return xvar((from.*Operation)());
}

xvar make_name(generator& from, const recipe_step& step) {
  return step.text.empty() ? from.name() : from.name(static_cast<sex>(step.low));
}
xvar make_full_name(generator& from, const recipe_step& step) {
  return step.text.empty() ? from.full_name() : from.full_name(static_cast<sex>(step.low));
}
xvar make_person(generator& from, const recipe_step& step) {
  return step.text.empty() ? xvar(from.person()) : xvar(from.person(static_cast<sex>(step.low)));
}
xvar make_company(generator& from, const recipe_step&) { return xvar(from.company()); }
xvar make_official_company(generator& from, const recipe_step&) { return xvar(from.company(rule::official)); }
xvar make_address(generator& from, const recipe_step&) { return xvar(from.address()); }
xvar make_cif(generator& from, const recipe_step& step) {
  return step.text.empty() ? from.cif() : from.cif(step.text[0], rule::official);
}
xvar make_iban(generator& from, const recipe_step& step) {
  return step.text.empty() ? from.iban() : from.iban(step.text);
}
xvar make_card(generator& from, const recipe_step& step) {
  return step.text.empty() ? from.card() : from.card(static_cast<brand>(step.low));
}
xvar make_integer(generator& from, const recipe_step& step) { return from.integer(step.low, step.high); }
xvar make_amount(generator& from, const recipe_step& step) {
  return static_cast<double>(from.amount(step.low, step.high)) / 100;
}
xvar make_decimal(generator& from, const recipe_step& step) {
  return ruvo::decimal(from.integer(step.low, step.high), step.scale);
}
xvar make_chance(generator& from, const recipe_step& step) {
  return from.chance(static_cast<unsigned>(step.low));
}
xvar make_date(generator& from, const recipe_step& step) {
  return date_of(from.integer(step.low, step.high));
}
xvar make_words(generator& from, const recipe_step& step) {
  return from.words(static_cast<std::size_t>(step.low));
}
xvar make_lorem(generator& from, const recipe_step& step) {
  return from.lorem(static_cast<std::size_t>(step.low));
}
xvar make_pattern(generator& from, const recipe_step& step) { return from.pattern(step.text); }
xvar make_choice(generator& from, const recipe_step& step) { return from.pick(step.choices, step.weights); }

constexpr maker_row makers[] = {
    {L"name", takes::sex, true, make_name},
    {L"surname", takes::nothing, true, plain<&generator::surname>},
    {L"full_name", takes::sex, true, make_full_name},
    {L"person", takes::sex, true, make_person},
    {L"company", takes::nothing, true, make_company},
    {L"official_company", takes::nothing, true, make_official_company},
    {L"address", takes::nothing, true, make_address},
    {L"municipality", takes::nothing, true, plain<&generator::municipality>},
    {L"province", takes::nothing, true, plain<&generator::province>},
    {L"postal_code", takes::nothing, true, plain<&generator::postal_code>},
    {L"street", takes::nothing, true, plain<&generator::street>},
    {L"dni", takes::nothing, true, plain<&generator::dni>},
    {L"nie", takes::nothing, true, plain<&generator::nie>},
    {L"nif", takes::nothing, true, plain<&generator::nif>},
    {L"cif", takes::letter, true, make_cif},
    {L"iban", takes::country, true, make_iban},
    {L"ccc", takes::nothing, true, plain<&generator::ccc>},
    {L"card", takes::brand, true, make_card},
    {L"phone", takes::nothing, true, plain<&generator::phone>},
    {L"mobile", takes::nothing, true, plain<&generator::mobile>},
    {L"mail", takes::nothing, true, plain<&generator::mail>},
    {L"integer", takes::integers, false, make_integer},
    {L"amount", takes::cents, false, make_amount},
    {L"decimal", takes::decimals, false, make_decimal},
    {L"chance", takes::percent, false, make_chance},
    {L"date", takes::days, false, make_date},
    {L"word", takes::nothing, true, plain<&generator::word>},
    {L"words", takes::count, false, make_words},
    {L"sentence", takes::nothing, true, plain<&generator::sentence>},
    {L"paragraph", takes::nothing, true, plain<&generator::paragraph>},
    {L"lorem", takes::count, false, make_lorem},
    {L"pattern", takes::form, false, make_pattern},
    {L"pick", takes::choices, false, make_choice},
};

constexpr std::wstring_view brand_names[] = {L"visa",        L"mastercard", L"american_express",
                                             L"diners_club", L"discover",   L"jcb"};
constexpr std::wstring_view sex_names[] = {L"mujer", L"hombre"};

// --- reading what stands between brackets

std::wstring_view trimmed(std::wstring_view text) {
  while (!text.empty() && texto::is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && texto::is_space(text.back())) text.remove_suffix(1);
  return text;
}

/// Digits with a sign or not, of which `decimals` may stand behind a point: as so many hundredths, tenths or
/// units. False for anything else, and beyond most_digits.
bool read_scaled(std::wstring_view text, std::size_t decimals, long long& out) {
  text = trimmed(text);
  const bool is_negative = !text.empty() && text[0] == L'-';
  if (is_negative) text.remove_prefix(1);
  const std::size_t point = std::min(text.find(L'.'), text.size());
  std::wstring digits(text.substr(0, point));
  std::wstring_view behind = text.substr(std::min(point + 1, text.size()));
  if (digits.empty() || behind.size() > decimals || (point < text.size() && behind.empty())) return false;
  digits.append(behind).append(decimals - behind.size(), L'0');
  if (digits.size() > most_digits || !std::all_of(digits.begin(), digits.end(), texto::is_digit))
    return false;
  out = 0;
  for (const wchar_t c : digits) out = out * 10 + (c - L'0');
  if (is_negative) out = -out;
  return true;
}

/// A day as yyyy-mm-dd, as days since 1970.
bool read_day(std::wstring_view text, long long& out) {
  const std::wstring day(trimmed(text));
  if (day.size() != 10 || day[4] != L'-' || day[7] != L'-') return false;
  long long year = 0, month = 0, of_month = 0;
  if (!read_scaled(day.substr(0, 4), 0, year) || !read_scaled(day.substr(5, 2), 0, month) ||
      !read_scaled(day.substr(8), 0, of_month))
    return false;
  const ruvo::date found(static_cast<long>(year), static_cast<long>(month), static_cast<long>(of_month));
  if (found.get_month() != month || found.get_day() != of_month) return false;  // 30 February
  out = days_of(found);
  return true;
}

/// Two values with a comma between, the lower one first.
template <class Read>
bool read_limits(std::wstring_view text, recipe_step& step, Read read) {
  const std::size_t comma = text.find(L',');
  return comma != text.npos && read(text.substr(0, comma), step.low) &&
         read(text.substr(comma + 1), step.high) && step.low <= step.high;
}

/// Two numbers, with as many decimals as the one that has more.
bool read_decimals(std::wstring_view text, recipe_step& step) {
  std::size_t scale = 0;
  for (std::wstring_view rest = text; !rest.empty();) {
    const std::wstring_view limit = trimmed(rest.substr(0, rest.find(L',')));
    const std::size_t point = std::min(limit.find(L'.'), limit.size());
    scale = std::max(scale, limit.size() - std::min(point + 1, limit.size()));
    rest.remove_prefix(std::min(rest.find(L','), rest.size() - 1) + 1);
  }
  step.scale = static_cast<int>(scale);
  return scale <= most_digits && read_limits(text, step, [scale](std::wstring_view part, long long& out) {
           return read_scaled(part, scale, out);
         });
}

/// One of the names, as its number.
template <std::size_t Count>
bool read_name(std::wstring_view text, const std::wstring_view (&names)[Count], recipe_step& step) {
  const auto found = std::find(std::begin(names), std::end(names), text);
  step.low = found - std::begin(names);
  step.text = text;
  return found != std::end(names);
}

/// "alta*9,baja": texts, each with a weight or without, which is 1.
bool read_choices(std::wstring_view text, recipe_step& step) {
  for (bool more = true; more;) {
    const std::size_t comma = text.find(L',');
    std::wstring_view choice = trimmed(text.substr(0, comma));
    const std::size_t star = choice.rfind(L'*');
    long long weight = 1;
    if (star != choice.npos) {
      if (!read_scaled(choice.substr(star + 1), 0, weight) || weight < 0 || weight > 1000000) return false;
      choice = trimmed(choice.substr(0, star));
    }
    step.choices.emplace_back(choice);
    step.weights.push_back(static_cast<unsigned>(weight));
    more = comma != text.npos;
    if (more) text.remove_prefix(comma + 1);
  }
  return std::any_of(step.weights.begin(), step.weights.end(), [](unsigned weight) { return weight > 0; });
}

/// Whether `text` is what the maker takes.
bool read_arguments(takes what, std::wstring_view text, recipe_step& step) {
  const auto whole = [](std::wstring_view part, long long& out) { return read_scaled(part, 0, out); };
  switch (what) {
    case takes::nothing:
      return false;
    case takes::integers:
      return read_limits(text, step, whole);
    case takes::cents:
      return read_limits(text, step,
                         [](std::wstring_view part, long long& out) { return read_scaled(part, 2, out); });
    case takes::decimals:
      return read_decimals(text, step);
    case takes::days:
      return read_limits(text, step, read_day);
    case takes::count:
      return whole(text, step.low) && step.low >= 0 && step.low <= most_elements;
    case takes::percent:
      return whole(text, step.low) && step.low >= 0 && step.low <= 100;
    case takes::country:
      step.text = text;
      return !identifiers::account_form(text).empty();
    case takes::letter:
      step.text = text;
      return text.size() == 1 && identifiers::control_of_company(text[0], 0) != 0;
    case takes::brand:
      return read_name(text, brand_names, step);
    case takes::sex:
      return read_name(text, sex_names, step);
    case takes::form:
      step.text = text;
      return true;
    case takes::choices:
      return read_choices(text, step);
  }
  return false;
}

// --- reading a recipe

/// Reads steps; knows where it is.
class recipe_reader {
 public:
  recipe_step read_record(const bundle& form);

 private:
  recipe_step read_value(const xvar& value);
  recipe_step read_text(std::wstring_view text);
  recipe_step read_part(std::wstring_view whole, std::wstring_view path);
  recipe_step read_list(const list& form);
  [[noreturn]] void refuse(const std::wstring& why) const { throw exc::BadArgument(path_ + L": " + why); }

  std::wstring path_;
  std::size_t level_ = 0;
};

std::wstring quoted_form(std::wstring_view text) {
  constexpr std::size_t longest = 60;
  return std::wstring(L"«").append(text.substr(0, longest)).append(text.size() > longest ? L"...»" : L"»");
}

recipe_step recipe_reader::read_record(const bundle& form) {
  if (++level_ > most_levels) refuse(L"más de 100 niveles");
  recipe_step out;
  out.what = recipe_step::kind::record;
  out.inside.reserve(form.size());
  const std::size_t around = path_.size();
  for (std::size_t i = 0; i < form.size(); ++i) {
    const std::wstring& key = form.spelling(i);
    if (around > 0) path_ += L'.';
    path_ += key;
    out.inside.push_back(read_value(form[i]->second));
    out.inside.back().key = key;
    path_.resize(around);
  }
  --level_;
  return out;
}

recipe_step recipe_reader::read_value(const xvar& value) {
  if (cell::is_text(value)) return read_text(cell::text(value));
  if (value.instanceof (typeid(bundle))) return read_record(cell::as_bundle(value));
  if (value.instanceof (typeid(list))) return read_list(cell::as_list(value));
  recipe_step out;
  out.value = value;
  return out;
}

recipe_step recipe_reader::read_text(std::wstring_view text) {
  recipe_step out;
  if (!text.empty() && text[0] == L'=') {
    out.value = std::wstring(text.substr(1));
    return out;
  }
  text = trimmed(text);
  const std::size_t open = std::min(text.find(L'('), text.size());
  const std::wstring_view name = trimmed(text.substr(0, open));
  if (const std::size_t dot = name.find(L'.'); dot != name.npos && open == text.size())
    return read_part(name.substr(0, dot), name.substr(dot + 1));
  const auto row = std::find_if(std::begin(makers), std::end(makers),
                                [name](const maker_row& each) { return each.name == name; });
  if (row == std::end(makers))
    refuse(quoted_form(text) + L" no es un generador; un texto fijo empieza por «=»");
  const bool has_brackets = open < text.size();
  bool fits = has_brackets ? text.back() == L')' : row->can_lack;
  if (fits && has_brackets)
    fits = read_arguments(row->what, text.substr(open + 1, text.size() - open - 2), out);
  if (!fits) refuse(quoted_form(text) + L": los argumentos no son correctos");
  out.what = recipe_step::kind::made;
  out.make = row->make;
  return out;
}

recipe_step recipe_reader::read_part(std::wstring_view whole, std::wstring_view path) {
  recipe_step out;
  out.what = recipe_step::kind::part;
  out.text = path;
  constexpr std::wstring_view wholes[] = {L"person", L"company", L"official_company", L"address"};
  if (std::find(std::begin(wholes), std::end(wholes), whole) != std::end(wholes)) {
    const auto row = std::find_if(std::begin(makers), std::end(makers),
                                  [whole](const maker_row& each) { return each.name == whole; });
    out.make = row->make;
    generator sample(0);
    if (cell::as_bundle(out.make(sample, recipe_step())).has(out.text)) return out;
  }
  refuse(quoted_form(std::wstring(whole).append(L".").append(path)) + L" no existe");
}

recipe_step recipe_reader::read_list(const list& form) {
  if (++level_ > most_levels) refuse(L"más de 100 niveles");
  if (form.size() != 2) refuse(L"una lista lleva cuántos y qué, como [\"3..5\", \"word\"]");
  recipe_step out;
  out.what = recipe_step::kind::sequence;
  const std::wstring count = form[0].to_string();
  const std::size_t dots = std::min(count.find(L".."), count.size());
  const std::wstring_view last = dots < count.size() ? std::wstring_view(count).substr(dots + 2) : count;
  if (!read_scaled(std::wstring_view(count).substr(0, dots), 0, out.low) || !read_scaled(last, 0, out.high) ||
      out.low < 0 || out.low > out.high || out.high > most_elements)
    refuse(quoted_form(count) + L" no es un número de elementos");
  const std::size_t around = path_.size();
  path_ += L"[1]";
  out.inside.push_back(read_value(form[1]));
  path_.resize(around);
  --level_;
  return out;
}

// --- drawing

/// The bundles of which parts were taken, for one bundle that is drawn.
using wholes_drawn = std::vector<std::pair<recipe_step::maker, xvar>>;

bundle draw_record(generator& from, const recipe_step& step);

xvar draw_part(generator& from, const recipe_step& step, wholes_drawn& wholes) {
  auto found = std::find_if(wholes.begin(), wholes.end(),
                            [&step](const auto& each) { return each.first == step.make; });
  if (found == wholes.end()) found = wholes.emplace(wholes.end(), step.make, step.make(from, recipe_step()));
  return *cell::as_bundle(found->second).get_ptr(step.text);
}

xvar draw_value(generator& from, const recipe_step& step, wholes_drawn& wholes) {
  switch (step.what) {
    case recipe_step::kind::made:
      return step.make(from, step);
    case recipe_step::kind::part:
      return draw_part(from, step, wholes);
    case recipe_step::kind::fixed:
      return step.value;
    case recipe_step::kind::record:
      return draw_record(from, step);
    case recipe_step::kind::sequence:
      break;
  }
  list out;
  const auto count = static_cast<unsigned long>(from.integer(step.low, step.high));
  out.reserve(count);
  for (unsigned long i = 0; i < count; ++i) {
    wholes_drawn own;
    out.push_back(draw_value(from, step.inside[0], own));
  }
  return out;
}

bundle draw_record(generator& from, const recipe_step& step) {
  bundle out;
  out.reserve(step.inside.size());
  wholes_drawn wholes;
  for (const recipe_step& each : step.inside) out[each.key] = draw_value(from, each, wholes);
  return out;
}

}  // namespace

recipe::recipe(const bundle& form)
    : root_(std::make_shared<const recipe_step>(recipe_reader().read_record(form))) {}
recipe::recipe(const recipe& other) noexcept = default;
recipe& recipe::operator=(const recipe& other) noexcept = default;
recipe::~recipe() = default;

bundle recipe::make(generator& from) const { return draw_record(from, *root_); }

list recipe::make(generator& from, std::size_t count) const {
  list out;
  out.reserve(count);
  for (; count > 0; --count) out.push_back(draw_record(from, *root_));
  return out;
}

}  // namespace ruvo::rdn
