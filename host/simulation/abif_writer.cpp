#include "host/simulation/abif_writer.h"

#include <algorithm>
#include <array>
#include <bit>

namespace banddesk::host::simulation {
namespace {

constexpr std::size_t kHeaderBytes = 128;

std::string bigEndian(std::uint64_t value, unsigned bytes) {
  std::string out;
  for (unsigned i = bytes; i-- > 0;) out += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
  return out;
}

std::string integers(std::span<const std::int32_t> values, unsigned bytes) {
  std::string out;
  for (const std::int32_t value : values) out += bigEndian(static_cast<std::uint32_t>(value), bytes);
  return out;
}

AbifTag tag(std::string name, std::uint32_t number, std::uint16_t type, std::uint16_t elementSize,
            std::string bytes) {
  const auto count = static_cast<std::uint32_t>(bytes.size() / elementSize);
  return {std::move(name), number, type, elementSize, count, std::move(bytes)};
}

std::string entry(const AbifTag& one, std::size_t place) {
  std::string out = one.name.substr(0, 4) + bigEndian(one.number, 4) + bigEndian(one.type, 2) +
                    bigEndian(one.elementSize, 2) + bigEndian(one.count, 4) + bigEndian(one.bytes.size(), 4);
  if (one.bytes.size() > 4)
    out += bigEndian(place, 4);
  else
    out += one.bytes + std::string(4 - one.bytes.size(), '\0');
  return out + bigEndian(0, 4);
}

}  // namespace

AbifTag shortsTag(std::string name, std::uint32_t number, std::span<const std::int32_t> values) {
  return tag(std::move(name), number, 4, 2, integers(values, 2));
}

AbifTag longsTag(std::string name, std::uint32_t number, std::span<const std::int32_t> values) {
  return tag(std::move(name), number, 5, 4, integers(values, 4));
}

AbifTag doubleTag(std::string name, std::uint32_t number, double value) {
  return tag(std::move(name), number, 8, 8, bigEndian(std::bit_cast<std::uint64_t>(value), 8));
}

AbifTag pascalTag(std::string name, std::uint32_t number, std::string_view text) {
  return tag(std::move(name), number, 18, 1,
             static_cast<char>(static_cast<unsigned char>(text.size())) + std::string(text));
}

AbifTag textTag(std::string name, std::uint32_t number, std::string_view text) {
  return tag(std::move(name), number, 19, 1, std::string(text) + '\0');
}

AbifTag dateTag(std::string name, std::uint32_t number, int year, int month, int day) {
  return tag(
      std::move(name), number, 10, 4,
      bigEndian(static_cast<std::uint64_t>(year), 2) + static_cast<char>(month) + static_cast<char>(day));
}

AbifTag timeTag(std::string name, std::uint32_t number, int hour, int minute, int second) {
  return tag(std::move(name), number, 11, 4,
             {static_cast<char>(hour), static_cast<char>(minute), static_cast<char>(second), '\0'});
}

std::string abifFile(std::span<const AbifTag> tags) {
  std::string data, directory;
  for (const AbifTag& one : tags) {
    directory += entry(one, kHeaderBytes + data.size());
    if (one.bytes.size() > 4) data += one.bytes;
  }
  // The root's size is the space that instruments allocate, more than its entries take.
  std::string header = "ABIF" + bigEndian(101, 2) + "tdir" + bigEndian(1, 4) + bigEndian(1023, 2) +
                       bigEndian(28, 2) + bigEndian(tags.size(), 4) + bigEndian(directory.size() + 280, 4) +
                       bigEndian(kHeaderBytes + data.size(), 4) + bigEndian(0, 4);
  header.resize(kHeaderBytes, '\0');
  return header + data + directory;
}

std::vector<AbifTag> runTags(const SimulatedTraces& traces, const RunText& text) {
  constexpr std::array<std::uint32_t, 6> channels{1, 2, 3, 4, 105, 106};
  const std::array<std::int32_t, 1> count{static_cast<std::int32_t>(traces.dyes.size())};
  std::vector<AbifTag> tags{shortsTag("Dye#", 1, count), textTag("MODL", 1, "3730"),
                            textTag("RunN", 1, text.run), pascalTag("TUBE", 1, text.well),
                            pascalTag("SMPL", 1, text.sample)};
  if (!text.standard.empty()) tags.push_back(pascalTag("StdF", 1, text.standard));
  for (std::size_t i = 0; i < std::min(traces.dyes.size(), channels.size()); ++i) {
    tags.push_back(shortsTag("DATA", channels[i], traces.dyes[i]));
    if (i < text.dyeNames.size())
      tags.push_back(pascalTag("DyeN", static_cast<std::uint32_t>(i + 1), text.dyeNames[i]));
  }
  if (!traces.saturatedScans.empty()) tags.push_back(longsTag("Satd", 1, traces.saturatedScans));
  return tags;
}

}  // namespace banddesk::host::simulation
