// The provider's interface as hosts compiled against it see it. What it does
// is the dispatch's (dispatch_test.cpp); reference counting, with and without
// an owner, is covered through the module in the plug-in tests.
#include "talp/talp_remote.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace {

// The slot of a virtual function as the Itanium C++ ABI stores it in a
// member-function pointer: 1 + its byte offset in the vtable.
template <typename MemberFunction>
std::ptrdiff_t Slot(MemberFunction function) {
  std::ptrdiff_t raw = 0;
  std::memcpy(&raw, &function, sizeof raw);
  return (raw - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(ITALPRemote, SlotOrderIsTheCallersContract) {
  using R = ITALPRemote;
  const std::vector<std::ptrdiff_t> slots{
      Slot(&R::QueryInterface), Slot(&R::AddRef), Slot(&R::Release), Slot(&R::GetDatabaseList),
      Slot(&R::GetTableList), Slot(&R::GetColumnList), Slot(&R::GetRecordList), Slot(&R::GetRecordLoop),
      Slot(&R::GetSpecificRecord), Slot(&R::SendUpdateBaseFieldWithInfo), Slot(&R::SendConnectWithInfoSQL),
      Slot(&R::SendUsingHttpPost), Slot(&R::GetUsingHttpPost), Slot(&R::GetGroupDataLoop)};
  EXPECT_EQ(slots, (std::vector<std::ptrdiff_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
}

}  // namespace
