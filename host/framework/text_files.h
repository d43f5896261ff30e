// Text files by number on the system's disk, buffered. A write that failed can be repeated: nothing of it is
// lost and nothing is written twice. A file is written beside its place and takes it when it is closed; until
// then, and after any failure, what stood there before is whole.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/framework/code_set.h"
#include "host/study/fault_injector.h"
#include "plugin/ui/platform.h"

namespace banddesk::host {

// Why a file of this name cannot be written; empty where it can. Nothing is changed.
std::string whyNotWritable(const std::string& fileName);

class DiskTextFiles final : public ui::TextFiles {
 public:
  DiskTextFiles(FaultInjector& faults, const std::string& codeSet) : faults_(faults), encoder_(codeSet) {}
  ~DiskTextFiles() override;

  std::int32_t FreeFile() override;
  // An existing file is replaced when this one is closed. Devices and pipes are written at once, and so is a
  // file in a folder that takes no other. Error 5 for a number in use.
  void OpenForOutput(const std::string& fileName, std::int32_t number) override;
  void Print(std::int32_t number, std::string_view line) override;
  // Called while an error is being handled, it gives the file up: whoever writes it has failed.
  void Close(std::int32_t number) override;

 private:
  struct File {
    std::string name;
    std::string part;   // what is written; empty: the file itself
    std::string place;  // where it goes, links followed
    int descriptor;
    std::string waiting;  // not on the disk yet
  };

  void giveUp(std::int32_t number);
  static void takePlace(File& file);

  File& at(std::int32_t number);
  static void flush(File& file);

  FaultInjector& faults_;
  TextEncoder encoder_;
  std::map<std::int32_t, File> files_;
};

}  // namespace banddesk::host
