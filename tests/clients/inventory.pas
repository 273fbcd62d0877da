{ Stock of goods in rooms: a Pascal client with its native short strings. }
program inventory;

{$mode objfpc}{$H-}
{$ifdef unix}{$linklib c}{$endif}

const
  Ztb = 'ztbcclib64';
  SetType = 0;
  ParameterType = 1;
  VariableType = 2;
  InfoName = 0;
  InfoRecordCount = 3;

type
  Keys = array[0..19] of ShortString;
  Domains = array[0..19] of Pointer;
  Five = array[0..4] of Double;

procedure d__xcreated(var db: Pointer; constref folder: ShortString); cdecl; external Ztb;
procedure xfree(var db: Pointer); cdecl; external Ztb;
function d__xapiversion(api: LongInt; out msg: ShortString; out compatibility: LongInt): LongInt;
  cdecl; external Ztb;
function d__ztbgetlasterror(db: Pointer; out msg: ShortString): LongInt; cdecl; external Ztb;
function d__ztbmergeuel(db: Pointer; constref text: ShortString; out number: LongInt): LongInt;
  cdecl; external Ztb;
function d__ztbgetuelbyindex(db: Pointer; number: LongInt; out text: ShortString): LongInt;
  cdecl; external Ztb;
function d__ztbaddsymbol(db: Pointer; constref name: ShortString; dim, kind, userInfo: LongInt;
  constref text: ShortString; out symbol: Pointer): LongInt; cdecl; external Ztb;
function d__ztbaddsymbolx(db: Pointer; constref name: ShortString; dim, kind, userInfo: LongInt;
  constref text: ShortString; constref domain: Domains; constref domainNames: Keys;
  out symbol: Pointer): LongInt; cdecl; external Ztb;
function d__ztbfindsymbol(db: Pointer; constref name: ShortString; out symbol: Pointer): LongInt;
  cdecl; external Ztb;
function d__ztbfindsymbolpy(db: Pointer; constref name: ShortString; out status: LongInt): Pointer;
  cdecl; external Ztb;
function d__ztbsymbolinfo(db, symbol: Pointer; key: LongInt; out ival: LongInt; dval: Pointer;
  out sval: ShortString): LongInt; cdecl; external Ztb;
function d__ztbgetdomain(db, symbol: Pointer; dim: LongInt; out domain: Domains;
  out names: Keys): LongInt; cdecl; external Ztb;
function d__ztbmergerecord(db, symbol: Pointer; constref labels: Keys;
  out rec: Pointer): LongInt; cdecl; external Ztb;
function d__ztbaddrecord(db, symbol: Pointer; constref labels: Keys; out rec: Pointer): LongInt;
  cdecl; external Ztb;
function d__ztbfindrecord(db, symbol: Pointer; constref labels: Keys; out rec: Pointer): LongInt;
  cdecl; external Ztb;
function d__ztbfindfirstrecordslice(db, symbol: Pointer; constref labels: Keys;
  out rec: Pointer): LongInt; cdecl; external Ztb;
function d__ztbgetkeys(db, rec: Pointer; dim: LongInt; out labels: Keys): LongInt;
  cdecl; external Ztb;
function d__ztbgetkey(db, rec: Pointer; index: LongInt; out text: ShortString): LongInt;
  cdecl; external Ztb;
function d__ztbgetelemtext(db, rec: Pointer; out text: ShortString): LongInt; cdecl; external Ztb;
function d__ztbsetelemtext(db, rec: Pointer; constref text: ShortString): LongInt;
  cdecl; external Ztb;
function d__ztbwriterxf(db: Pointer; constref name: ShortString; noCheck: LongInt): LongInt;
  cdecl; external Ztb;
function d__ztbinitfromrxf(db: Pointer; constref name: ShortString): LongInt;
  cdecl; external Ztb;
function c__ztbcloserxf(db: Pointer; loadRemain: LongInt): LongInt; cdecl; external Ztb;
function c__ztbfindfirstrecord(db, symbol: Pointer; out rec: Pointer): LongInt;
  cdecl; external Ztb;
