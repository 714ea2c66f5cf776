# bash completion for orka(1): the program itself knows what may follow.
_orka() {
    local line=${COMP_LINE:0:COMP_POINT} LC_ALL=C
    mapfile -t COMPREPLY < <(orka complete bash "${#2}" "$line" 2>/dev/null)
}
complete -o nospace -o default -F _orka orka
