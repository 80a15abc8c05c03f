// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/config.hpp>

// Marks what libquillet.so offers; everything else is built with hidden visibility.
#define QUILLET_EXPORT BOOST_SYMBOL_VISIBLE
