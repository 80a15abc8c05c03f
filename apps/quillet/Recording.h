// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <vector>

namespace zorv {

/// A client's message that an observer has recorded.
struct RecordedRequest {
    std::size_t line = 0;
    std::chrono::milliseconds time{}; ///< when the daemon got it, since 1970
    boost::shared_ptr<TMessage> request;
    boost::shared_ptr<Confirmable> answer; ///< the final one; null where none was recorded
};

/// The requests of a recording, one message in JSON per line as an observer shows them, in their order; the versions that
/// open connections are none. An ExitError names a line that is no message.
std::vector<RecordedRequest> readRecording(std::istream& lines);

} // namespace zorv
