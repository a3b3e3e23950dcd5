# Completion of zavri's commands and options, which the program itself is asked for, and of files.
_zavri() {
  local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words=
  if ((COMP_CWORD == 1)); then
    words="--help --version $("$1" --help 2>/dev/null | sed -n 's/^  \([a-z]*\) .*/\1/p')"
  elif [[ $current == -* ]]; then
    words=$("$1" "$command" --help 2>/dev/null |
      sed -n 's/^  \(-h,\)\{0,1\}\(-[-a-z]*\).*/\2/p')
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o default -F _zavri zavri
