# Sourced by the scripts that run long commands.

# with_progress WHAT LOG COMMAND...: runs the command, keeps all it writes in LOG, and shows on standard error how far it is, by
# lines that begin "[n/m]" or "n/m": on a terminal one line that grows, in a log one line for each tenth.
with_progress() {
  local what=$1 log=$2
  shift 2
  # Ninja and CTest both write a line for each step that ended; what a terminal would be shown differs.
  NINJA_STATUS='[%f/%t] ' "$@" 2>&1 | tee "$log" | show_progress "$what"
  return "${PIPESTATUS[0]}"
}

show_progress() {
  local line shown=-1 end=$'\n'
  if [ -t 2 ]; then end=$'\r'; fi
  while IFS= read -r line; do
    [[ $line =~ ^\ *\[?\ *([0-9]+)/([0-9]+) ]] || continue
    local done=${BASH_REMATCH[1]} all=${BASH_REMATCH[2]}
    if [ ! -t 2 ] && [ $((done * 10 / all)) -eq "$shown" ]; then continue; fi
    shown=$((done * 10 / all))
    printf '%s: %d of %d%s' "$1" "$done" "$all" "$end" >&2
  done
  if [ -t 2 ] && [ "$shown" -ge 0 ]; then echo >&2; fi
}
