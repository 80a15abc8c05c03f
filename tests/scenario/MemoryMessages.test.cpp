// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/support/TemporaryDirectory.h"

#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace scenario;
using namespace zorv;

constexpr HomeId home = 0xC0FFEE01;
constexpr std::size_t memorySize = 16384;
constexpr unsigned char nvmSession = 0x2E;

class MemoryMessages : public testing::TestWithParam<Stream> {
protected:
    explicit MemoryMessages(std::string const& generation = "700")
        : daemon_(
              GetParam(),
              {"--network", directory_.write("network.json",
                                             R"({"homeId": "c0ffee01", "module": {"nvmSize": 16384, "generation": ")" +
                                                 generation + R"("}, "nodes": [{"id": 2}]})")}) {}

    boost::shared_ptr<ManageNvmMsg> save() { return client_.ask(ManageNvmMsg::create(ManageNvmOp::save)); }

    static boost::shared_ptr<ManageNvmMsg> with(ManageNvmOp::Enum operation, ManageNvmMsg const& backup,
                                                HomeId homeId = home) {
        auto request = boost::make_shared<ManageNvmMsg>(operation, homeId, ZResult::none, 0U);
        for (auto const& blob : backup.blobs()) { request->addBlob(blob); }
        return request;
    }

    void authorize() {
        EXPECT_EQ(client_.ask(ManageNvmMsg::create(ManageNvmOp::authorize))->result(), ZResult::success);
    }

    TemporaryDirectory directory_;
    StreamDaemon daemon_;
    MessageClient client_{daemon_.port()};
};

class OlderMemoryMessages : public MemoryMessages {
protected:
    OlderMemoryMessages() : MemoryMessages("500") {}
};

INSTANTIATE_TEST_SUITE_P(OverEach, MemoryMessages, streams(), nameOf);
INSTANTIATE_TEST_SUITE_P(OverEach, OlderMemoryMessages, streams(), nameOf);

TEST_P(MemoryMessages, SaveTellsItsProgressAndAnswersWithAllOfTheMemory) {
    client_.subscribe({NvmOpEvt::NAME, ControlCommandMsg::NAME});
    auto const request = ManageNvmMsg::create(ManageNvmOp::save);
    client_.tell(*request);
    EXPECT_EQ(client_.waitForAny<NvmOpEvt>()->op(), NvmOp::save);
    client_.waitForCall(nvmSession);
    EXPECT_LT(client_.progressOf(request)->percentComplete(), 10U);
    auto const answer = client_.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->percentComplete(), 100U);
    EXPECT_EQ(answer->homeId(), home);
    EXPECT_EQ(answer->size(), memorySize);
    EXPECT_TRUE(answer->checkBlobs());
    EXPECT_EQ(client_.waitForAny<NvmOpEvt>()->op(), NvmOp::none);
}

TEST_P(OlderMemoryMessages, AreTheSameForTheOlderGeneration) {
    auto const backup = save();
    EXPECT_EQ(backup->result(), ZResult::success);
    EXPECT_TRUE(backup->checkBlobs());
    authorize();
    EXPECT_EQ(client_.ask(with(ManageNvmOp::restore, *backup))->result(), ZResult::success);
}

TEST_P(MemoryMessages, RestoreWritesWhatWasSaved) {
    auto const backup = save();
    client_.subscribe({NvmOpEvt::NAME, SystemStatusEvt::NAME});
    authorize();
    auto const request = with(ManageNvmOp::restore, *backup);
    client_.tell(*request);
    EXPECT_EQ(client_.waitForAny<NvmOpEvt>()->op(), NvmOp::restore);
    EXPECT_EQ(client_.waitForAny<SystemStatusEvt>()->status(), SystemStatus::updating);
    EXPECT_EQ(client_.progressOf(request)->operation(), ManageNvmOp::restore);
    auto const answer = client_.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->percentComplete(), 100U);
    EXPECT_TRUE(answer->blobs().empty());
    EXPECT_EQ(client_.waitForAny<NvmOpEvt>()->op(), NvmOp::none);
    client_.waitFor<SystemStatusEvt>([](SystemStatusEvt const& e) { return e.status() == SystemStatus::ready; });
    EXPECT_EQ(client_.ask(with(ManageNvmOp::validate, *backup))->result(), ZResult::success);
}

TEST_P(MemoryMessages, RestoreHasToBeAuthorizedByTheSameClientEachTime) {
    auto const backup = save();
    EXPECT_EQ(client_.ask(with(ManageNvmOp::restore, *backup))->result(), ZResult::rejected);
    MessageClient other(daemon_.port());
    EXPECT_EQ(other.ask(ManageNvmMsg::create(ManageNvmOp::authorize))->result(), ZResult::success);
    EXPECT_EQ(client_.ask(with(ManageNvmOp::restore, *backup))->result(), ZResult::rejected);
    authorize();
    EXPECT_EQ(client_.ask(with(ManageNvmOp::restore, *backup))->result(), ZResult::success);
    EXPECT_EQ(client_.ask(with(ManageNvmOp::restore, *backup))->result(), ZResult::rejected);
}

