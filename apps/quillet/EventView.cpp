// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/EventView.h"

#include "apps/quillet/frameText.h"
#include "apps/quillet/messageRows.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libzorvshared/Device.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/ObserveMsg.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zorv {

namespace {

constexpr unsigned int timeWidth = 24;

unsigned int widthOf(std::string const& text) { return static_cast<unsigned int>(text.size()); }

unsigned int longestMessage() {
    unsigned int longest = 0;
    for (auto const& message : describeCatalogue()) { longest = std::max(longest, widthOf(message.name)); }
    return longest - widthOf("zorv::");
}

unsigned int longestFunction() {
    unsigned int longest = 0;
    for (auto const& function : serialapi::describeFunctions()) { longest = std::max(longest, widthOf(function.name)); }
    return longest;
}

class MembersView final : public EventView {
public:
    explicit MembersView(Output& output) { output.titles({"Time", "Event", "Members"}, {timeWidth, longestMessage()}); }

    bool show(TMessage const& message, Output& output) override {
        StringVecVec rows;
        displayRow(rows, message.timestamp(), message.name(), membersLine(message));
        output.show(rows, "");
        return true;
    }
};

class TrafficView final : public EventView {
public:
    explicit TrafficView(Output& output) {
        output.titles({"Time", "Direction", "Message", "Members"}, {timeWidth, 0, longestMessage()});
    }

    bool show(TMessage const& message, Output& output) override {
        auto const* const copy = dynamic_cast<ObserveMsg const*>(&message);
        if (copy == nullptr || !copy->message()) { return false; }
        StringVecVec rows;
        auto const& observed = *copy->message();
        displayRow(rows, message.timestamp(), copy->direction(), observed.name(), membersLine(observed));
        output.show(rows, "");
        return true;
    }
};

class FramesView final : public EventView {
public:
    explicit FramesView(Output& output) {
        output.titles(
            {"Time", "Sender", "Function", "Form", "Members"},
            {timeWidth, widthOf("module"), longestFunction(), widthOf(formText(serialapi::FormKind::callback))});
    }

    bool show(TMessage const& message, Output& output) override {
        constexpr std::size_t head = 2; // type and function
        auto const* const traced = dynamic_cast<ControlCommandMsg const*>(&message);
        if (traced == nullptr || traced->data().size() < head) { return false; }
        auto const& data = traced->data();
        bool const isOfHost = message.role() == MessageRole::request;
        auto const sender = isOfHost ? serialapi::Side::host : serialapi::Side::module;
        serialapi::Frame const frame{
            static_cast<serialapi::FrameType>(data[0]), data[1], {data.begin() + head, data.end()}};
        auto const dissection = dissector_.dissect(sender, frame);
        StringVecVec rows;
        displayRow(rows, message.timestamp(), senderText(sender), dissection.function, formText(dissection.kind),
                   membersText(membersOf(dissection)));
        output.show(rows, "");
        return true;
    }

private:
    serialapi::FrameDissector dissector_;
};

/// Other nodes' interviews may run at the same time.
class StagesView final : public EventView {
public:
    StagesView(TMessage const& request, Output& output) : node_(nodeOf(request)) {
        std::vector<std::string> titles{"Time"};
        for (auto const& member : memberTexts(ConfigurationMsg())) { titles.push_back(member.name); }
        output.titles(titles, {timeWidth, widthOf(toString(ConfigurationStatus::commandClasses))});
    }

    bool show(TMessage const& message, Output& output) override {
        if (dynamic_cast<ConfigurationMsg const*>(&message) == nullptr || nodeOf(message) != node_) { return false; }
        StringVecVec rows;
        displayRow(rows, message.timestamp());
        for (auto const& member : memberTexts(message)) { rows.back().push_back(member.value); }
        output.show(rows, "");
        return true;
    }

private:
    static unsigned char nodeOf(TMessage const& message) {
        auto const* const stage = dynamic_cast<ConfigurationMsg const*>(&message);
        return stage == nullptr || !stage->device() ? ZwaveAddress().nodeId() : stage->device()->address().nodeId();
    }

    unsigned char node_;
};

/// A node that has changed is shown as the list before showed it.
class NodesView final : public EventView {
public:
    explicit NodesView(TMessage const& request) {
        auto const* const asked = dynamic_cast<NodeInformationMsg const*>(&request);
        if (asked != nullptr) { option_ = asked->displayOptions(); }
    }

    bool show(TMessage const& message, Output& output) override {
        if (auto const* const change = dynamic_cast<NodeInformationMsg const*>(&message)) {
            auto const shown = NodeInformationMsg::create(GetNodesOp::update, option_, change->devices());
            output.show(messageRows(*shown, false), "");
            return true;
        }
        auto const* const removal = dynamic_cast<AddRemoveNodeMsg const*>(&message);
        if (removal == nullptr || removal->operation() != AddRemoveOp::remove || !removal->device()) { return false; }
        unsigned int const node = removal->device()->address().nodeId();
        output.show({{std::to_string(node), "has left the network"}}, "");
        return true;
    }

private:
    DisplayOption::Enum option_ = DisplayOption::none;
};

class JsonView final : public EventView {
public:
    bool show(TMessage const& message, Output& output) override {
        output.show(message);
        return true;
    }
};

} // namespace

std::unique_ptr<EventView> makeEventView(EventForm form, TMessage const& request, Output& output) {
    if (form == EventForm::none) { return nullptr; }
    if (output.isJson()) { return std::make_unique<JsonView>(); }
    switch (form) {
    case EventForm::none: break;
    case EventForm::members: return std::make_unique<MembersView>(output);
    case EventForm::traffic: return std::make_unique<TrafficView>(output);
    case EventForm::frames: return std::make_unique<FramesView>(output);
    case EventForm::stages: return std::make_unique<StagesView>(request, output);
    case EventForm::nodes: return std::make_unique<NodesView>(request);
    }
    return nullptr;
}

} // namespace zorv
