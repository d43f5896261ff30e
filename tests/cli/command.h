// Runs the command line as a user does: a process, its output, its exit status.
#pragma once

#include <string>
#include <vector>

namespace banddesk::test {

struct Outcome {
  int status = 0;
  std::string out;
  std::string err;
};

// `environment` is put before the command, such as "LC_ALL=C".
Outcome banddesk(const std::vector<std::string>& arguments, const std::string& environment = {});
// Another program by the shell.
Outcome shell(const std::string& command);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// A fresh folder of this test.
std::string folder();
// A file of the real tables; empty where they are not at hand.
std::string realTable(const std::string& name);

}  // namespace banddesk::test
