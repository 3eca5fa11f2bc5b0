#include "host/script_engine.h"

#include <duktape.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "host/utf.h"

namespace talp::host {

// What the allocator and the native functions share. Duktape unwinds its
// errors with longjmp, which skips C++ destructors: the native functions keep
// their texts here rather than in locals.
struct ScriptEngine::Heap {
  std::uint64_t limit;
  std::uint64_t used = 0;
  bool overLimit = false;
  ScriptValues* arguments = nullptr;  // those of the run under way
  std::u16string name, value;
  std::string bytes;
};

namespace {

using Heap = ScriptEngine::Heap;

// Each block carries its size in front, so that the heap's total is exact.
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* Allocate(void* udata, duk_size_t size) {
  Heap& heap = *static_cast<Heap*>(udata);
  if (size > heap.limit - heap.used) {
    heap.overLimit = true;
    return nullptr;
  }
  auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &size, sizeof size);
  heap.used += size;
  return block + kHeader;
}

void Free(void* udata, void* pointer) {
  if (pointer == nullptr) return;
  unsigned char* block = static_cast<unsigned char*>(pointer) - kHeader;
  duk_size_t size;
  std::memcpy(&size, block, sizeof size);
  static_cast<Heap*>(udata)->used -= size;
  std::free(block);
}

void* Reallocate(void* udata, void* pointer, duk_size_t size) {
  if (pointer == nullptr) return Allocate(udata, size);
  if (size == 0) {
    Free(udata, pointer);
    return nullptr;
  }
  Heap& heap = *static_cast<Heap*>(udata);
  unsigned char* block = static_cast<unsigned char*>(pointer) - kHeader;
  duk_size_t old;
  std::memcpy(&old, block, sizeof old);
  if (size > old && size - old > heap.limit - heap.used) {
    heap.overLimit = true;
    return nullptr;
  }
  auto* moved = static_cast<unsigned char*>(std::realloc(block, size + kHeader));
  if (moved == nullptr) return nullptr;
  std::memcpy(moved, &size, sizeof size);
  heap.used = heap.used - old + size;
  return moved + kHeader;
}

// Duktape calls this only for an error outside a protected call, which this
// file never makes. The engine lives in the script process, which ends here;
// the runner reports the script as failed.
[[noreturn]] void Fatal(void*, const char* message) {
  const char prefix[] = "script engine: ";
  [[maybe_unused]] auto written = ::write(STDERR_FILENO, prefix, sizeof prefix - 1);
  written = ::write(STDERR_FILENO, message, std::strlen(message));
  ::_exit(70);
}

Heap& HeapOf(duk_context* context) {
  duk_memory_functions functions;
  duk_get_memory_functions(context, &functions);
  return *static_cast<Heap*>(functions.udata);
}

// The value at index as text, in to (a coerced string: 5 reads as "5").
void ReadText(duk_context* context, duk_idx_t index, std::u16string& to) {
  duk_size_t length = 0;
  const char* bytes = duk_to_lstring(context, index, &length);
  to.clear();
  utf::DecodeCESU8({bytes, length}, to);
}

void PushText(duk_context* context, std::u16string_view text, std::string& bytes) {
  bytes.clear();
  utf::EncodeCESU8(text, bytes);
  duk_push_lstring(context, bytes.data(), bytes.size());
}

duk_ret_t ArgumentGet(duk_context* context) {
  Heap& heap = HeapOf(context);
  ReadText(context, 0, heap.name);
  std::u16string_view value;
  if (heap.arguments != nullptr) {
    const auto found = heap.arguments->find(heap.name);
    if (found != heap.arguments->end()) value = found->second;
  }
  PushText(context, value, heap.bytes);
  return 1;
}

duk_ret_t ArgumentSet(duk_context* context) {
  Heap& heap = HeapOf(context);
  ReadText(context, 0, heap.name);
  ReadText(context, 1, heap.value);
  if (heap.arguments != nullptr) (*heap.arguments)[heap.name] = heap.value;
  return 0;
}

duk_ret_t ArgumentIsDefined(duk_context* context) {
  Heap& heap = HeapOf(context);
  ReadText(context, 0, heap.name);
  duk_push_boolean(context, heap.arguments != nullptr && heap.arguments->count(heap.name) != 0);
  return 1;
}

duk_ret_t ArgumentsClear(duk_context* context) {
  Heap& heap = HeapOf(context);
  if (heap.arguments != nullptr) heap.arguments->clear();
  return 0;
}

// scriptArgs and app.scriptArgs, the same object.
duk_ret_t DefineGlobals(duk_context* context, void*) {
  duk_push_global_object(context);
  duk_push_object(context);
  const struct {
    const char* name;
    duk_c_function function;
    duk_idx_t arguments;
  } kMethods[] = {{"get", ArgumentGet, 1}, {"set", ArgumentSet, 2}, {"isDefined", ArgumentIsDefined, 1},
                  {"clear", ArgumentsClear, 0}};
  for (const auto& method : kMethods) {
    duk_push_c_function(context, method.function, method.arguments);
    duk_put_prop_string(context, -2, method.name);
  }
  duk_dup(context, -1);
  duk_put_prop_string(context, -3, "scriptArgs");
  duk_push_object(context);
  duk_swap_top(context, -2);
  duk_put_prop_string(context, -2, "scriptArgs");
  duk_put_prop_string(context, -2, "app");
  duk_pop(context);
  return 0;
}

struct Source {
  std::string_view text, name;
};

// The program is kept in the heap stash, out of the scripts' reach.
duk_ret_t CompileProgram(duk_context* context, void* udata) {
  const Source& source = *static_cast<const Source*>(udata);
  duk_push_heap_stash(context);
  duk_push_lstring(context, source.name.data(), source.name.size());
  duk_compile_lstring_filename(context, 0, source.text.data(), source.text.size());
  duk_put_prop_string(context, -2, "program");
  return 0;
}

duk_ret_t RunProgram(duk_context* context, void*) {
  duk_push_heap_stash(context);
  duk_get_prop_string(context, -1, "program");
  duk_call(context, 0);
  return 0;
}

// "ReferenceError: identifier 'x' undefined (line 3)"; a thrown value that is
// no error reads as itself. Called with the error on the stack top.
duk_ret_t DescribeError(duk_context* context, void* udata) {
  std::string& reason = *static_cast<std::string*>(udata);
  long line = 0;
  if (duk_is_error(context, -1)) {
    duk_get_prop_string(context, -1, "lineNumber");
    if (duk_is_number(context, -1)) line = static_cast<long>(duk_get_number(context, -1));
    duk_pop(context);
  }
  duk_size_t length = 0;
  const char* bytes = duk_safe_to_lstring(context, -1, &length);
  std::u16string units;
  utf::DecodeCESU8({bytes, length}, units);
  reason.clear();
  utf::EncodeUTF8(units, reason);
  // Syntax errors name their line themselves.
  if (line > 0 && reason.find("(line ") == std::string::npos) reason += " (line " + std::to_string(line) + ")";
  return 0;
}

std::string MemoryReason(std::uint64_t limit) {
  return "it needed more than " + std::to_string(limit >> 20) + " MB of memory";
}

}  // namespace

