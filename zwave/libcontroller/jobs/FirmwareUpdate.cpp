// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/FirmwareUpdate.h"

#include <algorithm>

namespace zorv::controller {

using serialapi::CallEnd;

namespace {

constexpr std::size_t blockSize = 64;
constexpr std::size_t mostBytes = 0x1000000; // what an offset of three bytes can tell

} // namespace

std::string FirmwareUpdate::objection(Network const& network) const {
    auto const& module = network.module;
    if (!module.takesFirmware() && !module.hasLoader()) {
        return "the module takes no firmware over its serial interface";
    }
    if (image_.empty() || image_.size() > mostBytes) { return "the firmware is empty or too large"; }
    return "";
}

void FirmwareUpdate::run() { network().module.hasLoader() ? enterLoader() : write(); }

void FirmwareUpdate::report(unsigned int percent) {
    if (percent <= percent_) { return; }
    percent_ = percent;
    if (progress_) { progress_(percent); }
}

// ---- the 500 series

/// Any problem from here on leaves the module as it was.
void FirmwareUpdate::ask(Nvm::Request const& request, std::function<void(Nvm::Response const&)> take) {
    serialapi::CallHandlers<Nvm> handlers;
    handlers.response = std::move(take);
    handlers.end = [this](CallEnd end) {
        if (end != CallEnd::done) { giveUp(complaint(end)); }
    };
    call<Nvm>(request, std::move(handlers));
}

void FirmwareUpdate::write() {
    ask({Nvm::init, 0, {}, {}}, [this](Nvm::Response const& response) {
        if (response.value == 0) { return giveUp("the module has no memory for other firmware"); }
        prepare();
    });
}

/// An image that is not whole must not be taken up, whatever restarts the module meanwhile.
void FirmwareUpdate::prepare() {
    ask({Nvm::setNewImage, 0, {}, {}}, [this](Nvm::Response const&) {
        stage_ = Stage::writing;
        noDeadline();
        if (network().module.knows<serialapi::SetRfReceiveMode>()) { tell<serialapi::SetRfReceiveMode>({0}); }
        writeNext();
    });
}

void FirmwareUpdate::writeNext() {
    if (written_ == image_.size()) { return check(); }
    auto const size = std::min(blockSize, image_.size() - written_);
    auto const begin = image_.begin() + static_cast<std::ptrdiff_t>(written_);
    Nvm::Block const block{static_cast<std::uint32_t>(written_),
                           Bytes(begin, begin + static_cast<std::ptrdiff_t>(size))};
    ask({Nvm::write, 0, {}, block}, [this, size](Nvm::Response const&) { // 0 says that the bytes were there already
        written_ += size;
        report(static_cast<unsigned int>(written_ * 100 / image_.size()));
        writeNext();
    });
}

void FirmwareUpdate::check() {
    ask({Nvm::isValid, 0, {}, {}}, [this](Nvm::Response const& response) {
        if (response.value == 0) { return giveUp("the module refuses the firmware"); }
        takeUp();
    });
}

void FirmwareUpdate::takeUp() {
    ask({Nvm::setNewImage, 1, {}, {}},
        [this](Nvm::Response const&) { readModule(Restart::reload, [this] { endDone(); }); });
}

void FirmwareUpdate::giveUp(std::string const& problem) {
    if (stage_ != Stage::writing || !network().module.knows<serialapi::SetRfReceiveMode>()) { return fail(problem); }
    tell<serialapi::SetRfReceiveMode>({1}, [this, problem](CallEnd) { fail(problem); });
}

// ---- the 700 and 800 series

void FirmwareUpdate::enterLoader() {
    stage_ = Stage::entering;
    tell<serialapi::EnterBootloader>({}, [this](CallEnd end) {
        if (end != CallEnd::done) { return fail(complaint(end)); }
        stage_ = Stage::loading;
        serialapi::LoadHandlers handlers;
        handlers.progress = [this](unsigned int percent) { onLoading(percent); };
        handlers.end = [this](serialapi::LoadResult const& result) { onLoaded(result); };
        load(image_, std::move(handlers));
        host().observer().loaderChanged(true, 0);
        if (isStopping()) { stop(); }
    });
}

void FirmwareUpdate::onLoading(unsigned int percent) {
    noDeadline();
    host().observer().loaderChanged(true, percent);
    report(percent);
}

/// The loader has been told to start the module, if there is one. Without one, the module may not have entered it at all.
void FirmwareUpdate::onLoaded(serialapi::LoadResult const& result) {
    using serialapi::LoadEnd;
    host().observer().loaderChanged(false, percent_);
    auto const restart = result.end == LoadEnd::noLoader ? Restart::reset : Restart::byLoader;
    readModule(restart, [this, result] {
        bool const isBad = result.end != LoadEnd::done && result.end != LoadEnd::cancelled;
        if (isBad) { return fail(serialapi::complaint(result)); }
        endDone();
    });
}

// ---- the end before its time

/// Only the loader knows whether it can still be stopped.
void FirmwareUpdate::stop() {
    switch (stage_) {
    case Stage::asking: return endStopped();
    case Stage::loading: return host().module().cancelLoad(now());
    case Stage::writing:
    case Stage::entering: return;
    }
}

} // namespace zorv::controller
