// talp --json on the real sources: each document is read back with a JSON
// library and compared with the same operation's raw result, its keys with
// the column list, its status and alerts with those of the raw run.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "json_output.h"
#include "database_fixture.h"
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

// The lines of a raw result: a CR at the end ends the last line.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line, '\r');) lines.push_back(line);
  return lines;
}

std::string Joined(const Json& values, const char* separator) {
  std::string text;
  bool first = true;
  for (const Json& value : values) {
    if (!first) text += separator;
    first = false;
    text += value.get<std::string>();
  }
  return text;
}

// Runs args with --raw and with --json and checks that the document stands
// for the raw text: its values, joined again with the result's separators,
// give the raw records (a TAB that only ends a record's last field may be
// missing); records are keyed by the column names of the same descriptor and
// styling; status and standard error do not change. Returns the document.
Json ExpectJsonOfRaw(const Args& args, JsonLayout layout) {
  Args rawArgs = args, jsonArgs = args;
  rawArgs.push_back("--raw");
  jsonArgs.push_back("--json");
  const Run raw = Talp(rawArgs), json = Talp(jsonArgs);
  EXPECT_EQ(json.status, raw.status);
  EXPECT_EQ(json.err, raw.err);
  EXPECT_TRUE(json.out.ends_with("]\n") || json.out.ends_with("}\n")) << json.out;
  const Json doc = Json::parse(json.out);

  std::vector<std::string> rebuilt;
  std::vector<const Json*> records;
  for (const auto& [key, item] : doc.items()) {
    if (layout == JsonLayout::kFields) {
      rebuilt.push_back(key + "\t" + item.get<std::string>());
    } else if (layout == JsonLayout::kNames) {
      rebuilt.push_back(item.get<std::string>());
    } else if (layout == JsonLayout::kEntries) {
      rebuilt.push_back(item.at("key").get<std::string>() + "\t" + item.at("sort").get<std::string>());
    } else {
      records.push_back(&item);
      // A record's fields are lines of their own; a loop's are TAB-separated.
      for (const Json& value : item) {
        if (layout == JsonLayout::kRecord) rebuilt.push_back(value.get<std::string>());
      }
      if (layout != JsonLayout::kRecord) rebuilt.push_back(Joined(item, "\t"));
    }
  }
  const std::vector<std::string> lines = Lines(raw.out);
  EXPECT_EQ(rebuilt.size(), lines.size()) << json.out;
  for (std::size_t i = 0; i < rebuilt.size() && i < lines.size(); ++i) {
    if (rebuilt[i] != lines[i]) {
      EXPECT_EQ(rebuilt[i] + "\t", lines[i]) << "record " << i;
    }
  }

  // Keys: the column names of the same options, without the operation's own argument and condition.
  Args columns = {"columns", "--json"};
  for (std::size_t i = args[0] == "record" ? 2 : 1; i < args.size(); ++i) {
    const bool condition = args[i] == "--where" || args[i] == "--query";
    if (!condition) columns.push_back(args[i]);
    i += condition ? 1 : 0;
  }
  const Json names = records.empty() ? Json() : Json::parse(Talp(columns).out);
  for (const Json* record : records) {
    std::size_t n = 0;
    for (const auto& [key, value] : record->items()) {
      const std::string name = n < names.size() ? names[n].get<std::string>() : "_" + std::to_string(n + 1);
      EXPECT_TRUE(key == name || key == "group" || key == "count") << key << " for " << name;
      ++n;
    }
  }
  return doc;
}

