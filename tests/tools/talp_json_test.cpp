// talp --json on the real sources: each document is read back with a JSON
// library and compared with the same operation's raw result, its status and
// alerts with those of the raw run.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "database_fixture.h"
#include "json_output.h"
#include "run.h"
#include "talp/talp_remote.h"

namespace talp::cli {
namespace {

using Json = nlohmann::ordered_json;
using Args = std::vector<std::string>;

struct Run {
  int status;
  std::string out, err;
};

// talp in-process; alerts reach the process's standard error, so it is captured too.
Run Talp(Args args) {
  TALPRemote remote;
  std::ostringstream out, err;
  testing::internal::CaptureStderr();
  const int status = RunTalp(remote, args, out, err, false, {});
  return {status, out.str(), err.str() + testing::internal::GetCapturedStderr()};
}

struct JsonCase {
  const char* name;
  Args args;
  JsonLayout layout;
  std::string exactly = "";  // the whole document, where the keys are the point
};

// Runs each case with --raw and with --json and checks that the document
// stands for the raw text: its values, joined again with the result's
// separators, give the raw records (a TAB that only ends a record's last field
// may be missing); status and standard error do not change.
void ExpectJsonOfRaw(const std::vector<JsonCase>& cases) {
  for (const JsonCase& c : cases) {
    SCOPED_TRACE(c.name);
    Args rawArgs = c.args, jsonArgs = c.args;
    rawArgs.push_back("--raw");
    jsonArgs.push_back("--json");
    const Run raw = Talp(rawArgs), json = Talp(jsonArgs);
    EXPECT_EQ(json.status, raw.status);
    EXPECT_EQ(json.err, raw.err);
    EXPECT_TRUE(json.out.ends_with("]\n") || json.out.ends_with("}\n")) << json.out;
    const Json doc = Json::parse(json.out);
    if (!c.exactly.empty()) {
      EXPECT_EQ(doc.dump(), c.exactly);
    }
    std::vector<std::string> rebuilt, lines;
    for (const auto& [key, item] : doc.items()) {
      if (c.layout == JsonLayout::kFields) {
        rebuilt.push_back(key + "\t" + item.get<std::string>());
      } else if (c.layout == JsonLayout::kNames) {
        rebuilt.push_back(item.get<std::string>());
      } else if (c.layout == JsonLayout::kEntries) {
        rebuilt.push_back(item.at("key").get<std::string>() + "\t" + item.at("sort").get<std::string>());
      } else {
        // A record's fields are lines of their own; a loop's are TAB-separated.
        std::string joined, separator;
        for (const Json& value : item) {
          if (c.layout == JsonLayout::kRecord) rebuilt.push_back(value.get<std::string>());
          joined += separator + value.get<std::string>();
          separator = "\t";
        }
        if (c.layout != JsonLayout::kRecord) rebuilt.push_back(joined);
      }
    }
    std::istringstream in(raw.out);  // a CR at the end ends the last line
    for (std::string line; std::getline(in, line, '\r');) lines.push_back(line);
    EXPECT_EQ(rebuilt.size(), lines.size()) << json.out;
    for (std::size_t i = 0; i < rebuilt.size() && i < lines.size(); ++i) {
      if (rebuilt[i] != lines[i]) {
        EXPECT_EQ(rebuilt[i] + "\t", lines[i]) << "record " << i;
      }
    }
  }
}

// What the end-to-end documents do not hold: other controls, and lone surrogates.
TEST(JsonString, EscapesWhatJsonRequiresAndWritesTheRestAsUTF8) {
  const struct {
    const char* name;
    std::u16string text;
    std::string json;
  } cases[] = {
      {"ShortEscapes", u"\b\f\n\r\t\"\\", "\"\\b\\f\\n\\r\\t\\\"\\\\\""},
      {"OtherControls", std::u16string(u"\0\x01\x1F\x7F", 4), "\"\\u0000\\u0001\\u001f\x7F\""},
      {"LoneHighSurrogate", u"a\xD800" u"b", "\"a\xEF\xBF\xBD" "b\""},
  };
  for (const auto& c : cases) {
    std::string json;
    AppendJsonString(c.text, json);
    EXPECT_EQ(json, c.json) << c.name;
    EXPECT_EQ(Json::parse(json).get<std::string>(), WideString::FromUTF16(c.text).ToUTF8()) << c.name;
  }
}

constexpr const char* kStyling =
    "<?xml version=\"1.0\"?><Styling><Process><OutputField>value</OutputField><ProcessType>Calc</ProcessType>"
    "<ProcessInfo>[price]*[stock]</ProcessInfo></Process><Process><OutputField>short</OutputField>"
    "<ProcessType>Left</ProcessType><ProcessInfo>[name]</ProcessInfo><StringLength>4</StringLength></Process>"
    "</Styling>";

Args With(Args args, const Args& more) {
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

// The File source's column list has no CR after its last name, so the first
// computed name is glued onto it, which shifts the computed values to "_N".
TEST(TalpJson, EveryOperationOfTheFileSource) {
  const Args file = {"--type", "File", "--file", TALP_EXAMPLES_DIR "/catalogue-tab.txt", "--key", "sku"};
  const Args grouped = With(file, {"--group", "category", "--contents", "[name]"});
  ExpectJsonOfRaw({
      {"Columns", With({"columns", "--styling", kStyling}, file), JsonLayout::kNames,
       R"(["sku","name","category","brand","price","stock","descriptionvalue","short"])"},
      {"List", With({"list", "--sort", "price", "--search", "paint"}, file), JsonLayout::kEntries,
       R"([{"key":"1006","sort":"2.95"},{"key":"1007","sort":"7.40"}])"},
      {"RecordNotFound", With({"record", "9999"}, file), JsonLayout::kRecord, "[]"},
      {"Group", With({"group", "--query", "safety", "--styling", kStyling}, grouped), JsonLayout::kRecords,
       R"([{"sku":"1008","name":"Safety glasses","category":"safety","brand":"Uvex","price":"9.99","stock":"80",)"
       R"("descriptionvalue":"Anti-fog, EN 166","short":"799.2","_9":"Safe","group":"<pstyle:LineDark>Safety glasses)"
       R"(<br><pstyle:LineLight>Work gloves, size 9","count":"2"}])"},
      {"GroupSelectingNothing", With({"group", "--query", "no such thing"}, grouped), JsonLayout::kRecords,
       R"([{"group":"","count":"1"}])"},
      {"Style", With({"style", "1005", "--styling", kStyling}, file), JsonLayout::kFields,
       R"({"value":"468.75","short":"Spir"})"},
  });
}

