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

using Arguments = std::vector<std::string>;

// `environment` is put before the command, such as "LC_ALL=C".
Outcome banddesk(const Arguments& arguments, const std::string& environment = {});
// The same, expected to succeed.
Outcome ok(const Arguments& arguments, const std::string& environment = {});
// The same, expected to fail with one line that says this.
void expectError(const Arguments& arguments, const std::string& message, const std::string& environment = {});
// Another program by the shell.
Outcome shell(const std::string& command);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// The folder of this test.
std::string folder();
std::string in(const std::string& name);
// A file of the real tables; empty where they are not at hand.
std::string realTable(const std::string& name);

}  // namespace banddesk::test
