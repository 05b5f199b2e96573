# Prints what zelm-count counted: a line for each row, in thousands of instructions, and
# for each family the geometric mean of our instructions divided by libyuv's.
BEGIN { FS = "," }
/^#/ { print substr($0, 3); next }
$1 == "stage" {
  printf "\n%-20s %-21s %10s %9s %6s %10s %9s %6s\n", "step", "size", "32-bit", "libyuv",
         "ratio", "AArch64", "libyuv", "ratio"
  next
}
function part(target, ours, peer,  ratio) {
  if (peer == "") return sprintf("%10.1f %9s %6s", ours / 1000, "-", "-")
  ratio = sprintf("%.2f", ours / peer)
  if ($8 != "") ratio = "(" ratio ")"
  else { sum[$3, target] += log(ours / peer); ++count[$3, target] }
  return sprintf("%10.1f %9.1f %6s", ours / 1000, peer / 1000, ratio)
}
{
  if (!($3 in seen)) { seen[$3]; family[++families] = $3 }
  print sprintf("%-20s %-21s", $1, $2), part(1, $4, $5), part(2, $6, $7)
}
END {
  print "\nInstructions of libyuv's, geometric mean      32-bit  AArch64"
  for (f = 1; f <= families; ++f) {
    name = family[f]
    if (count[name, 1])
      printf "  %-42s %7.2f  %7.2f\n", name, exp(sum[name, 1] / count[name, 1]),
             exp(sum[name, 2] / count[name, 2])
  }
}
