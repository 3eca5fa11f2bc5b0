#include "text/word_styling.h"

#include "text/search_replace.h"
#include "text/xml_table.h"

namespace talp {

// Computed fields from an XML styling document come with the styling
// processes; until then such a document leaves column lists unchanged.
void AppendHeaderFromWordStyling(const WideString&, WideString&) {}

void HandleWordStyling(const WideString& styling, const WideString&, WideString& record) {
  if (isXMLFile(styling) == 0) UnicodeCleaning(record, styling);
}

}  // namespace talp
