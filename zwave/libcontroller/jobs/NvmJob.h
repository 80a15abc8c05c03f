// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <cstddef>

namespace zorv::controller {

/// The way to a module's memory: by a session on newer modules, by its addresses on older ones. Whatever happens, the
/// session is closed and the radio on again before the job ends.
class ZORV_EXPORT NvmJob : public Job {
public:
    using Progress = std::function<void(unsigned int percent)>;

    std::string objection(Network const& network) const override;

    /// Bytes of the module's memory; 0 before it has told.
    std::size_t size() const noexcept { return size_; }

protected:
    NvmJob(Milliseconds time, Progress progress) : Job(time), progress_(std::move(progress)) {}

    void run() override { open(); }

    /// The memory is open, and its size known.
    virtual void onOpen() = 0;
    virtual void onRead(Bytes const& piece, bool isLast);
    virtual void onWritten();

    /// The memory is closed again, and nothing went wrong with it. Ends the job.
    virtual void onClosed() = 0;

    /// Whether it cannot be broken off any more.
    virtual bool goesOn() const noexcept { return false; }

    void open();
    void read(std::size_t offset, std::size_t length);
    void write(std::size_t offset, Bytes const& piece);

    /// Closes the memory; the job then ends as it was told to, or with the problem, or goes on with onClosed().
    void close();
    void closeFor(std::string problem);

    /// Tells of each further percent once.
    void report(std::size_t doneBytes);

    static constexpr std::size_t pieceOfSession = 64;
    bool hasSession() const;

private:
    template <class F> void exchange(Byte operation, std::size_t offset, Byte length, Bytes const& data,
                                     std::function<void(typename F::Response const&)> take);
    void exchange(Byte operation, std::size_t offset, Byte length, Bytes const& data,
                  std::function<void(Byte status, std::size_t offset, Bytes const& data)> take);
    void openByAddress();
    void closeByAddress();
    void onLeft(serialapi::CallEnd end);
    std::function<void(serialapi::CallEnd)> orClose();

    Progress progress_;
    std::size_t size_ = 0;
    unsigned int percent_ = 0;
    bool isClosing_ = false;
    std::string problem_;
};

} // namespace zorv::controller
