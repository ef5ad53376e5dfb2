# Completion of printer-discovery for bash.

_printer_discovery_command() {
    local i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        discover | serve | settings)
            echo "${COMP_WORDS[i]}"
            return
            ;;
        esac
    done
}

_printer_discovery_options() {
    case $1 in
    discover)
        echo "-h --help --target-file --exclude --exclude-file -v --snmp-version -c --community --community-file --port
            -u --user -l --level -a --auth-protocol -A --auth-password --auth-password-file -x --priv-protocol
            -X --priv-password --priv-password-file -n --context --credentials -t --timeout -r --retries --rate --tasks
            --no-names --dry-run --data-store --plugin --format --stream --diff --outcomes -q
            --quiet"
        ;;
    serve) echo "-h --help --stdio --http --token-file --host-name --data-store --plugin" ;;
    settings) echo "-h --help --format --data-store" ;;
    *) echo "-h --help -V --version" ;;
    esac
}

# Words that stand where no option does.
_printer_discovery_words() {
    case $1 in
    discover) echo "@local" ;;
    serve) ;;
    settings)
        case ${COMP_WORDS[COMP_CWORD - 1]} in
        settings) echo "list get set unset" ;;
        get | set | unset) "${COMP_WORDS[0]}" settings list 2>/dev/null | awk 'NR > 1 && /^[^ ]/ { print $1 }' ;;
        esac
        ;;
    *) echo "discover serve settings" ;;
    esac
}

_printer_discovery() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words
    local command
    command=$(_printer_discovery_command)
    COMPREPLY=()
    case $previous in
    --target-file | -iL | --exclude-file | --community-file | --auth-password-file | --priv-password-file | \
        --credentials | --diff | --outcomes | --token-file | --data-store | --plugin)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    -c | --community | --port | -u | --user | -A | --auth-password | -X | --priv-password | -n | --context | \
        -t | --timeout | -r | --retries | --rate | --tasks | --exclude | --http | --host-name)
        return
        ;;
    -v | --snmp-version) words="1 2c 3" ;;
    -l | --level) words="noAuthNoPriv authNoPriv authPriv" ;;
    -a | --auth-protocol) words="MD5 SHA" ;;
    -x | --priv-protocol) words="DES AES AES-192 AES-256 AES-192-C AES-256-C" ;;
    --format)
        words="table json"
        [ "$command" = discover ] && words+=" csv"
        ;;
    *)
        if [[ $word == -* ]]; then
            words=$(_printer_discovery_options "$command")
        else
            words=$(_printer_discovery_words "$command")
        fi
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _printer_discovery printer-discovery
