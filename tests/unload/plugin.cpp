// SPDX-License-Identifier: Apache-2.0
// The host's plug-in. It uses the catalogue to read messages, good and bad, and logs a line; and it reads one as it is
// loaded, by an initializer of its own.

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/shared_ptr.hpp>

#include <exception>
#include <sstream>

namespace {

bool readsWhatItWrote() {
    auto const ping = zorv::PingMsg::create(zorv::ZwaveAddress(0xc0ffee01, 5));
    std::ostringstream text;
    ping->print(text);
    auto const read = boost::dynamic_pointer_cast<zorv::PingMsg>(zorv::readSerializable(text.str()));
    return read && read->destination() == ping->destination() && read->id() == ping->id();
}

bool const hasReadWhileItWasLoaded = readsWhatItWrote();

bool refusesAnUnknownClass() {
    try {
        zorv::readSerializable(R"({"__name__":"zorv::NoSuchMsg","__bases__":[]})");
    } catch (zorv::SerializerError const&) { return true; }
    return false;
}

} // namespace

/// Whether everything succeeded.
extern "C" __attribute__((visibility("default"))) int useCatalogue() {
    try {
        zorv::Logger::log(zorv::LogLevel::warn, "a line from the plug-in", BOOST_CURRENT_LOCATION);
        return hasReadWhileItWasLoaded && readsWhatItWrote() && refusesAnUnknownClass() ? 1 : 0;
    } catch (std::exception const&) { return 0; }
}
