// The plug-in's component as the host reaches it: its entry points, from a shared library or linked in, and the
// objects that its class objects make. It is never unloaded, so two of the four are not asked for.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugin/banddesk.h"

namespace banddesk::host {

// The component's file as it stands beside the executable.
inline constexpr const char* kComponentFile = "libbanddesk_plugin.so";

struct ComponentEntries {
  decltype(&DllRegisterServer) registerServer = nullptr;
  decltype(&DllGetClassObject) getClassObject = nullptr;
  std::string name = "The component";  // as messages call it
};

// The path of a file in the folder of the running executable.
std::string besideExecutable(const std::string& fileName);

// Loads the shared library for good: errors that it raised outlive every call into it. Error 76 when there is
// no such file, 429 when it is no component; the message names the file and the cause.
ComponentEntries loadEntries(const std::string& path);

class Component final {
 public:
  // Registers the component; `services` outlive it and all objects that it makes.
  Component(const ComponentEntries& entries, HostServices& services);

  const std::vector<std::string>& classNames() const { return classNames_; }
  // Error 429 when the component does not know the class or was built for another host.
  ObjectRef create(const std::string& className) const;

 private:
  ComponentEntries entries_;
  HostServices& services_;
  std::vector<std::string> classNames_;
};

}  // namespace banddesk::host
