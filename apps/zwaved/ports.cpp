// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ports.h"

#include "platform/libio/SerialPort.h"
#include "zwave/libmodulesim/ModulePlayer.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace zorv::daemon {

namespace {

using serialapi::Bytes;

class DevicePort : public ModulePort {
public:
    DevicePort(EventLoop& loop, std::string const& device, unsigned int baud, Handlers handlers)
        : port_(loop, device, baud) {
        port_.start({std::move(handlers.received), std::move(handlers.lost)});
    }

    void write(Bytes const& bytes) override { port_.write(bytes); }

private:
    SerialPort port_;
};

/// A module that is played as long as anybody may open its port, whether it is plugged in, and who has it open.
struct Play {
    std::unique_ptr<modulesim::ModulePlayer> player;
    ModulePort::Handlers host;
    bool isThere = true;

    void presence(bool nowThere) {
        isThere = nowThere;
        if (isThere) { return; } // whoever had it open has to open it again
        auto const lost = std::exchange(host, {}).lost;
        if (lost) { lost("the simulated module is gone"); }
    }
};

class PlayedPort : public ModulePort {
public:
    PlayedPort(std::shared_ptr<Play> play, Handlers handlers) : play_(std::move(play)) {
        if (!play_->isThere) { throw std::runtime_error("cannot open the simulated module: it is gone"); }
        play_->host = std::move(handlers);
    }
    ~PlayedPort() override { play_->host = {}; }

    PlayedPort(PlayedPort const&) = delete;
    PlayedPort& operator=(PlayedPort const&) = delete;

    void write(Bytes const& bytes) override {
        if (play_->host.received) { play_->player->receive(bytes); }
    }

private:
    std::shared_ptr<Play> play_;
};

} // namespace

OpenPort serialPort(EventLoop& loop, std::string const& device, unsigned int baud) {
    return [&loop, device, baud](ModulePort::Handlers handlers) {
        return std::make_unique<DevicePort>(loop, device, baud, std::move(handlers));
    };
}

OpenPort simulatedPort(EventLoop& loop, modulesim::SimulatedNetwork const& network) {
    auto const play = std::make_shared<Play>();
    auto const toHost = [play = std::weak_ptr<Play>(play)](Bytes const& bytes) {
        auto const alive = play.lock();
        if (alive && alive->host.received) { alive->host.received(bytes); }
    };
    play->player = std::make_unique<modulesim::ModulePlayer>(loop, network, toHost);
    play->player->presence([&play = *play](bool isThere) { play.presence(isThere); }); // which has the player
    return [play](ModulePort::Handlers handlers) { return std::make_unique<PlayedPort>(play, std::move(handlers)); };
}

} // namespace zorv::daemon
