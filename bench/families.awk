# Reads what zelm-bench measured beside other libraries and prints, separated by
# tabulators, a line for each family of rows and one for all of them: its name, the
# geometric means of the ratio to the fastest peer of each row, to libyuv, OpenCV, swscale
# and zimg as far as they are counted, and to memcpy; then the number of rows. NaN stands
# where nothing is compared.
BEGIN { FS = ","; split("libyuv OpenCV swscale zimg", peer, " ") }
/^#/ { next }
$1 == "stage" { for (i = 1; i <= NF; ++i) column[$i] = i; next }
function add(series, ratio) {
  sum[$3, series] += log(ratio); ++count[$3, series]
  sum["all", series] += log(ratio); ++count["all", series]
}
function mean(name, series) {
  return count[name, series] ? sprintf("%.3f", exp(sum[name, series] / count[name, series])) : "NaN"
}
{
  if (!($3 in seen)) { seen[$3]; family[++families] = $3 }
  ours = $column["ours_ns"]
  if ($column["ratio"] != "") add(1, $column["ratio"])
  for (i = 1; i <= 4; ++i) {
    time = $column[tolower(peer[i]) "_ns"]
    if (time != "" && !index($column["not_counted"], peer[i] ":")) add(i + 1, time / ours)
  }
  add(6, $column["memcpy_ns"] / ours)
}
END {
  family[++families] = "all"
  for (f = 1; f <= families; ++f) {
    line = family[f]
    for (i = 1; i <= 6; ++i) line = line "\t" mean(family[f], i)
    print line "\t" count[family[f], 6]
  }
}
