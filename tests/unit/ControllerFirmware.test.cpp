// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ControllerStage.h"
#include "tests/support/firmwareImage.h"
#include "zwave/libcontroller/Controller.h"
#include "zwave/libcontroller/jobs/FirmwareUpdate.h"
#include "zwave/libcontroller/jobs/RawCall.h"
#include "zwave/libmodulesim/SimulatedModule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorv::controller {
namespace {

using modulesim::Fault;
using modulesim::SimulatedModule;
using modulesim::SimulatedNetwork;
using serialapi::Milliseconds;

using Lines = std::vector<std::string>;

constexpr Milliseconds byDefault{0};

SimulatedNetwork oldModule(std::vector<Fault> faults = {}) {
    SimulatedNetwork network;
    network.generation = modulesim::Generation::series500;
    network.faults = std::move(faults);
    network.nodes.resize(1);
    network.nodes[0].id = 2;
    return network;
}

SimulatedNetwork newModule(std::vector<Fault> faults = {}) {
    auto network = oldModule(std::move(faults));
    network.generation = modulesim::Generation::series700;
    return network;
}

Fault fault(Fault::Kind kind, std::uint32_t skip = 0, std::uint32_t times = 1) {
    Fault fault;
    fault.kind = kind;
    fault.skip = skip;
    fault.times = times;
    return fault;
}

/// Writes down what a loader does, too.
class LoaderDiary : public Diary {
public:
    void loaderChanged(bool isRunning, unsigned int percent) override {
        loads.push_back((isRunning ? "loads " : "loaded ") + std::to_string(percent));
    }

    Lines loads;
};

/// A controller and a simulated module on a clock that the test moves.
class ControllerFirmware : public testing::Test {
protected:
    void open(SimulatedNetwork network = oldModule()) {
        module_ = std::make_unique<SimulatedModule>(std::move(network));
        module_->start();
        module_->trace([this](serialapi::Side sender, serialapi::Frame const& frame) {
            if (sender == serialapi::Side::host) { asked_.push_back(frame); }
        });
        controller_.start(now_);
        passes(Milliseconds(5000));
        ASSERT_EQ(controller_.state(), ModuleState::ready);
        asked_.clear();
    }

    void passes(Milliseconds time) {
        auto const end = now_ + time;
        while (true) {
            carry();
            auto next = controller_.deadline();
            auto const theirs = module_->deadline();
            if (theirs && (!next || *theirs < *next)) { next = theirs; }
            if (!next || *next > end) { break; }
            now_ = std::max(now_, *next);
            controller_.tick(now_);
            module_->tick(now_);
        }
        now_ = end;
    }

    void carry() {
        while (true) {
            auto const said = controller_.takeOutput();
            if (!said.empty()) { module_->receive(said, now_); }
            auto const answered = module_->takeOutput();
            if (!answered.empty()) { controller_.receive(answered, now_); }
            if (said.empty() && answered.empty()) { return; }
        }
    }

    Submission submit(std::shared_ptr<Job> const& job) {
        return controller_.submit(
            job,
            [this, job] {
                ends_.push_back(std::string(toString(job->state())) + (job->reason().empty() ? "" : ": ") +
                                job->reason());
            },
            now_);
    }

    std::string version() const { return controller_.network().module.version; }

    /// How often the module was asked so.
    std::ptrdiff_t count(Byte function, Bytes const& start) const {
        return std::count_if(asked_.begin(), asked_.end(), [&](serialapi::Frame const& frame) {
            auto const& parameters = frame.parameters;
            return frame.function == function && parameters.size() >= start.size() &&
                   std::equal(start.begin(), start.end(), parameters.begin());
        });
    }

