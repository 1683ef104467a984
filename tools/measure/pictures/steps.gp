# A word's beginning, a softer phrase and the silence behind it.
eval "set terminal ".page (1200, 900)
set output picture
set multiplot layout 2,1 margins 0.075,0.975,0.085,0.95 spacing 0.1,0.15
set ylabel "Level in dBFS"
set yrange [-75:3]
set ytics 10

set title "The beginning of the tone"
set xrange [-10:60]
set xtics 10
set xlabel "Time from the beginning of the tone in ms"
set key bottom right
plot csv ("steps") using "time_ms":"input_dbfs" with lines lw 1.4 dt (5,4) lc rgb plain title "input", \
     for [mode in "gentle medium powerful"] csv ("steps") using "time_ms":(column (mode."_dbfs")) \
     with lines lw 2 lc rgb value (mode) title name (mode)

set title "The whole: a tone at −70, −18, −36 and again −70 dBFS"
set xrange [-50:2800]
set xtics 200
set xlabel "Time in ms"
unset key
plot csv ("steps") using "time_ms":"input_dbfs" with lines lw 1.4 dt (5,4) lc rgb plain, \
     for [mode in "gentle medium powerful"] csv ("steps") using "time_ms":(column (mode."_dbfs")) \
     with lines lw 2 lc rgb value (mode)
unset multiplot
