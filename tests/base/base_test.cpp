// Numbers and texts as the whole system reads and writes them, collections, events and properties.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "plugin/base/collection.h"
#include "plugin/base/event.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/ui/control.h"

namespace banddesk {
namespace {

TEST(Numbers, ReadTheLeadingNumberOrTheWholeText) {
  struct Case {
    const char* text;
    double leading;
    bool isWhole;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const Case& c : {Case{"12", 12, true}, Case{"5.", 5, true}, Case{"1e", 1, false},
                        Case{"1e+x", 1, false}, Case{"1abc", 1, false}, Case{"abc", 0, false},
                        Case{"", 0, false}, Case{"-", 0, false}, Case{".", 0, false}, Case{"1,000", 1, false},
                        Case{"&HFF", 0, false}, Case{"0x10", 0, false}, Case{"1e999", kInfinity, true},
                        Case{"-1e999", -kInfinity, true}, Case{"1e-999", 0, true}, Case{"nan", 0, false}}) {
    EXPECT_EQ(leadingNumber(c.text), c.leading) << c.text;
    EXPECT_EQ(isNumeric(c.text), c.isWhole) << c.text;
  }
  EXPECT_EQ(leadingNumber("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(strictNumber("1,5", ','), 1.5);
  EXPECT_THROW(strictNumber("1.5", ','), Error);
}

TEST(Numbers, RoundTiesToEvenAndRefuseWhatDoesNotFit) {
  for (const auto& [from, to] :
       {std::pair(122.5, 122), {123.5, 124}, {-0.5, 0}, {-1.5, -2}, {2147483647.4, 2147483647}}) {
    EXPECT_EQ(roundToLong(from), to);
  }
  for (const double bad : {2147483647.5, -2147483649.0, std::nan(""), HUGE_VAL})
    EXPECT_THROW(roundToLong(bad), Error);
}

TEST(Numbers, AreWrittenShortOrWithTwoDecimals) {
  for (const auto& [value, text] : {std::pair(100.25, "100.25"),
                                    {1e15, "1E+15"},
                                    {123456789012345.0, "123456789012345"},
                                    {0.00001, "1E-05"},
                                    {1.0 / 3, "0.333333333333333"},
                                    {-0.0, "0"},
                                    {5.0, "5"}}) {
    EXPECT_EQ(generalText(value), text);
  }
  for (const auto& [value, text] : {std::pair(1.125, "1.13"),
                                    {1.005, "1.01"},
                                    {0.05, "0.05"},
                                    {-1.125, "-1.13"},
                                    {10.0, "10.00"},
                                    {1234.5, "1234.50"}}) {
    EXPECT_EQ(twoDecimals(value), text);
  }
}

TEST(Text, CountsCharactersAndIgnoresCase) {
  EXPECT_EQ(characterCount("aé€😀"), 4U);
  EXPECT_EQ(characterCount("\xFF\xC3"), 2U);
  EXPECT_EQ(trim("  a b "), "a b");
  EXPECT_EQ(trim("\ta "), "\ta");
  for (const auto& [a, b] : {std::pair("ÄÖÜ", "äöü"), {"ŁÓDŹ", "łódź"}, {"ΑΣ", "ας"}, {"ЖЯ", "жя"}}) {
    EXPECT_EQ(equalsIgnoringCase(a, b), std::string(a) != "ΑΣ") << a;
  }
  EXPECT_FALSE(equalsIgnoringCase("×", "÷"));
  EXPECT_EQ(replaceAll("a b  c", " ", "_"), "a_b__c");
}

TEST(Collections, IgnoreCaseOfKeysAndDictionariesDoNot) {
  Collection<int> plain;
  plain.Add(1, "Key");
  plain.Add(2);
  plain.Add(3, "-17");
  EXPECT_EQ(plain.Item("KEY"), 1);
  EXPECT_EQ(plain.Item(2), 2);
  try {
    plain.Add(4, "kEy");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), ErrorNumber::DuplicateKey);
  }
  plain.Remove(1);
  EXPECT_FALSE(plain.holdsKey("key"));
  EXPECT_EQ(plain.Item("-17"), 3);
  EXPECT_THROW(plain.Item(3), Error);

  Dictionary<int> exact;
  exact.Add("a", 1);
  exact.Add("A", 2);
  exact.Remove("a");
  EXPECT_EQ(exact.Item("A"), 2);
  EXPECT_THROW(exact.Add("A", 3), Error);
}

TEST(Events, SurviveListenersThatLeaveJoinOrEndThem) {
  auto event = std::make_unique<Event<int&>>();
  Connections kept;
  Connection second;
  int calls = 0;
  kept.push_back(event->connect([&](int&) {
    second.disconnect();
    kept.push_back(event->connect([&](int& sum) { sum += 100; }));
    event.reset();
  }));
  second = event->connect([&](int&) { ++calls; });
  kept.push_back(event->connect([&](int& sum) { sum += 1; }));
  int sum = 0;
  event->raise(sum);
  EXPECT_EQ(sum, 1);
  EXPECT_EQ(calls, 0);
}

TEST(Controls, RaiseTheirEventForPutsThatChangeSomething) {
  ui::CheckBox box("box", "B");
  int clicks = 0;
  const auto connection = box.Click.connect([&] { ++clicks; });
  box.Value = 1;
  box.Value = 1;
  box.click();
  EXPECT_EQ(clicks, 2);

  ui::OptionButton a("a", "A"), b("b", "B");
  a.joinGroup({&a, &b});
  b.joinGroup({&a, &b});
  std::string heard;
  const auto onA = a.Click.connect([&] { heard += "a"; });
  const auto onB = b.Click.connect([&] { heard += "b"; });
  a.Value = true;
  b.Value = true;
  EXPECT_EQ(heard, "ab");
  EXPECT_FALSE(a.Value);

  ui::ComboBox list("list");
  list.AddItem("only");
  EXPECT_THROW(list.ListIndex = 1, Error);
}

}  // namespace
}  // namespace banddesk
