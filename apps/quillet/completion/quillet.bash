# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

_quillet() {
    mapfile -t COMPREPLY < <("$1" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2> /dev/null)
}
complete -o default -F _quillet quillet
