// Everything that a host or a user can have the plug-in do, each thing on a road of its own: the state it
// begins in, and the act. The sweep of failures walks them all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/plugin/desk.h"

namespace banddesk::test {

struct Road {
  std::string name;
  std::function<void(Desk&)> prepare;
  std::function<void(Desk&)> act;
  bool endsAtEvents;  // the failure stops in a handler; else it reaches the caller
};

// The bins of the sweep: four rows in two dyes.
Script sweptScript();
const std::vector<Road>& roads();

}  // namespace banddesk::test
