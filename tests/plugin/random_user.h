// A user who does anything at all on the results page: clicks, types, drags, takes menu items, saves, closes
// and opens again. After each act the page must be in order. Who chooses the acts is told from outside.
#pragma once

#include <functional>
#include <string>

#include "tests/plugin/desk.h"

namespace banddesk::test {

// The next choice: a number from 0 to `most`.
using UpTo = std::function<int(int most)>;

// Seven samples of three dyes, with bins that all samples have, samples without a bin, and a well and time
// stamp in a name.
std::vector<host::NewResult> smallPopulation();

class RandomUser {
 public:
  // Whatever is exported goes to the file `output`. The desk's study must be open, with one analysis at
  // least.
  RandomUser(Desk& desk, UpTo upTo, std::string output);
  ~RandomUser();

  void act();
  // The last act in a few words.
  const std::string& said() const { return said_; }
  // Raises std::logic_error if the page is not in order.
  void check();

 private:
  void toggle();
  void number();
  void mouse();
  void menu();
  void drag();
  void select();
  void study();
  void page();
  void checkPlaces();
  void checkRows();
  void checkColumns();
  bool isGrey(std::int32_t row, std::int32_t col);
  std::int32_t row() { return pick(Axis::Rows); }
  std::int32_t col() { return pick(Axis::Columns); }
  std::int32_t pick(Axis axis);

  Desk& desk_;
  UpTo upTo_;
  std::string output_;
  std::string said_;
  host::GridControl* grid_ = nullptr;  // that of the page in hand, while it is checked
  bool isTransposed_ = false;
  Connection beeps_;
  bool refused_ = false;  // an analysis was, so the table may lag behind until the page opens again
};

}  // namespace banddesk::test
