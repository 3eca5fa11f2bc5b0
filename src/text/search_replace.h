// Replacement and cleaning of record text, and template filling.
#pragma once

#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Replaces every occurrence of find in text by replacement in one left-to-right
// pass without backtracking: a failed partial match is consumed up to and
// including the character that differed, so replacing "ab" in "aab" finds
// nothing. Replacements are not rescanned. An empty find changes nothing.
void SearchReplaceUnicode(WideString& text, const WideString& find, const WideString& replacement);

// The same replacement on units: appends the replaced text to out.
void SearchReplaceUnits(std::u16string_view text, std::u16string_view find, std::u16string_view replacement,
                        std::u16string& out);

// Applies each line of table (CR-separated lines of find TAB replacement), in
// order, to text with SearchReplaceUnicode: later pairs see the output of
// earlier ones. A line without TAB deletes its find string; an empty line
// (as after a final CR) changes nothing.
void UnicodeCleaning(WideString& text, const WideString& table);

// Fills the template in text: every "[name]" becomes the value of name in the
// parallel CR-separated lists (see FindDataInRecord), empty when unknown. A
// "[" without a following "]" is dropped and the rest copied as it stands.
void MergeContentToString(WideString& text, const WideString& names, const WideString& values);

// Decodes "&lt;", "&gt;", "&quot;", "&apos;" and then "&amp;", each with
// SearchReplaceUnicode: the ampersand comes last, so "&amp;lt;" gives "&lt;"
// and not "<", as callers rely on.
void DecodeXMLEntities(WideString& text);

}  // namespace talp
