#include "talp/talp_remote.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

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
  EXPECT_EQ(Slot(&ITALPRemote::QueryInterface), 0);
  EXPECT_EQ(Slot(&ITALPRemote::AddRef), 1);
  EXPECT_EQ(Slot(&ITALPRemote::Release), 2);
  EXPECT_EQ(Slot(&ITALPRemote::GetDatabaseList), 3);
  EXPECT_EQ(Slot(&ITALPRemote::GetTableList), 4);
  EXPECT_EQ(Slot(&ITALPRemote::GetColumnList), 5);
  EXPECT_EQ(Slot(&ITALPRemote::GetRecordList), 6);
  EXPECT_EQ(Slot(&ITALPRemote::GetRecordLoop), 7);
  EXPECT_EQ(Slot(&ITALPRemote::GetSpecificRecord), 8);
  EXPECT_EQ(Slot(&ITALPRemote::SendUpdateBaseFieldWithInfo), 9);
  EXPECT_EQ(Slot(&ITALPRemote::SendConnectWithInfoSQL), 10);
  EXPECT_EQ(Slot(&ITALPRemote::SendUsingHttpPost), 11);
  EXPECT_EQ(Slot(&ITALPRemote::GetUsingHttpPost), 12);
  EXPECT_EQ(Slot(&ITALPRemote::GetGroupDataLoop), 13);
}

TEST(TALPRemote, WithoutOwnerReferenceCountingDoesNothing) {
  const TALPRemote remote;
  EXPECT_EQ(remote.QueryInterface(IID_IPMUNKNOWN), nullptr);
  EXPECT_EQ(remote.QueryInterface(IID_ITALPREMOTE), nullptr);
  remote.AddRef();
  remote.Release();
}

TEST(TALPRemote, UnknownTypeWordLeavesTheResultUntouched) {
  TALPRemote remote;
  WideString result("untouched");
  EXPECT_EQ(remote.GetRecordLoop(PMString(";;;;;;;;;Nothing"), result, PMString()), 0);
  EXPECT_EQ(remote.GetSpecificRecord(PMString(";;;;;;;;;Nothing"), PMString("1"), WideString(), result), 0);
  remote.GetGroupDataLoop(PMString(";;;;;;;;;Nothing"), WideString(), result, PMString());
  EXPECT_EQ(result.ToUTF8(), "untouched");
}

}  // namespace
