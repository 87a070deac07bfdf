# Completion of loamshow in bash. The program itself prints the candidates; status 1 means a file name.

_loamshow() {
  local line=${COMP_LINE:0:COMP_POINT} words found status word begin
  # read removes backslashes; the dot keeps an empty word at the end.
  IFS=$' \t\n' read -d '' -a words <<<"${line//[\"\']/}."
  words[-1]=${words[-1]%.}
  words=("${words[@]/#'~/'/"$HOME/"}")
  COMPREPLY=()
  found=$("${words[0]}" complete "${words[@]:1}" </dev/null 2>/dev/null)
  status=$?
  [[ $status -ne 1 ]] || compopt -o default
  [[ $status -eq 0 && $found ]] || return 0
  # readline treats the text before such a character as another word, and leaves it unchanged.
  begin=${words[-1]%"${words[-1]##*[=:]}"}
  while IFS=$'\t' read -r word _; do
    word=${word#"$begin"}
    [[ $word != *[^[:alnum:]/.,:_=-]* ]] || printf -v word %q "$word"
    COMPREPLY+=("$word")
  done <<<"$found"
}

complete -o nosort -F _loamshow loamshow
