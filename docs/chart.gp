# Draws one chart, for docs/charts.sh: a row for each line of `data`, from top to bottom,
# with a bar or a point for each series, on a logarithmic scale. `series` holds their names,
# each with a bar behind it; `first` is bars or points. The background is a colour of its
# own, because pages that show the chart may be dark.
series_count = words(system(sprintf("echo '%s' | tr ' |' '_ '", series)))
name(i) = system(sprintf("echo '%s' | cut -d '|' -f %d", series, i))
bars = first eq 'bars'
stats data using 0 nooutput
rows = STATS_records
legend_columns = bars ? 5 : 3
legend_rows = (series_count + legend_columns - 1) / legend_columns
top = 48 + 26 * legend_rows
bottom = 66
height = 30 * rows + top + bottom

set terminal svg size 800, height enhanced font 'sans-serif,17' background '#fbfbf8' rounded
set output output
set datafile separator "\t"
set lmargin at screen 0.215
set rmargin at screen bars ? 0.9 : 0.97
set tmargin at screen 1 - real(top) / height
set bmargin at screen real(bottom) / height
set logscale x 2
set yrange [rows - 0.4 : -0.6]
set ytics scale 0
set grid xtics linetype 1 linecolor rgb '#d8d8d0' linewidth 1
set border 1 linecolor rgb '#444444'
set xtics nomirror out scale 0.4 ('0.5' 0.5, '1' 1, '2' 2, '4' 4, '8' 8, '16' 16, '32' 32, '64' 64)
set arrow from 1, graph 0 to 1, graph 1 nohead linewidth 2.5 linecolor rgb '#222222' back
unset key

array colours[6] = ['#1f6fb4', '#d0661a', '#2d8a4e', '#a03a8c', '#8a6d1f', '#c23b3b']
array shapes[6] = [7, 5, 9, 13, 11, 15]
array starts[5] = [0.03, 0.38, 0.53, 0.70, 0.88]  # of the legend beside bars
if (bars) { shapes[1] = 5; colours[1] = '#a9c8e4' }
down(pixels) = 1 - real(pixels) / height
set label chart_title at screen 0.5, down(22) center font ',19'
set label axis at screen 0.55, down(height - 14) center
do for [i = 1 : series_count] {
  x = bars ? starts[i] : 0.04 + 0.33 * ((i - 1) % legend_columns)
  y = down(52 + 26 * int((i - 1) / legend_columns))
  set label name(i) at screen x, y point pointtype shapes[i] pointsize (bars && i == 1 ? 1.8 : 1.1) \
    linecolor rgb colours[i] offset 1.2, -0.15
}

if (bars) {  # their lengths beside them
  do for [i = 1 : rows] {
    set label system(sprintf("awk -F '\\t' 'NR == %d { printf \"%%.2f\", $2 }' '%s'", i, data)) \
      at graph 1.015, first i - 1 textcolor rgb '#1b4f80'
  }
  set style fill solid 1 noborder
  half = 0.34
  plot data using (column(2)):0:(1):2:($0 - half):($0 + half):ytic(1) \
         with boxxyerror linecolor rgb colours[1], \
       for [i = 2 : series_count] data using (column(i + 1)):0 with points \
         pointtype shapes[i] pointsize 1.1 linecolor rgb colours[i]
} else {
  plot for [i = 1 : series_count] data using (column(i + 1)):0:ytic(1) with points \
         pointtype shapes[i] pointsize 1.1 linecolor rgb colours[i]
}
