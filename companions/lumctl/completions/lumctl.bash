# shellcheck shell=bash
# SPDX-License-Identifier: BSD-3-Clause
# bash completion for lumctl

_lumctl_names() {
    local name
    COMPREPLY=()
    # The word as the user means it, without the quoting that he has begun.
    local typed=${1//\\/}
    while IFS= read -r name; do
        [[ ${name,,} == "${typed,,}"* ]] && COMPREPLY+=("$(printf '%q' "$name")")
    done < <(lumctl complete-names 2>/dev/null)
}

_lumctl() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' i
    local commands='status list info install remove launch open intent stop clear-cache clear-data
        autostart settings licences runtime monitor'
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        -*) ;;
        *)
            [[ ${COMP_WORDS[i - 1]} == --timeout ]] || { command=${COMP_WORDS[i]}; break; }
            ;;
        esac
    done
    COMPREPLY=()
    if [[ $before == --package && $command == open ]]; then
        _lumctl_names "$word"
    elif [[ $word == -* ]]; then
        local options='--json --timeout --help'
        case $command in
        '') options+=' --version' ;;
        install) options+=' --no-wait' ;;
        remove) options+=' --no-wait --exact' ;;
        runtime) options+=' --no-wait' ;;
        clear-data) options+=' --yes --exact' ;;
        open) options+=' --package --exact' ;;
        intent) options+=' --action --data --type --package --class --category --extra' ;;
        info | launch | stop | clear-cache | autostart | settings) options+=' --exact' ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    else
        case $command in
        '') mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word") ;;
        runtime)
            mapfile -t COMPREPLY < <(compgen -W 'start stop enable disable status' -- "$word")
            ;;
        install | open)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            ;;
        autostart)
            if [[ $before == autostart ]]; then
                _lumctl_names "$word"
            else
                mapfile -t COMPREPLY < <(compgen -W 'on off' -- "$word")
            fi
            ;;
        info | remove | launch | stop | clear-cache | clear-data | settings)
            _lumctl_names "$word"
            ;;
        esac
    fi
}

complete -F _lumctl lumctl