    LoaderDiary diary_;
    Controller controller_{diary_, false};
    std::unique_ptr<SimulatedModule> module_;
    TimePoint now_{};
    std::vector<serialapi::Frame> asked_;
    Lines ends_;
    std::vector<unsigned int> percents_;
    FirmwareUpdate::Progress progress_ = [this](unsigned int percent) { percents_.push_back(percent); };
};

constexpr Byte firmwareUpdate = 0x78;
constexpr Byte setRadio = 0x10;
constexpr Byte softReset = 0x08;
constexpr Byte enterBootloader = 0x27;

TEST_F(ControllerFirmware, OfAModuleThatWaitsInItsLoaderIsStarted) {
    open(newModule());
    controller_.lost(now_);
    module_->receive(serialapi::Frame{serialapi::FrameType::request, enterBootloader, {}}.encode(), now_);
    while (auto const next = module_->deadline()) { // until it waits for a key
        if (*next > now_ + Milliseconds(10'000)) { break; }
        now_ = std::max(now_, *next);
        module_->tick(now_);
    }
    module_->takeOutput();
    diary_.take();
    asked_.clear();
    controller_.start(now_);
    passes(Milliseconds(60'000));
    EXPECT_EQ(controller_.state(), ModuleState::ready);
    EXPECT_EQ(diary_.take(),
              (Lines{"module starting", "the module has waited in its loader, and is started", "module ready"}));
    EXPECT_EQ(count(softReset, {}), 0);
}

TEST_F(ControllerFirmware, IsReplacedAndTheModuleReadAgain) {
    open();
    EXPECT_EQ(version(), "Z-Wave 4.05");
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 1000), byDefault, progress_));
    passes(limits::loaderTime + Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"done"});
    EXPECT_EQ(version(), "Z-Wave 4.61");
    EXPECT_EQ(percents_.size(), 16U);
    EXPECT_EQ(percents_.back(), 100U);
    EXPECT_EQ(count(firmwareUpdate, {5}), 16);
    EXPECT_EQ(count(firmwareUpdate, {1, 0}), 1);
    EXPECT_EQ(count(firmwareUpdate, {1, 1}), 1);
    EXPECT_EQ(count(softReset, {}), 1);
    EXPECT_TRUE(module_->isRadioOn());
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, StaysAsItIsWhereTheModuleRefusesTheImage) {
    open();
    auto broken = firmwareImage("Z-Wave 4.61", 1000);
    broken[500] = static_cast<Byte>(broken[500] ^ 1U);
    submit(std::make_shared<FirmwareUpdate>(broken, byDefault));
    passes(Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"failed: the module refuses the firmware"});
    EXPECT_EQ(count(firmwareUpdate, {1, 1}), 0);
    EXPECT_EQ(count(softReset, {}), 0);
    EXPECT_EQ(count(setRadio, {0}), 1);
    EXPECT_EQ(count(setRadio, {1}), 1);
    EXPECT_TRUE(module_->isRadioOn());
}

TEST_F(ControllerFirmware, StaysAsItIsWhereTheLoaderRefuses) {
    Fault refuses;
    refuses.kind = Fault::Kind::refuseImage;
    open(oldModule({refuses}));
    auto const good = firmwareImage("Z-Wave 4.61", 300);
    submit(std::make_shared<FirmwareUpdate>(good, byDefault));
    passes(Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"failed: the module refuses the firmware"});
    submit(std::make_shared<FirmwareUpdate>(good, byDefault));
    passes(limits::loaderTime + Milliseconds(10000));
    EXPECT_EQ(ends_.back(), "done");
    EXPECT_EQ(version(), "Z-Wave 4.61");
}

TEST_F(ControllerFirmware, GoesOnOnceItsWritingHasBegun) {
    open();
    auto const submission =
        submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 300), byDefault, [&](unsigned int) {
            if (percents_.empty()) { percents_.push_back(0); }
        }));
    carry();
    ASSERT_TRUE(submission);
    ASSERT_FALSE(percents_.empty());
    controller_.cancel(submission.job, now_);
    passes(limits::loaderTime + Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"cancelled: cancelled"});
    EXPECT_EQ(version(), "Z-Wave 4.61");
}

TEST_F(ControllerFirmware, IsNotTouchedWhereTheJobIsCancelledBefore) {
    open();
    auto const submission = submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 300), byDefault));
    controller_.cancel(submission.job, now_);
    passes(limits::loaderTime + Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"cancelled: cancelled"});
    EXPECT_EQ(count(firmwareUpdate, {5}), 0);
    EXPECT_EQ(version(), "Z-Wave 4.05");
}

TEST_F(ControllerFirmware, StaysAsItIsWhereTheModuleFallsSilent) {
    Fault hang;
    hang.kind = Fault::Kind::hang;
    hang.function = firmwareUpdate;
    hang.skip = 5;
    hang.lasts = Milliseconds(12000);
    open(oldModule({hang}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 1000), byDefault));
    passes(Milliseconds(60000));
    EXPECT_EQ(ends_, Lines{"failed: the module has restarted"}); // the link had it reset
    EXPECT_TRUE(module_->isRadioOn());
    EXPECT_EQ(version(), "Z-Wave 4.05");
}

