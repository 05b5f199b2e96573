# Prints what zelm-bench measured with one instruction set after the other: a line for
# each row and the geometric mean of the gain over plain code. A row is marked where a
# set takes longer, by more than `noise`, than one that holds fewer instructions. With
# -v marked=1 only the names of marked rows are printed.
BEGIN { FS = ","; noise = 0.05 }
/^#/ { if (!marked) print substr($0, 3); next }
$1 == "stage" {
  last = NF
  for (i = 4; i <= last; ++i) { set[i] = $i; sub(/_ns$/, "", set[i]) }
  if (marked) next
  printf "\n%-36s %-21s", "step", "size"
  for (i = 4; i <= last; ++i) printf " %9s", set[i]
  print "  (us)"
  next
}
{
  mark = ""
  fastest = 4
  for (i = 4; i <= last; ++i) {
    gain[i] += log($4 / $i)
    if ($i > (1 + noise) * $fastest)
      mark = mark sprintf("  %s takes %.2f of %s", set[i], $i / $fastest, set[fastest])
    if ($i < $fastest) fastest = i
  }
  ++rows
  if (marked) {
    if (mark != "") print $1 " " $2
    next
  }
  printf "%-36s %-21s", $1, $2
  for (i = 4; i <= last; ++i) printf $i < 10000 ? " %9.3f" : " %9.1f", $i / 1000
  print mark
}
END {
  if (!rows || marked) exit
  printf "%-58s", "geometric mean of the gain"
  for (i = 4; i <= last; ++i) printf " %9.2f", exp(gain[i] / rows)
  print ""
}
