#include "json_output.h"

#include <cstddef>
#include <string>
#include <vector>

#include "host/utf.h"
#include "text/record_template.h"

namespace talp::cli {
namespace {

using Views = std::vector<std::u16string_view>;

// The lines of text: a CR at the very end ends the last line rather than
// starting an empty one, and the empty text has none.
Views Lines(std::u16string_view text) {
  if (text.empty()) return {};
  if (text.back() == u'\r') text.remove_suffix(1);
  return SplitFields(text, u'\r');
}

// Writes the document in pieces, so that a result of many megabytes is not
// held twice.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}
  ~JsonWriter() { Flush(); }
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void Raw(std::string_view text) { text_ += text; }
  void String(std::u16string_view text) { AppendJsonString(text, text_); }
  void Member(std::u16string_view name, std::u16string_view value) {
    String(name);
    text_ += ':';
    String(value);
  }
  // Ends one element of an array: a comma before the next, and a flush now and then.
  void Comma(bool& first) {
    if (!first) text_ += ',';
    first = false;
    if (text_.size() >= (std::size_t{1} << 20)) Flush();
  }

 private:
  void Flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }
  std::ostream& out_;
  std::string text_;
};

void WriteRecord(const Views& values, const Views& names, bool grouped, JsonWriter& json) {
  std::size_t fields = values.size();
  bool groupValues = false;
  if (grouped && fields >= 2 && (fields >= names.size() + 2 || fields == 2)) {
    groupValues = true;
    fields -= 2;
  } else if (fields > names.size() && values.back().empty()) {
    --fields;  // the TAB that ends the last field
  }
  bool first = true;
  json.Raw("{");
  for (std::size_t i = 0; i < fields; ++i) {
    json.Comma(first);
    if (i < names.size()) {
      json.String(names[i]);
    } else {
      const std::string key = "_" + std::to_string(i + 1);
      json.String(std::u16string(key.begin(), key.end()));
    }
    json.Raw(":");
    json.String(values[i]);
  }
  if (groupValues) {
    json.Comma(first);
    json.Member(u"group", values[fields]);
    json.Comma(first);
    json.Member(u"count", values[fields + 1]);
  }
  json.Raw("}");
}

}  // namespace

void AppendJsonString(std::u16string_view text, std::string& out) {
  static constexpr char kHex[] = "0123456789abcdef";
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    const char32_t c = utf::NextChar(text, i);
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          out += "\\u00";
          out += kHex[c >> 4];
          out += kHex[c & 0xF];
        } else if (c < 0x80) {
          out += static_cast<char>(c);
        } else {
          utf::AppendUTF8(out, c);  // a lone surrogate becomes U+FFFD
        }
    }
  }
  out += '"';
}

void WriteJson(const WideString& result, JsonLayout layout, const JsonKeys& keys, std::ostream& out) {
  {
    JsonWriter json(out);
    const Views lines = Lines(result.Units());
    bool first = true;
    json.Raw(layout == JsonLayout::kFields ? "{" : "[");
    if (layout == JsonLayout::kRecord) {
      if (!lines.empty()) WriteRecord(lines, Lines(keys.names.Units()), keys.grouped, json);
    } else {
      const Views names = Lines(keys.names.Units());
      for (const std::u16string_view line : lines) {
        json.Comma(first);
        if (layout == JsonLayout::kNames) {
          json.String(line);
          continue;
        }
        const Views fields = SplitFields(line, u'\t');
        const auto field = [&fields](std::size_t n) { return n < fields.size() ? fields[n] : std::u16string_view(); };
        switch (layout) {
          case JsonLayout::kEntries:
            json.Raw("{");
            json.Member(u"key", field(0));
            json.Raw(",");
            json.Member(u"sort", field(1));
            json.Raw("}");
            break;
          case JsonLayout::kFields:
            json.Member(field(0), field(1));
            break;
          case JsonLayout::kTable: {
            bool firstField = true;
            json.Raw("[");
            for (const std::u16string_view value : fields) {
              json.Comma(firstField);
              json.String(value);
            }
            json.Raw("]");
            break;
          }
          default:
            WriteRecord(fields, names, keys.grouped, json);
        }
      }
    }
    json.Raw(layout == JsonLayout::kFields ? "}\n" : "]\n");
  }
  out.flush();
}

}  // namespace talp::cli
