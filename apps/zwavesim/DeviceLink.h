// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace zorv {

/// A symbolic link to a device, under a name that stays when the device gets another one; gone with this object.
class DeviceLink {
public:
    explicit DeviceLink(std::string path) : path_(std::move(path)) {}
    ~DeviceLink() { remove(); }

    DeviceLink(DeviceLink const&) = delete;
    DeviceLink& operator=(DeviceLink const&) = delete;

    /// Has the link lead to a device, instead of any link that stands there; a std::runtime_error where something else
    /// stands there, or no link can be made.
    void lead(std::string const& device);

    /// Nothing happens where somebody else has made another link of it.
    void remove() noexcept;

private:
    std::string path_;
    std::string device_;
};

} // namespace zorv
