// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/MemoryMessages.h"

#include "platform/libtransport/hexDigits.h"
#include "platform/libzorvlogger/Logger.h"
#include "zwave/libcontroller/jobs/NvmClear.h"
#include "zwave/libcontroller/jobs/NvmRestore.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace zorv::daemon {

using serialapi::Bytes;
using std::chrono::steady_clock;

namespace {

constexpr std::chrono::minutes permitTime{1};
constexpr std::size_t blobSize = 4096;
constexpr unsigned int allOfIt = 100; // percent

void addBlobs(ManageNvmMsg& message, Bytes const& image) {
    for (std::size_t offset = 0; offset < image.size(); offset += blobSize) {
        auto const begin = image.begin() + static_cast<std::ptrdiff_t>(offset);
        auto const size = static_cast<std::ptrdiff_t>(std::min(blobSize, image.size() - offset));
        auto const place = static_cast<unsigned int>(offset);
        auto const blob = boost::make_shared<Blob>("nvm " + hexDigits(place, 6), place);
        blob->setContents(OctetVec(begin, begin + size));
        message.addBlob(blob);
    }
}

/// The memory that the blobs are of: without a gap, and without a byte that two of them claim.
struct Backup {
    Bytes image = {};
    std::string problem = {};
};

Backup assemble(ManageNvmMsg const& message, HomeId homeId) {
    if (message.homeId() != homeId) { return {{}, "it is of another network"}; }
    auto blobs = message.blobs();
    bool const areThere = std::none_of(blobs.begin(), blobs.end(), [](auto const& blob) { return blob == nullptr; });
    if (!areThere || blobs.empty()) { return {{}, "it has no blobs, or empty ones"}; }
    if (!message.checkBlobs()) { return {{}, "the checksum of a blob does not hold"}; }
    std::sort(blobs.begin(), blobs.end(), [](auto const& a, auto const& b) { return a->offset() < b->offset(); });
    Bytes image;
    for (auto const& blob : blobs) {
        auto const bytes = blob->getContents();
        bool const fits = blob->offset() == image.size() && bytes.size() == blob->size();
        if (!fits || bytes.empty()) {
            return {{}, "the blob at " + std::to_string(blob->offset()) + " does not follow the one before it"};
        }
        image.insert(image.end(), bytes.begin(), bytes.end());
    }
    return {image, ""};
}

void refused(std::string const& reason) {
    Logger::log(LogLevel::warn, "zwaved: the backup is refused: " + reason, BOOST_CURRENT_LOCATION);
}

} // namespace

MemoryMessages::MemoryMessages(Context const& context) : context_(context) {
    context_.requests.handle<ManageNvmMsg>([this](auto const& request, PeerId from) { manage(request, from); });
}

void MemoryMessages::manage(Request const& request, PeerId from) {
    switch (request->operation()) {
    case ManageNvmOp::save: return save(request, from);
    case ManageNvmOp::restore: return restore(request, from);
    case ManageNvmOp::clear: return clear(request, from);
    case ManageNvmOp::validate: return validate(request, from);
    case ManageNvmOp::authorize: return authorize(request, from);
    case ManageNvmOp::invalid: break;
    }
    say(request, from, ZResult::rejected);
}

void MemoryMessages::say(Request const& request, PeerId from, ZResult::Enum result, unsigned int percent) {
    context_.bus.answer(from, ManageNvmMsg::create(request, result, percent));
}

controller::NvmJob::Progress MemoryMessages::progressOf(Request const& request, PeerId from) {
    return [this, request, from](unsigned int percent) { say(request, from, ZResult::inProgress, percent); };
}

// ---- reading

