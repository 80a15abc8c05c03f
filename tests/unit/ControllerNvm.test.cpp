// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ControllerStage.h"
#include "zwave/libcontroller/jobs/NvmRestore.h"
#include "zwave/libcontroller/jobs/NvmSave.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using Lines = std::vector<std::string>;
using serialapi::Frame;
using serialapi::Milliseconds;
using serialapi::NvmBackupRestore;
using serialapi::NvmExtReadLongBuffer;
using serialapi::NvmExtWriteLongBuffer;

constexpr Milliseconds byDefault{0};

Bytes patterned(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) { bytes[i] = static_cast<Byte>(i * 7 + i / 256); }
    return bytes;
}

struct Nvm : testing::Test, ControllerStage {
    explicit Nvm(bool isBridge) : ControllerStage(isBridge) { open(); }

    void begin(std::shared_ptr<Job> const& job) { submission = submit(job); }
    void cancel() {
        controller.cancel(submission.job, now);
        play();
    }
    /// How often a frame was sent that begins so.
    static std::size_t count(Lines const& frames, std::string const& start) {
        return static_cast<std::size_t>(std::count_if(
            frames.begin(), frames.end(), [&start](std::string const& frame) { return frame.rfind(start, 0) == 0; }));
    }

    Bytes memory;
    std::vector<unsigned int> percents;
    NvmJob::Progress progress = [this](unsigned int percent) { percents.push_back(percent); };
    Submission submission;
};

/// A module whose memory has a session, and 1,000 bytes.
struct ControllerNvmSession : Nvm {
    ControllerNvmSession() : Nvm(true) {
        memory = patterned(1000);
        module.on<NvmBackupRestore>([this](Bytes const& parameters) { return std::vector<Frame>{answer(parameters)}; });
    }

    Frame answer(Bytes const& parameters) {
        auto const operation = parameters.at(0);
        auto const offset = static_cast<std::size_t>(parameters.at(2) << 8U | parameters.at(3));
        if (operation == NvmBackupRestore::open) { return frame(0, memory.size(), {}); }
        if (operation == NvmBackupRestore::close) { return frame(0, 0, {}); }
        if (operation == NvmBackupRestore::write) {
            std::copy(parameters.begin() + 4, parameters.end(), memory.begin() + static_cast<std::ptrdiff_t>(offset));
            return frame(0, offset, {});
        }
        if (offset >= errorFrom) { return frame(NvmBackupRestore::error, offset, {}); }
        auto const end = std::min(offset + parameters.at(1), memory.size());
        Bytes const piece(memory.begin() + static_cast<std::ptrdiff_t>(offset),
                          memory.begin() + static_cast<std::ptrdiff_t>(end));
        return frame(end == memory.size() ? NvmBackupRestore::endOfFile : NvmBackupRestore::ok, offset, piece);
    }
    static Frame frame(Byte status, std::size_t offset, Bytes const& data) {
        Bytes parameters{status, static_cast<Byte>(data.size()), static_cast<Byte>(offset >> 8U),
                         static_cast<Byte>(offset & 0xFFU)};
        parameters.insert(parameters.end(), data.begin(), data.end());
        return ScriptedModule::response(NvmBackupRestore::id, parameters);
    }

    std::size_t errorFrom = 100'000;
};

TEST_F(ControllerNvmSession, IsSavedToTheLastByte) {
    auto const job = std::make_shared<NvmSave>(byDefault, progress);
    begin(job);
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->image(), memory);
    EXPECT_EQ(percents.size(), 16U);
    EXPECT_EQ(percents.front(), 6U);
    EXPECT_EQ(percents.back(), 100U);
    auto const frames = module.takeHeard();
    EXPECT_EQ(frames.front(), "2e 00 00 00 00");
    EXPECT_EQ(frames.back(), "2e 03 00 00 00");
    EXPECT_EQ(count(frames, "2e 01"), 16U);
}

