{ A small till, early bound: connect, sell, handle refusals, pay, disconnect.

    C:\FPC\3.2.2\bin\i386-win32\fpc.exe till_early.pas
    .\till_early.exe 127.0.0.1:9100

  For Free Pascal and Delphi. This file is kept in UTF-8. }
program till_early;
{$ifdef FPC}{$mode delphiunicode}{$codepage utf8}{$endif}
{$apptype console}

uses
  ActiveX, ComObj, SysUtils, VarlenFiscalTill;

var
  Till: _fiscalTrevikModule;
  Result_: Smallint;
  Exresult: WideString;
  Suppress: WordBool = True;

procedure Check(Done: Boolean; const Step: string);
begin
  if Done then Exit;
  WriteLn('FAIL ', Step);
  Halt(1);
end;

function Succeeded(const Step: string): Boolean;
begin
  Succeeded := Result_ = 0;
  if Result_ <> 0 then WriteLn('  ', Step, ': ', Result_, ' ', Exresult);
end;

{ The declarations have nearly every parameter by reference, so arguments are variables: these value parameters are. }
function Sold(Description: WideString; Quantity, Price, VatRate: Double): Boolean;
var
  Department: Smallint = 1;
begin
  WriteLn('selling ', Quantity:0:3, ' x ', Description);
  Till.ItemSale(Description, Quantity, Price, VatRate, Department, Result_, Exresult, Suppress);
  Sold := Succeeded('ItemSale');
end;

function Paid(Kind: Smallint; Description: WideString; Amount: Double): Boolean;
var
  NoTerminal: Smallint = 0;
begin
  WriteLn('paying ', Amount:0:2, ' ', Description);
  Till.Payment(Kind, Description, Amount, NoTerminal, NoTerminal, Result_, Exresult, Suppress);
  Paid := Succeeded('Payment') and not Till.StatusRead.isTransactionOpen;
end;

function Totalled(var Totals: _clsTransTotal): Boolean;
begin
  Totalled := False;
  try
    Till.transactionTotals(Totals, Result_, Exresult, Suppress);
    Totalled := Succeeded('transactionTotals');
  except
    { The call itself is invalid: nothing was sent, and the variables are unchanged. }
    on Error: EOleSysError do
      WriteLn('  ', Error.ClassName, ' ', IntToHex(Error.ErrorCode, 8));
  end;
end;

var
  Port, SerialNumber: WideString;
  Thanks: WideString = 'Σας ευχαριστούμε!';
  Small: Smallint = 1;
  Totals: _clsTransTotal = nil;
begin
  CoInitialize(nil);
  Port := '127.0.0.1:9100';
  if ParamCount > 0 then Port := ParamStr(1);

  Till := CreateComObject(CLASS_fiscalTrevikModule) as _fiscalTrevikModule;
  Till.Connect_(Port, Result_, Exresult, Suppress);
  Check(Succeeded('Connect_'), 'connecting');
  Till.getSerialNumber(SerialNumber, Result_, Exresult, Suppress);
  Check(Succeeded('getSerialNumber'), 'finding a register');
  WriteLn('register ', SerialNumber);

  Check(Sold('Καφές ελληνικός', 2, 1.80, 24), 'selling coffee');
  { The register has no VAT rate of 17 %. }
  Check(not Sold('Τυρόπιτα', 1, 2.20, 17) and Sold('Τυρόπιτα', 1, 2.20, 13), 'a refused item');
  Check(Sold('Νερό', 0.5, 0.50, 13), 'selling water');
  Till.commentPrinterPrint(Thanks, Small, Result_, Exresult, Suppress);
  Check(Succeeded('commentPrinterPrint'), 'thanking');

  { A record to be filled must exist. }
  Check(not Totalled(Totals), 'totals into nothing');
  Totals := CreateComObject(CLASS_clsTransTotal) as _clsTransTotal;
  Check(Totalled(Totals), 'asking for the total');
  WriteLn('total ', Totals.receiptTotalAmt:0:2);
  { Change cannot be given on a card. }
  Check(not Paid(2, 'ΚΑΡΤΑ', 10) and Paid(1, 'ΜΕΤΡΗΤΑ', 10), 'paying');

  Till.DisConnect_(Port, Result_, Exresult, Suppress);
  { A closed port is reported as 1, the value of the system call that closed it. }
  Check(Result_ = 1, 'disconnecting');
  WriteLn('ok');
end.
