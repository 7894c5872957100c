# shellcheck shell=bash

_vantrel() {
    local word=${COMP_WORDS[COMP_CWORD]} words=
    case $COMP_CWORD:${COMP_WORDS[1]} in
    1:-*) words='--settings --help --version' ;;
    1:*) words='off highlight laser toggle status settings quit' ;;
    2:toggle) words='highlight laser' ;;
    2:status) words='--json' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _vantrel vantrel
