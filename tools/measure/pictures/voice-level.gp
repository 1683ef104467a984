# The level of a voice before and after.
eval "set terminal ".page (1200, 800)
set output picture
set multiplot layout 3,1 margins 0.075,0.975,0.085,0.95 spacing 0.1,0.04
stats csv ("voice-level") using "time_s" nooutput
set xrange [0:ceil (STATS_max)]
set yrange [-60:3]
set xtics 1 format ""
set ytics 10
set key top right horizontal at graph 1,1.13

do for [mode in "gentle medium powerful"] {
    if (mode eq "powerful") { set xlabel "Time in s"; set xtics format "%g" }
    set ylabel name (mode).", level in dBFS"
    plot csv ("voice-level") using "time_s":"input_dbfs" with lines lw 1.2 lc rgb "#8a8a8a" \
             title (mode eq "gentle" ? "the recording" : ""), \
         "" using "time_s":(column (mode."_dbfs")) with lines lw 1.8 lc rgb value (mode)
}
unset multiplot
