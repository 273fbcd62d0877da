* sets
ROWS
 N o
COLUMNS
 x o 1
 y o 1
 S1 o 1
RHS
SOS
 S1 SOS one
 SOS x 3
 SOS y 1
 S2 two 5
 x 1
 S1 2
ENDATA
