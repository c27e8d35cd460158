# Bash completion for tavu.

_tavu() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} words='-h --help --json -q --quiet'
    if ((COMP_CWORD == 1)); then
        words='probe sheet digest compare convert bench -h --help --version'
    elif [[ $before == --every ]]; then
        words='key'
    elif [[ $before == --to ]]; then
        words='yuv444 yuv444a8 rgb565 rgb888 bgr888 rgba5658 rgba8888 bgra8888 rgb565a8'
    elif [[ $before == --cs ]]; then
        words='yuv400 yuv420 yuv422 yuv440 yuv444 yuv444a8'
    elif [[ $before == --@(columns|width|frame|resize|size) ]]; then
        words=
    elif [[ $word != -* && $command == bench ]]; then
        words=$("${COMP_WORDS[0]}" bench --list 2>/dev/null)
    elif [[ $word != -* ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    else
        case $command in
            probe) words+=' --plot' ;;
            sheet) words+=' -o --output --columns --width --every' ;;
            compare) words+=' -o --output' ;;
            convert) words+=' --to --resize --one-pass --frame --size --cs --limited --list' ;;
            bench) words+=' --csv --list' ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _tavu tavu
