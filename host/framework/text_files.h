// Text files by number on the system's disk, buffered. A write that failed can be repeated: nothing of it is
// lost and nothing is written twice.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/framework/code_set.h"
#include "host/study/fault_injector.h"
#include "plugin/ui/platform.h"

namespace banddesk::host {

class DiskTextFiles final : public ui::TextFiles {
 public:
  DiskTextFiles(FaultInjector& faults, const std::string& codeSet) : faults_(faults), encoder_(codeSet) {}
  ~DiskTextFiles() override;

  std::int32_t FreeFile() override;
  // Replaces an existing file. Error 5 for a number in use.
  void OpenForOutput(const std::string& fileName, std::int32_t number) override;
  void Print(std::int32_t number, std::string_view line) override;
  void Close(std::int32_t number) override;

 private:
  struct File {
    std::string name;
    int descriptor;
    std::string waiting;  // not on the disk yet
  };

  File& at(std::int32_t number);
  static void flush(File& file);

  FaultInjector& faults_;
  TextEncoder encoder_;
  std::map<std::int32_t, File> files_;
};

}  // namespace banddesk::host
