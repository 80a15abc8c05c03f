// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Progress.h"

#include "apps/quillet/displayWidth.h"

#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvlogger/printable.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <utility>

namespace zorv {

namespace {

using std::chrono::milliseconds;

constexpr unsigned int tenth = 10; // percent
constexpr unsigned int all = 100;

/// What a message says of its work: how much is done, else its state. Messages of long work have such members by the same
/// names.
WorkState stateOf(TMessage const& message) {
    Json::Value frame;
    auto const text = toText(message);
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &frame, nullptr);
    auto const& percent = frame["percentComplete_"];
    WorkState state;
    if (percent.isUInt()) { state.percent = std::min(percent.asUInt(), all); }
    state.text = printable(frame["status_"].isString() ? frame["status_"].asString() : "in progress");
    return state;
}

std::string seconds(milliseconds time) {
    constexpr milliseconds::rep minute = 60;
    auto const rounded = (std::max(time, milliseconds(0)).count() + 500) / 1000;
    if (rounded < 2 * minute) { return std::to_string(rounded) + " s"; }
    auto const rest = std::to_string(rounded % minute);
    return std::to_string(rounded / minute) + (rest.size() < 2 ? ":0" : ":") + rest + " min";
}

/// The rate and the time that is left, as soon as they can be told.
std::string estimate(unsigned int percent, milliseconds elapsed) {
    if (percent == 0 || percent == all || elapsed.count() == 0) { return {}; }
    auto const rate = percent * 1000.0 / static_cast<double>(elapsed.count());
    auto const left = milliseconds(elapsed.count() * (all - percent) / percent);
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << "  " << rate << " %/s  " << seconds(left) << " left";
    return text.str();
}

std::string bar(unsigned int percent, std::size_t width) {
    auto const done = width * percent / all;
    return '[' + std::string(done, '#') + std::string(width - done, '-') + ']';
}

} // namespace

std::string progressLine(std::string const& what, WorkState const& state, std::size_t columns) {
    if (!state.percent) {
        auto line = what + ": " + state.text + ", " + seconds(state.elapsed);
        if (state.limit) { line += ", ends in " + seconds(*state.limit - state.elapsed); }
        return fitted(line, columns);
    }
    auto const number = std::to_string(*state.percent);
    auto const end = std::string(5 - number.size(), ' ') + number + " %" + estimate(*state.percent, state.elapsed);
    constexpr std::size_t narrowest = 5;
    constexpr std::size_t widest = 40;
    auto const taken = displayWidth(what) + 3 + end.size(); // with the blank and the brackets
    if (columns < taken + narrowest) { return fitted(what + ':' + end, columns); }
    return what + ' ' + bar(*state.percent, std::min(columns - taken, widest)) + end;
}

Progress::Progress(std::string what, Terminal terminal, std::optional<milliseconds> limit)
    : what_(std::move(what)), terminal_(terminal) {
    if (limit) {
        state_.emplace();
        state_->text = "waiting";
        state_->limit = limit;
    }
}

Progress::~Progress() { clear(); }

void Progress::show(TMessage const& message) {
    auto state = stateOf(message);
    if (state_) { state.limit = state_->limit; }
    state_ = std::move(state);
    if (terminal_.isThere()) { return draw(); }
    auto const& percent = state_->percent;
    auto text = percent ? std::to_string(*percent / tenth * tenth) + " %" : state_->text;
    if (text != last_) { std::cerr << "quillet: " << what_ << ": " << text << std::endl; }
    last_ = std::move(text);
}

void Progress::tick() {
    if (terminal_.isThere() && state_) { draw(); }
}

void Progress::say(std::string const& text) {
    clear();
    std::cerr << "quillet: " << what_ << ": " << text << std::endl;
    tick();
}

void Progress::draw() {
    state_->elapsed = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start_);
    // The last column stays free: a cursor behind it would begin another line.
    constexpr std::size_t usualWidth = 80;
    auto const width = terminal_.columns();
    auto const columns = width == 0 ? usualWidth - 1 : width - 1;
    std::cerr << escape::clearLine << progressLine(what_, *state_, columns) << std::flush;
}

void Progress::clear() {
    if (terminal_.isThere() && state_) { std::cerr << escape::clearLine << std::flush; }
}

} // namespace zorv
