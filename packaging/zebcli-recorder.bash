# shellcheck shell=bash
# Completion for zebcli-record, zebcli-preview, zebcli-probe and zebcli-replay: their options, then files and commands.

_zebcli_recorder() {
    local current=${COMP_WORDS[COMP_CWORD]} options i
    case ${COMP_WORDS[0]##*/} in
        zebcli-record) options='--library --no-redact --reports --show --help --' ;;
        zebcli-probe) options='--library --record --help' ;;
        zebcli-preview) options='--library --help --' ;;
        *) options='--help --' ;;
    esac
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == -- ]] || continue
        if ((i + 1 == COMP_CWORD)); then
            mapfile -t COMPREPLY < <(compgen -c -- "$current")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi
        return
    done
    if [[ $current == -* && ${COMP_WORDS[COMP_CWORD - 1]} != --@(library|show|record) ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -o filenames -F _zebcli_recorder zebcli-record zebcli-preview zebcli-probe zebcli-replay
