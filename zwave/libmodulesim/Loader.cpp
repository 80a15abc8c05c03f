// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"
#include "zwave/libmodulesim/firmwareVersionImpl.h"
#include "zwave/libserialapi/XmodemBlock.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

// The loader of modules of the 700 and 800 series: a menu, and XMODEM behind it.

namespace zorv::modulesim {

namespace api = serialapi;
namespace xmodem = serialapi::xmodem;
using api::XmodemBlock;

namespace {

constexpr char const* menuText = "\r\nGecko Bootloader v1.12.1\r\n1. upload gbl\r\n2. run\r\n3. ebl info\r\nBL > ";
constexpr Byte byItself = 7; // a software reset
constexpr unsigned int mostSilences = 10;

constexpr char const* timedOut = "21";
constexpr char const* wrongNumber = "22";
constexpr char const* abortedByHost = "23";
constexpr char const* imageRejected = "50";

class Loader {
public:
    explicit Loader(Core& core) : core_(core) {}

    void enter() {
        core_.enterLoader([this](Bytes const& bytes) { take(bytes); });
        state_ = State::menu;
        image_.clear();
        listening_.reset();
        core_.after(timing::loaderStarts, [this] { showMenu(); });
    }

private:
    enum class State { menu, upload, stuck };

    void take(Bytes const& bytes) {
        for (auto const byte : bytes) {
            if (core_.isInLoader()) { onByte(byte); }
        }
        if (core_.isInLoader() && state_ == State::upload) { listen(); }
    }

    void onByte(Byte byte) {
        switch (state_) {
        case State::menu: return onKey(byte);
        case State::upload: return onUpload(byte);
        case State::stuck:
            // One alone may be of a block.
            if (std::exchange(last_, byte) == xmodem::can && byte == xmodem::can) { breakOff(abortedByHost); }
            return;
        }
    }

    // ---- the menu

    void say(std::string const& text) { core_.say(Bytes(text.begin(), text.end())); }

    void showMenu() {
        say(menuText);
        core_.say({0});
    }

    void onKey(Byte key) {
        if (key == '1') { return beginUpload(); }
        if (key == '2') { return run(); }
        showMenu();
    }

    /// A good image is taken up, any other leaves what the module had.
    void run() {
        if (auto const version = firmwareVersion(std::exchange(image_, {}))) {
            core_.described.version = *version;
            core_.startsLater = timing::replacesFirmware;
        }
        core_.restart(byItself);
    }

    // ---- the upload

    void beginUpload() {
        state_ = State::upload;
        image_.clear();
        block_.clear();
        next_ = 1;
        hasBegun_ = false;
        silences_ = 0;
        say("\r\nbegin upload\r\n");
        core_.say({xmodem::withCrc});
        listen();
    }

    void onUpload(Byte byte) {
        silences_ = 0;
        if (!block_.empty()) {
            block_.push_back(byte);
            if (block_.size() == xmodem::blockSize) { onBlock(std::exchange(block_, {})); }
        } else if (byte == xmodem::startOfBlock) {
            block_.push_back(byte);
        } else if (byte == xmodem::endOfTransmission) {
            onEnd();
        } else if (byte == xmodem::can) {
            breakOff(abortedByHost);
        }
    }

    void onBlock(Bytes const& bytes) {
        using Kind = Fault::Kind;
        if (core_.isHit(Kind::loseBlock)) { return; }
        if (core_.isHit(Kind::stopLoader)) {
            state_ = State::stuck;
            last_ = 0;
            return deaf();
        }
        auto const block = XmodemBlock::decode(bytes);
        if (!block || core_.isHit(Kind::refuseBlock)) { return core_.say({xmodem::nak}); }
        bool const isAgain = hasBegun_ && block->number == static_cast<Byte>(next_ - 1);
        if (!isAgain && block->number != next_) { return breakOff(wrongNumber); }
        if (!isAgain) {
            if (!hasBegun_ && core_.isHit(Kind::refuseImage)) { return breakOff(imageRejected); }
            hasBegun_ = true;
            ++next_;
            image_.insert(image_.end(), block->data.begin(), block->data.end());
        }
        core_.after(timing::writesBlock, [this] {
            if (state_ == State::upload) { core_.say({xmodem::ack}); }
        });
    }

    void onEnd() {
        if (!firmwareVersion(image_)) { return breakOff(imageRejected); }
        core_.say({xmodem::ack});
        deaf();
        state_ = State::menu;
        say("\r\nSerial upload complete\r\n");
        showMenu();
    }

    /// The receiver asks again, at the beginning for the image and then for the block.
    void listen() {
        deaf();
        listening_ = core_.after(timing::loaderAsksAgain, [this] {
            listening_.reset();
            if (++silences_ == mostSilences) { return breakOff(timedOut); }
            block_.clear();
            core_.say({hasBegun_ ? xmodem::nak : xmodem::withCrc});
            listen();
        });
    }

    void deaf() {
        if (listening_) { core_.cancel(*std::exchange(listening_, std::nullopt)); }
    }

    /// A zero stands in front of the digits, as it does with real ones.
    void breakOff(char const* error) {
        deaf();
        state_ = State::menu;
        image_.clear();
        block_.clear();
        core_.say({xmodem::can});
        say("\r\nupload aborted\r\nerror 0x");
        core_.say({0});
        say(error);
        say("\r\n");
        showMenu();
    }

    Core& core_;
    State state_ = State::menu;
    Bytes image_;
    Bytes block_; ///< what has come of it
    Byte next_ = 1;
    Byte last_ = 0; ///< that came while it is stuck
    bool hasBegun_ = false;
    unsigned int silences_ = 0;
    std::optional<Agenda::Entry> listening_;
};

} // namespace

void serveLoader(Core& core) {
    if (core.isSeries500()) { return; }
    auto const loader = std::make_shared<Loader>(core);
    core.serve<api::EnterBootloader>([loader](auto const&) { loader->enter(); });
}

} // namespace zorv::modulesim
