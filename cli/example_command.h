// `banddesk example`: the whole road on a study that the program simulates itself.
#pragma once

#include <cstdint>
#include <filesystem>

namespace CLI {
class App;
}

namespace banddesk::cli {

struct ExampleArguments {
  std::filesystem::path out = "out/example";
  std::uint64_t seed = 1;
};

CLI::App& addExampleCommand(CLI::App& app, ExampleArguments& arguments);
void runExample(const ExampleArguments& arguments);

}  // namespace banddesk::cli
