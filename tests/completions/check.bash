# check.bash <folder of the completions> <vantrel>: each shell, asked for itself, offers what fits the
# words, and that is what the program takes.

set -euo pipefail
folder=$1
program=$2
here=$(dirname -- "${BASH_SOURCE[0]}")
failures=0

# Shells look for settings of their user, and write their histories.
HOME=$(mktemp --directory)
export HOME
trap 'rm -rf -- "$HOME"' EXIT
unset XDG_CONFIG_HOME XDG_DATA_HOME

offered() {
    local shell=$1
    shift
    case $shell in
    bash) bash --norc "$here/offered.bash" "$folder/vantrel.bash" "$@" ;;
    fish) fish --no-config "$here/offered.fish" "$folder/vantrel.fish" "$@" ;;
    zsh) timeout 20 zsh -f "$here/offered.zsh" "$folder" "$@" ;;
    esac
}

# The first words of the lines of its help.
words_of_help() {
    "$program" --help | sed -nE 's/^  ((--)?[a-z]+).*/\1/p' | sort -u | paste -s -d ' ' -
}

# expect <offered words, in alphabetic order> <word>...: the last word is the one to complete.
expect() {
    local expected=$1 shell found
    shift
    for shell in bash fish zsh; do
        found=$(offered "$shell" "$@" | sort | paste -s -d ' ' -) || found='nothing, as it failed'
        [[ $found == "$expected" ]] || {
            printf '%s offers "%s" for "%s", not "%s"\n' "$shell" "$found" "$*" "$expected"
            failures=$((failures + 1))
        }
    done
}

export LC_ALL=C
options='--help --settings --version'
commands='highlight laser off quit settings status toggle'
[[ $(words_of_help) == "$options $commands" ]] || {
    printf 'the program takes "%s", not "%s"\n' "$(words_of_help)" "$options $commands"
    failures=1
}
expect "$commands" vantrel ''
expect 'settings status' vantrel s
expect "$options" vantrel -
expect 'highlight laser' vantrel toggle ''
expect 'laser' vantrel toggle l
expect '--json' vantrel status -
for last in off highlight quit --settings 'toggle laser' 'status --json'; do
    # shellcheck disable=SC2086
    expect '' vantrel $last ''
done

((failures == 0))
