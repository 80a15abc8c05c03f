// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Metrics.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>

#include <chrono>
#include <cstdint>

namespace zorv::daemon {

namespace {

constexpr std::chrono::minutes period{1};

} // namespace

Metrics::Metrics(EventLoop& loop, MessageBus const& bus, ModuleLink const& link, Requests const& requests)
    : loop_(loop), bus_(bus), link_(link), requests_(requests) {
    logLater();
}

StringVecVec Metrics::rows() const {
    StringVecVec rows{{"Client", "Received", "Sent", "Unanswered", "Waiting", "Events", "Observes"}};
    for (auto const& peer : bus_.peers()) {
        rows.push_back({boost::lexical_cast<std::string>(peer.remote), std::to_string(peer.received),
                        std::to_string(peer.sent), std::to_string(peer.unanswered), std::to_string(peer.waiting),
                        std::to_string(peer.events), peer.observes ? "yes" : "no"});
    }
    rows.emplace_back();
    rows.push_back({"Counter", "Value"});
    auto const counted = counters();
    rows.insert(rows.end(), counted.begin(), counted.end());
    return rows;
}

StringVecVec Metrics::counters() const {
    StringVecVec rows;
    auto const add = [&rows](char const* name, std::uint64_t value) { rows.push_back({name, std::to_string(value)}); };
    auto const& link = link_.controller().link();
    auto const serial = link.session().counters();
    add("Serial frames sent", serial.framesSent);
    add("Serial frames received", serial.framesReceived);
    add("Serial ACK sent", serial.acksSent);
    add("Serial ACK received", serial.acksReceived);
    add("Serial NAK sent", serial.naksSent);
    add("Serial NAK received", serial.naksReceived);
    add("Serial CAN sent", serial.cansSent);
    add("Serial CAN received", serial.cansReceived);
    add("Serial retransmissions", serial.retransmissions);
    add("Serial checksum errors", serial.checksumErrors);
    add("Serial time-outs", serial.ackTimeouts + serial.responseTimeouts + serial.frameTimeouts);
    add("Serial bytes skipped", serial.skippedBytes);
    add("Stray responses", serial.strayResponses);
    add("Stray callbacks", link.strayCallbacks());
    auto const& bus = bus_.counters();
    add("Clients", bus_.peerCount());
    add("Messages received", bus.received);
    add("Messages sent", bus.sent);
    add("Requests rejected", bus.rejected);
    add("Bad lines", bus.badLines);
    add("Messages dropped", bus.dropped);
    auto const& jobs = requests_.counters();
    add("Jobs done", jobs.done);
    add("Jobs failed", jobs.failed);
    add("Jobs timed out", jobs.timedOut);
    add("Jobs cancelled", jobs.cancelled);
    add("Jobs refused", jobs.refused);
    return rows;
}

void Metrics::logLater() {
    insist([this] {
        next_ = Timer(loop_, period, [this] {
            ifMemoryAllows([this] { log(); });
            logLater();
        });
    });
}

/// Only what is not 0, on one line.
void Metrics::log() {
    std::string line;
    for (auto const& row : counters()) {
        if (row.at(1) != "0") { line += (line.empty() ? "" : ", ") + row.at(0) + ' ' + row.at(1); }
    }
    if (line != logged_) { Logger::log(LogLevel::info, "zwaved: " + line, BOOST_CURRENT_LOCATION); }
    logged_ = line;
}

} // namespace zorv::daemon
