// Room for results of hundreds of megabytes.
#pragma once

#include <cstddef>
#include <string>

namespace talp::host {

// Reserves room in text for at least units units, asking for less, down to
// what it holds, when the system will not grant that much (pages that stay
// unused cost no memory). Large room is backed by large pages where the
// system offers them: otherwise a result of hundreds of megabytes is filled
// four kilobytes at a time, with a page fault for each.
void ReserveLargeText(std::u16string& text, std::size_t units);

}  // namespace talp::host
