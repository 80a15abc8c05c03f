// SPDX-License-Identifier: Apache-2.0
// A connection that carries lines, and a peer that sends them in whatever pieces.

#include "fuzz/Script.h"
#include "fuzz/Target.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpSocket.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/connect_pair.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <memory>
#include <optional>

namespace zorv::fuzz {

namespace {

using Socket = boost::asio::local::stream_protocol::socket;

/// The lines of what a peer has sent, up to one that is too long.
struct Model {
    explicit Model(std::size_t limit) : longest(limit) {}

    void take(std::string const& chunk) {
        for (auto const character : chunk) {
            if (isOverlong) { return; }
            if (character == '\n') {
                if (!partial.empty() && partial.back() == '\r') { partial.pop_back(); }
                if (partial.size() <= longest) { lines.push_back(partial); }
                isOverlong = partial.size() > longest;
                partial.clear();
            } else {
                partial += character;
                isOverlong = partial.size() > longest + 1; // one may be the carriage return of the line's end
            }
        }
    }

    std::size_t longest;
    std::string partial;
    std::vector<std::string> lines;
    bool isOverlong = false;
};

class Story {
public:
    explicit Story(std::string const& input) : script_(input), peer_(loop_.context()), model_(1 + limit()) {
        Socket here(loop_.context());
        boost::asio::local::connect_pair(here, peer_);
        TcpLimits limits;
        limits.line = model_.longest;
        // Heavy lines take turns only where there is a budget.
        if (script_.flag()) { limits.budget = std::make_shared<TcpBudget>(loop_, std::size_t{4} << 20U, 4); }
        connection_.emplace(TcpSocket(std::move(here)), limits);
        TcpConnection::Handlers handlers;
        handlers.line = [this](std::string const& line) {
            expect(!closed_, "a connection that has ended says nothing more");
            lines_.push_back(line);
            if (isEchoing_) { reply(line); }
        };
        handlers.overlong = [this] { ++overlong_; };
        handlers.closed = [this](std::string const& reason) {
            expect(!closed_, "a connection ends once");
            closed_ = reason;
        };
        hearsEnd_ = script_.flag();
        if (hearsEnd_) {
            handlers.inputEnded = [this] { connection_->finish("the peer has said all"); };
        }
        isEchoing_ = script_.flag();
        connection_->start(std::move(handlers));
    }

    void tell() {
        while (!script_.isOver() && !closed_) { step(); }
        peer_.shutdown(Socket::shutdown_send);
        turn();
        expect(lines_ == model_.lines, "the lines are those of the text");
        expect(overlong_ == (model_.isOverlong ? 1 : 0), "a line that is too long is told once");
        expect(closed_.has_value(), "a connection ends when its peer has closed its own");
        expect(sent_.compare(0, heard_.size(), heard_) == 0, "the peer gets what was sent");
        expect(heard_ == sent_ || !hearsEnd_, "and all of it, where its end is not ours");
        connection_.reset();
        loop_.context().poll();
    }

private:
    std::size_t limit() {
        auto const size = script_.byte();
        return size < 200 ? size : size * std::size_t{1000};
    }

    void step() {
        auto const kind = script_.byte() % 4;
        std::string chunk;
        if (kind == 0) {
            auto const character = static_cast<char>(script_.byte());
            auto const most =
                character == '\n' ? std::size_t{2000} : std::size_t{300'000}; // an empty line costs a turn
            chunk.assign(std::size_t{16} * script_.number() % most, character);
        } else if (kind == 1) {
            reply("line " + std::to_string(sent_.size()));
        } else {
            auto const bytes = script_.bytes();
            chunk.assign(bytes.begin(), bytes.end());
        }
        say(chunk);
        if (script_.flag()) { turn(); }
    }

    void reply(std::string const& line) {
        if (model_.isOverlong || overlong_ != 0 || closed_) { return; }
        connection_->send(line);
        sent_ += line + '\n';
        if (sent_.size() > (std::size_t{1} << 20U)) { isEchoing_ = false; }
    }

    /// What does not fit into the system's buffer is sent when the other end has taken some.
    void say(std::string const& chunk) {
        model_.take(chunk);
        peer_.non_blocking(true);
        for (std::size_t done = 0; done < chunk.size();) {
            boost::system::error_code error;
            done += peer_.write_some(boost::asio::buffer(chunk.data() + done, chunk.size() - done), error);
            if (error && error != boost::asio::error::would_block) { return; } // the other end has gone
            if (error) { turn(); }
        }
    }

    /// Lets everything happen that can happen now.
    void turn() {
        while (loop_.context().poll() + hear() > 0) {}
        loop_.context().restart();
    }

    std::size_t hear() {
        boost::system::error_code error;
        peer_.non_blocking(true);
        auto const size = peer_.read_some(boost::asio::buffer(block_), error);
        heard_.append(block_.data(), size);
        return size;
    }

    Script script_;
    EventLoop loop_;
    Socket peer_;
    Model model_;
    std::optional<TcpConnection> connection_;
    bool hearsEnd_ = false; ///< and ends itself only when all is sent
    bool isEchoing_ = false;
    std::vector<std::string> lines_;
    int overlong_ = 0;
    std::optional<std::string> closed_;
    std::array<char, 65536> block_{};
    std::string sent_;
    std::string heard_;
};

void run(std::string const& input) { Story(input).tell(); }

Target::Texts seeds() {
    Target::Texts texts;
    auto const begin = [](unsigned int limit, unsigned int flags) {
        ScriptWriter script;
        script.byte(limit).byte(flags).byte(flags).byte(flags);
        return script;
    };
    auto const bytes = [](std::string const& text) { return serialapi::Bytes(text.begin(), text.end()); };
    for (auto const flags : {0U, 1U}) {
        auto lines = begin(10, flags);
        lines.byte(2).bytes(bytes("one\ntwo\r\n\nthr")).byte(1).byte(2).bytes(bytes("ee\n\r\n1234567890\r\n")).byte(1);
        texts.push_back(lines.text());
        auto overlong = begin(5, flags);
        overlong.byte(2).bytes(bytes("12345\n123456\n1\n")).byte(1);
        texts.push_back(overlong.text());
        auto heavy = begin(250, flags);
        heavy.byte(0).byte('x').number(10'000).byte(0).byte(2).bytes(bytes("\n")).byte(1).byte(1).byte(1);
        texts.push_back(heavy.text());
        auto many = begin(100, flags);
        many.byte(0).byte('\n').number(1000).byte(0).byte(1).byte(1).byte(2).bytes(bytes("end")).byte(0);
        texts.push_back(many.text());
    }
    return texts;
}

Registration const registration({"lines", &run, &seeds});

} // namespace

} // namespace zorv::fuzz
