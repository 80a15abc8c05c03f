// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/scenario/LineClient.h"

#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/toText.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SubscribeMsg.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

namespace scenario {

/// A client that speaks in messages. What arrives while it waits for something else is kept, in its order.
class MessageClient : public OpenClient {
public:
    using OpenClient::OpenClient;
    using Message = boost::shared_ptr<zorv::TMessage>;

    void tell(zorv::TMessage const& message) {
        if (!sendLine(zorv::toText(message))) { throw std::runtime_error("the daemon does not take it"); }
    }

    /// Sends a request and waits for its final answer.
    template <class M> boost::shared_ptr<M> ask(boost::shared_ptr<M> const& request) {
        tell(*request);
        return answerTo(request);
    }

    /// The final answer to a request that was sent before.
    template <class M> boost::shared_ptr<M> answerTo(boost::shared_ptr<M> const& request) {
        return waitFor<M>([&request](M const& message) {
            return message.correlation() == request->id() && message.result() != zorv::ZResult::inProgress;
        });
    }

    /// The next progress of a request that was sent before.
    template <class M> boost::shared_ptr<M> progressOf(boost::shared_ptr<M> const& request) {
        return waitFor<M>([&request](M const& message) {
            return message.correlation() == request->id() && message.result() == zorv::ZResult::inProgress;
        });
    }

    /// The first message of the class that is as wanted; it is taken from what was kept.
    template <class M, class Wanted> boost::shared_ptr<M> waitFor(Wanted const& wanted) {
        auto const isWanted = [&wanted](Message const& message) {
            auto const found = boost::dynamic_pointer_cast<M>(message);
            return found && wanted(*found);
        };
        auto const kept = std::find_if(kept_.begin(), kept_.end(), isWanted);
        if (kept != kept_.end()) {
            auto const message = boost::dynamic_pointer_cast<M>(*kept);
            kept_.erase(kept);
            return message;
        }
        while (true) {
            auto const message = receive();
            if (isWanted(message)) { return boost::dynamic_pointer_cast<M>(message); }
            kept_.push_back(message);
        }
    }

    template <class M> boost::shared_ptr<M> waitForAny() {
        return waitFor<M>([](M const&) { return true; });
    }

    /// Keeps nothing of what has come so far.
    void forget() { kept_.clear(); }

    /// How many messages of the class were kept.
    template <class M> std::ptrdiff_t kept() const {
        return std::count_if(kept_.begin(), kept_.end(),
                             [](Message const& message) { return boost::dynamic_pointer_cast<M>(message) != nullptr; });
    }

    /// Waits until the daemon knows its module.
    void waitForStart() { ask(boost::make_shared<zorv::SessionLayerMsg>(zorv::SessionLayerOp::status)); }

    /// Subscribes once the daemon knows its module, so that nothing of the start-up is heard.
    void subscribe(std::vector<std::string> const& events) {
        waitForStart();
        auto const answer = ask(zorv::SubscribeMsg::create(false, events));
        if (answer->result() != zorv::ZResult::success) { throw std::runtime_error("not subscribed"); }
    }

    /// Waits until the host has sent the module a request of this function; its parameters. To be subscribed to
    /// ControlCommandMsg.
    std::vector<unsigned char> waitForCall(unsigned char function) {
        auto const message = waitFor<zorv::ControlCommandMsg>([function](zorv::ControlCommandMsg const& frame) {
            return frame.role() == zorv::MessageRole::request && frame.data().at(1) == function;
        });
        return {message->data().begin() + 2, message->data().end()};
    }

private:
    std::deque<Message> kept_;
};

} // namespace scenario
