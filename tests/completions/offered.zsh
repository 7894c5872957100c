# offered.zsh <folder of the completion> <word>...: what zsh offers for the last of the words, typed
# into a terminal.

zmodload zsh/zpty
zpty -b shell zsh -f -i

zpty -w shell "
fpath=(${(q)1} \$fpath)
autoload -U compinit && compinit -D -u
compadd() {
    local -a matches
    if [[ \" \${argv[1,(i)--]} \" != *' -'[OAD]' '* ]]; then
        builtin compadd -O matches \"\$@\"
        offered+=(\$matches)
    fi
    builtin compadd \"\$@\"
}
report() {
    offered=()
    zle complete-word
    print -r -- \"<\$offered>\"
}
zle -N report
bindkey '^X' report
print \$((1 + 1)):ready"
shift
zpty -r -m shell output '*2:ready*' || exit 1
zpty -w -n shell "$*"$'\x18'
zpty -r -m shell output '*<*>*' || exit 1
print -l -- ${=${output##*<}%%>*}
zpty -d shell
