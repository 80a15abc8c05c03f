#pragma once

#include "tests/support/LogCapture.h"
