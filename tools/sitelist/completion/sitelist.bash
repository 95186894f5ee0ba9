# Completion of sitelist for bash. The candidates come from `sitelist __complete`; its output is
# described in tools/sitelist/commands/complete.h of the source.

# Sets `plain` to the word $1 without quotes, and `quote` to the quote that is still open, if any.
_sitelist_unquote() {
  local word=$1 c
  plain= quote=
  while [[ -n $word ]]; do
    c=${word:0:1} word=${word:1}
    case $quote$c in
      [\'\"]) quote=$c ;;
      \'\' | \"\") quote= ;;
      \\ | \"\\)
        [[ -z $quote || $word == [\"\\\$\`]* ]] && c=${word:0:1} word=${word:1}
        plain+=$c ;;
      *) plain+=$c ;;
    esac
  done
}

# Offers the text $1, quoted so that the shell reads exactly this text.
_sitelist_offer() {
  local text=$1
  case $quote in
    \') [[ $text == *\'* ]] && return ;;
    \") [[ $text == *[\"\\\$\`!]* ]] && return ;;
    *) [[ $text == *[!A-Za-z0-9_=.,:/-]* ]] && printf -v text %q "$text" ;;
  esac
  COMPREPLY+=("$text")
}

# $1 is the program. $2 is the text to replace: the end of the last word, after an open quote.
_sitelist() {
  local piece plain quote word= front line i last isCut= wasCut=
  local -a words=() answer=()
  COMPREPLY=()
  # Bash also splits words at these characters.
  for ((i = 1; i <= COMP_CWORD; i++)); do
    piece=${COMP_WORDS[i]} wasCut=$isCut isCut=
    [[ -n $piece && -z ${piece//[=:@]/} ]] && isCut=1
    if ((i > 1)) && [[ -z $piece || -z $isCut$wasCut ]]; then
      words+=("$word")
      word=
    fi
    _sitelist_unquote "$piece"
    word+=$plain
  done
  words+=("$word")
  _sitelist_unquote "$quote$2"
  front=${word%"$plain"}

  while IFS= read -r line; do
    answer+=("$line")
  done < <("${1/#\~\//$HOME/}" __complete -- "${words[@]}" 2>/dev/null </dev/null)
  last=$((${#answer[@]} - 1))
  for ((i = 0; i < last; i++)); do
    line=${answer[i]%%$'\t'*}
    [[ $line == "$word"* ]] && _sitelist_offer "${line#"$front"}"
  done
  # Without candidates bash itself offers files, correctly quoted.
  ((last >= 0)) || last=0
  case ${answer[last]-} in
    :files)
      ((last > 0)) || return
      compopt -o filenames 2>/dev/null
      while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -f -- "$plain") ;;
    :directories) compopt -o dirnames 2>/dev/null ;;
    :nospace) compopt -o nospace +o bashdefault +o default 2>/dev/null ;;
    *) compopt +o bashdefault +o default 2>/dev/null ;;
  esac
}

complete -o bashdefault -o default -F _sitelist sitelist
