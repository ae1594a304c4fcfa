# shellcheck shell=bash
# Sourced by the scripts that run long commands.

# stage WHAT COMMAND...: runs the command, and then says on standard error how long it took, and how much processor time
# the command and the system used.
stage() {
  local TIMEFORMAT="$1: took %0R s (of the processor: %0U + %0S s)"
  shift
  time "$@"
}

# with_progress WHAT LOG COMMAND...: a stage that keeps its output in LOG, and shows its progress on standard error: on
# a terminal one line that changes, in a log one line for each tenth.
with_progress() {
  stage "$1" run_with_progress "$@"
}

run_with_progress() {
  local what=$1 log=$2
  shift 2
  NINJA_STATUS='[%f/%t] ' "$@" 2>&1 | tee "$log" | show_progress "$what"
  return "${PIPESTATUS[0]}"
}

# Ninja and CTest write a line "[N/M] ..." or "N/M ..." for each step that ended, apt one with the percentage of what it
# has downloaded (dlstatus) or installed (pmstatus).
show_progress() {
  local line text tenth shown=
  while IFS= read -r line; do
    if [[ $line =~ ^\ *\[?\ *([0-9]+)/([0-9]+) ]]; then
      text="[${BASH_REMATCH[1]}/${BASH_REMATCH[2]}]"
      tenth=$((BASH_REMATCH[1] * 10 / BASH_REMATCH[2]))
    elif [[ $line =~ ^(dl|pm)status:[^:]*:([0-9]+) ]]; then
      text="${BASH_REMATCH[2]} %"
      if [ "${BASH_REMATCH[1]}" = dl ]; then text+=" downloaded"; else text+=" installed"; fi
      tenth=${BASH_REMATCH[1]}$((BASH_REMATCH[2] / 10))
    else
      continue
    fi
    if [ -t 2 ]; then
      printf '\r\033[K%s: %s' "$1" "$text" >&2
    elif [ "$tenth" != "$shown" ]; then
      printf '%s: %s\n' "$1" "$text" >&2
    fi
    shown=$tenth
  done
  if [ -t 2 ] && [ -n "$shown" ]; then echo >&2; fi
}

# Prints a log of with_progress without the lines that only showed progress.
show_log() {
  sed -E '/^(dl|pm)status:/d' "$@" >&2
}
