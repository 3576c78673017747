# SPDX-License-Identifier: MIT
complete -c quillmark -f
complete -c quillmark -a --show-editor -d 'Open the editor at once'
complete -c quillmark -a --show-notes -d 'Open the editor with the list of notes'
complete -c quillmark -a --autostart -d 'Leave one that runs already as it is'
complete -c quillmark -a --ui-testing -d 'Keep notes in memory and nothing else, in English and light'
complete -c quillmark -a --language=zh-Hans -d 'With --ui-testing: in Chinese'
complete -c quillmark -a --appearance=dark -d 'With --ui-testing: dark'
complete -c quillmark -a --version -d 'Print the version and end'
complete -c quillmark -a --help -d 'Print the options and end'
