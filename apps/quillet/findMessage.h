// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

struct MemberDescriptor;
struct TypeDescriptor;

/// The message of the catalogue with that name, "PingMsg" or "zorv::PingMsg"; a std::invalid_argument where there is
/// none.
TypeDescriptor const& findMessage(std::string const& name);

/// The member of the message's own class; null where it has none of that name.
MemberDescriptor const* findMember(TypeDescriptor const& message, std::string const& key);

/// The complaint about a message name on the command line; empty if the name is good.
std::string complaintAboutMessage(std::string const& name);

} // namespace zorv
