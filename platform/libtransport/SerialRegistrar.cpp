// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/SerialRegistrar.h"

#include "platform/libzorvlogger/Logger.h"

#include <functional>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <utility>

namespace zorv {

namespace {

class Registry {
public:
    bool add(std::string const& serialName, SerialFactory&& factory) {
        std::unique_lock const lock(mutex_);
        return factories_.emplace(serialName, std::move(factory)).second;
    }

    void remove(std::string const& serialName) {
        std::unique_lock const lock(mutex_);
        factories_.erase(serialName);
    }

    SerialFactory find(std::string_view serialName) {
        std::shared_lock const lock(mutex_);
        auto const found = factories_.find(serialName);
        return found != factories_.end() ? found->second : SerialFactory();
    }

    std::vector<std::string> names() {
        std::shared_lock const lock(mutex_);
        std::vector<std::string> names;
        names.reserve(factories_.size());
        for (auto const& entry : factories_) { names.push_back(entry.first); }
        return names;
    }

private:
    std::shared_mutex mutex_;
    std::map<std::string, SerialFactory, std::less<>> factories_;
};

// Made by the first registrar, so that it outlives every one of them.
Registry& registry() {
    static Registry registry;
    return registry;
}

} // namespace

SerialFactory SerialRegistry::find(std::string_view serialName) { return registry().find(serialName); }

std::vector<std::string> SerialRegistry::names() { return registry().names(); }

SerialRegistrar::SerialRegistrar(std::string const& serialName, SerialFactory factory)
    : serialName_(serialName), registered_(registry().add(serialName, std::move(factory))) {
    if (!registered_) {
        Logger::log(LogLevel::warn, "SerialRegistrar: " + serialName + " is registered already",
                    BOOST_CURRENT_LOCATION);
    }
}

SerialRegistrar::~SerialRegistrar() {
    if (registered_) { registry().remove(serialName_); }
}

} // namespace zorv
