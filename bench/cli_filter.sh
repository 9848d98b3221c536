#!/bin/sh
# Times `idxbase filter --count` against awk and sqlite3 on the same
# predicates over a generated typed CSV of 1,000,000 rows (about 40 MB),
# checks that all of them count the same rows, and reports the tool's peak
# resident memory.
#
#   bench/cli_filter.sh [path/to/idxbase] [rows]
#
# Each time is the best of RUNS runs (default 3). Default tool:
# build/release/tools/idxbase. A missing awk, sqlite3 or
# /usr/bin/time is skipped with a message. Exits 1 when counts differ.
set -eu

tool=${1:-build/release/tools/idxbase}
rows=${2:-1000000}
[ -x "$tool" ] || { echo "no idxbase tool at $tool (build it first)" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
csv=$work/parts.csv

awk_cmd=$(command -v mawk || command -v awk || true)
sqlite=$(command -v sqlite3 || true)
timer=/usr/bin/time
[ -x "$timer" ] || timer=

# Every field is present and unquoted, so awk's plain comma split and
# sqlite's import read the same values as the tool.
${awk_cmd:-awk} -v rows="$rows" 'BEGIN {
  srand(7)
  split("bolt nut washer gear bracket housing", names, " ")
  print "name:string,mass:float,count:int,released:bool,modified:time"
  for (i = 0; i < rows; i++) {
    printf "%s%d,%.2f,%d,%s,2026-%02d-%02dT%02d:%02d:00\n",
      names[1 + int(rand() * 6)], int(rand() * 1000), rand() * 50, int(rand() * 500),
      (rand() < 0.7 ? "true" : "false"), 1 + int(rand() * 12), 1 + int(rand() * 28),
      int(rand() * 24), int(rand() * 60)
  }
}' > "$csv"
echo "data: $rows rows, $(wc -c < "$csv") bytes"

# name;idxbase filter;awk condition ($1..$5);SQL condition
cat > "$work/predicates" <<'PRED'
count;count > 250;$3 > 250;count > 250
range;mass BETWEEN 10 AND 20 AND released = true;$2 >= 10 && $2 <= 20 && $4 == "true";mass BETWEEN 10 AND 20 AND released = 'true'
like;name LIKE "bolt" OR modified < @2026-03-01;index($1, "bolt") > 0 || $5 < "2026-03-01";instr(name, 'bolt') > 0 OR modified < '2026-03-01'
PRED

# Runs "$@" RUNS times (default 3) with output to $work/out and prints the
# best elapsed seconds: the machine's noise only ever adds time.
runs=${RUNS:-3}
seconds() {
  best=
  for _ in $(seq "$runs"); do
    start=$(date +%s.%N)
    "$@" > "$work/out"
    end=$(date +%s.%N)
    best=$(echo "$start $end $best" | awk '{ t = $2 - $1; if ($3 != "" && $3 < t) t = $3; printf "%.3f", t }')
  done
  echo "$best"
}

status=0
if [ -n "$sqlite" ]; then
  # Imported once: a second import would double the table.
  import=$(runs=1; seconds "$sqlite" "$work/db" \
    "CREATE TABLE parts(name TEXT, mass REAL, count INTEGER, released TEXT, modified TEXT);" \
    ".mode csv" ".import --skip 1 $csv parts")
  echo "sqlite3 import: ${import} s"
else
  echo "sqlite3 not found: skipped (apt-get install sqlite3)"
fi
[ -n "$awk_cmd" ] || echo "awk not found: skipped"

printf '%-6s %10s %10s %10s %10s  %s\n' filter idxbase awk sqlite3 "x awk" count
while IFS=';' read -r name where awk_test sql_test; do
  t_tool=$(seconds "$tool" filter --count --where "$where" "$csv" || true)
  n_tool=$(awk '{ print $1 }' "$work/out")
  t_awk=-; n_awk=$n_tool; t_sql=-; n_sql=$n_tool; ratio=-
  if [ -n "$awk_cmd" ]; then
    t_awk=$(seconds "$awk_cmd" -F, "NR > 1 && ($awk_test) { n++ } END { print n + 0 }" "$csv")
    n_awk=$(cat "$work/out")
    ratio=$(echo "$t_awk $t_tool" | awk '{ printf "%.1f", ($2 > 0 ? $1 / $2 : 0) }')
  fi
  if [ -n "$sqlite" ]; then
    t_sql=$(seconds "$sqlite" "$work/db" "SELECT count(*) FROM parts WHERE $sql_test;")
    n_sql=$(cat "$work/out")
  fi
  printf '%-6s %10s %10s %10s %10s  %s\n' "$name" "$t_tool" "$t_awk" "$t_sql" "$ratio" "$n_tool"
  if [ "$n_tool" != "$n_awk" ] || [ "$n_tool" != "$n_sql" ]; then
    echo "  COUNTS DIFFER: idxbase $n_tool, awk $n_awk, sqlite3 $n_sql" >&2
    status=1
  fi
done < "$work/predicates"

if [ -n "$timer" ]; then
  "$timer" -v "$tool" filter --where 'count > 250' "$csv" > /dev/null 2> "$work/time" || true
  echo "idxbase filter (printing the records): peak RSS $(awk -F': ' '/Maximum resident/ { print $2 }' "$work/time") KB"
  "$timer" -v "$tool" filter --count --where 'count > 250' "$csv" > /dev/null 2> "$work/time" || true
  echo "idxbase filter --count: peak RSS $(awk -F': ' '/Maximum resident/ { print $2 }' "$work/time") KB"
else
  echo "/usr/bin/time not found: peak RSS not measured (apt-get install time)"
fi
exit $status
