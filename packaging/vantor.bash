# Completion of vantor for bash; _filedir comes with the bash-completion package, which loads this file.
_vantor()
{
    local cur prev words cword
    _init_completion || return
    [ "$cword" -eq 1 ] || return # frame numbers follow
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '--help --version' -- "$cur")
    else
        _filedir '@(avi|flv|m4v|mkv|mov|mp4|mpeg|mpeg4|mpg|webm|wmv|bmk)'
    fi
} && complete -F _vantor vantor
