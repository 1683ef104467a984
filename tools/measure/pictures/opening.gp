# How long the expander takes to open, by the level of what opens it.
eval "set terminal ".page (1200, 520)
set output picture
set xrange [-60:0]
set xtics 6
set logscale y
set yrange [0.5:2000]
set ytics ("0.5" 0.5, "1" 1, "2" 2, "5" 5, "10" 10, "20" 20, "50" 50, "100" 100, "200" 200, "500" 500, "1000" 1000, "2000" 2000)
set xlabel "Peak level of a 1 kHz tone out of silence in dBFS"
set ylabel "Time to open in ms at 48 kHz"
set key top right

plot for [mode in "gentle medium powerful"] csv ("opening") \
         using "level_dbfs":(column (mode."_stage_frames") / 48) with lines lw 2 lc rgb value (mode) title name (mode), \
     for [mode in "gentle medium powerful"] csv ("opening") \
         using "level_dbfs":(column (mode."_library_frames") / 48) with points pt 6 ps 1.1 lw 1.4 lc rgb value (mode), \
     NaN with points pt 6 ps 1.1 lw 1.4 lc rgb plain title "the built library, where its leveller is at rest"
