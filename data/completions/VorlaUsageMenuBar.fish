# SPDX-License-Identifier: MIT
# Completion for fish. A switch counts only as the first and only argument.
complete -c VorlaUsageMenuBar -f
complete -c VorlaUsageMenuBar -n 'test (count (commandline -opc)) -eq 1' -l register-login-item \
    -d 'Start at each login'
complete -c VorlaUsageMenuBar -n 'test (count (commandline -opc)) -eq 1' -l unregister-login-item \
    -d 'No longer start at login'
