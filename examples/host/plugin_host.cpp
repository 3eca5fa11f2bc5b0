// A host application in miniature: it loads the talpremote plug-in module,
// takes the plug-in object from GetPlugIn, lets it install its factories,
// creates the kTALPRemoteImpl implementation inside an object of its own and
// asks that object for ITALPRemote, as sibling plug-ins do in a real host.
//
// Usage: plugin_host CATALOGUE [MODULE]   (MODULE: the installed talpremote_plugin.so)
#include <dlfcn.h>

#include <cstddef>
#include <iostream>
#include <memory>

#include "print_catalogue.h"
#include "talp/plugin.h"

#ifndef TALP_PLUGIN_MODULE  // the build names the installed module
#define TALP_PLUGIN_MODULE "talpremote_plugin.so"
#endif

namespace {

struct ModuleCloser {
  void operator()(void* module) const { dlclose(module); }
};
using Module = std::unique_ptr<void, ModuleCloser>;

// The host's side of LoadFactories: keeps the factory of kTALPRemoteImpl.
class Session final : public IHostSession {
 public:
  void InstallClass(PluginID, const InterfaceFactoryRecord&) override {}
  void InstallInterface(PluginID, const InterfaceFactoryRecord& record) override {
    if (record.implementationID == kTALPRemoteImpl) factory = &record;
  }
  const InterfaceFactoryRecord* factory = nullptr;
};

// The host object that carries the implementation, in memory the host
// allocates; it answers IID_ITALPREMOTE with it.
class HostObject final : public IPMUnknown {
 public:
  explicit HostObject(const InterfaceFactoryRecord& factory)
      : factory_(factory), memory_(new std::max_align_t[factory.size() / sizeof(std::max_align_t) + 1]),
        remote_(factory.create(memory_.get(), this)) {}
  ~HostObject() { factory_.destroy(remote_); }
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  IPMUnknown* QueryInterface(PMIID id) const override {
    // The implementation created for kTALPRemoteImpl is an ITALPRemote.
    if (id == IID_ITALPREMOTE) return remote_;
    if (id == IID_IPMUNKNOWN) return const_cast<HostObject*>(this);
    return nullptr;
  }
  // The host object lives as long as main; it counts no references.
  void AddRef() const override {}
  void Release() const override {}

 private:
  const InterfaceFactoryRecord& factory_;
  std::unique_ptr<std::max_align_t[]> memory_;
  IPMUnknown* remote_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: plugin_host CATALOGUE [MODULE]\n";
    return 2;
  }
  const char* path = argc == 3 ? argv[2] : TALP_PLUGIN_MODULE;
  const Module module(dlopen(path, RTLD_NOW | RTLD_LOCAL));
  if (!module) {
    std::cerr << "plugin_host: " << dlerror() << '\n';
    return 1;
  }
  const auto getPlugIn = reinterpret_cast<decltype(&GetPlugIn)>(dlsym(module.get(), "GetPlugIn"));
  if (getPlugIn == nullptr) {
    std::cerr << "plugin_host: " << dlerror() << '\n';
    return 1;
  }
  PlugIn* const plugin = getPlugIn();
  plugin->SetPluginID(kTALPRemotePluginID);
  Session session;
  plugin->LoadFactories(kTALPRemotePluginID, session);
  if (session.factory == nullptr) {
    std::cerr << "plugin_host: the module installed no factory for kTALPRemoteImpl\n";
    return 1;
  }
  const HostObject object(*session.factory);
  auto* remote = static_cast<ITALPRemote*>(object.QueryInterface(IID_ITALPREMOTE));
  return example::PrintCatalogue(*remote, argv[1]);
}
