// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/FirmwareMessages.h"

#include "platform/libzorvlogger/Logger.h"
#include "zwave/libcontroller/jobs/FirmwareUpdate.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

namespace zorv::daemon {

namespace {

/// Two capital letters, so that it can name nothing but a file of the folder.
bool isCountryCode(std::string const& text) {
    constexpr std::size_t length = 2;
    return text.size() == length &&
           std::all_of(text.begin(), text.end(), [](char letter) { return letter >= 'A' && letter <= 'Z'; });
}

/// The bytes of a file; none where it cannot be read, or is empty.
std::optional<serialapi::Bytes> readImage(std::string const& file) {
    std::ifstream in(file, std::ios::binary);
    serialapi::Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.is_open() || bytes.empty()) { return std::nullopt; }
    return bytes;
}

} // namespace

FirmwareMessages::FirmwareMessages(Context const& context, std::string folder)
    : context_(context), folder_(std::move(folder)) {
    context_.requests.handle<FirmwareUpdateMsg>([this](auto const& request, PeerId from) { update(request, from); });
}

void FirmwareMessages::refuse(Request const& request, PeerId from, ZResult::Enum result, DaemonDetail::Enum detail,
                              std::string const& reason) {
    Logger::log(LogLevel::warn, "zwaved: no firmware update: " + reason, BOOST_CURRENT_LOCATION);
    auto const& network = context_.network();
    context_.announcer.announce(
        DaemonStatusMsg::create(network.address(network.ownNode), context_.announcer.daemonStatus(), detail));
    context_.bus.answer(from,
                        FirmwareUpdateMsg::create(request, result, FirmwareUpdateStatus::idle, request->timeout()));
}

/// It goes on without its client: half a firmware is of no use.
void FirmwareMessages::update(Request const& request, PeerId from) {
    if (!mayAdminister(*request)) { return context_.bus.refuse(from, *request); }
    auto const& code = request->countryCode();
    if (!isCountryCode(code)) {
        return refuse(request, from, ZResult::rejected, DaemonDetail::invalidCountryCode, "bad country code");
    }
    auto image = folder_.empty() ? std::nullopt : readImage(folder_ + '/' + code + ".bin");
    if (!image) {
        return refuse(request, from, ZResult::fileNotFound, DaemonDetail::firmwareFileNotFound,
                      "there is no file of " + code);
    }
    auto const progress = [this, request, from](unsigned int percent) {
        auto const report = FirmwareUpdateMsg::create(FirmwareUpdateStatus::running, percent);
        report->setResponse(*request);
        context_.bus.answer(from, report);
        context_.announcer.announce(report);
    };
    bool const isFree = context_.link.controller().networkJob() == nullptr;
    auto const answer = [this, request, isFree](ZResult::Enum result) {
        if (isFree) { context_.announcer.updating(false); }
        auto const status = result == ZResult::success ? FirmwareUpdateStatus::complete : FirmwareUpdateStatus::idle;
        return FirmwareUpdateMsg::create(request, result, status, request->timeout());
    };
    if (isFree) { context_.announcer.updating(true); }
    context_.requests.begin<FirmwareUpdateMsg>(
        request, from, Requests::Lease::none,
        std::make_shared<controller::FirmwareUpdate>(*std::move(image), jobSeconds(request->timeout()), progress),
        answer);
}

} // namespace zorv::daemon