class TalpJsonMySql : public test::DatabaseTest {};

// Every field of the loop ends with a TAB, which only ends it; values keep
// their TAB (so a value beyond the names is "_N") and lose their CR, as in the
// raw loop.
TEST_F(TalpJsonMySql, EveryOperationOfTheMySqlSource) {
  Exec({"CREATE TABLE goods (id INT PRIMARY KEY, name TEXT, cat TEXT, note TEXT)",
        "INSERT INTO goods VALUES (1, 'Hammer', 'tools', NULL), (2, 'Drill', 'tools', 'two\\r\\nlines'),"
        "(3, 'Screws', 'fasteners', 'a\\tb \\\" \\\\ \xF0\x9F\x93\xA6')"});
  const Args server = {"--type", "mySQL", "--host", host.GrabCString(), "--port", std::to_string(port),
                       "--user", user.GrabCString(), "--password", password.GrabCString(),
                       "--database", database.GrabCString(), "--table", "goods", "--key", "id"};
  ExpectJsonOfRaw({
      {"Databases", With({"databases"}, server), JsonLayout::kNames},
      {"Tables", With({"tables"}, server), JsonLayout::kNames, R"(["goods"])"},
      {"Loop", With({"loop"}, server), JsonLayout::kRecords,
       R"([{"id":"1","name":"Hammer","cat":"tools","note":""},{"id":"2","name":"Drill","cat":"tools",)"
       R"("note":"two\nlines"},{"id":"3","name":"Screws","cat":"fasteners","note":"a","_5":"b \" \\ )"
       "\xF0\x9F\x93\xA6\"}]"},
      {"RecordWithItsGroup", With({"record", "1", "--group", "cat", "--contents", "[name]"}, server),
       JsonLayout::kRecord,
       R"([{"id":"1","name":"Hammer","cat":"tools","note":"",)"
       R"("group":"<pstyle:LineLight>Hammer<br><pstyle:LineDark>Drill","count":"2"}])"},
      // The column list that --json asks for alerts here, the loop does not: nothing more is said.
      {"UnknownTable", With({"loop"}, With(server, {"--table", "nope"})), JsonLayout::kRecords, "[]"},
  });
}

}  // namespace
}  // namespace talp::cli
