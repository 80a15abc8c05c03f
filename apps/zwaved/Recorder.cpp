// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Recorder.h"

#include "platform/libzorvlogger/Logger.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>

namespace zorv::daemon {

namespace {

std::unique_ptr<controller::Store> openStore(std::string const& folder) {
    if (folder.empty()) { return nullptr; }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) { throw std::runtime_error("cannot make the state folder " + folder + ": " + error.message()); }
    return std::make_unique<controller::Store>(folder + "/zwaved.sqlite");
}

} // namespace

Recorder::Recorder(std::string const& folder) : store_(openStore(folder)) {}

std::vector<Device> Recorder::devices() const { return store_ ? store_->devices() : std::vector<Device>(); }

void Recorder::changed(Device const& device) {
    if (store_) { changes_[device.address()] = device; }
}

void Recorder::removed(ZwaveAddress const& address) {
    if (store_) { changes_[address] = std::nullopt; }
}

void Recorder::ended(controller::Job const& job) {
    if (!store_ || job.lane() != controller::Job::Lane::network) { return; }
    jobs_.push_back({job.name(), controller::toString(job.state()), job.reason(), std::chrono::system_clock::now()});
}

bool Recorder::flush() {
    if (changes_.empty() && jobs_.empty()) { return true; }
    try {
        write();
        hasFailed_ = false;
    } catch (controller::StoreError const& error) {
        if (!hasFailed_) {
            Logger::log(LogLevel::error, std::string("zwaved: ") + error.what(), BOOST_CURRENT_LOCATION);
        }
        hasFailed_ = true;
    }
    return !hasFailed_;
}

void Recorder::write() {
    store_->together([this] {
        for (auto const& [address, device] : changes_) { device ? store_->save(*device) : store_->remove(address); }
        for (auto const& job : jobs_) { store_->log(job); }
    });
    changes_.clear();
    jobs_.clear();
}

} // namespace zorv::daemon
