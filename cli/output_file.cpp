#include "cli/output_file.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <unistd.h>

#include "plugin/base/error.h"
#include "plugin/base/text.h"

namespace banddesk::cli {
namespace fs = std::filesystem;
namespace {

[[noreturn]] void fail(const fs::path& path, const std::string& why) {
  raise(ErrorNumber::DeviceIo, "Output", fmt::format("{}: {}", path.string(), why));
}

// What a link leads to is replaced, never the link itself: it may be one of the system's.
fs::path placeOf(const fs::path& path) {
  std::error_code trouble;
  const fs::path target = fs::is_symlink(path, trouble) ? fs::canonical(path, trouble) : path;
  return target.empty() ? path : target;
}

bool isSpecial(const fs::path& place) {
  std::error_code trouble;
  return fs::exists(place, trouble) && !fs::is_regular_file(place, trouble);
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code trouble;
  if (fs::equivalent(a, b, trouble)) return !isSpecial(a);
  return fs::weakly_canonical(a, trouble) == fs::weakly_canonical(b, trouble) && !isSpecial(a);
}

void writeStream(const fs::path& target, const std::function<void(std::ostream&)>& write) {
  errno = 0;
  std::ofstream out(target, std::ios::binary);
  write(out);
  out.close();
  if (out) return;
  const int cause = errno;
  raise(ErrorNumber::DeviceIo, "Output",
        fmt::format("it cannot be written{}{}", cause != 0 ? ": " : "",
                    cause != 0 ? std::strerror(cause) : ""));
}

// Runs the writing; its error speaks of the output, not of the file that stands in for it.
void run(const OutputFiles::Write& write, const fs::path& target, const fs::path& path) {
  try {
    write(target);
  } catch (const Error& error) {
    fail(path, replaceAll(error.description(), target.string(), path.string()));
  }
}

}  // namespace

void requireDistinct(const std::vector<fs::path>& outputs, const std::vector<fs::path>& inputs) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (outputs[i].empty()) raise(ErrorNumber::InvalidArgument, "Output", "an output has no file name");
    for (const fs::path& input : inputs) {
      if (isSameFile(outputs[i], input)) fail(outputs[i], "it is read here and cannot be an output too");
    }
    for (std::size_t k = 0; k < i; ++k) {
      if (isSameFile(outputs[i], outputs[k])) fail(outputs[i], "two outputs have this name");
    }
  }
}

OutputFiles::OutputFiles() {
  sigset_t interruptions;
  sigemptyset(&interruptions);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&interruptions, signal);
  sigprocmask(SIG_BLOCK, &interruptions, &signalsBefore_);
}

OutputFiles::~OutputFiles() {
  std::error_code trouble;
  for (const Output& output : outputs_) fs::remove(output.part, trouble);
  sigprocmask(SIG_SETMASK, &signalsBefore_, nullptr);
}

void OutputFiles::write(const fs::path& path, const Write& write) {
  if (const fs::path place = placeOf(path); isSpecial(place) && !fs::is_directory(place)) {
    run(write, place, path);
  } else {
    writeFile(path, write);
  }
}

void OutputFiles::writeFile(const fs::path& path, const Write& write) {
  std::error_code trouble;
  const fs::path place = placeOf(path);
  if (fs::is_directory(place, trouble)) fail(path, "it is a folder");
  if (isSpecial(place)) fail(path, "it is no ordinary file");
  const fs::path folder = place.parent_path();
  if (!folder.empty() && !fs::is_directory(folder, trouble)) fail(path, "there is no such folder");
  const fs::path part = folder / fmt::format(".banddesk-{}-{}.part", ::getpid(), outputs_.size());
  outputs_.push_back({part, place});
  run(write, part, path);
  const fs::perms before = fs::status(place, trouble).permissions();
  if (fs::exists(place, trouble)) fs::permissions(part, before, trouble);
}

void OutputFiles::writeText(const fs::path& path, const std::function<void(std::ostream&)>& text) {
  write(path, [&](const fs::path& target) { writeStream(target, text); });
}

void OutputFiles::commit() {
  std::error_code trouble;
  for (const Output& output : outputs_) {
    fs::rename(output.part, output.path, trouble);
    if (trouble) fail(output.path, trouble.message());
  }
  outputs_.clear();
}

void writeWholeText(const fs::path& path, const std::function<void(std::ostream&)>& write) {
  OutputFiles files;
  files.writeText(path, write);
  files.commit();
}

}  // namespace banddesk::cli
