# Completion of ostrevan's command line for bash. The program itself says what fits.
_ostrevan() {
    local -a words=() lines=()
    local before='' line word i
    # The shell takes "--option=value" apart.
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ $word == '=' ]] && ((${#words[@]})); then
            words[-1]+='='
        elif ((${#words[@]})) && [[ ${words[-1]} == --*= ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    # As typed, with quotation marks and backslashes.
    for i in "${!words[@]}"; do
        word=${words[i]#[\'\"]}
        word=${word//\\/}
        words[i]=${word%[\'\"]}
        # The home folder is not written out yet, and no other word may be changed.
        if [[ ${words[i]} == '~/'* ]]; then words[i]=$HOME/${words[i]#'~/'}; fi
    done
    if [[ ${words[-1]} == --*=* && ${COMP_WORDBREAKS-} == *=* ]]; then before=${words[-1]%%=*}=; fi
    word=${words[-1]}

    COMPREPLY=()
    mapfile -t lines < <("$1" --quiet complete -- "${words[@]}" 2>/dev/null)
    for line in "${lines[@]}"; do
        case $line in
            $':\t'*) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "${word#"$before"}") ;;
            $'::\t'*) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -d -- "${word#"$before"}") ;;
            ?*)
                line=${line%%$'\t'*}
                COMPREPLY+=("${line#"$before"}")
                ;;
        esac
    done
    # Quotes what needs it.
    compopt -o filenames 2>/dev/null
    if ((${#COMPREPLY[@]} == 1)) && [[ ${COMPREPLY[0]} == *[=%] ]]; then compopt -o nospace 2>/dev/null; fi
}
complete -F _ostrevan ostrevan
