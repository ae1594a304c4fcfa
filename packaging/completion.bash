# Completes the options of displayinfo, their values, and the classes.
_displayinfo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local options='--anonymous --machine --machines --jobs --resume --timeout --request --edid-source --xconfig-source --format --no-log --log-level --plugin --port --listen --max-age --version --help'
  local classes='QRXSG_VideoController QRXSG_VideoHead QRXSG_HeadOfVideoController QRXSG_DesktopMonitor
    QRXSG_MonitorResolution QRXSG_MonitorSetting'
  local words
  case $previous in
    --machine | --machines | --resume | capture | --plugin) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --request) words=$classes ;;
    --edid-source) words='auto bios drm' ;;
    --xconfig-source) words='auto file kernel' ;;
    --format) if [ "${COMP_WORDS[1]}" = schema ]; then words='text mof json-schema'; else words='text json rows mof html'; fi ;;
    --log-level) words='error warning status debug verbose' ;;
    *) words="$options $classes capture schema serve" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _displayinfo displayinfo
