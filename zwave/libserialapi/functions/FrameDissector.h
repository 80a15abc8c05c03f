// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Frame.h"
#include "zwave/libserialapi/SessionLayer.h"
#include "zwave/libserialapi/functions/Fields.h"

#include <optional>
#include <string>
#include <vector>

namespace zorv::serialapi {

enum class FormKind {
    request,  ///< of a host
    response, ///< of a module
    callback  ///< of a module, asked for or not
};

/// A frame's parameters by the table of its function.
struct DissectedForm {
    FieldValues members;
    Bytes tail;    ///< what stands behind the members
    Bytes encoded; ///< the parameters, written again from the members
};

/// A form without its type, for whoever looks at frames of any function.
struct FormDescriptor {
    std::vector<std::string> (*memberNames)();
    std::optional<DissectedForm> (*dissect)(Bytes const& parameters, NodeIdWidth width);
};

struct FunctionDescriptor {
    Byte id = 0;
    char const* name = "";
    std::optional<FormDescriptor> request;
    std::optional<FormDescriptor> response;
    std::optional<FormDescriptor> callback;

    std::optional<FormDescriptor> const& form(FormKind kind) const noexcept;
};

/// Every function with a table, by id.
ZORV_EXPORT std::vector<FunctionDescriptor> const& describeFunctions();

/// Null for a function without a table.
ZORV_EXPORT FunctionDescriptor const* findFunction(Byte id) noexcept;

/// The function's name, or "0x" and two hex digits.
ZORV_EXPORT std::string functionName(Byte id);

ZORV_EXPORT FormKind formKind(Side sender, Frame const& frame) noexcept;

struct Dissection {
    FormKind kind = FormKind::request;
    std::string function;
    FieldValues members;
    Bytes rest; ///< parameters without a name; all of them where there is no table, or where it does not fit
    bool hasTable = false;
    bool fits = false; ///< the parameters are what the table says
    Frame encoded;     ///< the frame, written again from the members
};

/// Takes a conversation apart, frame by frame.
///
/// It follows how many bytes a node id takes: as host and module agree, and where that was not heard, as the frames
/// themselves show, since a frame rarely fits its table with both.
class ZORV_EXPORT FrameDissector {
public:
    Dissection dissect(Side sender, Frame const& frame);

    NodeIdWidth width() const noexcept { return width_; }

private:
    std::optional<DissectedForm> fit(FormDescriptor const& form, Bytes const& parameters);
    void follow(Side sender, Frame const& frame);

    NodeIdWidth width_ = NodeIdWidth::one;
    NodeIdWidth asked_ = NodeIdWidth::two; ///< by the host; where that was not heard, the only width worth asking for
};

} // namespace zorv::serialapi
