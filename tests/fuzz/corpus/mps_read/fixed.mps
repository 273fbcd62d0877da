NAME          SMALL
ROWS
 N  COST
 N  OTHER
 L  LIM 1
 G  LIM2
 E  MYEQN
 L  RNGL
 G  RNGG
 E  RNGE
COLUMNS
    X ONE     COST               1.5   LIM 1              1.0
    X ONE     LIM2               1.0   OTHER              9.0
    Y         COST               2.0   LIM 1              1.0
    Y         MYEQN             -1.0   RNGL               1.0
    Y         RNGG               1.0   RNGE               1.0
    M1        'MARKER'                 'INTORG'
    Z         COST              -1.0   MYEQN              1.0
    W         COST              -1.0   MYEQN              1.0
    M2        'MARKER'                 'INTEND'
    V         LIM2               1.0
    U         LIM2               1.0
RHS
    RHS       LIM 1              4.0   LIM2               1.0
    RHS       MYEQN              7.0   COST              10.0
    RHS       RNGL               9.0   RNGG               9.0
    RHS       RNGE               9.0
RANGES
    R         RNGL               2.5   RNGG               2.5
    R         RNGE              -2.0
BOUNDS
 UP BND       X ONE             -4.0
 LO BND       Y                 -1.0
 UP BND       Y                 1e30
 UP BND       W                 40.0
 FR BND       V
 FX BND       U                  2.5
ENDATA
