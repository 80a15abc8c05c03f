// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace scenario {

/// A client that sends any bytes. Each operation throws if it takes longer than a generous deadline.
class LineClient {
public:
    /// Connects to a port of this machine; `receiveBuffer` limits what the system takes in for it, in bytes;
    /// `localPort` is its own port, 0 any.
    explicit LineClient(unsigned short port, int receiveBuffer = 0, unsigned short localPort = 0);
    ~LineClient();

    LineClient(LineClient const&) = delete;
    LineClient& operator=(LineClient const&) = delete;

    /// Sends bytes as they are; false when the other side does not take them any more.
    bool send(std::string const& bytes);

    bool sendLine(std::string const& line) { return send(line + "\n"); }

    /// The next line, without its end; throws at the end of the connection.
    std::string receiveLine();

    boost::shared_ptr<zorv::TMessage> receive();

    /// Reads to the end of the connection; true if so many lines came before it.
    bool endsAfter(int lines);

    unsigned short localPort() const;

    /// How many segments of data the system has got for this client.
    unsigned int receivedSegments() const;

    /// Sends nothing any more, and reads on, as `nc -N` does.
    void endOutput();

    /// Ends the connection as a process that ends would, or with a reset.
    void close();
    void reset();

private:
    int socket_;
    std::string unread_;
};

/// The first line of a client.
std::string const& versionLine();

/// A client that has opened its connection to a daemon: each side has told its version.
class OpenClient : public LineClient {
public:
    explicit OpenClient(unsigned short port, int receiveBuffer = 0) : LineClient(port, receiveBuffer) {
        sendLine(versionLine());
        receiveLine();
    }
};

/// A ping as the client library writes it.
std::string pingLine(unsigned char nodeId);

} // namespace scenario
