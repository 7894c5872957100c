# offered.fish <completion> <word>...: what fish offers for the last of the words.

source $argv[1]
complete -C (string join ' ' -- $argv[2..]) | string split -f 1 \t; or true
