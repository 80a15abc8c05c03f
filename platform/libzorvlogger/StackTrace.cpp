// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvlogger/StackTrace.h"

#include "platform/libzorvlogger/Logger.h"

#include <boost/core/demangle.hpp>
#include <boost/stacktrace/frame.hpp>
#include <boost/stacktrace/safe_dump_to.hpp>

#include <ostream>
#include <sstream>

namespace zorv {

StackTrace::StackTrace() noexcept {
    std::size_t const skipThisFrame = 1;
    std::size_t const written =
        boost::stacktrace::safe_dump_to(skipThisFrame, frames_.data(), frames_.size() * sizeof(frames_[0]));
    // The dump ends with an empty frame that is counted as well.
    while (depth_ < written && depth_ < frames_.size() && frames_[depth_] != nullptr) { ++depth_; }
}

void StackTrace::print(std::ostream& os) const {
    for (std::size_t i = 0; i < depth_; ++i) {
        boost::stacktrace::frame const frame(frames_[i]);
        os << "  #" << i << ' ' << frame << '\n';
    }
}

void StackTrace::log(std::string const& text) const {
    std::ostringstream os;
    os << text << '\n';
    print(os);
    Logger::log(LogLevel::warn, os.str(), BOOST_CURRENT_LOCATION);
}

std::string StackTrace::demangle(char const* name) { return boost::core::demangle(name); }

} // namespace zorv
