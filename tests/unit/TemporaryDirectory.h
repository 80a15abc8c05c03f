#pragma once

#include "tests/support/TemporaryDirectory.h"
