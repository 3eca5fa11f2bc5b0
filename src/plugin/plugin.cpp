#include "talp/plugin.h"

#include <new>

namespace {

// Registrations chain themselves at module load; the head is constant-initialised,
// so the chain is sound whatever order the module's initialisers run in.
class InterfaceRegistration {
 public:
  explicit InterfaceRegistration(const InterfaceFactoryRecord& record) : record_(record), next_(first_) {
    first_ = this;
  }
  InterfaceRegistration(const InterfaceRegistration&) = delete;
  InterfaceRegistration& operator=(const InterfaceRegistration&) = delete;

  template <typename Visit>
  static void ForEach(Visit visit) {
    for (const InterfaceRegistration* r = first_; r != nullptr; r = r->next_) visit(r->record_);
  }

 private:
  static inline const InterfaceRegistration* first_ = nullptr;
  const InterfaceFactoryRecord& record_;
  const InterfaceRegistration* next_;
};

IPMUnknown* CreateTALPRemote(void* memory, IPMUnknown* owner) {
  if (memory == nullptr) return nullptr;
  return new (memory) TALPRemote(owner);
}

void DestroyTALPRemote(IPMUnknown* object) { static_cast<TALPRemote*>(object)->~TALPRemote(); }

std::size_t SizeOfTALPRemote() { return sizeof(TALPRemote); }

constexpr InterfaceFactoryRecord kTALPRemoteFactory{
    kTALPRemoteImpl, CreateTALPRemote, DestroyTALPRemote, SizeOfTALPRemote, nullptr, nullptr, nullptr};
const InterfaceRegistration talpRemoteRegistration{kTALPRemoteFactory};

namespace ClassFactory {
void InstallClasses(PluginID pluginID, IHostSession& session) {
  InterfaceRegistration::ForEach([&](const InterfaceFactoryRecord& r) { session.InstallClass(pluginID, r); });
}
}  // namespace ClassFactory

namespace InterfaceFactory {
void InstallInterfaces(PluginID pluginID, IHostSession& session) {
  InterfaceRegistration::ForEach([&](const InterfaceFactoryRecord& r) { session.InstallInterface(pluginID, r); });
}
}  // namespace InterfaceFactory

PlugIn gPlugIn;

}  // namespace

void PlugIn::SetPluginID(PluginID pluginID) { pluginID_ = pluginID; }
PluginID PlugIn::GetPluginID() const { return pluginID_; }

void PlugIn::SetBundleRef(PluginBundleRef bundle) { resources_.SetPluginBundle(bundle); }
PluginBundleRef PlugIn::GetResourceFile() const { return resources_.GetPluginBundle(); }

void PlugIn::LoadFactories(PluginID pluginID, IHostSession& session) {
  ClassFactory::InstallClasses(pluginID, session);
  InterfaceFactory::InstallInterfaces(pluginID, session);
}

bool PlugIn::LoadAtStartup() const { return false; }
void PlugIn::Load() {}
void PlugIn::Unload() {}
bool PlugIn::CanUnload() const { return true; }
void PlugIn::FixUpData(IPMUnknown*) {}

extern "C" __attribute__((visibility("default"))) PlugIn* GetPlugIn() { return &gPlugIn; }

void DontDeadStrip() {
  // The host reaches the factory only through the registration chain, which
  // a linker stripping unreferenced data cannot see.
  static volatile bool never = false;
  if (never) static_cast<void>(kTALPRemoteFactory.create(nullptr, nullptr));
}
