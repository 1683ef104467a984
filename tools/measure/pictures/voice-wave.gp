# The wave form of a voice before and after.
eval "set terminal ".page (1200, 800)
set output picture
set multiplot layout 4,1 margins 0.075,0.975,0.085,0.98 spacing 0.1,0.035
stats csv ("voice-wave") using "time_s" nooutput
set xrange [0:ceil (STATS_max)]
set yrange [-1.05:1.05]
set xtics 1 format ""
set ytics 0.5

do for [version in "input gentle medium powerful"] {
    if (version eq "powerful") { set xlabel "Time in s"; set xtics format "%g" }
    set ylabel (version eq "input" ? "Recording" : name (version))
    plot csv ("voice-wave") using "time_s":(column (version."_low")):(column (version."_high")) with filledcurves \
        fc rgb (version eq "input" ? plain : value (version))
}
unset multiplot
