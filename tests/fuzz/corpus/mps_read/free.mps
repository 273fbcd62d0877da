NAME SMALL
ROWS
 N cost
 L limit[seville,oslo]
COLUMNS
 ship[seville,oslo] cost 2 limit[seville,oslo] 1
 a_name_longer_than_eight cost 3
RHS
 rhs limit[seville,oslo] 4 cost -7
BOUNDS
 MI b a_name_longer_than_eight
 UP b a_name_longer_than_eight -1
ENDATA
