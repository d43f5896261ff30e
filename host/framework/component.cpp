#include "host/framework/component.h"

#include <dlfcn.h>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>

namespace banddesk::host {
namespace {

[[noreturn]] void refuse(const std::string& message) {
  raise(ErrorNumber::NotFoundInRegistry, "Component", message);
}

template <class Entry>
void find(void* library, const std::string& path, const char* name, Entry& entry) {
  entry = reinterpret_cast<Entry>(::dlsym(library, name));
  if (entry == nullptr) refuse(fmt::format("{} is no component: it has no entry {}.", path, name));
}

class ClassList final : public Registrar {
 public:
  void Register(std::string_view typeLibrary, std::string_view className) override {
    if (typeLibrary == kTypeLibrary) names.emplace_back(className);
  }
  void Unregister(std::string_view, std::string_view className) override { std::erase(names, className); }
  std::vector<std::string> names;
};

}  // namespace

std::string besideExecutable(const std::string& fileName) {
  std::error_code none;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", none);
  return (executable.parent_path() / fileName).string();
}

ComponentEntries loadEntries(const std::string& path) {
  std::error_code none;
  if (!std::filesystem::exists(path, none)) {
    raise(ErrorNumber::PathNotFound, "Component", fmt::format("There is no component {}.", path));
  }
  // With a folder in its name, so that the loader looks nowhere else.
  void* const library =
      ::dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) refuse(fmt::format("{} cannot be loaded: {}.", path, ::dlerror()));
  ComponentEntries entries;
  entries.name = path;
  find(library, path, "DllRegisterServer", entries.registerServer);
  find(library, path, "DllGetClassObject", entries.getClassObject);
  return entries;
}

Component::Component(const ComponentEntries& entries, HostServices& services)
    : entries_(entries), services_(services) {
  ClassList classes;
  if (const std::int32_t status = entries_.registerServer(classes); status != kEntryOk) {
    refuse(
        fmt::format("{} refused to register (0x{:08X}).", entries_.name, static_cast<std::uint32_t>(status)));
  }
  classNames_ = std::move(classes.names);
}

ObjectRef Component::create(const std::string& className) const {
  std::unique_ptr<ClassObject> classObject;
  const std::int32_t status =
      entries_.getClassObject(className.c_str(), kContractStamp, services_, classObject);
  if (status == kEntryContractDiffers) {
    refuse(fmt::format("{} was built for another version of the host.", entries_.name));
  }
  if (status != kEntryOk || !classObject) {
    refuse(fmt::format("{} has no class {} (0x{:08X}).", entries_.name, className,
                       static_cast<std::uint32_t>(status)));
  }
  ObjectRef object = classObject->CreateInstance();
  if (!object) refuse(fmt::format("{} made no {}.", entries_.name, className));
  return object;
}

}  // namespace banddesk::host
