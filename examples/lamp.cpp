// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/RawCommand.h"
#include "zwave/libclient/Client.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/SendCommandMsg.h"
#include <boost/make_shared.hpp>
#include <csignal>
#include <iostream>

/// Switches the lamp, node 2, as the switch, node 5, reports.
int main(int argc, char** argv) {
    zorv::ZwaveAddress const wallSwitch(0xc0ffee01, 5);
    zorv::ZwaveAddress const lamp(0xc0ffee01, 2);

    zorv::EventLoop loop;
    zorv::SignalWatch const end(loop, {SIGINT, SIGTERM}, [&loop](int) { loop.stop(); });
    zorv::ClientHandlers handlers;
    handlers.connected = [] { std::cout << "connected" << std::endl; };
    handlers.lost = [](std::string const& reason) { std::cout << "not connected: " << reason << std::endl; };

    zorv::DaemonPlace place;
    if (argc > 1) { place.port = static_cast<unsigned short>(std::stoi(argv[1])); }
    zorv::Client client(loop, place, handlers);

    client.on<zorv::CommandClassMsg>([&](boost::shared_ptr<zorv::CommandClassMsg> const& event) {
        auto const report = event->command()->bytes(); // Binary Switch Report: its class, 03, the value
        if (event->sourceAddr() != wallSwitch || report.size() < 3 || report[0] != 0x25 || report[1] != 0x03) {
            return;
        }
        std::vector<unsigned char> const set{0x25, 0x01, report[2]};
        auto const request = zorv::SendCommandMsg::create(lamp, boost::make_shared<zorv::RawCommand>(set),
                                                          zorv::TransmitOption::defaultOptions, false, false, false);
        client.request(request, std::chrono::seconds(10), [](zorv::Client::Answer const& answer) {
            std::cout << "lamp: " << answer->result() << std::endl;
        });
    });
    loop.run();
}
