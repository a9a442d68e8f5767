#!/usr/bin/env bash
# Checks what bash, zsh and fish complete where stashkeep is installed: scripts/check_completions.sh PREFIX
set -euo pipefail
prefix=$(realpath "$1")
"$(dirname "$0")/install.sh" bash-completion fish zsh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/files/folder" && cd "$work/files"
touch disc2.d64 DISC3.D64 game.reu GAME2.BIN game.ybn game.fbn flags.asm savegame.dat

# Each of these prints the completions of the last of its arguments, which make a command line.
cat >"$work/ask.bash" <<'END'
. /usr/share/bash-completion/bash_completion; _completion_loader stashkeep
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE=$* COMP_POINT=${#COMP_LINE}
_stashkeep stashkeep "${@:$#}" "${@:$#-1:1}"
printf '%s\n' "${COMPREPLY[@]}"
END
cat >"$work/ask.fish" <<<"complete -C \"\$argv\""
cat >"$work/ask.zsh" <<<"COMMAND_LINE=\$* script -qec 'zsh -d -i' /dev/null </dev/null >/dev/null; cat ~/completions"
# In zsh, only the line editor completes: here it inserts all completions before it reads a key.
cat >"$work/.zshrc" <<'END'
autoload -Uz compinit && compinit -u -d ~/dump
everything() { _main_complete; compstate[insert]=all compstate[list]=; }
zle-line-init() {
    BUFFER=$COMMAND_LINE CURSOR=$#COMMAND_LINE
    zle everything
    print -rl -- ${(Q)${(z)BUFFER#"${COMMAND_LINE% *} "}} >~/completions
    exit
}
zle -C everything complete-word everything && zle -N zle-line-init
END

# expect "COMPLETION..." WORD...: the completions of the last word of "stashkeep WORD..." in all three shells
expect() {
    for shell in bash fish zsh; do
        found=$(env -i HOME="$work" PATH="$prefix/bin:$PATH" XDG_DATA_DIRS="$prefix/share:/usr/share" TERM=dumb \
            FPATH="$prefix/share/zsh/site-functions:$(zsh -dfc "print \$FPATH")" $shell "$work/ask.$shell" \
            stashkeep "${@:2}" | sed 's/\t.*//; s|/$||' | LC_ALL=C sort -u | xargs)
        [ "$found" = "$1" ] || { echo "$shell: \"stashkeep ${*:2}\" completes to: $found" >&2 && exit 1; }
    done
}
expect 'extractd64 extractfbn extractgeoram extractneoram extractreu extractybn' ext
expect 'implantd64 implantfbn implantgeoram implantneoram implantreu implantybn' IMP
expect 'check' ch
expect 'DISC3.D64 disc2.d64 folder' EXTRACTD64 a ''
expect 'GAME2.BIN folder game.reu' implantgeoram a ''
expect 'folder game.ybn' implantybn a ''
expect 'folder game.fbn' extractfbn ''
expect 'flags.asm folder' check a b c ''
expect 'folder savegame.dat' extractd64 a b ''
expect '' extractneoram a b ''
echo "bash, fish and zsh complete as they should."
