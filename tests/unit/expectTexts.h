#pragma once

#include "tests/support/expectTexts.h"
