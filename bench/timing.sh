# Timing helpers of the scale scripts (sourced). Outputs go to a file, so
# that the terminal never slows a run down; a command's failing status is
# part of what is measured, not an error.

# The median wall time in seconds of RUNS (odd) runs of COMMAND, output to OUT.
median_seconds() {
  local runs=$1 out=$2 times=() start end
  shift 2
  for ((run = 0; run < runs; ++run)); do
    start=$(date +%s.%N)
    "$@" >"$out" || true
    end=$(date +%s.%N)
    times+=("$(echo "$end - $start" | bc)")
  done
  printf '%.3f\n' "$(printf '%s\n' "${times[@]}" | sort -n | sed -n "$(((runs + 1) / 2))p")"
}

# The peak resident memory in KiB of one run of COMMAND, output to OUT.
peak_kib() {
  local out=$1
  shift
  { /usr/bin/time -f %M "$@" 2>&1 >"$out" || true; } | tail -1
}

mb() { echo "scale=1; $1 / 1048576" | bc; }
ratio() { printf '%.2f' "$(echo "scale=4; $1 / $2" | bc)"; }
