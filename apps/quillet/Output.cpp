// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Output.h"

#include "apps/quillet/ExitCode.h"
#include "apps/quillet/messageRows.h"
#include "platform/libzorvlogger/printable.h"

#include <cerrno>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

namespace zorv {

namespace {

Table::Width widthOf(OutputFormat format) {
    return format == OutputFormat::wide ? Table::Width::natural : Table::Width::fitted;
}

} // namespace

Output::Output(std::ostream& os, Terminal terminal, OutputStyle style)
    : os_(os), terminal_(terminal), style_(style), table_(os, terminal, widthOf(style.format)) {}

void Output::show(TMessage const& message) {
    errno = 0;
    if (isJson()) {
        std::ostringstream text;
        message.print(text);
        os_ << printableJson(text.str()) << std::endl;
    } else {
        table_.add(messageRows(message, hasTitles()), message.widths());
    }
    checkWritten();
}

void Output::show(StringVecVec const& rows, std::string const& json) {
    errno = 0;
    if (!isJson()) {
        auto all = std::exchange(titles_, {});
        all.insert(all.end(), rows.begin(), rows.end());
        table_.add(std::move(all), widths_);
    } else if (!json.empty()) {
        os_ << printableJson(json) << std::endl;
    }
    checkWritten();
}

void Output::titles(std::vector<std::string> const& titles, std::vector<unsigned int> widths) {
    if (hasTitles()) { titles_ = {titles}; }
    widths_ = std::move(widths);
}

void Output::startTable() { table_ = Table(os_, terminal_, widthOf(style_.format)); }

void Output::showLine(std::string const& text) {
    errno = 0;
    os_ << text << std::endl;
    checkWritten();
}

void Output::checkWritten() {
    if (os_) { return; }
    if (errno == EPIPE) { throw ExitError(ExitCode::ok, ""); }
    throw ExitError(ExitCode::noOutput, std::string("cannot write the output: ") + std::strerror(errno));
}

void Output::showRejection(Confirmable const& rejection) {
    if (isJson()) { show(rejection); }
    throw ExitError(ExitCode::refused, "the daemon did not understand the request: " + toString(rejection.result()));
}

} // namespace zorv
