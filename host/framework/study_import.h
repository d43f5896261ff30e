// Peak tables into the open study: what the study knows already is recognised, and all the rest comes in one
// write of the store or not at all.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/framework/study_service.h"
#include "host/import/read_files.h"

namespace banddesk::host {

struct ImportRequest {
  std::vector<std::filesystem::path> files;  // or folders of them
  import::Options options = {};              // how they are read; which are known is the study's to say
  bool again = false;                        // whether files of an earlier import are read once more
};

struct ImportOutcome {
  std::string report;     // in words; the study keeps it too
  std::size_t added = 0;  // results
  std::size_t runs = 0;   // kept, those that could not be sized too; without either the study is unchanged
};

// Error 70 where the open study is among the files or lies in one of the folders: it is no peak table, and to
// read it ends locks on it. Whoever reads files for another purpose first calls this itself.
void requireNotTheStudy(const HostStudyService& study, const std::vector<std::filesystem::path>& files);

// Needs an open study that can be written. Raises ImportError for bad files, and the store's errors; the
// study is then as it was.
ImportOutcome importIntoStudy(HostStudyService& study, const ImportRequest& request,
                              const import::Progress& progress = {});

}  // namespace banddesk::host
