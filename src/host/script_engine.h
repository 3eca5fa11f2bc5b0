// One script file's JavaScript engine: a Duktape heap of its own, bounded in
// memory, with the file compiled once and the script arguments seen as the
// global object scriptArgs (also app.scriptArgs, as scripts written for the
// host expect). Runs of the compiled script share the heap, so that globals
// one run sets are there in the next.
//
// The engine has no check of its own on time: a run lasts until the script
// returns. It therefore lives in the script process (script_process.h),
// which is killed when a run takes too long. Not thread-safe.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

struct duk_hthread;

namespace talp::host {

// Script arguments by name, as UTF-16.
using ScriptValues = std::map<std::u16string, std::u16string>;

class ScriptEngine {
 public:
  // memoryLimit: bytes the heap may hold; an allocation beyond it fails.
  explicit ScriptEngine(std::uint64_t memoryLimit);
  ~ScriptEngine();
  ScriptEngine(const ScriptEngine&) = delete;
  ScriptEngine& operator=(const ScriptEngine&) = delete;

  // Compiles source, the bytes of a UTF-8 file, as the program name. False,
  // with reason set, when it cannot (a syntax error, say, with its line).
  bool Compile(std::string_view source, std::string_view name, std::string& reason);
  // Runs the compiled program with arguments as scriptArgs. True when it
  // returned, arguments then holding what the script left; false with reason
  // (UTF-8: the error and its line, or the memory limit) when it failed.
  bool Run(ScriptValues& arguments, std::string& reason);
  // Whether the memory limit has been hit: the heap is then best dropped.
  bool OverLimit() const;

  struct Heap;

 private:
  struct DestroyHeap {
    void operator()(duk_hthread* context) const;
  };
  std::unique_ptr<Heap> heap_;  // what the allocator and the native functions see
  std::unique_ptr<duk_hthread, DestroyHeap> context_;
  bool compiled_ = false;
};

}  // namespace talp::host
