#include "run.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>

#include "cli_host.h"
#include "host/unique_fd.h"
#include "host/script_runner.h"
#include "host/unit_search.h"
#include "json_output.h"
#include "options.h"
#include "talp/host_services.h"
#include "output.h"
#include "talp/version.h"
#include "text/record_template.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp::cli {
namespace {

struct Invocation {
  const Options& options;
  PMString descriptor;

  PMString Field(int n) const { return myGetLine(descriptor, ';', n); }
  int Port() const { return Field(2).GetAsNumber(); }
  PMString Text(const std::string& name) const {
    const auto it = options.texts.find(name);
    return it == options.texts.end() ? PMString() : PMString(it->second);
  }
  WideString WideText(const std::string& name) const { return WideString(Text(name)); }
  const std::string& Argument() const { return options.arguments.front(); }
};

// The computed fields of a styling document as "name TAB value" lines, for a
// record given as text or one fetched from the descriptor's source.
int StyleRecord(ITALPRemote& remote, const Invocation& call, WideString& result) {
  const host::ScriptScope scripts;  // one operation: its scripts share a session
  const WideString styling = call.WideText("styling");
  std::u16string header, fields;
  int status = 0;
  if (call.options.texts.count("record") != 0) {
    header = call.WideText("header").Units();
    fields = call.WideText("record").Units();
  } else {
    // The record and its names as the source has them, unstyled.
    const PMString key = call.options.arguments.empty() ? PMString() : PMString(call.Argument());
    WideString names, record;
    status = remote.GetColumnList(call.descriptor, WideString(), names);
    if (status == 0) status = remote.GetSpecificRecord(call.descriptor, key, WideString(), record);
    header = names.Units();
    fields = record.Units();
  }
  host::ReplaceUnit(header, kTab, kCR);
  host::ReplaceUnit(fields, kCR, kTab);
  // Like the records of a loop, the last field ends with a TAB, so that the
  // computed values follow it as fields of their own.
  if (fields.empty() || fields.back() != kTab) fields.push_back(kTab);
  WordStyling styler(styling);
  std::vector<std::u16string> values;
  if (styler.IsDocument()) styler.ApplyDocument(WideString(std::move(header)), fields, &values);
  WideString names;
  styler.AppendNames(names);
  std::size_t n = 0;
  for (const std::u16string_view name : SplitFields(names.Units(), kCR)) {
    if (n >= values.size()) break;
    // A value may hold line breaks and TABs; shown as markers it stays on its line.
    WideString value(std::move(values[n++]));
    SearchReplaceUnicode(value, WideString("\r"), WideString("<br>"));
    SearchReplaceUnicode(value, WideString("\t"), WideString("<tb>"));
    result.AppendUnits(name);
    result.AppendUnits(u"\t");
    result.Append(value);
    result.AppendUnits(u"\r");
  }
  return status;
}

// Why the data file of a "File" descriptor cannot be read, or nothing.
std::optional<std::string> WhyDataFileUnreadable(const Invocation& call) {
  const std::string& op = call.options.operation;
  const bool readsDataFile = op == "columns" || op == "list" || op == "loop" || op == "record" || op == "group" ||
                             op == "update" || (op == "style" && call.options.texts.count("record") == 0);
  if (!readsDataFile || call.Field(10) != PMString("File")) return std::nullopt;
  const std::string path = call.Field(12).GrabCString();
  if (path.empty()) return "no data file given (--file)";
  const host::UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat info {};
  if (!fd.IsValid()) return path + ": " + std::strerror(errno);
  if (::fstat(fd.Get(), &info) == 0 && S_ISDIR(info.st_mode)) return path + ": " + std::strerror(EISDIR);
  return std::nullopt;
}

// Runs the operation; result is written only by operations that have one.
int RunOperation(ITALPRemote& remote, const Invocation& call, WideString& result, bool& hasResult) {
  const std::string& op = call.options.operation;
  const PMString& d = call.descriptor;
  hasResult = true;
  if (op == "databases") return remote.GetDatabaseList(d, result);
  if (op == "tables") return remote.GetTableList(d, result);
  if (op == "columns") return remote.GetColumnList(d, call.WideText("styling"), result);
  if (op == "list") return remote.GetRecordList(d, result, call.Text("search"), 0);
  if (op == "loop") return remote.GetRecordLoop(d, result, call.Text("where"));
  if (op == "record") return remote.GetSpecificRecord(d, PMString(call.Argument()), call.WideText("styling"), result);
  if (op == "group") {
    remote.GetGroupDataLoop(d, call.WideText("styling"), result, call.Text("query"));
    return 0;
  }
  if (op == "get") {
    remote.GetUsingHttpPost(PMString(call.Argument()), call.Port(), result);
    return 0;
  }
  if (op == "style") return StyleRecord(remote, call, result);
  hasResult = false;
  if (op == "update") {
    return remote.SendUpdateBaseFieldWithInfo(WideString(call.Argument()), call.Text("field"), call.Text("key-value"),
                                              call.Field(1), call.Port(), call.Field(3), call.Field(4), call.Field(5),
                                              call.Field(6), call.Field(7), call.Field(10), call.Field(11),
                                              call.Field(12));
  }
  if (op == "sql") {
    return remote.SendConnectWithInfoSQL(WideString(call.Argument()), call.Field(1), call.Port(), call.Field(3),
                                         call.Field(4), call.Field(5), call.Text("extra"));
  }
  if (op == "upload") {
    remote.SendUsingHttpPost(PMString(call.Argument()), call.Port(), call.Field(12), call.Text("filepath-value"),
                             call.Text("name"));
  }
  return 0;
}

// How --json reads the operation's result.
JsonLayout LayoutOf(const std::string& op) {
  if (op == "list") return JsonLayout::kEntries;
  if (op == "loop" || op == "group") return JsonLayout::kRecords;
  if (op == "record") return JsonLayout::kRecord;
  if (op == "style") return JsonLayout::kFields;
  if (op == "get") return JsonLayout::kTable;
  return JsonLayout::kNames;
}

// The names that key the records of --json: the column list of the same
// descriptor and styling, asked without showing its alerts again.
JsonKeys KeysFor(ITALPRemote& remote, const Invocation& call, CliHost& cliHost) {
  JsonKeys keys;
  const std::string& op = call.options.operation;
  if (op != "loop" && op != "record" && op != "group") return keys;
  cliHost.SilenceAlerts(true);
  remote.GetColumnList(call.descriptor, call.WideText("styling"), keys.names);
  cliHost.SilenceAlerts(false);
  const PMString group = call.Field(14);
  keys.grouped = op != "loop" && !group.IsEmpty() && group != PMString("None");
  return keys;
}

}  // namespace

