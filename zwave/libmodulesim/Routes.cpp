// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <algorithm>

// Neighbours and routes.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr std::size_t nodeMaskBytes = 29;
constexpr Byte assigned = 0;
constexpr Byte notAcknowledged = 1;
constexpr Byte noRoute = 4;

using Search = api::RequestNodeNeighborUpdate;

std::vector<NodeId> const& neighbours(Core const& core, NodeId id) {
    static std::vector<NodeId> const nobody;
    auto const record = core.membership.nodes.find(id);
    return record == core.membership.nodes.end() ? nobody : record->second.neighbours;
}

void searchNeighbours(Core& core, api::NodeJob const& job) {
    auto const tell = [&core, job](Byte status) {
        if (status != Search::started) { core.mode = NetworkMode::none; }
        core.callBack<Search>({job.callbackId, status});
    };
    if (core.mode != NetworkMode::none || !core.membership.assignsIds()) {
        core.callBack<Search>({job.callbackId, Search::failed});
        return;
    }
    core.mode = NetworkMode::neighbourSearch;
    core.after(timing::neighbourSearchStarts, [&core, tell, job] {
        tell(Search::started);
        auto* const node = core.node(job.node);
        bool const isThere = node != nullptr && node->hears(core.time());
        core.after(isThere ? timing::findsNeighbours : timing::neighbourSearchFails, [&core, tell, job, isThere] {
            if (isThere) {
                core.membership.nodes[job.node].neighbours = core.neighboursOf(job.node);
                core.membershipChanged();
            }
            tell(isThere ? Search::done : Search::failed);
        });
    });
}

/// A route is written into the node, which has to hear it.
template <class F> void serveRoute(Core& core) {
    core.serve<F>([&core](typename F::Request const& request) {
        bool hasDestination = true;
        if constexpr (std::is_same_v<F, api::AssignReturnRoute>) {
            hasDestination = core.membership.nodes.count(request.destination) != 0;
        }
        core.after(timing::assignsRoute, [&core, node = request.node, id = request.callbackId, hasDestination] {
            auto* const there = core.node(node);
            bool const isHeard = there != nullptr && there->hears(core.time());
            core.callBack<F>({id, !isHeard ? notAcknowledged : hasDestination ? assigned : noRoute});
        });
        return api::Accepted{1};
    });
}

} // namespace

void serveRoutes(Core& core) {
    core.serve<api::GetNodeProtocolInfo>([&core](api::OneNode const& request) {
        auto const record = core.membership.nodes.find(request.node);
        return record == core.membership.nodes.end() ? api::GetNodeProtocolInfo::Response{}
                                                     : record->second.information;
    });
    core.serve<api::GetRoutingInfo>([&core](api::GetRoutingInfo::Request const& request) {
        api::GetRoutingInfo::Response response;
        response.neighbours.bytes.resize(nodeMaskBytes);
        for (auto const node : neighbours(core, request.node)) { response.neighbours.insert(node); }
        return response;
    });
    core.serve<Search>([&core](api::NodeJob const& job) { searchNeighbours(core, job); });
    serveRoute<api::AssignReturnRoute>(core);
    serveRoute<api::DeleteReturnRoute>(core);
    serveRoute<api::AssignSucReturnRoute>(core);
    serveRoute<api::DeleteSucReturnRoute>(core);
    if (!core.isSeries500()) { return; }
    core.serve<api::GetNeighborCount>([&core](api::OneNode const& request) {
        return api::Setting{static_cast<Byte>(neighbours(core, request.node).size())};
    });
    core.serve<api::AreNodesNeighbors>([&core](api::AreNodesNeighbors::Request const& request) {
        auto const& all = neighbours(core, request.node);
        return api::Setting{std::find(all.begin(), all.end(), request.other) != all.end() ? Byte{1} : Byte{0}};
    });
}

} // namespace zorv::modulesim
