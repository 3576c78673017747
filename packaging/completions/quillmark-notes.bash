# SPDX-License-Identifier: MIT
_quillmark_notes() {
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'add list search show export import check --version --help' -- "$word")
        return
    fi
    case ${COMP_WORDS[1]} in
    list | search) mapfile -t COMPREPLY < <(compgen -W '--json' -- "$word") ;;
    show) mapfile -t COMPREPLY < <(
        compgen -W '--json' -- "$word"
        compgen -W "$(quillmark-notes list 2>/dev/null | cut -f 1)" -- "${word^^}"
    ) ;;
    export) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    check) mapfile -t COMPREPLY < <(compgen -W '--repair --yes' -- "$word") ;;
    import) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    esac
}
complete -o filenames -F _quillmark_notes quillmark-notes
