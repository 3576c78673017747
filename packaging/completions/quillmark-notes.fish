# SPDX-License-Identifier: MIT
set -l commands add list search show export import check
complete -c quillmark-notes -f
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a add -d 'Save a note'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the notes, newest first'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a search -d 'List the notes that hold the words'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a show -d 'Print one note'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a export -d 'Copy every note into a folder'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a import -d 'Save each text file as a note'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a check -d 'Say what is wrong with the notes'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a --version -d 'Print the version and end'
complete -c quillmark-notes -n "not __fish_seen_subcommand_from $commands" -a --help -d 'Print the commands and end'
complete -c quillmark-notes -n "__fish_seen_subcommand_from list search show" -a --json -d 'Print the notes as JSON'
complete -c quillmark-notes -n "__fish_seen_subcommand_from show" -a "(quillmark-notes list 2>/dev/null | string replace -r '\t[^\t]*\t' '\t')"
complete -c quillmark-notes -n "__fish_seen_subcommand_from export" -a "(__fish_complete_directories)"
complete -c quillmark-notes -n "__fish_seen_subcommand_from import" -F
complete -c quillmark-notes -n "__fish_seen_subcommand_from check" -a --repair -d 'Take copies of notes in as notes'
complete -c quillmark-notes -n "__fish_seen_subcommand_from check" -a --yes -d 'Do not ask'
