// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Serializable.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"

#include <utility>

namespace zorv {

void Serializable::serialInserter(Serializer& s) const {
    s << opencurly << noescape << Serializer::name << colon << serialName();
    s << comma << noescape << Serializer::bases << colon << openbracket << closebracket;
    s << comma << noescape << "version_" << colon << version_ << closecurly;
}

void Serializable::serialExtract(Serializer& s) { s >> "version_" >> version_ >> finished; }

std::string toText(Serializable const& object) {
    Serializer s;
    object.serialInserter(s);
    return std::move(s).str();
}

boost::shared_ptr<Serializable> readSerializable(std::string const& text) {
    auto s = Serializer::over(text);
    return boost::shared_ptr<Serializable>(s.deserialize());
}

} // namespace zorv
