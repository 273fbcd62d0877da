ROWS
 N o
COLUMNS
 a o 1
 m 'MARKER' 'INTORG'
 c o 1
 d o 1.5D+3
 m 'MARKER' 'INTEND'
BOUNDS
 UP B a -2
 LO B a 0
 SC B c 7
 SI d
 FR a
 BV B c
 LI B d 2
 UI c 9
 PL B a
 FX B a 3
 MI a
ENDATA
behind
