# Prints what zelm-bench measured with one instruction set after the other: a line for
# each row and the geometric mean of the gain over plain code. A row is marked where a
# set takes longer, by more than `noise`, than one that holds fewer instructions.
BEGIN { FS = ","; noise = 0.05 }
/^#/ { print substr($0, 3); next }
$1 == "stage" {
  printf "\n%-36s %-21s", "step", "size"
  for (i = 4; i <= NF; ++i) {
    set[i] = $i
    sub(/_ns$/, "", set[i])
    printf " %9s", set[i]
  }
  print "  (us)"
  last = NF
  next
}
{
  printf "%-36s %-21s", $1, $2
  mark = ""
  fastest = 4
  for (i = 4; i <= last; ++i) {
    printf " %9.1f", $i / 1000
    gain[i] += log($4 / $i)
    if ($i > (1 + noise) * $fastest)
      mark = mark sprintf("  %s takes %.2f of %s", set[i], $i / $fastest, set[fastest])
    if ($i < $fastest) fastest = i
  }
  print mark
  if (mark != "") marked[++marks] = $1 " " $2 ":" mark
  ++rows
}
END {
  if (!rows) exit
  printf "%-58s", "geometric mean of the gain"
  for (i = 4; i <= last; ++i) printf " %9.2f", exp(gain[i] / rows)
  printf "\n\nSlower with more instructions: %d of %d rows.\n", marks, rows
  for (m = 1; m <= marks; ++m) print "  " marked[m]
}
