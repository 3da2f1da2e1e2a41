# bash completion for orvo

_orvo() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    if [[ $current == -* && $previous != --workspace && $previous != --capture && $previous != --test-output ]]; then
        mapfile -t COMPREPLY < <(compgen -W '--workspace --new-terminal --quick-draft --capture --self-test
            --test-output --version --help' -- "$current")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
    fi
}

complete -F _orvo orvo
