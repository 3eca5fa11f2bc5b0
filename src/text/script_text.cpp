#include "text/script_text.h"

#include "talp/host_services.h"

namespace talp {

void UseScriptToManipulate(const PMString& scriptPath, WideString& text) {
  host::HostServices& host = host::Host();
  const auto runner = host.FindScriptRunner(scriptPath);
  if (!runner || !runner->CanRunFile(scriptPath)) return;
  const PMString kArgument("scriptArguments");
  host::ScriptArgumentStore& arguments = host.ScriptArguments();
  const host::ScriptArgumentsScope run(arguments);
  arguments.Set(kArgument, PMString(text));
  runner->RunFile(scriptPath);
  text = WideString(arguments.Get(kArgument));
}

}  // namespace talp
