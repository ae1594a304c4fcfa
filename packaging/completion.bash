# shellcheck shell=bash
# Completes the subcommands of displayinfo, their options, the values of these, files, and the classes.
_displayinfo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} subcommand=-
  # The shell takes --format=json for three words.
  if [ "$current" = = ]; then
    current=''
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  # Lines "SUBCOMMAND NAME KIND WORD...", with - for none. An option of the kind "flag" has no value; the value of the
  # others is a file ("files"), or one of the words. A NAME without hyphens stands for a word that is no option.
  local options='
@OPTIONS@
'
  if ((COMP_CWORD > 1)) && [[ $options == *$'\n'"${COMP_WORDS[1]} "* ]]; then subcommand=${COMP_WORDS[1]}; fi
  local files=no words='' all_files=no all_words='' is_value=no page last_page='' name kind offered
  while read -r page name kind offered; do
    if [ "$page" != "$subcommand" ]; then
      if ((COMP_CWORD == 1)) && [ "$page" != "$last_page" ]; then all_words+=" $page"; fi
      last_page=$page
    elif [ "$name" = "$previous" ] && [ "$kind" != flag ]; then
      is_value=yes words=$offered
      if [ "$kind" = files ]; then files=yes; fi
    elif [[ $name == --* ]]; then
      all_words+=" $name"
    else
      all_words+=" $offered"
      if [ "$kind" = files ]; then all_files=yes; fi
    fi
  done <<<"$options"
  if [ $is_value = no ]; then files=$all_files words=$all_words; fi
  COMPREPLY=()
  [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if [ "$files" = yes ] && [[ $current != -* ]]; then
    # A slash after folders, and a backslash before blanks.
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _displayinfo displayinfo
