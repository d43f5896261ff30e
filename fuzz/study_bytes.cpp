// The input is a list of edits of a sound study file's bytes: place, length, new bytes.
#include "fuzz/bytes.h"
#include "fuzz/study_reading.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string sound = banddesk::fuzz::studyFile();
  banddesk::fuzz::Bytes bytes(data, size);
  const bool withPages = bytes.upTo(7) == 0;
  const bool isCut = bytes.upTo(15) == 0;
  std::string edited = sound;
  if (isCut) edited.resize(bytes.number(3) % edited.size());
  while (!bytes.isEmpty() && !edited.empty()) {
    const std::size_t at = bytes.number(3) % edited.size();
    const std::string_view patch = bytes.text(static_cast<std::size_t>(bytes.upTo(15)) + 1);
    edited.replace(at, std::min(patch.size(), edited.size() - at), patch);
  }
  banddesk::fuzz::writeStudy(edited);
  banddesk::fuzz::readStudy(withPages);
  return 0;
}
