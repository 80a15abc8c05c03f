# SPDX-License-Identifier: Apache-2.0

complete --command quillet --arguments '(set words (commandline --tokenize --cut-at-cursor --current-process)
    quillet --complete $words[2..] (commandline --current-token --cut-at-cursor) 2> /dev/null)'
