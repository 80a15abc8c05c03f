// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/config.hpp>

// Marks what a platform library offers; everything else is built with hidden visibility.
#define ZORV_EXPORT BOOST_SYMBOL_VISIBLE
