// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/manualPage.h"

namespace zorv {

/// What the client's manual page says beside its command line.
inline ManualText clientManual() {
    return {'1',
            {},
            {{"DESCRIPTION",
              "Sends requests to the daemon and shows the answers: one command for each thing that a person wants to "
              "do, and "
              "\"request\" for any message. Without a command, on a terminal, it reads commands until \"exit\"."},
             {"EXIT STATUS",
              {},
              {{"0", "All went well."},
               {"1", "The daemon answered with a result that is no success, or a file that was checked is not good."},
               {"2", "Wrong usage."},
               {"3", "No connection could be made, or it was lost."},
               {"4", "No answer in time."},
               {"5", "The daemon, or a file, has what cannot be understood."},
               {"6", "Standard output cannot be written."},
               {"130", "Ended by Ctrl-C."}}},
             {"ENVIRONMENT",
              {},
              {{"NO_COLOR", "Where it is set, nothing is coloured."},
               {"COLUMNS", "The terminal's width, where the terminal does not tell it."},
               {"XDG_STATE_HOME", "Its folder \"quillet\" keeps what was typed in interactive use."}}}},
            {"zwaved(8)", "zwavesim(1)", "libquillet(7)"}};
}

} // namespace zorv
