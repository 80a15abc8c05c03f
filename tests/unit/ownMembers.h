#pragma once

#include "tests/support/wire.h"
#include "tests/unit/wire.h"
