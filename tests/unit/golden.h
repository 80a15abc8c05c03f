#pragma once

#include "tests/support/golden.h"
