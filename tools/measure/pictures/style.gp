# The look of all pictures: one colour a mode, units on every axis, a light grid, the typeface that the build installs.
# The caller has set data, the folder of the measurements, and width and height are set by each picture.
set datafile separator ","
set datafile columnheaders
set encoding utf8
set minussign

gentle = "#009E73"
medium = "#0072B2"
powerful = "#D55E00"
plain = "#777777"

# From light to the mode's own colour, for a family of curves of one mode.
array gentles[5] = ["#a8ddcd", "#6cc9ad", "#2fb08a", "#008c68", "#00573f"]
array mediums[5] = ["#a8cce4", "#6caed6", "#2f8ac4", "#0067a0", "#003f63"]
array powerfuls[5] = ["#f3c8aa", "#eaa06b", "#e07a30", "#c05400", "#7a3500"]

csv (name) = data . "/" . name . ".csv"
name (mode) = mode eq "gentle" ? "Gentle" : mode eq "medium" ? "Medium" : "Powerful"

set border 3 linecolor rgb "#555555" linewidth 0.8
set tics out nomirror scale 0.6 textcolor rgb "#333333"
set grid xtics ytics linetype 1 linecolor rgb "#e2e2e2" linewidth 0.8
set key noautotitle samplen 2.2 spacing 1.25 textcolor rgb "#222222"
set xlabel textcolor rgb "#222222"
set ylabel textcolor rgb "#222222"
set title textcolor rgb "#111111" offset 0,-0.4

page (w, h) = sprintf ("pngcairo size %d,%d font 'Liberation Sans,14' fontscale 1 linewidth 1.5 enhanced", w, h)

hertz = "set logscale x; set xtics ('20' 20, '50' 50, '100' 100, '200' 200, '500' 500, '1k' 1000, '2k' 2000, \
'5k' 5000, '10k' 10000, '20k' 20000); set xlabel 'Frequency in Hz'"