TEST_P(MemoryMessages, DamagedBackupIsRefusedBeforeTheFirstWrite) {
    auto const backup = save();
    client_.subscribe({ControlCommandMsg::NAME});
    auto const& first = *backup->blobs().front();
    auto const damaged = with(ManageNvmOp::restore, ManageNvmMsg());
    damaged->addBlob(
        boost::make_shared<Blob>(first.name(), first.offset(), first.size(), first.crc() + 1, first.contents()));
    auto const empty = with(ManageNvmOp::restore, ManageNvmMsg());
    auto const holed = with(ManageNvmOp::restore, ManageNvmMsg());
    holed->addBlob(backup->blobs().at(1));
    auto const doubled = with(ManageNvmOp::restore, *backup);
    doubled->addBlob(backup->blobs().front());
    auto const nothing = with(ManageNvmOp::restore, *backup);
    nothing->addBlob(nullptr);
    auto const foreign = with(ManageNvmOp::restore, *backup, home + 1);
    auto const shorter = with(ManageNvmOp::restore, ManageNvmMsg());
    shorter->addBlob(backup->blobs().front());
    for (auto const& request : {damaged, empty, holed, doubled, nothing, foreign}) {
        authorize();
        EXPECT_EQ(client_.ask(request)->result(), ZResult::rejected);
    }
    authorize();
    EXPECT_EQ(client_.ask(shorter)->result(), ZResult::failure); // which shows only when the memory is open
    client_.ask(ManageNvmMsg::create(ManageNvmOp::authorize));
    constexpr unsigned char write = 2;
    while (client_.kept<ControlCommandMsg>() > 0) {
        auto const frame = client_.waitForAny<ControlCommandMsg>();
        EXPECT_FALSE(frame->data().at(1) == nvmSession && frame->data().at(2) == write);
    }
}

TEST_P(MemoryMessages, ClearLeavesANetworkOfTheModuleAlone) {
    EXPECT_EQ(client_.ask(ManageNvmMsg::create(ManageNvmOp::clear))->result(), ZResult::rejected);
    authorize();
    EXPECT_EQ(client_.ask(ManageNvmMsg::create(ManageNvmOp::clear))->result(), ZResult::success);
    auto const after = save();
    EXPECT_EQ(after->result(), ZResult::success);
    EXPECT_NE(after->homeId(), home);
}

TEST_P(MemoryMessages, ValidateReadsTheMemoryAndComparesIt) {
    EXPECT_EQ(client_.ask(ManageNvmMsg::create(ManageNvmOp::validate))->result(), ZResult::success);
    auto const backup = save();
    EXPECT_EQ(client_.ask(with(ManageNvmOp::validate, *backup))->result(), ZResult::success);
    auto const other = with(ManageNvmOp::validate, ManageNvmMsg());
    auto const blob = boost::make_shared<Blob>("nvm", 0U);
    blob->setContents(OctetVec(memorySize, 0x55));
    other->addBlob(blob);
    EXPECT_EQ(client_.ask(other)->result(), ZResult::failure);
    EXPECT_EQ(client_.ask(with(ManageNvmOp::validate, *backup, home + 1))->result(), ZResult::failure);
}

TEST_P(MemoryMessages, RequestWithoutAnOperationIsRejected) {
    EXPECT_EQ(client_.ask(ManageNvmMsg::create(ManageNvmOp::invalid))->result(), ZResult::rejected);
}

TEST_P(MemoryMessages, SaveDuringAnInclusionIsRejected) {
    auto const inclusion = AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 20, false);
    client_.tell(*inclusion);
    client_.progressOf(inclusion);
    EXPECT_EQ(save()->result(), ZResult::rejected);
}

TEST_P(MemoryMessages, SaveOfAClientThatOnlyEndsItsOutputIsAnswered) {
    auto const request = ManageNvmMsg::create(ManageNvmOp::save);
    client_.tell(*request);
    client_.endOutput();
    EXPECT_EQ(client_.answerTo(request)->result(), ZResult::success);
}

TEST_P(MemoryMessages, SaveOfAClientThatVanishesIsOverAndRestoreGoesOn) {
    auto const backup = save();
    client_.subscribe({NvmOpEvt::NAME});
    auto vanishing = std::make_unique<MessageClient>(daemon_.port());
    auto const saving = ManageNvmMsg::create(ManageNvmOp::save);
    vanishing->tell(*saving);
    vanishing->progressOf(saving);
    vanishing.reset();
    client_.waitFor<NvmOpEvt>([](NvmOpEvt const& e) { return e.op() == NvmOp::save; });
    client_.waitFor<NvmOpEvt>([](NvmOpEvt const& e) { return e.op() == NvmOp::none; });
    vanishing = std::make_unique<MessageClient>(daemon_.port());
    vanishing->ask(ManageNvmMsg::create(ManageNvmOp::authorize));
    auto const restoring = with(ManageNvmOp::restore, *backup);
    vanishing->tell(*restoring);
    vanishing->progressOf(restoring);
    vanishing.reset();
    EXPECT_EQ(save()->result(), ZResult::rejected); // it runs still
    client_.waitFor<NvmOpEvt>([](NvmOpEvt const& e) { return e.op() == NvmOp::none; });
    EXPECT_EQ(client_.ask(with(ManageNvmOp::validate, *backup))->result(), ZResult::success);
}

} // namespace
