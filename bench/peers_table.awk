# Prints what zelm-bench measured beside other libraries: a line for each row, and the rows
# that miss their figure.
# Two equally fast calls differ by `noise`, and by more when their data is in no cache;
# that is allowed for where the figure to reach is equality, and nowhere else.
BEGIN { FS = ","; noise = 0.02; noise_in_memory = 0.05; in_memory_ns = 300000 }
/^#/ { print substr($0, 3); next }
$1 == "stage" {
  for (i = 1; i <= NF; ++i) column[$i] = i
  split("libyuv OpenCV swscale zimg", peers, " ")
  printf "\n%-36s %-21s %10s %7s %8s %8s %8s %8s %7s\n", "step", "size", "us", "memcpy",
         peers[1], peers[2], peers[3], peers[4], "target"
  next
}
function value(name) { return name in column ? $column[name] : "" }
# Microseconds, of short times more digits.
function microseconds(ns) { return sprintf(ns < 10000 ? "%.3f" : "%.1f", ns / 1000) }
function peer_cell(peer,  time, text) {
  time = value(tolower(peer) "_ns")
  if (time == "") return "-"
  text = sprintf("%.2f", time / value("ours_ns"))
  if (index(value("not_counted"), peer ":")) return "(" text ")"
  return peer == value("best_peer") ? "*" text : text
}
function least(target) {
  if (target > 1) return target
  return target - (value("memcpy_ns") < in_memory_ns ? noise : noise_in_memory)
}
{
  name = $1 " " $2
  roof = value("memcpy_ns") / value("ours_ns")
  printf "%-36s %-21s %10s %7.2f", $1, $2, microseconds(value("ours_ns")), roof
  for (i = 1; i <= 4; ++i) printf " %8s", peer_cell(peers[i])
  printf " %7s", value("target")
  own = value("own_ns")
  if (own != "") {
    printf "   %s: %.2f", value("own"), own / value("ours_ns")
    if (own / value("ours_ns") < value("own_target"))
      short[++shorts] = sprintf("%s: %.2f of %s instead of %.2f", name,
                                own / value("ours_ns"), value("own"), value("own_target"))
  }
  print ""
  ratio = value("ratio")
  if (ratio == "") next
  ++compared
  if (ratio < least(value("target")))
    missed[++misses] = sprintf("%s: %.2f instead of %.2f", name, ratio, value("target"))
  else if (value("memcpy_target") != "" && roof < value("memcpy_target"))
    missed[++misses] = sprintf("%s: %.2f of memcpy instead of %.2f", name, roof,
                               value("memcpy_target"))
}
END {
  if (shorts) {
    print "\nShort of the figures beside the library's own other ways:"
    for (n = 1; n <= shorts; ++n) print "  " short[n]
  }
  if (!compared) exit
  print "\nA peer's figure is its time divided by ours: above 1 the library is faster. The"
  print "fastest peer that is counted has a star; in brackets are peers that answer another"
  print "question. Column memcpy: the same for copying half of all bytes read and written.\n"
  printf "Figures reached: %d of %d rows.\n", compared - misses, compared
  for (m = 1; m <= misses; ++m) print "  " missed[m]
}
