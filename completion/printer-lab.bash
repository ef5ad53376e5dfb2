# Completion of printer-lab for bash.

_printer_lab() {
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --plan | --profiles)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --network | --devices | --printers | --port | --community | --idle-exit)
        return
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "-h --help --network --devices --printers --plan --profiles --verbatim --port
        --community --idle-exit --until-stdin-closes --stats --list" -- "$word")
}

complete -F _printer_lab printer-lab
