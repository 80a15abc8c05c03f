// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TResult.h" // ZResult is the result code's name among the Z-Wave types
