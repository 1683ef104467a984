# What is left of the difference between left and right: through the fold alone, and over time through the whole chain.
eval "set terminal ".page (1200, 500)
set output picture
set multiplot layout 1,2 margins 0.06,0.98,0.15,0.92 spacing 0.075,0.1

set title "The fold alone (gains at rest)"
set xrange [0:30]
set yrange [0:15]
set xtics 5
set ytics 3
set xlabel "Left louder than right in the input, in dB"
set ylabel "Left louder than right in the output, in dB" offset 1,0
set key bottom right
plot x with lines lw 1 lc rgb plain dt (4,4) title "bypass", \
     csv ("image") using "input_db":"at_rest_db" with lines lw 2.2 lc rgb "#222222" title "fold"

set title "The whole: a tone of −20 dBFS begins, on the left only"
set xrange [0:150]
set yrange [-3:10]
set xtics 25
set ytics 2
set xlabel "Time in ms at 48 kHz"
set key top right
plot for [mode in "gentle medium powerful"] csv ("image-over-time") using "time_ms":(column (mode."_db")) \
    with lines lw 2 lc rgb value (mode) title name (mode)
unset multiplot
