# SPDX-License-Identifier: BSD-3-Clause
# fish completion for lumctl
set -l commands status list info install remove launch open intent stop clear-cache clear-data \
    autostart settings licences runtime monitor
set -l named info remove launch stop clear-cache clear-data autostart settings

complete -c lumctl -f
complete -c lumctl -n "not __fish_seen_subcommand_from $commands" -a "$commands"
complete -c lumctl -n "__fish_seen_subcommand_from $named" -a "(lumctl complete-names 2>/dev/null)"
complete -c lumctl -n "__fish_seen_subcommand_from autostart" -a "on off"
complete -c lumctl -n "__fish_seen_subcommand_from runtime" -a "start stop enable disable status"
complete -c lumctl -n "__fish_seen_subcommand_from install open" -F
complete -c lumctl -l json -l help
complete -c lumctl -l timeout -x
complete -c lumctl -n "__fish_seen_subcommand_from $named open" -l exact
complete -c lumctl -n "__fish_seen_subcommand_from install remove runtime" -l no-wait
complete -c lumctl -n "__fish_seen_subcommand_from clear-data" -l yes
complete -c lumctl -n "__fish_seen_subcommand_from open" -l package -x \
    -a "(lumctl complete-names 2>/dev/null)"
for option in action data type package class category extra
    complete -c lumctl -n "__fish_seen_subcommand_from intent" -l $option -x
end
