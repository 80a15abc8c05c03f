// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/frameText.h"

#include "platform/libtransport/hexDigits.h"

namespace zorv {

using serialapi::FieldValue;
using serialapi::FieldValues;
using serialapi::FormKind;

char const* senderText(serialapi::Side sender) { return sender == serialapi::Side::host ? "host" : "module"; }

char const* formText(FormKind kind) {
    switch (kind) {
    case FormKind::request: return "request";
    case FormKind::response: return "response";
    case FormKind::callback: return "callback";
    }
    return "";
}

std::string hexText(serialapi::Bytes const& bytes) {
    std::string text;
    for (auto const byte : bytes) { text += hexDigits(byte, 2); }
    return text;
}

std::string valueText(FieldValue const& value) {
    switch (value.kind) {
    case FieldValue::Kind::number: return std::to_string(value.number);
    case FieldValue::Kind::bytes: return hexText(value.bytes);
    case FieldValue::Kind::text: return '"' + value.text + '"';
    case FieldValue::Kind::numbers: break;
    }
    std::string text;
    for (auto const number : value.numbers) { text += (text.empty() ? "" : ",") + std::to_string(number); }
    return text;
}

FieldValues membersOf(serialapi::Dissection const& dissection) {
    auto members = dissection.members;
    if (!dissection.rest.empty()) {
        char const* const label = dissection.fits ? "rest" : "parameters";
        members.push_back({label, FieldValue::Kind::bytes, 0, dissection.rest});
    }
    return members;
}

std::string membersText(FieldValues const& members) {
    std::string text;
    for (auto const& member : members) { text += (text.empty() ? "" : " ") + member.name + '=' + valueText(member); }
    return text;
}

} // namespace zorv
