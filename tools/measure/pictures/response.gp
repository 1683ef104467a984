# The whole chain over frequency, gains at rest.
eval "set terminal ".page (1200, 560)
set output picture
eval hertz
set xtics ("30" 30, "50" 50, "100" 100, "200" 200, "500" 500, "1k" 1000, "2k" 2000, "5k" 5000, "10k" 10000, "20k" 20000)
set xrange [30:20000]
set yrange [-30:15]
set ytics 6
set ylabel "Gain in dB, 0 dB at 1 kHz"
set key bottom right
below (frequency) = frequency < 1000 ? frequency : NaN

# Above 1 kHz Medium and Powerful lie on each other, so one shows the other through.
plot csv ("response") using "frequency_hz":"gentle_48000_db" with lines lw 2 lc rgb gentle title "Gentle", \
     "" using (below (column ("frequency_hz"))):"medium_48000_db" with lines lw 2 lc rgb medium title "Medium", \
     "" using "frequency_hz":"powerful_48000_db" with lines lw 2 lc rgb powerful title "Powerful", \
     "" using "frequency_hz":"medium_48000_db" with lines lw 2 dt (8,8) lc rgb medium