function c__ztbrecordmovenext(db, rec: Pointer): LongInt; cdecl; external Ztb;
function c__ztbsetlevel(db, rec: Pointer; value: Double): LongInt; cdecl; external Ztb;
function c__ztbgetlevel(db, rec: Pointer; out value: Double): LongInt; cdecl; external Ztb;
function c__ztbgetupper(db, rec: Pointer; out value: Double): LongInt; cdecl; external Ztb;
function c__ztbfreesymboliterator(db, rec: Pointer): LongInt; cdecl; external Ztb;
function c__ztbsetspecialvalues(db: Pointer; constref values: Five): LongInt;
  cdecl; external Ztb;

var
  db: Pointer = nil;

function lastError: ShortString;
begin
  d__ztbgetlasterror(db, Result);
end;

procedure must(result: LongInt; const what: ShortString);
begin
  if result = 0 then
  begin
    WriteLn('failed: ', what, ': ', lastError);
    Halt(1);
  end;
end;

function pair(const first, second: ShortString): Keys;
begin
  FillChar(Result, SizeOf(Result), 0);
  Result[0] := first;
  Result[1] := second;
end;

procedure build;
var
  goods, stock, planned, rec: Pointer;
  over: Domains;
  names: Keys;

  procedure addGood(const name, text: ShortString);
  begin
    must(d__ztbaddrecord(db, goods, pair(name, ''), rec), 'add ' + name);
    must(d__ztbsetelemtext(db, rec, text), 'text of ' + name);
    must(c__ztbfreesymboliterator(db, rec), 'free');
  end;

  procedure addStock(const good, room: ShortString; amount: Double);
  begin
    must(d__ztbmergerecord(db, stock, pair(good, room), rec), 'merge ' + good);
    must(c__ztbsetlevel(db, rec, amount), 'level');
    must(c__ztbfreesymboliterator(db, rec), 'free');
  end;

begin
  must(d__ztbaddsymbol(db, 'goods', 1, SetType, 0, 'what is kept', goods), 'goods');
  addGood('Corn flour', 'milled here');
  addGood('6" nails', 'by the box');
  addGood('rope', '');
  FillChar(over, SizeOf(over), 0);
  over[0] := goods;
  names := pair('', 'rooms');
  must(d__ztbaddsymbolx(db, 'stock', 2, ParameterType, 0, 'units', over, names, stock), 'stock');
  addStock('rope', 'cellar', 12);
  addStock('CORN FLOUR', 'attic', 3.5);
  addStock('Corn flour', 'cellar', 40.25);
  addStock('6" nails', 'attic', 7);
  must(d__ztbaddsymbol(db, 'planned', 1, VariableType, 1, '', planned), 'planned');
  must(d__ztbaddrecord(db, planned, pair('rope', ''), rec), 'planned rope');
  must(c__ztbfreesymboliterator(db, rec), 'free');
end;

procedure printSlice(const good, room: ShortString);
var
  stock, rec: Pointer;
  labels: Keys;
  amount: Double;
begin
  must(d__ztbfindsymbol(db, 'STOCK', stock), 'find stock');
  if d__ztbfindfirstrecordslice(db, stock, pair(good, room), rec) = 0 then
  begin
    WriteLn('  nothing: ', lastError);
    Exit;
  end;
  repeat
    must(d__ztbgetkeys(db, rec, 2, labels), 'keys');
    must(c__ztbgetlevel(db, rec, amount), 'level');
    WriteLn('  ', labels[0], ', ', labels[1], ': ', amount:0:2);
  until c__ztbrecordmovenext(db, rec) = 0;
  WriteLn('  ', lastError);
  must(c__ztbfreesymboliterator(db, rec), 'free');
end;

procedure printGoods;
var
  status: LongInt;
  goods, rec: Pointer;
  name, text: ShortString;
