#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "host/scoring/rules.h"

namespace banddesk::host::scoring {
namespace {

enum class Percent { Never, Allowed, Needed };

struct Word {
  std::string_view text;
  Quantity quantity;
  Percent percent;
};

constexpr std::array<Word, 7> kWords = {{{"height", Quantity::Height, Percent::Never},
                                         {"samples", Quantity::Samples, Percent::Never},
                                         {"width", Quantity::Width, Percent::Never},
                                         {"size", Quantity::Size, Percent::Never},
                                         {"disagree", Quantity::Disagree, Percent::Needed},
                                         {"blank", Quantity::Blank, Percent::Never},
                                         {"fragments", Quantity::Fragments, Percent::Allowed}}};

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  Rule read() {
    const Word& word = readWord();
    Rule rule{
        .quantity = word.quantity, .less = readLess(), .limit = readLimit(), .percent = readPercent(word)};
    skipBlanks();
    if (at_ < text_.size()) fail("nothing more was expected");
    return rule;
  }

 private:
  [[noreturn]] void fail(const std::string& message) const { throw RuleError(text_, at_ + 1, message); }

  void skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }

  char next() {
    skipBlanks();
    return at_ < text_.size() ? text_[at_] : '\0';
  }

  const Word& readWord() {
    skipBlanks();
    std::size_t end = at_;
    while (end < text_.size() && text_[end] >= 'a' && text_[end] <= 'z') ++end;
    const std::string_view found = text_.substr(at_, end - at_);
    for (const Word& word : kWords) {
      if (word.text != found) continue;
      at_ = end;
      return word;
    }
    fail("height, samples, width, size, disagree, blank or fragments was expected");
  }

  bool readLess() {
    const char sign = next();
    if (sign != '<' && sign != '>') fail("< or > was expected");
    ++at_;
    return sign == '<';
  }

  double readLimit() {
    skipBlanks();
    double limit = 0;
    const char* begin = text_.data() + at_;
    const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), limit);
    if (error != std::errc() || !std::isfinite(limit) || std::signbit(limit)) {
      fail("a number of 0 or more was expected");
    }
    at_ += static_cast<std::size_t>(end - begin);
    return limit;
  }

  bool readPercent(const Word& word) {
    const bool percent = next() == '%';
    if (percent && word.percent == Percent::Never) fail("no percent sign was expected");
    if (!percent && word.percent == Percent::Needed) fail("a percent sign was expected");
    if (percent) ++at_;
    return percent;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

RuleError::RuleError(std::string_view rule, std::size_t at, const std::string& message)
    : std::invalid_argument("rule '" + std::string(rule) + "', character " + std::to_string(at) + ": " +
                            message),
      character(at) {}

Rule parseRule(std::string_view text) { return Reader(text).read(); }

std::string ruleText(const Rule& rule) {
  std::string text;
  for (const Word& word : kWords) {
    if (word.quantity == rule.quantity) text = word.text;
  }
  std::array<char, 32> number{};
  const auto end = std::to_chars(number.data(), number.data() + number.size(), rule.limit).ptr;
  text += rule.less ? '<' : '>';
  text.append(number.data(), end);
  if (rule.percent) text += '%';
  return text;
}

}  // namespace banddesk::host::scoring
