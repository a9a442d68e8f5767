# fish completion: command words, and files with the extension that each argument expects.

# True if the current argument matches the pattern of COMMAND:POSITION, such as "extractd64:2".
# The command word itself is at position 1.
function __stashkeep_at
    set -l words (commandline -opc)
    string match -qr -- "^(?:$argv[1])\$" (string lower -- "$words[2]"):(count $words)
end

# Folders, and files whose extension matches the pattern; case is ignored.
function __stashkeep_files
    __fish_complete_path (commandline -ct) | string match -r -- "(?i)^[^\t]*(?:/|\.(?:$argv[1]))(?:\t.*)?\$"
end

# Data files can have any name, so this offers folders and all files except images and sources.
function __stashkeep_data_files
    __fish_complete_path (commandline -ct) | string match -vr -- '(?i)^[^\t]*\.(?:d64|reu|bin|ybn|fbn|asm)(?:\t.*)?$'
end

complete -c stashkeep -f
for kind in d64 reu georam neoram ybn fbn
    complete -c stashkeep -n '__stashkeep_at :1' -a extract$kind -d 'copy a savegame from an image'
    complete -c stashkeep -n '__stashkeep_at :1' -a implant$kind -d 'copy a savegame into an image'
end
complete -c stashkeep -n '__stashkeep_at :1' -a check -d 'print a savegame'

complete -c stashkeep -n '__stashkeep_at "extractd64:[23]|implantd64:[34]"' -a '(__stashkeep_files d64)'
complete -c stashkeep -n '__stashkeep_at "extract(reu|georam|neoram):2|implant(reu|georam|neoram):3"' \
    -a '(__stashkeep_files "reu|bin")'
complete -c stashkeep -n '__stashkeep_at "extractybn:2|implantybn:3"' -a '(__stashkeep_files ybn)'
complete -c stashkeep -n '__stashkeep_at "extractfbn:2|implantfbn:3"' -a '(__stashkeep_files fbn)'
complete -c stashkeep -n '__stashkeep_at "check:[345]"' -a '(__stashkeep_files asm)'
complete -c stashkeep -n '__stashkeep_at "extractd64:4|extract(reu|georam|neoram|ybn|fbn):3|implant.*:2|check:2"' \
    -a '(__stashkeep_data_files)'
