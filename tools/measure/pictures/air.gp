# What the air term lifts, by the level of what it lifts.
eval "set terminal ".page (1200, 470)
set output picture
set multiplot layout 1,3 margins 0.06,0.985,0.155,0.91 spacing 0.035,0.1
eval hertz
set xrange [500:20000]
set yrange [-1:13]
set ytics 2
set key top left reverse Left title "Level of the tone"
set ylabel "Gain in dB, 0 dB at 1 kHz" offset 1,0

do for [mode in "gentle medium powerful"] {
    set title name (mode)
    plot for [i = 1:5] csv ("air") using "frequency_hz":(column (mode."_at_-".word ("54 42 30 18 6", i)."_db")) \
        with lines lw 2.2 lc rgb value (mode."s")[i] title "−".word ("54 42 30 18 6", i)." dBFS", \
        csv ("air") every 4 using "frequency_hz":(column (mode."_library_at_-54_db")) \
        with points pt 6 ps 0.9 lw 1.2 lc rgb value (mode."s")[3] title "−54 dBFS, library"
    unset ylabel
}

unset multiplot
