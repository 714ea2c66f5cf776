# fish completion for orka(1): the program itself knows what may follow.
complete -c orka -f -a '(orka complete fish 0 (commandline -cp) 2>/dev/null)'