begin
  goods := d__ztbfindsymbolpy(db, 'goods', status);
  must(status, 'find goods');
  must(c__ztbfindfirstrecord(db, goods, rec), 'first');
  repeat
    must(d__ztbgetkey(db, rec, 0, name), 'key');
    must(d__ztbgetelemtext(db, rec, text), 'text');
    WriteLn('  ', name, ': ', Length(text), ' "', text, '"');
  until c__ztbrecordmovenext(db, rec) = 0;
  must(c__ztbfreesymboliterator(db, rec), 'free');
end;

procedure printDomain;
var
  stock: Pointer;
  over: Domains;
  names: Keys;
  count, unused: LongInt;
  name: ShortString;
begin
  must(d__ztbfindsymbol(db, 'stock', stock), 'find stock');
  must(d__ztbgetdomain(db, stock, 2, over, names), 'domain');
  must(d__ztbsymbolinfo(db, stock, InfoRecordCount, count, nil, name), 'count');
  must(d__ztbsymbolinfo(db, over[0], InfoName, unused, nil, name), 'name');
  WriteLn('  ', count, ' records over ', names[0], ' (', name, ') and ', names[1],
    ' (known by name only: ', over[1] = nil, ')');
end;

procedure provokeFailures;
var
  stock, rec: Pointer;
  number: LongInt;
  text: ShortString;
begin
  must(d__ztbfindsymbol(db, 'stock', stock), 'find stock');
  WriteLn('  ', d__ztbfindrecord(db, stock, pair('rope', 'attic'), rec), ' ', lastError);
  WriteLn('  ', d__ztbmergeuel(db, '6" isn''t', number), ' ', lastError);
  WriteLn('  ', d__ztbgetuelbyindex(db, 99, text), ' ', lastError);
  WriteLn('  ', d__ztbaddsymbol(db, 'room 1', 1, SetType, 0, '', rec), ' ', lastError);
end;

procedure printPlan(const notAvailable: Double; change: Boolean);
var
  planned, rec: Pointer;
  spelling: Five;
  level, upper: Double;
begin
  spelling[0] := -1;
  spelling[1] := notAvailable;
  spelling[2] := 999999;
  spelling[3] := -999999;
  spelling[4] := -5;
  must(c__ztbsetspecialvalues(db, spelling), 'special values');
  must(d__ztbfindsymbol(db, 'planned', planned), 'find planned');
  must(d__ztbfindrecord(db, planned, pair('rope', ''), rec), 'find rope');
  if change then
    must(c__ztbsetlevel(db, rec, notAvailable), 'set level');
  must(c__ztbgetlevel(db, rec, level), 'level');
  must(c__ztbgetupper(db, rec, upper), 'upper');
  WriteLn('  level ', level:0:0, ', upper ', upper:0:0);
  must(c__ztbfreesymboliterator(db, rec), 'free');
end;

var
  compatibility: LongInt;
  message: ShortString;

begin
  must(d__xapiversion(4, message, compatibility), 'version');
  WriteLn('version: ', compatibility, ' ', message);
  d__xcreated(db, '');
  build;
  WriteLn('everything:');
  printSlice(' ', ' ');
  WriteLn('in the attic:');
  printSlice(' ', 'ATTIC');
  WriteLn('nails in the cellar:');
  printSlice('6" nails', 'cellar');
  WriteLn('failures:');
  provokeFailures;
  WriteLn('not available:');
  printPlan(-2, true);
  must(d__ztbwriterxf(db, ParamStr(1), 0), 'write');
  xfree(db);

  d__xcreated(db, '');
  must(d__ztbinitfromrxf(db, ParamStr(1)), 'open');
  WriteLn('read back:');
  printGoods;
  printDomain;
  must(c__ztbcloserxf(db, 1), 'close');
  WriteLn('flour:');
  printSlice('corn flour', ' ');
  WriteLn('not available, in another spelling:');
  printPlan(-77, false);
  xfree(db);
  WriteLn('freed: ', db = nil);
end.
