// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NvmJob.h"

#include <utility>

namespace zorv::controller {

using serialapi::CallEnd;
using serialapi::NvmBackupRestore;
using serialapi::NvmExtendedBackupRestore;
using Session = NvmBackupRestore;

namespace {

constexpr std::size_t smallestSession = 65536; // what an offset of 16 bits tells as 0

/// Of the 500 series' memory: 0x0E is 16 KiB, each one more is twice as much.
std::size_t sizeOf(serialapi::NvmGetId::Response const& id) {
    constexpr Byte smallest = 0x0E;
    constexpr Byte largest = 0x18;
    constexpr std::size_t kibibytes16 = 16384;
    if (id.size < smallest || id.size > largest) { return 0; }
    return kibibytes16 << static_cast<unsigned int>(id.size - smallest);
}

} // namespace

std::string NvmJob::objection(Network const& network) const {
    auto const& module = network.module;
    bool const byAddress = module.knows<serialapi::NvmGetId>() && module.knows<serialapi::NvmExtReadLongBuffer>() &&
                           module.knows<serialapi::NvmExtWriteLongBuffer>();
    bool const bySession = module.knows<NvmBackupRestore>() || module.knows<NvmExtendedBackupRestore>();
    return byAddress || bySession ? "" : "the module does not give its memory out";
}

bool NvmJob::hasSession() const {
    return network().module.knows<NvmBackupRestore>() || network().module.knows<NvmExtendedBackupRestore>();
}

void NvmJob::onRead(Bytes const& /*piece*/, bool /*isLast*/) {}

void NvmJob::onWritten() {}

// ---- opening

void NvmJob::open() {
    if (!hasSession()) { return openByAddress(); }
    exchange(Session::open, 0, 0, {}, [this](Byte status, std::size_t offset, Bytes const&) {
        if (status != Session::ok) { return closeFor("the module does not open its memory"); }
        size_ = offset == 0 ? smallestSession : offset;
        onOpen();
    });
}

/// The module keeps still meanwhile, so that its memory stays as it is.
void NvmJob::openByAddress() {
    if (network().module.knows<serialapi::SetRfReceiveMode>()) { tell<serialapi::SetRfReceiveMode>({0}); }
    if (network().module.knows<serialapi::WatchdogStop>()) { tell<serialapi::WatchdogStop>({}); }
    serialapi::CallHandlers<serialapi::NvmGetId> handlers;
    handlers.response = [this](serialapi::NvmGetId::Response const& id) {
        size_ = sizeOf(id);
        if (size_ == 0) { return closeFor("the module does not tell the size of its memory"); }
        onOpen();
    };
    handlers.end = orClose();
    call<serialapi::NvmGetId>({}, std::move(handlers));
}

// ---- reading and writing

template <class F> void NvmJob::exchange(Byte operation, std::size_t offset, Byte length, Bytes const& data,
                                         std::function<void(typename F::Response const&)> take) {
    typename F::Request request;
    request.operation = operation;
    request.length = length;
    request.offset = static_cast<decltype(request.offset)>(offset);
    request.data = data;
    serialapi::CallHandlers<F> handlers;
    handlers.response = [this, take = std::move(take)](typename F::Response const& response) {
        if (!isClosing_) { take(response); }
    };
    handlers.end = orClose();
    call<F>(std::move(request), std::move(handlers));
}

void NvmJob::exchange(Byte operation, std::size_t offset, Byte length, Bytes const& data,
                      std::function<void(Byte status, std::size_t offset, Bytes const& data)> take) {
    auto const handle = [take = std::move(take)](auto const& response) {
        take(response.status, response.offset, response.data);
    };
    if (network().module.knows<NvmExtendedBackupRestore>()) {
        return exchange<NvmExtendedBackupRestore>(operation, offset, length, data, handle);
    }
    exchange<NvmBackupRestore>(operation, offset, length, data, handle);
}

void NvmJob::read(std::size_t offset, std::size_t length) {
    if (hasSession()) {
        return exchange(Session::read, offset, static_cast<Byte>(length), {},
                        [this](Byte status, std::size_t, Bytes const& data) {
                            bool const isLast = status == Session::endOfFile;
                            if (status != Session::ok && !isLast) {
                                return closeFor("the module cannot read its memory");
                            }
                            onRead(data, isLast);
                        });
    }
    serialapi::CallHandlers<serialapi::NvmExtReadLongBuffer> handlers;
    handlers.response = [this](serialapi::MemoryContent const& content) {
        if (!isClosing_) { onRead(content.data, false); }
    };
    handlers.end = orClose();
    call<serialapi::NvmExtReadLongBuffer>({static_cast<std::uint32_t>(offset), static_cast<std::uint16_t>(length)},
                                          std::move(handlers));
}

void NvmJob::write(std::size_t offset, Bytes const& piece) {
    if (hasSession()) {
        return exchange(Session::write, offset, static_cast<Byte>(piece.size()), piece,
                        [this](Byte status, std::size_t, Bytes const&) {
                            if (status != Session::ok && status != Session::endOfFile) {
                                return closeFor("the module cannot write its memory");
                            }
                            onWritten();
                        });
    }
    serialapi::CallHandlers<serialapi::NvmExtWriteLongBuffer> handlers;
    handlers.response = [this](serialapi::Setting const&) { // 0 only says that the bytes were there already
        if (!isClosing_) { onWritten(); }
    };
    handlers.end = orClose();
    call<serialapi::NvmExtWriteLongBuffer>({static_cast<std::uint32_t>(offset), piece}, std::move(handlers));
}

// ---- closing

std::function<void(CallEnd)> NvmJob::orClose() {
    return [this](CallEnd end) {
        if (end != CallEnd::done && !isClosing_) { closeFor(complaint(end)); }
    };
}

void NvmJob::closeFor(std::string problem) {
    problem_ = std::move(problem);
    close();
}

void NvmJob::close() {
    if (isClosing_) { return; }
    isClosing_ = true;
    if (!hasSession()) { return closeByAddress(); }
    auto const ended = [this](CallEnd end) { onLeft(end); };
    if (network().module.knows<NvmExtendedBackupRestore>()) {
        return tell<NvmExtendedBackupRestore>({Session::close, 0, 0, {}}, ended);
    }
    tell<NvmBackupRestore>({Session::close, 0, 0, {}}, ended);
}

void NvmJob::closeByAddress() {
    auto const ended = [this](CallEnd end) { onLeft(end); };
    if (network().module.knows<serialapi::SetRfReceiveMode>()) { return tell<serialapi::SetRfReceiveMode>({1}, ended); }
    onLeft(CallEnd::done);
}

void NvmJob::onLeft(CallEnd end) {
    if (end != CallEnd::done) {
        host().resetModule("it does not close its memory");
        if (problem_.empty()) { problem_ = complaint(end); }
    }
    if (isStopping() && !goesOn()) { return endStopped(); }
    if (!problem_.empty()) { return fail(problem_); }
    onClosed();
}

void NvmJob::report(std::size_t doneBytes) {
    auto const percent = static_cast<unsigned int>(size_ == 0 ? 0 : doneBytes * 100 / size_);
    if (percent <= percent_) { return; }
    percent_ = percent;
    if (progress_) { progress_(percent); }
}

} // namespace zorv::controller
