// Outputs come whole or not at all, and together: each is written beside its place, and all take their places
// when the last one is complete. Until then nothing that stood there is touched, and an interruption waits.
#pragma once

#include <csignal>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <vector>

namespace banddesk::cli {

// Refuses outputs without a name, two under one name, and one that is an input, links considered.
void requireDistinct(const std::vector<std::filesystem::path>& outputs,
                     const std::vector<std::filesystem::path>& inputs);

class OutputFiles {
 public:
  using Write = std::function<void(const std::filesystem::path&)>;

  OutputFiles();
  // What was not committed is gone.
  ~OutputFiles();
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;

  // `write` makes the file it is handed; an Error names `path`. Devices and pipes are written at once.
  void write(const std::filesystem::path& path, const Write& write);
  // The same for what only an ordinary file can hold.
  void writeFile(const std::filesystem::path& path, const Write& write);
  void writeText(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write);
  void commit();

 private:
  struct Output {
    std::filesystem::path part;
    std::filesystem::path path;
  };

  std::vector<Output> outputs_;
  sigset_t signalsBefore_{};
};

// One text alone.
void writeWholeText(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write);

}  // namespace banddesk::cli
