// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/ModuleLink.h"
#include "apps/zwaved/Requests.h"

#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "transport/CliViewer.h"

#include <string>

namespace zorv::daemon {

/// What the daemon counts: for whoever asks, and once a minute for the log, where anything has changed.
class Metrics {
public:
    Metrics(EventLoop& loop, MessageBus const& bus, ModuleLink const& link, Requests const& requests);

    /// A table of the clients, and one of the counters.
    StringVecVec rows() const;

private:
    StringVecVec counters() const;
    void logLater();
    void log();

    EventLoop& loop_;
    MessageBus const& bus_;
    ModuleLink const& link_;
    Requests const& requests_;
    std::string logged_;
    Timer next_;
};

} // namespace zorv::daemon
