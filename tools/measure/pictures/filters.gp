# The three filters alone, as designed at 48 kHz.
eval "set terminal ".page (1200, 440)
set output picture
set multiplot layout 1,3 margins 0.06,0.985,0.17,0.91 spacing 0.055,0.1
eval hertz
set xtics ("20" 20, "50" 50, "100" 100, "200" 200, "500" 500, "1k" 1000)

set title "High-pass"
set xrange [20:1000]
set yrange [-36:4]
set ytics 6
set ylabel "Gain in dB" offset 1,0
set key bottom right
plot for [mode in "gentle medium powerful"] csv ("filters") using "frequency_hz":(column (mode."_high_pass_db")) \
    with lines lw 2 lc rgb value (mode) title name (mode)
unset key
unset ylabel

set title "Body filter"
set xrange [20:2000]
set yrange [-0.5:4]
set ytics 1
set xtics add ("2k" 2000)
plot for [mode in "gentle medium powerful"] csv ("filters") using "frequency_hz":(column (mode."_body_db")) \
    with lines lw 2 lc rgb value (mode)

set title "Air filter (Medium as Powerful)"
set xrange [500:20000]
set yrange [-1:14]
set ytics 2
set xtics ("500" 500, "1k" 1000, "2k" 2000, "5k" 5000, "10k" 10000, "20k" 20000)
plot csv ("filters") using "frequency_hz":"gentle_air_db" with lines lw 2 lc rgb gentle, \
     "" using "frequency_hz":"powerful_air_db" with lines lw 3.4 lc rgb powerful, \
     "" using "frequency_hz":"medium_air_db" with lines lw 2 lc rgb medium dt (6,6)
unset multiplot
