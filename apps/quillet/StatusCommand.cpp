// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/Conversation.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <CLI/CLI.hpp>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <memory>
#include <string>

namespace zorv {

namespace {

/// Shows how the daemon, its module and the link to it are, who is connected, and what was counted.
class StatusCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        return app.add_subcommand("status", "Show how daemon, module and link are");
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        Conversation conversation(daemon, output, "status");
        StringVecVec rows;
        ask<SystemStatusEvt>(conversation, output, boost::make_shared<SystemStatusEvt>(),
                             [&](auto const& answer) { displayRow(rows, "System:", answer.status()); });
        ask<DaemonStatusMsg>(conversation, output, boost::make_shared<DaemonStatusMsg>(), [&](auto const& answer) {
            displayRow(rows, "Daemon:", answer.status());
            if (answer.detail() != DaemonDetail::noDetail) { displayRow(rows, "", answer.detail()); }
            displayRow(rows, "Controller:", answer.address().address());
        });
        ask<ControllerInfoMsg>(conversation, output, ControllerInfoMsg::create(ControllerInfoOption::all),
                               [&](auto const& answer) {
                                   displayRow(rows, "Module:", answer.moduleType());
                                   displayRow(rows, "Firmware:", answer.fwVersion());
                                   displayRow(rows, "Role:", answer.controllerRole());
                                   displayRow(rows, "Nodes:", answer.nodeCount());
                               });
        ask<SessionLayerMsg>(conversation, output, boost::make_shared<SessionLayerMsg>(SessionLayerOp::status),
                             [&](auto const& answer) { displayRow(rows, "Link:", answer.status()); });
        output.show(rows, "");
        ask<CliDisplayMsg>(conversation, output, CliDisplayMsg::create({}), [&](auto const& answer) {
            if (output.isJson()) { return; }
            // Tables with an empty row between them.
            auto const& data = answer.data();
            for (auto row = data.begin(); row != data.end();) {
                auto const end = std::find(row, data.end(), StringVecVec::value_type());
                output.showLine("");
                output.startTable();
                output.show(StringVecVec(output.hasTitles() ? row : row + (row == end ? 0 : 1), end), "");
                row = end == data.end() ? end : end + 1;
            }
        });
        return code_;
    }

private:
    template <class M, class Show>
    void ask(Conversation& conversation, Output& output, boost::shared_ptr<M> const& request, Show const& show) {
        auto const answer = conversation.ask(request);
        if (output.isJson()) { output.show(*answer); }
        auto const* const known = dynamic_cast<M const*>(answer.get());
        if (known != nullptr && Conversation::isGood(*answer)) { show(*known); }
        auto const code = conversation.judge(*answer);
        if (code_ == ExitCode::ok) { code_ = code; }
    }

    ExitCode code_ = ExitCode::ok;
};

} // namespace

std::unique_ptr<Command> makeStatusCommand() { return std::make_unique<StatusCommand>(); }

} // namespace zorv
