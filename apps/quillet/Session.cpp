#include "apps/quillet/Session.h"

#include "platform/libio/connectTcp.h"

#include <csignal>
#include <typeinfo>
#include <utility>

namespace zorv {

Session::Session(std::string const& host, unsigned short port, std::chrono::milliseconds timeout)
    : timeout_(timeout),
      interrupt_(loop_, {SIGINT}, [this](int) { end(ExitCode::interrupted, ""); }),
      bus_(loop_, {[this](PeerId, BadMessageError const& error) {
                       end(ExitCode::protocolError, std::string("the daemon sent what is no message: ") + error.what());
                   },
                   [this](PeerId, std::string const& reason) {
                       end(ExitCode::noConnection, "lost the connection to the daemon: " + reason);
                   }}) {
    auto const place = host + " port " + std::to_string(port);
    connectTcp(loop_, host, port, timeout, TcpLimits(),
               [this, place](std::optional<TcpConnection> connection, std::string const& reason) {
                   if (!connection) {
                       return end(ExitCode::noConnection, "cannot connect to " + place + ": " + reason);
                   }
                   daemon_ = bus_.attach(std::move(*connection));
                   loop_.stop();
               });
    wait();
}

boost::shared_ptr<Confirmable> Session::ask(boost::shared_ptr<Confirmable> const& request) {
    boost::shared_ptr<Confirmable> answer;
    bus_.request(daemon_, request, timeout_, [this, &answer](MessageBus::ConfirmablePtr const& any) {
        answer = boost::dynamic_pointer_cast<Confirmable>(any);
        loop_.stop();
    });
    wait();
    auto const& asked = *request;
    auto const& answered = answer ? *answer : asked;
    bool const isRejection = typeid(answered) == typeid(Confirmable) && answered.result() != ZResult::success;
    if (!answer || (typeid(answered) != typeid(asked) && !isRejection)) {
        throw ExitError(ExitCode::protocolError, "the daemon answered with another message: " + answered.name());
    }
    return answer;
}

void Session::pause(std::chrono::milliseconds duration) {
    Timer const timer(loop_, duration, [this] { loop_.stop(); });
    wait();
}

/// Runs the loop until what was started before has its outcome.
void Session::wait() {
    loop_.run();
    if (end_) { throw ExitError(*end_); }
}

void Session::end(ExitCode code, std::string const& text) {
    // What comes first is the cause of the rest.
    if (!end_) { end_.emplace(code, text); }
    loop_.stop();
}

} // namespace zorv
