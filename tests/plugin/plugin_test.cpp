// Loads the built plug-in module the way a host does and drives it only
// through what the module hands over: this program does not link the library.
// (examples/host/plugin_host.cpp, which the packaging tests build and run,
// reads a catalogue through the module.)
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "talp/plugin.h"

namespace {

class RecordingSession final : public IHostSession {
 public:
  using Entry = std::pair<PluginID, const InterfaceFactoryRecord*>;
  void InstallClass(PluginID id, const InterfaceFactoryRecord& r) override { classes.emplace_back(id, &r); }
  void InstallInterface(PluginID id, const InterfaceFactoryRecord& r) override { interfaces.emplace_back(id, &r); }
  std::vector<Entry> classes, interfaces;
};

// Stands in for the host object that owns the interface.
class CountingOwner final : public IPMUnknown {
 public:
  IPMUnknown* QueryInterface(PMIID id) const override {
    queried.push_back(id);
    return answer;
  }
  void AddRef() const override { ++addRefs; }
  void Release() const override { ++releases; }
  std::pair<int, int> Counts() const { return {addRefs, releases}; }

  IPMUnknown* answer = nullptr;
  mutable std::vector<PMIID> queried;
  mutable int addRefs = 0, releases = 0;
};

// The plug-in keeps the host's defaults and installs its one factory once as
// a class and once as an interface. The implementation lives in the host's
// memory. References are counted on the owner, never by creating or
// destroying; the base interface is the owner with one more reference, and
// every other interface, this one's too, is the owner's to answer.
TEST(PluginModule, LoadsAndCreatesTheWayTheHostExpects) {
  const std::unique_ptr<void, int (*)(void*)> module{dlopen(TALP_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL), &dlclose};
  ASSERT_NE(module, nullptr) << dlerror();
  auto* getPlugIn = reinterpret_cast<decltype(&GetPlugIn)>(dlsym(module.get(), "GetPlugIn"));
  ASSERT_NE(getPlugIn, nullptr) << dlerror();
  PlugIn* plugin = getPlugIn();
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(getPlugIn(), plugin);
  RecordingSession session;
  plugin->LoadFactories(kTALPRemotePluginID, session);
  ASSERT_EQ(session.interfaces.size(), 1u);
  const InterfaceFactoryRecord& record = *session.interfaces[0].second;
  EXPECT_EQ(record.implementationID, kTALPRemoteImpl);
  EXPECT_EQ(session.interfaces, (std::vector<RecordingSession::Entry>{{kTALPRemotePluginID, &record}}));
  EXPECT_EQ(session.classes, session.interfaces);
  EXPECT_TRUE(record.read == nullptr && record.write == nullptr && record.readWrite == nullptr);
  EXPECT_FALSE(plugin->LoadAtStartup());
  EXPECT_TRUE(plugin->CanUnload());

  CountingOwner sibling, owner;
  owner.answer = &sibling;
  std::vector<std::max_align_t> memory(record.size() / sizeof(std::max_align_t) + 1);
  std::unique_ptr<IPMUnknown, void (*)(IPMUnknown*)> remote{record.create(memory.data(), &owner), record.destroy};
  EXPECT_EQ(static_cast<const void*>(remote.get()), memory.data());
  remote->AddRef();
  remote->AddRef();
  remote->Release();
  EXPECT_EQ(owner.Counts(), std::pair(2, 1));
  EXPECT_EQ(remote->QueryInterface(IID_IPMUNKNOWN), &owner);
  EXPECT_EQ(owner.Counts(), std::pair(3, 1));
  EXPECT_TRUE(owner.queried.empty());
  EXPECT_EQ(remote->QueryInterface(IID_ITALPREMOTE), &sibling);
  EXPECT_EQ(owner.queried, std::vector<PMIID>{IID_ITALPREMOTE});
  remote.reset();
  EXPECT_EQ(owner.Counts(), std::pair(3, 1));
  EXPECT_EQ(record.create(nullptr, &owner), nullptr);

  // Without an owner reference counting does nothing and nothing answers.
  remote.reset(record.create(memory.data(), nullptr));
  remote->AddRef();
  remote->Release();
  EXPECT_EQ(remote->QueryInterface(IID_IPMUNKNOWN), nullptr);
}

}  // namespace
