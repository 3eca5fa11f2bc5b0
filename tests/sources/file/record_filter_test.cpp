#include "sources/file/record_filter.h"

#include <gtest/gtest.h>

#include <string>

namespace talp {
namespace {

// The parts are shown as operator|field|value.
TEST(WhereParser, ReadsTheParts) {
  const struct { const char* name; std::string condition, parts, before = ""; } cases[] = {
      {"Like", "where name LIKE 'Smi%'", "LIKE|name|Smi%"},
      {"EqualsWithSpacesInValue", "where name = 'Ann Bo'", "=|name|Ann Bo"},
      // Spaces before the value's quote belong to the value, and end it at that quote.
      {"SpacesBeforeTheQuote", "where   name   =   'x'", "=|name|  "},
      // A second condition is glued onto the parts of the first.
      {"SecondConditionGlued", "where a LIKE 'x' and b = 'y'", "LIKE=|ab|x"},
      {"UnquotedValueRunsToTheEnd", "where a = x", "=|a|x"},
      // Without a closing quote the value is read again from its second character.
      {"UnclosedValueIsReadAgain", "where a = 'x y", "=|ay|x y"},
      {"TooShort", "wher", "||"},
      {"NoSpaceAfterWhere", "whereabouts", "||"},
      {"FieldOnly", "where name", "|name|"},
      // The parts are appended to what the caller passed; a value that is not
      // empty takes the opening quote for the closing one.
      {"AppendsToWhatTheCallerPassed", "where a = 'b'", "p=|pa|p", "p"},
  };
  for (const auto& c : cases) {
    WideString op(c.before), field(c.before), value(c.before);
    FindFieldAndValueFromWhere(op, field, value, WideString(c.condition));
    EXPECT_EQ(op.ToUTF8() + "|" + field.ToUTF8() + "|" + value.ToUTF8(), c.parts) << c.name;
  }
}

// The header is TAB-separated unless a case gives one by CR.
TEST(SearchIncluded, Decides) {
  const struct { const char *name, *record, *condition; int included; const char* header = "name\tcity"; } cases[] = {
      {"EmptyConditionIncludesAll", "x\ty", "", 1},
      {"WordInAnyColumnAnyCase", "Bo\tSMITHfield", "smith", 1},
      {"WordUpperCaseCondition", "Bo\tsmith", "SMITH", 1},
      {"WordMissing", "Bo\tJones", "smith", 0},
      {"WordNonAscii", "\xC3\x84PFEL\tx", "\xC3\xA4pf", 1},
      {"LikePrefixAnyCase", "SMITHY\tx", "where name LIKE 'Smi%'", 1},
      {"LikePrefixMisses", "Jones\tx", "where name LIKE 'Smi%'", 0},
      // The record is lower-cased and the value is not: "=" only matches lower-case values.
      {"EqualsWithCapitalNeverMatches", "Smith\tx", "where name = 'Smith'", 0},
      {"EqualsLowerCaseMatches", "Smith\tx", "where name = 'smith'", 1},
      // A TAB-separated header has no CR: the first column is tested whatever the field.
      {"TabHeaderAlwaysFirstColumn", "paris\tlondon", "where city = 'paris'", 1},
      {"CRHeaderFindsTheColumn", "paris\tlondon", "where city = 'london'", 1, "name\rcity\r"},
      // The field name is not lower-cased, the header is: no match falls back to the last column.
      {"CapitalFieldFallsBackToLastColumn", "paris\tlondon", "where Name = 'london'", 1, "name\rcity"},
      {"DoublePercentIncludesAll", "anything\tx", "where name LIKE '%%'", 1},
      {"DoublePercentPrefixIncludesAll", "anything\tx", "where name = '%%zz'", 1},
      {"Contains", "blacksmith\tx", "where name LIKE '%SMIT%'", 1},
      {"ContainsMisses", "black\tx", "where name LIKE '%smit%'", 0},
      // The ends-with test is narrow: a short field never passes it, but the
      // later equality test still takes a field that is exactly the value.
      {"EndsWithShortFieldMisses", "xabc\tx", "where name LIKE '%abc'", 0},
      {"EndsWithExactField", "abc\tx", "where name LIKE '%abc'", 1},
      {"EndsWithLongField", "0123456789abc\tx", "where name LIKE '%abc'", 1},
      {"LoneWhereWordIsAClause", "somewhere\tx", "where", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(SearchIncludedInLine(c.record, c.condition, c.header), c.included) << c.name;
}

}  // namespace
}  // namespace talp
