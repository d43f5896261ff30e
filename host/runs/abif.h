// The container of an instrument's file (ABIF): its directory of tags and their values as numbers and texts.
// What the tags mean is for read_run.h. It reads from bytes that the caller holds for as long as it lives.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace banddesk::host::runs {

struct CalendarDate {
  int year = 0, month = 0, day = 0;
};

struct ClockTime {
  int hour = 0, minute = 0, second = 0;
};

struct AbifEntry {
  std::uint32_t number = 0;
  std::uint16_t type = 0;
  std::uint16_t elementSize = 0;
  std::uint32_t count = 0;
  std::uint32_t size = 0;    // bytes
  std::uint32_t offset = 0;  // of the values, from the beginning of the file
};

class Abif {
 public:
  /// Whether the bytes begin as such a file does.
  static bool isAbif(std::string_view bytes) { return bytes.starts_with("ABIF"); }

  /// Throws RunError when there is no usable directory. Entries that name data beyond the end of the file or
  /// contradict themselves are left out.
  Abif(std::string_view bytes, std::string_view fileName);

  /// Tells tags apart by case and by number, as the format does.
  const AbifEntry* find(std::string_view name, std::uint32_t number = 1) const;
  bool has(std::string_view name) const;

  /// The values below return nothing where the tag is absent, empty or of another kind.
  std::optional<std::string> text(std::string_view name, std::uint32_t number = 1) const;
  std::optional<double> real(std::string_view name, std::uint32_t number = 1) const;
  std::optional<std::int32_t> integer(std::string_view name, std::uint32_t number = 1) const;
  /// At most the first `most` values.
  std::vector<std::int32_t> integers(std::string_view name, std::uint32_t number, std::size_t most) const;
  std::optional<CalendarDate> date(std::string_view name, std::uint32_t number) const;
  std::optional<ClockTime> time(std::string_view name, std::uint32_t number) const;

  /// The current directory was encrypted and an earlier one, still in the file, took its place.
  bool isSuperseded() const { return isSuperseded_; }
  /// Encrypted without a plain directory to fall back on.
  bool isEncrypted() const { return isEncrypted_; }
  /// Some entry named data beyond the end of the file.
  bool isCut() const { return isCut_; }

 private:
  using Name = std::array<char, 4>;
  using Entries = std::map<std::pair<Name, std::uint32_t>, AbifEntry>;

  struct Read {
    Name name;
    AbifEntry entry;
  };

  Read entryAt(std::size_t at) const;
  bool isSound(const AbifEntry& entry) const;
  void add(Entries& entries, const Read& read);
  void readDirectory(std::size_t offset, std::size_t count);
  void fallBackOnEarlierDirectory();
  std::optional<Entries> plainDirectoryAt(std::size_t offset, std::size_t& end);
  std::string_view valuesOf(const AbifEntry& entry) const;
  std::int32_t integerAt(const AbifEntry& entry, std::size_t index) const;

  std::string_view bytes_;
  Entries entries_;
  bool isSuperseded_ = false;
  bool isEncrypted_ = false;
  bool isCut_ = false;
};

/// UTF-8 of a text that is UTF-8 or else Latin-1; control characters become blanks, outer blanks go.
std::string cleanText(std::string_view text);

}  // namespace banddesk::host::runs
