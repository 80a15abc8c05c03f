// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/PlacedError.h"
#include "platform/libzorvlogger/StackTrace.h"
#include "zwave/libquillet/Export.h"

#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>

namespace zorv {

/// Root of the errors that the messages raise: a text, and the stack trace of the place where the error was made.
class QUILLET_EXPORT ZorvError : public std::runtime_error {
public:
    explicit ZorvError(std::string const& message) : std::runtime_error(message) {}
    explicit ZorvError(char const* message) : std::runtime_error(message) {}
    ZorvError(ZorvError const& other) noexcept : std::runtime_error(other), trace_(other.trace_) {}
    ZorvError& operator=(ZorvError const& other) noexcept;
    ~ZorvError() override;

    /// What print() writes, made by the first call and kept; a failure to make it ends the process.
    char const* what() const noexcept override;

    virtual StackTrace const& trace() const noexcept;

    /// The bare message.
    virtual char const* briefWhat() const noexcept;

    /// Writes the full class name, ": ", the message, a line end and the stack trace.
    virtual void print(std::ostream& os) const;

    /// Logs the full class name, ": " and the message, with the stack trace.
    virtual void log() const;

private:
    StackTrace trace_;
    mutable std::unique_ptr<char[]> description_;
};

/// Raw data of the wrong form.
class QUILLET_EXPORT TransportError : public ZorvError {
public:
    using ZorvError::ZorvError;
    TransportError(TransportError const&) = default;
    TransportError& operator=(TransportError const&) = default;
    ~TransportError() override;
};

/// A required pointer that is empty.
class QUILLET_EXPORT NullPointerError : public TransportError {
public:
    using TransportError::TransportError;
    NullPointerError(NullPointerError const&) = default;
    NullPointerError& operator=(NullPointerError const&) = default;
    ~NullPointerError() override;
};

/// A message of the wrong form.
class QUILLET_EXPORT MessageError : public ZorvError {
public:
    using ZorvError::ZorvError;
    MessageError(MessageError const&) = default;
    MessageError& operator=(MessageError const&) = default;
    ~MessageError() override;
};

/// JSON of the wrong shape.
class QUILLET_EXPORT SyntaxError : public MessageError, public PlacedError {
public:
    using MessageError::MessageError;
    SyntaxError(std::string const& message, std::string const& place);
    SyntaxError(SyntaxError const&) = default;
    SyntaxError& operator=(SyntaxError const&) = default;
    ~SyntaxError() override;

    std::string const& place() const noexcept override;

private:
    std::shared_ptr<std::string const> place_; // shared, so that a copy cannot fail
};

} // namespace zorv
