// SPDX-License-Identifier: Apache-2.0
#pragma once

// The node ids of a Z-Wave network.

namespace zorv {

constexpr unsigned int firstNodeId = 1;
constexpr unsigned int lastNodeId = 232;
constexpr unsigned char broadcastNodeId = 255; ///< stands for all nodes

constexpr bool isNodeId(unsigned int id) noexcept { return id >= firstNodeId && id <= lastNodeId; }

} // namespace zorv
