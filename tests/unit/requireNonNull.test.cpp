#include "zwave/libquillet/support/requireNonNull.h"

#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace zorv {
namespace {

/// What the call complains about; "" where it does not.
template <class Call> std::string complaint(Call call) {
    try {
        call();
    } catch (NullPointerError const& error) { return error.briefWhat(); }
    return "";
}

template <class Message> boost::shared_ptr<Message> read(char const* text) {
    return boost::dynamic_pointer_cast<Message>(readSerializable(text));
}

TEST(RequireNonNull, GivesWhatThePointerPointsTo) {
    auto const seven = boost::make_shared<int>(7);
    EXPECT_EQ(&requireNonNull(seven, "seven is null"), seven.get());
}

TEST(RequireNonNull, ThrowsItsComplaintOverAnEmptyPointer) {
    EXPECT_EQ(complaint([] { requireNonNull(boost::shared_ptr<int>(), "seven is null"); }), "seven is null");
}

TEST(RequireNonNull, KeepsANullCommandOfAPeerFromBeingShown) {
    auto const message = read<CommandClassMsg>(R"({"__name__":"zorv::CommandClassMsg","command_":null})");
    StringVecVec rows;
    EXPECT_EQ(complaint([&] { message->accumulateDisplay(rows); }), "command is null");
    EXPECT_TRUE(rows.empty());
}

TEST(RequireNonNull, KeepsANullDeviceOfAPeerFromBeingShown) {
    auto const message = read<NodeInformationMsg>(
        R"({"__name__":"zorv::NodeInformationMsg","devices_":[[{"homeId_":1,"nodeId_":2},null]]})");
    StringVecVec rows;
    EXPECT_EQ(complaint([&] { message->accumulateDisplay(rows); }), "device is null");
}

TEST(RequireNonNull, KeepsANullBlobOfAPeerFromBeingCountedAndChecked) {
    auto const message = read<ManageNvmMsg>(R"({"__name__":"zorv::ManageNvmMsg","blobs_":[null]})");
    EXPECT_EQ(complaint([&] { message->size(); }), "blob is null");
    EXPECT_EQ(complaint([&] { message->checkBlobs(); }), "blob is null");
}

} // namespace
} // namespace zorv
