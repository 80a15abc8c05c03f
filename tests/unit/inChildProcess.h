#pragma once

#include "tests/support/inChildProcess.h"
