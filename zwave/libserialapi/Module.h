// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Bootloader.h"
#include "zwave/libserialapi/SessionLayer.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <utility>

namespace zorv::serialapi {

/// How a call ended.
enum class CallEnd {
    done,
    refused,         ///< by its response: no callback follows
    notAcknowledged, ///< the module has not taken the request
    noResponse,
    noCallback,
    badResponse, ///< shorter than its table
    queueFull,
    cancelled,
    closed ///< the module was reset, or the port lost
};

/// Who hears of an upload to the module's loader. Each may be empty; `end` is called once, after all else.
struct LoadHandlers {
    std::function<void(unsigned int percent)> progress = {};
    std::function<void(LoadResult const&)> end = {};
};

namespace calls {

template <class F, bool = HasResponse<F>::value> struct ResponseOf { using type = Nothing; };
template <class F> struct ResponseOf<F, true> { using type = typename F::Response; };
template <class F, bool = HasCallback<F>::value> struct CallbackOf { using type = Nothing; };
template <class F> struct CallbackOf<F, true> { using type = typename F::Callback; };

constexpr Byte named(Byte callbackId) { return callbackId; }
constexpr Byte named(std::optional<Byte> callbackId) { return callbackId.value_or(0); }

/// Whether callbacks follow a response.
inline bool starts(Accepted const& response) { return response.accepted != 0; }
inline bool starts(FailedNodeStart const& response) { return response.refusal == 0; }
template <class Response> bool starts(Response const&) { return true; }

template <class F, class = void> struct HasLast : std::false_type {};
template <class F> struct HasLast<F, std::void_t<decltype(&F::isLast)>> : std::true_type {};

/// Whether no further callback follows a callback.
template <class F, class Callback> bool isLastOf(Callback const& callback) {
    if constexpr (HasLast<F>::value) {
        return F::isLast(callback);
    } else if constexpr (std::is_same_v<Callback, ModeCallback>) {
        return isLast(callback);
    } else {
        return true;
    }
}

} // namespace calls

/// Who hears of a call. Each may be empty; `end` is called once, after all else.
template <class F> struct CallHandlers {
    std::function<void(typename calls::ResponseOf<F>::type const&)> response = {};
    std::function<void(typename calls::CallbackOf<F>::type const&)> callback = {};
    std::function<void(CallEnd)> end = {};
};

/// The same for a call whose parameters are bytes: `frame` hears the response and the callbacks.
struct RawHandlers {
    std::function<void(Frame const&)> frame = {};
    std::function<void(CallEnd)> end = {};
};

/// A host's view of the module: functions are called, and answer with a response, with callbacks, or not at all.
///
/// Like the session layer below it, it knows no port and no clock. Handlers are called from receive() and tick() only,
/// when the bytes are done with; they may call anything of this class.
class ZORV_EXPORT Module {
public:
    using CallNumber = std::uint32_t;
    using FrameHandler = std::function<void(Frame const&)>;

    Module() : session_(Side::host) {}

    void start() { session_.start(); }
    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();
    std::optional<TimePoint> deadline() const noexcept;

    /// Calls a function; one that calls back gets a callback id unless the request names one, and ends with the last
    /// callback.
    template <class F> CallNumber call(typename F::Request request, CallHandlers<F> handlers, TimePoint now,
                                       Milliseconds callbackTime = limits::callbackTime) {
        std::optional<Byte> callbackId;
        if constexpr (HasCallback<F>::value) {
            if (calls::named(request.callbackId) == 0) { request.callbackId = freeCallbackId(); }
            callbackId = calls::named(request.callbackId);
        }
        return begin<F>(request, std::move(handlers), callbackId, callbackTime, now);
    }

    /// The same for a request whose callbacks, if any, belong to a call that is open: a stop with its callback id.
    template <class F> CallNumber tell(typename F::Request const& request, CallHandlers<F> handlers, TimePoint now) {
        return begin<F>(request, std::move(handlers), std::nullopt, {}, now);
    }

    /// Calls a function by its bytes. Callbacks are those of the id that the parameters hold by the function's table; none
    /// where it has no table. Which of them is the last is not known, so the call waits for further ones.
    CallNumber callRaw(Byte function, Bytes parameters, RawHandlers handlers, TimePoint now);

    /// Gives an image to the module's loader, which it has been told to enter. Until that is over there are no functions:
    /// calls end as closed.
    void load(Bytes image, LoadHandlers handlers, TimePoint now);

