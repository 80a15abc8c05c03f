// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/functions/FrameDissector.h"

#include "zwave/libserialapi/functions/FunctionList.h"

#include <algorithm>
#include <array>

namespace zorv::serialapi {

namespace {

template <class Form> std::vector<std::string> memberNames() {
    std::vector<std::string> names;
    nameFields<Form>(names);
    return names;
}

template <class Form> std::optional<DissectedForm> dissectForm(Bytes const& parameters, NodeIdWidth width) {
    auto decoded = decodeForm<Form>(parameters, width);
    if (!decoded) { return std::nullopt; }
    DissectedForm form;
    showFields(form.members, decoded->form);
    form.encoded = encodeForm(decoded->form, width, decoded->tail);
    form.tail = std::move(decoded->tail);
    return form;
}

template <class F> FunctionDescriptor describeFunction() {
    FunctionDescriptor function{F::id, F::name, {}, {}, {}};
    if constexpr (HasRequest<F>::value) {
        function.request = FormDescriptor{&memberNames<typename F::Request>, &dissectForm<typename F::Request>};
    }
    if constexpr (HasResponse<F>::value) {
        function.response = FormDescriptor{&memberNames<typename F::Response>, &dissectForm<typename F::Response>};
    }
    if constexpr (HasCallback<F>::value) {
        function.callback = FormDescriptor{&memberNames<typename F::Callback>, &dissectForm<typename F::Callback>};
    }
    return function;
}

template <class... Functions> constexpr bool isById(FunctionList<Functions...>) {
    std::array<int, sizeof...(Functions)> const ids{Functions::id...};
    for (std::size_t i = 1; i < ids.size(); ++i) {
        if (ids[i - 1] >= ids[i]) { return false; }
    }
    return true;
}
static_assert(isById(AllFunctions()), "a function is out of order, or stands twice");

template <class... Functions> std::vector<FunctionDescriptor> describeAll(FunctionList<Functions...>) {
    return {describeFunction<Functions>()...};
}

} // namespace

std::optional<FormDescriptor> const& FunctionDescriptor::form(FormKind kind) const noexcept {
    switch (kind) {
    case FormKind::request: return request;
    case FormKind::response: return response;
    case FormKind::callback: return callback;
    }
    return request;
}

std::vector<FunctionDescriptor> const& describeFunctions() {
    static auto const functions = describeAll(AllFunctions());
    return functions;
}

FunctionDescriptor const* findFunction(Byte id) noexcept {
    auto const& functions = describeFunctions();
    auto const found = std::lower_bound(functions.begin(), functions.end(), id,
                                        [](FunctionDescriptor const& function, Byte b) { return function.id < b; });
    return found != functions.end() && found->id == id ? &*found : nullptr;
}

std::string functionName(Byte id) {
    if (auto const* const function = findFunction(id)) { return function->name; }
    char const* const digits = "0123456789abcdef";
    return {'0', 'x', digits[id / 16U], digits[id % 16U]};
}

FormKind formKind(Side sender, Frame const& frame) noexcept {
    if (frame.type == FrameType::response) { return FormKind::response; }
    return sender == Side::host ? FormKind::request : FormKind::callback;
}

Dissection FrameDissector::dissect(Side sender, Frame const& frame) {
    Dissection dissection;
    dissection.kind = formKind(sender, frame);
    dissection.function = functionName(frame.function);
    dissection.rest = frame.parameters;
    dissection.encoded = frame;
    auto const* const function = findFunction(frame.function);
    if (function == nullptr || !function->form(dissection.kind)) { return dissection; }
    dissection.hasTable = true;
    if (auto form = fit(*function->form(dissection.kind), frame.parameters)) {
        dissection.fits = true;
        dissection.members = std::move(form->members);
        dissection.rest = std::move(form->tail);
        dissection.encoded.parameters = std::move(form->encoded);
    }
    follow(sender, frame);
    return dissection;
}

std::optional<DissectedForm> FrameDissector::fit(FormDescriptor const& form, Bytes const& parameters) {
    auto first = form.dissect(parameters, width_);
    if (first && first->tail.empty()) { return first; }
    auto const otherWidth = width_ == NodeIdWidth::one ? NodeIdWidth::two : NodeIdWidth::one;
    auto second = form.dissect(parameters, otherWidth);
    if (!second || !second->tail.empty()) { return first; }
    width_ = otherWidth;
    return second;
}

void FrameDissector::follow(Side sender, Frame const& frame) {
    if (frame.function == SoftReset::id || frame.function == SerialApiStarted::id) { width_ = NodeIdWidth::one; }
    bool const setsWidth = frame.function == SerialApiSetup::id && frame.parameters.size() >= 2 &&
                           frame.parameters[0] == SerialApiSetup::setNodeIdWidth;
    if (!setsWidth) { return; }
    auto const value = frame.parameters[1];
    if (formKind(sender, frame) == FormKind::request) {
        asked_ = value == 1 ? NodeIdWidth::one : NodeIdWidth::two;
    } else {
        width_ = value == 0 ? NodeIdWidth::one : asked_;
    }
}

} // namespace zorv::serialapi
