function __vantrel_after -d 'Whether the word to complete comes right after these'
    test "$(string join ' ' -- (commandline -opc)[2..])" = "$argv"
end

complete -c vantrel -f
complete -c vantrel -n __vantrel_after -l settings -d 'Start with the settings window'
complete -c vantrel -n __vantrel_after -l help -d 'Show how it is used'
complete -c vantrel -n __vantrel_after -l version -d 'Show the version'
complete -c vantrel -n __vantrel_after -a off -d 'Mark nothing'
complete -c vantrel -n __vantrel_after -a highlight -d 'Show the highlight'
complete -c vantrel -n __vantrel_after -a laser -d 'Show the laser dot'
complete -c vantrel -n __vantrel_after -a toggle -d 'Show a mark, or take it away again'
complete -c vantrel -n __vantrel_after -a status -d 'Print the mode'
complete -c vantrel -n __vantrel_after -a settings -d 'Open the settings window'
complete -c vantrel -n __vantrel_after -a quit -d 'End it'
complete -c vantrel -n '__vantrel_after toggle' -a highlight -d 'Show the highlight'
complete -c vantrel -n '__vantrel_after toggle' -a laser -d 'Show the laser dot'
complete -c vantrel -n '__vantrel_after status' -l json -d 'As a JSON object'