TEST_F(ControllerFirmware, IsTakenUpAsSoonAsTheModuleAnswersAgain) {
    open();
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 100000), byDefault));
    passes(Milliseconds(12000)); // it copies for four seconds
    EXPECT_EQ(ends_, Lines{"done"});
    EXPECT_EQ(count(softReset, {}), 1);
}

TEST_F(ControllerFirmware, IsWaitedForAsLongAsTheLoaderMayTake) {
    open();
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 300), byDefault));
    while (count(softReset, {}) == 0) { passes(Milliseconds(1)); }
    auto const end = now_ + Milliseconds(15000);
    for (auto next = controller_.deadline(); next && *next <= end; next = controller_.deadline()) {
        now_ = std::max(now_, *next);
        controller_.tick(now_);
        controller_.takeOutput(); // nobody hears it
    }
    EXPECT_TRUE(ends_.empty());
    passes(Milliseconds(15000));
    EXPECT_EQ(ends_, Lines{"done"});
}

TEST_F(ControllerFirmware, IsAFailureWhereTheModuleDoesNotComeBack) {
    open();
    auto hang = fault(Fault::Kind::hang);
    hang.function = softReset;
    hang.after = Milliseconds(1);
    module_.reset();
    open(oldModule({hang}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 300), byDefault));
    passes(Milliseconds(100000));
    EXPECT_EQ(ends_, Lines{"failed: the module cannot be read again: the module does not acknowledge"});
    EXPECT_THAT(diary_.lines, testing::Contains("module silent"));
}

// ---- the loader of the 700 and 800 series

TEST_F(ControllerFirmware, IsGivenToTheLoaderOfANewerModule) {
    open(newModule());
    EXPECT_EQ(version(), "Z-Wave 7.18");
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 512), byDefault, progress_));
    passes(Milliseconds(3000));
    EXPECT_EQ(ends_, Lines{"done"});
    EXPECT_EQ(version(), "Z-Wave 7.21");
    EXPECT_EQ(percents_, (std::vector<unsigned int>{25, 50, 75, 100}));
    EXPECT_EQ(diary_.loads, (Lines{"loads 0", "loads 25", "loads 50", "loads 75", "loads 100", "loaded 100"}));
    EXPECT_EQ(count(enterBootloader, {}), 1);
    EXPECT_EQ(count(firmwareUpdate, {}), 0);
    EXPECT_EQ(count(softReset, {}), 0);
    EXPECT_EQ(controller_.state(), ModuleState::ready);
    EXPECT_EQ(controller_.link().openCalls(), 0U);
}

TEST_F(ControllerFirmware, StaysAsItIsWhereTheLoaderRefusesTheImage) {
    open(newModule());
    auto broken = firmwareImage("Z-Wave 7.21", 1000);
    broken[500] = static_cast<Byte>(broken[500] ^ 1U);
    submit(std::make_shared<FirmwareUpdate>(broken, byDefault));
    passes(Milliseconds(5000));
    EXPECT_EQ(ends_, Lines{"failed: the loader has refused the image (error 0x50)"});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, StaysAsItIsWhereTheLoaderRefusesTheFirstBlock) {
    open(newModule({fault(Fault::Kind::refuseImage)}));
    auto const good = firmwareImage("Z-Wave 7.21", 1000);
    submit(std::make_shared<FirmwareUpdate>(good, byDefault, progress_));
    passes(Milliseconds(5000));
    EXPECT_EQ(ends_, Lines{"failed: the loader has refused the image (error 0x50)"});
    EXPECT_TRUE(percents_.empty());
    submit(std::make_shared<FirmwareUpdate>(good, byDefault));
    passes(Milliseconds(5000));
    EXPECT_EQ(ends_.back(), "done");
    EXPECT_EQ(version(), "Z-Wave 7.21");
}

