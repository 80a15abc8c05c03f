// SPDX-License-Identifier: Apache-2.0
#include "apps/zwavesim/ModuleDevice.h"

#include "platform/libtransport/format8Bits.h"
#include "platform/libzorvlogger/Logger.h"

#include <utility>

namespace zorv {

namespace {

/// As lines that `quillet frames` reads.
void traceFrame(serialapi::Side sender, serialapi::Frame const& frame) {
    if (!Logger::enabled(LogLevel::debug)) { return; }
    std::string line = sender == serialapi::Side::host ? "host" : "module";
    for (auto const byte : frame.encode()) { line += ' ' + format8Bits(byte, false); }
    Logger::log(LogLevel::debug, line, BOOST_CURRENT_LOCATION);
}

} // namespace

ModuleDevice::ModuleDevice(EventLoop& loop, modulesim::SimulatedNetwork network, std::string const& link)
    : loop_(loop), player_(loop, std::move(network), [this](modulesim::Bytes const& bytes) {
          if (terminal_) { terminal_->write(bytes); }
      }) {
    if (!link.empty()) { link_.emplace(link); }
    player_.module().trace(traceFrame);
    player_.presence([this](bool isThere) {
        if (isThere) {
            plugIn();
        } else {
            plugOut();
        }
    });
    plugIn();
}

void ModuleDevice::plugIn() {
    terminal_ = std::make_unique<PseudoTerminal>(loop_);
    PortHandlers handlers;
    handlers.received = [this](modulesim::Bytes const& bytes) { player_.receive(bytes); };
    terminal_->start(std::move(handlers));
    if (link_) { link_->lead(terminal_->path()); }
}

void ModuleDevice::plugOut() {
    if (link_) { link_->remove(); } // before the host notices and looks for it
    terminal_.reset();
}

} // namespace zorv
