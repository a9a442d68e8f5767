# bash completion: command words, and files with the extension that each argument expects.

# Data files can have any name, so this offers all files except images and sources.
_stashkeep_data_file() {
    local name files=()
    _filedir
    for name in "${COMPREPLY[@]}"; do
        case ${name,,} in
            *.d64 | *.reu | *.bin | *.ybn | *.fbn | *.asm) [[ ! -d $name ]] || files+=("$name") ;;
            *) files+=("$name") ;;
        esac
    done
    COMPREPLY=("${files[@]}")
}

_stashkeep() {
    # shellcheck disable=SC2034 # set by _init_completion
    local cur prev words cword
    _init_completion || return

    if ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W '
            extractd64 extractreu extractgeoram extractneoram extractybn extractfbn
            implantd64 implantreu implantgeoram implantneoram implantybn implantfbn check' -- "${cur,,}")
        return
    fi

    case ${words[1],,}:$cword in
        extractd64:[23] | implantd64:[34]) _filedir d64 ;;
        extractreu:2 | extractgeoram:2 | extractneoram:2) _filedir '@(reu|bin)' ;;
        implantreu:3 | implantgeoram:3 | implantneoram:3) _filedir '@(reu|bin)' ;;
        extractybn:2 | implantybn:3) _filedir ybn ;;
        extractfbn:2 | implantfbn:3) _filedir fbn ;;
        check:[345]) _filedir asm ;;
        extractd64:4 | implant*:2 | check:2) _stashkeep_data_file ;;
        extractreu:3 | extractgeoram:3 | extractneoram:3 | extractybn:3 | extractfbn:3) _stashkeep_data_file ;;
    esac
} &&
    complete -F _stashkeep stashkeep
