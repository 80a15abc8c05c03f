// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/MessageCommand.h"

namespace zorv {

namespace {

constexpr unsigned int seconds = 1000;
constexpr unsigned int milliseconds = 1;

constexpr LongWork mode(char const* abort, unsigned int timeUnit = seconds) {
    return {true, timeUnit, "interrupted; the mode is being ended, a second interruption leaves at once", abort};
}

constexpr LongWork work(unsigned int timeUnit = seconds) {
    return {true, timeUnit, "interrupted; the daemon goes on with it", ""};
}

} // namespace

std::vector<MessageCommandDescription> const& commandTable() {
    static std::vector<MessageCommandDescription> const all{
        {"nodes",
         "List the nodes",
         {{"NodeInformationMsg", R"({"operation_":"get","displayOptions_":"info"})"}},
         {{"--view", "displayOptions_"}},
         {},
         "",
         MessageEnd::none,
         {EventForm::nodes, R"({"events_":["NodeInformationMsg","AddRemoveNodeMsg"]})", true}},
        {"info",
         "Show the controller",
         {{"ControllerInfoMsg", R"({"displayOptions_":"all"})"}},
         {{"--view", "displayOptions_"}}},
        {"include",
         "Include the node that is put into learn mode next",
         {{"AddRemoveNodeMsg", R"({"operation_":"add"})"}},
         {},
         mode(R"({"operation_":"add","abort_":true})")},
        {"exclude",
         "Exclude the node that is put into learn mode next",
         {{"AddRemoveNodeMsg", R"({"operation_":"remove"})"}},
         {},
         mode(R"({"operation_":"remove","abort_":true})")},
        {"learn",
         "Have the controller join or leave another network",
         {{"LearnModeMsg"}},
         {{"MODE", "mode_"}},
         mode(R"({"mode_":"disabled"})", milliseconds)},
        {"reset",
         "Set the controller back to its factory defaults",
         {{"ResetDefaultsMsg"}},
         {},
         work(),
         "a reset empties the network and gives the controller another home id"},
        {"send",
         "Send a command to nodes",
         {{"SendCommandMsg", R"({"options_":"ack|autoRoute|explore"})"}},
         {{"NODES", "destinations_"}, {"BYTES", "command_"}, {"--options", "options_"}}},
        {"nif",
         "Send the node information frame",
         {{"SendNifMsg", R"({"options_":"ack|autoRoute|explore"})"}},
         {{"NODE", "destination_"}, {"--options", "options_"}}},
        {"failed",
         "Remove or replace a failed node",
         {{"ManageFailedNodeMsg"}},
         {{"NODE", "address_"}, {"OPERATION", "operation_"}},
         mode(R"({"operation_":"abort"})"),
         "the failed node leaves the network for good"},
        {"neighbors",
         "Have a node look for its neighbours",
         {{"RequestNeighborUpdateMsg"}},
         {{"NODE", "address_"}},
         work()},
        {"update", "Ask the update controller for changes", {{"RequestNetworkUpdateMsg"}}, {}, work()},
        {"interview",
         "Interview a node again",
         {{"ConfigurationMsg", R"({"operation_":"start"})"}},
         {{"NODE", "device_"}},
         work(0),
         "",
         MessageEnd::none,
         {EventForm::stages, R"({"events_":["ConfigurationMsg"]})"}},
        {"firmware",
         "Install the firmware of a country",
         {{"FirmwareUpdateMsg"}},
         {{"COUNTRY", "countryCode_"}},
         work(),
         "the module's firmware is replaced"},
        {"watch",
         "Show events as they come",
         {{"SubscribeMsg", R"({"events_":["*"]})"}},
         {{"EVENT", "events_", true}},
         {},
         "",
         MessageEnd::follow,
         {EventForm::members}},
        {"observe",
         "Show the traffic of all other clients",
         {{"ObserveMsg", R"({"action_":"start"})"}},
         {{"DIRECTION", "direction_", true}},
         {},
         "",
         MessageEnd::follow,
         {EventForm::traffic}},
        {"trace",
         "Show the frames of the serial link",
         {{"SubscribeMsg", R"({"events_":["ControlCommandMsg"]})"}},
         {},
         {},
         "",
         MessageEnd::follow,
         {EventForm::frames}},
        {"quit", "End the daemon", {{"QuitMsg"}}, {}, {}, "", MessageEnd::untilDaemonEnds},
    };
    return all;
}

std::vector<MessageCommandDescription> const& nvmCommandTable() {
    static std::vector<MessageCommandDescription> const all{
        {"clear",
         "Clear the module's memory",
         {{"ManageNvmMsg", R"({"operation_":"authorize"})"}, {"ManageNvmMsg", R"({"operation_":"clear"})"}},
         {},
         work(),
         "the module forgets its network and all it knows"},
        {"validate",
         "Read the module's memory as a whole",
         {{"ManageNvmMsg", R"({"operation_":"validate"})"}},
         {},
         {true, seconds, "interrupted; the daemon ends it", ""}},
    };
    return all;
}

} // namespace zorv
