// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"
#include "zwave/libmodulesim/firmwareVersionImpl.h"

#include <algorithm>
#include <memory>
#include <string>

// New firmware for a module of the 500 series, which is written beside what runs.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr std::size_t room = 131072;
constexpr std::uint16_t firstRemainder = 0x1D0F;

class Firmware {
public:
    using Nvm = api::FirmwareUpdateNvm;

    explicit Firmware(Core& core) : core_(core) {}

    Nvm::Response take(Nvm::Request const& request) {
        Nvm::Response response{request.operation, 0, {}};
        switch (request.operation) {
        case Nvm::init:
            image_.clear();
            response.value = 1;
            break;
        case Nvm::setNewImage:
            response.value = request.newImage == (isNew_ ? 1 : 0) ? 0 : 1;
            isNew_ = request.newImage != 0;
            break;
        case Nvm::getNewImage: response.value = isNew_ ? 1 : 0; break;
        case Nvm::crcOfArea:
            response.crc = firmwareChecksum(image_, request.area.offset, request.area.length, request.area.seed);
            break;
        case Nvm::isValid:
            response.value = firmwareVersion(image_) && !core_.isHit(Fault::Kind::refuseImage) ? 1 : 0;
            response.crc = firmwareChecksum(image_, 0, image_.size(), firstRemainder);
            break;
        case Nvm::write: response.value = write(request.block.offset, request.block.data) ? 1 : 0; break;
        default: break;
        }
        return response;
    }

    /// The loader's part, between a reset and the start.
    void takeUp() {
        auto const version = firmwareVersion(image_);
        if (!std::exchange(isNew_, false) || !version) { return; }
        core_.described.version = *version;
        constexpr std::size_t kibibyte = 1024;
        core_.startsLater = timing::copiesKibibyte * (image_.size() / kibibyte + 1);
    }

private:
    /// False where the same bytes stand there already, or there is no room for them.
    bool write(std::size_t offset, Bytes const& data) {
        if (offset + data.size() > room) { return false; }
        auto const before = image_;
        image_.resize(std::max(image_.size(), offset + data.size()), 0xFF);
        std::copy(data.begin(), data.end(), image_.begin() + static_cast<std::ptrdiff_t>(offset));
        return image_ != before;
    }

    Core& core_;
    Bytes image_;
    bool isNew_ = false; ///< is to be taken up at the next start
};

} // namespace

void serveFirmware(Core& core) {
    if (!core.isSeries500()) { return; }
    auto const firmware = std::make_shared<Firmware>(core);
    core.serve<api::FirmwareUpdateNvm>([firmware](auto const& request) { return firmware->take(request); });
    core.hooks.restarting = [firmware, others = core.hooks.restarting] {
        others();
        firmware->takeUp();
    };
}

} // namespace zorv::modulesim
