// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Output.h"

#include <memory>

namespace zorv {

/// What a command shows of the messages that come unasked.
enum class EventForm {
    none,
    members, ///< time, class and members
    traffic, ///< of the messages that an observer gets copies of
    frames,  ///< of the serial link, decoded
    stages,  ///< of an interview
    nodes    ///< that have changed, come or gone
};

/// Shows messages that come unasked, a row each.
class EventView {
public:
    EventView() = default;
    EventView(EventView const&) = delete;
    EventView& operator=(EventView const&) = delete;
    virtual ~EventView() = default;

    /// False where the message is of no interest to this view.
    virtual bool show(TMessage const& message, Output& output) = 0;
};

/// Null for EventForm::none. With JSON, every view shows each message as it is. `request` is what was asked before.
std::unique_ptr<EventView> makeEventView(EventForm form, TMessage const& request, Output& output);

} // namespace zorv
