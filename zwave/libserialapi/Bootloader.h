// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Bytes.h"
#include "zwave/libserialapi/Limits.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace zorv::serialapi {

/// How an upload ended.
enum class LoadEnd {
    done,
    noLoader,   ///< it has never shown its menu
    noUpload,   ///< it has not asked for the image
    silent,     ///< it has answered a block no more
    notTaken,   ///< it has said again and again that a block is damaged
    refused,    ///< it has broken the upload off, or not said that it is complete
    unfinished, ///< it has taken the last block, and says nothing more
    cancelled,
    closed ///< the module was reset, or the port lost
};

struct LoadResult {
    LoadEnd end = LoadEnd::closed;
    std::optional<std::uint32_t> error = {}; ///< what the loader says of it
};

/// A host's side of the loader of modules of the 700 and 800 series: finds its menu, gives it an image, and has it start
/// what it holds.
///
/// A value like the session layer: bytes and the time go in, bytes and the next deadline come out. It is to be started when
/// the module has been told to enter its loader. When it is over, and there was a loader, that was told to start the module.
/// Without an image it does only that.
class ZORV_EXPORT Bootloader {
public:
    explicit Bootloader(Bytes image) : image_(std::move(image)) {}

    void start(TimePoint now);
    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();
    std::optional<TimePoint> deadline() const noexcept { return deadline_; }

    /// Breaks off, unless a block has been sent: half an image is worse than either.
    void cancel(TimePoint now);

    /// How it ended; none before.
    std::optional<LoadResult> const& result() const noexcept { return result_; }

    /// How much of the image the loader has taken.
    unsigned int percent() const noexcept;

private:
    enum class State {
        idle,
        awaitingMenu,
        awaitingRequest, ///< for the image
        sending,
        ending,
        awaitingVerdict, ///< the menu again, with what the loader says of the image
        leaving          ///< the menu again, only to start the module
    };

    void onByte(Byte byte, TimePoint now);
    void onAnswer(Byte answer, TimePoint now);
    void onTimeout(TimePoint now);
    void onPrompt(TimePoint now);
    void sendBlock(TimePoint now);
    void repeat(LoadEnd otherwise, TimePoint now);
    void breakOff(LoadEnd end, TimePoint now);
    void judge();
    void finish();
    void put(Byte byte) { output_.push_back(byte); }
    void enter(State state, Milliseconds time, TimePoint now);

    Bytes image_;
    std::size_t taken_ = 0; ///< bytes
    Byte number_ = 1;       ///< of the block that is under way
    TimePoint sent_{};      ///< when it was sent
    unsigned int tries_ = 0;
    State state_ = State::idle;
    std::optional<TimePoint> deadline_;
    std::string text_; ///< what the loader has said since the last key
    LoadResult outcome_;
    std::optional<LoadResult> result_;
    Bytes output_;
};

/// "the loader has refused the image (error 0x50)"
ZORV_EXPORT std::string complaint(LoadResult const& result);

} // namespace zorv::serialapi
