#include "host/runs/abif.h"

#include <algorithm>
#include <bit>
#include <fmt/format.h>

#include "host/runs/run_error.h"

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kRootAt = 6;
constexpr std::size_t kEntryBytes = 28;
constexpr std::size_t kMostEntries = 65536;  // real directories have up to some hundreds
constexpr std::size_t kMostText = 4096;
constexpr std::size_t kFewestPlainEntries = 20;

enum Type : std::uint16_t {
  kByte = 1,
  kChar = 2,
  kWord = 3,
  kShort = 4,
  kLong = 5,
  kFloat = 7,
  kDouble = 8,
  kDate = 10,
  kTime = 11,
  kBool = 13,
  kPascalString = 18,
  kCString = 19,
  kLastPlain = 19,
  kFirstOfUsers = 1023
};

std::uint32_t bigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes) value = (value << 8U) | static_cast<unsigned char>(byte);
  return value;
}

std::uint64_t bigEndian64(std::string_view bytes) {
  return (std::uint64_t{bigEndian(bytes.substr(0, 4))} << 32U) | bigEndian(bytes.substr(4, 4));
}

/// Bytes of one value; 0 for texts and what is no number.
std::size_t widthOf(std::uint16_t type) {
  switch (type) {
    case kByte:
    case kBool:
      return 1;
    case kWord:
    case kShort:
      return 2;
    case kLong:
    case kFloat:
    case kDate:
    case kTime:
      return 4;
    case kDouble:
      return 8;
    default:
      return 0;
  }
}

bool isInteger(std::uint16_t type) {
  return type == kByte || type == kBool || type == kWord || type == kShort || type == kLong;
}

/// Types beyond the published ones and below the users' own hold encrypted values.
bool isEncryptedType(std::uint16_t type) { return type > kLastPlain && type < kFirstOfUsers; }

bool isTagName(const std::array<char, 4>& name) {
  const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  const auto isInner = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '#'; };
  return isLetter(name[0]) && std::all_of(name.begin() + 1, name.end(), isInner);
}

std::array<char, 4> nameOf(std::string_view text) {
  std::array<char, 4> name{};
  std::copy_n(text.begin(), std::min<std::size_t>(4, text.size()), name.begin());
  return name;
}

std::size_t utf8Length(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(i < text.size() ? text[i] : 0); };
  const unsigned lead = byte(at);
  const std::size_t length = lead < 0x80                   ? 1
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(at + i) & 0xC0U) != 0x80U) return 0;
  // Overlong forms, halves of surrogate pairs and what lies beyond the last character.
  const unsigned next = byte(at + 1);
  if ((lead == 0xE0 && next < 0xA0) || (lead == 0xED && next >= 0xA0) || (lead == 0xF0 && next < 0x90) ||
      (lead == 0xF4 && next >= 0x90))
    return 0;
  return length;
}

bool isUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = utf8Length(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

std::string utf8OfLatin1(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      out += c;
    } else {
      out += static_cast<char>(0xC0U | (byte >> 6U));
      out += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return out;
}

}  // namespace

std::string cleanText(std::string_view text) {
  std::string out = isUtf8(text) ? std::string(text) : utf8OfLatin1(text);
  for (char& c : out)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
  const std::size_t first = out.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return out.substr(first, out.find_last_not_of(' ') - first + 1);
}

Abif::Abif(std::string_view bytes, std::string_view fileName) : bytes_(bytes) {
  const std::string file(fileName);
  if (bytes.starts_with('>')) throw RunError(file, "is a FASTA text, not a run of an instrument");
  if (!isAbif(bytes)) throw RunError(file, "is not a run of an instrument: it does not begin with ABIF");
  if (bytes.size() < kRootAt + kEntryBytes) throw RunError(file, "is cut short: it ends within its header");
  // The size in the root entry is the allocated space, not that of the entries: only the count is of use.
  const AbifEntry root = entryAt(kRootAt).entry;
  const std::size_t offset = bigEndian(bytes.substr(kRootAt + 20, 4));
  if (offset + kEntryBytes > bytes.size())
    throw RunError(
        file, fmt::format("is cut short: its directory should stand at byte {}, but the file has {}", offset,
                          bytes.size()));
  if (offset < kRootAt + kEntryBytes || root.count == 0)
    throw RunError(file, "is damaged: it has no directory");
  readDirectory(offset, root.count);
  if (entries_.empty()) throw RunError(file, "is damaged: no entry of its directory makes sense");
  const auto encrypted =
      std::ranges::any_of(entries_, [](const auto& one) { return isEncryptedType(one.second.type); });
  if (encrypted) fallBackOnEarlierDirectory();
}

Abif::Read Abif::entryAt(std::size_t at) const {
  const std::string_view bytes = bytes_.substr(at, kEntryBytes);
  Read read{nameOf(bytes.substr(0, 4)), {}};
  AbifEntry& entry = read.entry;
  entry.number = bigEndian(bytes.substr(4, 4));
  entry.type = static_cast<std::uint16_t>(bigEndian(bytes.substr(8, 2)));
  entry.elementSize = static_cast<std::uint16_t>(bigEndian(bytes.substr(10, 2)));
  entry.count = bigEndian(bytes.substr(12, 4));
  entry.size = bigEndian(bytes.substr(16, 4));
  // Up to four bytes stand in the place of the offset themselves.
  entry.offset = entry.size <= 4 ? static_cast<std::uint32_t>(at + 20) : bigEndian(bytes.substr(20, 4));
  return read;
}

bool Abif::isSound(const AbifEntry& entry) const {
  const std::size_t width = widthOf(entry.type);
  return width == 0 || (entry.elementSize == width && std::uint64_t{entry.count} * width == entry.size);
}

