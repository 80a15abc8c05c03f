// SPDX-License-Identifier: Apache-2.0
#include "tools/writeManual.h"

#include "apps/manualLanguage.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/support/typeText.h"

namespace zorv {

namespace {

void section(std::ostream& page, char const* title, char const* text) {
    page << ".SH " << title << '\n' << manual::paragraph(text) << '\n';
}

void message(std::ostream& page, TypeDescriptor const& type) {
    auto const bare = [](std::string const& name) { return name.substr(name.rfind(':') + 1); };
    page << ".SS " << manual::bold(bare(type.name)) << '\n';
    page << manual::paragraph("A " + bare(type.base) +
                              (type.members.empty() ? " without members of its own." : " with:"))
         << '\n';
    for (auto const& member : type.members) {
        manual::entry(page, manual::bold(member.key) + ' ' + manual::italic(typeText(member.type)), member.doc);
    }
}

} // namespace

void writeManual(std::ostream& page) {
    manual::begin(page, "libquillet", '7', "Messages between a Z-Wave controller daemon and its clients");
    section(
        page, "DESCRIPTION",
        "Each message is a C++ class in the namespace zorv, with its header in zwave/libquillet. It is written as one "
        "line "
        "of JSON, rebuilt on the other side by its name, answered, and shown as rows of a table. The library libclient "
        "carries messages to the daemon and back for a program.");
    section(page, "LINKING",
            "In a CMake project, find_package(quillet) gives quillet::quillet and quillet::client. Elsewhere, "
            "\"pkg-config --cflags --libs quillet\" tells what the compiler needs.");
    page << ".SH MESSAGES\n";
    for (auto const& type : describeCatalogue()) { message(page, type); }
    manual::end(page, {"quillet(1)", "zwaved(8)"});
}

} // namespace zorv
