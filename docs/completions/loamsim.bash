# Completion of loamsim in bash: the options in its help, and file names.

_loamsim() {
  local help
  help=$("$1" --help 2>/dev/null)
  COMPREPLY=()
  if [[ $help == *"  $3 "[A-Z]* ]]; then
    return  # the value of an option
  elif [[ $2 == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(grep -o -- '--[a-z]*' <<<"$help")" -- "$2")
  else
    compopt -o default
  fi
}

complete -F _loamsim loamsim
