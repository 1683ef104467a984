# Output level by input level of a tone, settled.
eval "set terminal ".page (1200, 720)
set output picture
set xrange [-90:0]
set yrange [-90:0]
set xtics 10
set ytics 10
set xlabel "Input level of a 997 Hz tone in dBFS"
set ylabel "Output level in dBFS"
set key bottom right
set label "expander closed" at -78,-50 rotate by 33 textcolor rgb plain
set label "expander open" at -50.5,-14.5 rotate by 33 textcolor rgb plain
set label "leveller holds" at -22,-6.5 textcolor rgb plain

plot x with lines lw 1 lc rgb plain dt (4,4) title "bypass", \
     for [mode in "gentle medium powerful"] csv ("static-level") \
         using "input_dbfs":(column (mode."_rising_dbfs")) with lines lw 2.2 lc rgb value (mode) title name (mode), \
     NaN with lines lw 2 lc rgb "#444444" title "level rising", \
     for [mode in "gentle medium powerful"] csv ("static-level") \
         using "input_dbfs":(column (mode."_falling_dbfs")) with lines lw 2 dt (6,3) lc rgb value (mode), \
     NaN with lines lw 2 dt (6,3) lc rgb "#444444" title "level falling"