void ScriptEngine::DestroyHeap::operator()(duk_hthread* context) const { duk_destroy_heap(context); }

ScriptEngine::ScriptEngine(std::uint64_t memoryLimit) : heap_(std::make_unique<Heap>()) {
  heap_->limit = memoryLimit;
  context_.reset(duk_create_heap(Allocate, Reallocate, Free, heap_.get(), Fatal));
  if (context_ && duk_safe_call(context_.get(), DefineGlobals, nullptr, 0, 1) != DUK_EXEC_SUCCESS) context_.reset();
  if (context_) duk_set_top(context_.get(), 0);
}

ScriptEngine::~ScriptEngine() = default;

bool ScriptEngine::Compile(std::string_view source, std::string_view name, std::string& reason) {
  if (!context_) {
    reason = MemoryReason(heap_->limit);
    return false;
  }
  // Read as UTF-8 and handed over as CESU-8, so that a character beyond
  // U+FFFF typed in the source is the same two units as one passed in.
  std::u16string units;
  utf::DecodeUTF8(source, units);
  std::string text, fileName;
  utf::EncodeCESU8(units, text);
  units.clear();
  utf::DecodeUTF8(name, units);
  utf::EncodeCESU8(units, fileName);
  duk_context* context = context_.get();
  heap_->overLimit = false;
  Source program{text, fileName};
  compiled_ = duk_safe_call(context, CompileProgram, &program, 0, 1) == DUK_EXEC_SUCCESS;
  if (!compiled_) {
    if (heap_->overLimit) {
      reason = MemoryReason(heap_->limit);
    } else if (duk_safe_call(context, DescribeError, &reason, 1, 1) != DUK_EXEC_SUCCESS) {
      reason = "the script cannot be compiled";
    }
  }
  duk_set_top(context, 0);
  return compiled_;
}

bool ScriptEngine::Run(ScriptValues& arguments, std::string& reason) {
  if (!compiled_) {
    reason = "the script is not compiled";
    return false;
  }
  duk_context* context = context_.get();
  heap_->overLimit = false;
  heap_->arguments = &arguments;
  const bool done = duk_safe_call(context, RunProgram, nullptr, 0, 1) == DUK_EXEC_SUCCESS;
  heap_->arguments = nullptr;
  if (!done) {
    if (heap_->overLimit) {
      reason = MemoryReason(heap_->limit);
    } else if (duk_safe_call(context, DescribeError, &reason, 1, 1) != DUK_EXEC_SUCCESS) {
      reason = "the script failed";
    }
  }
  duk_set_top(context, 0);
  return done;
}

bool ScriptEngine::OverLimit() const { return heap_->overLimit || !context_; }

}  // namespace talp::host
