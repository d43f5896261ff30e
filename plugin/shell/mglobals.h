// What all objects of the component share under one host: the way to the explorer folder and the one
// precondition that several operations ask for.
#pragma once

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"
#include "plugin/shell/live_object.h"

namespace banddesk {

class AFLPExplorerFolder;

class MGlobals final : public Object, private LiveObject {
 public:
  explicit MGlobals(HostServices& services) : services_(services), frame_(services.Framework(), "MGlobals") {}

  HostServices& services() const { return services_; }

  // Null until a folder exists; the folder enters itself and leaves when it ends.
  banddesk::AFLPExplorerFolder* AFLPExplorerFolder() const {
    return frame_.procedure("AFLPExplorerFolder (Get)", [&] { return folder_; });
  }
  void SetAFLPExplorerFolder(banddesk::AFLPExplorerFolder* folder) {
    frame_.procedure("AFLPExplorerFolder (Set)", [&] { folder_ = folder; });
  }

  // Whether a study is open; if not, the user is told so before the answer.
  bool IsStudyOpen() const;

 private:
  HostServices& services_;
  FailureFrame frame_;
  banddesk::AFLPExplorerFolder* folder_ = nullptr;
};

}  // namespace banddesk
