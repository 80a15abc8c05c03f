// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/Conversation.h"
#include "apps/quillet/parseNode.h"

#include "zwave/libquillet/NodeInformationMsg.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace zorv {

namespace {

/// Shows all that the daemon knows of one node.
class NodeCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("node", "Show all that is known of a node");
        command->add_option("NODE", node_, nodeHelp)->required()->type_name("")->check(isNode());
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        Conversation conversation(daemon, output, "node");
        auto const answer = conversation.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::all, {}));
        auto const* const known = dynamic_cast<NodeInformationMsg const*>(answer.get());
        if (known == nullptr || !Conversation::isGood(*answer)) { return conversation.show(*answer); }
        DeviceMap devices;
        auto const wanted = parseNode(node_);
        for (auto const& [address, device] : known->devices()) {
            bool const isOfNetwork = wanted.homeId() == 0 || wanted.homeId() == address.homeId();
            if (device && isOfNetwork && wanted.nodeId() == address.nodeId()) { devices.emplace(address, device); }
        }
        if (devices.empty()) { throw ExitError(ExitCode::refused, "node: the network has no node " + node_); }
        output.show(*NodeInformationMsg::create(GetNodesOp::set, DisplayOption::all, devices));
        return ExitCode::ok;
    }

    std::vector<std::string> completions(TypedWord const& typed) const override {
        return typed.argument == "NODE" ? typed.nodes : std::vector<std::string>();
    }

private:
    std::string node_;
};

} // namespace

std::unique_ptr<Command> makeNodeCommand() { return std::make_unique<NodeCommand>(); }

} // namespace zorv
