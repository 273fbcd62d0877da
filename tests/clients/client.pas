{ A Pascal client on the d__ names, whose strings are Pascal's own short strings: makes a database,
  reads it, writes a file, opens it again.

    client_pascal FILE.rxf }
program client_pascal;

{$mode objfpc}{$H-}
{$linklib ztbcclib64}

type
  TShort = string[255];
  TKeys = array[1..20] of TShort;
  TDomains = array[1..20] of Pointer;

const
  SetType = 0;
  ParameterType = 1;
  InfoUelCount = 1;
  SymbolInfoText = 5;

procedure xcreate(var ztb: Pointer); cdecl; external;
function ztbfree(var ztb: Pointer): LongInt; cdecl; external;
function d__ztbaddsymbol(ztb: Pointer; const name: TShort; dim, typ, userInfo: LongInt;
  const text: TShort; var sym: Pointer): LongInt; cdecl; external;
function d__ztbaddsymbolx(ztb: Pointer; const name: TShort; dim, typ, userInfo: LongInt;
  const text: TShort; const domains: TDomains; const names: TKeys; var sym: Pointer): LongInt;
  cdecl; external;
function d__ztbfindsymbol(ztb: Pointer; const name: TShort; var sym: Pointer): LongInt;
  cdecl; external;
function d__ztbaddrecord(ztb, sym: Pointer; const keys: TKeys; var rec: Pointer): LongInt;
  cdecl; external;
function d__ztbfindrecord(ztb, sym: Pointer; const keys: TKeys; var rec: Pointer): LongInt;
  cdecl; external;
function d__ztbgetkeys(ztb, rec: Pointer; dim: LongInt; var keys: TKeys): LongInt; cdecl; external;
function d__ztbgetdomain(ztb, sym: Pointer; dim: LongInt; var domains: TDomains;
  var names: TKeys): LongInt; cdecl; external;
function d__ztbsymbolinfo(ztb, sym: Pointer; key: LongInt; ival: PLongInt; dval: PDouble;
  var sval: TShort): LongInt; cdecl; external;
function d__ztbgetlasterror(ztb: Pointer; var msg: TShort): LongInt; cdecl; external;
function d__ztbwriterxf(ztb: Pointer; const name: TShort; noDomainCheck: LongInt): LongInt;
  cdecl; external;
function d__ztbinitfromrxf(ztb: Pointer; const name: TShort): LongInt; cdecl; external;
function c__ztbinfo(ztb: Pointer; key: LongInt; var ival: LongInt; dval: PDouble;
  sval: PChar): LongInt; cdecl; external;
function c__ztbsetlevel(ztb, rec: Pointer; value: Double): LongInt; cdecl; external;
function c__ztbgetlevel(ztb, rec: Pointer; var value: Double): LongInt; cdecl; external;
function c__ztbfindfirstrecord(ztb, sym: Pointer; var rec: Pointer): LongInt; cdecl; external;
function c__ztbrecordmovenext(ztb, rec: Pointer): LongInt; cdecl; external;
function c__ztbfreesymboliterator(ztb, rec: Pointer): LongInt; cdecl; external;

var
  db: Pointer;

procedure addElement(const symbol, labelText: TShort);
var
  sym, rec: Pointer;
  keys: TKeys;
begin
  d__ztbfindsymbol(db, symbol, sym);
  keys[1] := labelText;
  d__ztbaddrecord(db, sym, keys, rec);
  c__ztbfreesymboliterator(db, rec);
end;

procedure addShipment(ship: Pointer; const plant, market: TShort; amount: Double);
var
  rec: Pointer;
  keys: TKeys;
begin
  keys[1] := plant;
  keys[2] := market;
  d__ztbaddrecord(db, ship, keys, rec);
  c__ztbsetlevel(db, rec, amount);
  c__ztbfreesymboliterator(db, rec);
end;

procedure build;
var
  ship: Pointer;
  domains: TDomains;
  names: TKeys;
begin
  d__ztbaddsymbol(db, 'plant', 1, SetType, 0, '', domains[1]);
  d__ztbaddsymbol(db, 'market', 1, SetType, 0, '', domains[2]);
  addElement('plant', 'seattle');
  addElement('plant', 'san-diego');
  addElement('market', 'new-york');
  addElement('market', 'chicago');
  names[1] := '';
  names[2] := '';
  d__ztbaddsymbolx(db, 'ship', 2, ParameterType, 0, 'Cases shipped', domains, names, ship);
  addShipment(ship, 'san-diego', 'new-york', 275);
  addShipment(ship, 'seattle', 'chicago', 300);
  addShipment(ship, 'seattle', 'new-york', 50);
end;

procedure print;
var
  ship, rec: Pointer;
  domains: TDomains;
  keys: TKeys;
  text: TShort;
  count: LongInt;
  level: Double;
begin
  c__ztbinfo(db, InfoUelCount, count, nil, nil);
  WriteLn('labels ', count);
  d__ztbfindsymbol(db, 'SHIP', ship);
  d__ztbsymbolinfo(db, ship, SymbolInfoText, nil, nil, text);
  WriteLn('text ', text);
  d__ztbgetdomain(db, ship, 2, domains, keys);
  WriteLn('domain ', keys[1], ' ', keys[2]);
  if c__ztbfindfirstrecord(db, ship, rec) <> 0 then
  begin
    repeat
      d__ztbgetkeys(db, rec, 2, keys);
      c__ztbgetlevel(db, rec, level);
      WriteLn(keys[1], ' ', keys[2], ' ', level:0:0);
    until c__ztbrecordmovenext(db, rec) = 0;
    c__ztbfreesymboliterator(db, rec);
  end;
  keys[1] := 'nowhere';
  keys[2] := 'chicago';
  d__ztbfindrecord(db, ship, keys, rec);
  d__ztbgetlasterror(db, text);
  WriteLn('error ', text);
end;

begin
  if ParamCount <> 1 then
  begin
    WriteLn(StdErr, 'usage: client_pascal FILE.rxf');
    Halt(2);
  end;
  db := nil;
  xcreate(db);
  build;
  print;
  WriteLn('written ', d__ztbwriterxf(db, ParamStr(1), 0));
  ztbfree(db);

  xcreate(db);
  WriteLn('opened ', d__ztbinitfromrxf(db, ParamStr(1)));
  print;
  ztbfree(db);
end.
