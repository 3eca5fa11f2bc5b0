#include "options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>
#include <string>
#include <string_view>

#include "talp/host_services.h"

namespace talp::cli {
namespace {

struct Operation {
  std::string_view name;
  int positionals;  // 0 or 1; -1: at most one
  std::string_view positionalName;
  std::vector<std::string_view> ownOptions;
};

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"databases", 0, "", {}},
      {"tables", 0, "", {}},
      {"columns", 0, "", {"styling"}},
      {"list", 0, "", {"search"}},
      {"loop", 0, "", {"where"}},
      {"record", 1, "KEYVALUE", {"styling"}},
      {"group", 0, "", {"query", "styling"}},
      {"update", 1, "VALUE", {"field", "key-value"}},
      {"sql", 1, "STATEMENT", {"extra"}},
      {"upload", 1, "URL", {"filepath-value", "name"}},
      {"get", 1, "URL", {}},
      {"style", -1, "KEYVALUE", {"styling", "header", "record"}},
  };
  return operations;
}

// Named options that each set one descriptor field.
struct FieldOption {
  std::string_view name;
  int field;
};
constexpr std::array<FieldOption, 15> kFieldOptions = {{
    {"host", 1}, {"port", 2}, {"user", 3}, {"password", 4}, {"database", 5},
    {"table", 6}, {"key", 7}, {"type", 10}, {"dsn", 11}, {"file", 12},
    {"group", 14}, {"contents", 15}, {"column-query", 16}, {"script", 19}, {"sort", 21},
}};

constexpr std::array<std::string_view, 11> kOwnTextOptions = {
    "styling", "search", "where", "query", "field", "key-value", "extra", "filepath-value", "name", "header", "record"};

// The "ANSI" setting named by text, whatever its case.
std::optional<host::AnsiText> AnsiNamed(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  if (text == "utf-8") return host::AnsiText::kUTF8WhereValid;
  if (text == "windows-1252") return host::AnsiText::kWindows1252;
  return std::nullopt;
}

// A script limit: a number above 0 and at most max, the whole text.
bool ReadLimit(const std::string& option, const std::string& text, double max, double& value, std::string& error) {
  std::size_t used = 0;
  try {
    value = std::stod(text, &used);
  } catch (const std::exception&) {
    used = 0;
  }
  if (used == 0 || used != text.size() || !(value > 0 && value <= max)) {
    error = "--" + option + " needs a number above 0 and at most " + std::to_string(static_cast<long>(max));
    return false;
  }
  return true;
}

std::vector<std::string> SplitFields(const std::string& descriptor) {
  std::vector<std::string> fields;
  std::string::size_type start = 0;
  while (true) {
    const auto semicolon = descriptor.find(';', start);
    fields.push_back(descriptor.substr(start, semicolon - start));
    if (semicolon == std::string::npos) return fields;
    start = semicolon + 1;
  }
}

std::string JoinFields(const std::vector<std::string>& fields) {
  std::string joined;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) joined += ';';
    joined += fields[i];
  }
  return joined;
}

// Reads "@path" values; other values are returned as they are.
bool ResolveText(const std::string& option, std::string& value, std::string& error) {
  if (value.empty() || value[0] != '@') return true;
  const std::string path = value.substr(1);
  const auto contents = host::ReadWholeFile(PMString(path));
  if (!contents) {
    error = "cannot read the file '" + path + "' given to --" + option;
    return false;
  }
  value = *contents;
  return true;
}

}  // namespace

