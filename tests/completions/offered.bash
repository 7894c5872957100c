# offered.bash <completion> <word>...: what bash offers for the last of the words.

# shellcheck source=packaging/completions/vantrel.bash
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_vantrel
printf '%s\n' "${COMPREPLY[@]}"