    /// Breaks the upload off where that does no harm; its end is told.
    void cancelLoad(TimePoint now);

    bool isLoading() const noexcept { return upload_.has_value(); }

    /// The callback id of an open call.
    std::optional<Byte> callbackId(CallNumber call) const noexcept;

    /// Waits for nothing more of a call, which ends as cancelled with the next tick(); a request that waits for its turn
    /// is still sent.
    void cancel(CallNumber call);

    /// Ends all calls, and an upload, as closed and forgets what was on the line.
    void reset();

    /// Has the module's frames told that belong to no call.
    void unsolicited(FrameHandler handler) { unsolicited_ = std::move(handler); }

    /// Has told that the link is so bad that the module needs a reset.
    void resetNeeded(std::function<void()> handler) { resetNeeded_ = std::move(handler); }

    NodeIdWidth nodeIdWidth() const noexcept { return width_; }
    void nodeIdWidth(NodeIdWidth width) noexcept { width_ = width; }

    SessionLayer& session() noexcept { return session_; }
    SessionLayer const& session() const noexcept { return session_; }
    std::size_t openCalls() const noexcept { return calls_.size(); }
    std::uint64_t strayCallbacks() const noexcept { return strayCallbacks_; } ///< nobody waited for them

private:
    enum class Step { goOn, last, bad };

    struct Upload {
        Bootloader loader;
        LoadHandlers handlers;
        unsigned int percent = 0;
    };

    struct Call {
        CallNumber number;
        std::uint32_t exchange; ///< of the session layer; 0 once that is over
        Byte function;
        std::optional<Byte> callbackId; ///< where callbacks follow
        Milliseconds callbackTime;
        std::function<Step(Bytes const&)> response;
        std::function<Step(Bytes const&)> callback;
        std::function<void(CallEnd)> end;
        std::optional<TimePoint> deadline = {};
        std::optional<CallEnd> over = {};
    };

    template <class F> CallNumber begin(typename F::Request const& request, CallHandlers<F> handlers,
                                        std::optional<Byte> callbackId, Milliseconds callbackTime, TimePoint now) {
        Call call{0, 0, F::id, callbackId, callbackTime, {}, {}, std::move(handlers.end)};
        call.response = [this, tell = std::move(handlers.response)](Bytes const& parameters) {
            using Response = typename calls::ResponseOf<F>::type;
            auto const decoded = decodeForm<Response>(parameters, width_);
            if (!decoded) { return Step::bad; }
            if (tell) { tell(decoded->form); }
            return calls::starts(decoded->form) ? Step::goOn : Step::last;
        };
        call.callback = [this, tell = std::move(handlers.callback)](Bytes const& parameters) {
            using Callback = typename calls::CallbackOf<F>::type;
            auto const decoded = decodeForm<Callback>(parameters, width_);
            if (!decoded) { return Step::bad; }
            if (tell) { tell(decoded->form); }
            return calls::isLastOf<F>(decoded->form) ? Step::last : Step::goOn;
        };
        Frame frame{FrameType::request, F::id, encodeForm(request, width_)};
        return open(std::move(call), std::move(frame), HasResponse<F>::value, now);
    }

    CallNumber open(Call call, Frame frame, bool awaitsResponse, TimePoint now);
    Byte freeCallbackId();
    void work(TimePoint now);
    void handle(SessionEvent const& event, TimePoint now);
    void onFrame(Frame const& frame, TimePoint now);
    static void onResponse(Call& call, Bytes const& parameters, TimePoint now);
    static void awaitCallback(Call& call, TimePoint now);
    void endOverdue(TimePoint now);
    bool tellEnds();
    void watchUpload();
    Call* byExchange(std::uint32_t exchange) noexcept;

    SessionLayer session_;
    NodeIdWidth width_ = NodeIdWidth::one;
    std::list<Call> calls_; ///< a handler may open another one while its own is looked at
    CallNumber lastCall_ = 0;
    Byte lastCallbackId_ = 0;
    std::uint64_t strayCallbacks_ = 0;
    std::optional<Upload> upload_;
    std::optional<std::function<void(LoadResult const&)>> closedUpload_; ///< whose end is to be told
    Bytes lastWords_;                                                    ///< to a loader that is done with
    FrameHandler unsolicited_;
    std::function<void()> resetNeeded_;
};

} // namespace zorv::serialapi
