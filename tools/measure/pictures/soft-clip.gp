# The soft clip's curve and the harmonics that it makes.
eval "set terminal ".page (1200, 540)
set output picture
set multiplot layout 1,2 margins 0.065,0.98,0.14,0.93 spacing 0.08,0.1

set title "Transfer curve"
set xrange [-2.5:2.5]
set yrange [-1.1:1.1]
set xtics 0.5
set ytics 0.25
set xlabel "Input, full scale 1.0"
set ylabel "Output, full scale 1.0"
set key bottom right
plot x with lines lw 1 lc rgb plain dt (4,4) title "unchanged", \
     csv ("soft-clip") using "input":"output" with lines lw 2.2 lc rgb "#222222" title "soft clip", \
     for [mode in "gentle medium powerful"] csv ("plateau") \
         using (strcol ("mode") eq mode ? column ("held") : NaN):(0.9885 * sin (column ("held"))) \
         with points pt 7 ps 1.5 lc rgb value (mode) title name (mode).", settled peak"

# What is at the lowest level that is written is as low or lower.
shown (level) = level > -99.9 ? level : NaN

set title "Harmonics of a sine"
set xrange [-30:12]
set yrange [-100:0]
set xtics 6
set ytics 10
set xlabel "Peak at the clip's input in dB, 0 dB at full scale"
set ylabel "Level relative to the fundamental in dB"
set key top left
plot csv ("harmonics") using "peak_dbfs":(shown (column ("third_db"))) with lines lw 2.2 lc rgb "#222222" title "third", \
     "" using "peak_dbfs":(shown (column ("fifth_db"))) with lines lw 2 dt (8,4) lc rgb "#222222" title "fifth", \
     "" using "peak_dbfs":(shown (column ("seventh_db"))) with lines lw 2 dt (2,3) lc rgb "#222222" title "seventh", \
     for [mode in "gentle medium powerful"] csv ("plateau") \
         using (strcol ("mode") eq mode ? 20 * log10 (column ("held")) : NaN):(column ("clip_alone_third_db")) \
         with points pt 7 ps 1.5 lc rgb value (mode)
unset multiplot
