#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The same job as a shell script around yad: the figures as the icon's tooltip, a refresh a minute.
set -euo pipefail

refresh() {
    local figures
    figures=$("$VORLA_USAGE_EXECUTABLE" --json |
        grep -o '"name":"[^"]*","usedPercent":[0-9]*,"remainingPercent":[0-9]*' | head -n 2 |
        sed 's/"name":"\([^"]*\)".*:\([0-9]*\)$/\1 \2%/' | paste -sd'|')
    echo "tooltip:${figures/|/ · }"
}

figuresForEver() {
    refresh
    # As many more, one after another, as a measurement asks for.
    for ((count = ${REFRESHES:-0}; count > 0; --count)); do
        sleep 0.2
        refresh
    done
    while sleep 60; do
        refresh
    done
}

figuresForEver | yad --notification --image=dialog-information --listen
