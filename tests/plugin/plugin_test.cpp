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

class Module {
 public:
  explicit Module(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {}
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() {
    if (handle_ != nullptr) dlclose(handle_);
  }
  bool IsOpen() const { return handle_ != nullptr; }
  void* Symbol(const char* name) const { return dlsym(handle_, name); }

 private:
  void* handle_;
};

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

const InterfaceFactoryRecord* FindRecord(const std::vector<RecordingSession::Entry>& entries, ImplementationID id) {
  for (const auto& [plugin, record] : entries) {
    if (record->implementationID == id) return record;
  }
  return nullptr;
}

class PluginModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(module_.IsOpen()) << dlerror();
    auto* getPlugIn = reinterpret_cast<decltype(&GetPlugIn)>(module_.Symbol("GetPlugIn"));
    ASSERT_NE(getPlugIn, nullptr) << dlerror();
    plugin_ = getPlugIn();
    ASSERT_NE(plugin_, nullptr);
    EXPECT_EQ(getPlugIn(), plugin_);
    plugin_->SetPluginID(kTALPRemotePluginID);
    plugin_->SetBundleRef(&bundle_);
    plugin_->LoadFactories(kTALPRemotePluginID, session_);
    record_ = FindRecord(session_.interfaces, kTALPRemoteImpl);
    ASSERT_NE(record_, nullptr);
  }

  Module module_{TALP_PLUGIN_PATH};
  const int bundle_ = 0;
  PlugIn* plugin_ = nullptr;
  RecordingSession session_;
  const InterfaceFactoryRecord* record_ = nullptr;
};

TEST_F(PluginModuleTest, PlugInKeepsWhatTheHostGaveAndHostDefaults) {
  EXPECT_EQ(plugin_->GetPluginID(), kTALPRemotePluginID);
  EXPECT_EQ(plugin_->GetResourceFile(), &bundle_);
  EXPECT_EQ(plugin_->ResourceAccess().GetPluginBundle(), &bundle_);
  EXPECT_FALSE(plugin_->LoadAtStartup());
  EXPECT_TRUE(plugin_->CanUnload());
  plugin_->Load();
  plugin_->FixUpData(nullptr);
  plugin_->Unload();
}

TEST_F(PluginModuleTest, FactoriesAreInstalledOnceAsClassAndInterface) {
  const RecordingSession::Entry expected{kTALPRemotePluginID, record_};
  EXPECT_EQ(session_.interfaces, std::vector{expected});
  EXPECT_EQ(session_.classes, std::vector{expected});
  EXPECT_GE(record_->size(), 2 * sizeof(void*));
  ASSERT_NE(record_->create, nullptr);
  ASSERT_NE(record_->destroy, nullptr);
  EXPECT_EQ(record_->read, nullptr);
  EXPECT_EQ(record_->write, nullptr);
  EXPECT_EQ(record_->readWrite, nullptr);
}

TEST_F(PluginModuleTest, CreateUsesHostMemoryAndNeverReferencesTheOwner) {
  CountingOwner owner;
  {
    Instance remote(*record_, &owner);
    EXPECT_EQ(static_cast<const void*>(remote.get()), remote.memory());
  }
  EXPECT_EQ(owner.addRefs, 0);
  EXPECT_EQ(owner.releases, 0);
  EXPECT_TRUE(owner.queried.empty());
}

TEST_F(PluginModuleTest, CreateInNullMemoryGivesNull) {
  CountingOwner owner;
  EXPECT_EQ(record_->create(nullptr, &owner), nullptr);
}

TEST_F(PluginModuleTest, ReferenceCountingGoesToTheOwner) {
  CountingOwner owner;
  Instance remote(*record_, &owner);
  remote.get()->AddRef();
  remote.get()->AddRef();
  remote.get()->Release();
  EXPECT_EQ(owner.addRefs, 2);
  EXPECT_EQ(owner.releases, 1);
}

TEST_F(PluginModuleTest, BaseInterfaceIsTheOwnerWithOneMoreReference) {
  CountingOwner owner;
  Instance remote(*record_, &owner);
  EXPECT_EQ(remote.get()->QueryInterface(IID_IPMUNKNOWN), &owner);
  EXPECT_EQ(owner.addRefs, 1);
  EXPECT_EQ(owner.releases, 0);
  EXPECT_TRUE(owner.queried.empty());
}

TEST_F(PluginModuleTest, OtherInterfacesAreAskedOfTheOwner) {
  CountingOwner sibling;
  CountingOwner owner;
  owner.answer = &sibling;
  Instance remote(*record_, &owner);
  EXPECT_EQ(remote.get()->QueryInterface(IID_ITALPREMOTE), &sibling);
  EXPECT_EQ(remote.get()->QueryInterface(7), &sibling);
  EXPECT_EQ(owner.queried, (std::vector<PMIID>{IID_ITALPREMOTE, 7}));
  EXPECT_EQ(owner.addRefs, 0);
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
