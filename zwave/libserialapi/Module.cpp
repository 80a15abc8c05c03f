// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/Module.h"

#include "zwave/libserialapi/functions/FrameDissector.h"

#include <algorithm>

namespace zorv::serialapi {

namespace {

CallEnd toCallEnd(SessionFailure failure) {
    switch (failure) {
    case SessionFailure::none: return CallEnd::done;
    case SessionFailure::notAcknowledged: return CallEnd::notAcknowledged;
    case SessionFailure::noResponse: return CallEnd::noResponse;
    case SessionFailure::closed: return CallEnd::closed;
    }
    return CallEnd::closed;
}

/// Whether the function's callbacks carry the id that a host gave.
bool isCalled(Byte function) {
    auto const* const known = findFunction(function);
    return known != nullptr && known->request && known->callback;
}

} // namespace

void Module::receive(Bytes const& bytes, TimePoint now) {
    session_.receive(bytes, now);
    work(now);
}

void Module::tick(TimePoint now) {
    session_.tick(now);
    work(now);
}

std::optional<TimePoint> Module::deadline() const noexcept {
    auto deadline = session_.deadline();
    for (auto const& call : calls_) {
        if (call.over) { return TimePoint::min(); }
        if (call.deadline && (!deadline || *call.deadline < *deadline)) { deadline = call.deadline; }
    }
    return deadline;
}

Module::CallNumber Module::open(Call call, Frame frame, bool awaitsResponse, TimePoint now) {
    if (++lastCall_ == 0) { ++lastCall_; }
    call.number = lastCall_;
    call.exchange = session_.request(std::move(frame), awaitsResponse, now);
    if (call.exchange == 0) { call.over = CallEnd::queueFull; }
    calls_.push_back(std::move(call));
    return lastCall_;
}

/// An id that no open call has, and that was not used lately: a callback may be late.
Byte Module::freeCallbackId() {
    auto const isTaken = [this](Byte id) {
        return std::any_of(calls_.begin(), calls_.end(), [id](Call const& call) { return call.callbackId == id; });
    };
    for (int i = 0; i < 255; ++i) {
        lastCallbackId_ = static_cast<Byte>(lastCallbackId_ % 255 + 1);
        if (!isTaken(lastCallbackId_)) { break; }
    }
    return lastCallbackId_;
}

std::optional<Byte> Module::callbackId(CallNumber number) const noexcept {
    for (auto const& call : calls_) {
        if (call.number == number) { return call.callbackId; }
    }
    return std::nullopt;
}

void Module::cancel(CallNumber number) {
    for (auto& call : calls_) {
        if (call.number == number && !call.over) { call.over = CallEnd::cancelled; }
    }
}

void Module::reset() {
    session_.reset();
    for (auto& call : calls_) {
        if (!call.over) { call.over = CallEnd::closed; }
    }
}

void Module::work(TimePoint now) {
    do {
        for (auto const& event : session_.takeEvents()) { handle(event, now); }
        endOverdue(now);
    } while (tellEnds());
}

void Module::handle(SessionEvent const& event, TimePoint now) {
    if (event.kind == SessionEvent::Kind::frame) { return onFrame(event.frame, now); }
    if (event.kind == SessionEvent::Kind::resetNeeded) {
        if (resetNeeded_) { resetNeeded_(); }
        return;
    }
    auto* const call = byExchange(event.exchange);
    if (call == nullptr) { return; } // it was cancelled
    call->exchange = 0;
    if (event.kind == SessionEvent::Kind::failed) {
        call->over = toCallEnd(event.failure);
    } else if (event.kind == SessionEvent::Kind::response) {
        onResponse(*call, event.frame.parameters, now);
    } else {
        awaitCallback(*call, now);
    }
}

void Module::onResponse(Call& call, Bytes const& parameters, TimePoint now) {
    auto const step = call.response(parameters);
    if (call.over) { return; } // its own handler has cancelled it
    switch (step) {
    case Step::goOn: return awaitCallback(call, now);
    case Step::last: call.over = call.callbackId ? CallEnd::refused : CallEnd::done; return;
    case Step::bad: call.over = CallEnd::badResponse; return;
    }
}

void Module::awaitCallback(Call& call, TimePoint now) {
    if (!call.callbackId) {
        call.over = CallEnd::done;
        return;
    }
    call.deadline = now + call.callbackTime;
}

void Module::onFrame(Frame const& frame, TimePoint now) {
    auto const isFor = [&frame](Call const& call) {
        return !call.over && call.exchange == 0 && call.function == frame.function && !frame.parameters.empty() &&
               call.callbackId == frame.parameters[0];
    };
    auto const call = std::find_if(calls_.begin(), calls_.end(), isFor);
    if (call == calls_.end()) {
        if (isCalled(frame.function)) {
            ++strayCallbacks_;
        } else if (unsolicited_) {
            unsolicited_(frame);
        }
        return;
    }
    call->deadline = now + call->callbackTime;
    auto const step = call->callback(frame.parameters);
    if (step == Step::last && !call->over) { call->over = CallEnd::done; }
    if (step == Step::bad) { ++strayCallbacks_; }
}

void Module::endOverdue(TimePoint now) {
    for (auto& call : calls_) {
        if (!call.over && call.deadline && now >= *call.deadline) { call.over = CallEnd::noCallback; }
    }
}

/// True where there was one: its handler may have started something.
bool Module::tellEnds() {
    auto const isOver = [](Call const& call) { return call.over.has_value(); };
    auto const found = std::find_if(calls_.begin(), calls_.end(), isOver);
    if (found == calls_.end()) { return false; }
    std::list<Call> ended;
    ended.splice(ended.begin(), calls_, found);
    if (ended.front().end) { ended.front().end(*ended.front().over); }
    return true;
}

Module::Call* Module::byExchange(std::uint32_t exchange) noexcept {
    for (auto& call : calls_) {
        if (call.exchange == exchange && !call.over) { return &call; }
    }
    return nullptr;
}

} // namespace zorv::serialapi