TEST_F(ControllerNvmSession, IsClosedWhereItCannotBeRead) {
    errorFrom = 640;
    begin(std::make_shared<NvmSave>(byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module cannot read its memory"});
    EXPECT_EQ(module.takeHeard().back(), "2e 03 00 00 00");
}

TEST_F(ControllerNvmSession, IsClosedWhereItsSavingIsCancelled) {
    module.on<NvmBackupRestore>([this](Bytes const& parameters) -> std::vector<Frame> {
        if (parameters.at(0) == NvmBackupRestore::read && parameters.at(2) > 0) { return {}; } // not answered any more
        return {answer(parameters)};
    });
    begin(std::make_shared<NvmSave>(byDefault));
    cancel();
    EXPECT_EQ(takeEnds(), Lines{});
    passes(Milliseconds(10'000) + serialapi::limits::settleTime);
    EXPECT_EQ(module.takeHeard().back(), "2e 03 00 00 00");
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

TEST_F(ControllerNvmSession, IsClosedWhereTheModuleStopsAnswering) {
    module.on<NvmBackupRestore>([this](Bytes const& parameters) -> std::vector<Frame> {
        if (parameters.at(0) == NvmBackupRestore::read && parameters.at(2) > 0) { return {}; }
        return {answer(parameters)};
    });
    begin(std::make_shared<NvmSave>(byDefault));
    passes(Milliseconds(10'000) + serialapi::limits::settleTime);
    EXPECT_EQ(module.takeHeard().back(), "2e 03 00 00 00");
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not answer"});
    EXPECT_EQ(controller.state(), ModuleState::ready);
}

TEST_F(ControllerNvmSession, ResetsAModuleThatCannotCloseItsMemory) {
    module.on<NvmBackupRestore>([this](Bytes const& parameters) -> std::vector<Frame> {
        if (parameters.at(0) == NvmBackupRestore::close) { return {}; }
        return {answer(parameters)};
    });
    begin(std::make_shared<NvmSave>(byDefault));
    passes(Milliseconds(10'000));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not answer"});
    EXPECT_EQ(diary.take(), (Lines{"the module is reset: it does not close its memory", "module starting"}));
}

TEST_F(ControllerNvmSession, IsRestoredAndTheModuleReadAgain) {
    Bytes const image = patterned(1000);
    memory.assign(1000, 0);
    begin(std::make_shared<NvmRestore>(image, byDefault, progress));
    EXPECT_EQ(memory, image);
    EXPECT_EQ(percents.back(), 100U);
    auto const frames = module.takeHeard();
    EXPECT_EQ(count(frames, "2e 02"), 16U);
    EXPECT_EQ(frames[frames.size() - 2], "2e 03 00 00 00");
    EXPECT_EQ(frames.back(), "08");
    EXPECT_EQ(takeEnds(), Lines{});
    module.answers<serialapi::MemoryGetId>({0xD0, 0, 0, 2, 1});
    hears(0x0A, {7, 0, 1, 2, 1, 0});
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(controller.network().homeId, 0xD0000002U);
}

TEST_F(ControllerNvmSession, IsReadAgainAlsoWhereTheModuleDoesNotSayThatItHasRestarted) {
    begin(std::make_shared<NvmRestore>(memory, byDefault));
    passes(limits::restartTime);
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerNvmSession, IsNotWrittenWhereTheImageIsOfAnotherSize) {
    begin(std::make_shared<NvmRestore>(patterned(999), byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the image has 999 bytes, and the memory 1000"});
    auto const frames = module.takeHeard();
    EXPECT_EQ(frames, (Lines{"2e 00 00 00 00", "2e 03 00 00 00"}));
}

TEST_F(ControllerNvmSession, IsRestoredToTheEndWhereTheJobIsCancelled) {
    Bytes held;
    module.on<NvmBackupRestore>([this, &held](Bytes const& parameters) -> std::vector<Frame> {
        if (parameters.at(0) == NvmBackupRestore::write && held.empty()) {
            held = parameters;
            return {};
        }
        return {answer(parameters)};
    });
    Bytes const image = patterned(1000);
    memory.assign(1000, 0);
    begin(std::make_shared<NvmRestore>(image, byDefault));
    cancel();
    EXPECT_EQ(takeEnds(), Lines{});
    auto const late = answer(held).encode();
    controller.receive(late, now);
    play();
    EXPECT_EQ(memory, image);
    hears(0x0A, {7, 0, 1, 2, 1, 0});
    EXPECT_EQ(takeEnds(), Lines{"cancelled"});
}

/// A module whose memory is read by its addresses: 16 KiB.
struct ControllerNvmByAddress : Nvm {
    ControllerNvmByAddress() : Nvm(false) {
        memory = patterned(16384);
        module.answers<serialapi::NvmGetId>({4, 1, 0x80, 0x0E});
        module.on<NvmExtReadLongBuffer>([this](Bytes const& parameters) {
            auto const address = addressIn(parameters);
            std::size_t const length = parameters.at(4);
            Bytes const piece(memory.begin() + address, memory.begin() + address + static_cast<std::ptrdiff_t>(length));
            bool const isTooMuch = length > largest;
            return std::vector<Frame>{ScriptedModule::response(NvmExtReadLongBuffer::id, isTooMuch ? Bytes{} : piece)};
        });
        module.on<NvmExtWriteLongBuffer>([this](Bytes const& parameters) {
            std::copy(parameters.begin() + 5, parameters.end(), memory.begin() + addressIn(parameters));
            return std::vector<Frame>{ScriptedModule::response(NvmExtWriteLongBuffer::id, {1})};
        });
    }
    static std::ptrdiff_t addressIn(Bytes const& parameters) {
        return parameters.at(0) << 16U | parameters.at(1) << 8U | parameters.at(2);
    }

    std::size_t largest = 168;
};

TEST_F(ControllerNvmByAddress, IsSavedWhileTheRadioIsOff) {
    auto const job = std::make_shared<NvmSave>(byDefault, progress);
    begin(job);
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->image(), memory);
    EXPECT_EQ(percents.size(), 98U) << "168 bytes are a little more than a percent";
    auto const frames = module.takeHeard();
    EXPECT_EQ(frames.front(), "10 00");
    EXPECT_EQ(frames.back(), "10 01");
    EXPECT_EQ(frames.at(2), "2a 00 00 00 00 a8");
}

TEST_F(ControllerNvmByAddress, IsSavedInSmallPiecesWhereTheModuleGivesNoLargeOnes) {
    largest = 48;
    auto const job = std::make_shared<NvmSave>(byDefault);
    begin(job);
    EXPECT_EQ(takeEnds(), Lines{"done"});
    EXPECT_EQ(job->image(), memory);
    EXPECT_EQ(module.takeHeard().at(3), "2a 00 00 00 00 30");
}

TEST_F(ControllerNvmByAddress, TurnsTheRadioOnAgainWhereNothingCanBeRead) {
    largest = 0;
    begin(std::make_shared<NvmSave>(byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the memory ends where it should not"});
    EXPECT_EQ(module.takeHeard().back(), "10 01");
}

TEST_F(ControllerNvmByAddress, TurnsTheRadioOnAgainWhereTheSizeIsNotTold) {
    module.answers<serialapi::NvmGetId>({4, 0xFF, 0xFF, 0xFF});
    begin(std::make_shared<NvmSave>(byDefault));
    EXPECT_EQ(takeEnds(), Lines{"failed: the module does not tell the size of its memory"});
    EXPECT_EQ(module.takeHeard().back(), "10 01");
}

TEST_F(ControllerNvmByAddress, IsRestored) {
    auto const image = memory;
    memory.assign(16384, 0);
    begin(std::make_shared<NvmRestore>(image, byDefault));
    EXPECT_EQ(memory, image);
    auto const frames = module.takeHeard();
    EXPECT_EQ(frames.at(frames.size() - 2), "10 01");
    EXPECT_EQ(frames.back(), "08");
    passes(limits::restartTime);
    EXPECT_EQ(takeEnds(), Lines{"done"});
}

TEST_F(ControllerNvmByAddress, LetsNoOtherJobOfTheNetworkRunMeanwhile) {
    module.isSilentOn<serialapi::NvmGetId>();
    begin(std::make_shared<NvmSave>(byDefault));
    EXPECT_EQ(submit(std::make_shared<NvmSave>(byDefault)).reason, "saving of the memory is running");
}

} // namespace

} // namespace zorv::controller
