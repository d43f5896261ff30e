// What the guide and the manual pages say against the programs themselves: the commands run as told, and the
// manual names the options that there are.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <sys/wait.h>

#include "tests/support/temp_folder.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = BANDDESK_SOURCE_DIR;
const fs::path kPrograms = BANDDESK_PROGRAMS;

std::string readFile(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class Shell {
 public:
  // In a folder of its own, which is the user's home, with the programs on the path; both streams.
  std::pair<int, std::string> run(const std::string& command) const {
    const fs::path out = folder_.path() / ".output";
    const std::string line =
        "cd '" + folder_.path().string() + "' && export PATH='" + kPrograms.string() +
        "':\"$PATH\" HOME=\"$PWD\" XDG_CONFIG_HOME=\"$PWD/.config\" XDG_RUNTIME_DIR=\"$PWD\"" +
        " QT_QPA_PLATFORM=offscreen && { " + command + "\n} >'" + out.string() + "' 2>&1 </dev/null";
    const int raw = std::system(line.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(out)};
  }

 private:
  TempFolder folder_;
};

struct Told {
  std::string command;
  std::vector<std::string> output;  // lines that it prints, others may stand between them
};

// The blocks of a page that are marked as a console's.
std::vector<Told> commandsOf(const std::string& page) {
  std::vector<Told> commands;
  bool isConsole = false;
  for (const std::string& line : linesOf(page)) {
    if (line.starts_with("```")) {
      isConsole = line == "```console";
    } else if (isConsole && !commands.empty() && commands.back().command.ends_with('\\')) {
      commands.back().command += '\n' + line;
    } else if (isConsole && line.starts_with("$ ")) {
      commands.push_back({line.substr(2), {}});
    } else if (isConsole && !line.empty() && !commands.empty()) {
      commands.back().output.push_back(line);
    }
  }
  return commands;
}

TEST(Guide, EachCommandRunsAsToldInTheOrderOfItsPage) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(kSource / "docs/guide")) {
    if (entry.path().extension() != ".md") continue;
    const Shell shell;
    for (const Told& told : commandsOf(readFile(entry.path()))) {
      ++count;
      SCOPED_TRACE(entry.path().filename().string() + ": " + told.command);
      const auto [status, output] = shell.run(told.command);
      EXPECT_EQ(status, 0) << output;
      std::size_t at = 0;
      for (const std::string& line : told.output) {
        const std::size_t found = output.find(line, at);
        EXPECT_NE(found, std::string::npos) << "does not print: " << line << "\nbut:\n" << output;
        if (found != std::string::npos) at = found + line.size();
      }
    }
  }
  EXPECT_GT(count, 8U);
}

using Options = std::set<std::string>;

Options optionsIn(const std::string& text) {
  static const std::regex option(R"((^|[^\w-])(--[a-z][a-z-]*))");
  Options found;
  for (std::sregex_iterator each(text.begin(), text.end(), option), end; each != end; ++each)
    found.insert((*each)[2]);
  return found;
}

// A page of the manual by its subsections, one a command; what stands before them has the key "".
std::map<std::string, std::string> manualOf(const std::string& program) {
  std::map<std::string, std::string> sections;
  std::string section;
  for (std::string line : linesOf(readFile(kSource / "packaging/man" / (program + ".1")))) {
    line = std::regex_replace(line, std::regex(R"(\\-)"), "-");
    if (line.starts_with(".SH EX")) break;  // examples are no list of options
    if (line.starts_with(".SS ")) section = line.substr(4, line.find(' ', 4) - 4);
    sections[section] += line + '\n';
  }
  return sections;
}

// The list alone; the examples below it name options of other commands.
Options optionsOfHelp(const Shell& shell, const std::string& command) {
  const auto [status, help] = shell.run(command + " --help");
  EXPECT_EQ(status, 0) << help;
  Options options = optionsIn(help.substr(0, help.find("\nExample")));
  options.erase("--help");
  return options;
}

TEST(Manual, NamesForEachCommandTheOptionsThatItHasAndNoOthers) {
  const Shell shell;
  const auto manual = manualOf("banddesk");
  const std::string help = shell.run("banddesk --help").second;
  std::set<std::string> commands;
  for (const std::string& line : linesOf(help.substr(help.find("Subcommands:") + 12))) {
    std::smatch name;
    if (std::regex_search(line, name, std::regex("^  ([a-z]+) "))) commands.insert(name[1]);
  }
  ASSERT_GE(commands.size(), 9U) << help;
  for (const auto& [section, text] : manual) {
    EXPECT_TRUE(section.empty() || commands.contains(section)) << "there is no command " << section;
  }
  for (const std::string& command : commands) {
    ASSERT_TRUE(manual.contains(command)) << command;
    EXPECT_EQ(optionsIn(manual.at(command)), optionsOfHelp(shell, "banddesk " + command)) << command;
  }
  EXPECT_THAT(optionsIn(manual.at("")), testing::IsSupersetOf(optionsIn("--help --version")));
  EXPECT_THAT(optionsIn(manualOf("banddesk-desktop").at("")),
              testing::IsSupersetOf(optionsOfHelp(shell, "banddesk-desktop")));
}

}  // namespace
}  // namespace banddesk::test
