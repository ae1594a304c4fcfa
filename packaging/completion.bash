# shellcheck shell=bash
# Completes the subcommands of displayinfo, their options, the values of these, files, and the classes.
_displayinfo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} subcommand='' words
  case ${COMP_WORDS[1]} in capture | compare | schema | serve) ((COMP_CWORD > 1)) && subcommand=${COMP_WORDS[1]} ;; esac
  # The shell takes --format=json for three words.
  if [ "$current" = = ]; then
    current=''
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  local classes='QRXSG_VideoController QRXSG_VideoHead QRXSG_HeadOfVideoController QRXSG_DesktopMonitor
    QRXSG_MonitorResolution QRXSG_MonitorSetting'
  local sources='--edid-source --xconfig-source' files=no
  case $previous in
    --machine | --machines | --resume | --plugin) files=yes words='' ;;
    --request) words=$classes ;;
    --edid-source) words='auto bios drm' ;;
    --xconfig-source) words='auto file kernel' ;;
    --log-level) words='error warning status debug verbose' ;;
    --format)
      case $subcommand in
        schema) words='text mof json-schema' ;;
        compare) words='text json' ;;
        *) words='text json rows csv mof html' ;;
      esac ;;
    --jobs | --timeout | --port | --listen | --max-age) words='' ;;
    *)
      case $subcommand in
        capture) files=yes words="--machine --anonymous $sources --timeout --plugin --help" ;;
        compare) files=yes words='--format --timeout --plugin --help' ;;
        schema) words='--format --help' ;;
        serve) words="--port --listen --machine $sources --max-age --timeout --plugin --help" ;;
        *) words="--machine --machines --jobs --resume --timeout --request $sources --format --no-log --log-level
             --plugin --version --help $classes"
          ((COMP_CWORD == 1)) && words+=' capture compare schema serve' ;;
      esac ;;
  esac
  COMPREPLY=()
  [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if [ "$files" = yes ] && [[ $current != -* ]]; then
    # A slash after folders, and a backslash before blanks.
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _displayinfo displayinfo
