# bash completion for orvoctl

_orvoctl_ids() {
    orvoctl providers --json 2>/dev/null | sed -n 's/^ *"id": "\([^"\\]*\)",\{0,1\}$/\1/p'
}

_orvoctl_runs() {
    printf 'latest\n'
    orvoctl runs --json 2>/dev/null | sed -n 's/^        "id": "\([0-9A-F-]*\)",\{0,1\}$/\1/p'
}

_orvoctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words=
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        words='run runs review output apply compare providers history screen plan template snapshot copies changes'
        words+=' --help --version'
    elif [[ ${COMP_WORDS[1]} == template && $COMP_CWORD -eq 2 ]]; then
        words='check command'
    elif [[ ${COMP_WORDS[1]} == plan && $COMP_CWORD -eq 2 ]]; then
        words='check'
    else
        case $previous in
        --project | --root | --result | --backup)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --prompt-file | --changes)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --assistant | --id)
            words=$(_orvoctl_ids)
            ;;
        --connector | --timeout | --rows | --columns | --chunk | --resize | --only)
            return
            ;;
        *)
            case ${COMP_WORDS[1]} in
            run) words='--project --assistant --connector --shared --timeout' ;;
            runs) words='--root' ;;
            review) words="--diff $(_orvoctl_runs)" ;;
            apply) words="--only --yes --project --result --backup --changes $(_orvoctl_runs)" ;;
            output | compare) words=$(_orvoctl_runs) ;;
            providers) words='--check' ;;
            plan | snapshot | copies)
                compopt -o filenames
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
                [[ $current == -* ]] || return
                ;;
            changes) words='--diff' ;;
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
