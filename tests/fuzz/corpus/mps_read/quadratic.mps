OBJSENSE MAX
OBJNAME
 o
ROWS
 N n
 N o
 L r
 E e
COLUMNS
 x o 1 r 1
 y r 1 $ remark
 x e 2
RHS
 A r 4 o -3
 B r 5
RANGES
 e -3 r 2
QUADOBJ
 x x 6
 x y 2
QMATRIX
 y y 1
QCMATRIX r
 x x 1
ENDATA