int RunTalp(ITALPRemote& remote, const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
            bool outIsTerminal, const Environment& environment, std::FILE* terminal) {
  const ParseResult parsed = ParseOptions(args, environment);
  if (parsed.options.help) {
    out << UsageText();
    return 0;
  }
  if (parsed.options.version) {
    out << "talp " << LibraryVersion() << '\n';
    return 0;
  }
  if (!parsed.error.empty()) {
    err << "talp: " << parsed.error << "\nTry 'talp --help' for more information.\n";
    return 2;
  }
  const Options& options = parsed.options;
  const Invocation call{options, PMString(options.descriptor)};
  CliHost cliHost(err, terminal, options.ansi);
  host::ScriptLimits limits = cliHost.GetScriptLimits();
  if (options.scriptSeconds) limits.seconds = *options.scriptSeconds;
  if (options.scriptMegabytes) limits.megabytes = *options.scriptMegabytes;
  cliHost.SetScriptLimits(limits);
  const host::ScopedHostServices scope(cliHost);
  // The operation itself says nothing of a data file it cannot open.
  if (const auto why = WhyDataFileUnreadable(call)) cliHost.Note(*why);
  WideString result;
  bool hasResult = false;
  const int status = RunOperation(remote, call, result, hasResult);
  if (hasResult) {
    OutputMode mode = options.output;
    if (mode == OutputMode::kAuto) mode = outIsTerminal ? OutputMode::kPretty : OutputMode::kRaw;
    if (mode == OutputMode::kJson) {
      WriteJson(result, LayoutOf(options.operation), KeysFor(remote, call, cliHost), out);
    } else {
      WriteResult(result, mode, out);
    }
  }
  return status;
}

}  // namespace talp::cli
