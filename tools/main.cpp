// SPDX-License-Identifier: Apache-2.0
#include "tools/WireClasses.h"
#include "tools/writeManual.h"
#include "tools/writeReference.h"
#include "tools/writeSchema.h"

#include <exception>
#include <iostream>
#include <string>

// scripts/reference runs this and chooses the output files.
int main(int argc, char** argv) {
    std::string const what = argc > 1 ? argv[1] : "";
    try {
        auto const classes = zorv::wireClasses();
        if (what == "manual" && argc == 2) {
            zorv::writeManual(std::cout);
        } else if (what == "schema" && argc == 2) {
            zorv::writeSchema(std::cout, classes);
        } else if (what == "reference" && argc == 3) {
            zorv::writeReference(std::cout, classes, argv[2]);
        } else {
            std::cerr << "Usage: message-reference schema | manual | reference SOURCE-DIR\n";
            return 2;
        }
    } catch (std::exception const& error) {
        std::cerr << "message-reference: " << error.what() << '\n';
        return 1;
    }
    return std::cout.flush() ? 0 : 1;
}