TEST_F(ControllerFirmware, GetsOverBlocksThatAreLostOrTakenForDamaged) {
    open(newModule({fault(Fault::Kind::loseBlock, 1, 2), fault(Fault::Kind::refuseBlock, 3, 3)}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    passes(Milliseconds(2000));
    EXPECT_TRUE(ends_.empty()); // the loader asks for a lost block after a second
    passes(Milliseconds(8000));
    EXPECT_EQ(ends_, Lines{"done"});
    EXPECT_EQ(version(), "Z-Wave 7.21");
}

TEST_F(ControllerFirmware, IsAFailureWhereABlockIsTakenForDamagedAgainAndAgain) {
    open(newModule({fault(Fault::Kind::refuseBlock, 3, 4)}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    passes(Milliseconds(2500)); // the loader says so at once
    EXPECT_EQ(ends_, Lines{"failed: the loader takes a block for damaged again and again"});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, LeavesALoaderThatStopsMidway) {
    open(newModule({fault(Fault::Kind::stopLoader, 4)}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault, progress_));
    passes(Milliseconds(60000));
    EXPECT_EQ(ends_, Lines{"failed: the loader has fallen silent"});
    EXPECT_EQ(percents_.back(), 51U);
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, GoesOnOnceTheLoaderHasABlock) {
    open(newModule());
    auto const submission = submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    while (diary_.loads.size() < 3) { passes(Milliseconds(1)); }
    controller_.cancel(submission.job, now_);
    passes(Milliseconds(5000));
    EXPECT_EQ(ends_, Lines{"cancelled: cancelled"});
    EXPECT_EQ(version(), "Z-Wave 7.21");
}

TEST_F(ControllerFirmware, IsNotTouchedWhereTheJobIsCancelledBeforeTheFirstBlock) {
    open(newModule());
    auto const submission = submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    controller_.cancel(submission.job, now_); // its request is on the way
    passes(Milliseconds(10000));
    EXPECT_EQ(ends_, Lines{"cancelled: cancelled"});
    EXPECT_EQ(diary_.loads, (Lines{"loads 0", "loaded 0"}));
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, LeavesAModuleThatVanishesMidwayToItsPort) {
    open(newModule());
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    while (diary_.loads.size() < 3) { passes(Milliseconds(1)); }
    controller_.lost(now_);
    EXPECT_EQ(ends_, Lines{"failed: the port is lost"});
    EXPECT_EQ(controller_.state(), ModuleState::absent);
    module_->restart();
    module_->tick(now_);
    module_->takeOutput();
    controller_.start(now_);
    passes(Milliseconds(5000));
    EXPECT_EQ(controller_.state(), ModuleState::ready);
    EXPECT_EQ(version(), "Z-Wave 7.18");
}

TEST_F(ControllerFirmware, IsNotBegunByAModuleThatDoesNotEnterItsLoader) {
    auto entersNot = fault(Fault::Kind::loseFrame, 0, 4);
    entersNot.function = enterBootloader;
    open(newModule({entersNot}));
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    passes(Milliseconds(20000));
    EXPECT_EQ(ends_, Lines{"failed: the module does not acknowledge"});
    EXPECT_TRUE(diary_.loads.empty());
    EXPECT_EQ(controller_.state(), ModuleState::ready);
}

TEST_F(ControllerFirmware, CallsDuringAnUploadEndAsClosed) {
    open(newModule());
    submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.21", 1000), byDefault));
    while (diary_.loads.size() < 3) { passes(Milliseconds(1)); }
    submit(std::make_shared<RawCall>(Byte{0x15}, Bytes(), RawCall::Heard()));
    carry();
    EXPECT_EQ(ends_, Lines{"failed: the link to the module was closed"});
    passes(Milliseconds(5000));
    EXPECT_EQ(ends_.back(), "done");
    EXPECT_EQ(version(), "Z-Wave 7.21");
}

TEST_F(ControllerFirmware, IsRefusedForAModuleThatTakesNone) {
    auto network = newModule();
    network.withoutFunctions = {enterBootloader};
    open(network);
    EXPECT_EQ(submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 7.19", 300), byDefault)).reason,
              "the module takes no firmware over its serial interface");
}

TEST_F(ControllerFirmware, IsNotGivenToTheOtherFunctionOfAnOlderModule) {
    auto network = oldModule();
    network.withoutFunctions = {firmwareUpdate};
    open(network);
    EXPECT_EQ(submit(std::make_shared<FirmwareUpdate>(firmwareImage("Z-Wave 4.61", 300), byDefault)).reason,
              "the module takes no firmware over its serial interface");
}

TEST_F(ControllerFirmware, IsRefusedWhereThereIsNone) {
    open();
    EXPECT_EQ(submit(std::make_shared<FirmwareUpdate>(Bytes(), byDefault)).reason,
              "the firmware is empty or too large");
}

} // namespace
} // namespace zorv::controller
