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

/// The callback id that a request names, by its table.
std::optional<Byte> namedCallbackId(FunctionDescriptor const& function, Bytes const& parameters, NodeIdWidth width) {
    auto const form = function.request ? function.request->dissect(parameters, width) : std::nullopt;
    if (!form) { return std::nullopt; }
    auto const& members = form->members;
    auto const found = std::find_if(members.begin(), members.end(),
                                    [](FieldValue const& member) { return member.name == "callbackId"; });
    if (found == members.end() || found->number == 0) { return std::nullopt; }
    return static_cast<Byte>(found->number);
}

} // namespace

void Module::receive(Bytes const& bytes, TimePoint now) {
    if (upload_) {
        upload_->loader.receive(bytes, now);
    } else {
        session_.receive(bytes, now);
    }
    work(now);
}

void Module::tick(TimePoint now) {
    if (upload_) {
        upload_->loader.tick(now);
    } else {
        session_.tick(now);
    }
    work(now);
}

std::optional<TimePoint> Module::deadline() const noexcept {
    bool const isLeft = session_.hasEvents(); // by a handler that threw
    if (isLeft || closedUpload_ || (upload_ && upload_->loader.result())) { return TimePoint::min(); }
    auto deadline = upload_ ? upload_->loader.deadline() : session_.deadline();
    for (auto const& call : calls_) {
        if (call.over) { return TimePoint::min(); }
        if (call.deadline && (!deadline || *call.deadline < *deadline)) { deadline = call.deadline; }
    }
    return deadline;
}

Module::CallNumber Module::open(Call call, Frame frame, bool awaitsResponse, TimePoint now) {
    if (++lastCall_ == 0) { ++lastCall_; }
    call.number = lastCall_;
    std::list<Call> opened;
    opened.push_back(std::move(call));
    auto& one = opened.front();
    if (!upload_) { one.exchange = session_.request(std::move(frame), awaitsResponse, now); }
    if (one.exchange == 0) { one.over = upload_ ? CallEnd::closed : CallEnd::queueFull; }
    calls_.splice(calls_.end(), opened); // nothing can fail once the request is on its way
    return lastCall_;
}

Module::CallNumber Module::callRaw(Byte function, Bytes parameters, RawHandlers handlers, TimePoint now) {
    auto const* const known = findFunction(function);
    auto const callbackId = known != nullptr ? namedCallbackId(*known, parameters, width_) : std::nullopt;
    auto const hear = [function, tell = std::move(handlers.frame)](FrameType type) {
        return [function, type, tell](Bytes const& heard) {
            if (tell) { tell({type, function, heard}); }
            return Step::goOn;
        };
    };
    Call call{0, 0, function, callbackId, limits::callbackTime, {}, {}, std::move(handlers.end)};
    call.response = hear(FrameType::response);
    call.callback = hear(FrameType::request);
    bool const awaitsResponse = known == nullptr || known->response.has_value();
    return open(std::move(call), {FrameType::request, function, std::move(parameters)}, awaitsResponse, now);
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
    lastWords_.clear();
    if (upload_) { closedUpload_ = std::move(upload_->handlers.end); }
    upload_.reset();
}

// ---- the loader

void Module::load(Bytes image, LoadHandlers handlers, TimePoint now) {
    reset();
    upload_.emplace(Upload{Bootloader(std::move(image)), std::move(handlers)});
    upload_->loader.start(now);
}

void Module::cancelLoad(TimePoint now) {
    if (upload_) { upload_->loader.cancel(now); }
}

Bytes Module::takeOutput() {
    auto output = std::exchange(lastWords_, {});
    auto const more = upload_ ? upload_->loader.takeOutput() : session_.takeOutput();
    output.insert(output.end(), more.begin(), more.end());
    return output;
}

/// Tells how far it is. At its end the line is the session layer's again.
void Module::watchUpload() {
    if (closedUpload_) {
        auto const end = *std::exchange(closedUpload_, std::nullopt);
        if (end) { end({LoadEnd::closed}); }
    }
    if (!upload_) { return; }
    auto const percent = upload_->loader.percent();
    if (percent > upload_->percent) {
        upload_->percent = percent;
        if (upload_->handlers.progress) { upload_->handlers.progress(percent); }
    }
    if (!upload_->loader.result()) { return; }
    auto over = *std::exchange(upload_, std::nullopt);
    lastWords_ = over.loader.takeOutput();
    if (over.handlers.end) { over.handlers.end(*over.loader.result()); }
}

// ---- what comes in

void Module::work(TimePoint now) {
    do {
        watchUpload();
        while (auto const event = session_.takeEvent()) { handle(*event, now); }
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
    call.deadline = now + call.callbackTime; // for a handler that throws
    auto const step = call.response(parameters);
    call.deadline.reset();
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
