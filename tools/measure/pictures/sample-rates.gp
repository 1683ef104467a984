# The same response at three sample rates; only the treble differs.
eval "set terminal ".page (1200, 470)
set output picture
set multiplot layout 1,3 margins 0.06,0.985,0.155,0.91 spacing 0.035,0.1
eval hertz
set xrange [1000:20000]
set yrange [-1:13]
set ytics 2
set key top left reverse Left title "Sample rate"
set ylabel "Gain in dB, 0 dB at 1 kHz" offset 1,0

do for [mode in "gentle medium powerful"] {
    set title name (mode)
    plot csv ("response") using "frequency_hz":(column (mode."_44100_db")) \
             with lines lw 2 lc rgb value (mode."s")[2] title "44.1 kHz", \
         "" using "frequency_hz":(column (mode."_48000_db")) \
             with lines lw 2 lc rgb value (mode) title "48 kHz", \
         "" using "frequency_hz":(column (mode."_96000_db")) \
             with lines lw 2 dt (8,5) lc rgb value (mode."s")[5] title "96 kHz"
    unset ylabel
}

unset multiplot
