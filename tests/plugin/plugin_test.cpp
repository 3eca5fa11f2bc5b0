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

  // The implementation created by the factory in memory the fixture owns, destroyed as the host would.
  std::unique_ptr<IPMUnknown, void (*)(IPMUnknown*)> Create(IPMUnknown* owner) {
    memory_.resize(record_->size() / sizeof(std::max_align_t) + 1);
    return {record_->create(memory_.data(), owner), record_->destroy};
  }

  std::unique_ptr<void, int (*)(void*)> module_{dlopen(TALP_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL), &dlclose};
  const int bundle_ = 0;
  PlugIn* plugin_ = nullptr;
  RecordingSession session_;
  const InterfaceFactoryRecord* record_ = nullptr;
  std::vector<std::max_align_t> memory_;
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
  auto remote = Create(&owner);
  EXPECT_EQ(static_cast<const void*>(remote.get()), memory_.data());
  remote.reset();
  EXPECT_EQ(owner.Counts(), std::pair(0, 0));
  EXPECT_TRUE(owner.queried.empty());
  EXPECT_EQ(record_->create(nullptr, &owner), nullptr);
}

// References are counted on the owner; the base interface is the owner with
// one more reference, and every other interface is the owner's to answer.
TEST_F(PluginModuleTest, QueryInterfaceAddRefAndReleaseGoToTheOwner) {
  CountingOwner sibling, owner;
  owner.answer = &sibling;
  const auto remote = Create(&owner);
  remote->AddRef();
  remote->AddRef();
  remote->Release();
  EXPECT_EQ(owner.Counts(), std::pair(2, 1));
  EXPECT_EQ(remote->QueryInterface(IID_IPMUNKNOWN), &owner);
  EXPECT_EQ(owner.Counts(), std::pair(3, 1));
  EXPECT_TRUE(owner.queried.empty());
  EXPECT_EQ(remote->QueryInterface(IID_ITALPREMOTE), &sibling);
  EXPECT_EQ(remote->QueryInterface(7), &sibling);
  EXPECT_EQ(owner.queried, (std::vector<PMIID>{IID_ITALPREMOTE, 7}));
  EXPECT_EQ(owner.Counts(), std::pair(3, 1));
}

TEST_F(PluginModuleTest, WithoutOwnerReferenceCountingDoesNothingAndNothingAnswers) {
  const auto remote = Create(nullptr);
  ASSERT_NE(remote, nullptr);
  remote->AddRef();
  remote->Release();
  EXPECT_EQ(remote->QueryInterface(IID_IPMUNKNOWN), nullptr);
  EXPECT_EQ(remote->QueryInterface(IID_ITALPREMOTE), nullptr);
}

}  // namespace
