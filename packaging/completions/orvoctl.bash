# bash completion for orvoctl

_orvoctl_ids() {
    orvoctl providers --json 2>/dev/null | sed -n 's/^ *"id": "\([^"\\]*\)",\{0,1\}$/\1/p'
}

_orvoctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words=
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        words='run providers history screen template --help --version'
    elif [[ ${COMP_WORDS[1]} == template && $COMP_CWORD -eq 2 ]]; then
        words='check command'
    else
        case $previous in
        --project)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --prompt-file)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --assistant | --id)
            words=$(_orvoctl_ids)
            ;;
        --connector | --timeout | --rows | --columns | --chunk | --resize)
            return
            ;;
        *)
            case ${COMP_WORDS[1]} in
            run) words='--project --assistant --connector --shared --timeout' ;;
            providers) words='--check' ;;
            screen) words='--rows --columns --chunk --resize --background-erase' ;;
            template)
                words='--id'
                [[ ${COMP_WORDS[2]} == command ]] && words+=' --batch --prompt-file'
                ;;
            esac
            words+=' --json --help'
            ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _orvoctl orvoctl
