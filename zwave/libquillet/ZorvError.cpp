// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ZorvError.h"

#include <ostream>
#include <sstream>
#include <typeinfo>

namespace zorv {

namespace {

std::string className(ZorvError const& error) { return StackTrace::demangle(typeid(error).name()); }

} // namespace

ZorvError::~ZorvError() = default;
TransportError::~TransportError() = default;
NullPointerError::~NullPointerError() = default;
MessageError::~MessageError() = default;
SyntaxError::SyntaxError(std::string const& message, std::string const& place)
    : MessageError(message), place_(std::make_shared<std::string const>(place)) {}
SyntaxError::~SyntaxError() = default;

std::string const& SyntaxError::place() const noexcept {
    static std::string const unknown;
    return place_ ? *place_ : unknown;
}

ZorvError& ZorvError::operator=(ZorvError const& other) noexcept {
    std::runtime_error::operator=(other);
    trace_ = other.trace_;
    if (this != &other) { description_.reset(); }
    return *this;
}

char const* ZorvError::what() const noexcept {
    if (!description_) {
        std::ostringstream os;
        print(os);
        auto const text = os.str();
        auto description = std::make_unique<char[]>(text.size() + 1);
        text.copy(description.get(), text.size());
        description_ = std::move(description);
    }
    return description_.get();
}

StackTrace const& ZorvError::trace() const noexcept { return trace_; }

char const* ZorvError::briefWhat() const noexcept { return std::runtime_error::what(); }

void ZorvError::print(std::ostream& os) const {
    os << className(*this) << ": " << briefWhat() << std::endl;
    trace_.print(os);
}

void ZorvError::log() const {
    std::ostringstream os;
    os << className(*this) << ": " << briefWhat();
    trace_.log(os.str());
}

} // namespace zorv