TEST(JsonString, EscapesWhatJsonRequiresAndWritesTheRestAsUTF8) {
  const struct {
    const char* name;
    std::u16string text;
    std::string json;
  } cases[] = {
      {"Plain", u"abc <br> <tb>", "\"abc <br> <tb>\""},
      {"QuoteAndBackslash", u"a\"b\\c/", "\"a\\\"b\\\\c/\""},
      {"ShortEscapes", u"\b\f\n\r\t", "\"\\b\\f\\n\\r\\t\""},
      {"OtherControls", std::u16string(u"\0\x01\x1F\x7F", 4), "\"\\u0000\\u0001\\u001f\x7F\""},
      {"BeyondAscii", u"\u00E9\u6F22\U0001F600", "\"\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80\""},
      {"LoneHighSurrogate", u"a\xD800" u"b", "\"a\xEF\xBF\xBD" "b\""},
      {"LoneLowSurrogateAtTheEnd", u"\xDC00", "\"\xEF\xBF\xBD\""},
      {"ReversedPair", u"\xDC00\xD800", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
  };
  for (const auto& c : cases) {
    std::string json;
    AppendJsonString(c.text, json);
    EXPECT_EQ(json, c.json) << c.name;
    EXPECT_EQ(Json::parse(json).get<std::string>(), WideString::FromUTF16(c.text).ToUTF8()) << c.name;
  }
  std::u16string controls;
  for (char16_t c = 0; c < 0x20; ++c) controls += c;
  std::string json;
  AppendJsonString(controls, json);
  EXPECT_EQ(Json::parse(json).get<std::string>(), WideString::FromUTF16(controls).ToUTF8());
}

constexpr const char* kStyling =
    "<?xml version=\"1.0\"?><Styling><Process><OutputField>value</OutputField><ProcessType>Calc</ProcessType>"
    "<ProcessInfo>[price]*[stock]</ProcessInfo></Process><Process><OutputField>short</OutputField>"
    "<ProcessType>Left</ProcessType><ProcessInfo>[name]</ProcessInfo><StringLength>4</StringLength></Process>"
    "</Styling>";

TEST(TalpJson, EveryOperationOfTheFileSource) {
  const Args file = {"--type", "File", "--file", TALP_EXAMPLES_DIR "/catalogue-tab.txt", "--key", "sku"};
  const Args grouped = {"--group", "category", "--contents", "[name]"};
  const auto with = [&](Args args, const Args& more = {}, const Args& evenMore = {}) {
    args.insert(args.end(), file.begin(), file.end());
    args.insert(args.end(), more.begin(), more.end());
    args.insert(args.end(), evenMore.begin(), evenMore.end());
    return args;
  };
  const struct {
    const char* name;
    Args args;
    JsonLayout layout;
    std::string exactly = "";  // the whole document, where the mapping itself is the point
  } cases[] = {
      {"Columns", with({"columns"}), JsonLayout::kNames},
      {"ColumnsWithComputedFields", with({"columns", "--styling", kStyling}), JsonLayout::kNames},
      {"List", with({"list", "--sort", "price", "--search", "paint"}), JsonLayout::kEntries,
       R"([{"key":"1006","sort":"2.95"},{"key":"1007","sort":"7.40"}])"},
      {"Loop", with({"loop", "--where", "fasteners"}), JsonLayout::kRecords},
      {"LoopOfNothing", with({"loop", "--where", "no such thing"}), JsonLayout::kRecords, "[]"},
      {"Record", with({"record", "1005"}), JsonLayout::kRecord},
      {"RecordWithComputedFields", with({"record", "1005", "--styling", kStyling}), JsonLayout::kRecord},
      {"RecordNotFound", with({"record", "9999"}), JsonLayout::kRecord, "[]"},
      {"Group", with({"group", "--query", "paint"}, grouped), JsonLayout::kRecords,
       R"([{"sku":"1006","name":"Masking tape 25 m","category":"paint","brand":"Tesa","price":"2.95","stock":"150",)"
       R"("description":"Clean removal up to 14 days","group":"<pstyle:LineDark>Masking tape 25 m<br>)"
       R"(<pstyle:LineLight>Paint roller 18 cm","count":"2"}])"},
      {"GroupWithComputedFields", with({"group", "--styling", kStyling}, grouped), JsonLayout::kRecords},
      {"GroupWithoutGroupField", with({"group", "--query", "safety"}), JsonLayout::kRecords},
      {"GroupSelectingNothing", with({"group", "--query", "no such thing"}, grouped), JsonLayout::kRecords,
       R"([{"group":"","count":"1"}])"},
      {"Style", with({"style", "1005", "--styling", kStyling}), JsonLayout::kFields,
       R"({"value":"468.75","short":"Spir"})"},
      {"MissingFile", {"loop", "--type", "File", "--file", "/nonexistent/catalogue.txt"}, JsonLayout::kRecords, "[]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Json doc = ExpectJsonOfRaw(c.args, c.layout);
    if (!c.exactly.empty()) {
      EXPECT_EQ(doc.dump(), c.exactly);
    }
  }
}

class TalpJsonMySql : public test::DatabaseTest {};

TEST_F(TalpJsonMySql, EveryOperationOfTheMySqlSource) {
  Exec({"CREATE TABLE goods (id INT PRIMARY KEY, name TEXT, cat TEXT, note TEXT)",
        "INSERT INTO goods VALUES (1, 'Hammer', 'tools', NULL), (2, 'Drill', 'tools', 'two\\r\\nlines'),"
        "(3, 'Screws', 'fasteners', 'a\\tb \\\" \\\\ \xF0\x9F\x93\xA6')"});
  const Args server = {"--type", "mySQL", "--host", host.GrabCString(), "--port", std::to_string(port),
                       "--user", user.GrabCString(), "--password", password.GrabCString(),
                       "--database", database.GrabCString(), "--table", "goods", "--key", "id"};
  const auto with = [&](Args args, const Args& more = {}) {
    args.insert(args.end(), server.begin(), server.end());
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  const Args grouped = {"--group", "cat", "--contents", "[name]"};
  const struct {
    const char* name;
    Args args;
    JsonLayout layout;
    std::string exactly = "";
  } cases[] = {
      {"Databases", with({"databases"}), JsonLayout::kNames},
      {"Tables", with({"tables"}), JsonLayout::kNames, R"(["goods"])"},
      {"Columns", with({"columns", "--styling", kStyling}), JsonLayout::kNames,
       R"(["id","name","cat","note","value","short"])"},
      {"List", with({"list", "--sort", "id"}), JsonLayout::kEntries},
      // Every field ends with a TAB; values keep their TAB and lose their CR, as in the raw loop.
      {"Loop", with({"loop"}), JsonLayout::kRecords},
      {"Record", with({"record", "2", "--styling", kStyling}), JsonLayout::kRecord},
      {"RecordWithItsGroup", with({"record", "1"}, grouped), JsonLayout::kRecord,
       R"([{"id":"1","name":"Hammer","cat":"tools","note":"",)"
       R"("group":"<pstyle:LineLight>Hammer<br><pstyle:LineDark>Drill","count":"2"}])"},
      {"Group", with({"group", "--query", "SELECT * FROM goods ORDER BY cat, id"}, grouped), JsonLayout::kRecords},
      {"GroupOnAnUnknownField", with({"group", "--group", "nope"}), JsonLayout::kRecords},
      // The column list that --json asks for alerts here, the loop does not: nothing more is said.
      {"UnknownTable", with({"loop"}, {"--table", "nope"}), JsonLayout::kRecords, "[]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Json doc = ExpectJsonOfRaw(c.args, c.layout);
    if (!c.exactly.empty()) {
      EXPECT_EQ(doc.dump(), c.exactly);
    }
  }
}

}  // namespace
}  // namespace talp::cli
