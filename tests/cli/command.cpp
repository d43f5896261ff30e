#include "tests/cli/command.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/wait.h>

#include "tests/support/test_folder.h"

namespace banddesk::test {
namespace fs = std::filesystem;

Outcome shell(const std::string& command) {
  const std::string out = folder() + "/.out";
  const std::string err = folder() + "/.err";
  const int raw = std::system((command + " >'" + out + "' 2>'" + err + "' </dev/null").c_str());
  return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(out), readFile(err)};
}

Outcome banddesk(const Arguments& arguments, const std::string& environment) {
  std::string command = environment + " '" BANDDESK_BINARY "'";
  for (const std::string& argument : arguments) command += " '" + argument + "'";
  return shell(command);
}

Outcome ok(const Arguments& arguments, const std::string& environment) {
  const Outcome outcome = banddesk(arguments, environment);
  EXPECT_EQ(outcome.status, 0) << testing::PrintToString(arguments) << outcome.err;
  return outcome;
}

void expectError(const Arguments& arguments, const std::string& message, const std::string& environment) {
  const Outcome outcome = banddesk(arguments, environment);
  EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
  EXPECT_THAT(outcome.err, testing::HasSubstr(message));
  EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

std::string folder() { return testFolder().string(); }

std::string in(const std::string& name) { return folder() + "/" + name; }

std::string realTable(const std::string& name) {
  const char* named = std::getenv("BANDDESK_SHARED");
  const fs::path shared =
      named != nullptr ? fs::path(named) : fs::path(BANDDESK_SOURCE_DIR) / ".." / "shared";
  const fs::path path = shared / "data" / name;
  return fs::exists(path) ? path.string() : std::string();
}

}  // namespace banddesk::test