void MemoryMessages::save(Request const& request, PeerId from) {
    auto const job = std::make_shared<controller::NvmSave>(jobSeconds(request->timeout()), progressOf(request, from));
    bool const isFree = context_.link.controller().networkJob() == nullptr;
    auto const answer = [this, request, job, isFree](ZResult::Enum result) {
        if (isFree) { context_.announcer.announce(NvmOpEvt::create(*request, NvmOp::none)); }
        if (result != ZResult::success) { return ManageNvmMsg::create(request, result, 0); }
        auto response = boost::make_shared<ManageNvmMsg>(ManageNvmOp::save, context_.network().homeId, result, allOfIt);
        response->setResponse(*request);
        addBlobs(*response, job->image());
        return response;
    };
    if (isFree) { context_.announcer.announce(NvmOpEvt::create(*request, NvmOp::save)); }
    context_.requests.begin<ManageNvmMsg>(request, from, Requests::Lease::connection, job, answer);
}

/// Whether the memory can be read as a whole; with blobs, whether it is what they say.
void MemoryMessages::validate(Request const& request, PeerId from) {
    Backup backup;
    if (!request->blobs().empty()) {
        backup = assemble(*request, context_.network().homeId);
        if (!backup.problem.empty()) {
            refused(backup.problem);
            return say(request, from, ZResult::failure);
        }
    }
    auto const job = std::make_shared<controller::NvmSave>(jobSeconds(request->timeout()), progressOf(request, from));
    auto const answer = [request, job, image = std::move(backup.image)](ZResult::Enum result) {
        bool const differs = result == ZResult::success && !image.empty() && image != job->image();
        return ManageNvmMsg::create(request, differs ? ZResult::failure : result,
                                    result == ZResult::success ? allOfIt : 0);
    };
    context_.requests.begin<ManageNvmMsg>(request, from, Requests::Lease::connection, job, answer);
}

// ---- writing

void MemoryMessages::authorize(Request const& request, PeerId from) {
    if (!mayAdminister(*request)) { return say(request, from, ZResult::rejected); }
    permit_ = Permit{from, steady_clock::now() + permitTime};
    say(request, from, ZResult::success);
}

bool MemoryMessages::takePermit(Request const& request, PeerId from) {
    bool const isGood = permit_ && permit_->client == from && steady_clock::now() < permit_->until;
    if (isGood && mayAdminister(*request)) {
        permit_.reset();
        return true;
    }
    Logger::log(LogLevel::warn, "zwaved: nobody has authorized the writing of the memory", BOOST_CURRENT_LOCATION);
    return false;
}

void MemoryMessages::restore(Request const& request, PeerId from) {
    auto backup = assemble(*request, context_.network().homeId);
    if (!backup.problem.empty()) {
        refused(backup.problem);
        return say(request, from, ZResult::rejected);
    }
    if (!takePermit(request, from)) { return say(request, from, ZResult::rejected); }
    write(request, from, NvmOp::restore,
          std::make_shared<controller::NvmRestore>(std::move(backup.image), jobSeconds(request->timeout()),
                                                   progressOf(request, from)));
}

void MemoryMessages::clear(Request const& request, PeerId from) {
    if (!takePermit(request, from)) { return say(request, from, ZResult::rejected); }
    write(request, from, NvmOp::clear,
          std::make_shared<controller::NvmClear>(jobSeconds(request->timeout()), progressOf(request, from)));
}

/// It goes on without its client: half a memory is of no use.
void MemoryMessages::write(Request const& request, PeerId from, NvmOp::Enum operation,
                           std::shared_ptr<controller::NvmJob> const& job) {
    bool const isFree = context_.link.controller().networkJob() == nullptr;
    auto const answer = [this, request, isFree](ZResult::Enum result) {
        if (isFree) {
            context_.announcer.updating(false);
            context_.announcer.announce(NvmOpEvt::create(*request, NvmOp::none));
        }
        return ManageNvmMsg::create(request, result, result == ZResult::success ? allOfIt : 0);
    };
    if (isFree) {
        context_.announcer.announce(NvmOpEvt::create(*request, operation));
        context_.announcer.updating(true);
    }
    context_.requests.begin<ManageNvmMsg>(request, from, Requests::Lease::none, job, answer);
}

} // namespace zorv::daemon
