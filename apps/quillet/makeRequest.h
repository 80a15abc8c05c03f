// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>

namespace zorv {

class TMessage;

/// A new message of the class with the members that `json`, one object, gives; all others are at their defaults.
///
/// The object may be a whole message, such as the client shows: its identity, its time and what else the header holds are
/// not taken, except the priority. A BadMessageError where it cannot be read, a std::invalid_argument for an unknown
/// class, or a member that the class does not have.
boost::shared_ptr<TMessage> makeRequest(std::string const& name, std::string const& json);

} // namespace zorv