void Abif::add(Entries& entries, const Read& read) {
  if (!isTagName(read.name)) return;
  if (std::uint64_t{read.entry.offset} + read.entry.size > bytes_.size())
    isCut_ = true;
  else if (isSound(read.entry))
    entries.try_emplace({read.name, read.entry.number}, read.entry);
}

void Abif::readDirectory(std::size_t offset, std::size_t count) {
  const std::size_t fitting = (bytes_.size() - offset) / kEntryBytes;
  if (count > fitting) isCut_ = true;
  const std::size_t taken = std::min({count, fitting, kMostEntries});
  for (std::size_t i = 0; i < taken; ++i) add(entries_, entryAt(offset + i * kEntryBytes));
}

// A file that was encrypted when it was closed still has the directories that it was written with. They are
// found by their first entry; the last one that is plain throughout is the fullest.
void Abif::fallBackOnEarlierDirectory() {
  using namespace std::literals;
  constexpr std::string_view firstEntry = "AAct\0\0\0\1"sv;
  std::optional<Entries> last;
  for (std::size_t at = bytes_.find(firstEntry); at != std::string_view::npos;) {
    std::size_t end = at + 1;
    if (auto found = plainDirectoryAt(at, end)) last = std::move(found);
    at = bytes_.find(firstEntry, end);
  }
  isSuperseded_ = last.has_value();
  isEncrypted_ = !isSuperseded_;
  if (last) entries_ = std::move(*last);
}

/// `end` becomes the place after the directory, so that no stretch of the file is looked at twice.
std::optional<Abif::Entries> Abif::plainDirectoryAt(std::size_t offset, std::size_t& end) {
  Entries found;
  std::size_t count = 0;
  bool isPlain = true;
  for (std::size_t at = offset; at + kEntryBytes <= bytes_.size() && count < kMostEntries;
       at += kEntryBytes) {
    const Read read = entryAt(at);
    const bool startsAnother = count > 0 && read.name == nameOf("AAct") && read.entry.number == 1;
    const bool isKnown = read.entry.type >= 1 && (read.entry.type < 40 || read.entry.type >= kFirstOfUsers);
    if (startsAnother || !isKnown || !isTagName(read.name)) break;
    isPlain = isPlain && !isEncryptedType(read.entry.type);
    add(found, read);
    ++count;
    end = at + kEntryBytes;
  }
  if (!isPlain || count < kFewestPlainEntries) return {};
  return found;
}

const AbifEntry* Abif::find(std::string_view name, std::uint32_t number) const {
  const auto found = entries_.find({nameOf(name), number});
  return found == entries_.end() ? nullptr : &found->second;
}

bool Abif::has(std::string_view name) const {
  const auto found = entries_.lower_bound({nameOf(name), 0});
  return found != entries_.end() && found->first.first == nameOf(name);
}

std::string_view Abif::valuesOf(const AbifEntry& entry) const {
  return bytes_.substr(entry.offset, entry.size);
}

std::optional<std::string> Abif::text(std::string_view name, std::uint32_t number) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || entry->size == 0) return {};
  std::string_view bytes = valuesOf(*entry).substr(0, kMostText);
  if (entry->type == kPascalString) {
    // The length byte counts where it can be right; else the whole value is the text.
    const std::size_t length = static_cast<unsigned char>(bytes[0]);
    bytes = bytes.substr(1, length);
  } else if (entry->type != kChar && entry->type != kCString) {
    return {};
  }
  return cleanText(bytes.substr(0, bytes.find('\0')));
}

std::int32_t Abif::integerAt(const AbifEntry& entry, std::size_t index) const {
  const std::size_t width = widthOf(entry.type);
  const std::uint32_t value = bigEndian(valuesOf(entry).substr(index * width, width));
  if (entry.type == kShort) return static_cast<std::int16_t>(value);
  return static_cast<std::int32_t>(value);
}

std::optional<std::int32_t> Abif::integer(std::string_view name, std::uint32_t number) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || entry->count == 0 || !isInteger(entry->type)) return {};
  return integerAt(*entry, 0);
}

std::vector<std::int32_t> Abif::integers(std::string_view name, std::uint32_t number,
                                         std::size_t most) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || !isInteger(entry->type)) return {};
  std::vector<std::int32_t> values(std::min<std::size_t>(entry->count, most));
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = integerAt(*entry, i);
  return values;
}

std::optional<double> Abif::real(std::string_view name, std::uint32_t number) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || entry->count == 0) return {};
  if (entry->type == kFloat) return std::bit_cast<float>(bigEndian(valuesOf(*entry).substr(0, 4)));
  if (entry->type == kDouble) return std::bit_cast<double>(bigEndian64(valuesOf(*entry)));
  return integer(name, number);
}

std::optional<CalendarDate> Abif::date(std::string_view name, std::uint32_t number) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || entry->type != kDate || entry->count == 0) return {};
  const std::string_view bytes = valuesOf(*entry);
  const CalendarDate date{static_cast<std::int16_t>(bigEndian(bytes.substr(0, 2))),
                          static_cast<unsigned char>(bytes[2]), static_cast<unsigned char>(bytes[3])};
  if (date.year < 1 || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31) return {};
  return date;
}

std::optional<ClockTime> Abif::time(std::string_view name, std::uint32_t number) const {
  const AbifEntry* entry = find(name, number);
  if (entry == nullptr || entry->type != kTime || entry->count == 0) return {};
  const std::string_view bytes = valuesOf(*entry);
  const auto part = [&](std::size_t i) { return static_cast<int>(static_cast<unsigned char>(bytes[i])); };
  const ClockTime time{part(0), part(1), part(2)};
  if (time.hour > 23 || time.minute > 59 || time.second > 59) return {};
  return time;
}

}  // namespace banddesk::host::runs
