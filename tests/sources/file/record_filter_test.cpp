#include "sources/file/record_filter.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace talp {
namespace {

TEST(WhereParser, ReadsTheParts) {
  const struct {
    const char* name;
    std::string condition, op, field, value;
  } cases[] = {
      {"Like", "where name LIKE 'Smi%'", "LIKE", "name", "Smi%"},
      {"EqualsWithSpacesInValue", "where name = 'Ann Bo'", "=", "name", "Ann Bo"},
      // Spaces before the value's quote belong to the value, and end it at that quote.
      {"SpacesBeforeTheQuote", "where   name   =   'x'", "=", "name", "  "},
      // A second condition is glued onto the parts of the first.
      {"SecondConditionGlued", "where a LIKE 'x' and b = 'y'", "LIKE=", "ab", "x"},
      {"UnquotedValueRunsToTheEnd", "where a = x", "=", "a", "x"},
      // Without a closing quote the value is read again from its second character.
      {"UnclosedValueIsReadAgain", "where a = 'x y", "=", "ay", "x y"},
      {"TooShort", "wher", "", "", ""},
      {"NoSpaceAfterWhere", "whereabouts", "", "", ""},
      {"FieldOnly", "where name", "", "name", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString op, field, value;
    FindFieldAndValueFromWhere(op, field, value, WideString(c.condition));
    EXPECT_EQ(op.ToUTF8() + "|" + field.ToUTF8() + "|" + value.ToUTF8(), c.op + "|" + c.field + "|" + c.value);
  }
}

TEST(WhereParser, AppendsToWhatTheCallerPassed) {
  WideString op("o"), field("f"), value("v");
  FindFieldAndValueFromWhere(op, field, value, WideString("where a = 'b'"));
  // A value that is not empty takes the opening quote for the closing one.
  EXPECT_EQ(op.ToUTF8() + "|" + field.ToUTF8() + "|" + value.ToUTF8(), "o=|fa|v");
}

struct FilterCase {
  const char* name;
  std::string record, condition, header;
  int included;
  friend void PrintTo(const FilterCase& c, std::ostream* os) { *os << c.name; }
};

class SearchIncluded : public testing::TestWithParam<FilterCase> {};

TEST_P(SearchIncluded, Decides) {
  const FilterCase& c = GetParam();
  EXPECT_EQ(SearchIncludedInLine(WideString(c.record), WideString(c.condition), WideString(c.header)), c.included);
}

const std::string kHeader = "name\tcity";
const std::string kCRHeader = "name\rcity\r";

INSTANTIATE_TEST_SUITE_P(
    Conditions, SearchIncluded,
    testing::Values(
        FilterCase{"EmptyConditionIncludesAll", "x\ty", "", kHeader, 1},
        FilterCase{"WordInAnyColumnAnyCase", "Bo\tSMITHfield", "smith", kHeader, 1},
        FilterCase{"WordUpperCaseCondition", "Bo\tsmith", "SMITH", kHeader, 1},
        FilterCase{"WordMissing", "Bo\tJones", "smith", kHeader, 0},
        FilterCase{"WordNonAscii", "\xC3\x84PFEL\tx", "\xC3\xA4pf", kHeader, 1},
        FilterCase{"LikePrefixAnyCase", "SMITHY\tx", "where name LIKE 'Smi%'", kHeader, 1},
        FilterCase{"LikePrefixMisses", "Jones\tx", "where name LIKE 'Smi%'", kHeader, 0},
        // The record is lower-cased and the value is not: "=" only matches lower-case values.
        FilterCase{"EqualsWithCapitalNeverMatches", "Smith\tx", "where name = 'Smith'", kHeader, 0},
        FilterCase{"EqualsLowerCaseMatches", "Smith\tx", "where name = 'smith'", kHeader, 1},
        // A TAB-separated header has no CR: the first column is tested whatever the field.
        FilterCase{"TabHeaderAlwaysFirstColumn", "paris\tlondon", "where city = 'paris'", kHeader, 1},
        FilterCase{"CRHeaderFindsTheColumn", "paris\tlondon", "where city = 'london'", kCRHeader, 1},
        // The field name is not lower-cased, the header is: no match falls back to the last column.
        FilterCase{"CapitalFieldFallsBackToLastColumn", "paris\tlondon", "where Name = 'london'", "name\rcity", 1},
        FilterCase{"DoublePercentIncludesAll", "anything\tx", "where name LIKE '%%'", kHeader, 1},
        FilterCase{"DoublePercentPrefixIncludesAll", "anything\tx", "where name = '%%zz'", kHeader, 1},
        FilterCase{"Contains", "blacksmith\tx", "where name LIKE '%SMIT%'", kHeader, 1},
        FilterCase{"ContainsMisses", "black\tx", "where name LIKE '%smit%'", kHeader, 0},
        // The ends-with test is narrow: a short field never passes it, but the
        // later equality test still takes a field that is exactly the value.
        FilterCase{"EndsWithShortFieldMisses", "xabc\tx", "where name LIKE '%abc'", kHeader, 0},
        FilterCase{"EndsWithExactField", "abc\tx", "where name LIKE '%abc'", kHeader, 1},
        FilterCase{"EndsWithLongField", "0123456789abc\tx", "where name LIKE '%abc'", kHeader, 1},
        FilterCase{"LoneWhereWordIsAClause", "somewhere\tx", "where", kHeader, 0}),
    [](const testing::TestParamInfo<FilterCase>& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace talp
