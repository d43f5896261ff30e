#include "host/history/step_log.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <unistd.h>
#include <utility>

#include "host/history/bytes.h"
#include "host/history/file_sync.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMark = "Banddesk steps 1\n";
constexpr std::size_t kHead = 12;  // of a frame: its length and the sum over its bytes
constexpr char kStep = 'S', kAnnouncement = 'A', kPosition = 'P';

std::uint64_t sumOf(std::string_view bytes) {
  std::uint64_t sum = 0xcbf29ce484222325U;
  for (const char byte : bytes) sum = (sum ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3U;
  return sum;
}

template <class Number>
void putNumber(std::string& bytes, Number value) {
  for (std::size_t i = 0; i < sizeof value; ++i) bytes += static_cast<char>(value >> (8 * i));
}

template <class Number>
Number numberAt(std::string_view bytes, std::size_t at) {
  Number value = 0;
  for (std::size_t i = 0; i < sizeof value; ++i)
    value |= static_cast<Number>(static_cast<Number>(static_cast<std::uint8_t>(bytes[at + i])) << (8 * i));
  return value;
}

std::string framed(std::string_view content) {
  std::string frame;
  putNumber(frame, static_cast<std::uint32_t>(content.size()));
  putNumber(frame, sumOf(content));
  return frame.append(content);
}

// The content of the frame that begins there; nothing where none does.
std::optional<std::string_view> frameAt(std::string_view bytes, std::size_t at) {
  if (bytes.size() - at < kHead) return std::nullopt;
  const auto length = numberAt<std::uint32_t>(bytes, at);
  if (length == 0 || length > bytes.size() - at - kHead) return std::nullopt;
  const std::string_view content = bytes.substr(at + kHead, length);
  if (sumOf(content) != numberAt<std::uint64_t>(bytes, at + 4)) return std::nullopt;
  return content;
}

[[noreturn]] void fail(const std::string& file, int cause) {
  raise(cause == ENOSPC || cause == EDQUOT ? ErrorNumber::DiskFull : ErrorNumber::PermissionDenied, "History",
        fmt::format("{}: {}", file, std::strerror(cause)));
}

[[noreturn]] void refuse(const std::string& file, const char* why) {
  raise(ErrorNumber::InvalidArgument, "History", fmt::format("{}: {}", file, why));
}

void writeAll(int descriptor, std::string_view bytes, const std::string& file) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(file, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string wholeOf(const std::string& file) {
  std::error_code trouble;
  if (!fs::exists(file, trouble))
    raise(ErrorNumber::PathNotFound, "History", file + ": there is no such file");
  if (!fs::is_regular_file(file, trouble)) refuse(file, "it is no ordinary file");
  std::ifstream in(file, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), {}};
  if (!in) fail(file, EIO);
  return bytes;
}

class LogReader {
 public:
  void take(std::string_view content) {
    ByteReader in(content.substr(1));
    read_.isAnnounced = content.front() == kAnnouncement;
    if (content.front() == kStep) takeStep(in);
    if (content.front() == kPosition) read_.position = in.number();
  }
  StepLogContent done() { return std::move(read_); }

 private:
  void takeStep(ByteReader& in) {
    Step step;
    in.field(step.label);
    in.field(step.time);
    for (std::size_t count = in.count(); count > 0; --count)
      parts_.push_back(std::make_shared<const std::string>(in.text()));
    step.state.record = part(in);
    step.state.analyses.resize(in.count());
    for (AnalysisState& analysis : step.state.analyses) {
      in.field(analysis.id);
      for (Part& each : analysis.stored) each = part(in);
      analysis.look = part(in);
    }
    read_.steps.push_back(std::move(step));
  }
  Part part(ByteReader& in) {
    const std::uint64_t number = in.number();
    if (number > parts_.size()) raise(ErrorNumber::Internal, "History", "a part of a step is missing");
    return number == 0 ? nullptr : parts_[number - 1];
  }

  StepLogContent read_;
  std::vector<Part> parts_;
};

}  // namespace

