// Rows written and read by a list of their fields: a callable that hands each field with its column's name to
// an action, so that one list serves both ways. For the store's own files.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/runs/run_file.h"
#include "host/store/sqlite.h"

namespace banddesk::host::rows {

template <class Row, class Fields>
std::string namesOf(Fields fields) {
  std::string names;
  const Row row{};
  fields(row,
         [&](const char* name, const auto&) { names += (names.empty() ? "" : ", ") + std::string(name); });
  return names;
}

// Texts with several parts: lines, and numbers between blanks.
inline std::string joined(const std::vector<std::string>& lines) {
  return fmt::format("{}", fmt::join(lines, "\n"));
}
template <class Numbers>
std::string joined(const Numbers& numbers) {
  return fmt::format("{}", fmt::join(numbers, " "));
}

inline std::vector<std::string> partsOf(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

inline std::vector<double> numbersOf(const sqlite::Database& database, std::string_view text) {
  std::vector<double> numbers;
  for (const std::string& part : partsOf(text, ' ')) {
    double& number = numbers.emplace_back();
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    if (error != std::errc() || end != part.data() + part.size())
      database.failDamaged(fmt::format("\"{}\" is no number", part));
  }
  return numbers;
}

// The writing of a row: its fields are bound from the place that follows.
class RowWriter {
 public:
  RowWriter(sqlite::Statement& statement, int place) : statement_(statement), place_(place) {}

  void operator()(const char*, const auto& value) {
    texts_.reserve(kMostTexts);
    put(value);
  }

 private:
  static constexpr std::size_t kMostTexts = 32;  // bound texts must stay where they are

  void put(const std::string& text) { statement_.bind(++place_, std::string_view(text)); }
  void put(double value) { statement_.bind(++place_, std::isnan(value) ? 0.0 : value); }
  void put(bool value) { statement_.bind(++place_, value); }
  void put(int value) { statement_.bind(++place_, std::int32_t{value}); }
  void put(char letter) { keep(std::string(1, letter)); }
  template <class Enum>
  void put(Enum value) requires std::is_enum_v<Enum> {
    put(static_cast<int>(value));
  }
  template <class Value>
  void put(const std::optional<Value>& value) {
    value ? put(*value) : statement_.bindNull(++place_);
  }
  template <class List>
  void put(const List& list) requires requires {
    list.begin();
  }
  { keep(joined(list)); }

  void keep(std::string text) {
    statement_.bind(++place_, std::string_view(texts_.emplace_back(std::move(text))));
  }

  sqlite::Statement& statement_;
  int place_;
  std::vector<std::string> texts_;
};

class RowReader {
 public:
  RowReader(const sqlite::Database& database, const sqlite::Statement& row, int place)
      : database_(database), row_(row), place_(place) {}

  void operator()(const char*, auto& value) { take(value); }

 private:
  static constexpr int kLastOfEnum = 2;  // none of them has more than three values

  void take(std::string& text) { text = row_.text(place_++); }
  void take(double& value) { value = row_.real(place_++); }
  void take(bool& value) { value = row_.number(place_++) != 0; }
  void take(int& value) { value = row_.integer<int>(place_++); }
  void take(char& letter) {
    const std::string_view text = row_.text(place_++);
    letter = text.empty() ? '-' : text.front();
  }
  template <class Enum>
  void take(Enum& value) requires std::is_enum_v<Enum> {
    const int number = row_.integer<int>(place_++);
    if (number < 0 || number > kLastOfEnum)
      database_.failDamaged(fmt::format("a choice is none of those there are ({})", number));
    value = static_cast<Enum>(number);
  }
  template <class Value>
  void take(std::optional<Value>& value) {
    if (row_.isNull(place_)) {
      ++place_;
    } else {
      take(value.emplace());
    }
  }
  void take(std::vector<std::string>& lines) { lines = partsOf(row_.text(place_++), '\n'); }
  void take(std::vector<double>& numbers) { numbers = numbersOf(database_, row_.text(place_++)); }
  void take(std::array<double, runs::kMostDyes>& numbers) {
    const auto read = numbersOf(database_, row_.text(place_++));
    if (read.size() != numbers.size()) database_.failDamaged("a list of heights has another length");
    std::ranges::copy(read, numbers.begin());
  }

  const sqlite::Database& database_;
  const sqlite::Statement& row_;
  int place_;
};

// INSERT with so many columns before those of the list.
template <class Row, class Fields>
sqlite::Statement inserting(const sqlite::Database& database, const char* table, const char* before,
                            Fields fields) {
  const std::string names = fmt::format("{}{}", before, namesOf<Row>(fields));
  std::string marks = "?";
  for (const char c : names)
    if (c == ',') marks += ", ?";
  return database.prepare(fmt::format("INSERT INTO {}({}) VALUES({})", table, names, marks));
}

}  // namespace banddesk::host::rows
