// Loads the built plug-in module the way a host does and drives it only
// through what the module hands over: this program does not link the library.
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
  std::vector<Entry> classes;
  std::vector<Entry> interfaces;
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

  IPMUnknown* answer = nullptr;
  mutable std::vector<PMIID> queried;
  mutable int addRefs = 0;
  mutable int releases = 0;
};

// An implementation created by a factory in memory we own, destroyed as the host would.
class Instance {
 public:
  Instance(const InterfaceFactoryRecord& record, IPMUnknown* owner)
      : record_(record),
        memory_(std::make_unique<std::max_align_t[]>(record.size() / sizeof(std::max_align_t) + 1)),
        object_(record.create(memory_.get(), owner)) {}
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  ~Instance() {
    if (object_ != nullptr) record_.destroy(object_);
  }
  IPMUnknown* get() const { return object_; }
  const void* memory() const { return memory_.get(); }

 private:
  const InterfaceFactoryRecord& record_;
  std::unique_ptr<std::max_align_t[]> memory_;
  IPMUnknown* object_;
};

class PluginModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(module_, nullptr) << dlerror();
    auto* getPlugIn = reinterpret_cast<decltype(&GetPlugIn)>(dlsym(module_.get(), "GetPlugIn"));
    ASSERT_NE(getPlugIn, nullptr) << dlerror();
    plugin_ = getPlugIn();
    ASSERT_NE(plugin_, nullptr);
    EXPECT_EQ(getPlugIn(), plugin_);
    plugin_->SetPluginID(kTALPRemotePluginID);
    plugin_->SetBundleRef(&bundle_);
    plugin_->LoadFactories(kTALPRemotePluginID, session_);
    for (const auto& [plugin, record] : session_.interfaces) {
      if (record->implementationID == kTALPRemoteImpl) record_ = record;
    }
    ASSERT_NE(record_, nullptr);
  }

  std::unique_ptr<void, int (*)(void*)> module_{dlopen(TALP_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL), &dlclose};
  const int bundle_ = 0;
  PlugIn* plugin_ = nullptr;
  RecordingSession session_;
  const InterfaceFactoryRecord* record_ = nullptr;
};

// The plug-in keeps what the host gave, keeps the host's defaults, and installs
// its one factory once as a class and once as an interface.
TEST_F(PluginModuleTest, LoadsTheWayTheHostExpects) {
  EXPECT_EQ(plugin_->GetPluginID(), kTALPRemotePluginID);
  EXPECT_EQ(plugin_->GetResourceFile(), &bundle_);
  EXPECT_EQ(plugin_->ResourceAccess().GetPluginBundle(), &bundle_);
  EXPECT_FALSE(plugin_->LoadAtStartup());
  EXPECT_TRUE(plugin_->CanUnload());
  plugin_->Load();
  plugin_->FixUpData(nullptr);
  plugin_->Unload();
  const RecordingSession::Entry expected{kTALPRemotePluginID, record_};
  EXPECT_EQ(session_.interfaces, std::vector{expected});
  EXPECT_EQ(session_.classes, std::vector{expected});
  EXPECT_TRUE(record_->create != nullptr && record_->destroy != nullptr);
  EXPECT_TRUE(record_->read == nullptr && record_->write == nullptr && record_->readWrite == nullptr);
}

TEST_F(PluginModuleTest, CreateUsesHostMemoryAndNeverReferencesTheOwner) {
  CountingOwner owner;
  {
    Instance remote(*record_, &owner);
    EXPECT_EQ(static_cast<const void*>(remote.get()), remote.memory());
  }
  EXPECT_EQ(std::pair(owner.addRefs, owner.releases), std::pair(0, 0));
  EXPECT_TRUE(owner.queried.empty());
  EXPECT_EQ(record_->create(nullptr, &owner), nullptr);
}

// References are counted on the owner; the base interface is the owner with
// one more reference, and every other interface is the owner's to answer.
TEST_F(PluginModuleTest, QueryInterfaceAddRefAndReleaseGoToTheOwner) {
  CountingOwner sibling, owner;
  owner.answer = &sibling;
  Instance remote(*record_, &owner);
  remote.get()->AddRef();
  remote.get()->AddRef();
  remote.get()->Release();
  EXPECT_EQ(std::pair(owner.addRefs, owner.releases), std::pair(2, 1));
  EXPECT_EQ(remote.get()->QueryInterface(IID_IPMUNKNOWN), &owner);
  EXPECT_EQ(std::pair(owner.addRefs, owner.releases), std::pair(3, 1));
  EXPECT_TRUE(owner.queried.empty());
  EXPECT_EQ(remote.get()->QueryInterface(IID_ITALPREMOTE), &sibling);
  EXPECT_EQ(remote.get()->QueryInterface(7), &sibling);
  EXPECT_EQ(owner.queried, (std::vector<PMIID>{IID_ITALPREMOTE, 7}));
  EXPECT_EQ(std::pair(owner.addRefs, owner.releases), std::pair(3, 1));
}

TEST_F(PluginModuleTest, WithoutOwnerNothingAnswers) {
  Instance remote(*record_, nullptr);
  ASSERT_NE(remote.get(), nullptr);
  remote.get()->AddRef();
  remote.get()->Release();
  EXPECT_EQ(remote.get()->QueryInterface(IID_IPMUNKNOWN), nullptr);
  EXPECT_EQ(remote.get()->QueryInterface(IID_ITALPREMOTE), nullptr);
}

}  // namespace
