// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/tables/MemberTable.h"

namespace zorv {

std::vector<MemberDescriptor> describeSamples(MemberSample const* samples, std::size_t count) {
    std::vector<MemberDescriptor> descriptors;
    descriptors.reserve(count);
    for (auto const* sample = samples; sample != samples + count; ++sample) {
        Serializer s;
        sample->insert(s, sample->value);
        descriptors.push_back({sample->key, sample->doc, sample->describe(), s.str()});
    }
    return descriptors;
}

} // namespace zorv
