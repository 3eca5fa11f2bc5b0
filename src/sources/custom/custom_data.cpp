#include "sources/custom/custom_data.h"

#include "host/unit_search.h"
#include "sources/custom/custom_base.h"
#include "talp/host_services.h"
#include "text/text_handlers.h"

namespace talp {

int GetCustomDataFromScript(const PMString& scriptPath, WideString& header, WideString& data,
                            const PMString& dataQuery, const PMString& groupUsingListField,
                            const PMString& groupContents) {
  header.Clear();
  data.Clear();
  host::HostServices& host = host::Host();
  const auto runner = host.FindScriptRunner(scriptPath);
  if (!runner || !runner->CanRunFile(scriptPath)) return 0;
  host::ScriptArgumentStore& arguments = host.ScriptArguments();
  // The two bracketing calls before any argument is set; the closing one
  // when the results have been read, before the runner goes.
  const host::ScriptArgumentsScope run(arguments);
  arguments.Set(PMString("DataQuery"), dataQuery);
  arguments.Set(PMString("GroupContens"), groupContents);
  arguments.Set(PMString("GroupUsingListField"), groupUsingListField);
  runner->RunFile(scriptPath);
  header.Append(arguments.Get(PMString("HeaderData")).AsWide());
  data.Append(arguments.Get(PMString("ProductionData")).AsWide());
  return 0;
}

int fetchColumnListCustom(const PMString& descriptor, const PMString& scriptPath, WideString& result) {
  const PMString groupField = myGetLine(descriptor, ';', 14);
  const PMString groupContents = myGetLine(descriptor, ';', 15);
  const PMString query = myGetLine(descriptor, ';', 16);
  result.Clear();
  WideString header, data;
  GetCustomDataFromScript(scriptPath, header, data, query, groupField, groupContents);
  std::u16string names(header.Units());
  host::ReplaceUnit(names, kTab, kCR);
  result = WideString(std::move(names));
  return 0;
}

}  // namespace talp
