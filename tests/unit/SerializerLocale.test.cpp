// SPDX-License-Identifier: Apache-2.0
// Numbers on the wire have a decimal point, whatever the user's locale.

#include "platform/libtransport/Serializer.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace zorv {
namespace {

/// The C library never frees the list of folders that it makes of LOCPATH.
std::locale loaded(std::string const& name) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan::ScopedDisabler const leaksOfTheLibrary;
#endif
    return std::locale(name);
}

/// Makes a language's rules the process's own, of C and of C++, until it goes out of scope.
class Abroad {
public:
    explicit Abroad(std::string const& language) {
        auto const name = language + ".UTF-8";
        auto const command = "localedef -i " + language + " -f UTF-8 " + directory_.path(name);
        if (std::system(command.c_str()) != 0) { throw std::runtime_error("cannot make the locale " + language); }
        setenv("LOCPATH", directory_.path().c_str(), 1);
        std::locale::global(loaded(name));
    }
    Abroad(Abroad const&) = delete;
    Abroad& operator=(Abroad const&) = delete;
    ~Abroad() {
        std::locale::global(std::locale::classic());
        unsetenv("LOCPATH");
    }

private:
    TemporaryDirectory directory_;
};

TEST(SerializerLocale, NumbersAreReadAndWrittenWithAPointEverywhere) {
    for (auto const* const language : {"de_DE", "fr_FR"}) {
        Abroad const abroad(language);
        std::ostringstream inCpp;
        inCpp << 0.5;
        ASSERT_EQ(inCpp.str(), "0,5");
        ASSERT_EQ(std::strtod("0,5", nullptr), 0.5); // in C

        Serializer writer;
        writer << 93784.25;
        EXPECT_EQ(writer.str(), "93784.25");
        double value = 0;
        Serializer reader("[93784.25,1e3,12345]");
        reader.element(0) >> value;
        EXPECT_EQ(value, 93784.25);
        reader.element(1) >> value;
        EXPECT_EQ(value, 1000.0);
        reader.element(2) >> value;
        EXPECT_EQ(value, 12345.0);
    }
}

} // namespace
} // namespace zorv
