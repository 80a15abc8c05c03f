// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace zorv {

/// Steps over the number at `at`, which ends with some other character; null where it is not written as JSON writes it.
char const* skipNumber(char const* at);

/// Whether a number in JSON's form has neither a fraction nor an exponent.
bool isWhole(std::string_view number);

/// Whether a number in JSON's form is no larger than the largest double; what is too small is read as zero.
bool fitsDouble(std::string_view number);

/// The double that is nearest to a number in JSON's form, one that fits.
double toDouble(std::string_view number);

} // namespace zorv