StepLog::StepLog(std::string file, const std::vector<Step>& steps, std::size_t position)
    : file_(std::move(file)) {
  std::string bytes(kMark);
  for (const Step& step : steps) bytes += frameOf(step);
  ByteWriter place;
  place.number(position);
  bytes += framed(kPosition + place.take());
  std::error_code trouble;
  if (fs::exists(file_, trouble) && !fs::is_regular_file(file_, trouble))
    refuse(file_, "it is no ordinary file");
  const std::string part = fmt::format("{}.{}.new", file_, ::getpid());
  descriptor_ = ::open(part.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor_ < 0) fail(file_, errno);
  try {
    writeAll(descriptor_, bytes, file_);
    if (std::rename(part.c_str(), file_.c_str()) != 0) fail(file_, errno);
    length_ = static_cast<std::int64_t>(bytes.size());
    sync_ = std::make_unique<FileSync>(descriptor_);
    sync_->wasWritten();
  } catch (...) {
    std::remove(part.c_str());
    ::close(descriptor_);
    throw;
  }
}

StepLog::~StepLog() {
  sync_.reset();
  ::close(descriptor_);
}

std::string StepLog::frameOf(const Step& step) {
  ByteWriter parts, numbers;
  std::uint64_t count = 0;
  const auto add = [&](const Part& part) {
    if (!part) return numbers.number(0);
    const auto [place, isNew] = written_.try_emplace(part, written_.size() + 1);
    if (isNew) parts.text(*part);
    count += isNew ? 1 : 0;
    numbers.number(place->second);
  };
  add(step.state.record);
  numbers.number(step.state.analyses.size());
  for (const AnalysisState& analysis : step.state.analyses) {
    numbers.field(analysis.id);
    for (const Part& part : analysis.stored) add(part);
    add(analysis.look);
  }
  ByteWriter head;
  head.field(step.label);
  head.field(step.time);
  head.number(count);
  return framed(kStep + head.take() + parts.take() + numbers.take());
}

void StepLog::append(const Step& step) {
  const auto before = written_;
  try {
    write(frameOf(step));
  } catch (...) {
    written_ = before;
    throw;
  }
}

void StepLog::announce() { write(framed(std::string(1, kAnnouncement))); }

void StepLog::write(const std::string& frame) {
  try {
    writeAll(descriptor_, frame, file_);
  } catch (...) {
    if (::ftruncate(descriptor_, length_) != 0) length_ = -1;  // what follows will not be read
    throw;
  }
  length_ += static_cast<std::int64_t>(frame.size());
  sync_->wasWritten();
}

// The end may be torn. A frame behind it that is whole tells that the middle is damaged.
StepLogContent readStepLog(const std::string& file) {
  const std::string bytes = wholeOf(file);
  if (!bytes.starts_with(kMark)) refuse(file, "it holds no steps of this program");
  LogReader reader;
  std::size_t at = kMark.size();
  try {
    while (const auto content = frameAt(bytes, at)) {
      reader.take(*content);
      at += kHead + content->size();
    }
  } catch (const Error&) {
    refuse(file, "it is damaged");
  }
  for (std::size_t behind = at + 1; behind < bytes.size(); ++behind) {
    if (frameAt(bytes, behind)) refuse(file, "it is damaged");
  }
  StepLogContent content = reader.done();
  if (content.steps.empty() || content.position >= content.steps.size()) refuse(file, "it is damaged");
  return content;
}

std::string setAside(const std::string& file) {
  const std::string stem = fmt::format("{}.{:%Y%m%d-%H%M%S}", file, fmt::localtime(std::time(nullptr)));
  std::string name = stem;
  for (int number = 2; fs::exists(name); ++number) name = fmt::format("{}.{}", stem, number);
  if (std::rename(file.c_str(), name.c_str()) != 0) fail(file, errno);
  return name;
}

}  // namespace banddesk::host
