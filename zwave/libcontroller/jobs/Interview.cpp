// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Interview.h"

#include "zwave/libcontroller/jobs/NodeInformationRequest.h"
#include "zwave/libcontroller/jobs/Transmission.h"

#include <algorithm>
#include <utility>

namespace zorv::controller {

namespace {

constexpr unsigned int mostAttempts = 3;
constexpr int behindOthers = -1; // what clients want goes first
constexpr Milliseconds questionTime{70'000};

constexpr Byte manufacturerClass = CommandClassType::manufacturerSpecific;
constexpr Byte manufacturerGet = 0x04;
constexpr Byte manufacturerReport = 0x05;
constexpr Byte versionClass = CommandClassType::version;
constexpr Byte versionCommandClassGet = 0x13;
constexpr Byte versionCommandClassReport = 0x14;
constexpr Byte wakeUpClass = CommandClassType::wakeUp;
constexpr Byte wakeUpIntervalSet = 0x04;
constexpr Byte wakeUpIntervalGet = 0x05;
constexpr Byte wakeUpIntervalReport = 0x06;

unsigned short word(Bytes const& bytes, std::size_t at) {
    return static_cast<unsigned short>(bytes.at(at) << 8U | bytes.at(at + 1));
}

/// Leaves what the module says of the node, and what is known of its state.
void forget(Device& device) {
    auto info = device.deviceInfo();
    info.manufacturer({});
    Device blank(device.address(), info);
    blank.deviceNetworkStatus(device.deviceNetworkStatus());
    blank.deviceLights(device.deviceLights());
    blank.securityStatus(device.securityStatus());
    blank.wakeStatus(device.wakeStatus());
    device = blank;
}

} // namespace

std::string Interview::objection(Network const& network) const {
    if (node_ == network.ownNode) { return "it is the module's own node"; }
    return network.nodes.find(node_) == nullptr ? "the network has no node " + std::to_string(node_) : "";
}

NodeId Interview::awaits(Network const& network) const {
    auto const* const device = network.nodes.find(node_);
    bool const sleeps = device != nullptr && device->isSleeping() && device->wakeStatus() != WakeStatus::awake;
    return sleeps ? node_ : NodeId{0};
}

void Interview::run() {
    if (device() == nullptr) { return fail("the node has left"); }
    network().nodes.change(node_, [this](Device& device) {
        if (anew_) { forget(device); }
        device.deviceStatus(DeviceStatus::configuring);
    });
    report(InterviewStage::start);
    next();
}

void Interview::stop() { interrupt("broken off"); }

/// Whatever the record does not tell yet.
void Interview::next() {
    noStep();
    question_ = {};
    attempts_ = 0;
    if (device() == nullptr) { return fail("the node has left"); }
    if (askInformation() || askManufacturer() || askVersion() || askWakeUp()) { return; }
    finish();
}

// ---- what is asked

bool Interview::askInformation() {
    if (hasInformation_ || !device()->commandClasses().empty()) { return false; }
    requestInformation();
    return true;
}

void Interview::requestInformation() {
    auto const request = std::make_shared<NodeInformationRequest>(node_, behindOthers, questionTime);
    host().submitPart(*this, request, [this, request] { onInformation(*request); });
}

void Interview::onInformation(Job const& request) {
    if (request.state() == JobState::done) {
        hasInformation_ = true;
        wasReached_ = true;
        report(InterviewStage::commandClasses);
        return next();
    }
    if (++attempts_ == mostAttempts) { return interrupt("the node cannot be reached"); }
    requestInformation();
}

bool Interview::askManufacturer() {
    bool const isKnown = device()->deviceInfo().manufacturer().searchType() != Manufacturer().searchType();
    if (hasManufacturer_ || isKnown || !supports(*device(), CommandClassType::manufacturerSpecific)) { return false; }
    auto const take = [this](Bytes const& answer) {
        constexpr std::size_t length = 8;
        if (answer.size() < length) { return; }
        hasManufacturer_ = true;
        Manufacturer const manufacturer(static_cast<ManufacturerId::Enum>(word(answer, 2)), word(answer, 4),
                                        word(answer, 6));
        network().nodes.change(node_, [&manufacturer](Device& device) {
            auto info = device.deviceInfo();
            info.manufacturer(manufacturer);
            device.deviceInfo(info);
        });
        report(InterviewStage::manufacturer);
        next();
    };
    ask({{manufacturerClass, manufacturerGet}, {manufacturerClass, manufacturerReport}, take, [this] {
             hasManufacturer_ = true;
         }});
    return true;
}

bool Interview::askVersion() {
    if (!supports(*device(), CommandClassType::version)) { return false; }
    auto const& classes = device()->commandClasses();
    auto const found = std::find_if(classes.begin(), classes.end(), [this](auto const& known) {
        bool const isSupported = (known.second.attribs() & CommandClassAttribs::supported) != 0;
        return isSupported && known.second.classVersion() == 0 && withoutVersion_.count(known.first) == 0;
    });
    if (found == classes.end()) { return false; }
    auto const type = found->first;
    auto const take = [this, type](Bytes const& answer) {
        constexpr std::size_t length = 4;
        if (answer.size() < length) { return; }
        auto const version = answer[3];
        if (version == 0) { withoutVersion_.insert(type); } // the node says that it does not have the class
        network().nodes.change(node_, [type, version](Device& device) {
            device.commandClass(type, CommandClassInfo(version, device.commandClasses().at(type).attribs()));
        });
        report(InterviewStage::versions);
        next();
    };
    auto const number = static_cast<Byte>(type);
    ask({{versionClass, versionCommandClassGet, number},
         {versionClass, versionCommandClassReport, number},
         take,
         [this, type] { withoutVersion_.insert(type); }});
    return true;
}

bool Interview::askWakeUp() {
    if (hasWakeUp_ || !device()->isSleeping() || !supports(*device(), CommandClassType::wakeUp)) { return false; }
    auto const take = [this](Bytes const& answer) {
        constexpr std::size_t length = 6;
        if (answer.size() < length) { return; }
        hasWakeUp_ = true;
        setWakeUp(answer);
    };
    ask({{wakeUpClass, wakeUpIntervalGet}, {wakeUpClass, wakeUpIntervalReport}, take, [this] { hasWakeUp_ = true; }});
    return true;
}

/// The interval stays as it is; the node is to tell us when it wakes up.
void Interview::setWakeUp(Bytes const& interval) {
    report(InterviewStage::wakeUp);
    auto const own = static_cast<Byte>(network().ownNode);
    if (interval[5] == own) { return next(); }
    ask({{wakeUpClass, wakeUpIntervalSet, interval[2], interval[3], interval[4], own}, {}, {}, {}});
}

// ---- one question

void Interview::ask(Question question) {
    noStep();
    question_ = std::move(question);
    attempts_ = 0;
    wasReached_ = false;
    sendQuestion();
}

void Interview::sendQuestion() {
    Transmission::Order order;
    order.nodes = {node_};
    order.data = question_.command;
    order.asleep = Transmission::Asleep::send;
    order.priority = behindOthers;
    order.time = questionTime;
    auto const transmission = std::make_shared<Transmission>(std::move(order));
    host().submitPart(*this, transmission, [this, sent = question_.command, transmission] {
        if (sent == question_.command) { onSent(*transmission); } // otherwise the answer was faster than the report
    });
}

void Interview::onSent(Job const& transmission) {
    if (transmission.state() != JobState::done) { return tryAgain(); }
    wasReached_ = true;
    if (question_.answer.empty()) { return next(); }
    step(limits::answerTime);
}

void Interview::stepTimedOut() { tryAgain(); }

void Interview::tryAgain() {
    if (++attempts_ < mostAttempts) { return sendQuestion(); }
    if (!wasReached_) { return interrupt("the node cannot be reached"); }
    ++errors_;
    if (question_.skip) { std::exchange(question_.skip, {})(); }
    next();
}

void Interview::received(ReceivedCommand const& command) {
    auto const& answer = question_.answer;
    bool const isAnswer = state() == JobState::running && command.source == node_ && !answer.empty() &&
                          command.data.size() >= answer.size() &&
                          std::equal(answer.begin(), answer.end(), command.data.begin());
    if (!isAnswer) { return; }
    auto const take = question_.take; // it asks the next question
    take(command.data);
}

// ---- ends

void Interview::report(InterviewStage stage) {
    if (auto const* const known = device()) { host().observer().interviewed(*known, stage); }
}

void Interview::interrupt(std::string const& reason) {
    network().nodes.change(node_, [](Device& device) {
        device.deviceStatus(DeviceStatus::incomplete);
        device.configErrors(device.configErrors() + 1);
    });
    report(InterviewStage::interrupted);
    if (isStopping()) { return endStopped(); }
    fail(reason);
}

void Interview::finish() {
    network().nodes.change(node_, [this](Device& device) {
        device.configErrors(errors_);
        device.deviceStatus(errors_ == 0 ? DeviceStatus::ready : DeviceStatus::incomplete);
    });
    report(InterviewStage::finished);
    done();
}

} // namespace zorv::controller
