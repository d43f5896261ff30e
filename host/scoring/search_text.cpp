#include <charconv>
#include <cmath>

#include "host/scoring/search.h"

namespace banddesk::host::scoring {
namespace {

constexpr double kMostValues = 10'000;

double numberIn(std::string_view text, std::string_view all) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) || value < 0)
    throw std::invalid_argument("'" + std::string(all) + "': '" + std::string(text) +
                                "' is no number of 0 or more");
  return value;
}

std::vector<double> numbersIn(std::string_view text, char separator) {
  std::vector<double> numbers;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    numbers.push_back(numberIn(text.substr(begin, end - begin), text));
    begin = end + 1;
  }
  return numbers;
}

}  // namespace

std::vector<double> parseValues(std::string_view text) {
  if (text.find(':') == std::string_view::npos) return numbersIn(text, ',');
  const std::vector<double> parts = numbersIn(text, ':');
  if (parts.size() != 3 || parts[2] <= 0 || parts[1] < parts[0])
    throw std::invalid_argument("'" + std::string(text) + "' is no from:to:step");
  const double steps = std::floor((parts[1] - parts[0]) / parts[2] + 1e-9);
  if (steps >= kMostValues)
    throw std::invalid_argument("'" + std::string(text) + "' has more than 10,000 values");
  std::vector<double> values;
  for (int i = 0; i <= static_cast<int>(steps); ++i)
    values.push_back(std::round((parts[0] + i * parts[2]) * 1e6) / 1e6);  // decimals as they are typed
  return values;
}

std::vector<Rule> parseRules(std::string_view text) {
  const std::size_t open = text.find('{');
  const std::size_t close = text.find('}');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open)
    return {parseRule(text)};
  std::vector<Rule> rules;
  for (const double value : parseValues(text.substr(open + 1, close - open - 1))) {
    Rule rule = parseRule(std::string(text.substr(0, open)) + "0" + std::string(text.substr(close + 1)));
    rule.limit = value;
    rules.push_back(rule);
  }
  return rules;
}

}  // namespace banddesk::host::scoring