ParseResult ParseOptions(const std::vector<std::string>& args, const Environment& environment) {
  ParseResult parsed;
  Options& options = parsed.options;
  std::string& error = parsed.error;
  std::string rawDescriptor;
  std::map<int, std::string> fields;
  if (environment.password != nullptr) fields[4] = environment.password;
  std::optional<std::string> ansi;
  if (environment.ansi != nullptr) ansi = environment.ansi;

  const auto addPositional = [&](const std::string& arg) {
    if (options.operation.empty()) options.operation = arg; else options.arguments.push_back(arg);
  };
  bool onlyPositionals = false;
  for (std::size_t i = 0; i < args.size() && error.empty(); ++i) {
    const std::string& arg = args[i];
    if (onlyPositionals || arg.size() < 2 || arg[0] != '-') {
      addPositional(arg);
      continue;
    }
    if (arg == "--") {
      onlyPositionals = true;
      continue;
    }
    if (arg == "-h" || arg == "--help") {
      options.help = true;
      return parsed;
    }
    if (arg == "--version") {
      options.version = true;
      return parsed;
    }
    if (arg == "--raw" || arg == "--utf16" || arg == "--pretty" || arg == "--json") {
      options.output = arg == "--raw"     ? OutputMode::kRaw
                       : arg == "--utf16" ? OutputMode::kUtf16
                       : arg == "--json"  ? OutputMode::kJson
                                          : OutputMode::kPretty;
      continue;
    }
    // An option with a value: "--name value", "--name=value" or "-d value".
    std::string name = arg == "-d" ? "descriptor" : arg.rfind("--", 0) == 0 ? arg.substr(2) : "";
    std::optional<std::string> value;
    if (const auto equals = name.find('='); equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    }
    const auto field = std::find_if(kFieldOptions.begin(), kFieldOptions.end(),
                                    [&](const FieldOption& f) { return f.name == name; });
    const bool isOwn = std::find(kOwnTextOptions.begin(), kOwnTextOptions.end(), name) != kOwnTextOptions.end();
    const bool isLimit = name == "script-time-limit" || name == "script-memory-limit";
    const bool isSetting = name == "descriptor" || name == "ansi" || isLimit;
    if (name.empty() || (!isSetting && field == kFieldOptions.end() && !isOwn)) {
      error = "unknown option '" + arg + "'";
      break;
    }
    if (!value) {
      if (i + 1 >= args.size()) {
        error = "option '" + arg + "' needs a value";
        break;
      }
      value = args[++i];
    }
    if (name == "ansi") {
      ansi = *value;
      if (!AnsiNamed(*ansi)) error = "--ansi takes utf-8 or windows-1252, not '" + *ansi + "'";
      continue;
    }
    if (isLimit) {
      double limit = 0;
      const bool seconds = name == "script-time-limit";
      if (!ReadLimit(name, *value, seconds ? 1e6 : 1 << 20, limit, error)) break;
      if (seconds) {
        options.scriptSeconds = limit;
      } else {
        options.scriptMegabytes = static_cast<std::uint64_t>(limit);
      }
      continue;
    }
    if (name != "port" && !ResolveText(name, *value, error)) break;
    if (name == "descriptor") {
      rawDescriptor = *value;
    } else if (field != kFieldOptions.end()) {
      if (value->find(';') != std::string::npos) {
        error = "the value of --" + name + " cannot hold ';', which separates descriptor fields";
        break;
      }
      fields[field->field] = *value;
    } else {
      options.texts[name] = *value;
    }
  }
  if (!error.empty()) return parsed;
  if (ansi) {
    const auto setting = AnsiNamed(*ansi);
    if (!setting) {
      error = "TALP_ANSI must be utf-8 or windows-1252, not '" + *ansi + "'";
      return parsed;
    }
    options.ansi = *setting;
  }

  if (options.operation.empty()) {
    error = "no operation given";
    return parsed;
  }
  const auto& operations = Operations();
  const auto op = std::find_if(operations.begin(), operations.end(),
                               [&](const Operation& o) { return o.name == options.operation; });
  if (op == operations.end()) {
    error = "unknown operation '" + options.operation + "'";
    return parsed;
  }
  const auto given = static_cast<int>(options.arguments.size());
  if (op->positionals < 0 ? given > 1 : given != op->positionals) {
    error = op->positionals == 0 ? "'" + options.operation + "' takes no argument"
                                 : "'" + options.operation + "' needs one argument: " + std::string(op->positionalName);
    return parsed;
  }
  for (const auto& [name, value] : options.texts) {
    if (std::find(op->ownOptions.begin(), op->ownOptions.end(), name) == op->ownOptions.end()) {
      error = "option --" + name + " does not apply to '" + options.operation + "'";
      return parsed;
    }
  }

  // Named fields override those of a raw descriptor, which is otherwise kept
  // exactly as given.
  if (fields.empty()) {
    options.descriptor = rawDescriptor;
  } else {
    std::vector<std::string> split = SplitFields(rawDescriptor);
    const int highest = fields.rbegin()->first;
    if (static_cast<int>(split.size()) < highest) split.resize(static_cast<std::size_t>(highest));
    for (const auto& [number, value] : fields) split[static_cast<std::size_t>(number - 1)] = value;
    options.descriptor = JoinFields(split);
  }
  return parsed;
}

std::string UsageText() {
  return R"(Usage: talp OPERATION [options] [argument]

Runs one provider operation and prints its result.

Operations:
  databases                 list the databases (MySQL)
  tables                    list the tables
  columns                   list the columns            [--styling TEXT]
  list                      list records: key TAB sort  [--search TEXT]
  loop                      all records that match      [--where TEXT]
  record KEYVALUE           one record by its key       [--styling TEXT]
  group                     records grouped by a field  [--query TEXT] [--styling TEXT]
  update VALUE              write one field back        --field NAME --key-value TEXT
  sql STATEMENT             run one MySQL statement     [--extra TEXT]
  upload URL                send a file (HTTP POST)     --port N --file PATH [--filepath-value TEXT] [--name TEXT]
  get URL                   fetch a list (HTTP GET)     --port N
  style [KEYVALUE]          the computed fields of a styling document, by name:
                            --styling TEXT with --header NAMES --record VALUES
                            (both TAB-separated), or a source's record KEYVALUE

Connection descriptor:
  -d, --descriptor TEXT     the raw ';'-separated descriptor, used as it stands
  --host (1) --port (2) --user (3) --password (4) --database (5) --table (6)
  --key (7) --type (10) --dsn (11) --file (12) --group (14) --contents (15)
  --column-query (16) --script (19) --sort (21)
                            each sets one descriptor field, over the raw one
  The password may also come from the environment variable TALP_PASSWORD.
  A text option whose value begins with '@' is read from that file (UTF-8).

Files without a byte-order mark:
  --ansi windows-1252       read as Windows-1252 (the default)
  --ansi utf-8              read as UTF-8 when every byte is valid UTF-8, else as
                            Windows-1252; an update writes a file back as it was read
  The environment variable TALP_ANSI takes the same values; --ansi wins over it.

Output:
  --raw                     the result as UTF-8, byte for byte
  --utf16                   the result as UTF-16LE, without byte-order mark
  --pretty                  records per line, fields in aligned columns
  --json                    one JSON document (UTF-8): names as strings, list
                            entries as {"key", "sort"}, records as objects
                            keyed by column name
                            (default: --pretty on a terminal, --raw otherwise)

Scripts (".js" and ".jsx" files of the "Custom" source and of "Script" processes):
  --script-time-limit SECONDS   how long one run may take (default 10)
  --script-memory-limit MB      how much memory its engine may hold (default 256)

Help:
  -h, --help                this text
  --version                 talp's version

Alerts go to standard error as 'alert: MESSAGE'. The exit status is the
operation's status (0 where it has none), 2 for a usage error.
)";
}

}  // namespace talp::cli
