// The plug-in frame through which a host application loads this library:
// the exported GetPlugIn entry point, the PlugIn object it returns and the
// interface-factory record that lets the host create TALPRemote inside its
// own objects. Without a host, use MakeTALPRemote (or TALPRemote itself).
//
// The host drives everything here from one thread; nothing is guarded.
// Everything the host calls on objects handed over by the module is virtual
// or a function pointer, so a host needs only this header, never the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "talp/talp_remote.h"

using PluginID = std::uint32_t;
using ImplementationID = std::uint32_t;
// The host's handle for the bundle the module was loaded from; opaque here.
using PluginBundleRef = const void*;

// Our ID prefix is 0xEEDA0; the plug-in takes the prefix itself, the
// implementation 0xEEDAE (kTALPRemoteImpl) and the interface 0xEEDAF.
inline constexpr PluginID kTALPRemotePluginID = 0xEEDA0;

class IPMStream;

// How the host creates, sizes and destroys one interface implementation.
// Records live in the module and stay valid until the host unloads it.
struct InterfaceFactoryRecord {
  ImplementationID implementationID;
  // Constructs the implementation in memory (size() bytes from the host, aligned
  // for any object) for the owning object and returns it at that address; the
  // owner is not referenced. Null memory gives null.
  IPMUnknown* (*create)(void* memory, IPMUnknown* owner);
  // Runs the implementation's destructor; the host then frees the memory.
  void (*destroy)(IPMUnknown* object);
  std::size_t (*size)();
  // Persistence; null when the implementation keeps no data of its own.
  void (*read)(IPMUnknown* object, IPMStream* stream, ImplementationID id);
  void (*write)(IPMUnknown* object, IPMStream* stream, ImplementationID id);
  void (*readWrite)(IPMUnknown* object, IPMStream* stream, ImplementationID id);
};

// The host side of PlugIn::LoadFactories. The records passed in stay valid
// for as long as the module stays loaded.
class IHostSession {
 public:
  virtual ~IHostSession() = default;
  // Tells the host that pluginID supplies the record's implementation.
  virtual void InstallClass(PluginID pluginID, const InterfaceFactoryRecord& record) = 0;
  // Gives the host the record with which it creates the implementation.
  virtual void InstallInterface(PluginID pluginID, const InterfaceFactoryRecord& record) = 0;
};

// Resource access bound to the module's bundle.
class MResourceAccess {
 public:
  void SetPluginBundle(PluginBundleRef bundle) { bundle_ = bundle; }
  PluginBundleRef GetPluginBundle() const { return bundle_; }

 private:
  PluginBundleRef bundle_ = nullptr;
};

// The module's one plug-in object; it lives from module load to unload.
class PlugIn {
 public:
  PlugIn() = default;
  PlugIn(const PlugIn&) = delete;
  PlugIn& operator=(const PlugIn&) = delete;
  virtual ~PlugIn() = default;

  // The ID and bundle are the host's; they are kept and returned unchanged.
  virtual void SetPluginID(PluginID pluginID);
  virtual PluginID GetPluginID() const;
  // Also binds the resource access to the bundle.
  virtual void SetBundleRef(PluginBundleRef bundle);
  virtual PluginBundleRef GetResourceFile() const;
  const MResourceAccess& ResourceAccess() const { return resources_; }

  // Hands every factory record of the module to session, first as a class,
  // then as an interface, each under pluginID.
  virtual void LoadFactories(PluginID pluginID, IHostSession& session);

  // The host's defaults, which this plug-in keeps: loaded on first use, no
  // work on load or unload, unloadable, and no stored data to fix up.
  virtual bool LoadAtStartup() const;
  virtual void Load();
  virtual void Unload();
  virtual bool CanUnload() const;
  virtual void FixUpData(IPMUnknown* document);

 private:
  PluginID pluginID_ = 0;
  MResourceAccess resources_;
};

// The module's entry point: the plug-in object, the same one on every call.
extern "C" PlugIn* GetPlugIn();

// Keeps the factory record in the module although no code calls it.
void DontDeadStrip();

// TALPRemote without a host: the caller owns the result; with a null owner
// reference counting does nothing and QueryInterface answers null.
inline std::unique_ptr<ITALPRemote> MakeTALPRemote(IPMUnknown* owner = nullptr) {
  return std::make_unique<TALPRemote>(owner);
}
