// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Announcer.h"
#include "apps/zwaved/ClientMessages.h"
#include "apps/zwaved/Context.h"
#include "apps/zwaved/FirmwareMessages.h"
#include "apps/zwaved/MemoryMessages.h"
#include "apps/zwaved/Metrics.h"
#include "apps/zwaved/ModuleLink.h"
#include "apps/zwaved/ModuleMessages.h"
#include "apps/zwaved/NetworkMessages.h"
#include "apps/zwaved/NodeMessages.h"
#include "apps/zwaved/Recorder.h"
#include "apps/zwaved/Requests.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpConnection.h"
#include "platform/libmessage_bus/MessageBus.h"

#include <functional>
#include <string>

namespace zorv::daemon {

/// The daemon: serves the messages of its clients by a controller, which drives a module.
class Daemon {
public:
    /// Empty folders stand for none; `ended` is called when the daemon has come to its end.
    Daemon(EventLoop& loop, OpenPort openPort, std::string const& stateFolder, std::string const& firmwareFolder,
           std::function<void()> ended);

    Daemon(Daemon const&) = delete;
    Daemon& operator=(Daemon const&) = delete;

    /// Opens the module's port; std::runtime_error where that cannot be done.
    void open() { link_.open(); }

    void welcome(TcpConnection connection);

    /// Has each change of the system's status told; to be set before open().
    void systemStatus(std::function<void(SystemStatus::Enum)> handler) { announcer_.systemStatus(std::move(handler)); }

    /// Ends in order: what is under way is stopped and answered, and the module is out of every mode. Once more: at once.
    void quit();

private:
    MessageBus::Handlers busHandlers();
    void reject(PeerId from, BadMessageError const& error);
    void left(PeerId peer, std::string const& reason);
    void turnEnded();
    void sayGoodbye();

    EventLoop& loop_;
    std::function<void()> ended_;
    Recorder recorder_;
    std::map<PeerId, TcpConnection::Endpoint> clients_;
    MessageBus bus_;
    Announcer announcer_;
    ModuleLink link_;
    Requests requests_;
    Context context_;
    Metrics metrics_;
    ClientMessages clientMessages_;
    NetworkMessages networkMessages_;
    NodeMessages nodeMessages_;
    ModuleMessages moduleMessages_;
    MemoryMessages memoryMessages_;
    FirmwareMessages firmwareMessages_;
    bool isEnding_ = false;
    bool hasSaidGoodbye_ = false;
    Timer lastMoment_;
};

} // namespace zorv::daemon
