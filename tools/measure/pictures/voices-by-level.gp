# What the level ahead of the plug-in does to voices in a room.
eval "set terminal ".page (1200, 760)
set output picture
set multiplot layout 2,3 margins 0.075,0.985,0.095,0.94 spacing 0.03,0.07
voices = "announcer commander player reader operator"
set xrange [-36:-6]
set xtics 6
set mxtics 2

do for [row = 1:2] {
    figure = row == 1 ? "distance_lu" : "loudness_lufs"
    set ylabel (row == 1 ? "Room further away, in LU" : "Loudness in LUFS")
    set ytics 5 format "%g"
    if (row == 1) { set yrange [-15:10]; set xtics format ""; set xzeroaxis linetype 1 linecolor rgb "#777777" linewidth 1.2 } \
    else { set yrange [-45:-15]; set xtics format "%g"; set xlabel "Peak of the voice in dBFS"; unset xzeroaxis }

    do for [mode in "gentle medium powerful"] {
        if (row == 1) { set title name (mode) } else { unset title }
        if (row == 2 && mode eq "gentle") { set key bottom right } else { unset key }
        plot for [i = 1:5] csv ("voices-by-level") using "peak_dbfs":(column (mode."_".word (voices, i)."_".figure)) \
            with linespoints pt 7 ps 0.5 lw 1.8 lc rgb value (mode."s")[i] title word (voices, i)
        unset ylabel
        set ytics format ""
    }
}
unset multiplot
