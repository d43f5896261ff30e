// Reads peak tables and runs of instruments from files: the one entry of the import room. It fills no study;
// that is for who calls it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "host/import/import_error.h"
#include "host/import/peak_table.h"
#include "host/import/run_reading.h"
#include "host/import/text_stream.h"

namespace banddesk::host::import {

struct Options {
  /// The size standard's dye: its rows are counted and left out. Without it all dyes are read.
  std::optional<Dye> ladder = {};
  /// The dye of all rows of tables that have no column for it. Without it such a table is an error.
  std::optional<Dye> dye = {};
  /// Of spreadsheets the sheet of this name, else the first.
  std::optional<std::string> sheet = {};
  /// The letters of the four dyes that a study is to hold, such as "BGYR", for whoever fills one.
  std::optional<std::string> dyes = {};
  /// How runs of instruments are analysed; a run's size standard is found and left out by itself.
  RunOptions runs = {};
  /// Asked of each file by its size and content hash before it is read: a known file is passed over and
  /// noted. Files are hashed only where somebody asks.
  std::function<bool(std::uint64_t size, std::uint64_t hash)> isKnown = {};
  /// How many bytes are read at a time.
  std::size_t stretch = TextStream::usualStretch;
};

/// Told how many bytes of how many are done. An exception thrown from it ends the reading and passes through.
using Progress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// Reads the files in their order into one table. A folder stands for its files in the order of their names,
/// without hidden ones; what is no peak table in a folder is noted and passed over. Throws ImportError, also
/// where tables were read and no peak is left of them; nothing is handed out then.
PeakTable readFiles(std::span<const std::filesystem::path> files, const Options& options = {},
                    const Progress& progress = {});

}  // namespace banddesk::host::import
