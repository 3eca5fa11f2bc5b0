// Not built yet: records and column lists pass through unchanged.
#include "text/word_styling.h"

namespace talp {

void AppendHeaderFromWordStyling(const WideString&, WideString&) {}
void HandleWordStyling(const WideString&, const WideString&, WideString&) {}

}  // namespace talp
